#include "model/WayfoldABEntry.h"

#include "core/settings/WayfoldToolkit.h"
#include "tests/model/ModelTestSupport.h"
#include "tests/support/MemoryContacts.h"

#include <QtTest>

namespace
{
ContactRecordPtr recordWithFlags(int flags)
{
    ContactRecord record = MemoryContacts::person("id", "Ann", "Bell");
    record.flags = flags;
    return std::make_shared<ContactRecord>(record);
}
} // namespace

class WayfoldABEntryTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;
    std::unique_ptr<MemoryContacts> _contacts;

    // An entry for the card, which is put among the contacts.
    WayfoldABEntryPtr entryFor(const ContactRecord &record)
    {
        _contacts->set(record);
        return WayfoldABEntry::AddressBookEntryFromPersonID(record.uniqueId);
    }
    QStringList idsFor(const QString &text) const
    {
        QStringList ids;
        for (const WayfoldABEntryPtr &entry : WayfoldABEntry::recordsContainingSubstring(text))
            ids.append(entry->addressBookID());
        return ids;
    }

private Q_SLOTS:
    void init();
    void cleanup();

    void typeOfRecord_data();
    void typeOfRecord();
    void wordsForTypes();
    void fromRecord();
    void fromIdentifier();
    void cardThatIsNotThereYet();
    void kindFollowsTheCard();
    void cardThatHasGone();

    void names_data();
    void names();
    void namesOfUnknownCards();
    void namesInGerman();
    void titleIsKeptUntilRefresh();

    void summaries_data();
    void summaries();
    void summaryOfADeletedCard();
    void labels_data();
    void labels();

    void pictureOfTheCard();
    void pictureIsSquareAndSmall();
    void pictureOfATurnedCamera();
    void pictureIsAskedForOnce();
    void pictureThatComesLater();
    void pictureOfAChangedCard();
    void pictureThatIsNone();
    void ownCard();
    void noImageForOthers();

    void groupMembers();
    void primaryEmailAddress_data();
    void primaryEmailAddress();
    void vcardOfPeopleAlone();
    void pasteboardTypes();

    void searchedFields_data();
    void searchedFields();
    void foundInTheStoresOrder();
    void deletedCardContainsNothing();

    void archive();
    void damagedArchive();
};

void WayfoldABEntryTest::init()
{
    _home = std::make_unique<FreshHome>();
    _contacts = std::make_unique<MemoryContacts>();
}

void WayfoldABEntryTest::cleanup()
{
    QLocale::setDefault(QLocale::c());
    _contacts.reset();
    _home.reset();
}

// --- Types ----------------------------------------------------------------------------------------------------------

void WayfoldABEntryTest::typeOfRecord_data()
{
    QTest::addColumn<ContactRecordPtr>("record");
    QTest::addColumn<int>("type");
    QTest::newRow("none") << ContactRecordPtr() << 0;
    QTest::newRow("person") << recordWithFlags(0) << 1;
    QTest::newRow("organization") << recordWithFlags(1) << 2;
    for (int flags = 2; flags < 8; ++flags)
        QTest::addRow("shown as %d", flags) << recordWithFlags(flags) << 0;
    QTest::newRow("person, first name first") << recordWithFlags(32) << 1;
    QTest::newRow("organization, last name first") << recordWithFlags(16 + 1) << 2;
    QTest::newRow("person with higher flags") << recordWithFlags(8 + 64) << 1;
    ContactRecord group = MemoryContacts::group("g", "Group", {});
    QTest::newRow("group") << ContactRecordPtr(std::make_shared<ContactRecord>(group)) << 3;
    group.flags = 1;
    QTest::newRow("group with flags") << ContactRecordPtr(std::make_shared<ContactRecord>(group)) << 3;
}

void WayfoldABEntryTest::typeOfRecord()
{
    QFETCH(ContactRecordPtr, record);
    QFETCH(int, type);
    QCOMPARE(int(WayfoldABEntry::EntryTypeFromAddressRecord(record)), type);
    QCOMPARE(int(WayfoldABEntry::AddressBookEntryFromABRecord(record)->entryType()), type);
    if (record)
        QCOMPARE(int(entryFor(*record)->entryType()), type);
}

