#pragma once

#include "model/ItemFileReading.h"
#include "model/KDRBookmark.h"
#include "model/LazyChildren.h"
#include "model/UnknownEntries.h"

#include <QHash>
#include <functional>
#include <span>

// An item that holds other items, in order. Its tree is what a list shows, and what the item file keeps:
//
//     auto root = WayfoldBookmarkFolder::bookmarkFromDictionaryFile(path);
//     root->addChild(WayfoldBookmarkNote::bookmarkWithTitleAndNote("Milk", "two bottles"));
//     root->writeDictionaryFile(path);
//
// Whatever answers true to isFolder() is a WayfoldBookmarkFolder.
class WayfoldBookmarkFolder : public KDRBookmark
{
public:
    using KDRBookmark::KDRBookmark;
    WayfoldBookmarkFolder() = default;
    // Takes a tree of any depth apart without recursion.
    ~WayfoldBookmarkFolder() override;

    static WayfoldBookmarkFolderPtr bookmarkWithTitle(const QString &title);
    static WayfoldBookmarkFolderPtr bookmarkFromDictionary(const QVariantMap &dictionary);
    // An empty folder without a title when the file is missing or unreadable.
    static WayfoldBookmarkFolderPtr bookmarkFromDictionaryFile(const QString &path);
    // The same, and says how the reading went unless `reading` is null.
    static WayfoldBookmarkFolderPtr readDictionaryFile(const QString &path, ItemFileReading *reading);
    // Asks the user for a new folder; none when that was cancelled.
    static WayfoldBookmarkFolderPtr newViaDialog();
    // The item as a folder; none for items that are not.
    static WayfoldBookmarkFolderPtr fromItem(const KDRBookmarkPtr &item);

    void init() override;
    void initFromDictionary(const QVariantMap &dictionary);

    // The observer is told of what changes in this folder and below it, until it is removed; it has to be before it
    // goes. Not owned. Told once, however often it was added.
    void addObserver(TreeObserver *observer);
    void removeObserver(TreeObserver *observer);

    // The text that the smart folders in this folder search for: its own search string, or its title when there is
    // none or an empty one.
    QString filterString() const;
    virtual void setFilterString(const QString &filterString);

    const std::vector<KDRBookmarkPtr> &children() const;
    unsigned childCount() const { return _lazy ? _lazy->count() : unsigned(_children.size()); }
    bool isEmpty() const { return _lazy ? _lazy->isEmpty() : _children.empty(); }
    // Gives an empty folder children that are made when they are asked for.
    void setLazyChildren(const std::shared_ptr<LazyChildren> &children);
    // With all else that the folder has.
    WayfoldBookmarkFolderPtr copyWithoutChildren() const;
    // Null when they are, or have become, ordinary ones.
    const std::shared_ptr<LazyChildren> &lazyChildren() const { return _lazy; }
    // The children that somebody may know: all but the lazy ones that nobody has asked for yet.
    std::vector<KDRBookmarkPtr> madeChildren() const;
    // The same with their indexes, ascending.
    std::vector<std::pair<unsigned, KDRBookmarkPtr>> madeChildrenWithIndexes() const;
    // -1 when the item is none of those.
    int indexOfMadeChild(const KDRBookmark &child) const;
    bool isFolderAtIndex(unsigned index) const;
    // Whether there may be folders among lazy children.
    bool mayHaveLazyFolders() const { return _lazy && _lazy->hasFolders(); }
    // Appends the item and becomes its parent; none is ignored. An item that another folder holds stays there too.
    void addChild(const KDRBookmarkPtr &child);
    // Before the child at that index: a negative one is the front, one past the last child the end.
    void addChildAtIndex(const KDRBookmarkPtr &child, int index);
    // The same for several, side by side in that order; none is to be among them.
    void addChildrenAtIndex(const std::vector<KDRBookmarkPtr> &children, int index);
    // Every occurrence of that very item; of items equal to it when it is not there itself. The item keeps its parent.
    bool removeChild(const KDRBookmarkPtr &child);
    // Every occurrence of those very items, in one walk.
    void removeChildren(const std::vector<KDRBookmarkPtr> &children);
    enum class Parent { Same, ThisFolder };
    // What the folder holds from now on; none is to be among it. What it held before and holds again is told to have
    // moved at most; what is new keeps its parent or gets this one.
    void setChildren(const std::vector<KDRBookmarkPtr> &children, Parent parent);
    void removeAllChildren();
    // What remains, at every depth, is folders.
    void removeAllLeafChildren();
    // The same, and lazy folders that nobody has seen go as well.
    void removeAllButKnownFolders();
    // One level: a folder that becomes empty by this stays until the next call.
    void removeEmptySubfolders();
    // The direct children.
    void sortChildrenByTitle();
    void sortChildrenByTimestampDescending();

    unsigned deepChildCount() const;
    // Direct children that belong into the item file, and all that is below those that are folders.
    unsigned persistentChildCount() const;
    // The last child for an index past it; none when there are no children.
    KDRBookmarkPtr childAtIndex(unsigned index) const;
    KDRBookmarkPtr lastChild() const;
    int indexOfChild(const KDRBookmark &child) const override;
    // In one walk over the tree, this folder included: the first item of each identifier that is there.
    QHash<QString, KDRBookmarkPtr> itemsWithUUIDs(const QStringList &uuids);
    // The first direct child of exactly that title.
    KDRBookmarkPtr childWithTitle(const QString &title) const;

