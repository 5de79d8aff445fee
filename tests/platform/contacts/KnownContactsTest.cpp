#include "platform/contacts/KnownContacts.h"
#include "platform/files/PropertyList.h"
#include "tests/support/LoggedMessages.h"
#include "tests/support/MemoryContacts.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>
#include <sys/stat.h>

namespace
{
ContactRecordPtr person(const QString &id, const QString &first = "Ada")
{
    return std::make_shared<ContactRecord>(MemoryContacts::person(id, first, "Lovelace", {id + "@a.example"}));
}

ContactRecord full()
{
    ContactRecord record = MemoryContacts::person("full", QString::fromUtf8("Zoë <&> 花子 🙂"), "Lovelace");
    record.flags = ContactRecord::ShowAsCompany | ContactRecord::LastNameFirst;
    record.suffix = "PhD";
    record.organization = "Engines\nLtd";
    record.homePage = "https://a.example/?a=b&c=d";
    record.phones = {{"home", "+1 555 1"}, {"", "+1 555 2"}};
    record.emails = {{"work", "one@a.example"}, {"own word", "two@a.example"}};
    record.primaryPhone = 1;
    record.primaryEmail = 1;
    return record;
}
} // namespace

class KnownContactsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _home = std::make_unique<TemporaryHome>(); }
    void cleanup() { _home.reset(); }
    void fileLiesAmongTheCaches();
    void missingFileHoldsNothing();
    void cardsOutliveTheProgram();
    void noneStaysNone();
    void secondOpinionOnTheFile();
    void fileIsTheOwnersAlone();
    void isWrittenByItself();
    void isWrittenWhenTheApplicationQuits();
    void nothingIsWrittenWithoutAChange();
    void forgottenCardIsGone();
    void refreshReplacesAndForgets();
    void holdsNoMoreThanItMay();
    void groupOfManyIsCut();
    void damagedFileIsIgnored_data();
    void damagedFileIsIgnored();
    void largeFileIsIgnored();
    void positionsThatAreInNoListAreMended();
    void failedWriteLosesNothing();

private:
    QString file() const { return _home->path("caches/Contacts.plist"); }

    std::unique_ptr<TemporaryHome> _home;
};

void KnownContactsTest::fileLiesAmongTheCaches()
{
    QCOMPARE(KnownContacts::defaultPath(), _home->path("Library/Caches/Wayfold/Contacts.plist"));
}

void KnownContactsTest::missingFileHoldsNothing()
{
    const LoggedMessages messages;
    {
        const KnownContacts known(file());
        QVERIFY(!known.record("a"));
        QVERIFY(!known.record(QString()));
    }
    QVERIFY(!QFile::exists(file()));
    QVERIFY(messages.texts().isEmpty());
}

void KnownContactsTest::cardsOutliveTheProgram()
{
    const auto card = std::make_shared<ContactRecord>(full());
    const auto group = std::make_shared<ContactRecord>(MemoryContacts::group("g", "Group", {"full", "g", "mailto:x"}));
    const auto emptyGroup = std::make_shared<ContactRecord>(MemoryContacts::group("e", QString(), {}));
    {
        KnownContacts known(file());
        known.note(card);
        known.note(group);
        known.note(emptyGroup);
        QCOMPARE(known.record("full"), ContactRecordPtr(card));
    }
    const KnownContacts known(file());
    QVERIFY(known.record("full"));
    QCOMPARE(*known.record("full"), *card);
    QCOMPARE(*known.record("g"), *group);
    QCOMPARE(*known.record("e"), *emptyGroup);
    QVERIFY(!known.record("x"));
}

void KnownContactsTest::noneStaysNone()
{
    ContactRecord record;
    record.uniqueId = "nothing";
    record.lastName = ""; // not the same as none
    {
        KnownContacts known(file());
        known.note(std::make_shared<ContactRecord>(record));
    }
    const KnownContacts known(file());
    const ContactRecordPtr read = known.record("nothing");
    QVERIFY(read);
    for (const QString &text : {read->firstName, read->suffix, read->organization, read->homePage, read->groupName})
        QVERIFY(text.isNull());
    QVERIFY(!read->lastName.isNull());
    QVERIFY(read->lastName.isEmpty());
    QVERIFY(read->phones.empty() && read->emails.empty() && read->members.isEmpty());
}

