#pragma once

#include "platform/host/HostClasses.h"

#include <QUrl>
#include <functional>

class BookmarkFile;
class BrowserHostSettings;
class BrowserWindow;
class Downloads;
class HistoryFile;
class QWebEngineProfile;
class SiteIcons;

// What every window and page of the browser shares. The Browser fills it in, owns all of it, and outlives the windows.
struct BrowserServices
{
    QWebEngineProfile *profile = nullptr;
    HistoryFile *history = nullptr;
    BookmarkFile *bookmarks = nullptr;
    Downloads *downloads = nullptr;
    SiteIcons *siteIcons = nullptr;
    BrowserHostSettings *settings = nullptr;
    HostClasses::LocationChangeHandlerClass locationChangeHandlerClass;
    HostClasses::WebViewClass webViewClass;

    // Shows a page in a window of its own; the start page for an empty address.
    std::function<BrowserWindow *(const QUrl &)> openWindow;
    // An empty window for a page that is still to come, not shown yet; without tool bar for a page that asked for a
    // size of its own.
    std::function<BrowserWindow *(bool asPopUp)> makeWindow;
    // Whether the window may be closed; asks the user when something would be lost.
    std::function<bool(const BrowserWindow &)> mayClose;
    std::function<void()> quit;
};
