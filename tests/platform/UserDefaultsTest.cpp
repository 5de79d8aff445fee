#include "platform/files/UserDefaults.h"
#include "platform/files/FileLock.h"
#include "platform/files/PropertyList.h"
#include "tests/support/LoggedMessages.h"
#include "tests/support/PythonScript.h"
#include "tests/support/TemporaryHome.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <sys/wait.h>
#include <unistd.h>

class UserDefaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void domainThatDoesNotExist();
    void readsTheFile();
    void changeIsSeenAtOnce();
    void changeIsWrittenByItself();
    void changeIsWrittenWhenTheApplicationQuits();
    void changeIsWrittenAtTheEnd();
    void removeAndSet();
    void removedDomainHasNoFile();
    void domainsAreApart();
    void valuesKeepTheirTypes();
    void unreadableFileIsKeptAside_data();
    void unreadableFileIsKeptAside();
    void fileThatIsNotReadWholeIsKeptAside();
    void unreadableFileIsLeftAloneUntilWritten();
    void unreadableFileThatCannotBeKeptIsNotWrittenOver();
    void unreadableFileIsKeptBeforeItIsRemoved();
    void failedWriteStaysPending();
    void changeAfterAFailedWriteIsWrittenByItself();
    void homeIsReadWhenAskedFor();
    void resetForgets();
    void nothingIsWrittenWithoutAChange();
    void whatAKilledSaveLeftIsRemoved();

    void eachWritesItsOwnKeys();
    void whatBothChangeIsAsTheLastWriterHasIt();
    void keyThatIsTakenAwayGoes();
    void keyThatAnotherTookAwayGoes();
    void tablesAreMergedToo();
    void domainThatAnotherWriterFillsIsNotRemoved();
    void changeElsewhereCountsByItself();
    void changeElsewhereIsToldOnce();
    void changeElsewhereIsToldWhenItIsFoundWhileWriting();
    void changeByAnEditorCounts();
    void changeElsewhereThatCannotBeReadChangesNothing();
    void fileThatVanishedIsWrittenWhole();
    void unreadableFileThatVanishedIsWritten();
    void busyLockIsTriedAgainSoon();
    void lockThatIsNeverLetGo();
    void processesWriteOneFile();

private:
    // What another reader finds in the file: Python's, whose assertion this is.
    QString checkWithPython(const QByteArray &assertion) const
    {
        return runPython(*_home,
                         "d = plistlib.load(open('" + file().toUtf8() + "', 'rb'))\nassert " + assertion + ", d\n");
    }
    QString file(const QString &name = QStringLiteral("org.example.Test")) const
    {
        return QStringLiteral("Library/Preferences/%1.plist").arg(name);
    }
    QStringList keptCopies() const { return QDir(_home->path("Library/Preferences")).entryList({"*.kept-*"}); }

    const QString _name = QStringLiteral("org.example.Test");
    std::unique_ptr<TemporaryHome> _home;
    std::unique_ptr<UserDefaults> _defaults;
};

void UserDefaultsTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    _defaults = std::make_unique<UserDefaults>();
}

void UserDefaultsTest::cleanup()
{
    _defaults->reset();
    _defaults.reset();
    _home.reset();
}

void UserDefaultsTest::domainThatDoesNotExist()
{
    QVERIFY(_defaults->persistentDomainForName(_name).isEmpty());
    QVERIFY(!_defaults->hasPersistentDomainForName(_name));
}

void UserDefaultsTest::readsTheFile()
{
    _home->write(file(), PropertyList::toXml(QVariantMap{{"a", "b"}}));
    QVERIFY(_defaults->hasPersistentDomainForName(_name));
    QCOMPARE(_defaults->persistentDomainForName(_name), QVariantMap({{"a", "b"}}));
}

void UserDefaultsTest::changeIsSeenAtOnce()
{
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    QVERIFY(_defaults->hasPersistentDomainForName(_name));
    QCOMPARE(_defaults->persistentDomainForName(_name).value("a"), 1);
    _defaults->removePersistentDomainForName(_name);
    QVERIFY(!_defaults->hasPersistentDomainForName(_name));
    QVERIFY(_defaults->persistentDomainForName(_name).isEmpty());
}

