#pragma once

#include "lists/ListPlace.h"
#include "model/WayfoldBookmarkFolder.h"
#include "platform/base/NotificationCenter.h"
#include "platform/widgets/MenuItem.h"
#include "platform/widgets/OutlineView.h"

#include <QFont>
#include <QMenu>
#include <functional>
#include <mutex>
#include <optional>

class WayfoldOutlineViewDelegate;

// The list of a tab: an outline view whose rows are items. It has the list font of the settings, tool tips, and the
// lists' context menu; it opens items from the keyboard, tells what is true of the whole selection, and keeps
// expansion, selection and what is seen across a reload, by identifier:
//
//     view->prepForReloadData();
//     ... put another tree behind the list ...
//     view->reloadData();
class WayfoldOutlineView : public OutlineView, public MenuItemTarget
{
    Q_OBJECT

public:
    explicit WayfoldOutlineView(QWidget *parent = nullptr);
    ~WayfoldOutlineView() override;

    // Not owned: it must outlive the view or be taken away first.
    WayfoldOutlineViewDelegate *delegate() const { return _delegate; }
    void setDelegate(WayfoldOutlineViewDelegate *delegate) { _delegate = delegate; }

    // Run once, when the view comes from its interface file: font, row height, observers.
    virtual void awakeFromNib();
    void handleChangeOfFontNotify(const Notification &notification);
    QFont currentListViewFont() const;
    // What a list without rows says; null for nothing.
    void setPlaceholderText(const QString &text);
    QString placeholderText() const { return _placeholderText; }
    // What the list says now, quietly, in the room below its rows; null while it has something to show.
    virtual QString emptyListText() const;
    // The menu of every list.
    static QMenu *defaultMenu();
    // Selects the row under the pointer, unless it is part of the selection already. The menu key selects nothing.
    QMenu *menuForEvent(QContextMenuEvent *event) override;
    // Whether items may be dropped here, and so whether drags from here carry the lists' own types.
    virtual bool allowIncomingDrops() const { return false; }
    // What a drag from here may do in this application, or in others.
    Qt::DropActions draggingSourceOperationMaskForLocal(bool local) const;

    // Makes a change to what stands in the list. While the list cannot be seen, in a tab behind another or in a closed
    // drawer, the change waits until it can; of several, only the last is made.
    void changeWhenSeen(std::function<void()> change);
    // Makes the change that waits, if there is one, at once, and shows what was replaced.
    void catchUp();
    // All that the folder (none: the root) holds is other items now. The list is loaded anew for that once, at the end
    // of this pass of the event loop or when it can be seen; what has the same identifiers is open and selected as
    // before.
    void replaceContentsOfItem(const OutlineItemPtr &folder);
    // Loads the list anew without memory after something that may replace items by others of the same identifiers;
    // none: it has been done.
    void reloadAfter(const std::function<void()> &replaceItems);

    // ---- Reload with memory

    // Remembers what is expanded, selected and seen for exactly one reload, then deselects all.
    void prepForReloadData();
    // The reload that has been prepared for is to open these as well.
    void alsoReexpand(const QStringList &uuids);
    // Without memory, rows of the very same items stay as they are.
    void reloadData() override;
    QStringList getExpandedItemsUUIDList() const;
    QStringList getSelectedItemsUUIDList() const;
    void reexpandItemsFromUUIDList(const QStringList &uuids);
    void reselectItemsFromUUIDList(const QStringList &uuids);
    // For a search that has changed: from the first match on; when it has ended, to what is still selected.
    void scrollAfterSearch(bool hasEnded);

    // For another list than before: from its first row on, or as far down as what is still selected.
    void beginAtTop();

    // ---- Tool tips

    // Registers tool tips down to the item's row; nothing for an item that has no row.
    void ensureToolTipPresentForItem(const KDRBookmarkPtr &item);
    void removeAllToolTips();
    QString toolTipAtPoint(const QPoint &point) override;

    // ---- Selection

    void selectRow(int row);
    void selectIndividualRow(int row);
    // Adds the item's first row to the selection; nothing for none.
    void selectItem(const KDRBookmarkPtr &item);
    // The same for many, all at once; scrolls to the last.
    void selectItems(const std::vector<KDRBookmarkPtr> &items);
    // Changes nothing when the item has no row.
    void selectIndividualItem(const KDRBookmarkPtr &item);
    KDRBookmarkPtr selectedItem() const;
    int selectedItemCount() const;
    // In the order of the rows.
    std::vector<KDRBookmarkPtr> selectedItemList() const;

    // False when nothing is selected.
    bool allSelectedItemsAreEditable() const;
    bool allSelectedItemsAreDeletable() const;
    bool allSelectedItemsAreAddressBookItems() const;
    bool allSelectedItemsAreEmailable() const;
    bool allSelectedItemsAreWebURLs() const;

    // ---- Commands

    void handleResolveBookmarkRequest(QObject *sender);
    void handleOpenBookmarksInTabsRequest(QObject *sender);
    // Whether this list carries out the action; other items of the context menu stay disabled.
    virtual bool respondsToAction(const QString &action) const;
    bool validateMenuItem(QAction *item) override;
    void performMenuItem(QAction *item) override;

protected:
    // Sets up font, row height and tool tips; run by awakeFromNib.
    void initialize();
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    Qt::DropAction runDrag(QDrag *drag) override;
    void startDrag(Qt::DropActions supportedActions) override;

    KDRBookmarkPtr itemInRow(int row) const;

private:
    using Predicate = bool (*)(const KDRBookmark &item);

    void useFont(const QFont &font);
    bool allSelectedItems(Predicate qualifies) const;
    bool validateOpenItem(QAction *item) const;
    bool validateOpenInTabsItem(QAction *item) const;
    std::vector<KDRBookmarkPtr> expandedFolders() const;
    void expandUpToDate(const std::vector<OutlineItemPtr> &items);
    void reselectCurrentRow(const QStringList &uuids);

    WayfoldOutlineViewDelegate *_delegate = nullptr;
    std::function<void()> _waitingChange;
    bool _isStale = false; // it shows items that have been replaced
    int _tooltipRects = 0; // rows, from the top, that have a tool tip
    QString _placeholderText;
    std::optional<QFont> _listViewFont;
    std::mutex _listViewFontLock;
    std::optional<QStringList> _savedUUIDSelections;
    std::optional<QStringList> _savedUUIDExpansions;
    std::optional<ListPlace> _savedPlace;
};
