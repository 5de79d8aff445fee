#include "platform/contacts/DesktopContacts.h"

#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "tests/platform/contacts/DesktopSession.h"
#include "tests/platform/contacts/StoreCases.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTest>
#include <csignal>
#include <libebook/libebook.h>
#include <optional>

namespace
{
DesktopSession *session = nullptr;

const QString defaultBook = QStringLiteral("system-address-book");

QByteArray personCard(const QByteArray &name, const QByteArray &lines = {})
{
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:" + name + "\r\nN:;" + name + ";;;\r\n" + lines + "END:VCARD\r\n";
}

QByteArray identified(const QByteArray &card, const QByteArray &uniqueId)
{
    return QByteArray(card).replace("END:VCARD", "UID:" + uniqueId + "\r\nEND:VCARD");
}

QString programFolder()
{
    return session->path(QStringLiteral("home/bin"));
}

void installProgram(const QString &name)
{
    QDir().mkpath(programFolder());
    QFile file(programFolder() + '/' + name);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(file.fileName()));
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

// Fails the test where the library complains.
class Complaint
{
public:
    ~Complaint()
    {
        if (_error)
            qWarning("%s", _error->message);
        g_clear_error(&_error);
    }
    operator GError **() { return &_error; }

private:
    GError *_error = nullptr;
};

// Another program, which knows nothing of the store: what it does is done when a call returns.
class OtherProgram
{
public:
    ~OtherProgram()
    {
        g_clear_object(&_client);
        g_clear_object(&_registry);
    }

    // Following calls are about this book.
    void open(const QString &book)
    {
        g_clear_object(&_client);
        ESource *source = e_source_registry_ref_source(registry(), book.toUtf8().constData());
        if (!source)
            qFatal("no such book: %s", qPrintable(book));
        _client = E_BOOK_CLIENT(e_book_client_connect_sync(source, guint32(-1), nullptr, Complaint()));
        g_object_unref(source);
    }

    QString write(const QByteArray &vCard)
    {
        EContact *contact = e_contact_new_from_vcard(vCard.constData());
        gchar *id = nullptr;
        e_book_client_add_contact_sync(client(), contact, E_BOOK_OPERATION_FLAG_NONE, &id, nullptr, Complaint());
        const QString uniqueId = QString::fromUtf8(id);
        g_free(id);
        g_object_unref(contact);
        return uniqueId;
    }

    void writeMany(int count)
    {
        GSList *contacts = nullptr;
        for (int i = 0; i < count; ++i)
            contacts = g_slist_prepend(contacts, e_contact_new_from_vcard(personCard("P" + QByteArray::number(i))));
        e_book_client_add_contacts_sync(client(), contacts, E_BOOK_OPERATION_FLAG_NONE, nullptr, nullptr, Complaint());
        g_slist_free_full(contacts, g_object_unref);
    }

    void change(const QByteArray &vCard)
    {
        EContact *contact = e_contact_new_from_vcard(vCard.constData());
        e_book_client_modify_contact_sync(client(), contact, E_BOOK_OPERATION_FLAG_NONE, nullptr, Complaint());
        g_object_unref(contact);
    }

    void remove(const QString &uniqueId)
    {
        e_book_client_remove_contact_by_uid_sync(client(), uniqueId.toUtf8().constData(), E_BOOK_OPERATION_FLAG_NONE,
                                                 nullptr, Complaint());
    }

    // Empty when there is none.
    QByteArray card(const QString &uniqueId)
    {
        EContact *contact = nullptr;
        if (!e_book_client_get_contact_sync(client(), uniqueId.toUtf8().constData(), &contact, nullptr, nullptr))
            return {};
        gchar *text = e_vcard_to_string(E_VCARD(contact), EVC_FORMAT_VCARD_30);
        const QByteArray card(text);
        g_free(text);
        g_object_unref(contact);
        return card;
    }