void UserDefaultsTest::changeIsWrittenByItself()
{
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    QVERIFY(!QFile::exists(_home->path(file())));
    QTRY_VERIFY(QFile::exists(_home->path(file())));
    QCOMPARE(PropertyList::readDictionaryFile(_home->path(file())).value("a"), 1);
}

void UserDefaultsTest::changeIsWrittenWhenTheApplicationQuits()
{
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();
    QVERIFY(QFile::exists(_home->path(file())));
}

void UserDefaultsTest::changeIsWrittenAtTheEnd()
{
    UserDefaults().setPersistentDomainForName({{"a", 1}}, _name);
    QVERIFY(QFile::exists(_home->path(file())));
}

void UserDefaultsTest::whatAKilledSaveLeftIsRemoved()
{
    const LoggedMessages messages;
    _home->write(file() + ".saving-abcdef", "half");
    _home->write(file("org.example.Other") + ".saving-abcdef", "half");
    QVERIFY(_defaults->persistentDomainForName(_name).isEmpty());
    QCOMPARE(QDir(_home->path("Library/Preferences")).entryList(QDir::Files),
             QStringList("org.example.Other.plist.saving-abcdef"));
}

void UserDefaultsTest::removeAndSet()
{
    _home->write(file(), PropertyList::toXml(QVariantMap{{"old", 1}}));
    _defaults->removePersistentDomainForName(_name);
    _defaults->setPersistentDomainForName({{"new", 2}}, _name);
    QVERIFY(_defaults->synchronize());
    QCOMPARE(PropertyList::readDictionaryFile(_home->path(file())), QVariantMap({{"new", 2}}));
}

void UserDefaultsTest::removedDomainHasNoFile()
{
    _home->write(file(), PropertyList::toXml(QVariantMap{{"a", 1}}));
    _defaults->removePersistentDomainForName(_name);
    QVERIFY(_defaults->synchronize());
    QVERIFY(!QFile::exists(_home->path(file())));
}

void UserDefaultsTest::domainsAreApart()
{
    _defaults->setPersistentDomainForName({{"a", 1}}, "org.example.A");
    _defaults->setPersistentDomainForName({{"a", 2}}, "org.example.B");
    QVERIFY(_defaults->synchronize());
    QCOMPARE(PropertyList::readDictionaryFile(_home->path(file("org.example.A"))).value("a"), 1);
    QCOMPARE(PropertyList::readDictionaryFile(_home->path(file("org.example.B"))).value("a"), 2);
}

void UserDefaultsTest::valuesKeepTheirTypes()
{
    const QVariantMap values{{"width", 250.0},
                             {"flag", qlonglong(1)},
                             {"font", "LucidaGrande"},
                             {"shortcuts", QVariantMap{{"0_KEY", "0"}, {"0_MODIFIER", qlonglong(1048576)}}}};
    _defaults->setPersistentDomainForName(values, _name);
    QVERIFY(_defaults->synchronize());
    UserDefaults later;
    const QVariantMap read = later.persistentDomainForName(_name);
    QCOMPARE(read, values);
    for (auto value = values.begin(); value != values.end(); ++value)
        QCOMPARE(read.value(value.key()).metaType(), value->metaType());
}

void UserDefaultsTest::unreadableFileIsKeptAside_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("damaged") << QByteArray("<plist><dict><key>a</key>");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no dictionary") << PropertyList::toXml(QVariantList{"a"});
}

void UserDefaultsTest::unreadableFileIsKeptAside()
{
    QFETCH(QByteArray, contents);
    const LoggedMessages messages;
    _home->write(file(), contents);
    QVERIFY(_defaults->persistentDomainForName(_name).isEmpty());
    QVERIFY(!_defaults->hasPersistentDomainForName(_name));
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    QSignalSpy told(_defaults.get(), &UserDefaults::copyKept);
    QVERIFY(_defaults->synchronize());
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(_home->read("Library/Preferences/" + keptCopies().constFirst()), contents);
    QCOMPARE(told, (QList<QVariantList>{{_home->path("Library/Preferences/" + keptCopies().constFirst())}}));
    QCOMPARE(PropertyList::readDictionaryFile(_home->path(file())).value("a"), 1);

    // Once is enough.
    _defaults->setPersistentDomainForName({{"a", 2}}, _name);
    QVERIFY(_defaults->synchronize());
    QCOMPARE(keptCopies().size(), 1);
}

