#pragma once

#include "model/WayfoldBookmarkFolder.h"

class QObject;

// What a list view asks of the data source behind it.
class WayfoldOutlineViewDelegate
{
public:
    virtual ~WayfoldOutlineViewDelegate() = default;

    // The folder whose contents the list shows; none while there is nothing to show.
    virtual WayfoldBookmarkFolderPtr localRootFolder() const = 0;

    // Open the selected items, in the current tab or in new ones.
    virtual void handleResolveBookmarkRequest(QObject *sender) = 0;
    virtual void handleOpenBookmarksInTabsRequest(QObject *sender) = 0;

    // Only the Scratchpad edits, deletes and saves.
    virtual void handleItemEditRequest(QObject * /*sender*/) {}
    virtual void handleDeleteItemRequest(QObject * /*sender*/) {}
    virtual void saveScratchBookmarkRoot() {}

    // List and data source stay alive as long as the answer does: for whatever runs a dialog, while which the browser
    // window may close.
    virtual std::shared_ptr<const void> keptAlive() const { return nullptr; }
};
