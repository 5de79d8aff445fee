#include "model/WayfoldBookmarkABPerson.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/files/PropertyList.h"
#include "platform/widgets/Workspace.h"
#include "tests/model/ModelTestSupport.h"
#include "tests/support/MemoryContacts.h"

#include <QtTest>

class WayfoldBookmarkABPersonTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;
    std::unique_ptr<MemoryContacts> _contacts;

    static QByteArray pictureFile(const QColor &color)
    {
        QImage picture(8, 8, QImage::Format_RGB32);
        picture.fill(color);
        QByteArray file;
        QBuffer buffer(&file);
        buffer.open(QIODevice::WriteOnly);
        picture.save(&buffer, "PNG");
        return file;
    }
    static QColor colorOf(const WayfoldBookmarkABPersonPtr &person)
    {
        return pictureOf(person->imageForCellSize({16, 16})).pixelColor(32, 32);
    }
    static bool isNamed(const std::shared_ptr<Image> &image, const char *name)
    {
        return image && pictureOf(image) == pictureOf(WayfoldToolkit::loadImageNamed(QString::fromLatin1(name)));
    }
    WayfoldBookmarkABPersonPtr ann()
    {
        _contacts->set(MemoryContacts::person("ann", "Ann", "Bell", {"ann@a.example"}));
        return WayfoldBookmarkABPerson::bookmarkWithID("ann");
    }
    WayfoldBookmarkABPersonPtr kettle()
    {
        _contacts->set(MemoryContacts::company("kettle", "Kettle"));
        return WayfoldBookmarkABPerson::bookmarkWithID("kettle");
    }

private Q_SLOTS:
    void init();
    void cleanup();

    void madeFromIdentifier();
    void madeFromEntry();
    void madeFromNoEntry();
    void madeFromATitle();
    void kinds();
    void value();
    void valueFromIdentifier();
    void titleFollowsAtRefresh();
    void refreshOfACardThatComesLater();
    void passedOn();
    void deletedCard();
    void search();

    void equality();
    void copies();
    void archive();
    void archiveWithoutAPicture();
    void archiveOfNoEntry();

    void dictionary();
    void dictionaryOfNoEntry();
    void readDictionary_data();
    void readDictionary();

    void imageOfTheCard();
    void imagesOfAll();
    void imagesSwitchedOff();
    void imageIsFetchedOnce();
    void imageIsFetchedAgainAfterRefresh();
    void imageOfADeletedCard();
    void imageOfAnotherEntry();

    void opensTheFile();
    void opensWithTheProgram();
    void opensNothing();
};

void WayfoldBookmarkABPersonTest::init()
{
    _home = std::make_unique<FreshHome>();
    _contacts = std::make_unique<MemoryContacts>();
}

void WayfoldBookmarkABPersonTest::cleanup()
{
    Workspace::setURLHandler({});
    Workspace::setProgramHandler({});
    _contacts.reset();
    _home.reset();
}

void WayfoldBookmarkABPersonTest::madeFromIdentifier()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    QCOMPARE(person->uuid(), QStringLiteral("ann"));
    QCOMPARE(person->title(), QStringLiteral("Ann Bell"));
    QCOMPARE(person->valueAsString(), QStringLiteral("Ann Bell"));
    QCOMPARE(person->addressBookEntry()->addressBookID(), QStringLiteral("ann"));
    QVERIFY(person->timestamp().isValid());
    QVERIFY(!person->parent());
    person->initWithID("kettle"); // not there
    QCOMPARE(person->uuid(), QStringLiteral("kettle"));
    QCOMPARE(person->title(), QStringLiteral("Invalid"));
}

void WayfoldBookmarkABPersonTest::madeFromEntry()
{
    const WayfoldABEntryPtr entry = ann()->addressBookEntry();
    const WayfoldBookmarkABPersonPtr person = WayfoldBookmarkABPerson::bookmarkWithRecord(entry);
    QVERIFY(person->addressBookEntry() == entry);
    QCOMPARE(person->uuid(), QStringLiteral("ann"));
    QCOMPARE(person->title(), QStringLiteral("Ann Bell"));
    QVERIFY(person->timestamp().isValid());
}

