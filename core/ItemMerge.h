#pragma once

#include <QStringList>
#include <QVariantMap>
#include <functional>

class QDateTime;

// Puts together what two programs have made of one item file, item by item, on the dictionaries that the file holds:
//
//     base      what was read or written last
//     ours      what the tree in memory has become since (createDictionary(true))
//     theirs    what lies in the file now
//
// - What either side has added is there, and what only one has changed is changed. What one has deleted is gone, unless
//   the other has changed it, moved it to another folder, or put or changed something in it: then it stays, a folder
//   with that alone. A folder that was itself changed or moved by the other stays with all that it holds there.
// - Where both have changed the same field of an item, and differently, the file's version stays in its place, and ours
//   stands behind it as a second item, with an identifier of its own; its title is what the caller makes of it. All
//   other fields of both are merged. Of a folder's own fields the file's count, since nothing in it depends on them.
// - An item is where that side has put it that has moved it, and where we have put it when both have. The same holds
//   for the order of a folder (see OrderMerge). Where each side has moved one folder into the other, ours counts.
// - What both have added to the same folder with one identifier, or without one and equal, is one item. So are two new
//   folders of one title at the top level, which are those of one site; the identifier is the file's.
// - Keys, values and kinds that nobody knows are merged as all others.
//
// How items are recognised is said in ItemMatching.
class ItemMerge
{
public:
    // The title of the item that holds our version, from the title that it has here.
    using TitleOfSecond = std::function<QString(const QString &title)>;

    // What becomes of ours, in items.
    struct Report
    {
        int added = 0;
        int removed = 0;
        int changed = 0;
        int moved = 0; // to other folders
        // The titles of second items.
        QStringList seconds;
        // What we had in folders' fields, and as identifiers, that was changed there, too, and does not count.
        QVariantList overruled;
    };

    // All three may be empty: there is nothing yet.
    ItemMerge(const QVariantMap &base, const QVariantMap &ours, const QVariantMap &theirs,
              const TitleOfSecond &titleOfSecond);

    // As it was given.
    const QVariantMap &ours() const { return _ours; }
    // It shares the memory of ours() wherever it says the same.
    const QVariantMap &merged() const { return _merged; }
    const Report &report() const { return _report; }
    // Looks once more, see MergeCheck. Whoever is about to write what does not hold all keeps a copy first.
    bool holdsAll() const;

    // The title with a computer's name and a point in time, in the user's language.
    static QString titleWithOrigin(const QString &title, const QString &computer, const QDateTime &time);

private:
    QVariantMap _base;
    QVariantMap _ours;
    QVariantMap _theirs;
    TitleOfSecond _titleOfSecond;
    QVariantMap _merged;
    Report _report;
};
