#pragma once

#include <QString>
#include <memory>
#include <vector>

class KDRBookmark;
class WayfoldBookmarkEmail;
class WayfoldBookmarkFile;
class WayfoldBookmarkFolder;
class WayfoldBookmarkNote;
class WayfoldBookmarkURL;

// The dialogs that items open on themselves; filled in at start-up by the room that has windows. Each runs until the
// user is done and says whether the changes were accepted.
class ItemDialogs
{
public:
    virtual ~ItemDialogs() = default;

    // Null (until set): nothing can be edited.
    static ItemDialogs *current();
    // Not owned.
    static void setCurrent(ItemDialogs *dialogs);

    virtual bool editURL(const std::shared_ptr<WayfoldBookmarkURL> &link) = 0;
    virtual bool editFile(const std::shared_ptr<WayfoldBookmarkFile> &link) = 0;
    virtual bool editEmail(const std::shared_ptr<WayfoldBookmarkEmail> &link) = 0;
    virtual bool editNote(const std::shared_ptr<WayfoldBookmarkNote> &note) = 0;
    virtual bool editFolder(const std::shared_ptr<WayfoldBookmarkFolder> &folder) = 0;
    // For an item that was just made.
    virtual bool newEmail(const std::shared_ptr<WayfoldBookmarkEmail> &link) = 0;
    virtual bool newNote(const std::shared_ptr<WayfoldBookmarkNote> &note) = 0;
    virtual bool newFolder(const std::shared_ptr<WayfoldBookmarkFolder> &folder) = 0;
    // Nothing could be started to show, or to edit, the card of that name. Null: there is no such card.
    virtual void tellCardIsNotShown(const QString & /*name*/) {}
    // New items for the people and groups that the user chooses from the contacts; none when that was cancelled.
    virtual std::vector<std::shared_ptr<KDRBookmark>> newPeople() = 0;
};
