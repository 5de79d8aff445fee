#pragma once

#include "lists/WayfoldOutlineViewDataSource.h"

// Shows the tree of an earlier item file, to be looked at only.
class BackupPreview : public WayfoldOutlineViewDataSource
{
    Q_OBJECT

public:
    void setRoot(const WayfoldBookmarkFolderPtr &root) { _root = root; }
    WayfoldBookmarkFolderPtr localRootFolder() const override { return _root; }

    QMimeData *outlineViewWriteItems(OutlineView & /*view*/, const std::vector<OutlineItemPtr> & /*items*/) override
    {
        return nullptr;
    }

private:
    WayfoldBookmarkFolderPtr _root;
};
