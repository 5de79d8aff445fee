#include "lists/CardFiles.h"

#include "platform/base/Log.h"
#include "tests/lists/ListStage.h"
#include "tests/support/LoggedMessages.h"

#include <QProcess>
#include <csignal>
#include <sys/resource.h>

namespace
{
const QByteArray ann = ListStage::card("ann", "Ann", "Miller", "ann@a.org");
const QByteArray bob = ListStage::card("bob", "Bob", "Brown", "bob@a.org");

void makeOld(const QString &path, int seconds)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-seconds), QFileDevice::FileModificationTime));
}
} // namespace

// Cards that come in files, and those that are written into files. Which files are none is tested where they are
// dropped.
class CardFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _home.emplace(); }
    void cleanup()
    {
        _home.reset();
        QLocale::setDefault(QLocale::c());
    }

    void filesOnOtherMachines_data();
    void filesOnOtherMachines();
    void readsUpToTheMost();
    void countsCardsHoweverTheyAreWritten_data();
    void countsCardsHoweverTheyAreWritten();

    void fileIsTheUsersAlone();
    void nameOfTheFile_data();
    void nameOfTheFile();
    void sameNameOfAnother();
    void sameCardIsTheSameFile();
    void folderThatCannotBeWritten();
    void diskThatIsFull();
    void linkInTheWay();
    void oldFilesGo();
    void nameForPeople();
    void anotherReaderUnderstandsIt();

private:
    QString folder() const { return _home->path(QStringLiteral("Library/Caches/Wayfold/Cards")); }
    QStringList files() const { return QDir(folder()).entryList(QDir::Files | QDir::System, QDir::Name); }

    std::optional<TemporaryHome> _home;
};

void CardFilesTest::filesOnOtherMachines_data()
{
    QTest::addColumn<bool>("isElsewhere");
    for (const char *name : {"nfs", "nfs4", "cifs", "smb3", "fuse.sshfs", "fuse.gvfsd-fuse", "autofs", "9p"})
        QTest::newRow(name) << true;
    for (const char *name : {"ext4", "btrfs", "tmpfs", "overlay", "fuseblk", "fuse.portal", "vfat"})
        QTest::newRow(name) << false;
}

void CardFilesTest::filesOnOtherMachines()
{
    QFETCH(bool, isElsewhere);
    QCOMPARE(CardFiles::isOnAnotherMachine(QTest::currentDataTag()), isElsewhere);
}

void CardFilesTest::readsUpToTheMost()
{
    QByteArray cards;
    for (int i = 0; i < CardFiles::maximumCards; ++i)
        cards += ListStage::card(QString::number(i), "Ann", "Miller", "ann@a.org");
    _home->write("cards.vcf", cards);
    _home->write("ann.vcf", ann);
    _home->write("more.vcf", cards + ann);
    _home->write("small.vcf", cards.replace("BEGIN:VCARD", "begin:vcard") + ann);
    CardFiles::Allowance left;
    QVERIFY(CardFiles::read(_home->path("more.vcf"), left).empty());
    QVERIFY(CardFiles::read(_home->path("small.vcf"), left).empty());
    QVERIFY(CardFiles::fromData(cards + ann, left).empty());
    QCOMPARE(left.cards, CardFiles::maximumCards); // nothing was taken
    QCOMPARE(qsizetype(CardFiles::read(_home->path("cards.vcf"), left).size()), CardFiles::maximumCards);
    QVERIFY(CardFiles::read(_home->path("ann.vcf"), left).empty());
    QVERIFY(CardFiles::fromData(ann, left).empty());

    for (const qsizetype missing : {0, 1}) {
        CardFiles::Allowance bytes;
        bytes.bytes = 2 * ann.size() - missing;
        QCOMPARE(CardFiles::read(_home->path("ann.vcf"), bytes).size(), 1U);
        QCOMPARE(CardFiles::fromData(ann, bytes).size(), missing == 0 ? 1U : 0U);
        bytes.bytes = ann.size() - missing;
        QCOMPARE(CardFiles::read(_home->path("ann.vcf"), bytes).size(), missing == 0 ? 1U : 0U);
    }
}

