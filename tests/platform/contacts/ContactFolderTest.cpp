#include "platform/contacts/ContactFolder.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/contacts/KnownContacts.h"
#include "tests/platform/contacts/StoreCases.h"
#include "tests/support/BytesRead.h"
#include "tests/support/LoggedMessages.h"
#include "tests/support/MemoryContacts.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>
#include <QUuid>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr int patience = 30'000; // milliseconds

QByteArray personCard(const QByteArray &id, const QByteArray &first, const QByteArray &more = QByteArray())
{
    return "BEGIN:VCARD\r\nVERSION:3.0\r\n" + (id.isEmpty() ? QByteArray() : "UID:" + id + "\r\n") + "FN:" + first +
           "\r\nN:;" + first + ";;;\r\n" + more + "END:VCARD\r\n";
}

QStringList namesOf(const std::vector<ContactRecordPtr> &records)
{
    QStringList names;
    for (const ContactRecordPtr &record : records)
        names.append(record->firstName);
    return names;
}

// The administrator may read and write everything: for as long as this lives, the test is run by somebody else, who
// owns the folder and all in it.
class Unprivileged
{
public:
    explicit Unprivileged(const QString &folder) : _wasPrivileged(::geteuid() == 0)
    {
        if (!_wasPrivileged)
            return;
        const auto giveAway = [](const QString &path) {
            if (::lchown(QFile::encodeName(path).constData(), nobody, nobody) != 0)
                qFatal("cannot give %s away", qPrintable(path));
        };
        giveAway(folder);
        QDirIterator files(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                           QDirIterator::Subdirectories);
        while (files.hasNext())
            giveAway(files.next());
        if (::seteuid(nobody) != 0)
            qFatal("cannot be somebody else");
    }
    ~Unprivileged()
    {
        if (_wasPrivileged && ::seteuid(0) != 0)
            qFatal("cannot be the administrator again");
    }

private:
    static constexpr unsigned nobody = 65534;
    const bool _wasPrivileged;
};

class FolderElsewhere : public ContactsElsewhere
{
public:
    FolderElsewhere()
    {
        QDir().mkpath(_home.path("cards"));
        _store = std::make_unique<ContactFolder>(_home.path("cards"));
    }

    ContactStore &store() override { return *_store; }
    QString write(const QByteArray &vCard) override
    {
        const QRegularExpressionMatch named =
            QRegularExpression("^UID:(.*)\r$", QRegularExpression::MultilineOption).match(QString::fromUtf8(vCard));
        if (named.hasMatch()) {
            _home.write("cards/" + named.captured(1) + ".vcf", vCard);
            return named.captured(1);
        }
        const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces);
        QByteArray card = vCard;
        card.replace("END:VCARD", "UID:" + id.toUtf8() + "\r\nEND:VCARD");
        return write(card);
    }
    void change(const QString &uniqueId, const QByteArray &vCard) override
    {
        _home.write("cards/.tmp", vCard);
        QFile::remove(fileOf(uniqueId));
        QVERIFY(QFile::rename(_home.path("cards/.tmp"), fileOf(uniqueId)));
    }
    void remove(const QString &uniqueId) override { QFile::remove(fileOf(uniqueId)); }
    void makeMe(const QString &uniqueId) override { QFile::rename(fileOf(uniqueId), _home.path("cards/me.vcf")); }
    QByteArray card(const QString &uniqueId) override { return _home.read("cards/" + uniqueId + ".vcf"); }

private:
    QString fileOf(const QString &uniqueId) const { return _home.path("cards/" + uniqueId + ".vcf"); }

    TemporaryHome _home;
    std::unique_ptr<ContactFolder> _store;
};
} // namespace

class ContactFolderTest : public StoreCases
{
    Q_OBJECT

protected:
    std::unique_ptr<ContactsElsewhere> makeContacts() override { return std::make_unique<FolderElsewhere>(); }

private Q_SLOTS:
    void defaultFolderIsTheFirstWithCards_data();
    void defaultFolderIsTheFirstWithCards();
    void defaultFolderIsNotSearchedForEver();
    void stateWhileThereIsNoFolder();
    void folderThatComesLater();
    void lastKnownWhileThereIsNoFolder();
    void folderMayStartAtTheHome();
    void readsOnTheFly();
    void cardsStandInTheOrderOfTheirNames();
    void readsFoldersInTheFolder();
    void readsNoHiddenFiles();
    void readsFilesOfSeveralCards();
    void cardWithoutIdentifierGetsOneFromItsFile();
    void cardsWithoutIdentifierInOneFile();
    void whatIsNoPlainFileIsNotOpened();
    void linksAreFollowed();
    void linksInACircleEnd();
    void unreadableFileIsSkipped();
    void unreadableFileKeepsItsCards();
    void brokenFileKeepsItsCards();
    void tooLargeFileIsSkipped();
    void largeFileIsReadInSlices();
    void largeFileOfNoCardsIsReadInSlices();
    void changeInPlaceIsSeen();
    void changesAreSeenWhereTheSystemTellsNone();
    void changeOfOneFileReadsNoOther();
    void touchedFileIsToldAndKept();
    void renamedFileKeepsItsCard();
    void cardThatChangesItsIdentifier();
    void cardsOfTheSameIdentifier();
    void cardTwiceInAFile();
    void oneOfSeveralCardsGoes();
    void newFolderInTheFolderIsSeen();
    void removedFolderInTheFolderTakesItsCards();
    void removedFolderKeepsItsCards();
    void folderThatComesBackIsReadAnew();
    void replacedFolderIsWatched();
    void emptiedFolderIsEmpty();
    void folderThatCannotBeReadKeepsItsCards();
    void cardWhoseFileIsGoneIsMissedAtOnce();
    void pictureAndCardOfOneInManyInAFile();
    void manyCardsOfAFileReadItOnce();
    void opensTheFile();
    void ownCardIsThatOfItsFile();
    void addedCardHasAFileOfItsOwn();
    void addedCardWithOddIdentifier_data();
    void addedCardWithOddIdentifier();
    void addedCardTakesNoOthersFile();
    void addedCardDoesNotBecomeTheOwnOne();
    void nothingIsAddedBeforeAllIsRead();
    void addedCardThatIsThereIsLeftAlone();
    void cardThatWasRemovedCanBeAddedAtOnce();
    void addedCardsComeToTheOthers();
    void addedWithoutIdentifierKeepsItsText();
    void cannotAddWithoutFolder();
    void cannotAddWhereNothingCanBeWritten();
    void checksLeaveNoTrace();

private:
    // A store on the folder `cards` of this home, and all there is in it read.
    ContactFolder &ready();
    bool awaitNames(const QStringList &names);
    QStringList names() const { return namesOf(_folder->people()); }
    QString path(const QString &name) const { return _home->path("cards/" + name); }
    void write(const QString &name, const QByteArray &contents) { _home->write("cards/" + name, contents); }

