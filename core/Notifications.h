#pragma once

#include <QString>

// The names of the notifications that the rooms exchange through the default notification centre.
namespace Notifications
{
// The one-second timer's tick; object: the store.
inline const QString TagSafariFilesNotification = QStringLiteral("TagSafariFilesNotification");
// The browser's bookmark file was read again; object: the store.
inline const QString SafariBookmarkFileModNotification = QStringLiteral("SafariBookmarkFileModNotification");
// The browser's history file was read again; object: the store.
inline const QString SafariHistoryFileModNotification = QStringLiteral("SafariHistoryFileModNotification");
// Requests to a drawer after a page load; object: the drawer.
inline const QString DrawerShouldOpenForLocationChange = QStringLiteral("DrawerShouldOpenForLocationChange");
inline const QString DrawerShouldCloseForLocationChange = QStringLiteral("DrawerShouldCloseForLocationChange");
// The list font was changed; no object.
inline const QString ListViewFontChangeNotification = QStringLiteral("ListViewFontChangeNotification");
} // namespace Notifications
