#include "core/ContactSource.h"

#include "core/settings/WayfoldDefaults.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/contacts/KnownContacts.h"
#include "platform/files/UserDefaults.h"
#include "tests/platform/contacts/DesktopSession.h"
#include "tests/support/TemporaryHome.h"

#include <QApplication>
#include <QtTest>
#include <optional>

namespace
{
DesktopSession *session = nullptr;

// Contacts of which only is known where they lie, and which of them live.
class NamedContacts : public ContactStore
{
public:
    NamedContacts(const QString &name, QStringList &living) : name(name), _living(living) { _living.append(name); }
    ~NamedContacts() override { _living.removeOne(name); }
    State state() const override { return present; }
    void add()
    {
        auto record = std::make_shared<ContactRecord>();
        record->uniqueId = QStringLiteral("a");
        put({record});
    }
    void addGroup()
    {
        auto record = std::make_shared<ContactRecord>();
        record->uniqueId = QStringLiteral("g");
        record->isGroup = true;
        put({record});
    }
    void tell() { tellChange(false); }

    const QString name;
    State present = Ready;

private:
    QStringList &_living;
};
} // namespace

const QByteArray card = "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:A\r\nN:A;;;;\r\nEND:VCARD\r\n";

class ContactSourceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void choice_data();
    void choice();
    void desktopComesFirst();
    void withoutDesktopTheFolder();
    void emptyDesktopGivesWayToCards();
    void emptyDesktopStaysWithoutCards();
    void desktopStaysWhile_data();
    void desktopStaysWhile();
    void namedFolderIsAsGoodAsCards();
    void startDoesNotWait();
    void lateAnswerToAnEarlierSearch();
    void lateAnswerAfterTheEnd();
    void usualFolder();
    void namedFolder();
    void otherFolderTakesEffectAtOnce();
    void sameStoreStays();
    void desktopStaysWhenItIsFoundAgain();
    void changeIsTold();
    void endLeavesNothing();
    void whatWasShownIsShownWhileSearching();
    void current();
    void machineWithoutAny();
    void machineWithADesktop();
    void machineWithAFolder();

private:
    static WayfoldDefaults &settings() { return WayfoldDefaults::sharedInstance(); }
    // What the lists show.
    static QString shown();
    void start();
    // Until a change of the store in use has come through the queue.
    static void letItTell();

    std::optional<TemporaryHome> _home;
    QStringList _living; // stores, in the order in which they were made
    int _made = 0;
    std::vector<std::function<void(bool)>> _searches;
    std::optional<ContactSource> _source;
};

void ContactSourceTest::init()
{
    _home.emplace();
    UserDefaults::standardUserDefaults().reset();
    settings().loadDefaults();
}

void ContactSourceTest::cleanup()
{
    _source.reset();
    _searches.clear();
    _made = 0;
    _home.reset();
    UserDefaults::standardUserDefaults().reset();
}

QString ContactSourceTest::shown()
{
    const ContactStore &store = ContactStore::sharedAddressBook();
    if (const auto *named = dynamic_cast<const NamedContacts *>(&store))
        return named->name;
    return store.state() == ContactStore::Loading ? QStringLiteral("loading") : QStringLiteral("none");
}

void ContactSourceTest::start()
{
    ContactSource::Makers makers;
    makers.lookForDesktop = [this](const std::function<void(bool)> &answer) { _searches.push_back(answer); };
    makers.desktop = [this] {
        ++_made;
        return std::make_unique<NamedContacts>(QStringLiteral("desktop"), _living);
    };
    makers.folder = [this](const QString &folder) {
        ++_made;
        return std::make_unique<NamedContacts>(folder, _living);
    };
    _source.emplace(makers);
}