void UserDefaultsTest::fileThatIsNotReadWholeIsKeptAside()
{
    const QByteArray contents =
        "<plist><dict><key>a</key><true/><key>a</key><false/><key>b</key><true/></dict></plist>";
    const LoggedMessages messages;
    _home->write(file(), contents);
    QCOMPARE(_defaults->persistentDomainForName(_name).value("b"), true);
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    QVERIFY(_defaults->synchronize());
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(_home->read("Library/Preferences/" + keptCopies().constFirst()), contents);
}

void UserDefaultsTest::unreadableFileIsLeftAloneUntilWritten()
{
    const LoggedMessages messages;
    _home->write(file(), "damaged");
    _defaults->persistentDomainForName(_name);
    QVERIFY(_defaults->synchronize());
    QCOMPARE(_home->read(file()), "damaged");
    QVERIFY(keptCopies().isEmpty());
}

void UserDefaultsTest::unreadableFileThatCannotBeKeptIsNotWrittenOver()
{
    const LoggedMessages messages;
    QVERIFY(QDir().mkpath(_home->path(file()))); // a folder in the place of the file
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    QVERIFY(!_defaults->synchronize());
    QVERIFY(messages.contain("Could not keep a copy"));
    QCOMPARE(_defaults->persistentDomainForName(_name).value("a"), 1);
    QVERIFY(QDir(_home->path(file())).removeRecursively());
}

void UserDefaultsTest::unreadableFileIsKeptBeforeItIsRemoved()
{
    const LoggedMessages messages;
    _home->write(file(), "damaged");
    _defaults->removePersistentDomainForName(_name);
    QVERIFY(_defaults->synchronize());
    QVERIFY(!QFile::exists(_home->path(file())));
    QCOMPARE(keptCopies().size(), 1);
}

void UserDefaultsTest::failedWriteStaysPending()
{
    const LoggedMessages messages;
    _home->write("Library", "a file where the folder belongs");
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    QVERIFY(!_defaults->synchronize());
    QVERIFY(messages.contain("Could not"));
    QVERIFY(!_defaults->synchronize());
    QCOMPARE(_defaults->persistentDomainForName(_name).value("a"), 1);
    QVERIFY(QFile::remove(_home->path("Library")));
    QVERIFY(_defaults->synchronize());
    QCOMPARE(PropertyList::readDictionaryFile(_home->path(file())).value("a"), 1);
}

void UserDefaultsTest::changeAfterAFailedWriteIsWrittenByItself()
{
    const LoggedMessages messages;
    _home->write("Library", "a file where the folder belongs");
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    QVERIFY(!_defaults->synchronize());
    QVERIFY(QFile::remove(_home->path("Library")));
    _defaults->setPersistentDomainForName({{"b", 2}}, _name);
    QTRY_VERIFY(QFile::exists(_home->path(file())));
    QCOMPARE(PropertyList::readDictionaryFile(_home->path(file())), QVariantMap({{"b", 2}}));
}

void UserDefaultsTest::homeIsReadWhenAskedFor()
{
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    {
        const TemporaryHome other;
        QVERIFY(!_defaults->hasPersistentDomainForName(_name));
        QVERIFY(_defaults->synchronize()); // what was changed belongs to the home that it was changed in
        QVERIFY(!QFile::exists(other.path(file())));
    }
    QVERIFY(QFile::exists(_home->path(file())));
}

void UserDefaultsTest::resetForgets()
{
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    _defaults->reset();
    QVERIFY(!_defaults->hasPersistentDomainForName(_name));
    QVERIFY(_defaults->synchronize());
    QVERIFY(!QFile::exists(_home->path(file())));
    _home->write(file(), PropertyList::toXml(QVariantMap{{"b", 2}}));
    _defaults->reset();
    QCOMPARE(_defaults->persistentDomainForName(_name).value("b"), 2);
}