    // Appends "Related Bookmarks" and "Related History", unless the user has switched them off.
    void addAutoFolders();
    // Removes every direct child that is a smart folder.
    void removeAutoFolders();

    // Reads a dictionary of any kind, and appends the item that it stands for. Without `insert` a folder's dictionary
    // replaces this folder's contents instead. Nothing comes of unknown kinds and items without a title.
    void parseBookmarkDictionaryInsert(const QVariantMap &dictionary, bool insert);
    // Appends an entry of the browser's history file, unless it has no title or no address.
    void parseHistoryDictionary(const QVariantMap &dictionary);
    // False, with the reason in the log, when the file could not be written; the old one is whole then.
    bool writeDictionaryFile(const QString &path) const;
    // What that writes; empty when there is no such form, as for folders that are nested too deep to be read again.
    QByteArray dictionaryFileContents() const;

    Type type() const override { return FolderType; }
    QString typeDescription() const override { return QStringLiteral("Subfolder"); }
    bool isFolder() const override { return true; }
    WayfoldBookmarkFolderPtr asFolder() override;
    // Whether it is a smart folder.
    virtual bool isAutoFolder() const { return false; }
    QVariant value() const override { return title(); }
    QString valueAsString() const override { return title(); }
    KDRBookmarkPtr findByUUID(const QString &uuid) override;
    void appendMatches(const TextSearch &search, std::vector<KDRBookmarkPtr> &found) override;
    // Refreshes the folders among the direct children.
    bool refresh() override;
    void loadFromDictionary(const QVariantMap &dictionary) override;
    // The entries that make no item, too; those that make one stand for the children, in order.
    void keepUnknown(const QVariantMap &dictionary) override;
    int depthOfUnknown() const override;
    void writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const override;
    // A folder without a search string of its own equals none, not even itself.
    bool isEqual(const KDRBookmark &other) const override;
    using KDRBookmark::isEqual;
    std::shared_ptr<Image> imageForCellSize(const QSizeF &size) override;
    bool editViaDialog() override;

    QString classNameForCoder() const override { return QStringLiteral("WayfoldBookmarkFolder"); }
    void encodeWithCoder(KeyedArchiver &coder) const override;
    void initWithCoder(const KeyedUnarchiver &coder) override;

protected:
    KDRBookmarkPtr makeNew() const override;
    bool isSameKindAs(const KDRBookmark &other) const override;
    void copyTo(KDRBookmark &copy) const override;
    const TreeTelling::Listeners &ownListeners() const override { return _listeners; }
    // Appends an item that is not to know this folder as its parent.
    void appendWithoutParent(const KDRBookmarkPtr &child);
    static std::vector<KDRBookmarkPtr> sortedByTitle(const std::vector<KDRBookmarkPtr> &items);

    // Loads the image anew unless it is there and this folder was last shown at that cell size: "<name>16" for cells up
    // to 32 high, "<name>" for higher ones.
    void ensureIconLoaded(std::shared_ptr<Image> &image, const QString &name, const QSizeF &size);

private:
    using IsOne = std::function<bool(const KDRBookmarkPtr &)>;
    struct Run
    {
        int first = 0;
        int count = 0;
    };

    void settle() const;
    void tellWhile(TreeTelling::Change change, const std::function<void()> &apply);

    void insert(std::span<const KDRBookmarkPtr> items, int index, Parent parent);
    bool removeWhere(const IsOne &isOne);
    void removeRun(Run run);
    void gatherAtEnd(const IsOne &isOne);
    Run lastRunBefore(int end, const IsOne &isOne) const;
    void reorder(const std::vector<int> &from);
    void replace(const std::vector<KDRBookmarkPtr> &children, const std::shared_ptr<LazyChildren> &lazy, Parent parent);
    void addMissing(const std::vector<KDRBookmarkPtr> &children, Parent parent);
    void orderAs(const std::vector<KDRBookmarkPtr> &children);
    void takeChildren(std::vector<KDRBookmarkPtr> &taken);
    std::vector<KDRBookmarkPtr> madeFolders() const;
    void hold(const KDRBookmarkPtr &item, Parent parent);
    void letGo(const KDRBookmarkPtr &item);

    void forEachFolder(const std::function<void(WayfoldBookmarkFolder &)> &visit);
    bool isTooDeepToBeSaved() const;

    const KDRBookmarkPtr &madeChild(unsigned index) const;
    std::vector<KDRBookmarkPtr> &ownChildren();
    void keepMadeFolders();
    // All but the children.
    void copyFieldsTo(KDRBookmark &copy) const;
    void writeFieldsTo(QVariantMap &dictionary) const;
    void keepUnknownEntries(const QVariantList &entries);
    // Around each child, in order; none where nothing is unknown.
    UnknownEntries::Places unknownPlaces() const;
    void walkFor(UUIDSearch &search);
    std::vector<KDRBookmarkPtr> itemsThatMayBe(const UUIDSearch &search);

    // As long as there are lazy ones: empty while none of them is made, then null for those that are not.
    mutable std::vector<KDRBookmarkPtr> _children;
    std::shared_ptr<LazyChildren> _lazy;
    TreeTelling::Listeners _listeners;
    QSizeF _lastIconCellSize = QSizeF(0, 0);
    QString _filterString;
    std::unique_ptr<UnknownEntries> _unknownEntries; // null: there are none
};
