#include "platform/contacts/ContactStore.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/contacts/KnownContacts.h"
#include "tests/support/MemoryContacts.h"
#include "tests/support/TemporaryHome.h"

#include <QElapsedTimer>
#include <QTest>

namespace
{
// With the operations that are for derived classes alone.
class OpenContacts : public MemoryContacts
{
public:
    bool lacksCards = false;

    using ContactStore::clear;
    using ContactStore::put;
    using ContactStore::remove;
    using ContactStore::tellChange;

protected:
    bool mayLackCards() const override { return lacksCards || MemoryContacts::mayLackCards(); }
};

ContactRecordPtr shared(const ContactRecord &record)
{
    return std::make_shared<ContactRecord>(record);
}

QStringList identifiersOf(const std::vector<ContactRecordPtr> &records)
{
    QStringList found;
    for (const ContactRecordPtr &record : records)
        found.append(record->uniqueId);
    return found;
}
} // namespace

class ContactStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void sharedStoreIsEmptyUntilOneIsSet();
    void sharedStoreGoesWithItsOwner();
    void anotherSharedStoreIsTold();
    void addressWithoutCard_data();
    void addressWithoutCard();
    void cardWhoseIdentifierIsAnAddress();
    void membersInTheirOrderEachOnce();
    void membersWithoutCardAreLeftOut();
    void membersThatAreAddresses();
    void groupsInCirclesEnd();
    void meantIsTheOneOfTheSameIdentifier();
    void meantIsTheOneOfTheSameNameAndAddress();
    void defaultNameOrderingFollowsTheLocale_data();
    void defaultNameOrderingFollowsTheLocale();
    void storeWithoutPlaceHasNothingToHandOut();
    void changesAreToldByWhoMadeThem();
    void changesAreToldOnceAPass();
    void generationGrowsWithEveryChange();
    void loadingTellsAFewTimesASecond();
    void readyTellsAtOnce();
    void goneStoreTellsNothing();
    void knownCardIsShownWhileLoading();
    void knownGroupIsShownWithItsMembers();
    void knownCardIsNotShownOtherwise_data();
    void knownCardIsNotShownOtherwise();
    void knownCardIsShownWhereCardsCannotBeHad();
    void knownCardIsNotSearched();
    void cardThatCameCountsMoreThanTheKnownOne();
    void removedCardIsForgotten();
    void cardThatWasGoneAtTheNextStartIsForgotten();
    void changedCardIsKnownAsItIsNow();
    void onlyWhatWasAskedForIsKnown();

private:
    void countNotices();
    QString knownFile() const { return _home->path("known.plist"); }

    std::unique_ptr<TemporaryHome> _home;
    std::unique_ptr<OpenContacts> _store;
    int _fromHere = 0;
    int _fromElsewhere = 0;
};

void ContactStoreTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    _store = std::make_unique<OpenContacts>();
    QCoreApplication::processEvents();
    countNotices();
}

void ContactStoreTest::cleanup()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    _store.reset();
    _home.reset();
}

void ContactStoreTest::countNotices()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    _fromHere = _fromElsewhere = 0;
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification &) { ++_fromHere; }, PlatformNotifications::kABDatabaseChangedNotification,
        _store.get());
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification &) { ++_fromElsewhere; },
        PlatformNotifications::kABDatabaseChangedExternallyNotification, _store.get());
}

void ContactStoreTest::sharedStoreIsEmptyUntilOneIsSet()
{
    QCOMPARE(&ContactStore::sharedAddressBook(), static_cast<ContactStore *>(_store.get()));
    ContactStore::setSharedAddressBook(nullptr);
    ContactStore &none = ContactStore::sharedAddressBook();
    QVERIFY(&none != _store.get());
    QCOMPARE(none.state(), ContactStore::Absent);
    QVERIFY(none.people().empty());
    QVERIFY(!none.recordForUniqueId("a"));
    QVERIFY(!none.recordForUniqueId("mailto:a@b.example"));
    QVERIFY(!none.me());
    QVERIFY(!none.canAdd());
}

void ContactStoreTest::sharedStoreGoesWithItsOwner()
{
    _store.reset();
    QCOMPARE(ContactStore::sharedAddressBook().state(), ContactStore::Absent);
}

void ContactStoreTest::anotherSharedStoreIsTold()
{
    const quint64 generation = _store->generation();
    _store->presentState = ContactStore::Loading; // which is no reason to wait here
    ContactStore::setSharedAddressBook(_store.get());
    QVERIFY(_store->generation() > generation);
    QCoreApplication::processEvents();
    QCOMPARE(_fromElsewhere, 1);
    QCOMPARE(_fromHere, 0);
}