void WayfoldABEntryTest::wordsForTypes()
{
    QCOMPARE(WayfoldABEntry::AddressBookEntryFromPersonID("none")->entryTypeDescription(), QStringLiteral("Unknown"));
    QCOMPARE(entryFor(MemoryContacts::person("p", "A", "B"))->entryTypeDescription(), QStringLiteral("Person"));
    QCOMPARE(entryFor(MemoryContacts::company("c", "C"))->entryTypeDescription(), QStringLiteral("Organization"));
    QCOMPARE(entryFor(MemoryContacts::group("g", "G", {}))->entryTypeDescription(), QStringLiteral("Group"));
}

void WayfoldABEntryTest::fromRecord()
{
    const auto record = std::make_shared<ContactRecord>(MemoryContacts::company("c", "Kettle"));
    const WayfoldABEntryPtr entry = WayfoldABEntry::AddressBookEntryFromABRecord(record);
    QCOMPARE(entry->addressBookID(), QStringLiteral("c"));
    QCOMPARE(entry->entryType(), WayfoldABEntry::Organization);
    QVERIFY(!entry->fetchAddressBookRecord()); // it is looked up, and the contacts do not have it
    _contacts->set(*record);
    QCOMPARE(entry->fetchAddressBookRecord()->organization, QStringLiteral("Kettle"));
}

void WayfoldABEntryTest::fromIdentifier()
{
    const WayfoldABEntryPtr entry = entryFor(MemoryContacts::person("p", "Ann", "Bell"));
    QCOMPARE(entry->addressBookID(), QStringLiteral("p"));
    QCOMPARE(entry->title(), QStringLiteral("Ann Bell"));
    entry->initFromPersonID("q"); // another one, with nothing of the first
    QCOMPARE(entry->addressBookID(), QStringLiteral("q"));
    QCOMPARE(entry->entryType(), WayfoldABEntry::Unknown);
    QCOMPARE(entry->title(), QStringLiteral("Invalid"));

    const WayfoldABEntryPtr none = WayfoldABEntry::AddressBookEntryFromPersonID(QString());
    QVERIFY(none->addressBookID().isNull());
    QVERIFY(!none->fetchAddressBookRecord());
    QCOMPARE(none->shortDescription(), QStringLiteral("Invalid"));
    QCOMPARE(none->entryType(), WayfoldABEntry::Unknown);
    QVERIFY(none->refresh());
}

// The contacts come some time after the start.
void WayfoldABEntryTest::cardThatIsNotThereYet()
{
    const WayfoldABEntryPtr entry = WayfoldABEntry::AddressBookEntryFromPersonID("p");
    QCOMPARE(entry->entryType(), WayfoldABEntry::Unknown);
    QCOMPARE(entry->title(), QStringLiteral("Invalid"));
    _contacts->set(MemoryContacts::company("p", "Kettle"));
    QCOMPARE(entry->title(), QStringLiteral("Invalid"));
    QVERIFY(entry->refresh());
    QCOMPARE(entry->entryType(), WayfoldABEntry::Organization);
    QCOMPARE(entry->title(), QStringLiteral("Kettle"));
}

// Who wrote the card may say later that it is a company's.
void WayfoldABEntryTest::kindFollowsTheCard()
{
    const WayfoldABEntryPtr entry = entryFor(MemoryContacts::person("p", {}, {}));
    QCOMPARE(entry->title(), QStringLiteral("Unnamed Person"));
    _contacts->set(MemoryContacts::company("p", "Kettle"));
    QCOMPARE(entry->entryType(), WayfoldABEntry::Person);
    entry->refresh();
    QCOMPARE(entry->entryType(), WayfoldABEntry::Organization);
    QCOMPARE(entry->title(), QStringLiteral("Kettle"));
    _contacts->take("p");
    entry->refresh();
    QCOMPARE(entry->entryType(), WayfoldABEntry::Organization);
}

void WayfoldABEntryTest::cardThatHasGone()
{
    const WayfoldABEntryPtr entry = entryFor(MemoryContacts::person("p", "Ann", "Bell", {"ann@a.example"}));
    _contacts->take("p");
    QVERIFY(entry->refresh());
    QCOMPARE(entry->entryType(), WayfoldABEntry::Person);
    QCOMPARE(entry->shortDescription(), QStringLiteral("Invalid"));
    QCOMPARE(entry->title(), QStringLiteral("Invalid"));
    QVERIFY(entry->personPrimaryEmailAddress().isNull());
    QVERIFY(entry->vcard().isNull());
    QCOMPARE(entry->pasteboardTypeForID(), QStringLiteral("ABPeopleUIDsPboardType"));
    const WayfoldABEntryPtr group = entryFor(MemoryContacts::group("g", "Group", {"p"}));
    _contacts->take("g");
    QVERIFY(group->groupMembers().empty());
}