void WayfoldBookmarkABPersonTest::madeFromNoEntry()
{
    const WayfoldBookmarkABPersonPtr person = WayfoldBookmarkABPerson::bookmarkWithRecord(nullptr);
    QVERIFY(person->title().isNull());
    QVERIFY(person->uuid().isNull());
    QVERIFY(person->typeDescription().isNull());
    QVERIFY(person->tooltipText().isNull());
    QVERIFY(person->primaryEmailAddress().isNull());
    QVERIFY(person->vcard().isNull());
    QVERIFY(!person->addressBookRecord());
    QVERIFY(!person->imageForCellSize({16, 16}));
    QVERIFY(person->refresh());
    QVERIFY(person->bookmarksWithSubstring("a").empty());
    QVERIFY(person->copy());
    QVERIFY(person->editViaDialog());
}

// It stands for no card, so it has no title to show.
void WayfoldBookmarkABPersonTest::madeFromATitle()
{
    const WayfoldBookmarkABPersonPtr person = WayfoldBookmarkABPerson::bookmarkWithTitle("Ann");
    QVERIFY(!person->addressBookEntry());
    QVERIFY(person->title().isNull());
    QCOMPARE(person->uuid().size(), 36);
}

void WayfoldBookmarkABPersonTest::kinds()
{
    QCOMPARE(int(ann()->type()), 7);
    QCOMPARE(int(kettle()->type()), 7);
    QCOMPARE(ann()->typeDescription(), QStringLiteral("Person"));
    QCOMPARE(kettle()->typeDescription(), QStringLiteral("Organization"));
    QVERIFY(!ann()->isFolder());
    _contacts->set(MemoryContacts::group("g", "Group", {}));
    QVERIFY(WayfoldBookmarkABPerson::bookmarkWithID("g")->typeDescription().isNull());
    QVERIFY(WayfoldBookmarkABPerson::bookmarkWithID("nobody")->typeDescription().isNull());
}

void WayfoldBookmarkABPersonTest::value()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    QVERIFY(person->value().value<WayfoldABEntryPtr>() == person->addressBookEntry());
    const WayfoldABEntryPtr other = kettle()->addressBookEntry();
    person->setValue(QVariant::fromValue(other));
    QVERIFY(person->addressBookEntry() == other);
    QCOMPARE(person->title(), QStringLiteral("Kettle"));
    QCOMPARE(person->uuid(), QStringLiteral("ann"));
    person->setValue(QStringLiteral("ann")); // of another type
    QVERIFY(person->addressBookEntry() == other);
    person->setValue(QVariant());
    QVERIFY(!person->addressBookEntry());
}

void WayfoldBookmarkABPersonTest::valueFromIdentifier()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    kettle();
    person->setValueFromID("kettle");
    QCOMPARE(person->title(), QStringLiteral("Kettle"));
    QCOMPARE(person->uuid(), QStringLiteral("ann"));
}

void WayfoldBookmarkABPersonTest::titleFollowsAtRefresh()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    QCOMPARE(person->title(), QStringLiteral("Ann Bell"));
    _contacts->set(MemoryContacts::person("ann", "Ann", "Cole"));
    QCOMPARE(person->title(), QStringLiteral("Ann Bell"));
    QVERIFY(person->refresh());
    QCOMPARE(person->title(), QStringLiteral("Ann Cole"));
}

void WayfoldBookmarkABPersonTest::refreshOfACardThatComesLater()
{
    const WayfoldBookmarkABPersonPtr person = WayfoldBookmarkABPerson::bookmarkWithID("kettle");
    QCOMPARE(person->title(), QStringLiteral("Invalid"));
    QVERIFY(!person->imageForCellSize({16, 16}));
    kettle();
    person->refresh();
    QCOMPARE(person->title(), QStringLiteral("Kettle"));
    QCOMPARE(person->typeDescription(), QStringLiteral("Organization"));
    QVERIFY(isNamed(person->imageForCellSize({16, 16}), "WayfoldBookmarkImageCompany"));
}