void ContactStoreTest::addressWithoutCard_data()
{
    QTest::addColumn<QString>("uniqueId");
    QTest::addColumn<QString>("address");
    QTest::newRow("address") << "mailto:ada@a.example"
                             << "ada@a.example";
    QTest::newRow("capitals") << "MAILTO:ada@a.example"
                              << "ada@a.example";
    QTest::newRow("nothing behind it") << "mailto:" << QString();
    QTest::newRow("something else") << "tel:555" << QString();
}

void ContactStoreTest::addressWithoutCard()
{
    QFETCH(QString, uniqueId);
    QFETCH(QString, address);
    for (const auto state : {ContactStore::Ready, ContactStore::Loading}) {
        _store->presentState = state;
        const ContactRecordPtr record = _store->recordForUniqueId(uniqueId);
        QCOMPARE(record != nullptr, !address.isNull());
        if (!record)
            continue;
        QCOMPARE(record->uniqueId, uniqueId);
        QCOMPARE(record->firstName, address);
        QVERIFY(record->lastName.isNull());
        QCOMPARE(record->emails.size(), std::size_t(1));
        QCOMPARE(record->emails[0].value, address);
        QVERIFY(!record->isGroup);
    }
    _store->presentState = ContactStore::Absent;
    QVERIFY(!_store->recordForUniqueId(uniqueId));
}

void ContactStoreTest::cardWhoseIdentifierIsAnAddress()
{
    _store->set(MemoryContacts::person("mailto:ada@a.example", "Ada", "Lovelace"));
    QCOMPARE(_store->recordForUniqueId("mailto:ada@a.example")->lastName, QString("Lovelace"));
}

void ContactStoreTest::membersInTheirOrderEachOnce()
{
    for (const char *id : {"a", "b", "c"})
        _store->set(MemoryContacts::person(id, id, "Card"));
    _store->set(MemoryContacts::group("g", "Inner", {}));
    _store->set(MemoryContacts::group("all", "All", {"c", "g", "a", "c", "b", "a", "g"}));
    const ContactRecordPtr all = _store->recordForUniqueId("all");
    QCOMPARE(identifiersOf(_store->membersOfGroup(*all)), QStringList({"c", "a", "b"}));
    QCOMPARE(identifiersOf(_store->subgroupsOfGroup(*all)), QStringList({"g"}));
}

void ContactStoreTest::membersWithoutCardAreLeftOut()
{
    _store->set(MemoryContacts::person("a", "Ada", "Lovelace"));
    const ContactRecord group = MemoryContacts::group("all", "All", {"", "nobody", "a", QString()});
    QCOMPARE(identifiersOf(_store->membersOfGroup(group)), QStringList{"a"});
    QVERIFY(_store->subgroupsOfGroup(group).empty());
    _store->take("a");
    QVERIFY(_store->membersOfGroup(group).empty());
}

void ContactStoreTest::membersThatAreAddresses()
{
    const ContactRecord group = MemoryContacts::group("all", "All", {"mailto:b@b.example", "mailto:b@b.example"});
    QCOMPARE(identifiersOf(_store->membersOfGroup(group)), QStringList{"mailto:b@b.example"});
    QVERIFY(_store->subgroupsOfGroup(group).empty());
}

void ContactStoreTest::groupsInCirclesEnd()
{
    _store->set(MemoryContacts::group("one", "One", {"two", "one"}));
    _store->set(MemoryContacts::group("two", "Two", {"one"}));
    QCOMPARE(identifiersOf(_store->subgroupsOfGroup(*_store->recordForUniqueId("one"))), QStringList({"two", "one"}));
    QCOMPARE(identifiersOf(_store->subgroupsOfGroup(*_store->recordForUniqueId("two"))), QStringList({"one"}));
    QVERIFY(_store->membersOfGroup(*_store->recordForUniqueId("one")).empty());
}

void ContactStoreTest::meantIsTheOneOfTheSameIdentifier()
{
    _store->set(MemoryContacts::person("first", "Ada", "Lovelace", {"ada@a.example"}));
    _store->set(MemoryContacts::person("second", "Ada", "King", {"king@a.example"}));
    const ContactRecord card = MemoryContacts::person("second", "Ada", "Lovelace", {"ada@a.example"});
    QCOMPARE(_store->recordMeantBy(card)->uniqueId, QString("second"));
}

