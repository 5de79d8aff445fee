#include "platform/widgets/OutlineModel.h"

#include "platform/widgets/OutlineViewDataSource.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

struct OutlineModel::Row
{
    Row *parent = nullptr; // none: the invisible root
    OutlineItemPtr item;
    Row *nextWithItem = nullptr;
    int index = 0;  // among its siblings, once these are numbered
    int before = 0; // when open: the rows shown below those open siblings that come before it
    bool asked = false;
    bool expandable = false;
    bool expanded = false;
    std::unique_ptr<Branch> branch; // none until the children are counted
};

struct OutlineModel::Branch
{
    std::vector<std::unique_ptr<Row>> children; // null until somebody asks for one
    std::vector<Row *> open;                    // the expanded ones, ascending
    std::size_t numbered = 0;                   // how many of the children, from the first, know their index
    int shown = 0;                              // the rows shown below when this branch is open
    bool isMade = false;                        // by the source, as it is asked
    bool areLeaves = false;                     // what is made so; false: not known
};

// What the source has changed, and the rows that have not followed yet.
struct OutlineModel::Change
{
    std::vector<Row *> behind;
    int index;
    int inserted;
    int removed;
};

struct OutlineModel::Reload
{
    std::unordered_set<const OutlineItem *> expanded;
    std::unordered_set<const Row *> fresh;
    std::unordered_set<const Row *> dead;
    QModelIndexList persistent;
    std::vector<const Row *> persistentRows;
    QModelIndexList reopened;
};

OutlineModel::OutlineModel(OutlineView &view)
    : _view(view)
    , _root(std::make_unique<Row>())
    , _nothing(std::make_unique<Row>())
{
    _nothing->asked = true;
    _nothing->parent = _root.get();
    _root->asked = _root->expandable = _root->expanded = true;
}

OutlineModel::~OutlineModel() = default;

void OutlineModel::setDataSource(OutlineViewDataSource *source)
{
    beginResetModel();
    _source = source;
    _rowsByItem.clear();
    _hasTable = false;
    _removed.clear();
    _root->branch.reset();
    _allShownAsked = false;
    endResetModel();
}

void OutlineModel::reload()
{
    setDataSource(_source);
}

// --- Rows -----------------------------------------------------------------------------------------------------------

OutlineModel::Row *OutlineModel::rowOf(const QModelIndex &index) const
{
    if (!index.isValid())
        return _root.get();
    auto *parent = static_cast<Row *>(index.internalPointer());
    const bool isThere = parent->branch && index.row() < int(parent->branch->children.size());
    return isThere ? &childOf(*parent, index.row()) : _nothing.get();
}

QModelIndex OutlineModel::indexOf(const Row &row) const
{
    return row.parent ? createIndex(indexInParent(row), 0, row.parent) : QModelIndex();
}

// The caller has counted the parent's children and asks for one of them.
OutlineModel::Row &OutlineModel::childOf(Row &parent, int index) const
{
    std::unique_ptr<Row> &child = parent.branch->children[std::size_t(index)];
    if (!child) {
        child = std::make_unique<Row>();
        child->parent = &parent;
        child->index = index;
    }
    return *child;
}

OutlineItemPtr OutlineModel::fetch(const Row &parent, int index) const
{
    const int place = placeInSource(parent, index);
    return _source && place >= 0 ? _source->outlineViewChildOfItem(_view, place, parent.item) : nullptr;
}

// Where the source has the child now; -1 when it is gone.
int OutlineModel::placeInSource(const Row &parent, int index) const
{
    const bool isBehind =
        _change && std::find(_change->behind.begin(), _change->behind.end(), &parent) != _change->behind.end();
    if (!isBehind || index < _change->index)
        return index;
    return index < _change->index + _change->removed ? -1 : index + _change->inserted - _change->removed;
}

void OutlineModel::ask(Row &row) const
{
    if (row.asked)
        return;
    ask(*row.parent);
    adopt(row, fetch(*row.parent, indexInParent(row)));
}

void OutlineModel::adopt(Row &row, OutlineItemPtr item) const
{
    row.asked = true;
    row.item = std::move(item);
    if (!row.item)
        return;
    row.expandable = _source->outlineViewIsItemExpandable(_view, row.item);
    if (_hasTable)
        enter(row);
}

