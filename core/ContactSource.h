#pragma once

#include "platform/contacts/ContactStore.h"

#include <functional>
#include <memory>

// Whose people the lists show: the desktop's, those of a folder of cards, or nobody, as the settings say. With nothing
// chosen, it is the desktop's where there are such contacts, and else the folder's; also where a desktop has contacts
// that hold nobody, and there are cards in the folder. As long as this lives, the store that is in use belongs to it,
// and is the shared one.
class ContactSource
{
public:
    // How the stores are looked for and made.
    struct Makers
    {
        // Says, once, whether the desktop has contacts; later, or at once.
        std::function<void(const std::function<void(bool isThere)> &answer)> lookForDesktop;
        std::function<std::unique_ptr<ContactStore>()> desktop;
        std::function<std::unique_ptr<ContactStore>(const QString &folder)> folder;
    };
    enum Place {
        Nowhere, // the user wants none
        Search,  // whether the desktop has contacts is not known yet
        Desktop,
        Folder,
    };

    // Does what the settings say. Nothing here waits.
    explicit ContactSource(Makers makers = realMakers());
    ~ContactSource();
    ContactSource(const ContactSource &) = delete;
    ContactSource &operator=(const ContactSource &) = delete;

    // The one that was made last and still lives; null when there is none.
    static ContactSource *current();
    static Makers realMakers();
    // The folder that the settings name, else the usual one that holds a card, else `~/.contacts`. The tilde is
    // expanded.
    static QString chosenFolder();

    // To be called when the settings have changed. The store in use stays when it is still the one that is meant.
    void followSettings();
    Place place() const { return _place; }
    // Of the cards in use; null when they lie elsewhere.
    QString folder() const { return _folder; }

private:
    void search();
    void contactsDidChange();
    void use(Place place, const QString &folder = QString());
    std::unique_ptr<ContactStore> makeStore(Place place, const QString &folder) const;

    Makers _makers;
    std::unique_ptr<ContactStore> _store;
    Place _place = Nowhere;
    bool _isAutomatic = false;
    QString _folder;
    std::shared_ptr<const bool> _search; // answers to earlier ones count no more
};