void CardFilesTest::countsCardsHoweverTheyAreWritten_data()
{
    QTest::addColumn<QByteArray>("cards");
    QByteArray cards;
    for (int i = 0; i <= CardFiles::maximumCards; ++i)
        cards += "BEGIN:VCARD\nFN:Ann\nEND:VCARD\n";
    QTest::newRow("in small and capital letters") << QByteArray(cards).replace("BEGIN", "Begin");
    const QString text = QString::fromLatin1(cards);
    QTest::newRow("in UTF-16") << QByteArray("\xff\xfe") +
                                      QByteArray(reinterpret_cast<const char *>(text.utf16()), 2 * text.size());
    QTest::newRow("saying nothing") << QByteArray(cards).replace("FN:Ann\n", "");
}

void CardFilesTest::countsCardsHoweverTheyAreWritten()
{
    QFETCH(QByteArray, cards);
    QVERIFY(cards.size() <= CardFiles::maximumSize);
    CardFiles::Allowance left;
    QVERIFY(CardFiles::fromData(cards, left).empty());
    QCOMPARE(left.cards, CardFiles::maximumCards);
    QCOMPARE(left.bytes, CardFiles::maximumSize);
}

void CardFilesTest::fileIsTheUsersAlone()
{
    const QString path = CardFiles::write("Ann Miller", ann);
    QCOMPARE(path, folder() + "/Ann Miller.vcf");
    QCOMPARE(_home->read("Library/Caches/Wayfold/Cards/Ann Miller.vcf"), ann);
    const auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ExeGroup |
                        QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther;
    QVERIFY(!(QFile::permissions(path) & others));
    QVERIFY(!(QFile::permissions(folder()) & others));
}

void CardFilesTest::nameOfTheFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("file");
    QTest::newRow("path") << "../../etc/passwd"
                          << "etc passwd.vcf";
    QTest::newRow("hidden") << ".profile"
                            << "profile.vcf";
    QTest::newRow("nothing but dots") << "..."
                                      << "Contact.vcf";
    QTest::newRow("none") << QString() << "Contact.vcf";
    QTest::newRow("blanks") << " \t "
                            << "Contact.vcf";
    QTest::newRow("lines") << "Ann\nMiller\r\n"
                           << "Ann Miller.vcf";
    QTest::newRow("what other systems cannot have") << "a\\b:c*d?e\"f<g>h|i"
                                                    << "a b c d e f g h i.vcf";
    QTest::newRow("zero") << QString("a") + QChar(0) + "b"
                          << "a b.vcf";
    QTest::newRow("turned around") << QString("Ann") + QChar(0x202E) + "fcv.exe"
                                   << "Ann fcv.exe.vcf";
    QTest::newRow("letters of the world")
        << QString::fromUtf8("Zoë Ångström, 山田") << QString::fromUtf8("Zoë Ångström, 山田.vcf");
    QTest::newRow("long") << QString(1000, 'a') << QString(60, 'a') + ".vcf";
    QTest::newRow("long, in three bytes each") << QString(1000, QChar(0x5c71)) << QString(60, QChar(0x5c71)) + ".vcf";
    QString pairs;
    for (int i = 0; i < 100; ++i)
        pairs += QString::fromUtf8("\xf0\x9f\x98\x80");
    QTest::newRow("cut within a letter") << "a" + pairs << "a" + pairs.left(58) + ".vcf";
}

void CardFilesTest::nameOfTheFile()
{
    QFETCH(QString, name);
    QFETCH(QString, file);
    QCOMPARE(CardFiles::write(name, ann), folder() + "/" + file);
    QCOMPARE(files(), QStringList{file});
}

void CardFilesTest::sameNameOfAnother()
{
    QCOMPARE(CardFiles::write("Ann", ann), folder() + "/Ann.vcf");
    QCOMPARE(CardFiles::write("Ann", bob), folder() + "/Ann 2.vcf");
    QCOMPARE(CardFiles::write("Ann", ann + bob), folder() + "/Ann 3.vcf");
    // Who was told the first still finds it there.
    QCOMPARE(_home->read("Library/Caches/Wayfold/Cards/Ann.vcf"), ann);
    QCOMPARE(_home->read("Library/Caches/Wayfold/Cards/Ann 2.vcf"), bob);
}