// --- Names ----------------------------------------------------------------------------------------------------------

void WayfoldABEntryTest::names_data()
{
    QTest::addColumn<ContactRecord>("record");
    QTest::addColumn<int>("defaultOrdering");
    QTest::addColumn<QString>("name");
    const auto person = [](const char *title, const QString &first, const QString &last, const QString &suffix,
                           int flags, int defaultOrdering, const char *name) {
        ContactRecord record = MemoryContacts::person("p", first, last);
        record.suffix = suffix;
        record.flags = flags;
        record.organization = QStringLiteral("Kettle");
        QTest::newRow(title) << record << defaultOrdering << QString::fromUtf8(name);
    };
    const QString none;
    person("first name first", "Ann", "Bell", none, 32, 16, "Ann Bell");
    person("first name first, suffix", "Ann", "Bell", "MD", 32, 16, "Ann Bell, MD");
    person("first name first, empty suffix", "Ann", "Bell", "", 32, 16, "Ann Bell");
    person("last name first", "Ann", "Bell", none, 16, 32, "Bell Ann");
    person("last name first, suffix", "Ann", "Bell", "MD", 16, 32, "Bell Ann");
    person("default: first", "Ann", "Bell", "MD", 0, 32, "Ann Bell, MD");
    person("default: last", "Ann", "Bell", "MD", 0, 16, "Bell Ann");
    person("another ordering", "Ann", "Bell", "MD", 8, 32, "Bell Ann");
    person("both bits", "Ann", "Bell", "MD", 48, 32, "Bell Ann");
    person("bits that are no ordering", "Ann", "Bell", none, 64, 32, "Ann Bell");
    person("first name alone", "Ann", none, "MD", 32, 32, "Ann");
    person("last name alone", none, "Bell", "MD", 32, 32, "Bell");
    person("empty names", "", "", none, 32, 32, "Unnamed Person");
    person("empty first name", "", "Bell", none, 32, 32, "Bell");
    person("no names", none, none, "MD", 32, 32, "Unnamed Person");

    ContactRecord company = MemoryContacts::company("c", "Kettle & Sons");
    company.firstName = QStringLiteral("Ann");
    company.lastName = QStringLiteral("Bell");
    QTest::newRow("organization") << company << 32 << QStringLiteral("Kettle & Sons");
    company.organization = QString();
    QTest::newRow("organization without a name") << company << 32 << QStringLiteral("Unnamed Organization");
    ContactRecord group = MemoryContacts::group("g", "Friends", {});
    group.organization = QStringLiteral("Kettle");
    QTest::newRow("group") << group << 32 << QStringLiteral("Friends");
    group.groupName = QString();
    QTest::newRow("group without a name") << group << 32 << QStringLiteral("Unnamed Group");
    ContactRecord unknown = MemoryContacts::person("u", "Ann", "Bell");
    unknown.flags = 2;
    QTest::newRow("of no kind") << unknown << 32 << QStringLiteral("Unknown");
}

void WayfoldABEntryTest::names()
{
    QFETCH(ContactRecord, record);
    QFETCH(int, defaultOrdering);
    _contacts->ordering = defaultOrdering;
    const WayfoldABEntryPtr entry = entryFor(record);
    QTEST(entry->shortDescription(), "name");
    QTEST(entry->title(), "name");
}

void WayfoldABEntryTest::namesOfUnknownCards()
{
    QCOMPARE(WayfoldABEntry::AddressBookEntryFromPersonID("nobody")->shortDescription(), QStringLiteral("Invalid"));
    _contacts.reset(); // there are no contacts at all
    QCOMPARE(WayfoldABEntry::AddressBookEntryFromPersonID("nobody")->shortDescription(), QStringLiteral("Invalid"));
}

