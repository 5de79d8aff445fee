#include "core/BackupRestore.h"

#include "core/KDRDrawerBundle.h"
#include "model/ItemDictionary.h"

#include <QDataStream>
#include <QIODevice>
#include <algorithm>

namespace
{
using Items = std::vector<KDRBookmarkPtr>;

// Groups and smart folders are made of their members, and are taken as they are.
WayfoldBookmarkFolderPtr plainFolder(const KDRBookmarkPtr &item)
{
    return item && item->type() == KDRBookmark::FolderType ? WayfoldBookmarkFolder::fromItem(item) : nullptr;
}

Items savedChildren(const WayfoldBookmarkFolder &folder)
{
    Items items;
    for (const KDRBookmarkPtr &child : folder.children()) {
        if (child->canBePersistent())
            items.push_back(child);
    }
    return items;
}

bool isSame(const KDRBookmark &a, const KDRBookmark &b)
{
    return a.createDictionary(true) == b.createDictionary(true);
}

// All but its identifier, which is a fresh one where the file has none.
QByteArray contentsOf(const KDRBookmark &item)
{
    QVariantMap dictionary = item.createDictionary(true);
    dictionary.remove(ItemDictionary::uuidKey);
    QByteArray contents;
    QDataStream stream(&contents, QIODevice::WriteOnly);
    stream << dictionary;
    return contents;
}

// The first item of that identifier that nobody has taken; none for an empty one. Those that share one are taken in
// their order, so that it takes no time to tell them apart.
KDRBookmarkPtr takeFirst(QHash<QString, Items> &present, const QString &identifier)
{
    const auto found = present.find(identifier);
    if (identifier.isEmpty() || found == present.end() || found->empty())
        return nullptr;
    KDRBookmarkPtr taken = found->back();
    found->pop_back();
    return taken;
}

// Front last, for takeFirst().
QHash<QString, Items> byIdentifier(const Items &items)
{
    QHash<QString, Items> sorted;
    for (auto item = items.crbegin(); item != items.crend(); ++item)
        sorted[(*item)->uuid()].push_back(*item);
    return sorted;
}

// Whether an item stands for the wanted one: a folder by its identifier, anything else when it is the same still.
bool isCounterpart(const KDRBookmarkPtr &item, const KDRBookmarkPtr &wanted)
{
    if (plainFolder(item) && plainFolder(wanted))
        return true;
    return isSame(*item, *wanted);
}
void addReversed(WayfoldBookmarkFolder &folder, Items &items, int index)
{
    std::reverse(items.begin(), items.end());
    if (!items.empty())
        folder.addChildrenAtIndex(items, index);
    items.clear();
}
} // namespace

BackupRestore::BackupRestore(KDRDrawerBundle &store) : _store(store) {}

bool BackupRestore::isTop(const WayfoldBookmarkFolder &folder) const
{
    return &folder == _store.bookmarkRoot().get();
}

// --- Replacing ------------------------------------------------------------------------------------------------------

void BackupRestore::replaceWith(const WayfoldBookmarkFolder &backup)
{
    makeLike(*_store.bookmarkRoot(), backup);
    _store.saveBookmarkFile();
    _store.updateAllDrawerContentsExceptFor(nullptr);
}

void BackupRestore::makeLike(WayfoldBookmarkFolder &folder, const WayfoldBookmarkFolder &backup)
{
    Items wanted = savedChildren(backup);
    Items counterparts(wanted.size());
    QHash<QString, Items> present = byIdentifier(savedChildren(folder));
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const KDRBookmarkPtr candidate = takeFirst(present, wanted[i]->uuid());
        if (candidate && isCounterpart(candidate, wanted[i]))
            counterparts[i] = candidate;
    }
    if (isTop(folder))
        pairSites(wanted, counterparts);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const WayfoldBookmarkFolderPtr kept = plainFolder(counterparts[i]);
        const WayfoldBookmarkFolderPtr before = plainFolder(wanted[i]);
        if (kept && kept->title() != before->title())
            kept->setTitle(before->title());
        if (kept && kept->filterString() != before->filterString())
            kept->setFilterString(before->filterString());
        if (kept)
            makeLike(*kept, *before);
        if (counterparts[i])
            wanted[i] = counterparts[i];
        else if (isTop(folder) && before)
            before->addAutoFolders();
    }
    setItems(folder, wanted);
}

// A site has one folder, whatever its identifier: drawers may be showing it. One that is only shown becomes part of the
// tree.
void BackupRestore::pairSites(const Items &wanted, Items &counterparts)
{
    QSet<KDRBookmarkPtr> paired(counterparts.cbegin(), counterparts.cend());
    QHash<QString, KDRBookmarkPtr> sites;
    for (const WayfoldBookmarkFolderPtr &root : {_store.bookmarkRoot(), _store.provisionalBookmarkRoot()}) {
        for (const KDRBookmarkPtr &child : root->children()) {
            if (plainFolder(child) && !paired.contains(child) && !sites.contains(child->title()))
                sites.insert(child->title(), child);
        }
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (counterparts[i] || !plainFolder(wanted[i]))
            continue;
        counterparts[i] = sites.take(wanted[i]->title());
        _store.adoptProvisionalBookmark(counterparts[i]);
    }
}

