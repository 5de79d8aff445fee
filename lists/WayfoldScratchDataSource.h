#pragma once

#include "core/FolderInUse.h"
#include "lists/StrangersQuestion.h"
#include "lists/TreeFollower.h"
#include "lists/WayfoldOutlineViewDataSource.h"
#include "platform/base/NotificationCenter.h"

class HostFrame;
class QAbstractButton;
class ScratchpadDrawer;
class WayfoldScratchOutlineView;
class WayfoldSitePopupButton;

// What stands behind the Scratchpad: the user's own tree, shown whole or focused on one site. A site is a folder at the
// top of the tree, titled with the site's key; one that has no folder yet gets a provisional one, which becomes part of
// the tree as soon as something worth saving is in it.
class WayfoldScratchDataSource : public WayfoldOutlineViewDataSource
{
    Q_OBJECT

public:
    // Each may be null.
    struct Outlets
    {
        WayfoldScratchOutlineView *scratchOutlineView = nullptr;
        ScratchpadDrawer *drawer = nullptr;
        QAbstractButton *newSubfolderButton = nullptr;
        QAbstractButton *newNoteButton = nullptr;
        QAbstractButton *newEmailButton = nullptr;
        QAbstractButton *newPersonButton = nullptr;
        QAbstractButton *deleteItemButton = nullptr;
        QAbstractButton *editItemButton = nullptr;
        QAbstractButton *switchbackButton = nullptr;
    };

    explicit WayfoldScratchDataSource(const Outlets &outlets);
    ~WayfoldScratchDataSource() override;

    // Run once, when the outlets are set: shows the whole tree and observes what changes outside.
    void awakeFromNib();

    WayfoldBookmarkFolderPtr localRootFolder() const override { return _scratchBookmarkRoot; }
    WayfoldOutlineView *myOutlineView() const override;

    // The title that the site pop-up shows. Allocates nothing.
    QString currentDrawerLabel() const;
    // Null when there is none.
    QString previousDrawerLabel() const { return _prevLabel; }
    // Shows another site list. The empty label, and "Sites" in the user's language, stand for the whole tree; null
    // changes nothing but the controller's frame.
    void setDrawerLabelUsingFrame(const QString &label, const std::shared_ptr<HostFrame> &frame);
    void handleSiteChange(WayfoldSitePopupButton *sender);
    void handleSwitchbackRequest(QObject *sender);
    // Adds a link to the page that the window shows.
    void handleSaveCurrentURLRequest(QObject *sender);
    // Nothing happens while the drawer is not open.
    void handleNewSubFolderRequest(QObject *sender);
    void handleNewNoteRequest(QObject *sender);
    void handleNewEmailRequest(QObject *sender);
    void handleNewPersonRequest(QObject *sender);
    void handleDeleteItemRequest(QObject *sender) override;
    void handleItemEditRequest(QObject *sender) override;
    // Adopts a provisional site folder that holds something, and writes the item file.
    void saveScratchBookmarkRoot() override;
    // The browser's files or the contacts have changed. A list that is out of sight follows when it can be seen.
    void safariFileUpdated(const Notification &notification);

    void outlineViewSelectionDidChange(OutlineView &view) override;
    bool outlineViewTakesData(OutlineView &view, const QMimeData &data) override;
    Qt::DropAction outlineViewValidateDrop(OutlineView &view, const QMimeData &data, bool isLocal,
                                           OutlineDropTarget &target) override;
    bool outlineViewAcceptDrop(OutlineView &view, const QMimeData &data, const OutlineDropTarget &target) override;

private:
    std::shared_ptr<HostFrame> currentWebFrame() const;
    static WayfoldBookmarkFolderPtr rootForLabel(const QString &label);
    QString labelOfRoot() const;
    void releaseRoot();
    void decorateButtons();
    void observeOutsideChanges();
    void followOutsideChanges();
    bool confirmDelete(const std::vector<KDRBookmarkPtr> &items);
    bool canTakeNewItem() const;

    QPointer<WayfoldScratchOutlineView> _scratchOutlineView;
    QPointer<ScratchpadDrawer> _drawer;
    QPointer<QAbstractButton> _newSubfolderButton;
    QPointer<QAbstractButton> _newNoteButton;
    QPointer<QAbstractButton> _newEmailButton;
    QPointer<QAbstractButton> _newPersonButton;
    QPointer<QAbstractButton> _deleteItemButton;
    QPointer<QAbstractButton> _editItemButton;
    QPointer<QAbstractButton> _switchbackButton;
    WayfoldBookmarkFolderPtr _scratchBookmarkRoot;
    FolderInUse _rootInUse; // says so to the store
    TreeFollower _follower; // of that root
    QString _prevLabel;
    StrangersQuestion _strangersQuestion;
};