void WayfoldABEntryTest::namesInGerman()
{
    const UserLanguage german("de_DE");
    QCOMPARE(WayfoldABEntry::AddressBookEntryFromPersonID("nobody")->title(), QStringLiteral("Ungültig"));
    QCOMPARE(entryFor(MemoryContacts::person("p", {}, {}))->title(), QStringLiteral("Unbenannte Person"));
    QCOMPARE(entryFor(MemoryContacts::company("c", {}))->title(), QStringLiteral("Unbenannte Organisation"));
    QCOMPARE(entryFor(MemoryContacts::group("g", {}, {}))->title(), QStringLiteral("Unbenannte Gruppe"));
    QCOMPARE(entryFor(*recordWithFlags(2))->title(), QStringLiteral("Unbekannt"));
}

void WayfoldABEntryTest::titleIsKeptUntilRefresh()
{
    const WayfoldABEntryPtr entry = entryFor(MemoryContacts::person("p", "Ann", "Bell"));
    QCOMPARE(entry->title(), QStringLiteral("Ann Bell"));
    _contacts->set(MemoryContacts::person("p", "Ann", "Cole"));
    QCOMPARE(entry->title(), QStringLiteral("Ann Bell"));
    QCOMPARE(entry->shortDescription(), QStringLiteral("Ann Cole"));
    QVERIFY(entry->refresh());
    QCOMPARE(entry->title(), QStringLiteral("Ann Cole"));
}

// --- Summaries ------------------------------------------------------------------------------------------------------

void WayfoldABEntryTest::summaries_data()
{
    QTest::addColumn<ContactRecord>("record");
    QTest::addColumn<QString>("summary");
    ContactRecord record = MemoryContacts::person("p", "Ann", "Bell");
    record.primaryPhone = record.primaryEmail = 0;
    QTest::newRow("name alone") << record << QStringLiteral("Ann Bell");
    record.phones = {{"home", "1"}};
    QTest::newRow("one number") << record << QStringLiteral("Ann Bell\n\nhome: 1");
    record.phones = {{"home", "1"}, {"work", "2"}};
    QTest::newRow("two numbers") << record << QStringLiteral("Ann Bell\n\nhome: 1*\nwork: 2");
    record.primaryPhone = 1;
    QTest::newRow("the second is the primary one") << record << QStringLiteral("Ann Bell\n\nhome: 1\nwork: 2*");
    record.primaryPhone = 7;
    QTest::newRow("none is the primary one") << record << QStringLiteral("Ann Bell\n\nhome: 1\nwork: 2");
    record.primaryPhone = 0;
    record.emails = {{"work", "ann@a.example"}};
    QTest::newRow("numbers and an address")
        << record << QStringLiteral("Ann Bell\n\nhome: 1*\nwork: 2\n\nwork: ann@a.example");
    record.phones.clear();
    record.emails = {{"work", "a"}, {"home", "b"}, {"", "c"}};
    record.primaryEmail = 2;
    QTest::newRow("addresses") << record << QStringLiteral("Ann Bell\n\nwork: a\nhome: b\nemail: c*");
    record.flags = ContactRecord::ShowAsCompany;
    record.organization = QStringLiteral("Kettle");
    QTest::newRow("organization") << record << QStringLiteral("Kettle\n\nwork: a\nhome: b\nemail: c*");
    record.isGroup = true;
    record.groupName = QStringLiteral("Friends");
    QTest::newRow("group") << record << QStringLiteral("Friends");
    record.isGroup = false;
    record.flags = 2;
    QTest::newRow("of no kind") << record << QStringLiteral("Unknown");
}

void WayfoldABEntryTest::summaries()
{
    QFETCH(ContactRecord, record);
    QTEST(entryFor(record)->summaryText(), "summary");
}

void WayfoldABEntryTest::summaryOfADeletedCard()
{
    const WayfoldABEntryPtr entry = entryFor(MemoryContacts::person("p", "Ann", "Bell"));
    _contacts->take("p");
    QVERIFY(entry->summaryText().isNull());
}

void WayfoldABEntryTest::labels_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("german");
    for (const auto &[label, german] : std::vector<std::pair<QString, QString>>{{"home", "privat"},
                                                                                {"work", "geschäftlich"},
                                                                                {"mobile", "mobil"},
                                                                                {"main", "Zentrale"},
                                                                                {"fax", "Fax"},
                                                                                {"home fax", "Fax privat"},
                                                                                {"work fax", "Fax geschäftlich"},
                                                                                {"pager", "Pager"},
                                                                                {"car", "Auto"},
                                                                                {"video", "Video"},
                                                                                {"text", "SMS"},
                                                                                {"other", "andere"},
                                                                                {"Folder", "Folder"}, // the user's own
                                                                                {"Büro Köln", "Büro Köln"}})
        QTest::newRow(qPrintable(label)) << label << german;
}

