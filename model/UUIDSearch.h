#pragma once

#include "model/KDRBookmark.h"

#include <QByteArrayView>
#include <QHash>
#include <QSet>
#include <QStringList>
#include <bitset>

// Finds the items of many identifiers in one walk over a tree. Of items with the same identifier the first is found, in
// the order of the rows.
class UUIDSearch
{
public:
    explicit UUIDSearch(const QStringList &uuids);

    bool isWanted(const QString &uuid) const { return _wanted.contains(uuid) && !_found.contains(uuid); }
    // For an identifier in UTF-8; costs next to nothing when it is not.
    bool isWanted(QByteArrayView uuid) const;
    // Takes the item if it is looked for.
    void offer(const KDRBookmarkPtr &item);
    bool isOver() const { return _found.size() == _wanted.size(); }

    const QHash<QString, KDRBookmarkPtr> &found() const { return _found; }

private:
    static constexpr std::size_t longest = 4095;

    QSet<QString> _wanted;
    // What tells most others apart: lengths in bytes (all that are longer count as the longest) and first bytes.
    std::bitset<longest + 1> _lengths;
    std::bitset<256> _firstBytes;
    QHash<QString, KDRBookmarkPtr> _found;
};
