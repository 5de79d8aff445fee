#pragma once

#include "lists/WayfoldOutlineViewDelegate.h"
#include "platform/widgets/OutlineViewDataSource.h"

#include <QObject>
#include <QPointer>

class WayfoldOutlineView;

// What stands behind a list: it turns a tree of items into rows, decorates them, lets items be dragged out, and opens
// them. The three lists differ in the tree that they show and in what may be done to it.
class WayfoldOutlineViewDataSource : public QObject, public OutlineViewDataSource, public WayfoldOutlineViewDelegate
{
    Q_OBJECT

public:
    WayfoldOutlineViewDataSource() = default;

    // None, and null: every list has its own.
    WayfoldBookmarkFolderPtr localRootFolder() const override { return nullptr; }
    virtual WayfoldOutlineView *myOutlineView() const { return nullptr; }

    // Called when the list's tab is about to be shown.
    virtual void ensureDataLoaded() {}
    void deselectAllItems();
    bool anyItemSelected() const;

    // Whoever owns list and data source, see keptAlive().
    void setOwner(const std::weak_ptr<const void> &owner) { _owner = owner; }
    std::shared_ptr<const void> keptAlive() const override { return _owner.lock(); }

    // Types that a list takes as a drop.
    static const QStringList &acceptableDragTypes();

    // ---- Rows

    int outlineViewNumberOfChildrenOfItem(OutlineView &view, const OutlineItemPtr &item) override;
    bool outlineViewIsItemExpandable(OutlineView &view, const OutlineItemPtr &item) override;
    OutlineItemPtr outlineViewChildOfItem(OutlineView &view, int index, const OutlineItemPtr &item) override;
    bool outlineViewMakesChildrenOfItem(OutlineView &view, const OutlineItemPtr &item) override;
    bool outlineViewIsChildExpandable(OutlineView &view, int index, const OutlineItemPtr &item) override;
    bool outlineViewMakesLeavesOfItem(OutlineView &view, const OutlineItemPtr &item) override;
    std::vector<std::pair<int, OutlineItemPtr>> outlineViewMadeChildrenOfItem(OutlineView &view,
                                                                              const OutlineItemPtr &item) override;
    QString outlineViewObjectValueByItem(OutlineView &view, const OutlineItemPtr &item) override;
    // The item's kind, and a link's address.
    QString outlineViewDescriptionOfItem(OutlineView &view, const OutlineItemPtr &item) override;
    void outlineViewWillDisplayCell(OutlineView &view, TextFieldCell &cell, const OutlineItemPtr &item) override;
    // Never: titles are changed in the dialogs.
    bool outlineViewShouldEdit(OutlineView &view, const OutlineItemPtr &item) override;
    void outlineViewSelectionDidChange(OutlineView &view) override;

    // ---- Dragging out

    QMimeData *outlineViewWriteItems(OutlineView &view, const std::vector<OutlineItemPtr> &items) override;
    void outlineViewDraggingEnded(OutlineView &view) override;
    // The value of one type for the items that are being dragged: a QString or a QVariantList, invalid for none. That
    // of the desktop's addresses is a list of addresses and one of their titles, that of its texts the titles of all.
    QVariant pasteboardProvideDataForType(const QString &type) const;

    // ---- Dropping: refused, but for the Scratchpad

    bool outlineViewTakesData(OutlineView &view, const QMimeData &data) override;
    Qt::DropAction outlineViewValidateDrop(OutlineView &view, const QMimeData &data, bool isLocal,
                                           OutlineDropTarget &target) override;
    bool outlineViewAcceptDrop(OutlineView &view, const QMimeData &data, const OutlineDropTarget &target) override;

    // ---- Opening

    void handleResolveBookmarkRequest(QObject *sender) override;
    void handleOpenBookmarksInTabsRequest(QObject *sender) override;

protected:
    // For destructors: a view that outlives its source (null: it does not) has nobody to ask any more.
    void leaveView(WayfoldOutlineView *view);

private:
    KDRBookmarkPtr itemOrRoot(const OutlineItemPtr &item) const;
    void openItem(const KDRBookmarkPtr &item);
    QVariantList valuesOfDragItems(QVariant (*value)(const KDRBookmarkPtr &item)) const;
    QVariantList linksOfDragItems() const;
    QString cardsOfDragItems() const;

    std::weak_ptr<const void> _owner;
    // Both only while a drag is in progress.
    QPointer<OutlineView> _dragSource;
    std::vector<KDRBookmarkPtr> _dragItems;
};
