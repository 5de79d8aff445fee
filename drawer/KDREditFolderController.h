#pragma once

#include "drawer/KDREditController.h"
#include "model/WayfoldBookmarkFolder.h"

// The dialog of a folder: its title.
class KDREditFolderController : public KDREditController
{
public:
    KDREditFolderController();

    void initForEditing(const WayfoldBookmarkFolderPtr &folder);
    void initForNew(const WayfoldBookmarkFolderPtr &folder);

private:
    void writeValue() override {}
};
