#pragma once

#include "platform/widgets/OutlineItem.h"

#include <QBasicTimer>
#include <QPersistentModelIndex>
#include <QTreeView>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

class OutlineModel;
class OutlineViewDataSource;
class QDrag;
class QMenu;
class TextFieldCell;
struct OutlineDropTarget;

// A list of rows with rows below them, on QTreeView. The rows are the view's own, made as folders are opened: the same
// item may be shown in several views, or in two rows of this one, and the view never asks an item for its parent.
// Items are found by identity. Rows are counted from 0 over what is open, from the top to the bottom.
class OutlineView : public QTreeView
{
    Q_OBJECT

public:
    explicit OutlineView(QWidget *parent = nullptr);
    ~OutlineView() override;

    // The source is not owned and must outlive the view, or be taken away (null) before it goes.
    OutlineViewDataSource *outlineDataSource() const;
    void setOutlineDataSource(OutlineViewDataSource *source);

    // Throws all rows away and asks the source again; expansion and selection are forgotten.
    virtual void reloadData();
    // Asks again for one item's row (every row that shows it) and, with `reloadChildren`, for what lies below it; what
    // was expanded or selected there stays so as long as it is still there. None reloads everything.
    void reloadItem(const OutlineItemPtr &item, bool reloadChildren);

    // What the source has changed already, row by row, in every row that shows the item (`parent` none: the root). What
    // is seen, selected and open stays, and so does the row of the keyboard; a list that stands at its very top shows
    // what comes in there. What goes and comes back within one pass of the event loop, at another place, is selected
    // and open as it was. The source is told of a selection that has changed by this once, at the end of the pass.

    // New children of the parent, side by side, the first of them at `index`.
    void insertItems(const std::vector<OutlineItemPtr> &items, int index, const OutlineItemPtr &parent);
    // So many of the parent's children, from the one that was at `index`.
    void removeItems(int count, int index, const OutlineItemPtr &parent);
    // The parent's children stand in another order: the one at place i now was at `from[i]` before.
    void moveItems(const std::vector<int> &from, const OutlineItemPtr &parent);
    // How the item is shown.
    void changeItem(const OutlineItemPtr &item) { reloadItem(item, false); }

    int numberOfRows() const;
    // None past the end or for a negative row.
    OutlineItemPtr itemAtRow(int row) const;
    // The first row that shows the item, -1 when none does.
    int rowForItem(const OutlineItemPtr &item) const;
    // As wide as the list, in the viewport's coordinates; empty when there is no such row.
    QRect rectOfRow(int row) const;
    // -1 where no row is.
    int rowAtPoint(const QPoint &point) const;
    // 0 at the top level; -1 when there is no such row.
    int levelForRow(int row) const;

    bool isExpandable(const OutlineItemPtr &item) const;
    // Whether any row that shows the item (none: the root) has asked for what lies below it.
    bool isLoaded(const OutlineItemPtr &item) const;
    // Whether the first row that shows the item is expanded; so for the other two operations.
    bool isItemExpanded(const OutlineItemPtr &item) const;
    // Of the rows, from the top to the bottom.
    std::vector<OutlineItemPtr> expandedItems() const;
    // Of all rows, those in closed folders too, which are shown again when the folders are opened; folders come before
    // their contents.
    std::vector<OutlineExpansion> expansions() const;
    void expandItem(const OutlineItemPtr &item);
    // The same for many, all at once; those that come to be shown when others are expanded too, whatever their order.
    void expandItems(const std::vector<OutlineItemPtr> &items);
    void collapseItem(const OutlineItemPtr &item);
    // Opens and closes folders, those in closed ones too, as they stood.
    void restoreExpansions(const std::vector<OutlineExpansion> &expansions);