void WayfoldBookmarkABPersonTest::passedOn()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    _contacts->cards = {{"ann", "BEGIN:VCARD"}};
    QCOMPARE(person->tooltipText(), QStringLiteral("Ann Bell\n\nwork: ann@a.example"));
    QCOMPARE(person->vcard(), QByteArray("BEGIN:VCARD"));
    QVERIFY(person->addressBookRecord() == _contacts->recordForUniqueId("ann"));
    QCOMPARE(person->primaryEmailAddress(), QStringLiteral("ann@a.example"));
}

void WayfoldBookmarkABPersonTest::deletedCard()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    _contacts->take("ann");
    person->refresh();
    QCOMPARE(person->title(), QStringLiteral("Invalid"));
    QVERIFY(person->tooltipText().isNull());
    QCOMPARE(person->typeDescription(), QStringLiteral("Person"));
    QVERIFY(isNamed(person->imageForCellSize({16, 16}), "WayfoldBookmarkImagePerson"));
    QVERIFY(person->bookmarksWithSubstring("ann").empty());
    QCOMPARE(person->bookmarksWithSubstring("inval").size(), 1u); // by its title
    QCOMPARE(person->createDictionary(true).value("AddressBookID"), QVariant("ann"));
}

void WayfoldBookmarkABPersonTest::search()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    for (const char *text : {"NN BE", "bell", "A.EXAMPLE"})
        QCOMPARE(person->bookmarksWithSubstring(text), std::vector<KDRBookmarkPtr>{person});
    for (const char *text : {"work", "kettle", ""})
        QVERIFY(person->bookmarksWithSubstring(text).empty());
    // By the title that is shown, and by the card as it is now.
    QCOMPARE(person->title(), QStringLiteral("Ann Bell"));
    _contacts->set(MemoryContacts::person("ann", "Ann", "Cole"));
    QVERIFY(person->matchesSubstring("bell"));
    QVERIFY(person->matchesSubstring("cole"));
    person->refresh();
    QVERIFY(!person->matchesSubstring("bell"));
}

// --- Equality, copies, archives -------------------------------------------------------------------------------------

void WayfoldBookmarkABPersonTest::equality()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    QVERIFY(person->isEqual(person));
    QVERIFY(person->isEqual(WayfoldBookmarkABPerson::bookmarkWithRecord(person->addressBookEntry())));
    // With another entry for the same card.
    QVERIFY(!person->isEqual(WayfoldBookmarkABPerson::bookmarkWithID("ann")));
    const KDRBookmarkPtr renamed = person->copy();
    renamed->setUUID("other");
    QVERIFY(!person->isEqual(renamed));
    QVERIFY(!person->isEqual(KDRBookmark::bookmarkWithTitle("Ann Bell")));
    const KDRBookmarkPtr base = KDRBookmark::bookmarkWithTitle("Ann Bell");
    base->setUUID("ann");
    QVERIFY(base->isEqual(person)); // one-sided
    QVERIFY(!person->isEqual(base));
}

void WayfoldBookmarkABPersonTest::copies()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    person->setUUID("own");
    const auto folder = makeFolder("Folder", {person});
    const auto copy = std::dynamic_pointer_cast<WayfoldBookmarkABPerson>(person->copy());
    QVERIFY(copy && copy != person);
    QVERIFY(copy->addressBookEntry() == person->addressBookEntry());
    QCOMPARE(copy->uuid(), QStringLiteral("own"));
    QCOMPARE(copy->timestampInMilliseconds(), person->timestampInMilliseconds());
    QVERIFY(!copy->parent());
    QVERIFY(copy->isEqual(person));
    QVERIFY(folder->copy()->isFolder());
    // A copy shows what its source shows.
    _contacts->set(MemoryContacts::person("ann", "Ann", "Cole"));
    person->refresh();
    QCOMPARE(copy->title(), QStringLiteral("Ann Cole"));
}

