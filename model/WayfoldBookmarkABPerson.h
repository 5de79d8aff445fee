#pragma once

#include "model/KDRBookmark.h"
#include "model/WayfoldABEntry.h"

class WayfoldBookmarkABPerson;
using WayfoldBookmarkABPersonPtr = std::shared_ptr<WayfoldBookmarkABPerson>;

// A person or an organization of the user's contacts. It holds nothing of the card but its entry, which is its value, a
// WayfoldABEntryPtr; copies share that.
class WayfoldBookmarkABPerson : public KDRBookmark
{
public:
    using KDRBookmark::KDRBookmark;

    // Of no card; the title is not shown.
    static WayfoldBookmarkABPersonPtr bookmarkWithTitle(const QString &title);
    static WayfoldBookmarkABPersonPtr bookmarkWithID(const QString &addressBookID);
    static WayfoldBookmarkABPersonPtr bookmarkWithRecord(const WayfoldABEntryPtr &entry);
    static WayfoldBookmarkABPersonPtr bookmarkFromDictionary(const QVariantMap &dictionary);

    void init() override;
    void initWithID(const QString &addressBookID);
    // Takes the card's identifier for its own.
    void initWithRecord(const WayfoldABEntryPtr &entry);

    // The entry's; null without an entry.
    QString title() const override;
    Type type() const override { return PersonType; }
    // "Person" or "Organization"; null as long as the card is not known.
    QString typeDescription() const override;
    QVariant value() const override { return QVariant::fromValue(_addressBookEntry); }
    QString valueAsString() const override { return title(); }
    void setValue(const QVariant &value) override;
    void setValueFromID(const QString &addressBookID);
    QString tooltipText() const override;
    // Shows the card as it is now.
    bool refresh() override;
    bool matches(const TextSearch &search) const override;
    void loadFromDictionary(const QVariantMap &dictionary) override;
    void writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const override;
    bool isEqual(const KDRBookmark &other) const override;
    using KDRBookmark::isEqual;
    // The card's own picture, asked for once between two refreshes.
    std::shared_ptr<Image> imageForCellSize(const QSizeF &size) override;

    const WayfoldABEntryPtr &addressBookEntry() const { return _addressBookEntry; }
    ContactRecordPtr addressBookRecord() const;
    QString primaryEmailAddress() const;
    QByteArray vcard() const;
    // Opens the card in the user's own program. Always true, and at once; the user is told when that cannot be.
    bool editViaDialog() override;
    bool selectInAddressBook();

    QString classNameForCoder() const override { return QStringLiteral("WayfoldBookmarkABPerson"); }
    void encodeWithCoder(KeyedArchiver &coder) const override;
    void initWithCoder(const KeyedUnarchiver &coder) override;

protected:
    KDRBookmarkPtr makeNew() const override;
    bool isSameKindAs(const KDRBookmark &other) const override;
    void copyTo(KDRBookmark &copy) const override;

private:
    void setEntry(const WayfoldABEntryPtr &entry);

    WayfoldABEntryPtr _addressBookEntry;
    std::weak_ptr<const ContactRecord> _shownRecord; // the card as it was at the last refresh
    std::shared_ptr<Image> _localImage;
    bool _triedLocalImage = false;
};