    std::unique_ptr<TemporaryHome> _home;
    std::unique_ptr<ContactFolder> _folder;

private Q_SLOTS:
    void init()
    {
        StoreCases::init();
        _home = std::make_unique<TemporaryHome>();
    }
    void cleanup()
    {
        _folder.reset();
        _home.reset();
        StoreCases::cleanup();
    }
};

ContactFolder &ContactFolderTest::ready()
{
    QDir().mkpath(path(""));
    _folder = std::make_unique<ContactFolder>(path(""));
    if (!QTest::qWaitFor([this] { return _folder->state() == ContactStore::Ready; }, patience))
        qWarning("the folder was not read");
    return *_folder;
}

bool ContactFolderTest::awaitNames(const QStringList &names)
{
    const bool came = QTest::qWaitFor([&] { return this->names() == names; }, patience);
    if (!came)
        qWarning() << "there are" << this->names() << "in place of" << names;
    return came;
}

void ContactFolderTest::defaultFolderIsTheFirstWithCards_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("dataHome");
    QTest::addColumn<QString>("folder");
    const QString none;
    QTest::newRow("none") << QStringList() << none << none;
    QTest::newRow("in the home") << QStringList{".contacts/a.vcf"} << none << ".contacts";
    QTest::newRow("among the data") << QStringList{".local/share/contacts/a.vcf"} << none << ".local/share/contacts";
    QTest::newRow("both") << QStringList{".contacts/a.vcf", ".local/share/contacts/a.vcf"} << none << ".contacts";
    QTest::newRow("data elsewhere") << QStringList{"data/contacts/a.vcf", ".local/share/contacts/a.vcf"} << "data"
                                    << "data/contacts";
    QTest::newRow("collections") << QStringList{".contacts/private/a.vcf"} << none << ".contacts";
    QTest::newRow("collections of collections") << QStringList{".contacts/home/ada/a.vcf"} << none << ".contacts";
    QTest::newRow("too deep") << QStringList{".contacts/a/b/c/a.vcf"} << none << none;
    QTest::newRow("no cards") << QStringList{".contacts/a.txt", ".local/share/contacts/a.vcf"} << none
                              << ".local/share/contacts";
    QTest::newRow("hidden cards") << QStringList{".contacts/.git/a.vcf", ".contacts/.a.vcf"} << none << none;
    QTest::newRow("a file") << QStringList{".contacts"} << none << none;
}

void ContactFolderTest::defaultFolderIsTheFirstWithCards()
{
    QFETCH(QStringList, files);
    QFETCH(QString, dataHome);
    QFETCH(QString, folder);
    for (const QString &file : files)
        _home->write(file, personCard("a", "Ada"));
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", dataHome.isNull() ? QByteArray() : QFile::encodeName(_home->path(dataHome)));
    const QString answer = ContactFolder::defaultFolder();
    qputenv("XDG_DATA_HOME", before);
    QCOMPARE(answer, folder.isNull() ? QString() : _home->path(folder));
    QCOMPARE(answer.isNull(), folder.isNull());
}