void ContactSourceTest::letItTell()
{
    bool hasTold = false;
    const int observer = 0;
    NotificationCenter::defaultCenter().addObserver(
        &observer, [&hasTold](const Notification &) { hasTold = true; },
        PlatformNotifications::kABDatabaseChangedExternallyNotification, &ContactStore::sharedAddressBook());
    QTRY_VERIFY(hasTold);
    NotificationCenter::defaultCenter().removeObserver(&observer);
}

void ContactSourceTest::choice_data()
{
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("place");
    QTest::newRow("desktop") << "desktop"
                             << "desktop" << int(ContactSource::Desktop);
    QTest::newRow("folder") << "folder"
                            << "/cards" << int(ContactSource::Folder);
    QTest::newRow("none") << "none"
                          << "none" << int(ContactSource::Nowhere);
    QTest::newRow("automatic") << ""
                               << "loading" << int(ContactSource::Search);
    QTest::newRow("unknown word") << "elsewhere"
                                  << "loading" << int(ContactSource::Search);
}

void ContactSourceTest::choice()
{
    QFETCH(QString, chosen);
    settings().setContactSource(chosen);
    settings().setContactFolder(QStringLiteral("/cards"));
    start();
    QTEST(shown(), "expected");
    QTEST(int(_source->place()), "place");
    QCOMPARE(_source->folder(), chosen == u"folder" ? QStringLiteral("/cards") : QString());
    QCOMPARE(_searches.size(), std::size_t(_source->place() == ContactSource::Search));
}

void ContactSourceTest::desktopComesFirst()
{
    start();
    _searches.at(0)(true);
    QCOMPARE(shown(), QStringLiteral("desktop"));
    QCOMPARE(_source->place(), ContactSource::Desktop);
    QCOMPARE(_living, QStringList{"desktop"});
}

void ContactSourceTest::withoutDesktopTheFolder()
{
    settings().setContactFolder(QStringLiteral("/cards"));
    start();
    _searches.at(0)(false);
    QCOMPARE(shown(), QStringLiteral("/cards"));
    QCOMPARE(_source->place(), ContactSource::Folder);
    QCOMPARE(_source->folder(), QStringLiteral("/cards"));
}

// Some desktops have an address book that nobody has ever used.
void ContactSourceTest::emptyDesktopGivesWayToCards()
{
    _home->write(QStringLiteral(".contacts/a.vcf"), card);
    start();
    _searches.at(0)(true);
    QCOMPARE(shown(), QStringLiteral("desktop"));
    QTRY_COMPARE(shown(), _home->path(QStringLiteral(".contacts")));
    QCOMPARE(_source->place(), ContactSource::Folder);
    QCOMPARE(_living.size(), 1);
}

void ContactSourceTest::emptyDesktopStaysWithoutCards()
{
    QVERIFY(QDir().mkpath(_home->path(QStringLiteral(".contacts"))));
    start();
    _searches.at(0)(true);
    letItTell();
    QCOMPARE(shown(), QStringLiteral("desktop"));
}

void ContactSourceTest::desktopStaysWhile_data()
{
    QTest::addColumn<QString>("reason");
    for (const char *reason : {"chosen", "loading", "somebody", "a group"})
        QTest::newRow(reason) << QString::fromLatin1(reason);
}

void ContactSourceTest::desktopStaysWhile()
{
    QFETCH(QString, reason);
    _home->write(QStringLiteral(".contacts/a.vcf"), card);
    if (reason == u"chosen")
        settings().setContactSource(QStringLiteral("desktop"));
    start();
    if (reason != u"chosen")
        _searches.at(0)(true);
    auto &desktop = dynamic_cast<NamedContacts &>(ContactStore::sharedAddressBook());
    if (reason == u"loading")
        desktop.present = ContactStore::Loading;
    if (reason == u"somebody")
        desktop.add();
    if (reason == u"a group")
        desktop.addGroup();
    letItTell();
    QCOMPARE(shown(), QStringLiteral("desktop"));
    if (reason != u"loading")
        return;
    desktop.present = ContactStore::Absent; // the service did not start
    desktop.tell();
    QTRY_COMPARE(_source->place(), ContactSource::Folder);
}