void WayfoldABEntryTest::labels()
{
    QFETCH(QString, label);
    QFETCH(QString, german);
    ContactRecord record = MemoryContacts::person("p", "Ann", "Bell");
    record.phones = {{label, "1"}};
    const WayfoldABEntryPtr entry = entryFor(record);
    QCOMPARE(entry->summaryText(), QStringLiteral("Ann Bell\n\n%1: 1").arg(label));
    const UserLanguage language("de_DE");
    QCOMPARE(entry->summaryText(), QStringLiteral("Ann Bell\n\n%1: 1").arg(german));
    // Without a label.
    record.phones = {{QString(), "1"}};
    record.emails = {{QString(), "a"}};
    QCOMPARE(entryFor(record)->summaryText(), QStringLiteral("Ann Bell\n\nTelefon: 1\n\nE-Mail: a"));
}

// --- Images ---------------------------------------------------------------------------------------------------------

namespace
{
QByteArray pictureFile(const QColor &color, const QSize &size = QSize(8, 8), const char *format = "PNG")
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(color);
    QByteArray file;
    QBuffer buffer(&file);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, format);
    return file;
}

QColor middleOf(const std::shared_ptr<Image> &image)
{
    return image ? pictureOf(image).pixelColor(32, 32) : QColor();
}
} // namespace

void WayfoldABEntryTest::pictureOfTheCard()
{
    _contacts->pictures = {{"p", pictureFile(Qt::red)}, {"c", pictureFile(Qt::blue, {8, 8}, "BMP")}};
    const std::shared_ptr<Image> image = entryFor(MemoryContacts::person("p", "Ann", "Bell"))->image();
    QCOMPARE(middleOf(image), QColor(Qt::red));
    QCOMPARE(image->cacheMode(), Image::NSImageCacheNever);
    QCOMPARE(middleOf(entryFor(MemoryContacts::company("c", "Kettle"))->image()), QColor(Qt::blue));
}

// A photograph is not drawn from its whole, and a high one not broad.
void WayfoldABEntryTest::pictureIsSquareAndSmall()
{
    QImage photograph(600, 1200, QImage::Format_RGB32);
    photograph.fill(Qt::green);
    for (int y = 300; y < 900; ++y) {
        for (int x = 0; x < 600; ++x)
            photograph.setPixelColor(x, y, Qt::red);
    }
    QByteArray file;
    QBuffer buffer(&file);
    buffer.open(QIODevice::WriteOnly);
    photograph.save(&buffer, "PNG");
    _contacts->pictures = {{"p", file}, {"small", pictureFile(Qt::red, {200, 10})}};
    const std::shared_ptr<Image> image = entryFor(MemoryContacts::person("p", "Ann", "Bell"))->image();
    QCOMPARE(image->size(), QSizeF(128, 128));
    const QImage drawn = image->icon().pixmap(QSize(128, 128), 1.0).toImage();
    QCOMPARE(drawn.pixelColor(64, 4), QColor(Qt::red));
    QCOMPARE(drawn.pixelColor(64, 123), QColor(Qt::red));
    QCOMPARE(entryFor(MemoryContacts::person("small", "Ann", "Bell"))->image()->size(), QSizeF(10, 10));
}

// Cameras write the picture as they are held, and say beside it which edge is the upper one.
void WayfoldABEntryTest::pictureOfATurnedCamera()
{
    QImage photograph(64, 64, QImage::Format_RGB32);
    photograph.fill(Qt::red);
    QPainter(&photograph).fillRect(0, 0, 32, 64, Qt::blue); // the left half, which is to be above
    QByteArray file;
    QBuffer buffer(&file);
    buffer.open(QIODevice::WriteOnly);
    photograph.save(&buffer, "JPEG", 100);
    const QByteArray turned = QByteArray::fromHex("ffe10022457869660000" // the mark's length, and what it is
                                                  "4d4d002a00000008"     // big numbers first
                                                  "0001"                 // one entry: turn to the right
                                                  "0112000300000001000600000000"
                                                  "0000");
    file.insert(2, turned);
    _contacts->pictures = {{"p", file}};
    const std::shared_ptr<Image> image = entryFor(MemoryContacts::person("p", "Ann", "Bell"))->image();
    QVERIFY(image);
    const QImage drawn = image->icon().pixmap(QSize(64, 64), 1.0).toImage();
    QVERIFY(drawn.pixelColor(8, 8).blue() > 200 && drawn.pixelColor(56, 8).blue() > 200);
    QVERIFY(drawn.pixelColor(8, 56).red() > 200 && drawn.pixelColor(56, 56).red() > 200);
}

