#include "platform/widgets/OutlineView.h"

#include "platform/base/NotificationQueue.h"
#include "platform/widgets/OutlineModel.h"
#include "platform/widgets/OutlineViewDataSource.h"
#include "platform/widgets/TextFieldCell.h"
#include "platform/widgets/ToolTipText.h"

#include <QContextMenuEvent>
#include <QDrag>
#include <QHeaderView>
#include <QHelpEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <QtMath>
#include <algorithm>
#include <unordered_set>
#include <utility>

namespace
{
constexpr qreal lineGap = 3;            // between the lines of a list
constexpr int springMilliseconds = 700; // until a folder under a drag opens
constexpr int indicatorHeight = 2;
constexpr std::size_t mostRowsInDragPicture = 8;
constexpr int widestDragPicture = 260;
constexpr qsizetype mostRangesKept = 32; // Qt walks over all ranges of a selection for each row that goes

// What the drag allows of what was answered: a copy may be made by a source that knows only links, and a move may
// become a copy, but nothing is moved away that was to be copied.
Qt::DropAction allowed(Qt::DropAction answer, Qt::DropActions possible)
{
    if (answer == Qt::IgnoreAction || possible.testFlag(answer))
        return answer;
    if (possible.testFlag(Qt::CopyAction))
        return Qt::CopyAction;
    return answer == Qt::CopyAction && possible.testFlag(Qt::LinkAction) ? Qt::LinkAction : Qt::IgnoreAction;
}

// Whether the row goes with these children of the parent: as one of them, or below one.
bool goes(QModelIndex index, const QModelIndex &parent, int first, int last)
{
    while (index.isValid() && index.parent() != parent)
        index = index.parent();
    return index.isValid() && index.row() >= first && index.row() <= last;
}

// The place of the first of those that have kept their order, as most have; -1 when there are none.
int firstInOrder(const std::vector<int> &rows)
{
    std::vector<int> length(rows.size(), 1); // of the longest ascending row of numbers that begins there
    int first = -1;
    for (int i = int(rows.size()) - 1; i >= 0; --i) {
        for (std::size_t next = std::size_t(i) + 1; next < rows.size(); ++next) {
            if (rows[next] > rows[std::size_t(i)])
                length[std::size_t(i)] = std::max(length[std::size_t(i)], length[next] + 1);
        }
        if (first < 0 || length[std::size_t(i)] >= length[std::size_t(first)])
            first = i;
    }
    return first;
}

// Draws the view's rows with its data cell.
class CellDelegate : public QStyledItemDelegate
{
public:
    explicit CellDelegate(OutlineView &view) : QStyledItemDelegate(&view), _view(view) {}

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        OutlineViewDataSource *source = _view.outlineDataSource();
        const OutlineItemPtr item = static_cast<const OutlineModel *>(index.model())->itemOfIndex(index);
        if (!source || !item)
            return;
        TextFieldCell &cell = _view.dataCell();
        // The value first: asking for it may bring the item up to date.
        cell.setStringValue(source->outlineViewObjectValueByItem(_view, item));
        cell.setFont(option.font);
        source->outlineViewWillDisplayCell(_view, cell, item);
        _view.style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, &_view);
        cell.drawWithFrameInView(option.rect, *painter, option);
    }

    // Only the height counts, the same for every row: a list's column is as wide as the list.
    QSize sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex & /*index*/) const override
    {
        const int height = qCeil(_view.rowHeight());
        return {height, height};
    }

private:
    OutlineView &_view;
};
} // namespace

OutlineView::OutlineView(QWidget *parent)
    : QTreeView(parent)
    , _model(new OutlineModel(*this))
    , _dataCell(std::make_unique<TextFieldCell>())
{
    setUniformRowHeights(true);
    setHeaderHidden(true);
    setAlternatingRowColors(false);
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectRows);
    setAllColumnsShowFocus(true);
    setEditTriggers(NoEditTriggers);
    setExpandsOnDoubleClick(false);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextElideMode(Qt::ElideRight);
    setDragDropMode(DragDrop);

    _model->setParent(this);
    setItemDelegate(new CellDelegate(*this));
    // Before Qt's own, which change the selection.
    connect(_model, &QAbstractItemModel::rowsAboutToBeInserted, this, &OutlineView::keepPlace);
    connect(_model, &QAbstractItemModel::rowsAboutToBeRemoved, this, &OutlineView::rowsWillGo);
    connect(_model, &QAbstractItemModel::layoutAboutToBeChanged, this, &OutlineView::keepPlace);
    setModel(_model);
    header()->setStretchLastSection(true);
    connect(this, &QTreeView::expanded, this, [this](const QModelIndex &index) { _model->setExpanded(index, true); });
    connect(this, &QTreeView::collapsed, this, &OutlineView::rowsWereCollapsed);
}

