#pragma once

#include "platform/widgets/OutlineItem.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QModelIndexList>
#include <memory>
#include <unordered_set>
#include <vector>

class OutlineView;
class OutlineViewDataSource;

// The rows of an outline view. A row is made when somebody asks for more than its index, its item is fetched when
// somebody asks for the item, and a folder's children are counted when it is opened. An index points to the row above
// it, so that those of a long list cost nothing.
//
// Every row knows how many rows are shown below it, so that flat row numbers (over all that is open) and indexes are
// turned into each other without walking the list.
class OutlineModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    explicit OutlineModel(OutlineView &view);
    ~OutlineModel() override;

    OutlineViewDataSource *dataSource() const { return _source; }
    void setDataSource(OutlineViewDataSource *source);

    // Forgets all rows.
    void reload();
    // Asks again for every row that shows the item, and with `reloadChildren` for all below it that was asked before;
    // rows that show the same items stay the same rows, at their new places. Answers the rows that are new, but whose
    // items stood expanded in another row there before, folders before their contents.
    QModelIndexList reloadItem(const OutlineItemPtr &item, bool reloadChildren);
    // The view has laid itself out again and holds no index of a row that is gone.
    void forgetRemovedRows();

    // What the source has changed already, told to every row that shows the item (none: the root). Children who are
    // not told right, since the source is further on by now, are compared with what it has.

    // New children side by side, the first of them at `index`.
    void insertChildren(const OutlineItemPtr &item, int index, const std::vector<OutlineItemPtr> &children);
    void removeChildren(const OutlineItemPtr &item, int index, int count);
    // They stand in another order, or are others.
    void rearrangeChildren(const OutlineItemPtr &item);
    // How the row looks. False when it can be opened only now, or no more: that takes a reload.
    bool changeItem(const OutlineItemPtr &item);

    // The view tells which rows are open.
    void setExpanded(const QModelIndex &index, bool expanded);

    int numberOfRows() const;
    QModelIndex indexAtRow(int row) const;
    // -1 when the row is within a closed folder.
    int rowOfIndex(const QModelIndex &index) const;
    int levelOfIndex(const QModelIndex &index) const;
    OutlineItemPtr itemOfIndex(const QModelIndex &index) const;
    // The first shown row with that item.
    QModelIndex indexOfItem(const OutlineItemPtr &item) const;
    // The same for many, in their order; not valid for one that has no row.
    QModelIndexList indexesOfItems(const std::vector<OutlineItemPtr> &items) const;
    bool isExpanded(const QModelIndex &index) const;
    // Whether any row that shows the item (none: the root) has asked for its children.
    bool isLoaded(const OutlineItemPtr &item) const;
    // Of the rows that are shown, from the top to the bottom.
    std::vector<OutlineItemPtr> expandedItems() const;
    // Those, with what stands open in closed folders and comes back when they are opened, and these folders themselves;
    // all before their contents.
    std::vector<OutlineExpansion> expansions() const;
    // The same for a row and what is below it.
    std::vector<OutlineExpansion> expansionsOf(const QModelIndex &index) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    Qt::DropActions supportedDropActions() const override;

private:
    struct Row;
    struct Branch;
    struct Reload;
    struct Change;

    Row *rowOf(const QModelIndex &index) const;
    QModelIndex indexOf(const Row &row) const;
    bool isExpandable(const QModelIndex &index) const;
    Row &childOf(Row &parent, int index) const;
    OutlineItemPtr fetch(const Row &parent, int index) const;
    int placeInSource(const Row &parent, int index) const;
    void ask(Row &row) const;
    void adopt(Row &row, OutlineItemPtr item) const;
    void enter(Row &row) const;
    void enterBelow(Row &row) const;
    Row *rowsWithItem(const OutlineItemPtr &item) const;
    void disown(Row &row) const;
    int countInSource(const Row &row) const;
    void count(Row &row) const;
    void askHowMade(Row &row) const;
    void askShownBelow(Row &row) const;
    using Wanted = std::unordered_set<const OutlineItem *>;
    void askMadeChildren(Row &row, const Wanted &items) const;
    QModelIndex indexOfAskedItem(const OutlineItemPtr &item) const;
    static int shownBelow(const Row &row);
    static void sumUp(Row &row);
    static void sumUpFrom(Row *row);
    static void number(const Row &parent);
    static int indexInParent(const Row &row);
    static int placeInParent(const Row &row);
    static int flatRow(const Row &row);

    static void appendExpanded(const Row &row, std::vector<OutlineItemPtr> &items);
    static void appendExpansions(const Row &row, std::vector<OutlineExpansion> &expansions);
    static void appendExpansionsOf(const Row &row, std::vector<OutlineExpansion> &expansions);
    static int depth(const Row &row);
    std::vector<Row *> rowsShowing(const OutlineItemPtr &item) const;
    void learnExpandable(Row &row);
    std::vector<Row *> rowsInStep(const OutlineItemPtr &item, int index, int more);
    void insertRows(Row &row, Change &change, const std::vector<OutlineItemPtr> &children);
    void removeRows(Row &row, Change &change);
    void rearrange(Row &row);
    void disownBelow(Row &row) const;
    static void collectExpanded(const Row &row, Reload &reload);
    void refresh(Row &row, Reload &reload);
    static void collectOpen(Row &row);
    void replaceChildren(Row &row, Reload &reload);
    void placeAsAsked(Row &row, std::vector<std::unique_ptr<Row>> &old, Reload &reload);
    void placeAmongMade(Row &row, std::vector<std::unique_ptr<Row>> &old);
    void collectPersistent(Reload &reload) const;
    void bury(std::unique_ptr<Row> row, Reload &reload);
    void buryBelow(Row &row, Reload &reload);
    void collectReopened(Row &row, bool isOpen, Reload &reload);
    void movePersistentIndexes(const Reload &reload);

    OutlineView &_view;
    OutlineViewDataSource *_source = nullptr;
    // Made on demand, by calls that only look.
    mutable std::unique_ptr<Row> _root;
    std::unique_ptr<Row> _nothing;                         // stands for the rows of indexes that are out of date
    mutable QHash<const OutlineItem *, Row *> _rowsByItem; // rows with the same item are chained
    mutable bool _hasTable = false;
    mutable bool _allShownAsked = false;
    const Change *_change = nullptr; // that not all rows have followed yet
    std::vector<std::unique_ptr<Row>> _removed;
};
