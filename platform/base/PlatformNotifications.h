#pragma once

#include <QString>

// What the platform posts to the default notification centre. The object of a window's notification is the HostWindow,
// that of a drawer's the Drawer; the application's have none.
namespace PlatformNotifications
{
inline const QString NSWindowDidBecomeKeyNotification = QStringLiteral("NSWindowDidBecomeKeyNotification");
inline const QString NSWindowWillCloseNotification = QStringLiteral("NSWindowWillCloseNotification");
// The window was moved, resized, minimised, restored, shown or hidden.
inline const QString WindowFrameDidChangeNotification = QStringLiteral("WindowFrameDidChangeNotification");
inline const QString NSApplicationWillTerminateNotification = QStringLiteral("NSApplicationWillTerminateNotification");
inline const QString NSDrawerWillOpenNotification = QStringLiteral("NSDrawerWillOpenNotification");
inline const QString NSDrawerDidOpenNotification = QStringLiteral("NSDrawerDidOpenNotification");
inline const QString NSDrawerWillCloseNotification = QStringLiteral("NSDrawerWillCloseNotification");
inline const QString NSDrawerDidCloseNotification = QStringLiteral("NSDrawerDidCloseNotification");
inline const QString NSPopUpButtonWillPopUpNotification = QStringLiteral("NSPopUpButtonWillPopUpNotification");
// The contacts have changed, by this program or by anything else; object: the ContactStore.
inline const QString kABDatabaseChangedNotification = QStringLiteral("kABDatabaseChangedNotification");
inline const QString kABDatabaseChangedExternallyNotification =
    QStringLiteral("kABDatabaseChangedExternallyNotification");
} // namespace PlatformNotifications