void WayfoldBookmarkABPersonTest::archive()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    _contacts->pictures = {{"ann", pictureFile(Qt::red)}};
    person->setUUID("own");
    QCOMPARE(colorOf(person), QColor(Qt::red));
    const QVariantMap archive = PropertyList::fromData(KeyedArchiver::archivedDataWithRootObject(*person)).toMap();
    QCOMPARE(archive.value("_title"), QVariant("Ann Bell"));
    QCOMPARE(archive.value("_uuid"), QVariant("own"));
    QCOMPARE(archive.value("_triedLocalImage"), QVariant(true));
    QVERIFY(archive.value("_localImage").toByteArray().startsWith("\x89PNG"));
    QCOMPARE(archive.value("_addressBookEntry").toMap().value("_addressBookID"), QVariant("ann"));

    _contacts->picturesAsked.clear();
    const WayfoldBookmarkABPersonPtr read = roundTripThroughArchive(person);
    QVERIFY(read);
    QCOMPARE(read->uuid(), QStringLiteral("own"));
    QCOMPARE(read->title(), QStringLiteral("Ann Bell"));
    QCOMPARE(read->addressBookEntry()->addressBookID(), QStringLiteral("ann"));
    QVERIFY(!read->timestamp().isValid());
    QVERIFY(!read->parent());
    QCOMPARE(colorOf(read), QColor(Qt::red));
    QVERIFY(_contacts->picturesAsked.isEmpty()); // it came with the archive
}

void WayfoldBookmarkABPersonTest::archiveWithoutAPicture()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    WayfoldBookmarkABPersonPtr read = roundTripThroughArchive(person);
    QCOMPARE(_contacts->picturesAsked, QStringList()); // not fetched by that
    read->imageForCellSize({16, 16});
    QCOMPARE(_contacts->picturesAsked, QStringList{"ann"});
    const QVariantMap archive = PropertyList::fromData(KeyedArchiver::archivedDataWithRootObject(*read)).toMap();
    QVERIFY(!archive.contains("_localImage"));
    read = roundTripThroughArchive(read);
    QVERIFY(isNamed(read->imageForCellSize({16, 16}), "WayfoldBookmarkImagePerson"));
    QCOMPARE(_contacts->picturesAsked, QStringList{"ann"}); // that there is none came with the archive
}

void WayfoldBookmarkABPersonTest::archiveOfNoEntry()
{
    const WayfoldBookmarkABPersonPtr read = roundTripThroughArchive(std::make_shared<WayfoldBookmarkABPerson>());
    QVERIFY(read);
    QVERIFY(!read->addressBookEntry());
    QVERIFY(read->title().isNull());
}

// --- Dictionaries ---------------------------------------------------------------------------------------------------

void WayfoldBookmarkABPersonTest::dictionary()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    const QVariantMap expected{{"WebBookmarkType", "ABPerson"}, {"AddressBookID", "ann"}, {"WebBookmarkUUID", "ann"}};
    QCOMPARE(person->createDictionary(true), expected);
    QCOMPARE(person->createDictionary(false), expected);
    person->setUUID("own");
    QCOMPARE(person->createDictionary(true).value("WebBookmarkUUID"), QVariant("own"));
    QCOMPARE(kettle()->createDictionary(true).value("WebBookmarkType"), QVariant("ABPerson"));
}

void WayfoldBookmarkABPersonTest::dictionaryOfNoEntry()
{
    const QVariantMap expected{{"WebBookmarkType", "ABPerson"}, {"AddressBookID", ""}, {"WebBookmarkUUID", ""}};
    const QVariantMap written = WayfoldBookmarkABPerson::bookmarkWithRecord(nullptr)->createDictionary(true);
    QCOMPARE(written, expected);
    QVERIFY(!written.value("AddressBookID").toString().isNull());
    QVERIFY(!written.value("WebBookmarkUUID").toString().isNull());
}

void WayfoldBookmarkABPersonTest::readDictionary_data()
{
    QTest::addColumn<QVariantMap>("dictionary");
    QTest::addColumn<QString>("addressBookID");
    QTest::addColumn<QString>("uuid");
    QTest::newRow("both") << QVariantMap{{"AddressBookID", "ann"}, {"WebBookmarkUUID", "own"}} << "ann"
                          << "own";
    QTest::newRow("no identifier of its own") << QVariantMap{{"AddressBookID", "ann"}} << "ann"
                                              << "ann";
    QTest::newRow("an empty one") << QVariantMap{{"AddressBookID", "ann"}, {"WebBookmarkUUID", ""}} << "ann"
                                  << "ann";
    QTest::newRow("no card") << QVariantMap{{"WebBookmarkUUID", "own"}} << QString() << "own";
    QTest::newRow("nothing") << QVariantMap() << QString() << QString();
    QTest::newRow("of another type") << QVariantMap{{"AddressBookID", 7}, {"WebBookmarkUUID", QVariantList()}}
                                     << QString() << QString();
}

