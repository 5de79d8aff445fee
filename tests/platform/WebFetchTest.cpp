#include "platform/network/WebFetch.h"

#include "platform/base/NotificationQueue.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/web/LoopbackServer.h"
#include "tests/support/web/TestCertificate.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QShortcut>
#include <QtTest>

namespace
{
constexpr auto soon = std::chrono::milliseconds(200);

// Does something once it is possible, within the event loop of whoever waits then.
void when(const std::function<bool()> &condition, const std::function<void()> &action)
{
    auto *timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, timer, [=] {
        if (!condition())
            return;
        timer->stop();
        timer->deleteLater();
        action();
    });
    timer->start();
}

// Does something when the reply that somebody waits for goes: just after the wait.
class AfterTheReply : public QObject
{
public:
    explicit AfterTheReply(std::function<void()> action) : _action(std::move(action))
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent * /*event*/) override
    {
        if (!_isFound && watched->inherits("QNetworkReply")) {
            _isFound = true;
            connect(watched, &QObject::destroyed, this, _action);
        }
        return false;
    }

private:
    std::function<void()> _action;
    bool _isFound = false;
};
} // namespace

class WebFetchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fetches_data();
    void fetches();
    void failsOnABadAnswer_data();
    void failsOnABadAnswer();
    void redirectionIsFollowed_data();
    void redirectionIsFollowed();
    void fiveRedirectionsAreFollowed();
    void redirectionIsNotFollowed_data();
    void redirectionIsNotFollowed();
    void noMoreThanTheLimit_data();
    void noMoreThanTheLimit();
    void stopsReadingAtTheLimit();
    void waitsNoLongerThanTheLimit_data();
    void waitsNoLongerThanTheLimit();
    void usualLimits();
    void otherAddressesAreNotFetched_data();
    void otherAddressesAreNotFetched();
    void nobodyListens();
    void secureServer();
    void secureServerWithAnUnknownCertificate();
    void neverFromHttpsToHttp();
    void requestTellsNothingAboutTheUser();
    void cookiesAreNotKept();
    void cursorShowsTheWait();
    void inputIsThrownAway();
    void inputOfTheLastMomentIsThrownAwayToo();
    void windowsCanBeClosed();
    void dialogOfAPageCanBeAnswered();
    void besidesADialogOfAPageNothingIsReached();
    void sheetThatWasThereBeforeWaits();
    void notificationsWait();
    void endOfTheApplicationEndsTheWait();
};

void WebFetchTest::fetches_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("text") << LoopbackServer::response("hello") << QByteArray("hello");
    QTest::newRow("bytes") << LoopbackServer::response(QByteArray("\0\xff\r\n", 4)) << QByteArray("\0\xff\r\n", 4);
    QTest::newRow("nothing") << LoopbackServer::response("") << QByteArray("");
    QTest::newRow("without a length") << QByteArray("HTTP/1.1 200 OK\r\n\r\nhello") << QByteArray("hello");
    QTest::newRow("in chunks") << QByteArray(
                                      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nConnection: close\r\n\r\n"
                                      "2\r\nhe\r\n3\r\nllo\r\n0\r\n\r\n")
                               << QByteArray("hello");
}

void WebFetchTest::fetches()
{
    QFETCH(QByteArray, answer);
    QFETCH(QByteArray, contents);
    LoopbackServer server;
    server.setAnswer(QStringLiteral("/a?b=c"), answer);
    const std::optional<QByteArray> fetched = WebFetch::contentsOfURL(server.address(QStringLiteral("/a?b=c")));
    QVERIFY(fetched);
    QCOMPARE(*fetched, contents);
}

void WebFetchTest::failsOnABadAnswer_data()
{
    QTest::addColumn<QByteArray>("answer");
    for (const char *status :
         {"301 Moved Permanently", "401 Unauthorized", "403 Forbidden", "404 Not Found",
          "407 Proxy Authentication Required", "500 Internal Server Error", "503 Service Unavailable"})
        QTest::newRow(status) << LoopbackServer::response("hello", status);
    QTest::newRow("asks for a name") << QByteArray(
        "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"a\"\r\n"
        "Content-Length: 5\r\nConnection: close\r\n\r\nhello");
    QTest::newRow("nothing at all") << QByteArray();
    QTest::newRow("rubbish") << QByteArray("\x01\x02rubbish\r\n\r\nrubbish");
    QTest::newRow("ends within the headers") << QByteArray("HTTP/1.1 200 OK\r\nContent-Le");
    QTest::newRow("ends within the contents") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhello");
}

