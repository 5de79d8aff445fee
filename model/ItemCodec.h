#pragma once

#include "model/ItemKinds.h"

// Knows every kind of item: the words by which dictionaries name them, and the names of their classes in archives.
class ItemCodec : public ItemKinds
{
public:
    // Makes the kinds known to items and archives. To be called at start-up, any number of times.
    static void install();

    bool isFolder(const QVariantMap &dictionary) const override;
    bool isItem(const QVariantMap &dictionary) const override;
    std::shared_ptr<KDRBookmark> itemFromDictionary(const QVariantMap &dictionary) const override;
    std::shared_ptr<KDRBookmark> itemFromHistoryDictionary(const QVariantMap &dictionary) const override;
    std::shared_ptr<WayfoldBookmarkURL> linkForURL(const Url &url) const override;
    std::vector<std::shared_ptr<WayfoldBookmarkFolder>> autoFolders() const override;
};
