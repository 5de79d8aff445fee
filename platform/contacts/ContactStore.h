#pragma once

#include "platform/contacts/ContactIndex.h"
#include "platform/contacts/ContactRecord.h"

#include <QByteArray>
#include <functional>

// The user's contacts. Where they lie is known by the classes derived from this one: they read the cards as these come
// and keep the index, from which every question is answered at once. Nothing here waits, and nothing fails: a card that
// is not there (yet) is none.
//
// What changes is told through the default notification queue, coalesced, with the store as object:
// "kABDatabaseChanged- Notification" for what was changed through this class,
// "kABDatabaseChangedExternallyNotification" for all else.
class ContactStore
{
public:
    enum State {
        Absent,  // there are no such contacts on this machine, or the user wants none
        Loading, // asked for, but not all of them have come
        Ready,
    };

    // How the user's own program shows a card: a command with its arguments, or a file for the desktop to open.
    struct Opening
    {
        QStringList command;
        QString file;
        bool isNone() const { return command.isEmpty() && file.isEmpty(); }
    };
    enum Purpose { Show, Edit };

    ContactStore() = default;
    ContactStore(const ContactStore &) = delete;
    ContactStore &operator=(const ContactStore &) = delete;
    virtual ~ContactStore();

    // The store that the lists show; an empty one until another is set.
    static ContactStore &sharedAddressBook();
    // Not owned; null for the empty one. Told as a change from outside.
    static void setSharedAddressBook(ContactStore *store);

    virtual State state() const { return Absent; }
    // Grows with every change; what was found in the store holds as long as it stays. No two stores have had the same
    // one after a change.
    quint64 generation() const { return _generation; }

    // None: there is no such card.
    ContactRecordPtr recordForUniqueId(const QString &uniqueId) const;
    // The people and organizations of whom first name, last name, organization, home page or an e-mail address contains
    // the text, as StringRules::containsIgnoringCase has it, in the store's order.
    std::vector<ContactRecordPtr> recordsContainingSubstring(const QString &text) const;
    bool recordContainsSubstring(const ContactRecord &record, const QString &text) const;
    // All people and organizations, in the store's order.
    std::vector<ContactRecordPtr> people() const;
    std::vector<ContactRecordPtr> groups() const;
    // A group's people, in the card's order, and the groups in it. Members without a card are left out.
    std::vector<ContactRecordPtr> membersOfGroup(const ContactRecord &group) const;
    std::vector<ContactRecordPtr> subgroupsOfGroup(const ContactRecord &group) const;
    // The one that a foreign card means: of the same identifier, or else with one of its e-mail addresses and its name.
    ContactRecordPtr recordMeantBy(const ContactRecord &card) const;
    // The user's own card, none when the store does not know it.
    virtual ContactRecordPtr me() const { return nullptr; }
    // Which of the names stands first where the card does not say it: FirstNameFirst or LastNameFirst.
    virtual int defaultNameOrdering() const;

    // The file of the card's picture (PNG, JPEG, ...); empty when there is none. One that is still to be fetched comes
    // with the next change.
    virtual QByteArray imageData(const ContactRecord &record) const;
    // The card in UTF-8, with its line ends; empty when it cannot be had.
    virtual QByteArray vCardRepresentation(const ContactRecord &record) const;
    virtual Opening opening(const ContactRecord &record, Purpose purpose) const;

    // Whether cards can be added at the moment.
    virtual bool canAdd() const { return false; }
    // Adds a card (vCard, UTF-8). `done` is called with its identifier, null when it could not be added; at once or
    // later, and not at all when the store goes before.
    virtual void add(const QByteArray &vCard, const std::function<void(const QString &uniqueId)> &done);

protected:
    // For derived classes. `here`: changed through this class.
    void put(const std::vector<ContactRecordPtr> &records, bool here = false);
    void remove(const QStringList &uniqueIds, bool here = false);
    void clear();
    void tellChange(bool here);
    const ContactIndex &index() const { return _index; }

private:
    ContactIndex _index;
    quint64 _generation = 0;
};