void WebFetchTest::failsOnABadAnswer()
{
    QFETCH(QByteArray, answer);
    LoopbackServer server;
    server.setAnswer(QStringLiteral("/"), answer);
    QVERIFY(!WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QVERIFY(!server.requests().isEmpty());
}

void WebFetchTest::redirectionIsFollowed_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<bool>("isRelative");
    for (const char *status :
         {"301 Moved Permanently", "302 Found", "303 See Other", "307 Temporary Redirect", "308 Permanent Redirect"}) {
        QTest::addRow("%s", status) << QByteArray(status) << false;
        QTest::addRow("%s, relative", status) << QByteArray(status) << true;
    }
}

void WebFetchTest::redirectionIsFollowed()
{
    QFETCH(QByteArray, status);
    QFETCH(bool, isRelative);
    LoopbackServer server;
    LoopbackServer other;
    const QByteArray location =
        isRelative ? QByteArray("/there") : other.address(QStringLiteral("/there")).absoluteString().toLatin1();
    server.setAnswer(QStringLiteral("/"), LoopbackServer::redirection(location, status));
    (isRelative ? server : other).setAnswer(QStringLiteral("/there"), LoopbackServer::response("hello"));
    QCOMPARE(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))).value_or(QByteArray()), QByteArray("hello"));
}

void WebFetchTest::fiveRedirectionsAreFollowed()
{
    LoopbackServer server;
    for (int left = 6; left > 0; --left)
        server.setAnswer(QStringLiteral("/%1").arg(left),
                         LoopbackServer::redirection('/' + QByteArray::number(left - 1)));
    server.setAnswer(QStringLiteral("/0"), LoopbackServer::response("hello"));
    QCOMPARE(WebFetch::contentsOfURL(server.address(QStringLiteral("/5"))).value_or(QByteArray()), QByteArray("hello"));
    QVERIFY(!WebFetch::contentsOfURL(server.address(QStringLiteral("/6"))));
}

void WebFetchTest::redirectionIsNotFollowed_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::newRow("to itself") << QByteArray("/");
    QTest::newRow("to a file") << QByteArray("file:///%1");
    QTest::newRow("to a path of the disk") << QByteArray("file:%1");
    QTest::newRow("to data") << QByteArray("data:text/plain,hello");
    QTest::newRow("to a resource") << QByteArray("qrc:/hello");
    QTest::newRow("to ftp") << QByteArray("ftp://127.0.0.1/hello");
    QTest::newRow("to nowhere") << QByteArray("");
    QTest::newRow("to rubbish") << QByteArray("http://[::");
}

void WebFetchTest::redirectionIsNotFollowed()
{
    QFETCH(QByteArray, location);
    const TemporaryHome home;
    home.write(QStringLiteral("hello"), "hello");
    location.replace("%1", home.path(QStringLiteral("hello")).toUtf8());
    LoopbackServer server;
    server.setAnswer(QStringLiteral("/"), LoopbackServer::redirection(location));
    QVERIFY(!WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QVERIFY2(server.requests().size() < 20, qPrintable(QString::number(server.requests().size()))); // a circle ends
}

void WebFetchTest::noMoreThanTheLimit_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("hasLength");
    QTest::addColumn<bool>("isFetched");
    constexpr int limit = 1024 * 1024;
    QTest::newRow("just as much") << limit << true << true;
    QTest::newRow("just as much, without a length") << limit << false << true;
    QTest::newRow("more") << limit + 1 << true << false;
    QTest::newRow("more, without a length") << limit + 1 << false << false;
    QTest::newRow("much more") << 5 * limit << false << false;
}

void WebFetchTest::noMoreThanTheLimit()
{
    QFETCH(int, size);
    QFETCH(bool, hasLength);
    QFETCH(bool, isFetched);
    const QByteArray contents(size, 'x');
    LoopbackServer server;
    server.setAnswer(QStringLiteral("/"),
                     hasLength ? LoopbackServer::response(contents) : "HTTP/1.1 200 OK\r\n\r\n" + contents);
    const std::optional<QByteArray> fetched = WebFetch::contentsOfURL(server.address(QStringLiteral("/")));
    QCOMPARE(fetched.has_value(), isFetched);
    QCOMPARE(fetched.value_or(contents), contents);
}

