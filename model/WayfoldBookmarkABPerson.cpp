#include "model/WayfoldBookmarkABPerson.h"

#include "core/settings/WayfoldDefaults.h"
#include "model/ContactPicture.h"
#include "model/ItemDictionary.h"
#include "model/ItemImages.h"
#include "model/TextSearch.h"

namespace
{
const QString entryCoderKey = QStringLiteral("_addressBookEntry");
const QString localImageCoderKey = QStringLiteral("_localImage");
const QString triedLocalImageCoderKey = QStringLiteral("_triedLocalImage");

std::shared_ptr<Image> imageOfAll(WayfoldABEntry::EntryType type)
{
    ItemImages &images = ItemImages::shared();
    switch (type) {
    case WayfoldABEntry::Person:
        return ItemImages::loadedOnce(images.person, QStringLiteral("WayfoldBookmarkImagePerson"));
    case WayfoldABEntry::Organization:
        return ItemImages::loadedOnce(images.company, QStringLiteral("WayfoldBookmarkImageCompany"));
    default:
        return nullptr;
    }
}
} // namespace

WayfoldBookmarkABPersonPtr WayfoldBookmarkABPerson::bookmarkWithTitle(const QString &title)
{
    auto person = std::make_shared<WayfoldBookmarkABPerson>();
    person->setTitle(title);
    return person;
}

WayfoldBookmarkABPersonPtr WayfoldBookmarkABPerson::bookmarkWithID(const QString &addressBookID)
{
    auto person = std::make_shared<WayfoldBookmarkABPerson>(Blank());
    person->initWithID(addressBookID);
    return person;
}

WayfoldBookmarkABPersonPtr WayfoldBookmarkABPerson::bookmarkWithRecord(const WayfoldABEntryPtr &entry)
{
    auto person = std::make_shared<WayfoldBookmarkABPerson>(Blank());
    person->initWithRecord(entry);
    return person;
}

WayfoldBookmarkABPersonPtr WayfoldBookmarkABPerson::bookmarkFromDictionary(const QVariantMap &dictionary)
{
    auto person = std::make_shared<WayfoldBookmarkABPerson>(Blank());
    person->loadFromDictionary(dictionary);
    return person;
}

void WayfoldBookmarkABPerson::init()
{
    KDRBookmark::init();
    setEntry(nullptr);
}

void WayfoldBookmarkABPerson::initWithID(const QString &addressBookID)
{
    init();
    setValueFromID(addressBookID);
    setUUID(addressBookID);
}

void WayfoldBookmarkABPerson::initWithRecord(const WayfoldABEntryPtr &entry)
{
    init();
    setEntry(entry);
    setUUID(entry ? entry->addressBookID() : QString());
}

QString WayfoldBookmarkABPerson::title() const
{
    return _addressBookEntry ? _addressBookEntry->title() : QString();
}

QString WayfoldBookmarkABPerson::typeDescription() const
{
    if (!_addressBookEntry)
        return {};
    const WayfoldABEntry::EntryType type = _addressBookEntry->entryType();
    const bool isKnown = type == WayfoldABEntry::Person || type == WayfoldABEntry::Organization;
    return isKnown ? _addressBookEntry->entryTypeDescription() : QString();
}

void WayfoldBookmarkABPerson::setValue(const QVariant &value)
{
    if (!value.isValid() || value.metaType() == QMetaType::fromType<WayfoldABEntryPtr>())
        setEntry(value.value<WayfoldABEntryPtr>());
}

void WayfoldBookmarkABPerson::setValueFromID(const QString &addressBookID)
{
    setEntry(WayfoldABEntry::AddressBookEntryFromPersonID(addressBookID));
}

// The picture was another's.
void WayfoldBookmarkABPerson::setEntry(const WayfoldABEntryPtr &entry)
{
    _localImage.reset();
    _triedLocalImage = false;
    if (entry == _addressBookEntry)
        return;
    changeField(TreeObserver::Field::Value, [this, entry] {
        _addressBookEntry = entry;
        _shownRecord = addressBookRecord();
    });
}

QString WayfoldBookmarkABPerson::tooltipText() const
{
    return _addressBookEntry ? _addressBookEntry->summaryText() : QString();
}