void CardFilesTest::sameCardIsTheSameFile()
{
    CardFiles::write("Ann", bob);
    const QString path = CardFiles::write("Ann", ann);
    makeOld(path, 23 * 60 * 60);
    QCOMPARE(CardFiles::write("Ann", ann), path);
    QCOMPARE(files(), QStringList({"Ann 2.vcf", "Ann.vcf"}));
    // And stays for another day.
    QVERIFY(QFileInfo(path).lastModified().secsTo(QDateTime::currentDateTime()) < 60 * 60);
}

void CardFilesTest::folderThatCannotBeWritten()
{
    _home->write("Library/Caches/Wayfold/Cards", "in the way");
    LoggedMessages log;
    QVERIFY(CardFiles::write("Ann", ann).isNull());
    QVERIFY(log.contain("Could not write a card"));
}

// Nothing that was written in part is left for anybody to find.
void CardFilesTest::diskThatIsFull()
{
    CardFiles::write("Ann", ann);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old = {};
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit limit = old;
    limit.rlim_cur = 1000;
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    QString path;
    bool isTold = false;
    {
        LoggedMessages log;
        path = CardFiles::write("Large", QByteArray(100000, 'x'));
        isTold = log.contain("Could not write a card");
    }
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &old), 0);
    QVERIFY(path.isNull());
    QVERIFY(isTold);
    QCOMPARE(files(), QStringList{"Ann.vcf"});
}

void CardFilesTest::linkInTheWay()
{
    CardFiles::write("Bob", bob);
    QVERIFY(QFile::link(_home->path("elsewhere"), folder() + "/Ann.vcf")); // leads nowhere yet
    LoggedMessages log;
    const QString path = CardFiles::write("Ann", ann);
    QVERIFY(!QFile::exists(_home->path("elsewhere")));
    QVERIFY(path.isNull() || path == folder() + "/Ann 2.vcf");
}

void CardFilesTest::oldFilesGo()
{
    CardFiles::removeOld(); // there is no folder yet
    const QString old = CardFiles::write("Old", ann);
    const QString young = CardFiles::write("Young", ann);
    const QString other = folder() + "/Old.txt";
    _home->write("Library/Caches/Wayfold/Cards/Old.txt", "not ours");
    makeOld(old, 25 * 60 * 60);
    makeOld(other, 25 * 60 * 60);
    makeOld(young, 23 * 60 * 60);
    CardFiles::write("New", ann);
    QCOMPARE(files(), QStringList({"New.vcf", "Old.txt", "Young.vcf"}));
    makeOld(young, 25 * 60 * 60);
    CardFiles::removeOld();
    QCOMPARE(files(), QStringList({"New.vcf", "Old.txt"}));
}

void CardFilesTest::nameForPeople()
{
    QCOMPARE(CardFiles::nameForPeople({}), QString());
    QCOMPARE(CardFiles::nameForPeople({"Ann"}), QStringLiteral("Ann"));
    QCOMPARE(CardFiles::nameForPeople({"Ann", "Bob"}), QStringLiteral("Ann and 1 more"));
    QCOMPARE(CardFiles::nameForPeople({"50%u", "Bob", "Cy"}), QStringLiteral("50%u and 2 more"));
    // A long name leaves room for the rest.
    QCOMPARE(CardFiles::nameForPeople({QString(200, 'a'), "Bob"}), QString(30, 'a') + " and 1 more");
    QLocale::setDefault(QLocale("de_DE"));
    QCOMPARE(CardFiles::nameForPeople({"Ann", "Bob", "Cy"}), QStringLiteral("Ann und 2 weitere"));
}

void CardFilesTest::anotherReaderUnderstandsIt()
{
    const QString path = CardFiles::write(CardFiles::nameForPeople({"Ann", "Bob"}), ann + bob);
    QProcess python;
    python.start("/usr/bin/python3",
                 {"-c",
                  "import sys, vobject\n"
                  "for card in vobject.readComponents(open(sys.argv[1], encoding='utf-8', newline='')):\n"
                  "    print(card.fn.value, card.n.value.family, card.email.value, card.tel.value)\n",
                  path});
    QVERIFY(python.waitForFinished());
    QCOMPARE(python.readAllStandardError(), QByteArray());
    QCOMPARE(python.readAllStandardOutput(),
             QByteArray("Ann Miller Miller ann@a.org 123\nBob Brown Brown bob@a.org 123\n"));
}

QTEST_MAIN(CardFilesTest)
#include "CardFilesTest.moc"
