#pragma once

#include "platform/contacts/ContactStore.h"
#include "platform/files/KeyedArchiver.h"

#include <QString>
#include <memory>
#include <vector>

class Image;
class WayfoldABEntry;
using WayfoldABEntryPtr = std::shared_ptr<WayfoldABEntry>;

// What the lists show of one card of the user's contacts: a person, an organization or a group. It keeps the card's
// identifier and looks the card up at each question, so it may stand for a card that is not there yet, or no more.
//
// Two entries are equal only when they are the same one, as the copies of an item share theirs.
class WayfoldABEntry : public KeyedCoding
{
public:
    // The numbers are fixed.
    enum EntryType {
        Unknown = 0,
        Person = 1,
        Organization = 2,
        Group = 3,
    };

    // Unknown for none, and for cards that are shown as neither a person nor an organization.
    static EntryType EntryTypeFromAddressRecord(const ContactRecordPtr &record);
    static WayfoldABEntryPtr AddressBookEntryFromABRecord(const ContactRecordPtr &record);
    static WayfoldABEntryPtr AddressBookEntryFromPersonID(const QString &addressBookID);
    void initFromABRecord(const ContactRecordPtr &record);
    void initFromPersonID(const QString &addressBookID);

    // As the card had it at the last refresh; stays what it was when the card has gone.
    EntryType entryType() const { return _entryType; }
    // Null for numbers that are no type.
    QString entryTypeDescription() const;
    void determineEntryType();
    // Null: it stands for no card at all.
    QString addressBookID() const { return _addressBookID; }
    ContactRecordPtr fetchAddressBookRecord() const;

    // The display name as it was when it was first asked for after the last refresh.
    QString title() const;
    // Always true.
    bool refresh();
    // The display name as the card has it now; "Invalid" without a card.
    QString shortDescription() const;
    // What it answers for a card that is there. The store is not asked.
    static QString nameOfRecord(const ContactRecord &record, EntryType type);
    // For a tip: the name, telephone numbers and e-mail addresses. Null without a card.
    QString summaryText() const;
    // The picture of a person or an organization, square; one for all for the user's own card without a picture; else
    // none. The store is asked once for the picture of a card, and again after a change when there was none.
    std::shared_ptr<Image> image();
    // Whether image() would ask the store.
    bool mayHaveAnotherImage() const;
    // A group's people and organizations, then the groups in it; empty for all else.
    std::vector<ContactRecordPtr> groupMembers() const;
    // Null for groups, and for those who have none.
    QString personPrimaryEmailAddress() const;
    // Of people alone, in UTF-8; null for all else.
    QByteArray vcard() const;
    // Opens the card in the user's own program, and does not wait. The user is told when that cannot be.
    void openCard(ContactStore::Purpose purpose) const;
    // Null for the unknown type.
    QString pasteboardTypeForID() const;

    // Those whose first or last name, organization, home page or an e-mail address contains the text: people and
    // organizations, in the store's order.
    static std::vector<WayfoldABEntryPtr> recordsContainingSubstring(const QString &text);
    bool containsSubstring(const QString &text) const;

    QString classNameForCoder() const override { return QStringLiteral("WayfoldABEntry"); }
    void encodeWithCoder(KeyedArchiver &coder) const override;
    void initWithCoder(const KeyedUnarchiver &coder) override;

private:
    bool isPersonOrOrganization() const { return _entryType == Person || _entryType == Organization; }
    static QString personName(const ContactRecord &record);

    EntryType _entryType = Unknown;
    QString _addressBookID;
    mutable QString _title;
    // The picture of that card as it was at that generation of the store; none: it has none, or none yet.
    std::shared_ptr<Image> _picture;
    ContactRecordPtr _picturedRecord;
    quint64 _picturedGeneration = 0;
};
