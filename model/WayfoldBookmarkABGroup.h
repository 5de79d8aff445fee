#pragma once

#include "model/WayfoldABEntry.h"
#include "model/WayfoldAutoFolder.h"

#include <QHash>
#include <QSet>
#include <QStringList>
#include <mutex>

class WayfoldBookmarkABGroup;
using WayfoldBookmarkABGroupPtr = std::shared_ptr<WayfoldBookmarkABGroup>;

// A group of the user's contacts, whose children are its members: people, organizations and groups, which are filled
// too. Its value is its entry, a WayfoldABEntryPtr. It is saved, its members are not: they are looked up anew.
//
// Members do not know their group as their parent. A group that is listed somewhere within itself stays empty there.
class WayfoldBookmarkABGroup : public WayfoldAutoFolder
{
public:
    using WayfoldAutoFolder::WayfoldAutoFolder;

    // Of no card; the title is not shown.
    static WayfoldBookmarkABGroupPtr bookmarkWithTitle(const QString &title);
    static WayfoldBookmarkABGroupPtr bookmarkWithID(const QString &addressBookID);
    static WayfoldBookmarkABGroupPtr bookmarkWithRecord(const WayfoldABEntryPtr &entry);
    static WayfoldBookmarkABGroupPtr bookmarkFromDictionary(const QVariantMap &dictionary);

    void init() override;
    void initWithID(const QString &addressBookID);
    // Takes the card's identifier for its own.
    void initWithRecord(const WayfoldABEntryPtr &entry);

    // As the card has it now; null without an entry, as copies are.
    QString title() const override;
    Type type() const override { return GroupType; }
    QString typeDescription() const override { return QStringLiteral("Group"); }
    QVariant value() const override { return QVariant::fromValue(_addressBookEntry); }
    QString valueAsString() const override { return title(); }
    void setValue(const QVariant &value) override;
    void setValueFromID(const QString &addressBookID);
    bool canBePersistent() const override { return true; }
    // Looks the members up anew, sorted by title. The items of those that were there stay, and while the contacts are
    // the same all is as it was.
    bool refresh() override;
    // By the title as it is now.
    bool matches(const TextSearch &search) const override;
    void loadFromDictionary(const QVariantMap &dictionary) override;
    void keepUnknown(const QVariantMap &dictionary) override { KDRBookmark::keepUnknown(dictionary); }
    void writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const override;
    bool isEqual(const KDRBookmark &other) const override;
    using KDRBookmark::isEqual;
    std::shared_ptr<Image> imageForCellSize(const QSizeF &size) override;
    // Opens the card in the user's own program, as a person's does: there is nothing in a folder's dialog that a group
    // keeps. Always true, and at once.
    bool editViaDialog() override;

    const WayfoldABEntryPtr &addressBookEntry() const { return _addressBookEntry; }
    // Of the members, those of groups among them too, in order and each once.
    QStringList primaryEmailAddressList() const;

    QString classNameForCoder() const override { return QStringLiteral("WayfoldBookmarkABGroup"); }
    void encodeWithCoder(KeyedArchiver &coder) const override;
    void initWithCoder(const KeyedUnarchiver &coder) override;

protected:
    KDRBookmarkPtr makeNew() const override;
    bool isSameKindAs(const KDRBookmark &other) const override;

private:
    void setEntry(const WayfoldABEntryPtr &entry);
    void fill(qsizetype &room);
    void refreshEntry();
    // The item for a card among the members of the last of these groups: the former one where that can stay.
    static KDRBookmarkPtr memberFor(const ContactRecordPtr &record, const KDRBookmarkPtr &former,
                                    const QStringList &around, qsizetype &room);
    static KDRBookmarkPtr groupFor(const ContactRecord &record, const KDRBookmarkPtr &former, const QStringList &around,
                                   qsizetype &room);
    QHash<QString, KDRBookmarkPtr> membersByCard() const;
    bool isWithinItself() const;
    void appendEmailAddresses(QStringList &addresses, QSet<QString> &known) const;

    WayfoldABEntryPtr _addressBookEntry;
    quint64 _filledGeneration = 0;                   // of the contacts; 0: not filled
    QStringList _groupsAround;                       // identifiers, of the groups in which this one is a member
    std::weak_ptr<const ContactRecord> _shownRecord; // the card as it was when it was filled last
    std::recursive_mutex _updateLock;                // who is told of a change may refresh it once more
};