void KnownContactsTest::secondOpinionOnTheFile()
{
    {
        KnownContacts known(file());
        known.note(std::make_shared<ContactRecord>(full()));
    }
    QProcess python;
    python.start("python3", {"-c",
                             "import plistlib, sys\n"
                             "card = plistlib.load(open(sys.argv[1], 'rb'))['Records'][0]\n"
                             "print(card['Identifier'], card['LastName'], card['Flags'], card['PrimaryEmail'],\n"
                             "      card['Emails'][1]['Label'], card['Emails'][1]['Value'], sep='|')\n",
                             file()});
    QVERIFY(python.waitForFinished(60'000));
    QCOMPARE(QString::fromUtf8(python.readAllStandardOutput()), QString("full|Lovelace|17|1|own word|two@a.example\n"));
}

void KnownContactsTest::fileIsTheOwnersAlone()
{
    {
        KnownContacts known(file());
        known.note(person("a"));
    }
    struct stat status;
    QCOMPARE(::stat(QFile::encodeName(file()).constData(), &status), 0);
    QCOMPARE(status.st_mode & 0077, mode_t(0));
}

void KnownContactsTest::isWrittenByItself()
{
    KnownContacts known(file());
    known.note(person("a"));
    QVERIFY(!QFile::exists(file())); // not while the list is being shown
    QTRY_VERIFY(QFile::exists(file()));
    QVERIFY(KnownContacts(file()).record("a"));
    known.note(person("b"));
    QTRY_VERIFY(KnownContacts(file()).record("b"));
}

void KnownContactsTest::isWrittenWhenTheApplicationQuits()
{
    KnownContacts known(file());
    known.note(person("a"));
    QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();
    QVERIFY(QFile::exists(file()));
}

void KnownContactsTest::nothingIsWrittenWithoutAChange()
{
    {
        KnownContacts known(file());
        known.note(person("a"));
    }
    QVERIFY(QFile::remove(file()));
    KnownContacts known(file());
    known.note(person("a"));
    QVERIFY(known.synchronize());
    QVERIFY(QFile::remove(file()));
    known.note(person("a")); // another record that says the same
    known.note(known.record("a"));
    known.forget("nobody");
    known.refresh([](const QString &) { return person("a"); });
    QVERIFY(known.synchronize());
    QVERIFY(!QFile::exists(file()));
    known.note(person("a", "Augusta"));
    QVERIFY(known.synchronize());
    QVERIFY(QFile::exists(file()));
}

void KnownContactsTest::forgottenCardIsGone()
{
    KnownContacts known(file());
    known.note(person("a"));
    known.note(person("b"));
    QVERIFY(known.synchronize());
    known.forget("a");
    QVERIFY(!known.record("a"));
    QVERIFY(known.record("b"));
    QVERIFY(known.synchronize());
    QVERIFY(!KnownContacts(file()).record("a"));
    QVERIFY(KnownContacts(file()).record("b"));
}

void KnownContactsTest::refreshReplacesAndForgets()
{
    KnownContacts known(file());
    for (const char *id : {"a", "b", "c"})
        known.note(person(id));
    QVERIFY(known.synchronize());
    known.refresh([](const QString &id) -> ContactRecordPtr {
        return id == "a" ? nullptr : id == "b" ? person("b", "Bob") : person("c");
    });
    QVERIFY(known.synchronize());
    const KnownContacts again(file());
    QVERIFY(!again.record("a"));
    QCOMPARE(again.record("b")->firstName, QString("Bob"));
    QCOMPARE(again.record("c")->firstName, QString("Ada"));
}

// Those that were asked for last stay, also over the next start.
void KnownContactsTest::holdsNoMoreThanItMay()
{
    constexpr int most = int(KnownContacts::mostRecords);
    {
        KnownContacts known(file());
        for (int i = 0; i < 3 * most; ++i) {
            known.note(person(QString::number(i)));
            if (i > 0)
                known.note(known.record("0"));
        }
        QVERIFY(known.record(QString::number(3 * most - 1)));
    }
    const QVariantList records = PropertyList::readDictionaryFile(file()).value("Records").toList();
    QCOMPARE(int(records.size()), most);
    KnownContacts known(file());
    QVERIFY(known.record("0"));
    QVERIFY(!known.record("1"));
    QVERIFY(!known.record(QString::number(2 * most)));
    QVERIFY(known.record(QString::number(2 * most + 1)));
    known.note(person("one more"));
    QVERIFY(known.synchronize());
    const KnownContacts again(file());
    QVERIFY(again.record("one more"));
    QVERIFY(!again.record(QString::number(2 * most + 1))); // the one that was asked for first
    QVERIFY(again.record(QString::number(2 * most + 2)));
}

void KnownContactsTest::groupOfManyIsCut()
{
    QStringList members;
    for (int i = 0; i < KnownContacts::mostMembers + 1; ++i)
        members.append(QString::number(i));
    {
        KnownContacts known(file());
        known.note(std::make_shared<ContactRecord>(MemoryContacts::group("g", "Group", members)));
    }
    QCOMPARE(KnownContacts(file()).record("g")->members, members.mid(0, KnownContacts::mostMembers));
}

void KnownContactsTest::damagedFileIsIgnored_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no property list") << QByteArray("none");
    QTest::newRow("cut off") << PropertyList::toXml(QVariantMap{{"Records", QVariantList()}}).left(100);
    QTest::newRow("a list") << PropertyList::toXml(QVariantList{"a"});
    QTest::newRow("no records") << PropertyList::toXml(QVariantMap{{"Records", "a"}});
    QTest::newRow("records of a wrong kind") << PropertyList::toXml(QVariantMap{{"Records", QVariantList{"a", 1}}});
    QTest::newRow("without identifier") << PropertyList::toXml(
        QVariantMap{{"Records", QVariantList{QVariantMap{{"FirstName", "Ada"}}}}});
    QTest::newRow("fields of wrong kinds") << PropertyList::toXml(QVariantMap{
        {"Records", QVariantList{QVariantMap{
                        {"Identifier", QVariantList{"a"}}, {"Emails", "x"}, {"Members", 1}, {"Flags", "y"}}}}});
}

void KnownContactsTest::damagedFileIsIgnored()
{
    QFETCH(QByteArray, contents);
    const LoggedMessages messages; // that it cannot be read may be said
    _home->write("caches/Contacts.plist", contents);
    KnownContacts known(file());
    QVERIFY(!known.record("a"));
    QVERIFY(!known.record(QString()));
    known.note(person("b"));
    QVERIFY(known.synchronize());
    QVERIFY(KnownContacts(file()).record("b"));
    QCOMPARE(QDir(_home->path("caches")).entryList(QDir::Files), QStringList{"Contacts.plist"}); // no copy is kept
}

void KnownContactsTest::largeFileIsIgnored()
{
    const QByteArray contents = PropertyList::toXml(
        QVariantMap{{"Records", QVariantList{QVariantMap{{"Identifier", "a"}}}}, {"Other", QString(9 << 20, u'x')}});
    _home->write("caches/Contacts.plist", contents);
    QVERIFY(!KnownContacts(file()).record("a"));
}

void KnownContactsTest::positionsThatAreInNoListAreMended()
{
    const auto reading = [this](qlonglong position) {
        const QVariantMap card = {{"Identifier", "a"},
                                  {"Emails", QVariantList{QVariantMap{{"Value", "1"}}, QVariantMap{{"Value", "2"}}}},
                                  {"PrimaryEmail", position},
                                  {"PrimaryPhone", position}};
        _home->write("caches/Contacts.plist", PropertyList::toXml(QVariantMap{{"Records", QVariantList{card}}}));
        return *KnownContacts(file()).record("a");
    };
    QCOMPARE(reading(7).primaryEmail, 1);
    QCOMPARE(reading(-7).primaryEmail, 0);
    QCOMPARE(reading(1).primaryEmail, 1);
    QCOMPARE(reading(1LL << 40).primaryEmail, 1);
    QCOMPARE(reading(7).primaryPhone, 0);
}

void KnownContactsTest::failedWriteLosesNothing()
{
    const LoggedMessages messages;
    _home->write("caches", "a file where the folder should be");
    KnownContacts known(file());
    known.note(person("a"));
    QVERIFY(!known.synchronize());
    QVERIFY(known.record("a"));
    QVERIFY(QFile::remove(_home->path("caches")));
    QVERIFY(known.synchronize());
    QVERIFY(KnownContacts(file()).record("a"));
}

QTEST_GUILESS_MAIN(KnownContactsTest)
#include "KnownContactsTest.moc"