void UserDefaultsTest::nothingIsWrittenWithoutAChange()
{
    _home->write(file(), PropertyList::toXml(QVariantMap{{"a", 1}}) + "<!-- by hand -->");
    const QByteArray before = _home->read(file());
    _defaults->persistentDomainForName(_name);
    QVERIFY(_defaults->synchronize());
    QCOMPARE(_home->read(file()), before);
}

void UserDefaultsTest::eachWritesItsOwnKeys()
{
    _home->write(file(), PropertyList::toXml(QVariantMap{{"a", 1}, {"b", 1}, {"c", 1}}));
    UserDefaults other;
    _defaults->setPersistentDomainForName({{"a", 2}, {"b", 1}, {"c", 1}, {"mine", 1}}, _name);
    other.persistentDomainForName(_name);
    other.setPersistentDomainForName({{"a", 1}, {"b", 2}, {"c", 1}, {"yours", 1}}, _name);
    QVERIFY(_defaults->synchronize());
    QVERIFY(other.synchronize());
    QCOMPARE(checkWithPython("d == {'a': 2, 'b': 2, 'c': 1, 'mine': 1, 'yours': 1}"), QString());
    _defaults->lookForChanges();
    QCOMPARE(_defaults->persistentDomainForName(_name), other.persistentDomainForName(_name));
    QCOMPARE(_defaults->persistentDomainForName(_name).value("b"), 2);
}

void UserDefaultsTest::whatBothChangeIsAsTheLastWriterHasIt()
{
    UserDefaults other;
    QVERIFY(other.persistentDomainForName(_name).isEmpty());
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    other.setPersistentDomainForName({{"a", 2}}, _name);
    QVERIFY(other.synchronize());
    QVERIFY(_defaults->synchronize());
    QCOMPARE(checkWithPython("d == {'a': 1}"), QString());
    other.lookForChanges();
    QCOMPARE(other.persistentDomainForName(_name).value("a"), 1);
    // And what has been written once is not written over the other's later change.
    other.setPersistentDomainForName({{"a", 3}}, _name);
    QVERIFY(other.synchronize());
    _defaults->setPersistentDomainForName({{"a", 1}, {"b", 1}}, _name);
    QVERIFY(_defaults->synchronize());
    QCOMPARE(checkWithPython("d == {'a': 3, 'b': 1}"), QString());
}

void UserDefaultsTest::keyThatIsTakenAwayGoes()
{
    _home->write(file(), PropertyList::toXml(QVariantMap{{"a", 1}, {"b", 1}}));
    UserDefaults other;
    other.persistentDomainForName(_name);
    _defaults->setPersistentDomainForName({{"b", 1}}, _name);
    other.setPersistentDomainForName({{"a", 1}, {"b", 2}}, _name);
    QVERIFY(other.synchronize());
    QVERIFY(_defaults->synchronize());
    QCOMPARE(checkWithPython("d == {'b': 2}"), QString());
}

void UserDefaultsTest::keyThatAnotherTookAwayGoes()
{
    _home->write(file(), PropertyList::toXml(QVariantMap{{"a", 1}, {"b", 1}}));
    _defaults->setPersistentDomainForName({{"a", 1}, {"b", 2}}, _name);
    _home->write(file(), PropertyList::toXml(QVariantMap{{"b", 1}}));
    QVERIFY(_defaults->synchronize());
    QCOMPARE(checkWithPython("d == {'b': 2}"), QString());
    QVERIFY(!_defaults->persistentDomainForName(_name).contains("a"));
}

void UserDefaultsTest::tablesAreMergedToo()
{
    const auto table = [](const QVariantMap &entries) { return QVariantMap{{"table", entries}}; };
    _home->write(file(), PropertyList::toXml(table({{"4_KEY", "O"}, {"5_KEY", "E"}})));
    _defaults->setPersistentDomainForName(table({{"4_KEY", "P"}, {"5_KEY", "E"}}), _name);
    _home->write(file(), PropertyList::toXml(table({{"4_KEY", "O"}, {"5_KEY", "F"}})));
    QVERIFY(_defaults->synchronize());
    QCOMPARE(checkWithPython("d == {'table': {'4_KEY': 'P', '5_KEY': 'F'}}"), QString());
}

