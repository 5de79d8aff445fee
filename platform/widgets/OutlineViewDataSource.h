#pragma once

#include "platform/widgets/OutlineItem.h"

#include <QString>
#include <vector>

class OutlineView;
class QMimeData;
class TextFieldCell;

// Where a drop would go: `item` none is the root, `childIndex` -1 means on the item itself.
struct OutlineDropTarget
{
    OutlineItemPtr item;
    int childIndex = -1;
};

// Gives an outline view its rows and looks after them: data source and delegate in one. Every operation gets the view
// that asks, since one source may serve several. `item` none is the root.
class OutlineViewDataSource
{
public:
    virtual ~OutlineViewDataSource() = default;

    virtual int outlineViewNumberOfChildrenOfItem(OutlineView &view, const OutlineItemPtr &item) = 0;
    virtual bool outlineViewIsItemExpandable(OutlineView &view, const OutlineItemPtr &item) = 0;
    virtual OutlineItemPtr outlineViewChildOfItem(OutlineView &view, int index, const OutlineItemPtr &item) = 0;
    // Of an item with a great many children that the source makes as it is asked for them, the view asks for those that
    // are seen, and otherwise for these.
    virtual bool outlineViewMakesChildrenOfItem(OutlineView & /*view*/, const OutlineItemPtr & /*item*/)
    {
        return false;
    }
    virtual bool outlineViewIsChildExpandable(OutlineView & /*view*/, int /*index*/, const OutlineItemPtr & /*item*/)
    {
        return false;
    }
    // Whether all of them are known to be leaves.
    virtual bool outlineViewMakesLeavesOfItem(OutlineView & /*view*/, const OutlineItemPtr & /*item*/) { return false; }
    // Those that are made already, with their indexes, ascending.
    virtual std::vector<std::pair<int, OutlineItemPtr>> outlineViewMadeChildrenOfItem(OutlineView & /*view*/,
                                                                                      const OutlineItemPtr & /*item*/)
    {
        return {};
    }
    // The row's text.
    virtual QString outlineViewObjectValueByItem(OutlineView &view, const OutlineItemPtr &item) = 0;
    // What the row is, for those who cannot see it; null for nothing more than its text. Asked for only by them.
    virtual QString outlineViewDescriptionOfItem(OutlineView & /*view*/, const OutlineItemPtr & /*item*/) { return {}; }
    // The cell, which has the row's text already, is about to be drawn for the item.
    virtual void outlineViewWillDisplayCell(OutlineView &view, TextFieldCell &cell, const OutlineItemPtr &item) = 0;
    virtual bool outlineViewShouldEdit(OutlineView &view, const OutlineItemPtr &item) = 0;
    virtual void outlineViewSelectionDidChange(OutlineView &view) = 0;

    // Drag and drop. A null answer starts no drag; the view takes the data.
    virtual QMimeData *outlineViewWriteItems(OutlineView &view, const std::vector<OutlineItemPtr> &items) = 0;
    virtual void outlineViewDraggingEnded(OutlineView &view) = 0;
    // Whether the data may be dropped anywhere here. Asked once, when the drag comes in: another application may have
    // to answer for its data.
    virtual bool outlineViewTakesData(OutlineView &view, const QMimeData &data) = 0;
    // Asked at every move, so it does not look at the data of other applications. May change the target. `isLocal`: the
    // drag comes from this very view.
    virtual Qt::DropAction outlineViewValidateDrop(OutlineView &view, const QMimeData &data, bool isLocal,
                                                   OutlineDropTarget &target) = 0;
    virtual bool outlineViewAcceptDrop(OutlineView &view, const QMimeData &data, const OutlineDropTarget &target) = 0;
};