void ContactSourceTest::namedFolderIsAsGoodAsCards()
{
    QVERIFY(QDir().mkpath(_home->path(QStringLiteral("mine"))));
    settings().setContactFolder(QStringLiteral("~/mine"));
    start();
    _searches.at(0)(true);
    QTRY_COMPARE(shown(), _home->path(QStringLiteral("mine")));
}

void ContactSourceTest::startDoesNotWait()
{
    start();
    QCOMPARE(shown(), QStringLiteral("loading"));
    QCOMPARE(_made, 0);
    _searches.at(0)(false);
    QCOMPARE(_made, 1);
}

void ContactSourceTest::lateAnswerToAnEarlierSearch()
{
    settings().setContactFolder(QStringLiteral("/cards"));
    start();
    settings().setContactSource(QStringLiteral("folder"));
    _source->followSettings();
    _searches.at(0)(true);
    QCOMPARE(shown(), QStringLiteral("/cards"));
    settings().setContactSource(QString());
    _source->followSettings();
    _searches.at(0)(true);
    QCOMPARE(shown(), QStringLiteral("loading"));
    _searches.at(1)(true);
    QCOMPARE(shown(), QStringLiteral("desktop"));
}

void ContactSourceTest::lateAnswerAfterTheEnd()
{
    start();
    _source.reset();
    _searches.at(0)(true);
    QCOMPARE(_made, 0);
    QCOMPARE(shown(), QStringLiteral("none"));
}

void ContactSourceTest::usualFolder()
{
    settings().setContactSource(QStringLiteral("folder"));
    start();
    QCOMPARE(shown(), _home->path(QStringLiteral(".contacts")));
    settings().setContactFolder(QStringLiteral(""));
    QCOMPARE(ContactSource::chosenFolder(), _home->path(QStringLiteral(".contacts")));
}

void ContactSourceTest::namedFolder()
{
    settings().setContactSource(QStringLiteral("folder"));
    settings().setContactFolder(QStringLiteral("~/my/../cards/"));
    start();
    QCOMPARE(shown(), _home->path(QStringLiteral("cards")));
}

void ContactSourceTest::otherFolderTakesEffectAtOnce()
{
    settings().setContactSource(QStringLiteral("folder"));
    settings().setContactFolder(QStringLiteral("/one"));
    start();
    settings().setContactFolder(QStringLiteral("/two"));
    _source->followSettings();
    QCOMPARE(shown(), QStringLiteral("/two"));
    QCOMPARE(_living, QStringList{"/two"});
    settings().setContactSource(QStringLiteral("desktop"));
    _source->followSettings();
    QCOMPARE(shown(), QStringLiteral("desktop"));
    settings().setContactSource(QStringLiteral("none"));
    _source->followSettings();
    QCOMPARE(shown(), QStringLiteral("none"));
    QVERIFY(_living.isEmpty());
}

void ContactSourceTest::sameStoreStays()
{
    settings().setContactFolder(QStringLiteral("/cards"));
    start();
    _searches.at(0)(false);
    settings().setContactSource(QStringLiteral("folder"));
    _source->followSettings();
    QCOMPARE(_made, 1);
    QCOMPARE(shown(), QStringLiteral("/cards"));
}

void ContactSourceTest::desktopStaysWhenItIsFoundAgain()
{
    settings().setContactSource(QStringLiteral("desktop"));
    start();
    settings().setContactSource(QString());
    _source->followSettings();
    QCOMPARE(shown(), QStringLiteral("desktop"));
    _searches.at(0)(true);
    QCOMPARE(_made, 1);
    _source->followSettings();
    _searches.at(1)(false); // it has gone meanwhile
    QCOMPARE(_source->place(), ContactSource::Folder);
}

