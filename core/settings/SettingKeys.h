#pragma once

#include <QString>

// The keys under which the settings are stored.
namespace SettingKeys
{
inline const QString DefaultDrawerContentWidth = QStringLiteral("WayfoldDefaultDrawerContentWidth");
inline const QString AutoFocusOnSiteChange = QStringLiteral("WayfoldAutoFocusOnSiteChange");
inline const QString ShowBookmarkIcons = QStringLiteral("WayfoldShowBookmarkIcons");
inline const QString OpenDrawerForKnownSite = QStringLiteral("WayfoldOpenDrawerForKnownSite");
inline const QString OpenDrawerOnNewWindow = QStringLiteral("WayfoldOpenDrawerOnNewWindow");
inline const QString CloseDrawerForUnknownSite = QStringLiteral("WayfoldCloseDrawerForUnknownSite");
inline const QString HistoryGroupingKey = QStringLiteral("WayfoldHistoryGroupingKey");
inline const QString ListViewFontName = QStringLiteral("WayfoldListViewFontName");
inline const QString ListViewFontSize = QStringLiteral("WayfoldListViewFontSize");
inline const QString ConfirmItemDelete = QStringLiteral("WayfoldConfirmItemDelete");
inline const QString MenuItemShortcuts = QStringLiteral("WayfoldMenuItemShortcuts");
inline const QString DefaultFirstTab = QStringLiteral("WayfoldDefaultFirstTab");
inline const QString CreateAutoFolders = QStringLiteral("WayfoldCreateAutoFolders");
inline const QString ShowFavIcons = QStringLiteral("WayfoldShowFavIcons");
inline const QString SourceOfContacts = QStringLiteral("WayfoldContactSource");
inline const QString FolderOfContacts = QStringLiteral("WayfoldContactFolder");
} // namespace SettingKeys