void OutlineModel::enter(Row &row) const
{
    Row *&first = _rowsByItem[row.item.get()];
    row.nextWithItem = first;
    first = &row;
}

void OutlineModel::enterBelow(Row &row) const
{
    if (!row.branch)
        return;
    for (const std::unique_ptr<Row> &child : row.branch->children) {
        if (!child)
            continue;
        if (child->item)
            enter(*child);
        enterBelow(*child);
    }
}

// The first of the rows that were asked and have that item. Large lists are often filled and never searched, so the
// table of items is made when it is first needed.
OutlineModel::Row *OutlineModel::rowsWithItem(const OutlineItemPtr &item) const
{
    if (!_hasTable) {
        _hasTable = true;
        enterBelow(*_root);
    }
    return item ? _rowsByItem.value(item.get()) : nullptr;
}

// The row's item is gone.
void OutlineModel::disown(Row &row) const
{
    if (!row.item)
        return;
    if (!_hasTable) {
        row.item.reset();
        return;
    }
    const auto found = _rowsByItem.find(row.item.get());
    Row **link = &*found;
    while (*link != &row)
        link = &(*link)->nextWithItem;
    *link = row.nextWithItem;
    if (!*found)
        _rowsByItem.erase(found);
    row.item.reset();
}

void OutlineModel::disownBelow(Row &row) const
{
    disown(row);
    if (!row.branch)
        return;
    for (const std::unique_ptr<Row> &child : row.branch->children) {
        if (child)
            disownBelow(*child);
    }
}

int OutlineModel::countInSource(const Row &row) const
{
    if (!_source || !row.expandable)
        return 0;
    return std::max(0, _source->outlineViewNumberOfChildrenOfItem(_view, row.item));
}

void OutlineModel::count(Row &row) const
{
    if (row.branch)
        return;
    ask(row);
    const int children = countInSource(row);
    row.branch = std::make_unique<Branch>();
    row.branch->children.resize(std::size_t(children));
    row.branch->numbered = row.branch->children.size();
    row.branch->shown = children;
    askHowMade(row);
}

void OutlineModel::askHowMade(Row &row) const
{
    row.branch->isMade = _source && _source->outlineViewMakesChildrenOfItem(_view, row.item);
    row.branch->areLeaves = row.branch->isMade && _source->outlineViewMakesLeavesOfItem(_view, row.item);
}

void OutlineModel::askShownBelow(Row &row) const
{
    count(row);
    for (int i = 0; i < int(row.branch->children.size()) && !row.branch->isMade; ++i)
        ask(childOf(row, i));
    for (Row *child : row.branch->open)
        askShownBelow(*child);
}

// The same for the rows of these items, where not all items are there to be asked for.
void OutlineModel::askMadeChildren(Row &row, const Wanted &items) const
{
    if (row.branch->isMade) {
        for (const auto &[index, item] : _source->outlineViewMadeChildrenOfItem(_view, row.item)) {
            if (index < int(row.branch->children.size()) && items.count(item.get()))
                ask(childOf(row, index));
        }
    }
    for (Row *child : row.branch->open)
        askMadeChildren(*child, items);
}

// --- Flat row numbers -----------------------------------------------------------------------------------------------

int OutlineModel::shownBelow(const Row &row)
{
    return row.expanded && row.branch ? row.branch->shown : 0;
}

void OutlineModel::sumUp(Row &row)
{
    int sum = 0;
    for (Row *child : row.branch->open) {
        child->before = sum;
        sum += shownBelow(*child);
    }
    row.branch->shown = int(row.branch->children.size()) + sum;
}

// Brings the counts of a row and of all above it up to date.
void OutlineModel::sumUpFrom(Row *row)
{
    for (; row; row = row->parent)
        sumUp(*row);
}

// Rows that come or go change the index of those behind them, which are numbered again when somebody asks.
void OutlineModel::number(const Row &parent)
{
    if (!parent.branch)
        return;
    Branch &branch = *parent.branch;
    for (; branch.numbered < branch.children.size(); ++branch.numbered) {
        if (Row *child = branch.children[branch.numbered].get())
            child->index = int(branch.numbered);
    }
}