// What the system holds in between is far less than this answer.
void WebFetchTest::stopsReadingAtTheLimit()
{
    const QByteArray contents(64 * 1024 * 1024, 'x');
    LoopbackServer server;
    server.setAnswer(QStringLiteral("/"), "HTTP/1.1 200 OK\r\n\r\n" + contents, LoopbackServer::After::KeepOpen);
    QVERIFY(!WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QVERIFY2(server.bytesTaken() < contents.size() / 2, qPrintable(QString::number(server.bytesTaken())));
}

void WebFetchTest::waitsNoLongerThanTheLimit_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("never") << QByteArray();
    QTest::newRow("within the headers") << QByteArray("HTTP/1.1 200 OK\r\nContent-Le");
    QTest::newRow("within the contents") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhello");
    QTest::newRow("broken chunks") << QByteArray("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nhello");
    QTest::newRow("an end that does not come") << QByteArray("HTTP/1.1 200 OK\r\n\r\nhello");
}

void WebFetchTest::waitsNoLongerThanTheLimit()
{
    QFETCH(QByteArray, answer);
    LoopbackServer server;
    server.setAnswer(QStringLiteral("/"), answer, LoopbackServer::After::KeepOpen);
    WebFetch::Limits limits;
    limits.time = soon;
    QVERIFY(!WebFetch::contentsOfURL(server.address(QStringLiteral("/")), limits));
}

void WebFetchTest::usualLimits()
{
    QCOMPARE(WebFetch::Limits().time, std::chrono::milliseconds(10000));
    QCOMPARE(WebFetch::Limits().size, qsizetype(1048576));
}

void WebFetchTest::otherAddressesAreNotFetched_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("none") << QString();
    QTest::newRow("file") << "file://%1";
    QTest::newRow("path") << "%1";
    QTest::newRow("data") << "data:text/plain,hello";
    QTest::newRow("ftp") << "ftp://127.0.0.1/hello";
    QTest::newRow("no host") << "http:///hello";
}

void WebFetchTest::otherAddressesAreNotFetched()
{
    QFETCH(QString, address);
    const TemporaryHome home;
    home.write(QStringLiteral("hello"), "hello");
    address.replace(QStringLiteral("%1"), home.path(QStringLiteral("hello")));
    QVERIFY(!WebFetch::contentsOfURL(Url::URLWithString(address)));
}

void WebFetchTest::nobodyListens()
{
    Url address;
    {
        const LoopbackServer server;
        address = server.address(QStringLiteral("/"));
    }
    QVERIFY(!WebFetch::contentsOfURL(address));
}

void WebFetchTest::secureServer()
{
    const TestCertificate certificate;
    LoopbackServer server(certificate);
    LoopbackServer plain;
    server.setAnswer(QStringLiteral("/"), LoopbackServer::response("hello"));
    plain.setAnswer(QStringLiteral("/"),
                    LoopbackServer::redirection(server.address(QStringLiteral("/")).absoluteString().toLatin1()));
    certificate.trust();
    QCOMPARE(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))).value_or(QByteArray()), QByteArray("hello"));
    // From http one may come here, too.
    QCOMPARE(WebFetch::contentsOfURL(plain.address(QStringLiteral("/"))).value_or(QByteArray()), QByteArray("hello"));
}

