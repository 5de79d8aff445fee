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
    // What the other lists show is the same, but how it looks may be another.
    for (WayfoldOutlineView *view : findChildren<WayfoldOutlineView *>())
        view->viewport()->update();
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

void KDRDrawer::handleNewPersonRequest(QObject *sender)
{
    if (_outlineView)
        _outlineView->handleNewPersonRequest(sender);
}

void KDRDrawer::handleCloseKDRDrawer(QObject * /*sender*/)
{
    KDRDrawerBundle::sharedInstance().closeKDRDrawer();
}
