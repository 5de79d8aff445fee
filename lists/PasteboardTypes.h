#pragma once

#include <QString>
#include <QStringList>

// The names under which dragged items travel. The "KDR" types are the lists' own; the others are public, so their
// spelling is fixed.
namespace PasteboardTypes
{
inline const QString NSURLPboardType = QStringLiteral("NSURLPboardType");
inline const QString WebURLsWithTitles = QStringLiteral("WebURLsWithTitlesPboardType");
inline const QString BookmarkDictionaryList = QStringLiteral("BookmarkDictionaryListPboardType");
inline const QString NSFilenamesPboardType = QStringLiteral("NSFilenamesPboardType");
inline const QString KDRBookmark = QStringLiteral("KDRBookmark");
inline const QString KDRBookmarkList = QStringLiteral("KDRBookmarkList");
inline const QString NSStringPboardType = QStringLiteral("NSStringPboardType");
inline const QString ABPeopleUIDs = QStringLiteral("ABPeopleUIDsPboardType");
inline const QString ABGroupsUIDs = QStringLiteral("ABGroupsUIDsPboardType");
inline const QString NSVCardPboardType = QStringLiteral("NSVCardPboardType");

// The bookmarks' dictionaries again, with the visited pages, which have none, as links. Never without the former.
inline const QString dictionariesWithVisits = QStringLiteral("application/x-wayfold-items");

// The desktop's names.
inline const QString uriList = QStringLiteral("text/uri-list");
inline const QString mozillaUrl = QStringLiteral("text/x-moz-url");
// Of the address that stands in the address list of the same drag.
inline const QString mozillaUrlTitle = QStringLiteral("text/x-moz-url-desc");
// The address of a tab, which has no other type.
inline const QString mozillaTab = QStringLiteral("text/x-moz-text-internal");
// Address and title, a line each.
inline const QString netscapeUrl = QStringLiteral("_NETSCAPE_URL");
inline const QString plainText = QStringLiteral("text/plain");
inline const QString vCard = QStringLiteral("text/vcard");
inline const QString oldVCard = QStringLiteral("text/x-vcard");
inline const QString directory = QStringLiteral("text/directory");

// What a list takes as a drop, in this order.
const QStringList &acceptableDragTypes();
} // namespace PasteboardTypes