// A folder's own files are looked at before those of the folders in it.
void ContactFolderTest::defaultFolderIsNotSearchedForEver()
{
    _home->write(".contacts/inner/a.vcf", personCard("a", "Ada"));
    for (int i = 0; i < 9000; ++i)
        _home->write(".contacts/" + QString::number(i), "");
    QCOMPARE(ContactFolder::defaultFolder(), _home->path(".contacts"));
    for (int i = 9000; i < 10'001; ++i)
        _home->write(".contacts/" + QString::number(i), "");
    QVERIFY(ContactFolder::defaultFolder().isNull());
}

void ContactFolderTest::stateWhileThereIsNoFolder()
{
    _folder = std::make_unique<ContactFolder>(path(""));
    QCOMPARE(_folder->state(), ContactStore::Absent);
    QTest::qWait(300); // the folder is looked for in this time
    QCOMPARE(_folder->state(), ContactStore::Absent);
    QVERIFY(!_folder->recordForUniqueId("a"));
    QVERIFY(!_folder->canAdd());
    write("a.vcf", personCard("a", "Ada"));
    QCOMPARE(_folder->state(), ContactStore::Loading);
    QTRY_COMPARE_WITH_TIMEOUT(_folder->state(), ContactStore::Ready, patience);
}

void ContactFolderTest::folderThatComesLater()
{
    _folder = std::make_unique<ContactFolder>(_home->path("not/there/yet"));
    QTest::qWait(50); // it has been looked for
    _home->write("not/there/yet/a.vcf", personCard("a", "Ada"));
    QVERIFY(awaitNames({"Ada"}));
    QTRY_COMPARE_WITH_TIMEOUT(_folder->state(), ContactStore::Ready, patience);
    _home->write("not/there/yet/b.vcf", personCard("b", "Bob"));
    QVERIFY(awaitNames({"Ada", "Bob"}));
}

// Say because it lies on a disk that is not mounted.
void ContactFolderTest::lastKnownWhileThereIsNoFolder()
{
    const QString memory = _home->path("known.plist");
    const auto ada = std::make_shared<ContactRecord>(MemoryContacts::person("a", "Ada", "Lovelace"));
    KnownContacts(memory).note(ada);
    _folder = std::make_unique<ContactFolder>(_home->path("disk/cards"));
    _folder->rememberIn(memory);
    QTest::qWait(50); // it has been looked for
    QCOMPARE(_folder->state(), ContactStore::Absent);
    const ContactRecordPtr known = _folder->recordForUniqueId("a");
    QVERIFY(known);
    QCOMPARE(known->lastName, "Lovelace");
    QVERIFY(_folder->people().empty());

    _home->write("disk/cards/b.vcf", personCard("b", "Bob"));
    QVERIFY(awaitNames({"Bob"}));
    QTRY_COMPARE_WITH_TIMEOUT(_folder->state(), ContactStore::Ready, patience);
    QVERIFY(!_folder->recordForUniqueId("a"));
}

void ContactFolderTest::folderMayStartAtTheHome()
{
    write("a.vcf", personCard("a", "Ada"));
    _folder = std::make_unique<ContactFolder>("~/cards/");
    QVERIFY(awaitNames({"Ada"}));
    QCOMPARE(_folder->folder(), _home->path("cards"));
}

void ContactFolderTest::readsOnTheFly()
{
    for (int i = 0; i < 500; ++i)
        write(QString::number(1000 + i) + ".vcf", personCard(QByteArray::number(1000 + i), "Card"));
    _folder = std::make_unique<ContactFolder>(path(""));
    QCOMPARE(_folder->state(), ContactStore::Loading);
    QVERIFY(_folder->people().empty()); // nothing is read before the event loop runs
    int notices = 0;
    NotificationCenter::defaultCenter().addObserver(
        this, [&](const Notification &) { ++notices; }, PlatformNotifications::kABDatabaseChangedExternallyNotification,
        _folder.get());
    QTRY_COMPARE_WITH_TIMEOUT(_folder->state(), ContactStore::Ready, patience);
    QCOMPARE(_folder->people().size(), std::size_t(500));
    QTRY_VERIFY(notices >= 1);
}

void ContactFolderTest::cardsStandInTheOrderOfTheirNames()
{
    for (const char *name : {"c", "a", "e", "b", "d"})
        write(QString(name) + ".vcf", personCard(QByteArray("id-") + name, name));
    ready();
    QCOMPARE(names(), QStringList({"a", "b", "c", "d", "e"}));
}

void ContactFolderTest::readsFoldersInTheFolder()
{
    write("private/a.vcf", personCard("a", "Ada"));
    write("work/firm/b.VCF", personCard("b", "Bob"));
    write("work/firm/deeper/c.vcf", personCard("c", "Carl"));
    write("odd.vcf/d.vcf", personCard("d", "Dora"));
    ready();
    QCOMPARE(names(), QStringList({"Dora", "Ada", "Bob"}));
}

void ContactFolderTest::readsNoHiddenFiles()
{
    write(".hidden.vcf", personCard("a", "Ada"));
    write(".git/a.vcf", personCard("b", "Bob"));
    write("a.vcf~", personCard("c", "Carl"));
    write("a.vcf.saving-abcdef", personCard("d", "Dora"));
    write("vcf", personCard("e", "Eve"));
    ready();
    QVERIFY(names().isEmpty());
}

void ContactFolderTest::readsFilesOfSeveralCards()
{
    write("all.vcf",
          personCard("a", "Ada") + "\r\n" + personCard("b", "Bob") + "what is this\r\n" + personCard("c", "Carl"));
    ready();
    QCOMPARE(names(), QStringList({"Ada", "Bob", "Carl"}));
    QVERIFY(_folder->recordForUniqueId("b"));
}

void ContactFolderTest::cardWithoutIdentifierGetsOneFromItsFile()
{
    write("friends/ada.vcf", personCard("", "Ada"));
    ready();
    QVERIFY(_folder->recordForUniqueId("friends/ada.vcf"));
    write("friends/ada.vcf", personCard("", "Augusta"));
    QVERIFY(awaitNames({"Augusta"}));
    QCOMPARE(_folder->recordForUniqueId("friends/ada.vcf")->firstName, QString("Augusta"));
    QVERIFY(_folder->vCardRepresentation(*_folder->recordForUniqueId("friends/ada.vcf")).contains("FN:Augusta"));
    ready(); // the next start
    QVERIFY(_folder->recordForUniqueId("friends/ada.vcf"));
}

void ContactFolderTest::cardsWithoutIdentifierInOneFile()
{
    write("all.vcf", personCard("", "Ada") + personCard("b", "Bob") + personCard("", "Carl"));
    ready();
    QCOMPARE(_folder->recordForUniqueId("all.vcf")->firstName, QString("Ada"));
    QCOMPARE(_folder->recordForUniqueId("all.vcf#2")->firstName, QString("Carl"));
    QCOMPARE(_folder->recordForUniqueId("b")->firstName, QString("Bob"));
    QVERIFY(_folder->vCardRepresentation(*_folder->recordForUniqueId("all.vcf#2")).contains("FN:Carl"));
    QVERIFY(_folder->vCardRepresentation(*_folder->recordForUniqueId("all.vcf")).contains("FN:Ada"));
}

// A pipe would keep us waiting for ever.
void ContactFolderTest::whatIsNoPlainFileIsNotOpened()
{
    write("a.vcf", personCard("a", "Ada"));
    QCOMPARE(::mkfifo(QFile::encodeName(path("pipe.vcf")).constData(), 0600), 0);
    QDir().mkpath(path("folder.vcf"));
    QVERIFY(QFile::link("/dev/zero", path("device.vcf")));
    QVERIFY(QFile::link(path("pipe.vcf"), path("to-pipe.vcf")));
    QVERIFY(QFile::link(path("nowhere"), path("to-nowhere.vcf")));
    QVERIFY(QFile::link(path("ring.vcf"), path("ring.vcf")));
    ready();
    QCOMPARE(names(), QStringList{"Ada"});
}

void ContactFolderTest::linksAreFollowed()
{
    _home->write("elsewhere/ada", personCard("a", "Ada"));
    _home->write("collection/b.vcf", personCard("b", "Bob"));
    QDir().mkpath(path(""));
    QVERIFY(QFile::link(_home->path("elsewhere/ada"), path("a.vcf")));
    QVERIFY(QFile::link(_home->path("collection"), path("other")));
    ready();
    QCOMPARE(names(), QStringList({"Ada", "Bob"}));
}

void ContactFolderTest::linksInACircleEnd()
{
    write("a.vcf", personCard("", "Ada"));
    write("inner/b.vcf", personCard("", "Bob"));
    for (int i = 0; i < 30; ++i) {
        QVERIFY(QFile::link(path(""), path("loop" + QString::number(i))));
        QVERIFY(QFile::link(path("inner"), path("inner/loop" + QString::number(i))));
    }
    ready();
    QCOMPARE(_folder->people().size(), std::size_t(2));
}

void ContactFolderTest::unreadableFileIsSkipped()
{
    const LoggedMessages messages;
    write("a.vcf", personCard("a", "Ada"));
    write("b.vcf", personCard("b", "Bob"));
    QVERIFY(QFile::setPermissions(path("a.vcf"), {}));
    const Unprivileged unprivileged(_home->path());
    ready();
    QCOMPARE(names(), QStringList{"Bob"});
    QVERIFY(messages.contain("a.vcf"));
    QVERIFY(QFile::setPermissions(path("a.vcf"), QFile::ReadOwner));
    QVERIFY(awaitNames({"Bob", "Ada"}));
}

void ContactFolderTest::unreadableFileKeepsItsCards()
{
    const LoggedMessages messages;
    write("a.vcf", personCard("a", "Ada"));
    const Unprivileged unprivileged(_home->path());
    ready();
    QVERIFY(QFile::setPermissions(path("a.vcf"), {}));
    QTRY_VERIFY_WITH_TIMEOUT(messages.contain("a.vcf"), patience);
    QCOMPARE(names(), QStringList{"Ada"});
}

// As one is for a moment that is written in place.
void ContactFolderTest::brokenFileKeepsItsCards()
{
    write("a.vcf", personCard("a", "Ada"));
    ready();
    write("a.vcf", personCard("a", "Augusta").left(40));
    write("b.vcf", personCard("b", "Bob"));
    QVERIFY(awaitNames({"Ada", "Bob"}));
    write("a.vcf", "");
    write("b.vcf", personCard("b", "Boris"));
    QVERIFY(awaitNames({"Ada", "Boris"}));
    write("a.vcf", personCard("a", "Augusta"));
    QVERIFY(awaitNames({"Augusta", "Boris"}));
}

void ContactFolderTest::tooLargeFileIsSkipped()
{
    const LoggedMessages messages;
    write("a.vcf", personCard("a", "Ada"));
    write("large.vcf", personCard("b", "Bob"));
    QVERIFY(QFile::resize(path("large.vcf"), ContactFolder::largestFile + 1));
    ready();
    QCOMPARE(names(), QStringList{"Ada"});
    QVERIFY(messages.contain("large.vcf"));
    QVERIFY(QFile::resize(path("large.vcf"), 1000));
    QVERIFY(awaitNames({"Ada", "Bob"}));
}

// The event loop runs again and again while a file of many cards is read.
void ContactFolderTest::largeFileIsReadInSlices()
{
    QByteArray text;
    for (int i = 0; i < 5000; ++i)
        text += personCard("id-" + QByteArray::number(i), "Card", "NOTE:" + QByteArray(1000, 'x') + "\r\n");
    write("all.vcf", text);
    _folder = std::make_unique<ContactFolder>(path(""));
    int steps = 0;
    QSet<std::size_t> sizes;
    QTimer ticks;
    connect(&ticks, &QTimer::timeout, this, [&] {
        ++steps;
        sizes.insert(_folder->people().size());
        if (const ContactRecordPtr first = _folder->recordForUniqueId("id-0")) // of a file that is being read
            QVERIFY(_folder->vCardRepresentation(*first).contains("UID:id-0\r\n"));
    });
    ticks.start(0);
    QTRY_COMPARE_WITH_TIMEOUT(_folder->state(), ContactStore::Ready, patience);
    QCOMPARE(_folder->people().size(), std::size_t(5000));
    QVERIFY2(sizes.size() > 5, qPrintable(QString::number(sizes.size())));
    QVERIFY(steps > 5);
}

void ContactFolderTest::largeFileOfNoCardsIsReadInSlices()
{
    write("junk.vcf", "BEGIN:VCARD\r\n" + QByteArray("what is this\r\n").repeated(1'000'000));
    _folder = std::make_unique<ContactFolder>(path(""));
    int passes = 0;
    QTimer ticks;
    connect(&ticks, &QTimer::timeout, this, [&] { passes += _folder->state() == ContactStore::Loading ? 1 : 0; });
    ticks.start(0);
    QTRY_COMPARE_WITH_TIMEOUT(_folder->state(), ContactStore::Ready, patience);
    QVERIFY2(passes > 20, qPrintable(QString::number(passes)));
    QVERIFY(_folder->people().empty());
}

void ContactFolderTest::changeInPlaceIsSeen()
{
    write("a.vcf", personCard("a", "Ada"));
    ready();
    QFile file(path("a.vcf")); // no change of the folder
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.write(personCard("a", "Eva")); // as long as before
    file.close();
    QVERIFY(awaitNames({"Eva"}));
}

// Counts what Qt does to find changes by itself.
class PollingCounter : public QObject
{
public:
    PollingCounter() { QCoreApplication::instance()->installEventFilter(this); }
    int count() const { return _count; }
    bool eventFilter(QObject *object, QEvent *event) override
    {
        const QObject *owner = object->parent();
        const bool isOwn = owner && QByteArray(owner->metaObject()->className()).contains("PollingFileSystem");
        _count += isOwn && event->type() == QEvent::Timer ? 1 : 0;
        return false;
    }

private:
    int _count = 0;
};

void ContactFolderTest::changesAreSeenWhereTheSystemTellsNone()
{
    const PollingCounter polling;
    write("a.vcf", personCard("a", "Ada"));
    rlimit files;
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &files), 0);
    const rlimit none = {3, files.rlim_max};
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &none), 0);
    _folder = std::make_unique<ContactFolder>(path(""));
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &files), 0);
    QVERIFY(awaitNames({"Ada"}));
    write("b.vcf", personCard("b", "Bob"));
    QVERIFY(awaitNames({"Ada", "Bob"}));
    QVERIFY(QFile::remove(path("a.vcf")));
    QVERIFY(awaitNames({"Bob"}));
    QCOMPARE(polling.count(), 0);
}

