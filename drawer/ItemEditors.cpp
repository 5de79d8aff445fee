#include "drawer/ItemEditors.h"

#include "core/KDRDrawerBundle.h"
#include "core/settings/WayfoldToolkit.h"
#include "drawer/KDREditFileController.h"
#include "drawer/KDREditFolderController.h"
#include "drawer/KDREditItemController.h"
#include "drawer/KDREditMailController.h"
#include "drawer/KDREditNoteController.h"
#include "drawer/KDRNewPersonController.h"
#include "platform/widgets/Alert.h"

#include <QApplication>

namespace
{
bool editAndSave(KDREditController &controller)
{
    const bool accepted = controller.doEdit();
    if (accepted)
        KDRDrawerBundle::sharedInstance().saveBookmarkFile();
    return accepted;
}
} // namespace

bool ItemEditors::editURL(const std::shared_ptr<WayfoldBookmarkURL> &link)
{
    KDREditItemController controller;
    controller.initEditingBookmark(link);
    return editAndSave(controller);
}

bool ItemEditors::editFile(const std::shared_ptr<WayfoldBookmarkFile> &link)
{
    KDREditFileController controller;
    controller.initEditingBookmark(link);
    return editAndSave(controller);
}

bool ItemEditors::editEmail(const std::shared_ptr<WayfoldBookmarkEmail> &link)
{
    KDREditMailController controller;
    controller.initForEditing(link);
    return editAndSave(controller);
}

bool ItemEditors::editNote(const std::shared_ptr<WayfoldBookmarkNote> &note)
{
    KDREditNoteController controller;
    controller.initEditingNote(note);
    return editAndSave(controller);
}

bool ItemEditors::editFolder(const std::shared_ptr<WayfoldBookmarkFolder> &folder)
{
    KDREditFolderController controller;
    controller.initForEditing(folder);
    return editAndSave(controller);
}

bool ItemEditors::newEmail(const std::shared_ptr<WayfoldBookmarkEmail> &link)
{
    KDREditMailController controller;
    controller.initForNew(link);
    return controller.doEdit();
}

bool ItemEditors::newNote(const std::shared_ptr<WayfoldBookmarkNote> &note)
{
    KDREditNoteController controller;
    controller.initNewNote(note);
    return controller.doEdit();
}

bool ItemEditors::newFolder(const std::shared_ptr<WayfoldBookmarkFolder> &folder)
{
    KDREditFolderController controller;
    controller.initForNew(folder);
    return controller.doEdit();
}

void ItemEditors::tellCardIsNotShown(const QString &name)
{
    Alert alert;
    alert.messageText = WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("Not Shown")));
    const QString text =
        name.isNull()
            ? QStringLiteral(QT_TRID_NOOP("This card is not in your contacts. It may have been deleted, or lie in "
                                          "contacts that are not there at the moment."))
            : QStringLiteral(QT_TRID_NOOP("No program could be started to show \"%@\". The card may have been "
                                          "deleted, or there is no program for contacts."));
    alert.informativeText = WayfoldToolkit::localizedString(text).replace(QStringLiteral("%@"), name);
    alert.runModal(QApplication::activeWindow());
}

std::vector<std::shared_ptr<KDRBookmark>> ItemEditors::newPeople()
{
    KDRNewPersonController controller;
    return controller.doEdit() ? controller.newItems() : std::vector<std::shared_ptr<KDRBookmark>>();
}