void WayfoldABEntryTest::pictureIsAskedForOnce()
{
    _contacts->pictures = {{"p", pictureFile(Qt::red)}};
    const WayfoldABEntryPtr entry = entryFor(MemoryContacts::person("p", "Ann", "Bell"));
    const WayfoldABEntryPtr other = entryFor(MemoryContacts::person("q", "Bob", "Bell"));
    QVERIFY(entry->image());
    QVERIFY(!other->image());
    for (int i = 0; i < 3; ++i) {
        entry->refresh();
        other->refresh();
        QVERIFY(entry->image());
        QVERIFY(!other->image());
    }
    QCOMPARE(_contacts->picturesAsked, QStringList({"p", "q"}));
    _contacts->set(MemoryContacts::person("r", "Cy", "Bell")); // of whom neither is
    QVERIFY(entry->image());
    QCOMPARE(_contacts->picturesAsked, QStringList({"p", "q"}));
}

void WayfoldABEntryTest::pictureThatComesLater()
{
    const ContactRecord ann = MemoryContacts::person("p", "Ann", "Bell");
    const WayfoldABEntryPtr entry = entryFor(ann);
    QVERIFY(!entry->image());
    _contacts->pictures = {{"p", pictureFile(Qt::red)}};
    QVERIFY(!entry->image());                                 // the store has not told of it
    _contacts->set(MemoryContacts::person("q", "Bob", "Cy")); // a change of whatever card
    QCOMPARE(middleOf(entry->image()), QColor(Qt::red));
    QCOMPARE(_contacts->picturesAsked, QStringList({"p", "p"}));
}

void WayfoldABEntryTest::pictureOfAChangedCard()
{
    const ContactRecord ann = MemoryContacts::person("p", "Ann", "Bell");
    _contacts->pictures = {{"p", pictureFile(Qt::red)}};
    const WayfoldABEntryPtr entry = entryFor(ann);
    QCOMPARE(middleOf(entry->image()), QColor(Qt::red));
    _contacts->pictures = {{"p", pictureFile(Qt::blue)}};
    _contacts->set(ann);
    QCOMPARE(middleOf(entry->image()), QColor(Qt::blue));
    _contacts->pictures.clear();
    _contacts->set(ann);
    QVERIFY(!entry->image());
}

void WayfoldABEntryTest::pictureThatIsNone()
{
    const QByteArray whole = pictureFile(Qt::red);
    for (const QByteArray &file : {QByteArray("no picture"), whole.first(20), QByteArray("\xff\xd8\xff\xe0")}) {
        _contacts->pictures = {{"p", file}};
        QVERIFY(!entryFor(MemoryContacts::person("p", "Ann", "Bell"))->image());
    }
}

void WayfoldABEntryTest::ownCard()
{
    const ContactRecord ann = MemoryContacts::person("p", "Ann", "Bell");
    const WayfoldABEntryPtr entry = entryFor(ann);
    _contacts->ownCard = QStringLiteral("p");
    const std::shared_ptr<Image> image = entry->image();
    QCOMPARE(pictureOf(image), pictureOf(WayfoldToolkit::loadImageNamed("WayfoldBookmarkImageMe")));
    QCOMPARE(image->cacheMode(), Image::NSImageCacheNever);
    QVERIFY(entry->image() == image); // loaded once
    QVERIFY(!entryFor(MemoryContacts::person("q", "Bob", "Bell"))->image());
    _contacts->pictures = {{"p", pictureFile(Qt::red)}};
    _contacts->set(ann);
    QCOMPARE(middleOf(entry->image()), QColor(Qt::red));
}