void ContactFolderTest::changeOfOneFileReadsNoOther()
{
    for (int i = 0; i < 50; ++i)
        write(QString::number(100 + i) + ".vcf", personCard(QByteArray::number(100 + i), "Card"));
    ready();
    const ContactRecordPtr same = _folder->recordForUniqueId("110");
    write("105.vcf", personCard("105", "Changed"));
    QTRY_COMPARE_WITH_TIMEOUT(_folder->recordForUniqueId("105")->firstName, QString("Changed"), patience);
    QCOMPARE(_folder->recordForUniqueId("110"), same);
    QCOMPARE(names().indexOf("Changed"), 5);
}

void ContactFolderTest::touchedFileIsToldAndKept()
{
    write("a.vcf", personCard("a", "Ada"));
    ready();
    const quint64 generation = _folder->generation();
    QFile file(path("a.vcf"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(1), QFileDevice::FileModificationTime));
    file.close();
    QTRY_VERIFY_WITH_TIMEOUT(_folder->generation() > generation, patience);
    QCOMPARE(names(), QStringList{"Ada"});
}

void ContactFolderTest::renamedFileKeepsItsCard()
{
    write("a.vcf", personCard("id", "Ada"));
    ready();
    bool wasGone = false;
    NotificationCenter::defaultCenter().addObserver(
        this, [&](const Notification &) { wasGone = wasGone || !_folder->recordForUniqueId("id"); },
        PlatformNotifications::kABDatabaseChangedExternallyNotification, _folder.get());
    QVERIFY(QFile::rename(path("a.vcf"), path("b.vcf")));
    const ContactRecord record = *_folder->recordForUniqueId("id");
    QTRY_COMPARE_WITH_TIMEOUT(_folder->opening(record, ContactStore::Edit).file, path("b.vcf"), patience);
    QVERIFY(QFile::rename(path("b.vcf"), path("a.vcf"))); // also when the new name comes first
    QTRY_COMPARE_WITH_TIMEOUT(_folder->opening(record, ContactStore::Edit).file, path("a.vcf"), patience);
    QVERIFY(!wasGone);
    QVERIFY(_folder->vCardRepresentation(record).contains("FN:Ada"));
}

