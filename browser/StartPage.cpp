#include "browser/StartPage.h"

#include "browser/Address.h"
#include "browser/BookmarkFile.h"
#include "browser/SiteIcons.h"
#include "browser/SymbolIcon.h"

#include <QApplication>
#include <QBuffer>
#include <QFile>
#include <QHash>
#include <QPalette>
#include <QRegularExpression>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>

namespace
{
constexpr int iconSize = 32; // pixels, shown in half as many points

// The text with each "@name@" replaced, once: what comes in is not looked into.
QString filled(const QString &text, const QHash<QString, QString> &values)
{
    static const QRegularExpression mark(QStringLiteral("@([a-z]+)@"));
    QString result;
    qsizetype end = 0;
    auto marks = mark.globalMatch(text);
    while (marks.hasNext()) {
        const QRegularExpressionMatch match = marks.next();
        result += QStringView(text).mid(end, match.capturedStart() - end);
        result += values.value(match.captured(1));
        end = match.capturedEnd();
    }
    return result += QStringView(text).mid(end);
}

QString link(const QUrl &url, const QString &picture, const QString &title)
{
    const QString address = QString::fromLatin1(url.toEncoded());
    return QStringLiteral("<li><a href=\"%1\">").arg(address.toHtmlEscaped()) + picture + title.toHtmlEscaped() +
           QStringLiteral("</a></li>\n");
}

// Empty when there is nothing in the list.
QString section(const QString &title, const QString &list)
{
    if (list.isEmpty())
        return {};
    return QStringLiteral("<h2>") + title.toHtmlEscaped() + QStringLiteral("</h2>\n<ul>\n") + list +
           QStringLiteral("</ul>\n");
}

QString step(const QString &title, const QString &text, const QString &shortcut)
{
    const QString key = shortcut.isEmpty() ? StartPage::tr("In the menu “Wayfold”") : shortcut;
    return QStringLiteral("<li><h3>") + title.toHtmlEscaped() + QStringLiteral("</h3><p>") + text.toHtmlEscaped() +
           QStringLiteral("</p><kbd>") + key.toHtmlEscaped() + QStringLiteral("</kbd></li>\n");
}

QString picture(const QImage &image)
{
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    image.save(&png, "PNG");
    return QStringLiteral("<img alt=\"\" src=\"data:image/png;base64,%1\">")
        .arg(QString::fromLatin1(png.data().toBase64()));
}

// None for a folder of the user's own, whose title is no host name.
QUrl addressOfSite(const QString &title)
{
    const QUrl url = Address::fromUserInput(title);
    const bool isHostName = title.contains(u'.') || title == u"localhost";
    return isHostName && url.host() == title.toLower() ? url : QUrl();
}

QString translucent(const QColor &color, qreal share)
{
    return QStringLiteral("rgba(%1, %2, %3, %4)").arg(color.red()).arg(color.green()).arg(color.blue()).arg(share);
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

StartPage::StartPage(BookmarkFile *bookmarks, SiteIcons *icons, QObject *parent)
    : QWebEngineUrlSchemeHandler(parent)
    , _bookmarks(bookmarks)
    , _icons(icons)
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
    const std::optional<Drawer> drawer = _drawer ? _drawer() : std::nullopt;
    const QString sites = drawer ? siteSection(drawer->sites) : QString();
    const QString steps = drawer ? stepSection(*drawer) : QString();
    const QPalette palette = QApplication::palette();
    const QColor background = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    const QHash<QString, QString> values = {
        {QStringLiteral("language"), tr("en", "the language of the start page")},
        {QStringLiteral("title"), (drawer ? tr("Welcome to Wayfold") : tr("Start Page")).toHtmlEscaped()},
        {QStringLiteral("greeting"),
         (drawer ? tr("Every window has a drawer on its side. It follows the site that you are on, and keeps the links "
                      "and notes that belong to it.")
                 : tr("Enter an address above, or choose a bookmark."))
             .toHtmlEscaped()},
        // Whoever has lists already knows how they come about.
        {QStringLiteral("sections"), sites.isEmpty() ? steps + bookmarkSection() : sites + bookmarkSection() + steps},
        {QStringLiteral("scheme"),
         background.lightnessF() < text.lightnessF() ? QStringLiteral("dark") : QStringLiteral("light")},
        {QStringLiteral("background"), background.name()},
        {QStringLiteral("text"), text.name()},
        {QStringLiteral("link"), palette.color(QPalette::Link).name()},
        {QStringLiteral("card"), translucent(text, 0.04)},
        {QStringLiteral("line"), translucent(text, 0.2)},
    };
    return filled(QString::fromUtf8(file.readAll()), values).toUtf8();
}

QString StartPage::siteSection(const QStringList &sites) const
{
    const QImage neutral = SymbolIcon::image(QStringLiteral("site"), QSize(iconSize, iconSize));
    QString list;
    for (const QString &site : sites) {
        const QUrl url = addressOfSite(site);
        if (url.isEmpty())
            continue;
        const QImage icon = _icons->iconForAddress(url.toString(), QSize(iconSize, iconSize));
        list += link(url, picture(icon.isNull() ? neutral : icon), site);
    }
    return section(tr("Your Sites"), list);
}

QString StartPage::bookmarkSection() const
{
    QString list;
    for (const BookmarkFile::Node &node : _bookmarks->barNodes()) {
        const QUrl url = node.isFolder ? QUrl() : Address::fromUserInput(node.address); // none for a script
        if (!url.isEmpty())
            list += link(url, QString(), node.title);
    }
    return section(tr("Bookmarks"), list);
}

QString StartPage::stepSection(const Drawer &drawer)
{
    return QStringLiteral("<ol>\n") +
           step(tr("Open the drawer"), tr("On any page. It slides out beside the window, and stays with it."),
                drawer.openShortcut) +
           step(tr("Show the site’s list"), tr("Each site has a list of its own. You need not make it."),
                drawer.focusShortcut) +
           step(tr("Keep something"),
                tr("Write a note, or drag a link from the page into the list. It is there when you come back."),
                drawer.noteShortcut) +
           QStringLiteral("</ol>\n");
}
