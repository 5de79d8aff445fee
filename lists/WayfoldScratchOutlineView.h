#pragma once

#include "lists/WayfoldOutlineView.h"

#include <QPointer>

class Url;
class WayfoldSitePopupButton;

// The list of the Scratchpad tab: it also takes drops, makes new items, edits and deletes from the keyboard, writes
// mails to the selected people, and owns the site pop-up above it.
class WayfoldScratchOutlineView : public WayfoldOutlineView
{
    Q_OBJECT

public:
    using WayfoldOutlineView::WayfoldOutlineView;
    ~WayfoldScratchOutlineView() override;

    // To be set before awakeFromNib.
    void setSitePopupMenu(WayfoldSitePopupButton *popup);
    void awakeFromNib() override;
    bool allowIncomingDrops() const override { return true; }
    // How to begin, as long as nothing but smart folders stands here.
    QString emptyListText() const override;

    // The first entry, the top-level folders of the user's tree, then the provisional site folders.
    void refreshSitePopup();
    // Null or empty: the whole tree.
    void setSitePopupTitle(const QString &label);
    // Null without a pop-up. Allocates nothing.
    QString currentSitePopupTitle() const;

    void handleItemEditRequest(QObject *sender);
    void handleDeleteItemRequest(QObject *sender);
    // Asks the user for a new item, or for several people, and puts it where the selection points.
    void handleNewSubFolderRequest(QObject *sender);
    void handleNewNoteRequest(QObject *sender);
    void handleNewEmailRequest(QObject *sender);
    void handleNewPersonRequest(QObject *sender);
    // Starts one mail to all selected people and e-mail links.
    void handleSendEmailRequest(QObject *sender);
    // Whether a new item may go where the selection points.
    bool canMakeItem() const;
    // The address of that mail; none when nobody is selected.
    Url mailURL() const;

    bool respondsToAction(const QString &action) const override;
    bool validateMenuItem(QAction *item) override;
    void performMenuItem(QAction *item) override;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    struct InsertionPoint
    {
        WayfoldBookmarkFolderPtr folder; // none: the parent has gone
        int index = 0;
    };
    using NewItemsMaker = std::vector<KDRBookmarkPtr> (*)();

    InsertionPoint insertionPoint() const;
    void createItems(NewItemsMaker newViaDialog);
    bool validateEditItem(QAction *item) const;
    bool validateDeleteItem(QAction *item) const;

    QPointer<WayfoldSitePopupButton> _sitePopupMenu;
};
