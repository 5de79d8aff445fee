#pragma once

#include "core/Messages.h"

#include <QString>
#include <functional>

// Tells the user how it stands with the item file and the settings', and what can be done about it.
class ItemFileMessages
{
public:
    // What its buttons ask for.
    struct Commands
    {
        std::function<void()> save;
        std::function<void()> restore;
    };
    // What a merge has brought from another program.
    struct Changes
    {
        int added = 0;
        int changed = 0;
        int deleted = 0;
        int moved = 0;
        int twice = 0; // changed here, too, so that there are two versions now
    };

    ItemFileMessages(Messages &messages, Commands commands);

    // The file at that path could not be written, although the user has changed something.
    void saveFailed(const QString &path);
    // The same, since another program has it locked and does not let go.
    void fileIsLocked(const QString &path);
    // Told at each success; says so only when the save before it had failed.
    void saved();
    // A copy was kept, since the file held what the lists do not.
    void keptAside(const QString &copy);
    // The same of a file of settings, which could not be read whole.
    void settingsKeptAside(const QString &copy);
    // What comes while an earlier merge is still shown is added to it. Nothing is said of no changes.
    void merged(const QString &path, const Changes &changes);
    // The backup could not be made in that folder.
    void backupFailed(const QString &folder);
    void backupMade();

private:
    void sayNotSaved(const QString &text, const QString &path);

    Messages &_messages;
    Commands _commands;
    bool _isSaveOwed = false;
    Changes _merged; // as it is being shown
};