void UserDefaultsTest::domainThatAnotherWriterFillsIsNotRemoved()
{
    _home->write(file(), PropertyList::toXml(QVariantMap{{"a", 1}}));
    _defaults->removePersistentDomainForName(_name);
    _home->write(file(), PropertyList::toXml(QVariantMap{{"a", 1}, {"b", 1}}));
    QVERIFY(_defaults->synchronize());
    QCOMPARE(checkWithPython("d == {'b': 1}"), QString());
    QVERIFY(_defaults->hasPersistentDomainForName(_name));
}

void UserDefaultsTest::changeElsewhereCountsByItself()
{
    QVERIFY(!_defaults->hasPersistentDomainForName(_name));
    UserDefaults().setPersistentDomainForName({{"a", 1}}, _name); // written when it goes
    QTRY_COMPARE(_defaults->persistentDomainForName(_name).value("a"), 1);
    QVERIFY(_defaults->hasPersistentDomainForName(_name));
}

void UserDefaultsTest::changeElsewhereIsToldOnce()
{
    _home->write(file("org.example.Other"), PropertyList::toXml(QVariantMap{{"a", 1}}));
    _defaults->persistentDomainForName("org.example.Other");
    _defaults->persistentDomainForName(_name);
    QSignalSpy told(_defaults.get(), &UserDefaults::domainChangedElsewhere);
    _defaults->setPersistentDomainForName({{"mine", 1}}, _name);
    QVERIFY(_defaults->synchronize());
    _defaults->lookForChanges();
    QVERIFY(told.isEmpty());

    _home->write(file(), PropertyList::toXml(QVariantMap{{"mine", 2}}));
    _defaults->lookForChanges();
    _defaults->lookForChanges();
    QCOMPARE(told, (QList<QVariantList>{{_name}}));
    // Written anew with the same values.
    _home->write(file(), PropertyList::toXml(QVariantMap{{"mine", 2}}) + "<!-- by hand -->");
    _defaults->lookForChanges();
    QCOMPARE(told.size(), 1);
}

void UserDefaultsTest::changeElsewhereIsToldWhenItIsFoundWhileWriting()
{
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    _home->write(file(), PropertyList::toXml(QVariantMap{{"b", 1}}));
    QVariantMap seen;
    connect(_defaults.get(), &UserDefaults::domainChangedElsewhere, this,
            [&] { seen = _defaults->persistentDomainForName(_name); });
    QVERIFY(_defaults->synchronize());
    QCOMPARE(seen, QVariantMap({{"a", 1}, {"b", 1}}));
}

void UserDefaultsTest::changeByAnEditorCounts()
{
    _defaults->setPersistentDomainForName({{"a", 1}, {"b", 1}}, _name);
    QVERIFY(_defaults->synchronize());
    const QByteArray name = file().toUtf8();
    QCOMPARE(runPython(*_home, "d = plistlib.load(open('" + name + "', 'rb'))\nd['b'] = 2\n" +
                                   "plistlib.dump(d, open('" + name + "', 'wb'), fmt=plistlib.FMT_BINARY)\n"),
             QString());
    _defaults->lookForChanges();
    QCOMPARE(_defaults->persistentDomainForName(_name), QVariantMap({{"a", 1}, {"b", 2}}));
}

void UserDefaultsTest::changeElsewhereThatCannotBeReadChangesNothing()
{
    const LoggedMessages messages;
    QSignalSpy told(_defaults.get(), &UserDefaults::domainChangedElsewhere);
    _home->write(file(), PropertyList::toXml(QVariantMap{{"a", 1}, {"b", 1}}));
    _defaults->persistentDomainForName(_name);
    _home->write(file(), "<plist><dict><key>a");
    _defaults->lookForChanges();
    QCOMPARE(_defaults->persistentDomainForName(_name), QVariantMap({{"a", 1}, {"b", 1}}));
    QVERIFY(told.isEmpty());
    // It is kept aside, and all that is known is written.
    _defaults->setPersistentDomainForName({{"a", 2}, {"b", 1}}, _name);
    QVERIFY(_defaults->synchronize());
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(_home->read("Library/Preferences/" + keptCopies().constFirst()), "<plist><dict><key>a");
    QCOMPARE(checkWithPython("d == {'a': 2, 'b': 1}"), QString());
    // One that was only half written when it was looked at is read again.
    _home->write(file(), "<plist><dict>");
    _defaults->lookForChanges();
    _home->write(file(), PropertyList::toXml(QVariantMap{{"a", 2}, {"b", 3}}));
    _defaults->setPersistentDomainForName({{"a", 4}, {"b", 1}}, _name);
    QVERIFY(_defaults->synchronize());
    QCOMPARE(checkWithPython("d == {'a': 4, 'b': 3}"), QString());
    QCOMPARE(keptCopies().size(), 1);
}