int OutlineModel::indexInParent(const Row &row)
{
    number(*row.parent);
    return row.index;
}

// How many rows are shown between the parent's row and this one.
int OutlineModel::placeInParent(const Row &row)
{
    number(*row.parent);
    const std::vector<Row *> &open = row.parent->branch->open;
    const auto next = std::lower_bound(open.begin(), open.end(), row.index,
                                       [](const Row *sibling, int index) { return sibling->index < index; });
    if (next == open.begin())
        return row.index;
    const Row &last = **std::prev(next);
    return row.index + last.before + shownBelow(last);
}

int OutlineModel::flatRow(const Row &row)
{
    int flat = -1;
    for (const Row *step = &row; step->parent; step = step->parent) {
        if (step != &row && !step->expanded)
            return -1;
        flat += 1 + placeInParent(*step);
    }
    return flat;
}

int OutlineModel::numberOfRows() const
{
    count(*_root);
    return _root->branch->shown;
}

QModelIndex OutlineModel::indexAtRow(int row) const
{
    if (row < 0 || row >= numberOfRows())
        return {};
    Row *parent = _root.get();
    int place = row;
    while (true) {
        number(*parent);
        const std::vector<Row *> &open = parent->branch->open;
        const auto next = std::upper_bound(open.begin(), open.end(), place,
                                           [](int at, const Row *child) { return at < child->index + child->before; });
        if (next == open.begin())
            return indexOf(childOf(*parent, place));
        Row &last = **std::prev(next);
        const int below = place - (last.index + last.before);
        if (below == 0)
            return indexOf(last);
        if (below > shownBelow(last))
            return indexOf(childOf(*parent, place - last.before - shownBelow(last)));
        parent = &last;
        place = below - 1;
    }
}

int OutlineModel::rowOfIndex(const QModelIndex &index) const
{
    return index.isValid() ? flatRow(*rowOf(index)) : -1;
}

int OutlineModel::levelOfIndex(const QModelIndex &index) const
{
    int level = -1;
    for (const Row *row = rowOf(index); row->parent; row = row->parent)
        ++level;
    return level;
}

OutlineItemPtr OutlineModel::itemOfIndex(const QModelIndex &index) const
{
    if (!index.isValid())
        return nullptr;
    Row &row = *rowOf(index);
    ask(row);
    return row.item;
}

QModelIndex OutlineModel::indexOfItem(const OutlineItemPtr &item) const
{
    return indexesOfItems({item}).value(0);
}

QModelIndexList OutlineModel::indexesOfItems(const std::vector<OutlineItemPtr> &items) const
{
    if (!_allShownAsked) {
        askShownBelow(*_root);
        _allShownAsked = true;
    }
    Wanted wanted;
    for (const OutlineItemPtr &item : items) {
        if (item && !rowsWithItem(item))
            wanted.insert(item.get());
    }
    if (!wanted.empty())
        askMadeChildren(*_root, wanted);
    QModelIndexList indexes;
    indexes.reserve(qsizetype(items.size()));
    for (const OutlineItemPtr &item : items)
        indexes.append(indexOfAskedItem(item));
    return indexes;
}

QModelIndex OutlineModel::indexOfAskedItem(const OutlineItemPtr &item) const
{
    const Row *found = nullptr;
    int first = numberOfRows();
    for (const Row *row = rowsWithItem(item); row; row = row->nextWithItem) {
        const int flat = flatRow(*row);
        if (flat >= 0 && flat < first) {
            first = flat;
            found = row;
        }
    }
    return found ? indexOf(*found) : QModelIndex();
}

bool OutlineModel::isExpanded(const QModelIndex &index) const
{
    const Row *row = rowOf(index);
    return row->expanded && row->expandable;
}

std::vector<OutlineItemPtr> OutlineModel::expandedItems() const
{
    std::vector<OutlineItemPtr> items;
    appendExpanded(*_root, items);
    return items;
}

