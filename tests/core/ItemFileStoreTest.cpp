#include "core/ItemFileStore.h"

#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldBookmarkNote.h"
#include "tests/platform/StatusChange.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/LoggedMessages.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QtTest>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
const QString name = QStringLiteral("Wayfold/Bookmarks.plist");

QByteArray fileWith(const QByteArray &children)
{
    return "<plist version=\"1.0\"><dict><key>WebBookmarkType</key><string>WebBookmarkTypeList</string>"
           "<key>WebBookmarkUUID</key><string>ROOT</string><key>Title</key><string></string>"
           "<key>Children</key><array>" +
           children + "</array></dict></plist>\n";
}

QByteArray note(const QByteArray &title)
{
    return "<dict><key>WebBookmarkType</key><string>WebBookmarkTypeNote</string>"
           "<key>WebBookmarkUUID</key><string>" +
           title + "</string><key>URIDictionary</key><dict><key>title</key><string>" + title +
           "</string><key></key><string></string></dict><key>Note</key><string>text of " + title + "</string></dict>";
}
} // namespace

// What the user wrote must never be lost: whatever the file holds that is not in the tree is kept beside it.
class ItemFileStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { _home.reset(); }

    void missingFileIsWritten();
    void folderThatVanishedIsMadeAgain();
    void whatAKilledSaveLeftIsRemoved();
    void readFileIsWrittenWithoutCopy();
    void ownChangesAreWrittenWithoutCopy();
    void unreadableFileIsKept_data();
    void unreadableFileIsKept();
    void fileWithSkippedEntriesIsKept_data();
    void fileWithSkippedEntriesIsKept();
    void fileThatIsNotReadWholeIsKept_data();
    void fileThatIsNotReadWholeIsKept();
    void fileChangedByAnotherProgramIsKept();
    void fileThatAppearedIsKept();
    void fileReplacedWithTheSameContentsIsKept();
    void otherPermissionsAndNamesAreNoChange();
    void fileThatVanishedIsWrittenAnew();
    void everyStateIsKeptOnce();
    void saveIsRefusedWhenNothingCanBeKept();
    void unreadableFileThatCannotBeKeptIsNotWrittenOver();
    void failedSaveKeepsNoSecondCopy();
    void failedSaveIsTriedAgain();
    void triesBecomeRare();
    void copyIsLogged();
    void directoryIsNoFile();

private:
    QStringList keptCopies() const
    {
        return QDir(_home->path(QStringLiteral("Wayfold"))).entryList({QStringLiteral("*.kept-*")}, QDir::Files);
    }
    QByteArray keptContents(int index) const
    {
        return _home->read(QStringLiteral("Wayfold/") + keptCopies().value(index));
    }
    static WayfoldBookmarkFolderPtr treeWith(const QString &title)
    {
        auto root = WayfoldBookmarkFolder::bookmarkWithTitle(QString());
        root->addChild(WayfoldBookmarkNote::bookmarkWithTitleAndNote(title, QStringLiteral("text")));
        return root;
    }

    std::optional<TemporaryHome> _home;
    ItemFileStore _file;
};

void ItemFileStoreTest::init()
{
    _home.emplace();
    QVERIFY(QDir().mkpath(_home->path(QStringLiteral("Wayfold"))));
    _file = ItemFileStore();
    _file.setPath(_home->path(name));
}

