#include "platform/contacts/CardFolderWalk.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QTest>
#include <sys/stat.h>

namespace
{
QStringList filesOf(CardFolderWalk &walk)
{
    QStringList files;
    while (!walk.isOver()) {
        walk.step();
        if (walk.file())
            files.append(walk.file()->path);
    }
    files.sort();
    return files;
}
} // namespace

class CardFolderWalkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _home = std::make_unique<TemporaryHome>(); }
    void cleanup() { _home.reset(); }
    void findsCardsTwoLevelsDeep();
    void tellsEachFilesStamp();
    void tellsTheFoldersItWentThrough();
    void aStepPerThing();
    void missesNothingInAFolderThatIsThere();
    void missingFolderMayComeBack();
    void folderWithoutItsDiskMayComeBack();
    void folderWithAnotherDiskIsAnother();
    void anEndToManyFolders();

private:
    QString root() const { return _home->path("cards"); }
    void write(const QString &name) { _home->write("cards/" + name, "x"); }

    std::unique_ptr<TemporaryHome> _home;
};

void CardFolderWalkTest::findsCardsTwoLevelsDeep()
{
    for (const char *name : {"a.vcf", "b.VCF", "c.txt", ".d.vcf", "one/a.vcf", "one/two/a.vcf", "one/two/three/a.vcf",
                             ".git/a.vcf", "one/.hidden/a.vcf"})
        write(name);
    CardFolderWalk walk(root());
    QCOMPARE(filesOf(walk), QStringList({"a.vcf", "b.VCF", "one/a.vcf", "one/two/a.vcf"}));
}

void CardFolderWalkTest::tellsEachFilesStamp()
{
    write("one/a.vcf");
    CardFolderWalk walk(root());
    while (!walk.isOver() && !walk.file())
        walk.step();
    QVERIFY(walk.file());
    QCOMPARE(walk.file()->stamp, *FileStamp::ofFile(root() + "/one/a.vcf"));
    walk.step();
    QVERIFY(!walk.file());
}

void CardFolderWalkTest::tellsTheFoldersItWentThrough()
{
    write("one/two/three/a.vcf");
    CardFolderWalk walk(root());
    filesOf(walk);
    QStringList folders = walk.folders().keys();
    folders.sort();
    QCOMPARE(folders, QStringList({"", "one", "one/two"}));
    struct stat status;
    QCOMPARE(::stat(QFile::encodeName(root() + "/one").constData(), &status), 0);
    QCOMPARE(walk.folders().value("one").device, quint64(status.st_dev));
    QCOMPARE(walk.folders().value("one").inode, quint64(status.st_ino));
}

void CardFolderWalkTest::aStepPerThing()
{
    for (int i = 0; i < 100; ++i)
        write(QString::number(i) + ".vcf");
    CardFolderWalk walk(root());
    int steps = 0;
    for (; !walk.isOver(); ++steps)
        walk.step();
    QVERIFY2(steps >= 102, qPrintable(QString::number(steps))); // each file, opening the folder and its end
}

void CardFolderWalkTest::missesNothingInAFolderThatIsThere()
{
    write("one/a.vcf");
    QDir().mkpath(root() + "/empty");
    CardFolderWalk walk(root());
    filesOf(walk);
    for (const char *path : {"gone.vcf", "one/gone.vcf", "gone/a.vcf", "empty/a.vcf", "gone/deeper/a.vcf"})
        QVERIFY(!walk.mayHaveMissed(path));
}

void CardFolderWalkTest::missingFolderMayComeBack()
{
    for (const QString &folder : {root(), QString(), root() + "/not/there"}) {
        CardFolderWalk walk(folder);
        QVERIFY(filesOf(walk).isEmpty());
        QVERIFY(walk.folders().isEmpty());
        QVERIFY(walk.mayHaveMissed("a.vcf"));
        QVERIFY(walk.mayHaveMissed("one/two/a.vcf"));
    }
}

// What is seen of a disk that has been taken away: the folder is there, on another device, and empty.
void CardFolderWalkTest::folderWithoutItsDiskMayComeBack()
{
    write("a.vcf");
    QDir().mkpath(root() + "/disk/inner");
    QDir().mkpath(root() + "/other");
    CardFolderWalk first(root());
    filesOf(first);
    CardFolderWalk::Folders before = first.folders();
    before["disk/inner"].device += 1;
    CardFolderWalk second(root(), before);
    filesOf(second);
    QVERIFY(second.mayHaveMissed("disk/inner/a.vcf"));
    QVERIFY(!second.mayHaveMissed("disk/innermost/a.vcf"));
    QVERIFY(!second.mayHaveMissed("disk/a.vcf"));
    QVERIFY(!second.mayHaveMissed("other/a.vcf"));
    QVERIFY(!second.mayHaveMissed("b.vcf"));
    CardFolderWalk third(root(), second.folders()); // and for as long as it stays away
    filesOf(third);
    QVERIFY(third.mayHaveMissed("disk/inner/a.vcf"));
    QVERIFY(third.mayHaveMissed("disk/inner/deeper/a.vcf"));
}

void CardFolderWalkTest::folderWithAnotherDiskIsAnother()
{
    write("disk/a.vcf");
    CardFolderWalk first(root());
    filesOf(first);
    CardFolderWalk::Folders before = first.folders();
    before["disk"].device += 1;
    CardFolderWalk second(root(), before);
    filesOf(second);
    QVERIFY(!second.mayHaveMissed("disk/b.vcf"));
    QCOMPARE(second.folders().value("disk").device, first.folders().value("disk").device);
}

void CardFolderWalkTest::anEndToManyFolders()
{
    for (int i = 0; i < CardFolderWalk::mostFolders + 10; ++i)
        write(QString::number(i) + "/a.vcf");
    CardFolderWalk walk(root());
    QCOMPARE(filesOf(walk).size(), CardFolderWalk::mostFolders - 1);
    QVERIFY(walk.mayHaveMissed("1/b.vcf")); // nobody knows where it would have been
}

QTEST_GUILESS_MAIN(CardFolderWalkTest)
#include "CardFolderWalkTest.moc"