void OutlineModel::appendExpanded(const Row &row, std::vector<OutlineItemPtr> &items)
{
    if (!row.branch)
        return;
    for (const Row *child : row.branch->open) {
        if (child->expandable)
            items.push_back(child->item);
        appendExpanded(*child, items);
    }
}

std::vector<OutlineExpansion> OutlineModel::expansions() const
{
    std::vector<OutlineExpansion> expansions;
    appendExpansions(*_root, expansions);
    return expansions;
}

void OutlineModel::appendExpansions(const Row &row, std::vector<OutlineExpansion> &expansions)
{
    if (!row.branch)
        return;
    for (const std::unique_ptr<Row> &child : row.branch->children) {
        if (child)
            appendExpansionsOf(*child, expansions);
    }
}

void OutlineModel::appendExpansionsOf(const Row &row, std::vector<OutlineExpansion> &expansions)
{
    if (!row.branch || !row.expandable)
        return;
    const std::size_t own = expansions.size();
    expansions.push_back({row.item, row.expanded});
    appendExpansions(row, expansions);
    if (!row.expanded && expansions.size() == own + 1)
        expansions.pop_back();
}

std::vector<OutlineExpansion> OutlineModel::expansionsOf(const QModelIndex &index) const
{
    std::vector<OutlineExpansion> expansions;
    appendExpansionsOf(*rowOf(index), expansions);
    return expansions;
}

void OutlineModel::setExpanded(const QModelIndex &index, bool expanded)
{
    Row &row = *rowOf(index);
    if (!row.parent || row.expanded == expanded)
        return;
    count(row);
    row.expanded = expanded;
    number(*row.parent);
    std::vector<Row *> &open = row.parent->branch->open;
    const auto place = std::lower_bound(open.begin(), open.end(), row.index,
                                        [](const Row *sibling, int at) { return sibling->index < at; });
    if (expanded)
        open.insert(place, &row);
    else
        open.erase(place);
    sumUpFrom(row.parent);
    if (expanded && _allShownAsked)
        askShownBelow(row);
}

// --- Reloading ------------------------------------------------------------------------------------------------------

QModelIndexList OutlineModel::reloadItem(const OutlineItemPtr &item, bool reloadChildren)
{
    if (!reloadChildren && changeItem(item))
        return {};
    std::vector<Row *> rows = rowsShowing(item);

    // A row below another one that shows the same item is reloaded with that one.
    const auto isInner = [&item](const Row *row) {
        for (const Row *above = row->parent; above; above = above->parent) {
            if (above->item == item)
                return true;
        }
        return false;
    };
    rows.erase(std::remove_if(rows.begin(), rows.end(), isInner), rows.end());

    Reload reload;
    Q_EMIT layoutAboutToBeChanged();
    collectPersistent(reload);
    for (Row *row : rows) {
        collectExpanded(*row, reload);
        refresh(*row, reload);
        sumUpFrom(row->parent);
    }
    for (Row *row : rows)
        collectReopened(*row, row->expanded, reload);
    _allShownAsked = false;
    movePersistentIndexes(reload);
    Q_EMIT layoutChanged();
    return reload.reopened;
}

void OutlineModel::forgetRemovedRows()
{
    _removed.clear();
}

bool OutlineModel::changeItem(const OutlineItemPtr &item)
{
    const std::vector<Row *> rows = rowsShowing(item);
    const bool isSameShape = std::all_of(rows.begin(), rows.end(), [&](const Row *row) {
        return row->expandable == _source->outlineViewIsItemExpandable(_view, item);
    });
    if (!isSameShape)
        return false;
    for (const Row *row : rows)
        Q_EMIT dataChanged(indexOf(*row), indexOf(*row));
    return true;
}

void OutlineModel::collectExpanded(const Row &row, Reload &reload)
{
    if (!row.branch)
        return;
    for (const Row *child : row.branch->open) {
        reload.expanded.insert(child->item.get());
        collectExpanded(*child, reload);
    }
    // A closed folder remembers what was open in it.
    for (const std::unique_ptr<Row> &child : row.branch->children) {
        if (child && !child->expanded)
            collectExpanded(*child, reload);
    }
}

