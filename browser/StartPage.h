#pragma once

#include <QStringList>
#include <QUrl>
#include <QWebEngineUrlSchemeHandler>
#include <functional>
#include <optional>

class BookmarkFile;
class SiteIcons;

// The built-in page that new tabs and windows show: calm, without a host, and with nothing from the network. It says
// what the drawer is and how to begin, and leads to the sites that have a list and to the bookmarks of the bar.
class StartPage : public QWebEngineUrlSchemeHandler
{
    Q_OBJECT

public:
    // What is told about the drawer. A shortcut is empty where there is none.
    struct Drawer
    {
        QString openShortcut;
        QString focusShortcut;
        QString noteShortcut;
        QStringList sites; // the titles of their lists
    };
    // Asked each time the page is shown; none while there is no drawer.
    using DrawerSource = std::function<std::optional<Drawer>()>;

    // Makes the scheme known; before the QApplication is made.
    static void registerScheme();
    static QByteArray scheme();
    static QUrl address();

    StartPage(BookmarkFile *bookmarks, SiteIcons *icons, QObject *parent = nullptr);

    void setDrawerSource(DrawerSource source) { _drawer = std::move(source); }
    void requestStarted(QWebEngineUrlRequestJob *job) override;
    // The page as it is now, in UTF-8.
    QByteArray html() const;

private:
    QString siteSection(const QStringList &sites) const;
    QString bookmarkSection() const;
    static QString stepSection(const Drawer &drawer);

    BookmarkFile *_bookmarks;
    SiteIcons *_icons;
    DrawerSource _drawer;
};