void WayfoldBookmarkABPersonTest::readDictionary()
{
    QFETCH(QVariantMap, dictionary);
    QFETCH(QString, addressBookID);
    QFETCH(QString, uuid);
    const WayfoldBookmarkABPersonPtr person = WayfoldBookmarkABPerson::bookmarkFromDictionary(dictionary);
    const QString read = person->addressBookEntry()->addressBookID();
    QCOMPARE(read, addressBookID);
    QCOMPARE(read.isNull(), addressBookID.isNull());
    QCOMPARE(person->uuid(), uuid);
    QCOMPARE(person->uuid().isNull(), uuid.isNull());
    QCOMPARE(person->title(), QStringLiteral("Invalid"));
}

// --- Images ---------------------------------------------------------------------------------------------------------

void WayfoldBookmarkABPersonTest::imageOfTheCard()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    _contacts->pictures = {{"ann", pictureFile(Qt::red)}};
    QCOMPARE(colorOf(person), QColor(Qt::red));
    QCOMPARE(person->imageForCellSize({16, 16})->cacheMode(), Image::NSImageCacheNever);
    QVERIFY(person->imageForCellSize({64, 64}) == person->imageForCellSize({16, 16}));
}

void WayfoldBookmarkABPersonTest::imagesOfAll()
{
    const std::shared_ptr<Image> image = ann()->imageForCellSize({16, 16});
    QVERIFY(isNamed(image, "WayfoldBookmarkImagePerson"));
    QCOMPARE(image->cacheMode(), Image::NSImageCacheNever);
    QVERIFY(ann()->imageForCellSize({32, 32}) == image); // one for all
    QVERIFY(isNamed(kettle()->imageForCellSize({16, 16}), "WayfoldBookmarkImageCompany"));
    _contacts->set(MemoryContacts::group("g", "Group", {}));
    QVERIFY(!WayfoldBookmarkABPerson::bookmarkWithID("g")->imageForCellSize({16, 16}));
    QVERIFY(!WayfoldBookmarkABPerson::bookmarkWithID("nobody")->imageForCellSize({16, 16}));
    _contacts->ownCard = QStringLiteral("ann");
    QVERIFY(isNamed(ann()->imageForCellSize({16, 16}), "WayfoldBookmarkImageMe"));
    const QStringList names = {"WayfoldBookmarkImagePerson", "WayfoldBookmarkImageCompany", "WayfoldBookmarkImageMe",
                               "WayfoldBookmarkImageGroup"};
    for (const QString &one : names) {
        for (const QString &other : names)
            QCOMPARE(isNamed(WayfoldToolkit::loadImageNamed(one), qPrintable(other)), one == other);
    }
}

void WayfoldBookmarkABPersonTest::imagesSwitchedOff()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    _contacts->pictures = {{"ann", pictureFile(Qt::red)}};
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QVERIFY(!person->imageForCellSize({16, 16}));
    QVERIFY(_contacts->picturesAsked.isEmpty());
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(true);
    QCOMPARE(colorOf(person), QColor(Qt::red));
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QVERIFY(!person->imageForCellSize({16, 16}));
}

void WayfoldBookmarkABPersonTest::imageIsFetchedOnce()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    for (int i = 0; i < 3; ++i)
        QVERIFY(isNamed(person->imageForCellSize({16, 16}), "WayfoldBookmarkImagePerson"));
    QCOMPARE(_contacts->picturesAsked, QStringList{"ann"});
    // Nor when the contacts change, before the next refresh.
    _contacts->pictures = {{"ann", pictureFile(Qt::red)}};
    ann();
    QVERIFY(isNamed(person->imageForCellSize({16, 16}), "WayfoldBookmarkImagePerson"));
    QCOMPARE(_contacts->picturesAsked, QStringList{"ann"});
}