void ContactStoreTest::meantIsTheOneOfTheSameNameAndAddress()
{
    _store->set(MemoryContacts::person("first", "Ada", "Lovelace", {"ada@a.example"}));
    QCOMPARE(_store->recordMeantBy(MemoryContacts::person("?", "Ada", "Lovelace", {"ADA@a.example"}))->uniqueId,
             QString("first"));
    QCOMPARE(_store->recordMeantBy(MemoryContacts::person(QString(), "Ada", "Lovelace", {"ada@a.example"}))->uniqueId,
             QString("first"));
    QVERIFY(!_store->recordMeantBy(MemoryContacts::person("?", "Ada", "King", {"ada@a.example"})));
    QVERIFY(!_store->recordMeantBy(MemoryContacts::person("?", "Ada", "Lovelace")));
}

void ContactStoreTest::defaultNameOrderingFollowsTheLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<int>("ordering");
    for (const char *locale : {"zh_CN", "hu_HU", "ja_JP", "ko_KR", "vi_VN"})
        QTest::newRow(locale) << locale << int(ContactRecord::LastNameFirst);
    for (const char *locale : {"en_US", "de_DE", "fr_FR", "C"})
        QTest::newRow(locale) << locale << int(ContactRecord::FirstNameFirst);
}

void ContactStoreTest::defaultNameOrderingFollowsTheLocale()
{
    QFETCH(QString, locale);
    QFETCH(int, ordering);
    const QLocale before;
    QLocale::setDefault(QLocale(locale));
    const int answer = ContactStore().defaultNameOrdering();
    QLocale::setDefault(before);
    QCOMPARE(answer, ordering);
}

void ContactStoreTest::storeWithoutPlaceHasNothingToHandOut()
{
    ContactStore store;
    const ContactRecord record = MemoryContacts::person("a", "Ada", "Lovelace");
    QVERIFY(store.imageData(record).isEmpty());
    QVERIFY(store.vCardRepresentation(record).isEmpty());
    QVERIFY(store.opening(record, ContactStore::Show).isNone());
    QVERIFY(store.opening(record, ContactStore::Edit).isNone());
    QString uniqueId = "not called";
    store.add("BEGIN:VCARD\r\nVERSION:3.0\r\nFN:A\r\nEND:VCARD\r\n", [&](const QString &id) { uniqueId = id; });
    QVERIFY(uniqueId.isNull());
}

void ContactStoreTest::changesAreToldByWhoMadeThem()
{
    const ContactRecordPtr ada = shared(MemoryContacts::person("a", "Ada", "Lovelace"));
    _store->put({ada});
    QCOMPARE(_fromElsewhere, 0); // later, not at once
    QCoreApplication::processEvents();
    QCOMPARE(_fromElsewhere, 1);
    _store->remove({"a"});
    QCoreApplication::processEvents();
    QCOMPARE(_fromElsewhere, 2);
    _store->clear();
    QCoreApplication::processEvents();
    QCOMPARE(_fromElsewhere, 3);
    QCOMPARE(_fromHere, 0);
    _store->put({ada}, true);
    QCoreApplication::processEvents();
    QCOMPARE(_fromHere, 1);
    _store->remove({"a"}, true);
    QCoreApplication::processEvents();
    QCOMPARE(_fromHere, 2);
    QCOMPARE(_fromElsewhere, 3);
}

void ContactStoreTest::changesAreToldOnceAPass()
{
    for (int i = 0; i < 100; ++i)
        _store->put({shared(MemoryContacts::person(QString::number(i), "Card", "Card"))}, i % 2 == 0);
    QCoreApplication::processEvents();
    QCOMPARE(_fromHere, 1);
    QCOMPARE(_fromElsewhere, 1);
}

void ContactStoreTest::generationGrowsWithEveryChange()
{
    quint64 last = _store->generation();
    _store->put({shared(MemoryContacts::person("a", "Ada", "Lovelace"))});
    QVERIFY(_store->generation() > last);
    last = _store->generation();
    _store->remove({"a"}, true);
    QVERIFY(_store->generation() > last);
    last = _store->generation();
    _store->clear();
    QVERIFY(_store->generation() > last);
    last = _store->generation();
    _store->tellChange(false);
    QVERIFY(_store->generation() > last);
}