void ItemFileStoreTest::missingFileIsWritten()
{
    QVERIFY(!_file.load());
    QVERIFY(_file.save(*treeWith(QStringLiteral("Milk"))));
    QVERIFY(_home->read(name).contains("Milk"));
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::folderThatVanishedIsMadeAgain()
{
    _home->write(name, fileWith(note("Milk")));
    QVERIFY(_file.load());
    QVERIFY(QDir(_home->path(QStringLiteral("Wayfold"))).removeRecursively());
    QVERIFY(_file.save(*treeWith(QStringLiteral("Bread"))));
    QVERIFY(_home->read(name).contains("Bread"));
    // So is one above it, and a file in its place is left alone.
    _file.setPath(_home->path(QStringLiteral("above/below/Bookmarks.plist")));
    QVERIFY(_file.save(*treeWith(QStringLiteral("Salt"))));
    QVERIFY(_home->read(QStringLiteral("above/below/Bookmarks.plist")).contains("Salt"));
    _home->write(QStringLiteral("file"), "mine");
    _file.setPath(_home->path(QStringLiteral("file/Bookmarks.plist")));
    QVERIFY(!_file.save(*treeWith(QStringLiteral("Salt"))));
    QCOMPARE(_home->read(QStringLiteral("file")), QByteArray("mine"));
}

void ItemFileStoreTest::whatAKilledSaveLeftIsRemoved()
{
    const LoggedMessages messages;
    _home->write(name + QStringLiteral(".saving-abcdef"), "half");
    _home->write(name + QStringLiteral(".saving"), "mine");
    QVERIFY(!_file.load());
    QCOMPARE(QDir(_home->path(QStringLiteral("Wayfold"))).entryList(QDir::Files),
             QStringList(QStringLiteral("Bookmarks.plist.saving")));
}

void ItemFileStoreTest::readFileIsWrittenWithoutCopy()
{
    _home->write(name, fileWith(note("Milk") + note("Bread")));
    const auto root = _file.load();
    QVERIFY(root);
    QCOMPARE(root->childCount(), 2U);
    root->removeChild(root->childAtIndex(0));
    QVERIFY(_file.save(*root));
    QVERIFY(!_home->read(name).contains("Milk"));
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::ownChangesAreWrittenWithoutCopy()
{
    QVERIFY(!_file.load());
    for (const char *title : {"Milk", "Bread", "Salt"})
        QVERIFY(_file.save(*treeWith(QString::fromLatin1(title))));
    QVERIFY(_home->read(name).contains("Salt"));
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::unreadableFileIsKept_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("cut off") << fileWith(note("Milk")).left(200);
    QTest::newRow("no property list") << QByteArray("these are my notes");
    QTest::newRow("no dictionary") << QByteArray("<plist version=\"1.0\"><array/></plist>");
    QTest::newRow("empty") << QByteArray("");
}

void ItemFileStoreTest::unreadableFileIsKept()
{
    QFETCH(QByteArray, contents);
    _home->write(name, contents);
    QVERIFY(!_file.load());
    QCOMPARE(_home->read(name), contents);
    QVERIFY(keptCopies().isEmpty()); // reading alone changes nothing

    QVERIFY(_file.save(*treeWith(QStringLiteral("Bread"))));
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(keptContents(0), contents);
    static const QRegularExpression pattern(QStringLiteral("^Bookmarks\\.plist\\.kept-\\d{8}-\\d{6}$"));
    QVERIFY2(pattern.match(keptCopies().constFirst()).hasMatch(), qPrintable(keptCopies().constFirst()));
    QVERIFY(_home->read(name).contains("Bread"));
}

void ItemFileStoreTest::fileWithSkippedEntriesIsKept_data()
{
    QTest::addColumn<QByteArray>("children");
    QTest::addColumn<unsigned>("entriesRead");

    QTest::newRow("unknown kind") << note("Milk") + "<dict><key>WebBookmarkType</key><string>Drawing</string></dict>"
                                  << 1U;
    QTest::newRow("no title") << note("Milk") + note("") << 1U;
    QTest::newRow("no dictionary") << note("Milk") + "<string>loose text</string>" << 1U;
    QTest::newRow("unknown key") << note("Milk").replace("</string></dict>",
                                                         "</string><key>Colour</key><string>red</string></dict>")
                                 << 1U;
}

void ItemFileStoreTest::fileWithSkippedEntriesIsKept()
{
    QFETCH(QByteArray, children);
    QFETCH(unsigned, entriesRead);
    _home->write(name, fileWith(children));
    const auto root = _file.load();
    QVERIFY(root);
    QCOMPARE(root->childCount(), entriesRead);
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(keptContents(0), fileWith(children));
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 1);
}

void ItemFileStoreTest::fileThatIsNotReadWholeIsKept_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("a key twice") << fileWith(
        note("Milk").replace("<key>Note</key>", "<key>Note</key><string>the first text</string><key>Note</key>"));
    QTest::newRow("damaged text") << fileWith(note("Milk") + note("Caf\xe9"));
    QTest::newRow("a value that cannot be held") << fileWith(
        note("Milk").replace("<key>Note</key>", "<key>Made</key><date>0000-01-01T00:00:00Z</date><key>Note</key>"));
    QTest::newRow("an entry that cannot be held") << fileWith(note("Milk") + "<uid>5</uid>");
}