void OutlineModel::refresh(Row &row, Reload &reload)
{
    row.expandable = row.item && _source->outlineViewIsItemExpandable(_view, row.item);
    if (!row.branch)
        return;
    replaceChildren(row, reload);
    for (const std::unique_ptr<Row> &child : row.branch->children) {
        if (child && !reload.fresh.count(child.get()))
            refresh(*child, reload);
    }
    collectOpen(row);
}

void OutlineModel::collectOpen(Row &row)
{
    row.branch->open.clear();
    for (const std::unique_ptr<Row> &child : row.branch->children) {
        if (child && child->expanded)
            row.branch->open.push_back(child.get());
    }
    sumUp(row);
}

// Asks for a row's children anew; a child whose item is still there keeps its row.
void OutlineModel::replaceChildren(Row &row, Reload &reload)
{
    std::vector<std::unique_ptr<Row>> old = std::move(row.branch->children);
    row.branch->children = std::vector<std::unique_ptr<Row>>(std::size_t(countInSource(row)));
    row.branch->numbered = row.branch->children.size();
    askHowMade(row);
    if (row.branch->isMade)
        placeAmongMade(row, old);
    else
        placeAsAsked(row, old, reload);
    for (std::unique_ptr<Row> &child : old) {
        if (child)
            bury(std::move(child), reload);
    }
}

void OutlineModel::placeAsAsked(Row &row, std::vector<std::unique_ptr<Row>> &old, Reload &reload)
{
    std::unordered_multimap<const OutlineItem *, std::size_t> places;
    for (std::size_t i = 0; i < old.size(); ++i) {
        if (old[i] && old[i]->item)
            places.emplace(old[i]->item.get(), i);
    }
    for (std::size_t i = 0; !places.empty() && i < row.branch->children.size(); ++i) {
        OutlineItemPtr item = fetch(row, int(i));
        const auto kept = places.find(item.get());
        if (kept == places.end()) {
            Row &child = childOf(row, int(i));
            adopt(child, std::move(item));
            reload.fresh.insert(&child);
            continue;
        }
        row.branch->children[i] = std::move(old[kept->second]);
        row.branch->children[i]->index = int(i);
        places.erase(kept);
    }
}

void OutlineModel::placeAmongMade(Row &row, std::vector<std::unique_ptr<Row>> &old)
{
    std::unordered_map<const OutlineItem *, std::size_t> places;
    for (std::size_t i = 0; i < old.size(); ++i) {
        if (old[i] && old[i]->item)
            places.emplace(old[i]->item.get(), i);
    }
    for (const auto &[index, item] : _source->outlineViewMadeChildrenOfItem(_view, row.item)) {
        const auto kept = places.find(item.get());
        if (kept == places.end() || index >= int(row.branch->children.size()))
            continue;
        std::unique_ptr<Row> &child = row.branch->children[std::size_t(index)];
        child = std::move(old[kept->second]);
        child->index = index;
        places.erase(kept);
    }
}

// A row that is gone stays where it is, without its item, until no view holds an index of it any more.
void OutlineModel::bury(std::unique_ptr<Row> row, Reload &reload)
{
    buryBelow(*row, reload);
    _removed.push_back(std::move(row));
}

void OutlineModel::buryBelow(Row &row, Reload &reload)
{
    reload.dead.insert(&row);
    disown(row);
    if (!row.branch)
        return;
    for (const std::unique_ptr<Row> &child : row.branch->children) {
        if (child)
            buryBelow(*child, reload);
    }
}

// A folder that was moved within what is reloaded has a new row; it is opened again as it was. A folder within itself
// is not, or this would never end.
void OutlineModel::collectReopened(Row &row, bool isOpen, Reload &reload)
{
    if (!row.branch || reload.expanded.empty())
        return;
    for (int i = 0; i < int(row.branch->children.size()); ++i) {
        const bool isNew = !row.branch->children[std::size_t(i)];
        if (isNew && (!isOpen || row.branch->isMade))
            continue;
        Row &child = childOf(row, i);
        ask(child);
        bool reopens =
            (isNew || reload.fresh.count(&child)) && child.expandable && reload.expanded.count(child.item.get());
        for (const Row *above = &row; above && reopens; above = above->parent)
            reopens = above->item != child.item;
        if (reopens) {
            count(child);
            reload.reopened.append(indexOf(child));
        }
        collectReopened(child, reopens || child.expanded, reload);
    }
}

