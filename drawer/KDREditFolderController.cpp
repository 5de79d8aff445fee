#include "drawer/KDREditFolderController.h"

KDREditFolderController::KDREditFolderController() : KDREditController(QT_TRID_NOOP("Untitled Folder")) {}

void KDREditFolderController::initForEditing(const WayfoldBookmarkFolderPtr &folder)
{
    loadInterface(QStringLiteral("KDREditFolder"), folder);
    setWindowTitle("Edit Bookmark Folder");
}

void KDREditFolderController::initForNew(const WayfoldBookmarkFolderPtr &folder)
{
    initForEditing(folder);
    setWindowTitle(QT_TRID_NOOP("New Bookmark Folder"));
}