bool WayfoldBookmarkABPerson::refresh()
{
    if (!_addressBookEntry)
        return true;
    _addressBookEntry->refresh();
    // The entry knows whether there may be another picture.
    const bool hadPicture = std::exchange(_triedLocalImage, false);
    const ContactRecordPtr record = addressBookRecord();
    const bool isAnother = _shownRecord.owner_before(record) || record.owner_before(_shownRecord);
    _shownRecord = record;
    if (isAnother || (hadPicture && _addressBookEntry->mayHaveAnotherImage()))
        tellAppearanceChanged();
    return true;
}

bool WayfoldBookmarkABPerson::matches(const TextSearch &search) const
{
    return search.isFoundIn(title()) || (_addressBookEntry && _addressBookEntry->containsSubstring(search.text()));
}

void WayfoldBookmarkABPerson::loadFromDictionary(const QVariantMap &dictionary)
{
    using namespace ItemDictionary;
    initWithID(string(dictionary, addressBookIDKey));
    const QString storedUUID = string(dictionary, uuidKey);
    if (!storedUUID.isEmpty())
        setUUID(storedUUID);
    keepUnknown(dictionary);
}

void WayfoldBookmarkABPerson::writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const
{
    Q_UNUSED(forSaving)
    using namespace ItemDictionary;
    dictionary.insert(typeKey, personType);
    dictionary.insert(addressBookIDKey,
                      textOrEmpty(_addressBookEntry ? _addressBookEntry->addressBookID() : QString()));
    dictionary.insert(uuidKey, textOrEmpty(uuid()));
}

bool WayfoldBookmarkABPerson::isEqual(const KDRBookmark &other) const
{
    return KDRBookmark::isEqual(other) &&
           _addressBookEntry == static_cast<const WayfoldBookmarkABPerson &>(other)._addressBookEntry;
}

std::shared_ptr<Image> WayfoldBookmarkABPerson::imageForCellSize(const QSizeF &size)
{
    Q_UNUSED(size)
    if (!WayfoldDefaults::sharedInstance().showBookmarkIcons() || !_addressBookEntry)
        return nullptr;
    if (!_triedLocalImage) {
        _localImage = _addressBookEntry->image();
        _triedLocalImage = true;
    }
    return _localImage ? _localImage : imageOfAll(_addressBookEntry->entryType());
}

ContactRecordPtr WayfoldBookmarkABPerson::addressBookRecord() const
{
    return _addressBookEntry ? _addressBookEntry->fetchAddressBookRecord() : nullptr;
}

QString WayfoldBookmarkABPerson::primaryEmailAddress() const
{
    return _addressBookEntry ? _addressBookEntry->personPrimaryEmailAddress() : QString();
}

QByteArray WayfoldBookmarkABPerson::vcard() const
{
    return _addressBookEntry ? _addressBookEntry->vcard() : QByteArray();
}

bool WayfoldBookmarkABPerson::editViaDialog()
{
    if (_addressBookEntry)
        _addressBookEntry->openCard(ContactStore::Edit);
    return true;
}

bool WayfoldBookmarkABPerson::selectInAddressBook()
{
    if (_addressBookEntry)
        _addressBookEntry->openCard(ContactStore::Show);
    return true;
}

void WayfoldBookmarkABPerson::encodeWithCoder(KeyedArchiver &coder) const
{
    KDRBookmark::encodeWithCoder(coder);
    coder.encodeObjectForKey(_addressBookEntry, entryCoderKey);
    if (_localImage)
        coder.encodeValueForKey(ContactPicture::toPng(*_localImage), localImageCoderKey);
    coder.encodeValueForKey(_triedLocalImage, triedLocalImageCoderKey);
}

void WayfoldBookmarkABPerson::initWithCoder(const KeyedUnarchiver &coder)
{
    KDRBookmark::initWithCoder(coder);
    setEntry(std::dynamic_pointer_cast<WayfoldABEntry>(coder.decodeObjectForKey(entryCoderKey)));
    _localImage = ContactPicture::fromData(coder.decodeValueForKey(localImageCoderKey).toByteArray());
    _triedLocalImage = coder.decodeValueForKey(triedLocalImageCoderKey).toBool();
}

KDRBookmarkPtr WayfoldBookmarkABPerson::makeNew() const
{
    return std::make_shared<WayfoldBookmarkABPerson>(Blank());
}

bool WayfoldBookmarkABPerson::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldBookmarkABPerson *>(&other);
}

void WayfoldBookmarkABPerson::copyTo(KDRBookmark &copy) const
{
    KDRBookmark::copyTo(copy);
    static_cast<WayfoldBookmarkABPerson &>(copy).setEntry(_addressBookEntry);
}
