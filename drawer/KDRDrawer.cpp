#include "drawer/KDRDrawer.h"

#include "core/KDRDrawerBundle.h"
#include "lists/WayfoldScratchOutlineView.h"

void KDRDrawer::setOutlineView(WayfoldScratchOutlineView *view)
{
    _outlineView = view;
}

void KDRDrawer::reloadBookmarks()
{
    if (_outlineView)
        _outlineView->reloadData();
}

void KDRDrawer::handleNewSubFolderRequest(QObject *sender)
{
    if (_outlineView)
        _outlineView->handleNewSubFolderRequest(sender);
}

void KDRDrawer::handleNewNoteRequest(QObject *sender)
{
    if (_outlineView)
        _outlineView->handleNewNoteRequest(sender);
}

void KDRDrawer::handleNewEmailRequest(QObject *sender)
{
    if (_outlineView)
        _outlineView->handleNewEmailRequest(sender);
}

void KDRDrawer::handleCloseKDRDrawer(QObject * /*sender*/)
{
    KDRDrawerBundle::sharedInstance().closeKDRDrawer();
}