void WebFetchTest::secureServerWithAnUnknownCertificate()
{
    const TestCertificate certificate;
    LoopbackServer server(certificate);
    server.setAnswer(QStringLiteral("/"), LoopbackServer::response("hello"));
    QVERIFY(!WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QVERIFY(server.requests().isEmpty());
}

void WebFetchTest::neverFromHttpsToHttp()
{
    const TestCertificate certificate;
    LoopbackServer server(certificate);
    LoopbackServer plain;
    server.setAnswer(QStringLiteral("/"),
                     LoopbackServer::redirection(plain.address(QStringLiteral("/")).absoluteString().toLatin1()));
    plain.setAnswer(QStringLiteral("/"), LoopbackServer::response("hello"));
    certificate.trust();
    QVERIFY(!WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QCOMPARE(server.requests().size(), 1);
    QVERIFY(plain.requests().isEmpty());
}

void WebFetchTest::requestTellsNothingAboutTheUser()
{
    LoopbackServer server;
    server.setAnswer(QStringLiteral("/"), LoopbackServer::response("hello"));
    QVERIFY(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QCOMPARE(server.requests().size(), 1);
    QList<QByteArray> lines = server.requests().value(0).trimmed().split('\n');
    for (QByteArray &line : lines)
        line = line.trimmed();
    QCOMPARE(lines.takeFirst(), QByteArray("GET / HTTP/1.1"));
    std::sort(lines.begin(), lines.end());
    const QByteArray host = server.address(QString()).absoluteString().mid(7).toLatin1();
    QCOMPARE(lines,
             (QList<QByteArray>{"Accept-Encoding: identity", "Accept-Language: *", "Cache-Control: no-cache",
                                "Connection: Keep-Alive", "Host: " + host, "Pragma: no-cache", "User-Agent: Wayfold"}));
}

void WebFetchTest::cookiesAreNotKept()
{
    LoopbackServer server;
    server.setAnswer(QStringLiteral("/"), "HTTP/1.1 302 Found\r\nLocation: /there\r\nSet-Cookie: who=me; Path=/\r\n"
                                          "Content-Length: 0\r\nConnection: close\r\n\r\n");
    server.setAnswer(QStringLiteral("/there"), LoopbackServer::response("hello"));
    QVERIFY(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QCOMPARE(server.requests().size(), 2);
    QVERIFY(!server.requests().value(1).contains("who=me"));
}

void WebFetchTest::cursorShowsTheWait()
{
    LoopbackServer server;
    std::optional<Qt::CursorShape> shape;
    when([&] { return !server.requests().isEmpty(); },
         [&] {
             if (const QCursor *cursor = QGuiApplication::overrideCursor())
                 shape = cursor->shape();
             server.answerLate(QStringLiteral("/"), LoopbackServer::response("hello"));
         });
    QVERIFY(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QVERIFY(shape);
    QCOMPARE(*shape, Qt::WaitCursor);
    QVERIFY(!QGuiApplication::overrideCursor());
}

void WebFetchTest::inputIsThrownAway()
{
    QWidget window;
    QLineEdit field(&window);
    QPushButton button(&window);
    button.move(0, 50);
    button.setFocusPolicy(Qt::NoFocus);
    int done = 0;
    connect(&button, &QPushButton::clicked, &window, [&done] { ++done; });
    const QShortcut shortcut(QKeySequence(QStringLiteral("Ctrl+J")), &window, &window, [&done] { ++done; });
    window.show();
    field.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QMimeData dragged;
    dragged.setText(QStringLiteral("dropped"));
    const auto enter = [&] {
        QDragEnterEvent event(QPoint(1, 1), Qt::CopyAction, &dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&field, &event);
        return event.isAccepted();
    };
    QVERIFY(enter()); // before the wait already
    const auto work = [&] {
        QTest::keyClicks(&field, QStringLiteral("hello"));
        QTest::mouseClick(&button, Qt::LeftButton);
        // As they come from the system, by way of the window.
        QTest::keyClick(window.windowHandle(), Qt::Key_A);
        QTest::keyClick(window.windowHandle(), Qt::Key_J, Qt::ControlModifier);
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, button.geometry().center());
        QInputMethodEvent composed;
        composed.setCommitString(QStringLiteral("hello"));
        QCoreApplication::sendEvent(&field, &composed);
        done += int(enter());
        QDragMoveEvent move(QPoint(2, 2), Qt::CopyAction, &dragged, Qt::LeftButton, {});
        move.ignore();
        QCoreApplication::sendEvent(&field, &move);
        done += int(move.isAccepted());
        QDropEvent drop(QPointF(1, 1), Qt::CopyAction, &dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&field, &drop);
    };
    LoopbackServer server;
    when([&] { return !server.requests().isEmpty(); },
         [&] {
             work();
             server.answerLate(QStringLiteral("/"), LoopbackServer::response("hello"));
         });
    QVERIFY(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QCoreApplication::processEvents(); // nothing of it comes later, either
    QCOMPARE(field.text(), QString());
    QCOMPARE(done, 0);

    work(); // now it does something
    QCOMPARE(field.text(), QStringLiteral("droppedhelloahello"));
    QCOMPARE(done, 5);
}

// What was done before the answer came may have been waiting when it did.
void WebFetchTest::inputOfTheLastMomentIsThrownAwayToo()
{
    QLineEdit field;
    field.show();
    QVERIFY(QTest::qWaitForWindowActive(&field));
    bool isTyped = false;
    const AfterTheReply typing([&] {
        QCoreApplication::postEvent(&field, new QKeyEvent(QEvent::KeyPress, Qt::Key_A, {}, QStringLiteral("a")));
        isTyped = true;
    });
    LoopbackServer server;
    server.setAnswer(QStringLiteral("/"), LoopbackServer::response("hello"));
    QVERIFY(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QVERIFY(isTyped);
    QCoreApplication::processEvents();
    QCOMPARE(field.text(), QString());
}

// Or the desktop could not end the application.
void WebFetchTest::windowsCanBeClosed()
{
    QWidget window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    LoopbackServer server;
    when([&] { return !server.requests().isEmpty(); },
         [&] {
             window.close();
             server.answerLate(QStringLiteral("/"), LoopbackServer::response("hello"));
         });
    QVERIFY(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QVERIFY(!window.isVisible());
}

// A page may show one while it is being waited for the answer, and wait itself.
void WebFetchTest::dialogOfAPageCanBeAnswered()
{
    LoopbackServer server;
    QMessageBox dialog;
    QPushButton *button = dialog.addButton(QMessageBox::Ok);
    bool isAnswered = false;
    when([&] { return !server.requests().isEmpty(); },
         [&] {
             server.answerLate(QStringLiteral("/"), LoopbackServer::response("hello"));
             dialog.exec();
             isAnswered = true;
         });
    when([&] { return button->isVisible(); }, [&] { QTest::mouseClick(button, Qt::LeftButton); });
    QVERIFY(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QVERIFY(isAnswered);
}

// One that belongs to its window leaves the others to the user; the fetch does not.
void WebFetchTest::besidesADialogOfAPageNothingIsReached()
{
    QLineEdit other;
    QWidget page;
    QDialog dialog(&page);
    auto *field = new QLineEdit(&dialog);
    auto *choice = new QComboBox(&dialog);
    choice->move(0, 50);
    choice->addItems({QStringLiteral("first"), QStringLiteral("second")});
    for (QWidget *window : std::initializer_list<QWidget *>{&other, &page})
        window->show();
    QVERIFY(QTest::qWaitForWindowActive(&page));
    const auto workInTheDialog = [&] {
        QTest::mouseClick(dialog.windowHandle(), Qt::LeftButton, {}, field->geometry().center());
        QTest::keyClicks(field, QStringLiteral("hello"));
        choice->showPopup();
        QTest::keyClick(choice->view(), Qt::Key_Down);
        QTest::keyClick(choice->view(), Qt::Key_Return);
    };
    LoopbackServer server;
    when([&] { return !server.requests().isEmpty(); },
         [&] {
             dialog.setWindowModality(Qt::WindowModal);
             dialog.show();
             QVERIFY(QTest::qWaitForWindowActive(&dialog));
             workInTheDialog();
             other.activateWindow();
             QVERIFY(QTest::qWaitForWindowActive(&other));
             QTest::keyClick(other.windowHandle(), Qt::Key_A);
             server.answerLate(QStringLiteral("/"), LoopbackServer::response("hello"));
         });
    QVERIFY(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QCOMPARE(field->text(), QStringLiteral("hello"));
    QCOMPARE(choice->currentText(), QStringLiteral("second"));
    QCOMPARE(other.text(), QString());
}

void WebFetchTest::sheetThatWasThereBeforeWaits()
{
    QLineEdit other;
    QWidget page;
    QDialog sheet(&page);
    auto *field = new QLineEdit(&sheet);
    for (QWidget *window : std::initializer_list<QWidget *>{&other, &page})
        window->show();
    sheet.open();
    QVERIFY(QTest::qWaitForWindowActive(&sheet));
    const auto work = [&] {
        QTest::keyClicks(field, QStringLiteral("hello"));
        QTest::keyClicks(&other, QStringLiteral("hello"));
    };
    LoopbackServer server;
    when([&] { return !server.requests().isEmpty(); },
         [&] {
             work();
             server.answerLate(QStringLiteral("/"), LoopbackServer::response("hello"));
         });
    QVERIFY(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QCOMPARE(field->text() + other.text(), QString());
    work();
    QCOMPARE(field->text() + other.text(), QStringLiteral("hellohello"));
}

void WebFetchTest::notificationsWait()
{
    const QString name = QStringLiteral("WebFetchTestNotification");
    int delivered = 0;
    NotificationCenter::defaultCenter().addObserver(
        this, [&delivered](const Notification &) { ++delivered; }, name);
    LoopbackServer server;
    int passes = 0;
    when([&] { return !server.requests().isEmpty() && ++passes == 10; },
         [&] { server.answerLate(QStringLiteral("/"), LoopbackServer::response("hello")); });
    NotificationQueue::defaultQueue().enqueueNotification({name, this}, NotificationQueue::NSPostASAP);
    NotificationQueue::defaultQueue().enqueueNotification({name, &server}, NotificationQueue::NSPostWhenIdle);
    QVERIFY(WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
    QCOMPARE(delivered, 0);
    QTRY_COMPARE(delivered, 2);
    NotificationCenter::defaultCenter().removeObserver(this);
}

void WebFetchTest::endOfTheApplicationEndsTheWait()
{
    LoopbackServer server;
    when([&] { return !server.requests().isEmpty(); }, [] { QCoreApplication::exit(); });
    QVERIFY(!WebFetch::contentsOfURL(server.address(QStringLiteral("/"))));
}

QTEST_MAIN(WebFetchTest)
#include "WebFetchTest.moc"