    void makeBook(const QString &book)
    {
        ESource *source = e_source_new_with_uid(book.toUtf8().constData(), nullptr, Complaint());
        e_source_set_display_name(source, book.toUtf8().constData());
        e_source_set_parent(source, "local-stub");
        auto *extension = E_SOURCE_BACKEND(e_source_get_extension(source, E_SOURCE_EXTENSION_ADDRESS_BOOK));
        e_source_backend_set_backend_name(extension, "local");
        e_source_registry_commit_source_sync(registry(), source, nullptr, Complaint());
        g_object_unref(source);
        if (!QTest::qWaitFor([&] { return hasBook(book); }, 30'000))
            qWarning().noquote() << "not made:" << book;
    }

    void enableBook(const QString &book, bool isEnabled)
    {
        ESource *source = e_source_registry_ref_source(registry(), book.toUtf8().constData());
        e_source_set_enabled(source, isEnabled);
        e_source_write_sync(source, nullptr, Complaint());
        g_object_unref(source);
    }

    void removeBook(const QString &book)
    {
        ESource *source = e_source_registry_ref_source(registry(), book.toUtf8().constData());
        e_source_remove_sync(source, nullptr, Complaint());
        g_object_unref(source);
    }

    void makeDefault(const QString &book)
    {
        ESource *source = e_source_registry_ref_source(registry(), book.toUtf8().constData());
        e_source_registry_set_default_address_book(registry(), source);
        g_object_unref(source);
    }

    void makeMe(const QString &uniqueId)
    {
        GSettings *settings = g_settings_new("org.gnome.evolution-data-server.addressbook");
        g_settings_set_string(settings, "self-contact-uid", uniqueId.toUtf8().constData());
        g_object_unref(settings);
    }

    // The service has died, or will.
    void forgetService()
    {
        g_clear_object(&_client);
        g_clear_object(&_registry);
    }

private:
    ESourceRegistry *registry()
    {
        if (!_registry)
            _registry = e_source_registry_new_sync(nullptr, Complaint());
        return _registry;
    }

    EBookClient *client()
    {
        if (!_client)
            open(defaultBook);
        return _client;
    }

    bool hasBook(const QString &book)
    {
        ESource *source = e_source_registry_ref_source(registry(), book.toUtf8().constData());
        const bool isThere = source;
        g_clear_object(&source);
        return isThere;
    }

    ESourceRegistry *_registry = nullptr;
    EBookClient *_client = nullptr;
};

class DesktopElsewhere : public ContactsElsewhere
{
public:
    DesktopElsewhere()
    {
        session->reset();
        program.makeMe(QString());
        installProgram("gnome-contacts");
        restart();
    }

    void restart() { _store = std::make_unique<DesktopContacts>(); }
    void end() { _store.reset(); }

    ContactStore &store() override { return *_store; }
    QString write(const QByteArray &vCard) override { return program.write(vCard); }
    void change(const QString & /*uniqueId*/, const QByteArray &vCard) override { program.change(vCard); }
    void remove(const QString &uniqueId) override { program.remove(uniqueId); }
    void makeMe(const QString &uniqueId) override { program.makeMe(uniqueId); }
    QByteArray card(const QString &uniqueId) override { return program.card(uniqueId); }

    OtherProgram program;

private:
    std::unique_ptr<DesktopContacts> _store;
};
} // namespace

class DesktopContactsTest : public StoreCases
{
    Q_OBJECT

private Q_SLOTS:
    void cardsComeInSlices();
    void booksAreOneStore();
    void oneIdentifierInTwoBooks();
    void defaultBookCountsFirst();
    void bookThatIsSwitchedOff();
    void bookThatIsRemoved();
    void bookThatCannotBeHadIsShownAsItWasKnown();
    void diedFactoryComesBack();
    void diedRegistryComesBack();
    void whatIsTheSameIsNotToldAgain();
    void cardsThatWentMeanwhile();
    void cardsThatAreStillComing();
    void serviceThatComesLater();
    void serviceThatCannotBeStarted();
    void serviceThatHangs_data();
    void serviceThatHangs();
    void storeThatGoesMeanwhile_data();
    void storeThatGoesMeanwhile();
    void nothingCanBeAddedWithoutService();
    void addedCardWhoseIdentifierIsTaken();
    void addedCardsGoToTheDefaultBook();
    void addingEndsWhenTheBookGoes();
    void largeCardIsFetched();
    void pictureInTheCardIsFetched();
    void ownCardIsTold();
    void programThatShowsACard();
    void busThatIsNotThere();
    void busThatEnds();

private:
    std::unique_ptr<ContactsElsewhere> makeContacts() override { return std::make_unique<DesktopElsewhere>(); }
    DesktopElsewhere &desktop() const { return static_cast<DesktopElsewhere &>(elsewhere()); }
    OtherProgram &program() const { return desktop().program; }
    bool isReady() const
    {
        return QTest::qWaitFor([this] { return store().state() == ContactStore::Ready; }, 60'000);
    }
    QString nameOf(const QString &uniqueId) const
    {
        const ContactRecordPtr record = store().recordForUniqueId(uniqueId);
        return record ? record->firstName : QString();
    }
};

void DesktopContactsTest::cardsComeInSlices()
{
    constexpr int count = 3000;
    program().writeMany(count);
    desktop().restart();
    int passes = 0;
    int most = 0;
    std::size_t before = 0;
    int notices = 0;
    NotificationCenter::defaultCenter().addObserver(
        &notices, [&](const Notification &) { ++notices; },
        PlatformNotifications::kABDatabaseChangedExternallyNotification, &store());
    const auto pass = connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, this, [&] {
        const std::size_t now = store().people().size();
        passes += now != before;
        most = std::max(most, int(now - before));
        before = now;
    });
    QVERIFY(isReady());
    disconnect(pass);
    QCOMPARE(store().people().size(), std::size_t(count));
    QVERIFY2(most <= DesktopContacts::cardsAPass, qPrintable(QString::number(most)));
    QVERIFY(passes >= count / DesktopContacts::cardsAPass);
    QTRY_VERIFY(notices > 0);
    QVERIFY2(notices < passes / 2, qPrintable(QString("%1 in %2").arg(notices).arg(passes)));
    NotificationCenter::defaultCenter().removeObserver(&notices);
}

void DesktopContactsTest::booksAreOneStore()
{
    const QString ada = program().write(personCard("Ada"));
    program().makeBook("other-book");
    program().open("other-book");
    const QString bob = program().write(personCard("Bob"));
    QVERIFY(awaited(ada) && awaited(bob));
    QCOMPARE(store().people().size(), std::size_t(2));
    QTRY_COMPARE(store().state(), ContactStore::Ready);
}

void DesktopContactsTest::oneIdentifierInTwoBooks()
{
    for (const char *book : {"z-book", "a-book"}) {
        program().makeBook(book);
        program().open(book);
        program().write(identified(personCard(book), "same"));
        QTRY_COMPARE_WITH_TIMEOUT(nameOf("same"), QString(book), 30'000); // the one that comes first counts
    }
    QCOMPARE(store().people().size(), std::size_t(1));
    program().remove("same");
    QTRY_COMPARE_WITH_TIMEOUT(nameOf("same"), QString("z-book"), 30'000);
    program().open("z-book");
    program().remove("same");
    QTRY_VERIFY_WITH_TIMEOUT(!store().recordForUniqueId("same"), 30'000);
}

void DesktopContactsTest::defaultBookCountsFirst()
{
    for (const char *book : {"early-book", "late-book"}) {
        program().makeBook(book);
        program().open(book);
        program().write(identified(personCard(book), "same"));
    }
    QTRY_COMPARE_WITH_TIMEOUT(nameOf("same"), QString("early-book"), 30'000);
    // Both are there: otherwise the second would show itself only later.
    const QString last = program().write(personCard("Last"));
    QVERIFY(awaited(last));
    QCOMPARE(nameOf("same"), QString("early-book"));
    program().makeDefault("late-book");
    QTRY_COMPARE_WITH_TIMEOUT(nameOf("same"), QString("late-book"), 30'000);
    program().makeDefault(defaultBook);
    QTRY_COMPARE_WITH_TIMEOUT(nameOf("same"), QString("early-book"), 30'000);
}

void DesktopContactsTest::bookThatIsSwitchedOff()
{
    program().makeBook("other-book");
    program().open("other-book");
    const QString bob = program().write(personCard("Bob"));
    QVERIFY(awaited(bob));
    noticesFromElsewhere = 0;
    program().enableBook("other-book", false);
    QTRY_VERIFY_WITH_TIMEOUT(!store().recordForUniqueId(bob), 30'000);
    QTRY_VERIFY(noticesFromElsewhere > 0);
    QCOMPARE(store().state(), ContactStore::Ready);
    program().enableBook("other-book", true);
    QVERIFY(awaited(bob));
}

void DesktopContactsTest::bookThatIsRemoved()
{
    program().makeBook("other-book");
    program().open("other-book");
    const QString bob = program().write(personCard("Bob"));
    QVERIFY(awaited(bob));
    program().removeBook("other-book");
    QTRY_VERIFY_WITH_TIMEOUT(!store().recordForUniqueId(bob), 30'000);
    QTRY_COMPARE(store().state(), ContactStore::Ready);
}

void DesktopContactsTest::bookThatCannotBeHadIsShownAsItWasKnown()
{
    const QString known = session->path("home/known.plist");
    program().makeBook("far-book");
    program().open("far-book");
    program().write(identified(personCard("Bob"), "far"));
    QVERIFY(awaited("far"));
    const auto remember = [this, &known] { store().rememberIn(known); };
    remember();
    QVERIFY(store().recordForUniqueId("far"));
    program().forgetService();
    desktop().end();
    session->endServices();
    QFile source(qgetenv("XDG_CONFIG_HOME") + "/evolution/sources/far-book.source");
    QVERIFY(source.open(QIODevice::ReadWrite));
    const QByteArray settings = source.readAll();
    QVERIFY(settings.contains("BackendName=local"));
    source.resize(0);
    source.seek(0);
    source.write(QByteArray(settings).replace("BackendName=local", "BackendName=nowhere"));
    source.close();
    for (int start = 0; start < 2; ++start) {
        desktop().restart();
        remember();
        QVERIFY(isReady());
        QCOMPARE(nameOf("far"), QString("Bob"));
        QTest::qWait(300); // what else comes of the failure has come
        QCOMPARE(nameOf("far"), QString("Bob"));
    }
    program().enableBook("far-book", false);
    QTRY_VERIFY_WITH_TIMEOUT(!store().recordForUniqueId("far"), 30'000);
}

void DesktopContactsTest::diedFactoryComesBack()
{
    const QString ada = program().write(personCard("Ada"));
    QVERIFY(awaited(ada));
    program().forgetService();
    session->signalService(DesktopSession::books, SIGKILL);
    QTRY_VERIFY_WITH_TIMEOUT(!store().canAdd(), 30'000); // it has seen it
    QCOMPARE(nameOf(ada), QString("Ada"));
    QCOMPARE(store().state(), ContactStore::Ready);
    QTRY_VERIFY_WITH_TIMEOUT(store().canAdd(), 60'000); // and is back by itself
    QCOMPARE(nameOf(ada), QString("Ada"));
    QVERIFY(awaited(program().write(personCard("Bob"))));
}

void DesktopContactsTest::diedRegistryComesBack()
{
    const QString ada = program().write(personCard("Ada"));
    QVERIFY(awaited(ada));
    program().forgetService();
    session->signalService(DesktopSession::sources, SIGKILL);
    QVERIFY(session->isServiceGone(DesktopSession::sources));
    QCOMPARE(nameOf(ada), QString("Ada"));
    // Nobody but the store starts it again.
    QVERIFY(QTest::qWaitFor([] { return session->isServiceThere(DesktopSession::sources); }, 60'000));
    program().makeBook("other-book");
    program().open("other-book");
    QVERIFY(awaited(program().write(personCard("Bob"))));
    QCOMPARE(nameOf(ada), QString("Ada"));
}

void DesktopContactsTest::whatIsTheSameIsNotToldAgain()
{
    const QString ada = program().write(personCard("Ada"));
    desktop().restart(); // a card that was just added is told with more in it than is kept
    const ContactRecordPtr record = awaited(ada);
    QVERIFY(record);
    program().forgetService();
    session->signalService(DesktopSession::books, SIGKILL);
    QTRY_VERIFY_WITH_TIMEOUT(!store().canAdd(), 30'000);
    QVERIFY(awaited(program().write(personCard("Bob")))); // so all others have come again too
    QCOMPARE(store().recordForUniqueId(ada), record);
}

void DesktopContactsTest::cardsThatWentMeanwhile()
{
    const QString ada = program().write(personCard("Ada"));
    const QString bob = program().write(personCard("Bob"));
    QVERIFY(awaited(ada) && awaited(bob));
    program().forgetService();
    session->offerService(false); // so that the store cannot be there before the other program
    session->signalService(DesktopSession::books, SIGKILL);
    QTRY_VERIFY_WITH_TIMEOUT(!store().canAdd(), 30'000);
    const QByteArray folder = qgetenv("XDG_DATA_HOME") + "/evolution/addressbook/system";
    QVERIFY(QDir(folder).removeRecursively());
    QCOMPARE(store().people().size(), std::size_t(2));
    session->offerService(true);
    QTRY_VERIFY_WITH_TIMEOUT(store().people().empty(), 60'000);
    QVERIFY(!store().recordForUniqueId(ada));
}

// After a change the service says that all cards have come, whether they have or not.
void DesktopContactsTest::cardsThatAreStillComing()
{
    constexpr int count = 2000;
    program().writeMany(count);
    const QString ada = program().write(personCard("Ada"));
    QTRY_COMPARE_WITH_TIMEOUT(store().people().size(), std::size_t(count + 1), 60'000);
    program().forgetService();
    session->signalService(DesktopSession::books, SIGKILL);
    QTRY_VERIFY_WITH_TIMEOUT(!store().canAdd(), 30'000);
    std::size_t least = count + 1;
    const auto pass = connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, this,
                              [&] { least = std::min(least, store().people().size()); });
    const QString before = program().write(personCard("Bob")); // starts the service
    for (int i = 0, since = 0; since < 40; ++i) {
        program().change(identified(personCard("Ada" + QByteArray::number(i)), ada.toUtf8()));
        QCoreApplication::processEvents();
        since += store().canAdd();
    }
    QVERIFY(awaited(before));
    disconnect(pass);
    QCOMPARE(least, std::size_t(count + 1));
}

void DesktopContactsTest::serviceThatComesLater()
{
    const QString ada = program().write(personCard("Ada"));
    program().forgetService();
    desktop().end();
    session->endServices();
    session->offerService(false);
    std::optional<bool> isThere;
    DesktopContacts::lookForService([&](bool answer) { isThere = answer; });
    QTRY_VERIFY_WITH_TIMEOUT(isThere.has_value(), 30'000);
    QVERIFY(!*isThere);
    desktop().restart();
    QCOMPARE(store().state(), ContactStore::Loading);
    QTRY_COMPARE_WITH_TIMEOUT(store().state(), ContactStore::Absent, 30'000);
    session->offerService(true);
    isThere.reset();
    DesktopContacts::lookForService([&](bool answer) { isThere = answer; });
    QTRY_VERIFY_WITH_TIMEOUT(isThere.has_value(), 30'000);
    QVERIFY(*isThere);
    session->startService(DesktopSession::sources);
    QVERIFY(awaited(ada));
    QVERIFY(isReady());
}

void DesktopContactsTest::serviceThatCannotBeStarted()
{
    const QString known = session->path("home/known.plist");
    const QString ada = program().write(personCard("Ada"));
    QVERIFY(awaited(ada));
    store().rememberIn(known);
    QVERIFY(store().recordForUniqueId(ada));
    program().forgetService();
    desktop().end();
    session->endServices();
    session->offerService(false);
    const QString description = session->path("services/") + DesktopSession::sources + ".service";
    QFile file(description);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("[D-BUS Service]\nExec=/bin/false\nName=") + DesktopSession::sources + "\n");
    file.close();
    const QStringList reload = {"--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                                "org.freedesktop.DBus.ReloadConfig"};
    QProcess bus;
    bus.setStandardOutputFile(QProcess::nullDevice());
    bus.start("dbus-send", reload);
    QVERIFY(bus.waitForFinished());
    QCOMPARE(bus.exitCode(), 0);
    desktop().restart();
    store().rememberIn(known);
    QVERIFY(isReady()); // with what there is
    QCOMPARE(nameOf(ada), QString("Ada"));
    QVERIFY(store().people().empty());
    session->offerService(true);
    QTRY_VERIFY_WITH_TIMEOUT(!store().people().empty(), 60'000); // by itself
    QCOMPARE(nameOf(ada), QString("Ada"));
}

void DesktopContactsTest::serviceThatHangs_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("list of books") << QByteArray(DesktopSession::sources);
    QTest::newRow("books") << QByteArray(DesktopSession::books);
}

// Were anything waited for, this would not go on to wake the service.
void DesktopContactsTest::serviceThatHangs()
{
    QFETCH(QByteArray, name);
    const QString ada = program().write(personCard("Ada"));
    QVERIFY(awaited(ada));
    program().forgetService();
    session->signalService(name, SIGSTOP);
    QCOMPARE(nameOf(ada), QString("Ada"));
    bool isAnswered = false;
    if (store().canAdd() && name == DesktopSession::books)
        store().add(personCard("Bob"), [&](const QString &) { isAnswered = true; });
    QTest::qWait(200); // nothing to wait for: whatever would wait has the time to begin
    QVERIFY(!isAnswered);
    desktop().restart(); // while it is being added, too
    for (int i = 0; i < 3; ++i) {
        QTest::qWait(100);
        desktop().restart();
    }
    QCOMPARE(store().state(), ContactStore::Loading);
    QVERIFY(!store().recordForUniqueId(ada));
    session->signalService(name, SIGCONT);
    QVERIFY(awaited(ada));
    QVERIFY(isReady());
}

void DesktopContactsTest::storeThatGoesMeanwhile_data()
{
    QTest::addColumn<int>("passes");
    for (int passes = 0; passes < 40; passes += 4)
        QTest::addRow("%d passes", passes) << passes;
}

void DesktopContactsTest::storeThatGoesMeanwhile()
{
    QFETCH(int, passes);
    program().writeMany(100);
    program().forgetService();
    desktop().end();
    session->endServices();
    for (int i = 0; i < 4; ++i) {
        desktop().restart();
        for (int pass = 0; pass < passes * (i + 1); ++pass)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    }
    desktop().restart();
    QVERIFY(isReady());
    QCOMPARE(store().people().size(), std::size_t(100));
}

void DesktopContactsTest::nothingCanBeAddedWithoutService()
{
    desktop().restart();
    QVERIFY(!store().canAdd());
    bool isRefused = false;
    store().add(personCard("Ada"), [&](const QString &id) { isRefused = id.isNull(); });
    QVERIFY(isRefused);
}

void DesktopContactsTest::addedCardWhoseIdentifierIsTaken()
{
    program().makeBook("other-book");
    program().open("other-book");
    program().write(identified(personCard("Ada"), "taken"));
    QVERIFY(awaited("taken"));
    QString added;
    store().add(identified(personCard("Bob"), "taken"), [&](const QString &id) { added = id; });
    QTRY_VERIFY_WITH_TIMEOUT(!added.isEmpty(), 30'000);
    QVERIFY(added != "taken");
    QCOMPARE(nameOf(added), QString("Bob"));
    QCOMPARE(nameOf("taken"), QString("Ada"));
}

void DesktopContactsTest::addedCardsGoToTheDefaultBook()
{
    program().makeBook("a-book");
    program().makeBook("z-book");
    program().makeDefault("z-book");
    desktop().restart();
    QVERIFY(isReady());
    std::optional<QString> added;
    store().add(personCard("Ada"), [&](const QString &id) { added = id; });
    QTRY_VERIFY_WITH_TIMEOUT(added.has_value(), 30'000);
    program().open("z-book");
    QVERIFY(program().card(*added).contains("Ada"));
    program().makeDefault(defaultBook);
}

void DesktopContactsTest::addingEndsWhenTheBookGoes()
{
    QTRY_VERIFY_WITH_TIMEOUT(store().canAdd(), 30'000);
    session->signalService(DesktopSession::books, SIGSTOP);
    std::optional<QString> added;
    store().add(personCard("Ada"), [&](const QString &id) { added = id; });
    QTest::qWait(100); // nothing to wait for: it cannot be answered
    QVERIFY(!added);
    session->signalService(DesktopSession::books, SIGKILL);
    QTRY_VERIFY_WITH_TIMEOUT(added.has_value(), 30'000);
    QVERIFY(added->isNull());
}

void DesktopContactsTest::largeCardIsFetched()
{
    QByteArray note;
    for (int i = 0; i < 20'000; ++i)
        note += QByteArray::number(quint64(i) * 2654435761u % 1000003u);
    const QString id = program().write(personCard("Ada", "NOTE:" + note + "\r\n"));
    QVERIFY(awaited(id));
    QTRY_VERIFY(noticesFromElsewhere > 0);
    noticesFromElsewhere = 0;
    QVERIFY(store().vCardRepresentation(*store().recordForUniqueId(id)).isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(noticesFromElsewhere > 0, 30'000);
    QByteArray card = store().vCardRepresentation(*store().recordForUniqueId(id));
    QVERIFY(card.replace("\r\n ", "").contains(note));
}

// The service keeps pictures in files of their own, unless the card comes from elsewhere.
void DesktopContactsTest::pictureInTheCardIsFetched()
{
    const QByteArray picture = "\x89PNG\r\n\x1a\n" + QByteArray(5000, 'x');
    const QString id = program().write(personCard("Ada", "NOTE:here\r\n"));
    program().forgetService();
    desktop().end();
    session->endServices();
    const char script[] = "import sqlite3, sys\n"
                          "book = sqlite3.connect(sys.argv[1])\n"
                          "for table in [row[0] for row in book.execute(\n"
                          "        \"select name from sqlite_master where type = 'table'\")]:\n"
                          "    columns = [row[1] for row in book.execute('pragma table_info(%s)' % table)]\n"
                          "    if 'vcard' in columns:\n"
                          "        book.execute('update %s set vcard = replace(vcard, ?, ?)' % table,\n"
                          "                     ('NOTE:here', 'PHOTO;ENCODING=b;TYPE=PNG:' + sys.argv[2]))\n"
                          "book.commit()\n";
    const QString file = qgetenv("XDG_DATA_HOME") + "/evolution/addressbook/system/contacts.db";
    QCOMPARE(QProcess::execute("python3", {"-c", script, file, QString::fromLatin1(picture.toBase64())}), 0);
    desktop().restart();
    QVERIFY(awaited(id));
    QVERIFY(isReady());
    int notices = 0;
    QTest::qWait(500); // what was told about the loading has come
    NotificationCenter::defaultCenter().addObserver(
        &notices, [&](const Notification &) { ++notices; },
        PlatformNotifications::kABDatabaseChangedExternallyNotification, &store());
    const ContactRecordPtr record = store().recordForUniqueId(id);
    QVERIFY(store().imageData(*record).isEmpty());
    QVERIFY(store().vCardRepresentation(*record).contains("FN:Ada")); // what is there
    QTRY_COMPARE_WITH_TIMEOUT(notices, 1, 30'000);
    QCOMPARE(store().imageData(*record), picture);
    QVERIFY(store().vCardRepresentation(*record).replace("\r\n ", "").contains(picture.toBase64()));
    QTest::qWait(500); // nothing more is told
    QCOMPARE(notices, 1);
    NotificationCenter::defaultCenter().removeObserver(&notices);
}

void DesktopContactsTest::ownCardIsTold()
{
    const QString ada = program().write(personCard("Ada"));
    QVERIFY(awaited(ada));
    QTRY_VERIFY(noticesFromElsewhere > 0);
    noticesFromElsewhere = 0;
    program().makeMe(ada);
    QTRY_VERIFY(noticesFromElsewhere > 0);
    program().makeMe("nobody");
    QTRY_VERIFY(!store().me());
}

void DesktopContactsTest::programThatShowsACard()
{
    const auto shown = [this](const ContactRecord &record) {
        return store().opening(record, ContactStore::Show).command;
    };
    const QString contacts = programFolder() + "/gnome-contacts";
    const QByteArray shared = "EMAIL:both@example.org\r\n";
    const ContactRecordPtr ada = written(personCard("Ada", shared + "EMAIL:ada@example.org\r\n"));
    const ContactRecordPtr bob = written(personCard("Bob", shared));
    QVERIFY(ada && bob);
    QCOMPARE(shown(*ada), QStringList({contacts, "--email=ada@example.org"}));
    QCOMPARE(shown(*bob), QStringList({contacts, "--search=Bob"}));
    QCOMPARE(shown(ContactRecord()), QStringList{contacts});
    QFile::remove(contacts);
    QVERIFY(shown(*ada).isEmpty());
    installProgram("evolution");
    QCOMPARE(shown(*ada), QStringList({programFolder() + "/evolution", "-c", "contacts"}));
}

void DesktopContactsTest::busThatIsNotThere()
{
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    bool isThere = true;
    DesktopContacts::lookForService([&](bool answer) { isThere = answer; });
    QVERIFY(!isThere); // at once
    QCOMPARE(DesktopContacts().state(), ContactStore::Absent);
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
}

// The session's bus is the desktop's, but this program is not.
void DesktopContactsTest::busThatEnds()
{
    const QString ada = program().write(personCard("Ada"));
    QVERIFY(awaited(ada));
    program().forgetService();
    session->endBus();
    QTRY_VERIFY_WITH_TIMEOUT(!store().canAdd(), 30'000);
    QTest::qWait(1500); // longer than the first pause before something is tried again
    QCOMPARE(nameOf(ada), QString("Ada"));
}

int main(int argc, char **argv)
{
    DesktopSession ours;
    session = &ours;
    qputenv("PATH", programFolder().toUtf8() + ":" + qgetenv("PATH"));
    const QCoreApplication application(argc, argv);
    DesktopContactsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "DesktopContactsTest.moc"