OutlineView::~OutlineView()
{
    // They are children, which go after the rest of this.
    const QList<QDrag *> drags = findChildren<QDrag *>(Qt::FindDirectChildrenOnly);
    for (QDrag *drag : drags)
        drag->disconnect(this);
}

OutlineViewDataSource *OutlineView::outlineDataSource() const
{
    return _model->dataSource();
}

void OutlineView::setOutlineDataSource(OutlineViewDataSource *source)
{
    dropHeld();
    ++_quiet;
    _model->setDataSource(source);
    --_quiet;
}

// --- Rows -----------------------------------------------------------------------------------------------------------

void OutlineView::reloadData()
{
    const bool hadSelection = selectionModel()->hasSelection() || !_heldSelection.empty() || _selectionIsOther;
    endDropTracking();
    dropHeld();
    ++_quiet;
    _model->reload();
    --_quiet;
    if (hadSelection)
        tellSelectionDidChange();
}

void OutlineView::reloadItem(const OutlineItemPtr &item, bool reloadChildren)
{
    if (!item) {
        reloadData();
        return;
    }
    if (!reloadChildren && _model->changeItem(item))
        return;
    const std::vector<OutlineItemPtr> selected = selectedItems();
    ++_quiet;
    const QModelIndexList reopened = _model->reloadItem(item, reloadChildren);
    if (reloadChildren)
        doItemsLayout();
    for (const QModelIndex &index : reopened)
        expand(index);
    --_quiet;
    executeDelayedItemsLayout();
    if (selectedItems() != selected)
        tellSelectionDidChange();
}

int OutlineView::numberOfRows() const
{
    return _model->numberOfRows();
}

OutlineItemPtr OutlineView::itemAtRow(int row) const
{
    return _model->itemOfIndex(_model->indexAtRow(row));
}

int OutlineView::rowForItem(const OutlineItemPtr &item) const
{
    return _model->rowOfIndex(_model->indexOfItem(item));
}

QRect OutlineView::rectOfRow(int row) const
{
    if (row < 0 || row >= numberOfRows())
        return {};
    // The scroll position is right only once a pending layout is done, which the caller cannot see.
    const_cast<OutlineView *>(this)->executeDelayedItemsLayout();
    return {0, row * rowPixels() - verticalOffset(), viewport()->width(), rowPixels()};
}

int OutlineView::rowAtPoint(const QPoint &point) const
{
    const_cast<OutlineView *>(this)->executeDelayedItemsLayout();
    const int y = point.y() + verticalOffset();
    if (y < 0 || point.x() < 0 || point.x() >= viewport()->width())
        return -1;
    const int row = y / rowPixels();
    return row < numberOfRows() ? row : -1;
}

int OutlineView::levelForRow(int row) const
{
    return _model->levelOfIndex(_model->indexAtRow(row));
}

bool OutlineView::isExpandable(const OutlineItemPtr &item) const
{
    OutlineViewDataSource *source = outlineDataSource();
    return source && item && source->outlineViewIsItemExpandable(const_cast<OutlineView &>(*this), item);
}

bool OutlineView::isLoaded(const OutlineItemPtr &item) const
{
    return _model->isLoaded(item);
}

bool OutlineView::isItemExpanded(const OutlineItemPtr &item) const
{
    const QModelIndex index = _model->indexOfItem(item);
    return index.isValid() && _model->isExpanded(index);
}

std::vector<OutlineItemPtr> OutlineView::expandedItems() const
{
    return _model->expandedItems();
}

std::vector<OutlineExpansion> OutlineView::expansions() const
{
    return _model->expansions();
}

void OutlineView::expandItem(const OutlineItemPtr &item)
{
    expand(_model->indexOfItem(item));
}