void ContactFolderTest::cardThatChangesItsIdentifier()
{
    write("a.vcf", personCard("old", "Ada"));
    ready();
    write("a.vcf", personCard("new", "Ada"));
    QTRY_VERIFY_WITH_TIMEOUT(_folder->recordForUniqueId("new"), patience);
    QVERIFY(!_folder->recordForUniqueId("old"));
    QCOMPARE(names(), QStringList{"Ada"});
}

void ContactFolderTest::cardsOfTheSameIdentifier()
{
    write("a.vcf", personCard("id", "First"));
    write("b.vcf", personCard("id", "Second"));
    write("c.vcf", personCard("id", "Third"));
    ready();
    QCOMPARE(names(), QStringList{"First"});
    QVERIFY(QFile::remove(path("b.vcf"))); // not the one that is shown
    write("d.vcf", personCard("other", "Other"));
    QVERIFY(awaitNames({"First", "Other"}));
    QVERIFY(QFile::remove(path("a.vcf")));
    QVERIFY(awaitNames({"Third", "Other"}));
    QCOMPARE(_folder->opening(*_folder->recordForUniqueId("id"), ContactStore::Edit).file, path("c.vcf"));
    write("c.vcf", personCard("third", "Third"));
    QVERIFY(awaitNames({"Other", "Third"}));
    QVERIFY(!_folder->recordForUniqueId("id"));
}