void WayfoldABEntryTest::noImageForOthers()
{
    ContactRecord unknown = MemoryContacts::person("u", "Ann", "Bell");
    unknown.flags = 2;
    for (const ContactRecord &record : {MemoryContacts::group("g", "Friends", {}), unknown}) {
        _contacts->pictures = {{record.uniqueId, pictureFile(Qt::red)}};
        _contacts->ownCard = record.uniqueId;
        QVERIFY(!entryFor(record)->image());
    }
    _contacts->pictures = {{"p", pictureFile(Qt::red)}};
    const WayfoldABEntryPtr entry = entryFor(MemoryContacts::person("p", "Ann", "Bell"));
    QVERIFY(entry->image());
    _contacts->take("p");
    QVERIFY(!entry->image());
}

// --- What is in a card ----------------------------------------------------------------------------------------------

void WayfoldABEntryTest::groupMembers()
{
    for (const char *id : {"a", "b"})
        _contacts->set(MemoryContacts::person(id, id, {}));
    _contacts->set(MemoryContacts::group("inner", "Inner", {"a"}));
    const WayfoldABEntryPtr group = entryFor(MemoryContacts::group("g", "Group", {"b", "inner", "nobody", "a"}));
    QStringList ids;
    for (const ContactRecordPtr &record : group->groupMembers())
        ids.append(record->uniqueId);
    QCOMPARE(ids, QStringList({"b", "a", "inner"})); // the people, then the groups
    ContactRecord person = MemoryContacts::person("p", "Ann", {});
    person.members = {"a"};
    QVERIFY(entryFor(person)->groupMembers().empty());
}

void WayfoldABEntryTest::primaryEmailAddress_data()
{
    QTest::addColumn<ContactRecord>("record");
    QTest::addColumn<QString>("address"); // null: none
    ContactRecord record = MemoryContacts::person("p", "Ann", {}, {"a", "b"});
    QTest::newRow("first") << record << QStringLiteral("a");
    record.primaryEmail = 1;
    QTest::newRow("second") << record << QStringLiteral("b");
    record.flags = ContactRecord::ShowAsCompany;
    QTest::newRow("organization") << record << QStringLiteral("b");
    record.primaryEmail = 2;
    QTest::newRow("one that is not there") << record << QString();
    record.primaryEmail = -1;
    QTest::newRow("before the first") << record << QString();
    QTest::newRow("none") << MemoryContacts::person("p", "Ann", {}) << QString();
    record = MemoryContacts::person("p", "Ann", {}, {"a"});
    record.flags = 2;
    QTest::newRow("of no kind") << record << QString();
    record = MemoryContacts::group("g", "Group", {});
    record.emails = {{"work", "a"}};
    QTest::newRow("group") << record << QString();
}

void WayfoldABEntryTest::primaryEmailAddress()
{
    QFETCH(ContactRecord, record);
    QFETCH(QString, address);
    const QString answer = entryFor(record)->personPrimaryEmailAddress();
    QCOMPARE(answer, address);
    QCOMPARE(answer.isNull(), address.isNull());
}

void WayfoldABEntryTest::vcardOfPeopleAlone()
{
    for (const char *id : {"p", "c", "g"})
        _contacts->cards.insert(id, QByteArray("BEGIN:VCARD ") + id);
    QCOMPARE(entryFor(MemoryContacts::person("p", "Ann", {}))->vcard(), QByteArray("BEGIN:VCARD p"));
    QVERIFY(entryFor(MemoryContacts::company("c", "Kettle"))->vcard().isNull());
    QVERIFY(entryFor(MemoryContacts::group("g", "Group", {}))->vcard().isNull());
}

void WayfoldABEntryTest::pasteboardTypes()
{
    QCOMPARE(entryFor(MemoryContacts::person("p", "Ann", {}))->pasteboardTypeForID(), "ABPeopleUIDsPboardType");
    QCOMPARE(entryFor(MemoryContacts::company("c", "Kettle"))->pasteboardTypeForID(), "ABPeopleUIDsPboardType");
    QCOMPARE(entryFor(MemoryContacts::group("g", "Group", {}))->pasteboardTypeForID(), "ABGroupsUIDsPboardType");
    QVERIFY(WayfoldABEntry::AddressBookEntryFromPersonID("nobody")->pasteboardTypeForID().isNull());
}