void OutlineView::expandItems(const std::vector<OutlineItemPtr> &items)
{
    if (items.size() > 1)
        scheduleDelayedItemsLayout(); // until then, what is expanded costs next to nothing
    std::vector<OutlineItemPtr> pending = items;
    std::size_t before = 0;
    do {
        before = pending.size();
        const QModelIndexList indexes = _model->indexesOfItems(pending);
        std::vector<OutlineItemPtr> missing;
        for (std::size_t i = 0; i < pending.size(); ++i) {
            if (indexes[qsizetype(i)].isValid())
                expand(indexes[qsizetype(i)]);
            else
                missing.push_back(std::move(pending[i]));
        }
        pending = std::move(missing);
    } while (!pending.empty() && pending.size() < before);
}

void OutlineView::collapseItem(const OutlineItemPtr &item)
{
    collapse(_model->indexOfItem(item));
}

void OutlineView::restoreExpansions(const std::vector<OutlineExpansion> &expansions)
{
    std::vector<OutlineItemPtr> folders;
    std::unordered_set<const OutlineItem *> open;
    for (const auto &[item, isOpen] : expansions) {
        folders.push_back(item);
        if (isOpen)
            open.insert(item.get());
    }
    expandItems(folders); // what is in a closed one can be opened only while that is open
    for (auto each = expansions.crbegin(); each != expansions.crend(); ++each) {
        if (!open.count(each->item.get())) // an item may have an open and a closed row
            collapseItem(each->item);
    }
}

// What cannot be seen any more is not selected any more, and the keyboard stays where it can be seen.
void OutlineView::rowsWereCollapsed(const QModelIndex &index)
{
    _model->setExpanded(index, false);
    const auto isBelow = [&index](QModelIndex other) {
        while (other.isValid()) {
            if (other == index)
                return true;
            other = other.parent();
        }
        return false;
    };
    QItemSelection hidden;
    for (const QItemSelectionRange &range : selectionModel()->selection()) {
        if (isBelow(range.parent()))
            hidden.append(range);
    }
    if (isBelow(currentIndex().parent()))
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    if (!hidden.isEmpty())
        selectionModel()->select(hidden, QItemSelectionModel::Deselect);
}

void OutlineView::setDataCell(std::unique_ptr<TextFieldCell> cell)
{
    _dataCell = std::move(cell);
    viewport()->update();
}

qreal OutlineView::rowHeight() const
{
    return _rowHeight ? *_rowHeight : QFontMetricsF(font()).height() + lineGap;
}

void OutlineView::setRowHeight(qreal height)
{
    _rowHeight = height;
    scheduleDelayedItemsLayout();
}

int OutlineView::rowPixels() const
{
    return std::max(1, qCeil(rowHeight()));
}

// --- Row by row -----------------------------------------------------------------------------------------------------

void OutlineView::insertItems(const std::vector<OutlineItemPtr> &items, int index, const OutlineItemPtr &parent)
{
    ++_changing;
    _model->insertChildren(parent, index, items);
    --_changing;
    for (const OutlineItemPtr &item : items) {
        const auto held = _heldExpansions.find(item.get());
        if (held == _heldExpansions.end())
            continue;
        const std::vector<OutlineExpansion> expansions = std::move(held->second);
        _heldExpansions.erase(held);
        restoreExpansions(expansions);
    }
}

void OutlineView::removeItems(int count, int index, const OutlineItemPtr &parent)
{
    ++_changing;
    _model->removeChildren(parent, index, count);
    --_changing;
}

// Those that are about to go may be moved to the end first.
void OutlineView::moveItems(const std::vector<int> &from, const OutlineItemPtr &parent)
{
    QPersistentModelIndex moved = placeOfCurrentRow();
    while (moved.isValid() && _model->itemOfIndex(moved.parent()) != parent)
        moved = moved.parent();
    const int before = moved.row();
    ++_changing;
    _model->rearrangeChildren(parent);
    --_changing;
    int below = -1;
    for (int row = 0; row < std::min(moved.row(), int(from.size())); ++row) {
        const int place = from[std::size_t(row)];
        if (place > before && (below < 0 || place < from[std::size_t(below)]))
            below = row;
    }
    if (below < 0)
        return;
    _leftBehind = _model->index(below, 0, moved.parent());
    _settleTimer.start(0, this);
}

