#pragma once

#include <QString>
#include <QVariantMap>

// Key and kind words of the dictionary form of items, and reading values of the right type from it.
namespace ItemDictionary
{
inline const QString typeKey = QStringLiteral("WebBookmarkType");
inline const QString uuidKey = QStringLiteral("WebBookmarkUUID");
inline const QString titleKey = QStringLiteral("Title");
inline const QString searchStringKey = QStringLiteral("SearchString");
inline const QString childrenKey = QStringLiteral("Children");
inline const QString uriDictionaryKey = QStringLiteral("URIDictionary");
inline const QString uriTitleKey = QStringLiteral("title");
inline const QString uriAddressKey = QStringLiteral("");
inline const QString urlStringKey = QStringLiteral("URLString");
inline const QString noteKey = QStringLiteral("Note");
inline const QString addressBookIDKey = QStringLiteral("AddressBookID");

inline const QString listType = QStringLiteral("WebBookmarkTypeList");
inline const QString leafType = QStringLiteral("WebBookmarkTypeLeaf");
inline const QString noteType = QStringLiteral("WebBookmarkTypeNote");
inline const QString personType = QStringLiteral("ABPerson");
inline const QString groupType = QStringLiteral("ABGroup");

// Null when missing or not a string.
QString string(const QVariantMap &dictionary, const QString &key);
// Empty when missing or not a dictionary.
QVariantMap dictionary(const QVariantMap &dictionary, const QString &key);
// Empty when missing or not an array.
QVariantList list(const QVariantMap &dictionary, const QString &key);
// The text, "" in place of none.
QString textOrEmpty(const QString &text);
// Null in place of "".
QString nonEmpty(const QString &text);
// Whether none and none, or the same text; none and "" are different.
bool isSameText(const QString &a, const QString &b);
} // namespace ItemDictionary
