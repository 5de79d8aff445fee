#pragma once

#include "model/ItemDialogs.h"

// The items' dialogs. A change of an item that is in the tree already is written at once; a new one is saved by whoever
// puts it somewhere.
class ItemEditors : public ItemDialogs
{
public:
    bool editURL(const std::shared_ptr<WayfoldBookmarkURL> &link) override;
    bool editFile(const std::shared_ptr<WayfoldBookmarkFile> &link) override;
    bool editEmail(const std::shared_ptr<WayfoldBookmarkEmail> &link) override;
    bool editNote(const std::shared_ptr<WayfoldBookmarkNote> &note) override;
    bool editFolder(const std::shared_ptr<WayfoldBookmarkFolder> &folder) override;
    bool newEmail(const std::shared_ptr<WayfoldBookmarkEmail> &link) override;
    bool newNote(const std::shared_ptr<WayfoldBookmarkNote> &note) override;
    bool newFolder(const std::shared_ptr<WayfoldBookmarkFolder> &folder) override;
    void tellCardIsNotShown(const QString &name) override;
    std::vector<std::shared_ptr<KDRBookmark>> newPeople() override;
};