void OutlineModel::collectPersistent(Reload &reload) const
{
    reload.persistent = persistentIndexList();
    for (const QModelIndex &index : std::as_const(reload.persistent))
        reload.persistentRows.push_back(rowOf(index));
}

void OutlineModel::movePersistentIndexes(const Reload &reload)
{
    QModelIndexList moved;
    moved.reserve(reload.persistent.size());
    for (const Row *row : reload.persistentRows)
        moved.append(reload.dead.count(row) ? QModelIndex() : indexOf(*row));
    changePersistentIndexList(reload.persistent, moved);
}

// --- Row by row -----------------------------------------------------------------------------------------------------

int OutlineModel::depth(const Row &row)
{
    int depth = 0;
    for (const Row *above = row.parent; above; above = above->parent)
        ++depth;
    return depth;
}

// Those that were asked. The deepest come first, since what changes in one of them may take those below it away.
std::vector<OutlineModel::Row *> OutlineModel::rowsShowing(const OutlineItemPtr &item) const
{
    if (!item)
        return {_root.get()};
    std::vector<Row *> rows;
    for (Row *row = rowsWithItem(item); row; row = row->nextWithItem)
        rows.push_back(row);
    std::stable_sort(rows.begin(), rows.end(), [](const Row *a, const Row *b) { return depth(*a) > depth(*b); });
    return rows;
}

bool OutlineModel::isLoaded(const OutlineItemPtr &item) const
{
    const std::vector<Row *> rows = rowsShowing(item);
    return std::any_of(rows.begin(), rows.end(), [](const Row *row) { return row->branch != nullptr; });
}

void OutlineModel::learnExpandable(Row &row)
{
    if (!row.parent || row.expandable == _source->outlineViewIsItemExpandable(_view, row.item))
        return;
    row.expandable = !row.expandable;
    Q_EMIT dataChanged(indexOf(row), indexOf(row));
}

// The rows that are to follow a change: they have counted their children before it. When one of them is not where the
// change would find it, all of them are compared with the source, and none is left.
std::vector<OutlineModel::Row *> OutlineModel::rowsInStep(const OutlineItemPtr &item, int index, int more)
{
    std::vector<Row *> rows = rowsShowing(item);
    for (Row *row : rows)
        learnExpandable(*row);
    std::erase_if(rows, [](const Row *row) { return !row->branch; });
    const bool areInStep = std::all_of(rows.begin(), rows.end(), [&](const Row *row) {
        const int count = int(row->branch->children.size());
        return count + more == countInSource(*row) && index + std::max(0, -more) <= count;
    });
    if (areInStep)
        return rows;
    rearrangeChildren(item);
    return {};
}

void OutlineModel::insertChildren(const OutlineItemPtr &item, int index, const std::vector<OutlineItemPtr> &children)
{
    Change change{rowsInStep(item, index, int(children.size())), index, int(children.size()), 0};
    _change = &change;
    while (!change.behind.empty() && !children.empty())
        insertRows(*change.behind.front(), change, children);
    _change = nullptr;
}

void OutlineModel::insertRows(Row &row, Change &change, const std::vector<OutlineItemPtr> &children)
{
    const int index = change.index;
    Branch &branch = *row.branch;
    beginInsertRows(indexOf(row), index, index + int(children.size()) - 1);
    std::vector<std::unique_ptr<Row>> rows(children.size());
    branch.children.insert(branch.children.begin() + index, std::make_move_iterator(rows.begin()),
                           std::make_move_iterator(rows.end()));
    branch.numbered = std::min(branch.numbered, std::size_t(index));
    std::erase(change.behind, &row);
    for (std::size_t i = 0; i < children.size(); ++i)
        adopt(childOf(row, index + int(i)), children[i]);
    _allShownAsked = _allShownAsked && !branch.isMade;
    askHowMade(row);
    sumUpFrom(&row);
    endInsertRows();
}