// Remembers what is seen; nothing of a list that stands at its very top.
void OutlineView::keepPlace()
{
    setDropIndicator(QRect());
    const int top = verticalScrollBar()->value();
    if (!_place.empty() || top == 0)
        return;
    for (int row = top / rowPixels(); row < numberOfRows(); ++row) {
        const int y = row * rowPixels() - top;
        if (y >= viewport()->height())
            break;
        const QModelIndex index = _model->indexAtRow(row);
        _place.push_back({index, _model->itemOfIndex(index), y});
    }
}

// Scrolls to where what was seen stands as before. A row that went elsewhere by itself takes nothing along. When all
// have gone, they may have come back.
void OutlineView::restorePlace()
{
    const bool haveGone =
        std::all_of(_place.begin(), _place.end(), [](const SeenRow &seen) { return !seen.index.isValid(); });
    std::vector<int> rows;
    std::vector<int> ys;
    for (const SeenRow &seen : _place) {
        const int row = rowOfSeen(seen, haveGone);
        if (row < 0)
            continue;
        rows.push_back(row);
        ys.push_back(seen.y);
    }
    const int first = firstInOrder(rows);
    if (first >= 0)
        verticalScrollBar()->setValue(rows[std::size_t(first)] * rowPixels() - ys[std::size_t(first)]);
}

int OutlineView::rowOfSeen(const SeenRow &seen, bool hasGone) const
{
    return hasGone ? rowForItem(seen.item.lock()) : _model->rowOfIndex(seen.index);
}

void OutlineView::doItemsLayout()
{
    QTreeView::doItemsLayout();
    restorePlace();
    if (_changing > 0)
        return; // and will be laid out once more
    _place.clear();
    _model->forgetRemovedRows();
}

// While these rows are still there, and before Qt takes them out of the selection.
void OutlineView::rowsWillGo(const QModelIndex &parent, int first, int last)
{
    keepPlace();
    holdSelection(parent, first, last);
    holdCurrentRow(parent, first, last);
    holdExpansions(parent, first, last);
    _settleTimer.start(0, this);
}

// A selection of many ranges is put aside as a whole: for Qt, each row that goes is a walk over all of them.
void OutlineView::holdSelection(const QModelIndex &parent, int first, int last)
{
    const QItemSelection selection = selectionModel()->selection();
    if (selection.size() > mostRangesKept) {
        const std::vector<OutlineItemPtr> items = selectedItems();
        _heldSelection.insert(_heldSelection.end(), items.begin(), items.end());
        selectionModel()->select(QItemSelection(), QItemSelectionModel::Clear);
        return;
    }
    for (const QItemSelectionRange &range : selection) {
        const bool isHere = range.parent() == parent;
        if (!isHere && !goes(range.parent(), parent, first, last))
            continue;
        const int top = isHere ? std::max(range.top(), first) : range.top();
        const int bottom = isHere ? std::min(range.bottom(), last) : range.bottom();
        for (int row = top; row <= bottom; ++row)
            _heldSelection.push_back(_model->itemOfIndex(_model->index(row, 0, range.parent())));
    }
}

// The keyboard goes on at its place, which is known once all rows have gone. Until then it stands nowhere, and Qt does
// not lay the list out for each of them.
void OutlineView::holdCurrentRow(const QModelIndex &parent, int first, int last)
{
    const QModelIndex current = placeOfCurrentRow();
    if (!current.isValid() || !goes(current, parent, first, last))
        return;
    const int top = _model->rowOfIndex(_model->index(first, 0, parent));
    QModelIndex next = goes(_leftBehind, parent, first, last) ? QModelIndex() : QModelIndex(_leftBehind);
    if (!next.isValid())
        next = _model->index(last + 1, 0, parent);
    for (QModelIndex above = parent; !next.isValid() && above.isValid(); above = above.parent())
        next = _model->index(above.row() + 1, 0, above.parent());
    _heldCurrent = next.isValid() ? next : _model->indexAtRow(top - 1);
    _leftBehind = QPersistentModelIndex();
    const QSignalBlocker quiet(selectionModel());
    selectionModel()->clearCurrentIndex();
}

QModelIndex OutlineView::placeOfCurrentRow() const
{
    return _heldCurrent.isValid() ? QModelIndex(_heldCurrent) : currentIndex();
}

void OutlineView::holdExpansions(const QModelIndex &parent, int first, int last)
{
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = _model->index(row, 0, parent);
        const std::vector<OutlineExpansion> expansions = _model->expansionsOf(index);
        if (!expansions.empty())
            _heldExpansions[_model->itemOfIndex(index).get()] = expansions;
    }
}