void ContactSourceTest::changeIsTold()
{
    int told = 0;
    NotificationCenter::defaultCenter().addObserver(
        this,
        [&told](const Notification &notification) {
            told += notification.object == &ContactStore::sharedAddressBook();
        },
        PlatformNotifications::kABDatabaseChangedExternallyNotification);
    start();
    QTRY_COMPARE(told, 1);
    _searches.at(0)(true);
    QTRY_COMPARE(told, 2);
    settings().setContactSource(QStringLiteral("none"));
    _source->followSettings();
    QTRY_COMPARE(told, 3);
    NotificationCenter::defaultCenter().removeObserver(this);
}

void ContactSourceTest::endLeavesNothing()
{
    settings().setContactSource(QStringLiteral("desktop"));
    start();
    _source.reset();
    QVERIFY(_living.isEmpty());
    QCOMPARE(shown(), QStringLiteral("none"));
}

// As it was known at the end of the program before; not so where the user wants nobody's.
void ContactSourceTest::whatWasShownIsShownWhileSearching()
{
    {
        auto ada = std::make_shared<ContactRecord>();
        ada->uniqueId = QStringLiteral("ada");
        ada->firstName = QStringLiteral("Ada");
        KnownContacts(KnownContacts::defaultPath()).note(ada);
    }
    start();
    const ContactRecordPtr known = ContactStore::sharedAddressBook().recordForUniqueId(QStringLiteral("ada"));
    QVERIFY(known);
    QCOMPARE(known->firstName, QStringLiteral("Ada"));
    _searches.at(0)(true); // those of the desktop are read already, and there is none such
    QVERIFY(!ContactStore::sharedAddressBook().recordForUniqueId(QStringLiteral("ada")));
    settings().setContactSource(QStringLiteral("none"));
    _source->followSettings();
    QVERIFY(!ContactStore::sharedAddressBook().recordForUniqueId(QStringLiteral("ada")));
}

void ContactSourceTest::current()
{
    QVERIFY(!ContactSource::current());
    start();
    QCOMPARE(ContactSource::current(), &*_source);
    _source.reset();
    QVERIFY(!ContactSource::current());
}

// Nothing is waited for, and nothing found.
void ContactSourceTest::machineWithoutAny()
{
    session->offerService(false);
    _source.emplace();
    QTRY_COMPARE_WITH_TIMEOUT(ContactStore::sharedAddressBook().state(), ContactStore::Absent, 30'000);
    QVERIFY(ContactStore::sharedAddressBook().people().empty());
}

void ContactSourceTest::machineWithADesktop()
{
    session->offerService(true);
    _source.emplace();
    QCOMPARE(_source->place(), ContactSource::Search);
    QCOMPARE(ContactStore::sharedAddressBook().state(), ContactStore::Loading);
    QTRY_COMPARE_WITH_TIMEOUT(_source->place(), ContactSource::Desktop, 30'000);
    QTRY_COMPARE_WITH_TIMEOUT(ContactStore::sharedAddressBook().state(), ContactStore::Ready, 30'000);
    QVERIFY(ContactStore::sharedAddressBook().canAdd()); // to the book that every desktop has
}

// Beside a desktop whose contacts nobody uses.
void ContactSourceTest::machineWithAFolder()
{
    session->offerService(true);
    _home->write(QStringLiteral(".contacts/a.vcf"), card);
    _source.emplace();
    QTRY_COMPARE_WITH_TIMEOUT(_source->place(), ContactSource::Folder, 30'000);
    QTRY_COMPARE_WITH_TIMEOUT(ContactStore::sharedAddressBook().people().size(), std::size_t(1), 30'000);
    _source.reset();
    QVERIFY(ContactStore::sharedAddressBook().people().empty());
}

int main(int argc, char **argv)
{
    DesktopSession ours;
    session = &ours;
    const QApplication application(argc, argv);
    ContactSourceTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ContactSourceTest.moc"