void OutlineModel::removeChildren(const OutlineItemPtr &item, int index, int count)
{
    Change change{rowsInStep(item, index, -count), index, 0, count};
    _change = &change;
    while (!change.behind.empty() && count > 0)
        removeRows(*change.behind.front(), change);
    _change = nullptr;
}

void OutlineModel::removeRows(Row &row, Change &change)
{
    const int index = change.index;
    const int count = change.removed;
    Branch &branch = *row.branch;
    beginRemoveRows(indexOf(row), index, index + count - 1);
    const auto first = branch.children.begin() + index;
    std::vector<std::unique_ptr<Row>> gone(std::make_move_iterator(first), std::make_move_iterator(first + count));
    branch.children.erase(first, first + count);
    branch.numbered = std::min(branch.numbered, std::size_t(index));
    std::erase(change.behind, &row);
    for (const std::unique_ptr<Row> &child : gone) {
        if (child && child->expanded)
            std::erase(branch.open, child.get());
        if (child)
            disownBelow(*child);
    }
    _allShownAsked = _allShownAsked && !branch.isMade;
    askHowMade(row);
    sumUpFrom(&row);
    endRemoveRows();
}

void OutlineModel::rearrangeChildren(const OutlineItemPtr &item)
{
    for (Row *row : rowsShowing(item)) {
        if (row->item != item)
            continue; // it has gone with another one
        learnExpandable(*row);
        if (row->branch)
            rearrange(*row);
    }
}

// What is still there keeps its row; what is below it is left alone.
void OutlineModel::rearrange(Row &row)
{
    Reload reload;
    Q_EMIT layoutAboutToBeChanged({indexOf(row)});
    collectPersistent(reload);
    replaceChildren(row, reload);
    collectOpen(row);
    sumUpFrom(row.parent);
    _allShownAsked = false;
    movePersistentIndexes(reload);
    Q_EMIT layoutChanged({indexOf(row)});
}

// --- What Qt asks ---------------------------------------------------------------------------------------------------

QModelIndex OutlineModel::index(int row, int column, const QModelIndex &parent) const
{
    if (row < 0 || column != 0)
        return {};
    Row &above = *rowOf(parent);
    count(above);
    if (row >= int(above.branch->children.size()))
        return {};
    return createIndex(row, 0, &above);
}

QModelIndex OutlineModel::parent(const QModelIndex &index) const
{
    return index.isValid() ? indexOf(*static_cast<const Row *>(index.internalPointer())) : QModelIndex();
}

int OutlineModel::rowCount(const QModelIndex &parent) const
{
    Row &row = *rowOf(parent);
    count(row);
    return int(row.branch->children.size());
}

int OutlineModel::columnCount(const QModelIndex & /*parent*/) const
{
    return 1;
}

bool OutlineModel::hasChildren(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return rowCount(parent) > 0;
    return isExpandable(parent);
}

bool OutlineModel::isExpandable(const QModelIndex &index) const
{
    const auto &parent = *static_cast<const Row *>(index.internalPointer());
    const bool isMade = parent.branch && parent.branch->isMade && index.row() < int(parent.branch->children.size());
    if (isMade && parent.branch->areLeaves)
        return false;
    if (isMade && !parent.branch->children[std::size_t(index.row())])
        return _source->outlineViewIsChildExpandable(_view, index.row(), parent.item);
    Row &row = *rowOf(index);
    ask(row);
    return row.expandable;
}

QVariant OutlineModel::data(const QModelIndex &index, int role) const
{
    const bool isDescription = role == Qt::AccessibleDescriptionRole;
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole && !isDescription)
        return {};
    const OutlineItemPtr item = itemOfIndex(index);
    if (!item)
        return QString();
    return isDescription ? _source->outlineViewDescriptionOfItem(_view, item)
                         : _source->outlineViewObjectValueByItem(_view, item);
}

Qt::ItemFlags OutlineModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    const Qt::ItemFlags flags =
        Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    return isExpandable(index) ? flags : flags | Qt::ItemNeverHasChildren;
}

Qt::DropActions OutlineModel::supportedDropActions() const
{
    return Qt::CopyAction | Qt::MoveAction;
}