void OutlineView::selectHeld()
{
    if (_heldSelection.empty())
        return;
    const std::vector<OutlineItemPtr> held = std::exchange(_heldSelection, {});
    const QModelIndexList indexes = _model->indexesOfItems(held);
    QModelIndexList found;
    for (std::size_t i = 0; i < held.size(); ++i) {
        if (indexes[qsizetype(i)].isValid())
            found.append(indexes[qsizetype(i)]);
        else
            _heldSelection.push_back(held[i]); // it may still come
    }
    ++_changing;
    selectIndexes(found);
    --_changing;
}

void OutlineView::dropHeld()
{
    _settleTimer.stop();
    _place.clear();
    _heldSelection.clear();
    _heldExpansions.clear();
    _heldCurrent = QPersistentModelIndex();
    _leftBehind = QPersistentModelIndex();
    _selectionIsOther = false;
}

// The end of the pass, or whatever looks at the list before that.
void OutlineView::settle()
{
    if (!_settleTimer.isActive())
        return;
    _settleTimer.stop();
    selectHeld();
    _heldSelection.clear();
    _heldExpansions.clear();
    _leftBehind = QPersistentModelIndex();
    if (const QModelIndex current = std::exchange(_heldCurrent, QPersistentModelIndex()); current.isValid())
        makeCurrent(current);
    if (std::exchange(_selectionIsOther, false))
        tellSelectionDidChange();
}

// --- Selection ------------------------------------------------------------------------------------------------------

int OutlineView::selectedRow() const
{
    const_cast<OutlineView *>(this)->selectHeld();
    int last = -1;
    for (const QItemSelectionRange &range : selectionModel()->selection())
        last = std::max(last, _model->rowOfIndex(range.bottomRight()));
    return last;
}