void WayfoldBookmarkABPersonTest::imageIsFetchedAgainAfterRefresh()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    person->imageForCellSize({16, 16});
    person->refresh(); // nothing has changed
    person->imageForCellSize({16, 16});
    QCOMPARE(_contacts->picturesAsked, QStringList{"ann"});
    _contacts->pictures = {{"ann", pictureFile(Qt::red)}}; // it comes, and this is told as a change
    kettle();
    person->refresh();
    QCOMPARE(colorOf(person), QColor(Qt::red));
    _contacts->pictures = {{"ann", pictureFile(Qt::blue)}};
    ann(); // another card
    person->refresh();
    QCOMPARE(colorOf(person), QColor(Qt::blue));
    QCOMPARE(_contacts->picturesAsked.size(), 3);
}

void WayfoldBookmarkABPersonTest::imageOfADeletedCard()
{
    const WayfoldBookmarkABPersonPtr person = kettle();
    _contacts->pictures = {{"kettle", pictureFile(Qt::red)}};
    QCOMPARE(colorOf(person), QColor(Qt::red));
    _contacts->take("kettle");
    person->refresh();
    QVERIFY(isNamed(person->imageForCellSize({16, 16}), "WayfoldBookmarkImageCompany"));
}

void WayfoldBookmarkABPersonTest::imageOfAnotherEntry()
{
    const WayfoldBookmarkABPersonPtr person = ann();
    _contacts->pictures = {{"ann", pictureFile(Qt::red)}};
    QCOMPARE(colorOf(person), QColor(Qt::red));
    person->setValue(QVariant::fromValue(kettle()->addressBookEntry()));
    QVERIFY(isNamed(person->imageForCellSize({16, 16}), "WayfoldBookmarkImageCompany"));
}

// --- The user's own program -----------------------------------------------------------------------------------------

void WayfoldBookmarkABPersonTest::opensTheFile()
{
    QStringList urls;
    Workspace::setURLHandler([&urls](const Url &url) {
        urls.append(url.absoluteString());
        return true;
    });
    const WayfoldBookmarkABPersonPtr person = ann();
    QVERIFY(person->editViaDialog());
    QVERIFY(person->selectInAddressBook());
    QCOMPARE(_contacts->opened, QStringList({"edit ann", "ann"}));
    QCOMPARE(urls, QStringList({"file:///cards/ann.vcf", "file:///cards/ann.vcf"}));
}

namespace
{
// Cards that a program opens.
class ContactsWithAProgram : public MemoryContacts
{
public:
    Opening opening(const ContactRecord &record, Purpose purpose) const override
    {
        return {{"cards", purpose == Edit ? "--edit" : "--show", record.uniqueId}, {}};
    }
};
} // namespace

void WayfoldBookmarkABPersonTest::opensWithTheProgram()
{
    _contacts = std::make_unique<ContactsWithAProgram>();
    QList<QStringList> commands;
    Workspace::setProgramHandler([&commands](const QStringList &command) {
        commands.append(command);
        return false; // whether it started or not, nobody waits
    });
    const WayfoldBookmarkABPersonPtr person = ann();
    QVERIFY(person->editViaDialog());
    QVERIFY(person->selectInAddressBook());
    QCOMPARE(commands, QList<QStringList>({{"cards", "--edit", "ann"}, {"cards", "--show", "ann"}}));
}

void WayfoldBookmarkABPersonTest::opensNothing()
{
    Workspace::setURLHandler([](const Url &) {
        QTest::qFail("opened", __FILE__, __LINE__);
        return true;
    });
    const WayfoldBookmarkABPersonPtr person = ann();
    _contacts->take("ann");
    QVERIFY(person->editViaDialog());
    QVERIFY(person->selectInAddressBook());
    _contacts.reset();
    QVERIFY(person->editViaDialog());
}

QTEST_MAIN(WayfoldBookmarkABPersonTest)
#include "WayfoldBookmarkABPersonTest.moc"