void ContactFolderTest::cardTwiceInAFile()
{
    write("a.vcf", personCard("id", "First") + personCard("id", "Second"));
    ready();
    QCOMPARE(names(), QStringList{"First"});
    QVERIFY(_folder->vCardRepresentation(*_folder->recordForUniqueId("id")).contains("FN:First"));
}

void ContactFolderTest::oneOfSeveralCardsGoes()
{
    write("all.vcf", personCard("a", "Ada") + personCard("b", "Bob") + personCard("c", "Carl"));
    ready();
    write("all.vcf", personCard("a", "Ada") + personCard("c", "Carl"));
    QVERIFY(awaitNames({"Ada", "Carl"}));
    QVERIFY(_folder->vCardRepresentation(*_folder->recordForUniqueId("c")).contains("FN:Carl"));
}

void ContactFolderTest::newFolderInTheFolderIsSeen()
{
    write("a.vcf", personCard("a", "Ada"));
    ready();
    write("new/b.vcf", personCard("b", "Bob"));
    QVERIFY(awaitNames({"Ada", "Bob"}));
    write("new/c.vcf", personCard("c", "Carl"));
    QVERIFY(awaitNames({"Ada", "Bob", "Carl"}));
}

void ContactFolderTest::removedFolderInTheFolderTakesItsCards()
{
    write("a.vcf", personCard("a", "Ada"));
    write("old/b.vcf", personCard("b", "Bob"));
    ready();
    QVERIFY(QDir(path("old")).removeRecursively());
    QVERIFY(awaitNames({"Ada"}));
}

void ContactFolderTest::removedFolderKeepsItsCards()
{
    write("a.vcf", personCard("a", "Ada"));
    ready();
    QVERIFY(QDir().rename(path(""), _home->path("away")));
    QTest::qWait(500); // in which it is looked for
    QCOMPARE(_folder->state(), ContactStore::Ready);
    QCOMPARE(names(), QStringList{"Ada"});
    QVERIFY(_folder->vCardRepresentation(*_folder->recordForUniqueId("a")).isEmpty());
    QTest::qWait(500);
    QCOMPARE(names(), QStringList{"Ada"});
    QVERIFY(!_folder->canAdd());
}

void ContactFolderTest::folderThatComesBackIsReadAnew()
{
    write("a.vcf", personCard("a", "Ada"));
    write("b.vcf", personCard("b", "Bob"));
    ready();
    QVERIFY(QDir().rename(path(""), _home->path("away")));
    QTest::qWait(500); // in which it is looked for
    _home->write("away/b.vcf", personCard("b", "Boris"));
    QVERIFY(QDir().rename(_home->path("away"), _home->path("cards")));
    QVERIFY(awaitNames({"Ada", "Boris"}));
}

void ContactFolderTest::replacedFolderIsWatched()
{
    write("a.vcf", personCard("a", "Ada"));
    ready();
    QVERIFY(QDir(path("")).removeRecursively());
    write("b.vcf", personCard("b", "Bob"));
    QVERIFY(awaitNames({"Bob"}));
    write("c.vcf", personCard("c", "Carl"));
    QVERIFY(awaitNames({"Bob", "Carl"}));
}

void ContactFolderTest::emptiedFolderIsEmpty()
{
    write("a.vcf", personCard("a", "Ada"));
    ready();
    QVERIFY(QFile::remove(path("a.vcf")));
    QVERIFY(awaitNames({}));
    QCOMPARE(_folder->state(), ContactStore::Ready);
}

void ContactFolderTest::folderThatCannotBeReadKeepsItsCards()
{
    write("a.vcf", personCard("a", "Ada"));
    write("inner/b.vcf", personCard("b", "Bob"));
    const Unprivileged unprivileged(_home->path());
    ready();
    QVERIFY(QFile::setPermissions(path("inner"), {}));
    write("c.vcf", personCard("c", "Carl"));
    QVERIFY(awaitNames({"Ada", "Bob", "Carl"}));
    QVERIFY(QFile::setPermissions(path("inner"), QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner));
}

void ContactFolderTest::cardWhoseFileIsGoneIsMissedAtOnce()
{
    write("a.vcf", personCard("a", "Ada"));
    ready();
    const ContactRecordPtr ada = _folder->recordForUniqueId("a");
    QVERIFY(QFile::remove(path("a.vcf")));
    QVERIFY(_folder->vCardRepresentation(*ada).isEmpty());
    QVERIFY(_folder->imageData(*ada).isEmpty());
    QVERIFY(awaitNames({}));
}

void ContactFolderTest::pictureAndCardOfOneInManyInAFile()
{
    QByteArray text = "\xef\xbb\xbf";
    for (int i = 0; i < 20; ++i)
        text += personCard("id-" + QByteArray::number(i), "Card" + QByteArray::number(i),
                           "PHOTO;ENCODING=b;TYPE=PNG:" + QByteArray("picture " + QByteArray::number(i)).toBase64() +
                               "\r\n");
    write("all.vcf", text);
    ready();
    for (int i = 0; i < 20; ++i) {
        const ContactRecordPtr record = _folder->recordForUniqueId("id-" + QString::number(i));
        QVERIFY(record);
        QCOMPARE(_folder->imageData(*record), "picture " + QByteArray::number(i));
        QVERIFY(_folder->vCardRepresentation(*record).contains("FN:Card" + QByteArray::number(i) + "\r\n"));
        QCOMPARE(_folder->vCardRepresentation(*record).count("BEGIN:VCARD"), 1);
    }
}