// Whatever the machine's speed, there are no more notices than quarters of a second, and the end is told.
void ContactStoreTest::loadingTellsAFewTimesASecond()
{
    _store->presentState = ContactStore::Loading;
    QElapsedTimer time;
    time.start();
    for (int i = 0; i < 300; ++i) {
        _store->put({shared(MemoryContacts::person(QString::number(i), "Card", "Card"))});
        QTest::qWait(2);
    }
    const int duringLoading = _fromElsewhere;
    QVERIFY(duringLoading >= 1);
    QVERIFY2(duringLoading <= time.elapsed() / 250, qPrintable(QString::number(duringLoading)));
    _store->presentState = ContactStore::Ready;
    _store->tellChange(false);
    QCoreApplication::processEvents();
    QCOMPARE(_fromElsewhere, duringLoading + 1);
    QTest::qWait(400); // nothing that was put off comes behind it in this time
    QCOMPARE(_fromElsewhere, duringLoading + 1);
    QCOMPARE(_fromHere, 0);
}

void ContactStoreTest::readyTellsAtOnce()
{
    for (int i = 1; i <= 20; ++i) {
        _store->put({shared(MemoryContacts::person("a", QString::number(i), "Card"))});
        QCoreApplication::processEvents();
        QCOMPARE(_fromElsewhere, i);
    }
    // What the user does here is told at once while loading, too.
    _store->presentState = ContactStore::Loading;
    _store->put({shared(MemoryContacts::person("a", "Ada", "Card"))}, true);
    QCoreApplication::processEvents();
    QCOMPARE(_fromHere, 1);
}

void ContactStoreTest::goneStoreTellsNothing()
{
    _store->put({shared(MemoryContacts::person("a", "Ada", "Lovelace"))});
    _store->presentState = ContactStore::Loading;
    _store->put({shared(MemoryContacts::person("a", "Ada", "King"))});
    _store.reset();
    QTest::qWait(400); // the notice that was put off would come in this time
    QCOMPARE(_fromElsewhere, 0);
}

void ContactStoreTest::knownCardIsShownWhileLoading()
{
    _store->rememberIn(knownFile());
    _store->set(MemoryContacts::person("a", "Ada", "Lovelace", {"ada@a.example"}));
    QVERIFY(_store->recordForUniqueId("a"));
    _store = std::make_unique<OpenContacts>(); // the next start of the program
    _store->presentState = ContactStore::Loading;
    QVERIFY(!_store->recordForUniqueId("a"));
    _store->rememberIn(knownFile());
    const ContactRecordPtr known = _store->recordForUniqueId("a");
    QVERIFY(known);
    QCOMPARE(*known, MemoryContacts::person("a", "Ada", "Lovelace", {"ada@a.example"}));
}

void ContactStoreTest::knownGroupIsShownWithItsMembers()
{
    _store->rememberIn(knownFile());
    _store->set(MemoryContacts::person("a", "Ada", "Lovelace"));
    _store->set(MemoryContacts::group("g", "Group", {"a", "g"}));
    QVERIFY(_store->recordForUniqueId("g"));
    _store->membersOfGroup(*_store->recordForUniqueId("g"));
    _store = std::make_unique<OpenContacts>();
    _store->presentState = ContactStore::Loading;
    _store->rememberIn(knownFile());
    const ContactRecordPtr group = _store->recordForUniqueId("g");
    QVERIFY(group);
    QCOMPARE(group->groupName, QString("Group"));
    QCOMPARE(identifiersOf(_store->membersOfGroup(*group)), QStringList{"a"});
    QCOMPARE(identifiersOf(_store->subgroupsOfGroup(*group)), QStringList{"g"});
}

void ContactStoreTest::knownCardIsNotShownOtherwise_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("absent") << int(ContactStore::Absent);
    QTest::newRow("ready") << int(ContactStore::Ready);
}

void ContactStoreTest::knownCardIsNotShownOtherwise()
{
    QFETCH(int, state);
    _store->rememberIn(knownFile());
    _store->set(MemoryContacts::person("a", "Ada", "Lovelace"));
    QVERIFY(_store->recordForUniqueId("a"));
    _store = std::make_unique<OpenContacts>();
    _store->rememberIn(knownFile());
    _store->presentState = ContactStore::State(state);
    QVERIFY(!_store->recordForUniqueId("a"));
    _store->presentState = ContactStore::Loading;
    QVERIFY(_store->recordForUniqueId("a"));
}