// What is not saved stays where it is. Of what is there already, only what stands in another order is moved.
void BackupRestore::setItems(WayfoldBookmarkFolder &folder, const Items &wanted)
{
    const Items present = savedChildren(folder);
    QHash<KDRBookmarkPtr, int> places;
    for (std::size_t i = 0; i < present.size(); ++i)
        places.insert(present[i], int(i));
    QSet<KDRBookmarkPtr> staying;
    int last = -1;
    for (const KDRBookmarkPtr &item : wanted) {
        const int place = places.value(item, -1);
        if (place > last) {
            staying.insert(item);
            last = place;
        }
    }
    leaveOnly(folder, {wanted.cbegin(), wanted.cend()}, staying);
    // Before the next that stays; behind the last of them, and what is not saved, at the end.
    int index = int(folder.childCount());
    Items coming;
    for (auto item = wanted.crbegin(); item != wanted.crend(); ++item) {
        if (!staying.contains(*item)) {
            coming.push_back(*item);
            continue;
        }
        addReversed(folder, coming, index);
        while (index > 0 && folder.childAtIndex(unsigned(--index)) != *item) {
        }
    }
    addReversed(folder, coming, index);
}

// Of what is saved. Who shows the folder of a site goes on showing it.
void BackupRestore::leaveOnly(WayfoldBookmarkFolder &folder, const QSet<KDRBookmarkPtr> &wanted,
                              const QSet<KDRBookmarkPtr> &staying)
{
    Items leaving;
    for (const KDRBookmarkPtr &item : savedChildren(folder)) {
        if (staying.contains(item))
            continue;
        leaving.push_back(item);
        const WayfoldBookmarkFolderPtr site = isTop(folder) && !wanted.contains(item) ? plainFolder(item) : nullptr;
        if (!site)
            continue;
        setItems(*site, {});
        _store.provisionalBookmarkRoot()->addChild(site);
    }
    folder.removeChildren(leaving);
    for (const KDRBookmarkPtr &item : leaving)
        _store.releaseProvisionalBookmark(item.get());
}

// --- Adding ---------------------------------------------------------------------------------------------------------

void BackupRestore::add(const WayfoldBookmarkFolder &backup)
{
    indexTrees();
    addInto(*_store.bookmarkRoot(), backup);
    _store.saveBookmarkFile();
    _store.updateAllDrawerContentsExceptFor(nullptr);
}

void BackupRestore::indexTrees()
{
    Items all;
    std::vector<WayfoldBookmarkFolderPtr> folders = {_store.provisionalBookmarkRoot(), _store.bookmarkRoot()};
    while (!folders.empty()) {
        const WayfoldBookmarkFolderPtr folder = folders.back();
        folders.pop_back();
        for (const KDRBookmarkPtr &child : savedChildren(*folder)) {
            all.push_back(child);
            if (plainFolder(child))
                folders.push_back(plainFolder(child));
        }
    }
    _present = byIdentifier(all);
}

// Where its contents belong now: the folder of its identifier, else of its title. None when it has gone.
WayfoldBookmarkFolderPtr BackupRestore::folderFor(const WayfoldBookmarkFolder &folder,
                                                  const WayfoldBookmarkFolder &backup)
{
    if (const WayfoldBookmarkFolderPtr known = plainFolder(takeFirst(_present, backup.uuid())))
        return known;
    if (const WayfoldBookmarkFolderPtr titled = plainFolder(folder.childWithTitle(backup.title())))
        return titled;
    return isTop(folder) ? plainFolder(_store.provisionalBookmarkRoot()->childWithTitle(backup.title())) : nullptr;
}

void BackupRestore::addInto(WayfoldBookmarkFolder &folder, const WayfoldBookmarkFolder &backup)
{
    for (const KDRBookmarkPtr &item : missingIn(folder, backup)) {
        if (const WayfoldBookmarkFolderPtr subfolder = plainFolder(item))
            addFolder(folder, *subfolder);
        else
            folder.addChild(item);
    }
}

// The folders, and whatever has no counterpart. What has an identifier that nothing in the trees has is there all the
// same when the folder holds an item like it.
BackupRestore::Items BackupRestore::missingIn(const WayfoldBookmarkFolder &folder, const WayfoldBookmarkFolder &backup)
{
    Items missing;
    QSet<KDRBookmarkPtr> unknown;
    QSet<KDRBookmarkPtr> paired;
    for (const KDRBookmarkPtr &item : savedChildren(backup)) {
        const KDRBookmarkPtr known = plainFolder(item) ? nullptr : takeFirst(_present, item->uuid());
        if (known)
            paired.insert(known);
        if (known && isSame(*known, *item))
            continue;
        if (known)
            item->createUUID();
        else if (!plainFolder(item))
            unknown.insert(item);
        missing.push_back(item);
    }
    if (unknown.isEmpty())
        return missing;
    QHash<QByteArray, int> others;
    for (const KDRBookmarkPtr &child : savedChildren(folder)) {
        if (!plainFolder(child) && !paired.contains(child))
            ++others[contentsOf(*child)];
    }
    std::erase_if(missing, [&](const KDRBookmarkPtr &item) {
        return unknown.contains(item) && --others[contentsOf(*item)] >= 0;
    });
    return missing;
}

void BackupRestore::addFolder(WayfoldBookmarkFolder &folder, const WayfoldBookmarkFolder &backup)
{
    if (const WayfoldBookmarkFolderPtr present = folderFor(folder, backup)) {
        if (!backup.isEmpty())
            _store.adoptProvisionalBookmark(present);
        addInto(*present, backup);
        return;
    }
    // What was in it may lie elsewhere now.
    const WayfoldBookmarkFolderPtr copy = backup.copyWithoutChildren();
    addInto(*copy, backup);
    if (copy->isEmpty() && !backup.isEmpty())
        return;
    if (isTop(folder))
        copy->addAutoFolders();
    folder.addChild(copy);
}
