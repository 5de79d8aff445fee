#pragma once

#include <QString>
#include <QVariant>

// What an entry of the item file is, as far as merging has to know: an item's dictionary, or whatever else lies in a
// folder's list.
namespace EntryValues
{
// What the entry lists; null when it is no folder. Points into the entry.
const QVariantList *children(const QVariant &entry);
// "" when there is none.
QString identifier(const QVariant &entry);
inline const QString folderKind = QStringLiteral("folder");
// The kind's word, one word for all folders; null for what is no dictionary.
QString kind(const QVariant &entry);
// Of a folder, a link or a note; "" when there is none.
QString title(const QVariant &entry);
// Does nothing with an entry that has none.
void setTitle(QVariantMap &entry, const QString &title);

// The dictionary with an empty list in place of what it lists.
QVariantMap withoutChildren(const QVariantMap &entry);

// Whether both are the same value of the same type, at every depth; what is not a number equals itself.
bool isSame(const QVariant &a, const QVariant &b);
// The same, whatever the two list.
bool isSameButChildren(const QVariant &a, const QVariant &b);
bool isSameButChildrenAndIdentifier(const QVariant &a, const QVariant &b);
// Equal for what isSameButChildrenAndIdentifier.
std::size_t hashWithoutChildrenAndIdentifier(const QVariant &entry);
std::size_t hashOf(const QVariant &value);

// The same value, in which all that is found at its place in the known one is the known one's piece of memory. What
// compares the two later sees at once where there is nothing to compare.
QVariant sharing(const QVariant &value, const QVariant &known);
// The same for entries that are one piece of memory.
const void *pieceOf(const QVariant &entry);
} // namespace EntryValues