// As those of an address book that is out of reach, in contacts of which all others have come.
void ContactStoreTest::knownCardIsShownWhereCardsCannotBeHad()
{
    _store->rememberIn(knownFile());
    for (const char *id : {"a", "b"})
        _store->set(MemoryContacts::person(id, "Ada", "Lovelace"));
    QVERIFY(_store->recordForUniqueId("a") && _store->recordForUniqueId("b"));
    for (int start = 0; start < 2; ++start) {
        _store = std::make_unique<OpenContacts>();
        _store->lacksCards = true;
        _store->rememberIn(knownFile());
        _store->set(MemoryContacts::person("b", "Ada", "King"));
        QVERIFY(_store->recordForUniqueId("a"));
        QCOMPARE(_store->recordForUniqueId("b")->lastName, QString("King"));
    }
    _store->lacksCards = false;
    QVERIFY(!_store->recordForUniqueId("a"));
    _store->tellChange(false);
    _store->lacksCards = true;
    QVERIFY(!_store->recordForUniqueId("a")); // forgotten
}

void ContactStoreTest::knownCardIsNotSearched()
{
    _store->rememberIn(knownFile());
    _store->set(MemoryContacts::person("a", "Ada", "Lovelace", {"ada@a.example"}));
    const ContactRecordPtr ada = _store->recordForUniqueId("a");
    _store = std::make_unique<OpenContacts>();
    _store->presentState = ContactStore::Loading;
    _store->rememberIn(knownFile());
    QVERIFY(_store->people().empty());
    QVERIFY(_store->recordsContainingSubstring("Ada").empty());
    QVERIFY(!_store->recordMeantBy(*ada));
}

void ContactStoreTest::cardThatCameCountsMoreThanTheKnownOne()
{
    _store->rememberIn(knownFile());
    _store->set(MemoryContacts::person("a", "Ada", "Lovelace"));
    QVERIFY(_store->recordForUniqueId("a"));
    _store = std::make_unique<OpenContacts>();
    _store->presentState = ContactStore::Loading;
    _store->rememberIn(knownFile());
    _store->set(MemoryContacts::person("a", "Ada", "King"));
    QCOMPARE(_store->recordForUniqueId("a")->lastName, QString("King"));
}

void ContactStoreTest::removedCardIsForgotten()
{
    _store->rememberIn(knownFile());
    _store->set(MemoryContacts::person("a", "Ada", "Lovelace"));
    QVERIFY(_store->recordForUniqueId("a"));
    _store->take("a");
    _store->presentState = ContactStore::Loading;
    QVERIFY(!_store->recordForUniqueId("a"));
}

void ContactStoreTest::cardThatWasGoneAtTheNextStartIsForgotten()
{
    _store->rememberIn(knownFile());
    _store->set(MemoryContacts::person("a", "Ada", "Lovelace"));
    QVERIFY(_store->recordForUniqueId("a"));
    _store = std::make_unique<OpenContacts>();
    _store->presentState = ContactStore::Loading;
    _store->rememberIn(knownFile());
    QVERIFY(_store->recordForUniqueId("a"));
    _store->presentState = ContactStore::Ready; // loaded, and it was not there
    _store->tellChange(false);
    _store->presentState = ContactStore::Loading;
    QVERIFY(!_store->recordForUniqueId("a"));
    _store = std::make_unique<OpenContacts>();
    _store->presentState = ContactStore::Loading;
    _store->rememberIn(knownFile());
    QVERIFY(!_store->recordForUniqueId("a"));
}

void ContactStoreTest::changedCardIsKnownAsItIsNow()
{
    _store->rememberIn(knownFile());
    _store->set(MemoryContacts::person("a", "Ada", "Lovelace"));
    QVERIFY(_store->recordForUniqueId("a"));
    _store->set(MemoryContacts::person("a", "Ada", "King")); // nobody asks again
    _store = std::make_unique<OpenContacts>();
    _store->presentState = ContactStore::Loading;
    _store->rememberIn(knownFile());
    QCOMPARE(_store->recordForUniqueId("a")->lastName, QString("King"));
}

void ContactStoreTest::onlyWhatWasAskedForIsKnown()
{
    _store->rememberIn(knownFile());
    _store->set(MemoryContacts::person("a", "Ada", "Lovelace", {"ada@a.example"}));
    _store->set(MemoryContacts::person("b", "Bob", "Babbage", {"bob@a.example"}));
    QVERIFY(_store->recordForUniqueId("a"));
    _store->people();
    _store->recordsContainingSubstring("Bob");
    _store->recordMeantBy(MemoryContacts::person("b", "Bob", "Babbage"));
    _store = std::make_unique<OpenContacts>();
    const QByteArray file = _home->read("known.plist");
    QVERIFY(file.contains("Lovelace"));
    QVERIFY(!file.contains("Babbage"));
}

QTEST_GUILESS_MAIN(ContactStoreTest)
#include "ContactStoreTest.moc"