// --- Searching ------------------------------------------------------------------------------------------------------

void WayfoldABEntryTest::searchedFields_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isFound");
    for (const char *text : {"FIRSTN", "lastn", "organiz", "home.page", "one@a.example", "TWO@", "stname"})
        QTest::newRow(text) << QString::fromLatin1(text) << true;
    for (const char *text : {"suffixed", "5551234", "worklabel", "firstnamelastname", "firstname lastname", ""})
        QTest::newRow(text) << QString::fromLatin1(text) << false;
    QTest::newRow("none") << QString() << false;
}

void WayfoldABEntryTest::searchedFields()
{
    QFETCH(QString, text);
    QFETCH(bool, isFound);
    ContactRecord record = MemoryContacts::person("p", "Firstname", "Lastname", {"one@a.example", "two@a.example"});
    record.organization = QStringLiteral("Organization");
    record.homePage = QStringLiteral("http://home.page/");
    record.suffix = QStringLiteral("Suffixed");
    record.phones = {{"worklabel", "5551234"}};
    const WayfoldABEntryPtr entry = entryFor(record);
    QCOMPARE(entry->containsSubstring(text), isFound);
    QCOMPARE(idsFor(text), isFound ? QStringList{"p"} : QStringList());
}

void WayfoldABEntryTest::foundInTheStoresOrder()
{
    _contacts->set(MemoryContacts::person("z", "Zoe", "News"));
    _contacts->set(MemoryContacts::group("g", "News", {"z"}));
    _contacts->set(MemoryContacts::company("c", "News Inc."));
    _contacts->set(MemoryContacts::person("o", "Other", {}));
    _contacts->set(MemoryContacts::person("a", "Ann", "News"));
    QCOMPARE(idsFor("news"), QStringList({"z", "c", "a"}));
    const std::vector<WayfoldABEntryPtr> entries = WayfoldABEntry::recordsContainingSubstring("news");
    QCOMPARE(entries[0]->entryType(), WayfoldABEntry::Person);
    QCOMPARE(entries[1]->entryType(), WayfoldABEntry::Organization);
    QVERIFY(!WayfoldABEntry::AddressBookEntryFromPersonID("g")->containsSubstring("news"));
}

void WayfoldABEntryTest::deletedCardContainsNothing()
{
    const WayfoldABEntryPtr entry = entryFor(MemoryContacts::person("p", "Ann", "Bell"));
    QVERIFY(entry->containsSubstring("bell"));
    _contacts->take("p");
    QVERIFY(!entry->containsSubstring("bell"));
}

// --- Archives -------------------------------------------------------------------------------------------------------

void WayfoldABEntryTest::archive()
{
    const WayfoldABEntryPtr entry = entryFor(MemoryContacts::company("c", "Kettle"));
    QCOMPARE(entry->title(), QStringLiteral("Kettle"));
    _contacts->take("c");
    const WayfoldABEntryPtr read = roundTripThroughArchive(entry);
    QVERIFY(read && read != entry);
    QCOMPARE(read->addressBookID(), QStringLiteral("c"));
    QCOMPARE(read->entryType(), WayfoldABEntry::Organization);
    QCOMPARE(read->title(), QStringLiteral("Invalid")); // looked up
    const WayfoldABEntryPtr none = roundTripThroughArchive(WayfoldABEntry::AddressBookEntryFromPersonID(QString()));
    QVERIFY(none->addressBookID().isNull());
}

void WayfoldABEntryTest::damagedArchive()
{
    QByteArray archive = KeyedArchiver::archivedDataWithRootObject(*entryFor(MemoryContacts::person("p", "Ann", {})));
    QVERIFY(archive.contains("<integer>1</integer>"));
    for (const char *number : {"<integer>4</integer>", "<integer>-1</integer>", "<string>x</string>"}) {
        QByteArray damaged = archive;
        damaged.replace("<integer>1</integer>", number);
        const auto entry = std::dynamic_pointer_cast<WayfoldABEntry>(KeyedUnarchiver::unarchiveObjectWithData(damaged));
        QCOMPARE(entry->entryType(), WayfoldABEntry::Unknown);
        QCOMPARE(entry->addressBookID(), QStringLiteral("p"));
    }
}

QTEST_MAIN(WayfoldABEntryTest)
#include "WayfoldABEntryTest.moc"
