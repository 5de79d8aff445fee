#include "browser/BookmarkFile.h"

#include "platform/files/PropertyList.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QUuid>

class BookmarkFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void placeOfTheFile();
    void whatAKilledSaveLeftIsRemoved();
    void makesTheFile();
    void leavesAnExistingFileAlone();
    void addsABookmark();
    void addsIntoASubfolder();
    void addsToTheMenuWhenTheFolderHasGone();
    void completesAFileWithoutBarAndMenu();
    void keepsWhatIsNotOurs();
    void readsWhatOthersHaveChanged();
    void keepsAnUnreadableFileAside();
    void keepsAFileThatIsNotReadWholeAside();
    void keepsAFileOfAnotherShapeAside();
    void leavesAFolderOfAnotherShapeAlone();
    void failedWriteChangesNothing();
    void nodes();
    void folders();

private:
    QVariantMap root() const { return PropertyList::readDictionaryFile(_path); }
    QVariantMap topFolder(const QString &title) const;
    void writeRoot(const QVariantMap &root) const;
    QStringList keptCopies() const;

    std::unique_ptr<TemporaryHome> _home;
    QString _path;
};

namespace
{
QVariantMap folder(const QString &title, const QVariantList &children)
{
    return {{"WebBookmarkType", "WebBookmarkTypeList"},
            {"WebBookmarkUUID", "F-" + title},
            {"Title", title},
            {"Children", children}};
}

QVariantMap bookmark(const QString &title, const QString &address)
{
    return {{"WebBookmarkType", "WebBookmarkTypeLeaf"},
            {"WebBookmarkUUID", "L-" + title},
            {"URLString", address},
            {"URIDictionary", QVariantMap{{QString(""), address}, {"title", title}}}};
}

BookmarkFile::Folder folderTitled(BookmarkFile &file, const QString &title)
{
    for (const BookmarkFile::Folder &folder : file.folders()) {
        if (folder.title == title)
            return folder;
    }
    return {};
}

bool isUuid(const QVariant &value)
{
    return !QUuid::fromString(value.toString()).isNull();
}
} // namespace

void BookmarkFileTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    _path = BookmarkFile::defaultPath();
}

void BookmarkFileTest::cleanup()
{
    _home.reset();
}

QVariantMap BookmarkFileTest::topFolder(const QString &title) const
{
    for (const QVariant &child : root().value("Children").toList()) {
        if (child.toMap().value("Title") == title)
            return child.toMap();
    }
    return {};
}

void BookmarkFileTest::writeRoot(const QVariantMap &root) const
{
    QDir().mkpath(QFileInfo(_path).path());
    QVERIFY(PropertyList::writeFile(root, _path));
}

QStringList BookmarkFileTest::keptCopies() const
{
    return QDir(_home->path("Library/Safari")).entryList({"Bookmarks.plist.kept-*"});
}

void BookmarkFileTest::placeOfTheFile()
{
    QCOMPARE(_path, _home->path("Library/Safari/Bookmarks.plist"));
}

void BookmarkFileTest::whatAKilledSaveLeftIsRemoved()
{
    const QString left = _path + ".saving-abcdef";
    _home->write(QDir(_home->path()).relativeFilePath(left), "half");
    BookmarkFile file(_path);
    QVERIFY(file.barNodes().isEmpty());
    QVERIFY(!QFileInfo::exists(left));
}

void BookmarkFileTest::makesTheFile()
{
    BookmarkFile file(_path);
    QVERIFY(file.ensureExists());
    QCOMPARE(root().keys(), QStringList({"Children", "WebBookmarkFileVersion", "WebBookmarkType", "WebBookmarkUUID"}));
    QCOMPARE(root().value("WebBookmarkFileVersion"), QVariant(qlonglong(1)));
    QCOMPARE(root().value("WebBookmarkType"), QVariant("WebBookmarkTypeList"));
    QVERIFY(isUuid(root().value("WebBookmarkUUID")));
    const QVariantList children = root().value("Children").toList();
    QCOMPARE(children.size(), 2);
    QCOMPARE(children.at(0).toMap().value("Title"), QVariant("BookmarksBar"));
    QCOMPARE(children.at(1).toMap().value("Title"), QVariant("BookmarksMenu"));
    for (const QVariant &child : children) {
        QCOMPARE(child.toMap().value("WebBookmarkType"), QVariant("WebBookmarkTypeList"));
        QVERIFY(isUuid(child.toMap().value("WebBookmarkUUID")));
        QCOMPARE(child.toMap().value("Children"), QVariant(QVariantList()));
    }
}

void BookmarkFileTest::leavesAnExistingFileAlone()
{
    _home->write("Library/Safari/Bookmarks.plist", "anything");
    BookmarkFile file(_path);
    QVERIFY(file.ensureExists());
    QCOMPARE(_home->read("Library/Safari/Bookmarks.plist"), QByteArray("anything"));
}

