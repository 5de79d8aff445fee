#pragma once

#include "model/WayfoldBookmarkFolder.h"

class WayfoldAutoFolder;
using WayfoldAutoFolderPtr = std::shared_ptr<WayfoldAutoFolder>;

// A smart folder: it holds copies of what its search string finds elsewhere. It collects them when it is first looked
// into, is never saved, and takes no drops.
class WayfoldAutoFolder : public WayfoldBookmarkFolder
{
public:
    using WayfoldBookmarkFolder::WayfoldBookmarkFolder;

    static WayfoldAutoFolderPtr bookmarkWithTitle(const QString &title);
    static WayfoldAutoFolderPtr bookmarkFromDictionary(const QVariantMap &dictionary);

    void init() override;

    // Whether ensureUpToDate has collected the contents.
    bool isLoaded() const { return _loaded; }
    void ensureUpToDate() override;
    // Collects anew when the folder is loaded.
    void setFilterString(const QString &filterString) override;
    // Replaces the contents by copies of what the search string finds below `root`, folders left out.
    virtual void refreshFromBookmarkRoot(const WayfoldBookmarkFolderPtr &root);

    bool isAutoFolder() const override { return true; }
    bool acceptsDroppedItems() const override { return false; }
    bool canBePersistent() const override { return false; }
    std::shared_ptr<Image> imageForCellSize(const QSizeF &size) override;
    QString classNameForCoder() const override { return QStringLiteral("WayfoldAutoFolder"); }

protected:
    KDRBookmarkPtr makeNew() const override;
    bool isSameKindAs(const KDRBookmark &other) const override;
    // What the search string finds in that tree; nothing in none.
    std::vector<KDRBookmarkPtr> matchesBelow(const WayfoldBookmarkFolderPtr &root) const;
    // A copy of every item that is no folder.
    static std::vector<KDRBookmarkPtr> copiesOfLeaves(const std::vector<KDRBookmarkPtr> &items);
    // Replaces the contents. What is equal to something that is there is that, so that its row stays.
    void collect(const std::vector<KDRBookmarkPtr> &items);

private:
    bool _loaded = false;
};