void ItemFileStoreTest::fileThatIsNotReadWholeIsKept()
{
    QFETCH(QByteArray, contents);
    _home->write(name, contents);
    const auto root = _file.load();
    QVERIFY(root);
    QCOMPARE(root->childAtIndex(0)->title(), QStringLiteral("Milk"));
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(keptContents(0), contents);
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 1);
}

void ItemFileStoreTest::fileChangedByAnotherProgramIsKept()
{
    _home->write(name, fileWith(note("Milk")));
    const auto root = _file.load();
    const QByteArray others = fileWith(note("Milk") + note("Theirs"));
    _home->write(name, others);
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(keptContents(0), others);
    QVERIFY(!_home->read(name).contains("Theirs"));

    // And again after a save of our own.
    const QByteArray later = fileWith(note("Later"));
    _home->write(name, later);
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 2);
    QVERIFY(keptContents(0) == later || keptContents(1) == later);
}

void ItemFileStoreTest::fileThatAppearedIsKept()
{
    QVERIFY(!_file.load());
    _home->write(name, fileWith(note("Theirs")));
    QVERIFY(_file.save(*treeWith(QStringLiteral("Ours"))));
    QCOMPARE(keptContents(0), fileWith(note("Theirs")));
}

void ItemFileStoreTest::fileReplacedWithTheSameContentsIsKept()
{
    // Another file under the same name is not looked into; a copy too many is no loss.
    _home->write(name, fileWith(note("Milk")));
    const auto root = _file.load();
    _home->write(QStringLiteral("Wayfold/other"), fileWith(note("Milk")));
    QVERIFY(QFile::remove(_home->path(name)));
    QVERIFY(QFile::rename(_home->path(QStringLiteral("Wayfold/other")), _home->path(name)));
    QVERIFY(_file.save(*root));
    QCOMPARE(keptCopies().size(), 1);
}