void BookmarkFileTest::addsABookmark()
{
    BookmarkFile file(_path);
    const QSignalSpy changed(&file, &BookmarkFile::changed);
    QVERIFY(file.addBookmark("A", "http://a.example/", folderTitled(file, "BookmarksBar")));
    QVERIFY(file.addBookmark("B", "http://b.example/", folderTitled(file, "BookmarksBar")));
    QCOMPARE(changed.count(), 2);

    const QVariantList children = topFolder("BookmarksBar").value("Children").toList();
    QCOMPARE(children.size(), 2);
    QVariantMap first = children.at(0).toMap();
    QVERIFY(isUuid(first.take("WebBookmarkUUID")));
    const QVariantMap expected{{"WebBookmarkType", "WebBookmarkTypeLeaf"},
                               {"URLString", "http://a.example/"},
                               {"URIDictionary", QVariantMap{{QString(""), "http://a.example/"}, {"title", "A"}}}};
    QCOMPARE(first, expected);
    QCOMPARE(children.at(1).toMap().value("URLString"), QVariant("http://b.example/"));
    QCOMPARE(topFolder("BookmarksMenu").value("Children").toList().size(), 0);
}

void BookmarkFileTest::addsIntoASubfolder()
{
    writeRoot(folder("", {folder("BookmarksBar", {folder("Outer", {bookmark("x", "http://x/"), folder("Inner", {})})}),
                          folder("BookmarksMenu", {})}));
    BookmarkFile file(_path);
    QVERIFY(file.addBookmark("A", "http://a.example/", folderTitled(file, "Inner")));
    const QVariantMap outer = topFolder("BookmarksBar").value("Children").toList().at(0).toMap();
    const QVariantMap inner = outer.value("Children").toList().at(1).toMap();
    QCOMPARE(inner.value("Children").toList().size(), 1);
    QCOMPARE(inner.value("Children").toList().at(0).toMap().value("URLString"), QVariant("http://a.example/"));
}

void BookmarkFileTest::addsToTheMenuWhenTheFolderHasGone()
{
    writeRoot(folder("", {folder("BookmarksBar", {folder("Inner", {})}), folder("BookmarksMenu", {})}));
    BookmarkFile file(_path);
    const BookmarkFile::Folder inner = folderTitled(file, "Inner");
    writeRoot(folder("", {folder("BookmarksBar", {folder("Other", {})}), folder("BookmarksMenu", {})}));
    QVERIFY(file.addBookmark("A", "http://a.example/", inner));
    QVERIFY(file.addBookmark("B", "http://b.example/", BookmarkFile::Folder()));
    QCOMPARE(topFolder("BookmarksMenu").value("Children").toList().size(), 2);
    const QVariantMap other = topFolder("BookmarksBar").value("Children").toList().at(0).toMap();
    QCOMPARE(other.value("Children").toList().size(), 0);
}

void BookmarkFileTest::completesAFileWithoutBarAndMenu()
{
    writeRoot(folder("", {bookmark("x", "http://x/")}));
    BookmarkFile file(_path);
    QVERIFY(file.addBookmark("A", "http://a.example/", folderTitled(file, "BookmarksMenu")));
    QCOMPARE(topFolder("BookmarksBar").value("Children"), QVariant(QVariantList()));
    QCOMPARE(topFolder("BookmarksMenu").value("Children").toList().size(), 1);
    QCOMPARE(root().value("Children").toList().last().toMap(), bookmark("x", "http://x/"));
}

void BookmarkFileTest::keepsWhatIsNotOurs()
{
    QVariantMap stored =
        folder("", {folder("BookmarksBar", {bookmark("x", "http://x/")}), folder("BookmarksMenu", {})});
    stored.insert("WebBookmarkFileVersion", qlonglong(5));
    stored.insert("Owner", "Ann");
    QVariantList children = stored.value("Children").toList();
    children.append(QVariantMap{{"WebBookmarkType", "WebBookmarkTypeProxy"}, {"Title", "History"}});
    children.append("a lone text");
    stored.insert("Children", children);
    writeRoot(stored);
    BookmarkFile file(_path);
    QVERIFY(file.addBookmark("A", "http://a.example/", folderTitled(file, "BookmarksMenu")));

    const QVariantMap now = root();
    QCOMPARE(now.value("WebBookmarkFileVersion"), QVariant(qlonglong(5)));
    QCOMPARE(now.value("WebBookmarkUUID"), QVariant("F-"));
    QCOMPARE(now.value("Owner"), QVariant("Ann"));
    const QVariantList after = now.value("Children").toList();
    QCOMPARE(after.size(), 4);
    QCOMPARE(after.at(0), children.at(0));
    QCOMPARE(after.at(2), children.at(2));
    QCOMPARE(after.at(3), QVariant("a lone text"));
}

