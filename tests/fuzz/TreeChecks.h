#pragma once

#include "model/WayfoldBookmarkFolder.h"
#include "platform/files/PropertyList.h"
#include "tests/fuzz/FuzzedFile.h"
#include "tests/support/InstalledKinds.h"

#include <algorithm>

// What must hold of every tree that was read from a file.
namespace TreeChecks
{
// The value as it is after it was written: XML cannot hold all characters.
inline QVariant written(const QVariant &value)
{
    return PropertyList::fromData(PropertyList::toXml(value));
}

// As files: what is no number equals itself there.
inline bool isSame(const QVariant &a, const QVariant &b)
{
    return PropertyList::toXml(a) == PropertyList::toXml(b);
}

inline void checkParents(const WayfoldBookmarkFolderPtr &root)
{
    std::vector<WayfoldBookmarkFolderPtr> pending = {root};
    unsigned count = 0;
    while (!pending.empty()) {
        const WayfoldBookmarkFolderPtr folder = pending.back();
        pending.pop_back();
        require(folder->children().size() == folder->childCount(), "a folder counts its children");
        for (const KDRBookmarkPtr &child : folder->children()) {
            ++count;
            require(child != nullptr, "no child is none");
            require(child->parent() == folder, "a child's parent is its folder");
            require(!child->title().isEmpty(), "every child has a title");
            const bool isContact = child->type() == KDRBookmark::PersonType || child->type() == KDRBookmark::GroupType;
            require(isContact || !child->uuid().isEmpty(), "every child but contacts has an identifier");
            if (const auto sub = WayfoldBookmarkFolder::fromItem(child))
                pending.push_back(sub);
        }
    }
    require(count == root->deepChildCount(), "all descendants are counted");
}

inline void checkSearches(const WayfoldBookmarkFolderPtr &root)
{
    root->bookmarksWithSubstring(QStringLiteral("e"));
    if (root->isEmpty())
        return;
    const KDRBookmarkPtr last = root->lastChild();
    const KDRBookmarkPtr found = root->findByUUID(last->uuid());
    require(last->uuid().isEmpty() || (found && found->uuid() == last->uuid()),
            "what is there is found by its identifier");
    const auto matches = root->bookmarksWithSubstring(last->title());
    require(std::find(matches.begin(), matches.end(), last) != matches.end() || last->title().at(0).isMark() ||
                last->title().at(0).isSurrogate(),
            "an item is found by its title");
}

inline bool holdsGroups(const WayfoldBookmarkFolder &folder)
{
    const std::vector<KDRBookmarkPtr> &children = folder.children();
    return std::any_of(children.begin(), children.end(), [](const KDRBookmarkPtr &child) {
        return child->type() == KDRBookmark::GroupType ||
               (child->isFolder() && holdsGroups(static_cast<const WayfoldBookmarkFolder &>(*child)));
    });
}

inline void checkCopy(const WayfoldBookmarkFolderPtr &root)
{
    root->setFilterString(QStringLiteral("x")); // a folder without a search string equals none
    const auto copy = WayfoldBookmarkFolder::fromItem(root->copy());
    // The copy of a group stands for no card.
    if (!holdsGroups(*root)) {
        if (!root->title().isEmpty())
            require(root->isEqual(copy), "a copy equals its source");
        require(isSame(copy->createDictionary(false), root->createDictionary(false)),
                "a copy is written as its source is");
        checkParents(copy);
    }
    copy->removeAllLeafChildren();
    copy->sortChildrenByTitle();
    copy->removeEmptySubfolders();
}

// Writing and reading again changes nothing but the characters that no file can hold.
inline void checkRereading(const WayfoldBookmarkFolderPtr &root)
{
    static const FuzzedFile file;
    const QVariantMap dictionary = root->createDictionary(true);
    const QByteArray xml = PropertyList::toXml(dictionary);
    if (xml.isEmpty())
        return; // nested too deep to be saved
    file.write(xml);
    ItemFileReading reading;
    const auto again = WayfoldBookmarkFolder::readDictionaryFile(file.path(), &reading);
    require(reading.readable, "what was written can be read");
    require(reading.complete, "what was written is read completely");
    QVariantMap rewritten = again->createDictionary(true);
    // Reading gives a folder its title as its search string when it has none.
    if (root->filterString().isEmpty() || dictionary.value(QStringLiteral("SearchString")).toString().isEmpty())
        rewritten.insert(QStringLiteral("SearchString"), dictionary.value(QStringLiteral("SearchString")));
    require(isSame(rewritten, written(dictionary)), "what was written is what is read");
}
} // namespace TreeChecks