// As when many people are dragged, whose cards all lie in one file.
void ContactFolderTest::manyCardsOfAFileReadItOnce()
{
    QByteArray text;
    for (int i = 0; i < 500; ++i)
        text += personCard("id-" + QByteArray::number(i), "Card" + QByteArray::number(i));
    write("all.vcf", text);
    ready();
    const qint64 before = bytesRead();
    QVERIFY(before > 0);
    for (int i = 0; i < 500; ++i) {
        const QByteArray id = "id-" + QByteArray::number(i);
        const QByteArray card = _folder->vCardRepresentation(*_folder->recordForUniqueId(QString::fromLatin1(id)));
        QVERIFY(card.contains("UID:" + id + "\r\n"));
    }
    QVERIFY(bytesRead() - before < 2 * text.size());

    // Not even for a moment is what has changed handed out as it was.
    write("all.vcf", text.replace("Card499", "Changed meanwhile"));
    const ContactRecordPtr last = _folder->recordForUniqueId("id-499");
    QVERIFY(_folder->vCardRepresentation(*last).contains("FN:Changed"));
}

void ContactFolderTest::opensTheFile()
{
    write("friends/a.vcf", personCard("a", "Ada"));
    ready();
    const ContactRecord ada = *_folder->recordForUniqueId("a");
    for (const auto purpose : {ContactStore::Show, ContactStore::Edit}) {
        QCOMPARE(_folder->opening(ada, purpose).file, path("friends/a.vcf"));
        QVERIFY(_folder->opening(ada, purpose).command.isEmpty());
    }
    QVERIFY(_folder->opening(ContactRecord(), ContactStore::Show).isNone());
}

void ContactFolderTest::ownCardIsThatOfItsFile()
{
    write("ada.vcf", personCard("a", "Ada"));
    write("friends/me.vcf", personCard("f", "Friend"));
    ready();
    QVERIFY(!_folder->me());
    write("me.vcf", personCard("m", "Myself") + personCard("n", "Nobody"));
    QTRY_VERIFY_WITH_TIMEOUT(_folder->me(), patience);
    QCOMPARE(_folder->me()->firstName, QString("Myself"));
    QVERIFY(QFile::remove(path("me.vcf")));
    QTRY_VERIFY_WITH_TIMEOUT(!_folder->me(), patience);
}

void ContactFolderTest::addedCardHasAFileOfItsOwn()
{
    ready();
    const QByteArray card = personCard("id-1", "Ada", "NOTE:kept\r\n");
    QString id;
    _folder->add(card + personCard("id-2", "Second"), [&](const QString &added) { id = added; });
    QCOMPARE(id, QString("id-1"));
    QCOMPARE(_home->read("cards/id-1.vcf"), card);
    QCOMPARE(QDir(path("")).entryList(QDir::Files | QDir::Hidden), QStringList{"id-1.vcf"});
    QCOMPARE(names(), QStringList{"Ada"});
    QVERIFY(_folder->vCardRepresentation(*_folder->recordForUniqueId("id-1")).contains("NOTE:kept"));
}

void ContactFolderTest::addedCardWithOddIdentifier_data()
{
    QTest::addColumn<QString>("uniqueId");
    QTest::newRow("way out") << "../../escaped";
    QTest::newRow("from the root") << "/escaped";
    QTest::newRow("hidden") << ".hidden";
    QTest::newRow("up") << "..";
    QTest::newRow("address") << "urn:x:ada?b=c&d";
    QTest::newRow("other script") << QString::fromUtf8("花子");
    QTest::newRow("long") << QString(900, u'x');
}