void BookmarkFileTest::readsWhatOthersHaveChanged()
{
    BookmarkFile file(_path);
    QVERIFY(file.ensureExists());
    QVERIFY(file.menuNodes().isEmpty());
    writeRoot(folder("", {folder("BookmarksBar", {}), folder("BookmarksMenu", {bookmark("Theirs", "http://t/")})}));
    QCOMPARE(file.menuNodes().size(), 1);
    QVERIFY(file.addBookmark("Mine", "http://m/", folderTitled(file, "BookmarksMenu")));
    QCOMPARE(topFolder("BookmarksMenu").value("Children").toList().size(), 2);
}

void BookmarkFileTest::keepsAnUnreadableFileAside()
{
    _home->write("Library/Safari/Bookmarks.plist", "not a property list");
    BookmarkFile file(_path);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Could not read"));
    QVERIFY(file.menuNodes().isEmpty());
    QVERIFY(keptCopies().isEmpty()); // looking alone changes nothing
    QVERIFY(file.addBookmark("A", "http://a.example/", {}));
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(_home->read("Library/Safari/" + keptCopies().first()), QByteArray("not a property list"));
    QVERIFY(file.addBookmark("B", "http://b.example/", {}));
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(file.menuNodes().size(), 2);
}

void BookmarkFileTest::keepsAFileThatIsNotReadWholeAside()
{
    const QByteArray damaged = "<plist><dict><key>Title</key><string>caf\xe9</string></dict></plist>";
    _home->write("Library/Safari/Bookmarks.plist", damaged);
    BookmarkFile file(_path);
    QVERIFY(file.addBookmark("A", "http://a.example/", {}));
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(_home->read("Library/Safari/" + keptCopies().first()), damaged);
    QVERIFY(root().contains("Title")); // the rest was read
}

void BookmarkFileTest::keepsAFileOfAnotherShapeAside()
{
    writeRoot({{"Children", "elsewhere"}});
    BookmarkFile file(_path);
    QVERIFY(file.addBookmark("A", "http://a.example/", {}));
    QCOMPARE(keptCopies().size(), 1);
    QCOMPARE(topFolder("BookmarksMenu").value("Children").toList().size(), 1);
}

void BookmarkFileTest::leavesAFolderOfAnotherShapeAlone()
{
    QVariantMap strange = folder("Strange", {});
    strange.insert("Children", "elsewhere");
    writeRoot(folder("", {folder("BookmarksBar", {strange}), folder("BookmarksMenu", {})}));
    BookmarkFile file(_path);
    QVERIFY(file.addBookmark("A", "http://a.example/", folderTitled(file, "Strange")));
    QCOMPARE(topFolder("BookmarksBar").value("Children").toList().at(0).toMap(), strange);
    QCOMPARE(topFolder("BookmarksMenu").value("Children").toList().size(), 1);
}

void BookmarkFileTest::failedWriteChangesNothing()
{
    _home->write("Library/Safari", "in the way");
    BookmarkFile file(_path);
    const QSignalSpy changed(&file, &BookmarkFile::changed);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Could not write"));
    QVERIFY(!file.addBookmark("A", "http://a.example/", {}));
    QVERIFY(file.menuNodes().isEmpty());
    QCOMPARE(changed.count(), 0);
}

void BookmarkFileTest::nodes()
{
    writeRoot(folder("", {folder("BookmarksBar", {bookmark("A", "http://a/"), folder("F", {bookmark("B", "http://b/")}),
                                                  QVariantMap{{"WebBookmarkType", "WebBookmarkTypeProxy"}}}),
                          folder("BookmarksMenu", {bookmark("C", "http://c/")})}));
    BookmarkFile file(_path);
    const QList<BookmarkFile::Node> bar = file.barNodes();
    QCOMPARE(bar.size(), 2);
    QVERIFY(!bar.at(0).isFolder);
    QCOMPARE(bar.at(0).title, QString("A"));
    QCOMPARE(bar.at(0).address, QString("http://a/"));
    QVERIFY(bar.at(1).isFolder);
    QCOMPARE(bar.at(1).title, QString("F"));
    QCOMPARE(bar.at(1).children.size(), 1);
    QCOMPARE(bar.at(1).children.first().address, QString("http://b/"));
    QCOMPARE(file.menuNodes().size(), 1);
    QCOMPARE(file.menuNodes().first().title, QString("C"));
}

void BookmarkFileTest::folders()
{
    writeRoot(folder("", {folder("BookmarksBar", {bookmark("A", "http://a/"), folder("F", {folder("G", {})})}),
                          folder("BookmarksMenu", {})}));
    BookmarkFile file(_path);
    QStringList titles;
    for (const BookmarkFile::Folder &folder : file.folders())
        titles.append(QString(folder.depth, '-') + folder.title);
    QCOMPARE(titles, QStringList({"BookmarksBar", "-F", "--G", "BookmarksMenu"}));
}

QTEST_GUILESS_MAIN(BookmarkFileTest)
#include "BookmarkFileTest.moc"
