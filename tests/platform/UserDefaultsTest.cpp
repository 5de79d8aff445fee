#include "platform/files/UserDefaults.h"
#include "platform/files/PropertyList.h"
#include "tests/support/LoggedMessages.h"
#include "tests/support/TemporaryHome.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTest>
#include <QTimer>

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

private:
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
    QVERIFY(_defaults->synchronize());
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(_home->read("Library/Preferences/" + keptCopies().constFirst()), contents);
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

QTEST_GUILESS_MAIN(UserDefaultsTest)
#include "UserDefaultsTest.moc"