    // The last of the selected rows, which is the one that counts where one is asked for; -1 when there is none.
    int selectedRow() const;
    // Ascending.
    std::vector<int> selectedRows() const;
    int numberOfSelectedRows() const;
    // Selects a row alone, or adds it to the selection; a row that does not exist changes nothing.
    void selectRowExtending(int row, bool extend);
    // Adds the rows of these items to the selection, all at once; the keyboard goes to the last of them. Does not
    // scroll.
    void selectRowsOfItems(const std::vector<OutlineItemPtr> &items);
    void deselectAll();
    // The row that the keyboard stands on, which need not be selected; -1 when there is none.
    int currentRow() const;
    // Neither selects nor scrolls; a row that does not exist changes nothing.
    void setCurrentRow(int row);
    void scrollRowToVisible(int row);

    // What the rows are drawn with, one after the other; a plain text cell until another is set.
    TextFieldCell &dataCell() const { return *_dataCell; }
    void setDataCell(std::unique_ptr<TextFieldCell> cell);

    // In device-independent pixels, the same for every row.
    qreal rowHeight() const;
    void setRowHeight(qreal height);

    // What a double click on a row does.
    std::function<void()> doubleAction;

    // The tip for a point of the viewport; null for none.
    virtual QString toolTipAtPoint(const QPoint &point);
    // The menu for a right click, or for the menu key, which asks for the middle of the last selected row, or of the
    // list when none is; null for none. Not taken over.
    virtual QMenu *menuForEvent(QContextMenuEvent *event);
    // Where the mark of the current drag is drawn, in the viewport's coordinates; empty when there is none.
    QRect dropIndicatorRect() const { return _dropIndicator; }

protected:
    // Carries the drag out and answers what was done; the drag belongs to Qt.
    virtual Qt::DropAction runDrag(QDrag *drag);

    void keyPressEvent(QKeyEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
    void doItemsLayout() override;

private:
    // A row that is seen, and how far below the upper edge, in pixels.
    struct SeenRow
    {
        QPersistentModelIndex index;
        std::weak_ptr<OutlineItem> item;
        int y;
    };

    void keepPlace();
    void restorePlace();
    int rowOfSeen(const SeenRow &seen, bool hasGone) const;
    void rowsWillGo(const QModelIndex &parent, int first, int last);
    void holdSelection(const QModelIndex &parent, int first, int last);
    void holdCurrentRow(const QModelIndex &parent, int first, int last);
    QModelIndex placeOfCurrentRow() const;
    void holdExpansions(const QModelIndex &parent, int first, int last);
    void selectHeld();
    void dropHeld();
    void settle();
    void selectIndexes(QModelIndexList indexes);
    void rowsWereCollapsed(const QModelIndex &index);
    void tellSelectionDidChange();
    void makeCurrent(const QModelIndex &index);
    std::vector<OutlineItemPtr> selectedItems() const;
    int rowPixels() const;
    static void popUp(QMenu *menu, const QPoint &globalPoint);
    QPixmap dragPixmap() const;
    void dragEnded(const QObject *drag);

    OutlineDropTarget dropTargetAtPoint(const QPoint &point) const;
    Qt::DropAction validateDrop(QDropEvent *event, OutlineDropTarget &target);
    QRect indicatorForTarget(const OutlineDropTarget &target) const;
    void setDropIndicator(const QRect &rect);
    void endDropTracking();

    OutlineModel *_model = nullptr;
    std::unique_ptr<TextFieldCell> _dataCell;
    std::optional<qreal> _rowHeight;
    int _quiet = 0;                 // while positive, selection changes are not passed on
    int _changing = 0;              // while positive, rows come and go
    const QObject *_drag = nullptr; // the latest, until its data has been handed over
    QRect _dropIndicator;
    QBasicTimer _springTimer; // opens the folder that a drag rests on
    OutlineItemPtr _springItem;

    // Until the rows are laid out again.
    std::vector<SeenRow> _place;
    // Until the end of this pass of the event loop.
    QBasicTimer _settleTimer;
    std::vector<OutlineItemPtr> _heldSelection; // what is to be selected as soon as it has a row
    std::unordered_map<const OutlineItem *, std::vector<OutlineExpansion>> _heldExpansions; // of rows that have gone
    QPersistentModelIndex _heldCurrent; // where the keyboard goes when its row has gone
    QPersistentModelIndex _leftBehind;  // the row that stood below its row, before this was moved down
    bool _selectionIsOther = false;     // and the source does not know
};
