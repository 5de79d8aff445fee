#include "drawer/DrawerRoom.h"

#include "core/PreferencesWindow.h"
#include "core/RestorePanel.h"
#include "core/SiteDrawerFactory.h"
#include "drawer/ItemEditors.h"
#include "drawer/KDRDrawer.h"
#include "drawer/KDRDrawerController.h"
#include "drawer/KDRRestoreController.h"
#include "drawer/KDRShowNoteController.h"
#include "drawer/KDRShowNoteView.h"
#include "drawer/WayfoldPrefsController.h"
#include "drawer/WayfoldTabView.h"
#include "lists/CardFiles.h"
#include "lists/NoteViewer.h"
#include "lists/StoreTrees.h"
#include "lists/WayfoldBookmarkOutlineView.h"
#include "lists/WayfoldHistoryOutlineView.h"
#include "lists/WayfoldScratchOutlineView.h"
#include "lists/WayfoldSitePopupButton.h"
#include "platform/widgets/InterfaceFile.h"
#include "platform/widgets/OutlineView.h"

namespace
{
template <class Widget>
void registerClass(const char *name)
{
    InterfaceFile::registerClass(QString::fromLatin1(name), [](QWidget *parent) { return new Widget(parent); });
}
} // namespace

void installDrawerRoom()
{
    CardFiles::removeOld();
    registerClass<OutlineView>("OutlineView");
    registerClass<KDRDrawer>("KDRDrawer");
    registerClass<WayfoldTabView>("WayfoldTabView");
    registerClass<WayfoldSitePopupButton>("WayfoldSitePopupButton");
    registerClass<WayfoldScratchOutlineView>("WayfoldScratchOutlineView");
    registerClass<WayfoldBookmarkOutlineView>("WayfoldBookmarkOutlineView");
    registerClass<WayfoldHistoryOutlineView>("WayfoldHistoryOutlineView");
    registerClass<KDRShowNoteView>("KDRShowNoteView");

    static ItemEditors editors;
    ItemDialogs::setCurrent(&editors);
    static StoreTrees trees;
    SmartFolderSources::setCurrent(&trees);
    NoteViewer::setOpener([](const WayfoldBookmarkNotePtr &note) { KDRShowNoteController::showNote(note); });
    SiteDrawerFactory::setMaker([](const std::shared_ptr<HostWindow> &window) -> std::shared_ptr<SiteDrawerController> {
        return KDRDrawerController::controllerForWindow(window);
    });
    PreferencesWindow::setOpener(&WayfoldPrefsController::displayPrefsWindow);
    RestorePanel::setOpener(&KDRRestoreController::displayPanel);
}
