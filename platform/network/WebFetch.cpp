#include "platform/network/WebFetch.h"

#include "platform/base/NotificationQueue.h"

#include <QCursor>
#include <QEventLoop>
#include <QGuiApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <QWindow>
#include <memory>

namespace
{
constexpr int maximumRedirections = 5;

bool isFromTheUser(const QEvent &event)
{
    switch (event.type()) {
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return true;
    default:
        return event.isInputEvent();
    }
}

// What is neither a window nor in one, as a command is not, hears of keys alone.
const QWindow *windowOf(const QObject *receiver)
{
    if (receiver->isWindowType())
        return static_cast<const QWindow *>(receiver);
    if (receiver->isWidgetType())
        return static_cast<const QWidget *>(receiver)->window()->windowHandle();
    return QGuiApplication::focusWindow();
}

// Throws away what the user does for as long as it lives. A dialog that comes up meanwhile, as a page may ask for one,
// can be answered all the same: it would keep whoever waits here waiting for ever.
class InputBarrier : public QObject
{
public:
    InputBarrier() { QCoreApplication::instance()->installEventFilter(this); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (!isFromTheUser(*event) || isForANewDialog(watched))
            return false;
        event->ignore();
        return true;
    }

private:
    bool isForANewDialog(const QObject *receiver) const
    {
        const QWindow *dialog = QGuiApplication::modalWindow();
        const QWindow *window = windowOf(receiver);
        const bool isNew = dialog && dialog != _dialogBefore;
        return isNew && window && (window == dialog || dialog->isAncestorOf(window));
    }

    const QPointer<QWindow> _dialogBefore = QGuiApplication::modalWindow();
};

class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor &) = delete;
    WaitCursor &operator=(const WaitCursor &) = delete;
};

QNetworkRequest requestFor(const QUrl &address)
{
    QNetworkRequest request(address);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(maximumRedirections);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    // Unless they are given, these tell the user's language, the toolkit, and what it can unpack.
    request.setRawHeader("Accept-Language", "*");
    request.setRawHeader("User-Agent", "Wayfold");
    request.setRawHeader("Accept-Encoding", "identity");
    return request;
}

// A connection that ends early is not always told as an error.
bool isWhole(const QNetworkReply &reply, qsizetype size)
{
    const QVariant length = reply.header(QNetworkRequest::ContentLengthHeader);
    return reply.isFinished() && reply.error() == QNetworkReply::NoError &&
           (!length.isValid() || size == length.toLongLong());
}

std::optional<QByteArray> fetch(const QUrl &address, const WebFetch::Limits &limits)
{
    QNetworkAccessManager manager;
    const std::unique_ptr<QNetworkReply> reply(manager.get(requestFor(address)));
    QEventLoop loop;
    QByteArray contents;
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, [&] {
        contents += reply->read(limits.size + 1 - contents.size());
        if (contents.size() > limits.size)
            reply->abort();
    });
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(limits.time, Qt::PreciseTimer, reply.get(), &QNetworkReply::abort);
    loop.exec(); // also ends with the application
    return isWhole(*reply, contents.size()) ? std::optional(contents) : std::nullopt;
}
} // namespace

std::optional<QByteArray> WebFetch::contentsOfURL(const Url &url, const Limits &limits)
{
    const QUrl address = QUrl::fromEncoded(url.absoluteString().toLatin1());
    if (address.scheme() != u"http" && address.scheme() != u"https")
        return std::nullopt;
    const NotificationQueue::Pause pause;
    const WaitCursor cursor;
    const InputBarrier barrier;
    std::optional<QByteArray> contents = fetch(address, limits);
    QGuiApplication::sync(); // and what he did until now goes, too
    return contents;
}
