#pragma once

#include <QVariantMap>
#include <memory>
#include <vector>

class KDRBookmark;
class Url;
class WayfoldBookmarkFolder;
class WayfoldBookmarkURL;

// Makes items for those who do not know all kinds: a folder does not know what it may hold, nor a link what else a link
// may be. ItemCodec is what is filled in, at start-up.
class ItemKinds
{
public:
    virtual ~ItemKinds() = default;

    // There must be one before any item is read, or any link made.
    static const ItemKinds &current();
    // Not owned.
    static void setCurrent(const ItemKinds *kinds);

    // Whether the dictionary stands for a folder; its title does not matter.
    virtual bool isFolder(const QVariantMap &dictionary) const = 0;
    // Whether the dictionary makes an item: it is of a known kind, and has a title to show.
    virtual bool isItem(const QVariantMap &dictionary) const = 0;
    // None when it does not.
    virtual std::shared_ptr<KDRBookmark> itemFromDictionary(const QVariantMap &dictionary) const = 0;
    // Of an entry of the browser's history file; none without a title or an address.
    virtual std::shared_ptr<KDRBookmark> itemFromHistoryDictionary(const QVariantMap &dictionary) const = 0;
    // A link of the kind that the address asks for, without anything in it.
    virtual std::shared_ptr<WayfoldBookmarkURL> linkForURL(const Url &url) const = 0;
    // Those that belong into each site's folder, in order, without a search string.
    virtual std::vector<std::shared_ptr<WayfoldBookmarkFolder>> autoFolders() const = 0;
};