// A backup may give the file a second name every hour.
void ItemFileStoreTest::otherPermissionsAndNamesAreNoChange()
{
    _home->write(name, fileWith(note("Milk")));
    const auto root = _file.load();
    for (int hour = 0; hour < 2; ++hour) {
        const QByteArray path = QFile::encodeName(_home->path(name));
        const QByteArray backup = path + QByteArray::number(hour);
        QCOMPARE(::link(path, backup), 0);
        StatusChange::make(_home->path(name), [&] { QCOMPARE(::chmod(path, 0600), 0); });
        QVERIFY(_file.save(*root));
    }
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::fileThatVanishedIsWrittenAnew()
{
    _home->write(name, fileWith(note("Milk")));
    const auto root = _file.load();
    QVERIFY(QFile::remove(_home->path(name)));
    QVERIFY(_file.save(*root));
    QVERIFY(_home->read(name).contains("Milk"));
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::everyStateIsKeptOnce()
{
    _home->write(name, "unreadable");
    QVERIFY(!_file.load());
    QVERIFY(_file.save(*treeWith(QStringLiteral("Milk"))));
    QVERIFY(_file.save(*treeWith(QStringLiteral("Bread"))));
    QCOMPARE(keptCopies().size(), 1);

    // Reading it again makes a new state, which is ours.
    QVERIFY(_file.load());
    QVERIFY(_file.save(*treeWith(QStringLiteral("Salt"))));
    QCOMPARE(keptCopies().size(), 1);
}

void ItemFileStoreTest::saveIsRefusedWhenNothingCanBeKept()
{
    // A pipe in place of the file can be neither read nor copied, whoever runs this.
    QVERIFY(!_file.load());
    QCOMPARE(::mkfifo(QFile::encodeName(_home->path(name)).constData(), 0600), 0);
    QVERIFY(!_file.save(*treeWith(QStringLiteral("Milk"))));
    QVERIFY(QFileInfo::exists(_home->path(name)));
    QVERIFY(!QFileInfo(_home->path(name)).isFile());
    QVERIFY(keptCopies().isEmpty());
}

void ItemFileStoreTest::unreadableFileThatCannotBeKeptIsNotWrittenOver()
{
    // The name of a copy would be too long, while that of the file itself can be written.
    const QString longName = QStringLiteral("Wayfold/") + QString(240, u'a');
    _file.setPath(_home->path(longName));
    QVERIFY(!_file.load());
    QVERIFY(_file.save(*treeWith(QStringLiteral("Milk"))));

    _home->write(longName, "unreadable");
    QVERIFY(!_file.load());
    QVERIFY(!_file.save(*treeWith(QStringLiteral("Bread"))));
    QVERIFY(!_file.save(*treeWith(QStringLiteral("Bread"))));
    QCOMPARE(_home->read(longName), QByteArray("unreadable"));
}

void ItemFileStoreTest::failedSaveKeepsNoSecondCopy()
{
    _home->write(name, "unreadable");
    QVERIFY(!_file.load());
    const QByteArray before = _home->read(name);
    // A tree that a property list cannot hold deeply enough to be read back is not written.
    auto root = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("0"));
    auto deepest = root;
    for (int depth = 0; depth < 1200; ++depth) {
        auto folder = WayfoldBookmarkFolder::bookmarkWithTitle(QString::number(depth));
        deepest->addChild(folder);
        deepest = folder;
    }
    QVERIFY(!_file.save(*root));
    QVERIFY(!_file.save(*root));
    QCOMPARE(_home->read(name), before);
    QCOMPARE(keptCopies().size(), 1);
    QVERIFY(_file.save(*treeWith(QStringLiteral("Milk"))));
    QCOMPARE(keptCopies().size(), 1);
}

void ItemFileStoreTest::failedSaveIsTriedAgain()
{
    const auto root = treeWith(QStringLiteral("Milk"));
    QVERIFY(QDir().mkpath(_home->path(name))); // a folder in the place of the file
    _file.retrySave(*root);
    QVERIFY(!_file.isSaveOwed()); // nobody wanted to save yet
    QVERIFY(!_file.save(*root));
    QVERIFY(_file.isSaveOwed());
    _file.retrySave(*root);
    QVERIFY(_file.isSaveOwed());

    QVERIFY(QDir().rmdir(_home->path(name)));
    for (int second = 0; _file.isSaveOwed() && second < 2; ++second)
        _file.retrySave(*root);
    QVERIFY(!_file.isSaveOwed());
    QVERIFY(_home->read(name).contains("Milk"));

    // And then it is left alone.
    QVERIFY(QFile::remove(_home->path(name)));
    _file.retrySave(*root);
    QVERIFY(!QFileInfo::exists(_home->path(name)));

    // A save that works is none that is owed.
    QVERIFY(QDir().mkpath(_home->path(name)));
    QVERIFY(!_file.save(*root));
    QVERIFY(QDir().rmdir(_home->path(name)));
    QVERIFY(_file.save(*root));
    QVERIFY(!_file.isSaveOwed());
}

void ItemFileStoreTest::triesBecomeRare()
{
    const auto root = treeWith(QStringLiteral("Milk"));
    QVERIFY(QDir().mkpath(_home->path(name)));
    LoggedMessages messages; // one at least for each try
    QVERIFY(!_file.save(*root));
    QList<int> pauses;
    int pause = 0;
    for (int second = 0; second < 400; ++second) {
        messages.clear();
        _file.retrySave(*root);
        ++pause;
        if (messages.texts().isEmpty())
            continue;
        pauses.append(pause);
        pause = 0;
    }
    QCOMPARE(pauses, (QList<int>{1, 2, 4, 8, 16, 32, 64, 64, 64, 64, 64}));

    QVERIFY(!_file.save(*root)); // what the user does counts afresh
    messages.clear();
    _file.retrySave(*root);
    QVERIFY(!messages.texts().isEmpty());
}

void ItemFileStoreTest::copyIsLogged()
{
    _home->write(name, "unreadable");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Could not read")));
    QVERIFY(!_file.load());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("kept aside before it is written over")));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Kept a copy of .*Bookmarks\\.plist")));
    QVERIFY(_file.save(*treeWith(QStringLiteral("Milk"))));
}

void ItemFileStoreTest::directoryIsNoFile()
{
    QVERIFY(QDir().mkpath(_home->path(name)));
    QVERIFY(!_file.load());
    QVERIFY(!_file.save(*treeWith(QStringLiteral("Milk"))));
    QVERIFY(QFileInfo(_home->path(name)).isDir());
}

QTEST_GUILESS_MAIN(ItemFileStoreTest)
#include "ItemFileStoreTest.moc"
