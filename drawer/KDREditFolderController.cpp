#include "drawer/KDREditFolderController.h"

KDREditFolderController::KDREditFolderController() : KDREditController("Untitled Folder") {}

void KDREditFolderController::initForEditing(const WayfoldBookmarkFolderPtr &folder)
{
    loadInterface(QStringLiteral("KDREditFolder"), folder);
    setWindowTitle("Edit Bookmark Folder");
}

void KDREditFolderController::initForNew(const WayfoldBookmarkFolderPtr &folder)
{
    initForEditing(folder);
    setWindowTitle("New Bookmark Folder");
}
