#pragma once

#include "platform/contacts/ContactIndex.h"
#include "platform/contacts/ContactRecord.h"

#include <QByteArray>
#include <QTimer>
#include <functional>
#include <memory>

class KnownContacts;

// The user's contacts. Where they lie is known by the classes derived from this one: they read the cards as these come
// and keep the index, from which every question is answered at once. Nothing here waits, and nothing fails: a card that
// is not there (yet) is none.
//
// What changes is told through the default notification queue, coalesced, with the store as object:
// "kABDatabaseChangedNotification" for what was changed through this class,
// "kABDatabaseChangedExternallyNotification" for all else, a few times a second at most while the cards are being read.
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

    ContactStore();
    ContactStore(const ContactStore &) = delete;
    ContactStore &operator=(const ContactStore &) = delete;
    virtual ~ContactStore();

    // The store that the lists show; an empty one until another is set.
    static ContactStore &sharedAddressBook();
    // Not owned; null for the empty one. Told as a change from outside.
    static void setSharedAddressBook(ContactStore *store);

    // Keeps the cards that are asked for in this file, and answers from it while not all have come: what is not there
    // yet is shown as it was last known. See KnownContacts.
    void rememberIn(const QString &path);

    virtual State state() const { return Absent; }
    // Grows with every change; what was found in the store holds as long as it stays. No two stores have had the same
    // one after a change.
    quint64 generation() const { return _generation; }

    // None: there is no such card. While not all cards have come, it may be the one that was there the last time.
    ContactRecordPtr recordForUniqueId(const QString &uniqueId) const;
    // The people and organizations of whom first name, last name, organization, home page or an e-mail address contains
    // the text, as StringRules::containsIgnoringCase has it, in the store's order.
    std::vector<ContactRecordPtr> recordsContainingSubstring(const QString &text) const;
    bool recordContainsSubstring(const ContactRecord &record, const QString &text) const;
    // All people and organizations, in the store's order.
    std::vector<ContactRecordPtr> people() const;
    std::vector<ContactRecordPtr> groups() const;
    // A group's people, in the card's order, and the groups in it, each once. Members without a card are left out.
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
    // Also when the state has become another one, and when `isReading` has.
    void tellChange(bool here);
    // Whether many changes may be on their way, one soon after the other.
    virtual bool isReading() const { return state() == Loading; }
    // Whether there may be cards that have not come: not yet, or because they cannot be had. They are answered as they
    // were last known.
    virtual bool mayLackCards() const { return state() == Loading; }
    const ContactIndex &index() const { return _index; }

private:
    std::vector<ContactRecordPtr> membersThatAreGroups(const ContactRecord &group, bool areGroups) const;
    void postChange(bool here);
    ContactRecordPtr knownRecord(const QString &uniqueId) const;

    ContactIndex _index;
    std::unique_ptr<KnownContacts> _known; // none: nothing is kept
    quint64 _generation = 0;
    QTimer _notice;
};
