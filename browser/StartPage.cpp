#include "browser/StartPage.h"

#include "browser/BookmarkFile.h"

#include <QApplication>
#include <QBuffer>
#include <QFile>
#include <QPalette>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>

namespace
{
QString links(const QList<BookmarkFile::Node> &nodes)
{
    QString html;
    for (const BookmarkFile::Node &node : nodes) {
        if (!node.isFolder && !node.address.isEmpty())
            html += QStringLiteral("<li><a href=\"%1\">%2</a></li>\n")
                        .arg(node.address.toHtmlEscaped(), node.title.toHtmlEscaped());
    }
    return html;
}
} // namespace

void StartPage::registerScheme()
{
    QWebEngineUrlScheme scheme(StartPage::scheme());
    scheme.setSyntax(QWebEngineUrlScheme::Syntax::Path);
    scheme.setFlags(QWebEngineUrlScheme::SecureScheme | QWebEngineUrlScheme::LocalScheme);
    QWebEngineUrlScheme::registerScheme(scheme);
}

QByteArray StartPage::scheme()
{
    return QByteArrayLiteral("wayfold");
}

QUrl StartPage::address()
{
    return QUrl(QStringLiteral("wayfold:start"));
}

StartPage::StartPage(BookmarkFile *bookmarks, QObject *parent)
    : QWebEngineUrlSchemeHandler(parent)
    , _bookmarks(bookmarks)
{}

void StartPage::requestStarted(QWebEngineUrlRequestJob *job)
{
    if (job->requestUrl() != address()) {
        job->fail(QWebEngineUrlRequestJob::UrlNotFound);
        return;
    }
    auto *buffer = new QBuffer(job);
    buffer->setData(html());
    buffer->open(QIODevice::ReadOnly);
    job->reply(QByteArrayLiteral("text/html"), buffer);
}

QByteArray StartPage::html() const
{
    QFile file(QStringLiteral(":/wayfold-browser/startpage.html"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QPalette palette = QApplication::palette();
    QString html = QString::fromUtf8(file.readAll());
    html.replace(QLatin1String("@title@"), tr("Start Page").toHtmlEscaped());
    html.replace(QLatin1String("@hint@"), tr("Enter an address above, or choose a bookmark.").toHtmlEscaped());
    html.replace(QLatin1String("@background@"), palette.color(QPalette::Base).name());
    html.replace(QLatin1String("@text@"), palette.color(QPalette::Text).name());
    html.replace(QLatin1String("@link@"), palette.color(QPalette::Link).name());
    html.replace(QLatin1String("@bookmarks@"), links(_bookmarks->barNodes()));
    return html.toUtf8();
}