void UserDefaultsTest::fileThatVanishedIsWrittenWhole()
{
    _home->write(file(), PropertyList::toXml(QVariantMap{{"a", 1}, {"b", 1}}));
    _defaults->persistentDomainForName(_name);
    QVERIFY(QFile::remove(_home->path(file())));
    _defaults->lookForChanges();
    QCOMPARE(_defaults->persistentDomainForName(_name).value("b"), 1);
    _defaults->setPersistentDomainForName({{"a", 2}, {"b", 1}}, _name);
    QVERIFY(_defaults->synchronize());
    QCOMPARE(checkWithPython("d == {'a': 2, 'b': 1}"), QString());
}

void UserDefaultsTest::unreadableFileThatVanishedIsWritten()
{
    const LoggedMessages messages;
    _home->write(file(), "damaged");
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    QVERIFY(QFile::remove(_home->path(file())));
    QVERIFY(_defaults->synchronize());
    QCOMPARE(checkWithPython("d == {'a': 1}"), QString());
}

void UserDefaultsTest::busyLockIsTriedAgainSoon()
{
    QVERIFY(QDir().mkpath(_home->path("Library/Preferences")));
    auto lock = std::make_unique<FileLock>(_home->path(file()));
    QCOMPARE(lock->tryLock(), FileLock::Locked);
    _defaults->setPersistentDomainForName({{"a", 1}}, _name);
    QVERIFY(!_defaults->synchronize());
    QVERIFY(!QFile::exists(_home->path(file())));
    QCOMPARE(_defaults->persistentDomainForName(_name).value("a"), 1);
    lock.reset();
    QTRY_VERIFY(QFile::exists(_home->path(file()))); // far sooner than after what has failed
    QVERIFY(!QFile::exists(_home->path(file() + ".lock")));
}

void UserDefaultsTest::lockThatIsNeverLetGo()
{
    const LoggedMessages messages;
    QVERIFY(QDir().mkpath(_home->path("Library/Preferences")));
    FileLock lock(_home->path(file()));
    QCOMPARE(lock.tryLock(), FileLock::Locked);
    _home->write(file(), PropertyList::toXml(QVariantMap{{"b", 1}}));
    UserDefaults().setPersistentDomainForName({{"a", 1}}, _name);
    QCOMPARE(checkWithPython("d == {'a': 1}"), QString()); // it had been read before: b was taken away
    QVERIFY(messages.contain("locked"));
}

void UserDefaultsTest::processesWriteOneFile()
{
    constexpr int processes = 4;
    constexpr int rounds = 12;
    QList<pid_t> children;
    for (int number = 0; number < processes; ++number) {
        const pid_t child = ::fork();
        QVERIFY(child >= 0);
        if (child == 0) {
            UserDefaults own;
            for (int round = 1; round <= rounds; ++round) {
                QVariantMap domain = own.persistentDomainForName(_name);
                domain.insert(QString("process %1").arg(number), qlonglong(round));
                domain.insert(QString("process %1 round %2").arg(number).arg(round), true);
                own.setPersistentDomainForName(domain, _name);
                while (!own.synchronize())
                    ::usleep(200);
            }
            ::_exit(0);
        }
        children.append(child);
    }
    for (const pid_t child : children) {
        int status = 1;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
    }
    QCOMPARE(checkWithPython("len(d) == 52 and all(d[f'process {n}'] == 12 for n in range(4))"), QString());
    QCOMPARE(QDir(_home->path("Library/Preferences")).entryList(QDir::Files), QStringList(_name + ".plist"));
}

QTEST_GUILESS_MAIN(UserDefaultsTest)
#include "UserDefaultsTest.moc"