std::vector<int> OutlineView::selectedRows() const
{
    const_cast<OutlineView *>(this)->selectHeld();
    std::vector<int> rows;
    for (const QItemSelectionRange &range : selectionModel()->selection()) {
        for (int i = range.top(); i <= range.bottom(); ++i) {
            const int row = _model->rowOfIndex(_model->index(i, 0, range.parent()));
            if (row >= 0)
                rows.push_back(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

int OutlineView::numberOfSelectedRows() const
{
    return int(selectedRows().size());
}

std::vector<OutlineItemPtr> OutlineView::selectedItems() const
{
    std::vector<OutlineItemPtr> items;
    for (const int row : selectedRows())
        items.push_back(itemAtRow(row));
    return items;
}

void OutlineView::selectRowExtending(int row, bool extend)
{
    const QModelIndex index = _model->indexAtRow(row);
    if (!index.isValid())
        return;
    if (extend)
        selectHeld();
    _heldSelection.clear();
    _heldCurrent = QPersistentModelIndex();
    selectionModel()->setCurrentIndex(index,
                                      extend ? QItemSelectionModel::Select : QItemSelectionModel::ClearAndSelect);
}

void OutlineView::selectRowsOfItems(const std::vector<OutlineItemPtr> &items)
{
    selectHeld();
    QModelIndexList indexes = _model->indexesOfItems(items);
    indexes.removeIf([](const QModelIndex &index) { return !index.isValid(); });
    if (indexes.isEmpty())
        return;
    selectIndexes(indexes);
    makeCurrent(indexes.last());
}

// Rows that follow each other become one range: the selection's own bookkeeping takes quadratic time in its ranges.
void OutlineView::selectIndexes(QModelIndexList indexes)
{
    std::sort(indexes.begin(), indexes.end());
    QItemSelection selection;
    for (qsizetype first = 0, next = 0; first < indexes.size(); first = next) {
        const auto follows = [&](const QModelIndex &index, const QModelIndex &before) {
            return index.internalPointer() == before.internalPointer() && index.row() <= before.row() + 1;
        };
        for (next = first + 1; next < indexes.size() && follows(indexes[next], indexes[next - 1]);)
            ++next;
        selection.append(QItemSelectionRange(indexes[first], indexes[next - 1]));
    }
    selectionModel()->select(selection, QItemSelectionModel::Select);
}

int OutlineView::currentRow() const
{
    return _model->rowOfIndex(placeOfCurrentRow());
}

void OutlineView::setCurrentRow(int row)
{
    const QModelIndex index = _model->indexAtRow(row);
    if (index.isValid())
        makeCurrent(index);
}

// A view scrolls to what becomes current, and one that is hidden does so when it is shown, unless it scrolls by itself
// not at all.
void OutlineView::makeCurrent(const QModelIndex &index)
{
    _heldCurrent = QPersistentModelIndex();
    const bool scrolls = hasAutoScroll();
    setAutoScroll(false);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    setAutoScroll(scrolls);
}

void OutlineView::deselectAll()
{
    _heldSelection.clear();
    clearSelection();
}

void OutlineView::scrollRowToVisible(int row)
{
    const QRect rect = rectOfRow(row);
    const int below = rect.bottom() - viewport()->rect().bottom();
    if (rect.isEmpty())
        return;
    if (rect.top() < 0)
        verticalScrollBar()->setValue(verticalScrollBar()->value() + rect.top());
    else if (below > 0)
        verticalScrollBar()->setValue(verticalScrollBar()->value() + std::min(below, rect.top()));
}

void OutlineView::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QTreeView::selectionChanged(selected, deselected);
    if (_changing > 0) {
        _selectionIsOther = _selectionIsOther || !selected.isEmpty() || !deselected.isEmpty();
        _settleTimer.start(0, this);
    } else if (_quiet == 0) {
        tellSelectionDidChange();
    }
}

void OutlineView::tellSelectionDidChange()
{
    if (OutlineViewDataSource *source = outlineDataSource())
        source->outlineViewSelectionDidChange(*this);
}

// --- Keyboard and mouse ---------------------------------------------------------------------------------------------

void OutlineView::keyPressEvent(QKeyEvent *event)
{
    settle();
    QTreeView::keyPressEvent(event);
    // A list that got the keyboard stands on its first row without selecting it; a key that would go there selects it.
    static constexpr Qt::Key steps[] = {Qt::Key_Up,       Qt::Key_Down, Qt::Key_PageUp,
                                        Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
    const bool isStep = std::find(std::begin(steps), std::end(steps), event->key()) != std::end(steps);
    if (isStep && !(event->modifiers() & Qt::ControlModifier) && !selectionModel()->hasSelection())
        selectionModel()->select(currentIndex(), QItemSelectionModel::Select);
}

QString OutlineView::toolTipAtPoint(const QPoint & /*point*/)
{
    return {};
}

QMenu *OutlineView::menuForEvent(QContextMenuEvent * /*event*/)
{
    return nullptr;
}

bool OutlineView::viewportEvent(QEvent *event)
{
    settle();
    if (event->type() != QEvent::ToolTip)
        return QTreeView::viewportEvent(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    const QString tip = toolTipAtPoint(help->pos());
    if (tip.isEmpty()) {
        QToolTip::hideText();
        event->ignore();
    } else {
        QToolTip::showText(help->globalPos(), ToolTipText::shown(tip), viewport(), rectOfRow(rowAtPoint(help->pos())));
    }
    return true;
}

void OutlineView::contextMenuEvent(QContextMenuEvent *event)
{
    QPoint point = event->pos();
    QPoint globalPoint = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const int row = selectedRow();
        scrollRowToVisible(row);
        point = row >= 0 ? rectOfRow(row).center() : viewport()->rect().center();
        globalPoint = viewport()->mapToGlobal(point);
    }
    QContextMenuEvent request(event->reason(), point, globalPoint, event->modifiers());
    if (QMenu *menu = menuForEvent(&request))
        popUp(menu, globalPoint);
    event->accept();
}

// What the menu acts on stays as it is while the menu is open.
void OutlineView::popUp(QMenu *menu, const QPoint &globalPoint)
{
    auto pause = std::make_shared<NotificationQueue::Pause>();
    menu->popup(globalPoint);
    if (menu->isVisible()) {
        connect(
            menu, &QMenu::aboutToHide, menu, [pause]() mutable { pause.reset(); }, Qt::SingleShotConnection);
    }
}

void OutlineView::mouseDoubleClickEvent(QMouseEvent *event)
{
    QTreeView::mouseDoubleClickEvent(event);
    const QModelIndex index = indexAt(event->pos());
    // Beside the cell stands the arrow that opens and closes a folder.
    if (event->button() != Qt::LeftButton || !index.isValid() || !visualRect(index).contains(event->pos()))
        return;
    const std::function<void()> action = doubleAction;
    if (action)
        action();
}

// --- Dragging out ---------------------------------------------------------------------------------------------------

void OutlineView::startDrag(Qt::DropActions /*supportedActions*/)
{
    OutlineViewDataSource *source = outlineDataSource();
    const std::vector<OutlineItemPtr> items = selectedItems();
    if (!source || items.empty())
        return;
    QMimeData *data = source->outlineViewWriteItems(*this, items);
    if (!data)
        return;
    auto *drag = new QDrag(this);
    drag->setMimeData(data);
    drag->setPixmap(dragPixmap());
    drag->setHotSpot(QPoint(0, rowPixels() / 2));
    connect(drag, &QObject::destroyed, this, &OutlineView::dragEnded);
    _drag = drag;

    const QPointer<OutlineView> alive(this); // events are handled while the drag runs
    Qt::DropAction action = Qt::IgnoreAction;
    {
        // A list that is loaded anew, or a drawer that closes, would be in the way.
        const NotificationQueue::Pause pause;
        action = runDrag(drag);
    }
    if (!alive)
        return;
    endDropTracking();
    if (action == Qt::IgnoreAction)
        dragEnded(drag);
}

// Another application may ask for the data long after the drop, so a drag that was taken ends when Qt lets go of it.
void OutlineView::dragEnded(const QObject *drag)
{
    if (drag != _drag)
        return; // the next one has begun
    _drag = nullptr;
    if (OutlineViewDataSource *source = outlineDataSource())
        source->outlineViewDraggingEnded(*this);
}

Qt::DropAction OutlineView::runDrag(QDrag *drag)
{
    return drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
}

// The first of the dragged rows, no wider than their titles.
QPixmap OutlineView::dragPixmap() const
{
    std::vector<int> rows = selectedRows();
    rows.resize(std::min(rows.size(), mostRowsInDragPicture));
    int width = 0;
    for (const int row : rows) {
        const QString title = _model->indexAtRow(row).data().toString().left(widestDragPicture);
        width = std::max(width, fontMetrics().horizontalAdvance(title));
    }
    width = std::min(width + 2 * rowPixels(), widestDragPicture);
    const QSize size(width, int(rows.size()) * rowPixels());
    QPixmap pixmap(size * devicePixelRatioF());
    pixmap.setDevicePixelRatio(devicePixelRatioF());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setOpacity(0.8);
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.state &= ~(QStyle::State_HasFocus | QStyle::State_MouseOver | QStyle::State_Selected);
    option.rect = QRect(0, 0, size.width(), rowPixels());
    for (const int row : rows) {
        itemDelegate()->paint(&painter, option, _model->indexAtRow(row));
        option.rect.translate(0, rowPixels());
    }
    return pixmap;
}

// --- Dropping in ----------------------------------------------------------------------------------------------------

OutlineDropTarget OutlineView::dropTargetAtPoint(const QPoint &point) const
{
    const int row = rowAtPoint(point);
    if (row < 0)
        return {};
    const QModelIndex index = _model->indexAtRow(row);
    const int edge = std::max(2, rowPixels() / 4);
    const int y = point.y() - rectOfRow(row).top();
    if (y < edge)
        return {_model->itemOfIndex(index.parent()), index.row()};
    if (y < rowPixels() - edge)
        return {_model->itemOfIndex(index), -1};
    if (_model->isExpanded(index) && _model->rowCount(index) > 0)
        return {_model->itemOfIndex(index), 0};
    return {_model->itemOfIndex(index.parent()), index.row() + 1};
}

// Asks the source about the drop and tells the event what it answered.
Qt::DropAction OutlineView::validateDrop(QDropEvent *event, OutlineDropTarget &target)
{
    OutlineViewDataSource *source = outlineDataSource();
    target = dropTargetAtPoint(event->position().toPoint());
    Qt::DropAction action = Qt::IgnoreAction;
    if (source && event->mimeData())
        action = source->outlineViewValidateDrop(*this, *event->mimeData(), event->source() == this, target);
    action = allowed(action, event->possibleActions());
    if (action == Qt::IgnoreAction) {
        event->ignore();
    } else {
        event->setDropAction(action);
        event->accept();
    }
    return action;
}

void OutlineView::dragEnterEvent(QDragEnterEvent *event)
{
    // Only what is entered is told of moves, and which row would take the drag shows then.
    OutlineViewDataSource *source = outlineDataSource();
    event->setAccepted(source && event->mimeData() && source->outlineViewTakesData(*this, *event->mimeData()));
}

void OutlineView::dragMoveEvent(QDragMoveEvent *event)
{
    QTreeView::dragMoveEvent(event); // scrolls near the edges, by the place that it notes here
    OutlineDropTarget target;
    const bool accepted = validateDrop(event, target) != Qt::IgnoreAction;
    setDropIndicator(accepted ? indicatorForTarget(target) : QRect());

    const bool onFolder = accepted && target.childIndex < 0 && isExpandable(target.item);
    if (!onFolder || isItemExpanded(target.item)) {
        _springTimer.stop();
        _springItem.reset();
    } else if (_springItem != target.item) {
        _springItem = target.item;
        _springTimer.start(springMilliseconds, this);
    }
}

void OutlineView::dragLeaveEvent(QDragLeaveEvent *event)
{
    QTreeView::dragLeaveEvent(event);
    endDropTracking();
    event->accept();
}

void OutlineView::dropEvent(QDropEvent *event)
{
    endDropTracking();
    setState(NoState);
    OutlineDropTarget target;
    const Qt::DropAction action = validateDrop(event, target);
    if (action == Qt::IgnoreAction)
        return;
    if (!outlineDataSource()->outlineViewAcceptDrop(*this, *event->mimeData(), target)) {
        event->setDropAction(Qt::IgnoreAction);
        event->ignore();
    }
}

void OutlineView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == _settleTimer.timerId()) {
        settle();
        return;
    }
    if (event->timerId() != _springTimer.timerId()) {
        QTreeView::timerEvent(event);
        return;
    }
    _springTimer.stop();
    expandItem(_springItem);
}

void OutlineView::endDropTracking()
{
    _springTimer.stop();
    _springItem.reset();
    stopAutoScroll();
    setDropIndicator(QRect());
}

// A frame around the row (or the list) that takes the drop, or a line where it would go in.
QRect OutlineView::indicatorForTarget(const OutlineDropTarget &target) const
{
    const QModelIndex parent = _model->indexOfItem(target.item);
    if (target.item && !parent.isValid())
        return {};
    const int parentRow = _model->rowOfIndex(parent);
    if (parent.isValid() && (target.childIndex < 0 || !_model->isExpanded(parent)))
        return rectOfRow(parentRow);
    if (target.childIndex < 0)
        return viewport()->rect();

    const int children = _model->rowCount(parent);
    int next = parentRow + 1; // the row that the line stands above
    if (target.childIndex < children) {
        next = _model->rowOfIndex(_model->index(target.childIndex, 0, parent));
    } else if (children > 0) {
        QModelIndex last = parent;
        do
            last = _model->index(_model->rowCount(last) - 1, 0, last);
        while (_model->isExpanded(last) && _model->rowCount(last) > 0);
        next = _model->rowOfIndex(last) + 1;
    }
    const int y = next > 0 ? rectOfRow(next - 1).bottom() : rectOfRow(0).top() - 1;
    const int x = (_model->levelOfIndex(parent) + 2) * indentation();
    const QRect line(x, std::max(0, y), viewport()->width() - x, indicatorHeight);
    return QStyle::visualRect(layoutDirection(), viewport()->rect(), line);
}

void OutlineView::setDropIndicator(const QRect &rect)
{
    if (rect == _dropIndicator)
        return;
    _dropIndicator = rect;
    viewport()->update();
}

void OutlineView::scrollContentsBy(int dx, int dy)
{
    QTreeView::scrollContentsBy(dx, dy);
    if (!_dropIndicator.isEmpty())
        setDropIndicator(_dropIndicator.translated(dx, dy));
}

void OutlineView::paintEvent(QPaintEvent *event)
{
    QTreeView::paintEvent(event);
    if (_dropIndicator.isEmpty())
        return;
    QPainter painter(viewport());
    const QColor color = palette().color(QPalette::Highlight);
    if (_dropIndicator.height() == indicatorHeight) {
        painter.fillRect(_dropIndicator, color);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, indicatorHeight));
    painter.drawRoundedRect(QRectF(_dropIndicator).adjusted(1, 1, -1, -1), 3, 3);
}