void ContactFolderTest::addedCardWithOddIdentifier()
{
    QFETCH(QString, uniqueId);
    ready();
    QString id;
    _folder->add(personCard(uniqueId.toUtf8(), "Ada"), [&](const QString &added) { id = added; });
    QCOMPARE(id, uniqueId);
    const QStringList files = QDir(path("")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    QCOMPARE(files.size(), 1);
    QVERIFY(files.first().endsWith(".vcf"));
    QVERIFY(files.first().size() <= 110);
    QCOMPARE(QDir(_home->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"cards"});
    ready();
    QVERIFY(_folder->recordForUniqueId(uniqueId));
}

void ContactFolderTest::addedCardTakesNoOthersFile()
{
    write("id.vcf", personCard("other", "Other"));
    QVERIFY(QFile::link(_home->path("nowhere"), path("id-2.vcf")));
    ready();
    QStringList ids;
    for (const char *id : {"id", "id-2", "i?d", "i!d"})
        _folder->add(personCard(id, id), [&](const QString &added) { ids.append(added); });
    QCOMPARE(ids, QStringList({"id", "id-2", "i?d", "i!d"}));
    QCOMPARE(_home->read("cards/id.vcf"), personCard("other", "Other"));
    QVERIFY(!QFile::exists(_home->path("nowhere")));
    ready();
    for (const QString &id : std::as_const(ids))
        QCOMPARE(_folder->recordForUniqueId(id)->firstName, id);
    QVERIFY(_folder->recordForUniqueId("other"));
}

void ContactFolderTest::addedCardDoesNotBecomeTheOwnOne()
{
    ready();
    QString id;
    _folder->add(personCard("me", "Foreign"), [&](const QString &added) { id = added; });
    QCOMPARE(id, QString("me"));
    QVERIFY(!_folder->me());
    ready();
    QVERIFY(_folder->recordForUniqueId("me"));
    QVERIFY(!_folder->me());
}

// It might be there already.
void ContactFolderTest::nothingIsAddedBeforeAllIsRead()
{
    write("a.vcf", personCard("id", "Ada"));
    _folder = std::make_unique<ContactFolder>(path(""));
    QVERIFY(!_folder->canAdd());
    QString id = "not called";
    _folder->add(personCard("id", "Ada"), [&](const QString &added) { id = added; });
    QVERIFY(id.isNull());
    QTRY_VERIFY_WITH_TIMEOUT(_folder->canAdd(), patience);
    QCOMPARE(names(), QStringList{"Ada"});
}

void ContactFolderTest::addedCardThatIsThereIsLeftAlone()
{
    write("a.vcf", personCard("id", "Ada", "NOTE:the user's own\r\n"));
    ready();
    QString id;
    _folder->add(personCard("id", "Foreign"), [&](const QString &added) { id = added; });
    QCOMPARE(id, QString("id"));
    QCOMPARE(names(), QStringList{"Ada"});
    QCOMPARE(QDir(path("")).entryList(QDir::Files), QStringList{"a.vcf"});
    QVERIFY(_home->read("cards/a.vcf").contains("the user's own"));
}

void ContactFolderTest::cardThatWasRemovedCanBeAddedAtOnce()
{
    write("id.vcf", personCard("id", "Ada") + personCard("second", "Second"));
    write("other.vcf", personCard("other", "Other"));
    ready();
    for (const char *name : {"id.vcf", "other.vcf"})
        QVERIFY(QFile::remove(path(name)));
    QStringList ids;
    for (const char *id : {"id", "other"})
        _folder->add(personCard(id, "Again"), [&](const QString &added) { ids.append(added); });
    QCOMPARE(ids, QStringList({"id", "other"}));
    QTRY_VERIFY_WITH_TIMEOUT(!_folder->recordForUniqueId("second"), patience);
    QTest::qWait(300); // in which the folder is looked through
    QCOMPARE(names(), QStringList({"Again", "Again"}));
    QCOMPARE(QDir(path("")).entryList(QDir::Files), QStringList({"id.vcf", "other.vcf"}));
}

void ContactFolderTest::addedCardsComeToTheOthers()
{
    write("work/b.vcf", personCard("b", "Bob"));
    write("private/a.vcf", personCard("a", "Ada"));
    ready();
    _folder->add(personCard("c", "Carl"), [](const QString &) {});
    QVERIFY(QFile::exists(path("private/c.vcf")));
    write("here.vcf", personCard("d", "Dora"));
    QTRY_VERIFY_WITH_TIMEOUT(_folder->recordForUniqueId("d"), patience);
    QTRY_VERIFY_WITH_TIMEOUT(([&] {
                                 const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces);
                                 _folder->add(personCard(id.toUtf8(), "E"), [](const QString &) {});
                                 return QFile::exists(path(id + ".vcf"));
                             })(),
                             patience);
}

void ContactFolderTest::addedWithoutIdentifierKeepsItsText()
{
    ready();
    for (const QByteArray &lineEnd : {QByteArray("\r\n"), QByteArray("\n")}) {
        QByteArray card = personCard("", "Ada", "NOTE:kept\r\n");
        card.replace("\r\n", lineEnd);
        QString id;
        _folder->add(card, [&](const QString &added) { id = added; });
        QVERIFY(!QUuid::fromString(id).isNull());
        QByteArray expected = card;
        expected.replace("END:VCARD", "UID:" + id.toUtf8() + lineEnd + "END:VCARD");
        QCOMPARE(_home->read("cards/" + id + ".vcf"), expected);
    }
}

void ContactFolderTest::cannotAddWithoutFolder()
{
    _folder = std::make_unique<ContactFolder>(path(""));
    QVERIFY(!_folder->canAdd());
    QString id = "not called";
    _folder->add(personCard("a", "Ada"), [&](const QString &added) { id = added; });
    QVERIFY(id.isNull());
    QVERIFY(!QFile::exists(path("")));
}

void ContactFolderTest::cannotAddWhereNothingCanBeWritten()
{
    const Unprivileged unprivileged(_home->path());
    ready();
    QVERIFY(_folder->canAdd());
    QVERIFY(QFile::setPermissions(path(""), QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(!_folder->canAdd());
    QString id = "not called";
    _folder->add(personCard("a", "Ada"), [&](const QString &added) { id = added; });
    QVERIFY(id.isNull());
    QVERIFY(names().isEmpty());
    QVERIFY(QFile::setPermissions(path(""), QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner));
}

// Looking for changes changes nothing, and tells nothing.
void ContactFolderTest::checksLeaveNoTrace()
{
    write("a.vcf", personCard("a", "Ada"));
    write("inner/b.vcf", personCard("b", "Bob"));
    ready();
    const quint64 generation = _folder->generation();
    const ContactRecordPtr ada = _folder->recordForUniqueId("a");
    for (int i = 0; i < 5; ++i) {
        write("no card " + QString::number(i), "x"); // which begins a check
        QTest::qWait(200);
    }
    QCOMPARE(_folder->generation(), generation);
    QCOMPARE(_folder->recordForUniqueId("a"), ada);
    QCOMPARE(_home->read("cards/a.vcf"), personCard("a", "Ada"));
}

QTEST_GUILESS_MAIN(ContactFolderTest)
#include "ContactFolderTest.moc"
