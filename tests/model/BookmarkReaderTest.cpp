#include "model/BookmarkReader.h"

#include "model/BookmarkItems.h"
#include "model/TextSearch.h"
#include "model/UUIDSearch.h"
#include "platform/files/PropertyList.h"
#include "platform/files/XmlPropertyListReader.h"
#include "tests/model/ModelTestSupport.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/BinaryPropertyList.h"
#include "tests/support/BytesRead.h"
#include "tests/support/LoggedMessages.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QtTest>

namespace
{
QByteArray linkEntry(const QByteArray &title, const QByteArray &uuid, const QByteArray &address = "http://a.example/")
{
    return "<dict>\n<key>URIDictionary</key>\n<dict>\n<key></key>\n<string>" + address +
           "</string>\n<key>title</key>\n<string>" + title + "</string>\n</dict>\n<key>URLString</key>\n<string>" +
           address + "</string>\n<key>WebBookmarkType</key>\n<string>WebBookmarkTypeLeaf</string>\n" +
           "<key>WebBookmarkUUID</key>\n<string>" + uuid + "</string>\n</dict>\n";
}

QByteArray note(const QByteArray &title, const QByteArray &text)
{
    return "<dict><key>Note</key><string>" + text + "</string><key>URIDictionary</key><dict><key>title</key><string>" +
           title + "</string></dict><key>WebBookmarkType</key><string>WebBookmarkTypeNote</string></dict>\n";
}

QByteArray contact(const QByteArray &type, const QByteArray &card, const QByteArray &uuid)
{
    return "<dict><key>AddressBookID</key><string>" + card + "</string><key>WebBookmarkType</key><string>" + type +
           "</string><key>WebBookmarkUUID</key><string>" + uuid + "</string></dict>\n";
}

// As it is written, the contents before the title.
QByteArray folder(const QByteArray &title, const QByteArray &contents, const QByteArray &uuid = "F",
                  const QByteArray &type = "WebBookmarkTypeList")
{
    return "<dict>\n<key>Children</key>\n<array>\n" + contents + "</array>\n<key>Title</key>\n<string>" + title +
           "</string>\n<key>WebBookmarkType</key>\n<string>" + type +
           "</string>\n<key>WebBookmarkUUID</key>\n<string>" + uuid + "</string>\n</dict>\n";
}

QByteArray fileOf(const QByteArray &root)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n" + root + "</plist>\n";
}

QByteArray fileWith(const QByteArray &contents)
{
    return fileOf(folder("", contents, "ROOT"));
}

// A tree in a form that can be compared; identifiers that are not in the file are new ones each time.
QVariant comparable(const QVariant &value)
{
    static const QRegularExpression fresh("^[0-9A-F]{8}-([0-9A-F]{4}-){3}[0-9A-F]{12}$");
    if (value.typeId() == QMetaType::QString && fresh.match(value.toString()).hasMatch())
        return "fresh";
    if (value.typeId() == QMetaType::QVariantList) {
        QVariantList list;
        for (const QVariant &element : value.toList())
            list.append(comparable(element));
        return list;
    }
    QVariantMap map = value.toMap();
    for (QVariant &element : map)
        element = comparable(element);
    return value.typeId() == QMetaType::QVariantMap ? QVariant(map) : value;
}

// Item files keep what is unknown, too; the browser's bookmarks are only looked at.
QVariantMap knownOf(const KDRBookmark &item)
{
    QVariantMap dictionary;
    item.writeToDictionaryForSaving(dictionary, false);
    if (item.type() != KDRBookmark::FolderType)
        return dictionary;
    QVariantList children;
    for (const KDRBookmarkPtr &child : static_cast<const WayfoldBookmarkFolder &>(item).children())
        children.append(knownOf(*child));
    dictionary.insert("Children", children);
    return dictionary;
}

QVariant treeOf(const std::shared_ptr<const BookmarkRecords> &records)
{
    return records ? comparable(BookmarkItems::treeOf(records)->createDictionary(false)) : QVariant();
}

QByteArray shown(const QVariant &tree)
{
    return tree.isValid() ? PropertyList::toXml(tree) : QByteArray("none");
}
} // namespace

class BookmarkReaderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

    QString path() const { return _home->path("Bookmarks.plist"); }
    void write(const QByteArray &contents) const
    {
        QFile::remove(path());
        _home->write("Bookmarks.plist", contents);
    }
    // As an item file is read, and element by element.
    QVariant treeTheGeneralWay() const
    {
        QFile file(path());
        QVariant value;
        if (file.open(QIODevice::ReadOnly) && file.peek(6) != "bplist")
            value = XmlPropertyListReader(&file).read();
        else
            value = PropertyList::readFile(path());
        if (value.typeId() != QMetaType::QVariantMap)
            return {};
        return comparable(knownOf(*WayfoldBookmarkFolder::bookmarkFromDictionary(value.toMap())));
    }
    // The reader that has read others, and one that has not, say what the general way says.
    void check(BookmarkReader &reader, const QByteArray &contents)
    {
        write(contents);
        const QVariant expected = treeTheGeneralWay();
        BookmarkReader fresh;
        const QVariant first = treeOf(fresh.read(path()));
        const QVariant again = treeOf(reader.read(path()));
        if (first != expected || again != expected)
            QFAIL((contents + "\nexpected " + shown(expected) + "\nfirst " + shown(first) + "\nagain " + shown(again))
                      .constData());
        _seen += expected.isValid() ? 1 : 0;
    }
    int _seen = 0;

private Q_SLOTS:
    void init()
    {
        _home = std::make_unique<FreshHome>();
        _seen = 0;
    }
    void cleanup() { _home.reset(); }

    void forms_data();
    void forms();
    void usualFilesAreReadOnce_data();
    void usualFilesAreReadOnce();
    void readAgain();
    void whatHasGoneWithItsFolderComesBack();
    void generatedFiles();
    void damagedFiles();
    void missingFile();
    void readingAgainMakesLittle();
    void longFoldersAreNotHeldInMemory();
    void clearedBookmarksAreForgotten();
};

void BookmarkReaderTest::forms_data()
{
    QTest::addColumn<QByteArray>("contents");
    const auto row = [](const char *name, const QByteArray &contents) { QTest::newRow(name) << contents; };
    const QByteArray usual = fileWith(
        folder("Bar", linkEntry("A", "1") + folder("Sub", linkEntry("B", "2"), "S") + linkEntry("C", "3"), "B") +
        folder("Menu", "", "M") + linkEntry("D", "4"));
    row("usual", usual);
    row("line ends of two characters", QByteArray(usual).replace("\n", "\r\n"));
    row("comments", QByteArray(usual).replace("<key>", "<!-- a --><key>"));
    row("attributes", QByteArray(usual).replace("<array>", "<array a=\"b\">"));
    row("binary", binaryPropertyList(PropertyList::fromData(usual)));
    row("no contents", fileWith(""));
    row("empty root", fileOf("<dict/>"));
    row("empty list in short", fileOf("<dict><key>Children</key><array/></dict>"));
    row("root is a list", fileOf("<array>" + linkEntry("A", "1") + "</array>"));
    row("children are no list", fileOf("<dict><key>Children</key>" + linkEntry("A", "1") + "</dict>"));
    row("children twice", fileOf("<dict><key>Children</key><array>" + linkEntry("A", "1") +
                                 "</array><key>Children</key><array>" + linkEntry("B", "2") + "</array></dict>"));
    row("other folder types", fileWith(folder("A", linkEntry("a", "1"), "F", "BookmarksBar") +
                                       folder("B", linkEntry("b", "2"), "G", "BookmarksMenu")));
    row("folder of an unknown type", fileWith(folder("A", linkEntry("a", "1"), "F", "Other") + linkEntry("b", "2")));
    row("folder without a title", fileWith(folder("", linkEntry("a", "1")) + linkEntry("b", "2")));
    row("link with children", fileWith("<dict><key>Children</key><array>" + linkEntry("in", "9") + "</array>" +
                                       linkEntry("A", "1").mid(6) + linkEntry("B", "2")));
    row("folders like links",
        fileWith(folder("A", linkEntry("a", "1"), "F", "WebBookmarkTypeLeaf") + linkEntry("b", "2")));
    row("link without a title", fileWith(linkEntry("", "1") + linkEntry("b", "2")));
    row("link without an address", fileWith(linkEntry("a", "1", "")));
    row("link of no address", fileWith(linkEntry("a", "1", "not an address")));
    row("file and mail", fileWith(linkEntry("a", "1", "file:///etc/hosts") + linkEntry("b", "2", "mailto:ann?cc=bob") +
                                  linkEntry("c", "3", "MAILTO:ann")));
    row("no identifiers", fileWith(linkEntry("a", "") + folder("F", linkEntry("b", ""), "")));
    row("twins", fileWith(linkEntry("a", "1") + linkEntry("a", "1") + folder("F", linkEntry("a", "1"))));
    row("notes", fileWith(note("a", "Text &amp; more") + note("", "untitled") + note("b", "")));
    row("people and groups",
        fileWith(contact("ABPerson", "ann", "1") + contact("ABGroup", "friends", "") + contact("ABPerson", "", "") +
                 linkEntry("a", "2") +
                 QByteArray(contact("ABGroup", "g", "3"))
                     .replace("<dict>", "<dict><key>Children</key><array>" + linkEntry("in", "4") + "</array>")));
    row("people without a card", fileWith("<dict><key>WebBookmarkType</key><string>ABPerson</string></dict>"));
    row("card twice", fileWith(QByteArray(contact("ABPerson", "ann", "1"))
                                   .replace("<dict>", "<dict><key>AddressBookID</key><string>bob</string>")));
    row("long note", fileWith(note("a", QByteArray("x").repeated(40000))));
    row("search string",
        fileWith(QByteArray(folder("F", linkEntry("a", "1")))
                     .replace("<key>Title</key>", "<key>SearchString</key><string>s</string><key>Title</key>")));
    row("unknown keys",
        fileWith(QByteArray(linkEntry("a", "1"))
                     .replace("<key>URLString",
                              "<key>Sync</key><dict><key>Title</key><string>x</string></dict><key>URLString") +
                 linkEntry("b", "2")));
    row("not only dictionaries",
        fileWith("<string>a</string><true/><array>" + linkEntry("in", "9") + "</array>" + linkEntry("b", "2")));
    row("numbers for texts",
        fileWith(QByteArray(linkEntry("a", "1")).replace("<string>1</string>", "<integer>1</integer>") +
                 QByteArray(linkEntry("b", "2")).replace("<string>b</string>", "<real>1</real>")));
    row("title twice",
        fileWith(QByteArray(linkEntry("a", "1"))
                     .replace("<key>title</key>", "<key>title</key><string>x</string><key>title</key>")));
    row("identifier twice",
        fileWith(QByteArray(linkEntry("a", "1"))
                     .replace("<key>URLString", "<key>WebBookmarkUUID</key><string>x</string><key>URLString")));
    row("letters of all kinds",
        fileWith(linkEntry("Caf\xc3\xa9 \xf0\x9f\x98\x80 &lt;b&gt;", "1", "http://a.example/?a=b&amp;c")));
    const auto nested = [](int folders) {
        QByteArray deep = linkEntry("deep", "1");
        for (int depth = 0; depth < folders; ++depth)
            deep = folder("F", deep, QByteArray::number(depth));
        return deep;
    };
    row("deep", fileWith(nested(100) + linkEntry("b", "2")));
    row("too deep", fileWith(nested(PropertyList::maximumDepth) + linkEntry("b", "2")));
    row("cut off", usual.left(usual.size() / 2));
    row("something behind", usual + "x");
    row("not a list at all", "hello");
    row("nothing", "");
}

void BookmarkReaderTest::forms()
{
    QFETCH(QByteArray, contents);
    BookmarkReader reader;
    check(reader, contents);
    check(reader, contents);
    check(reader, fileWith(linkEntry("other", "9") + contents.mid(contents.indexOf("<array>") + 7, 0)));
    check(reader, contents);
}

void BookmarkReaderTest::usualFilesAreReadOnce_data()
{
    QTest::addColumn<QByteArray>("contents");
    QByteArray links;
    for (int number = 0; number < 2000; ++number)
        links += linkEntry("Link", QByteArray::number(number));
    const QByteArray plain = fileWith(links + note("N", "Text") + folder("F", linkEntry("in", "IN")));
    QTest::newRow("plain") << plain;
    QTest::newRow("line ends of two characters") << QByteArray(plain).replace("\n", "\r\n");
    QTest::newRow("binary") << binaryPropertyList(PropertyList::fromData(plain));
}

// The general way would read it a second time.
void BookmarkReaderTest::usualFilesAreReadOnce()
{
    QFETCH(QByteArray, contents);
    if (bytesRead() == 0)
        QSKIP("The system does not count what is read.");
    write(contents);
    BookmarkReader reader;
    const qint64 before = bytesRead();
    QVERIFY(reader.read(path()));
    QCOMPARE((bytesRead() - before + contents.size() / 2) / contents.size(), 1);
}

void BookmarkReaderTest::readAgain()
{
    BookmarkReader reader;
    const QByteArray a = linkEntry("A", "1");
    const QByteArray b = linkEntry("B", "2");
    const QByteArray c = linkEntry("C", "3");
    for (const QByteArray &contents :
         {a + b + c, b + c, folder("F", b) + c, c + folder("F", b + a), folder("F", folder("G", b + a)) + c,
          QByteArray(), a + "<string/>" + b, "<string/>" + a, note("N", "x") + a + a + a, a}) {
        check(reader, fileWith(contents));
        check(reader, fileWith(contents));
    }
}

// What is in a folder that is left out once is not taken for known.
void BookmarkReaderTest::whatHasGoneWithItsFolderComesBack()
{
    BookmarkReader reader;
    const QByteArray contents = linkEntry("A", "1") + linkEntry("B", "2");
    for (const char *title : {"F", "", "F"})
        check(reader, fileWith(folder(title, contents) + linkEntry("C", "3")));
    for (const char *type : {"Other", "WebBookmarkTypeLeaf", "WebBookmarkTypeList"})
        check(reader, fileWith(folder("F", contents, "U", type) + linkEntry("C", "3")));
}

void BookmarkReaderTest::generatedFiles()
{
    QRandomGenerator random(7);
    const std::function<QByteArray(int)> contents = [&](int depth) {
        QByteArray list;
        for (quint32 left = random.bounded(6); left > 0; --left) {
            const QByteArray number = QByteArray::number(random.bounded(8));
            switch (random.bounded(depth > 0 ? 9 : 7)) {
            case 0:
                list += note(number, "text");
                break;
            case 1:
                list += linkEntry("", number);
                break;
            case 2:
                list += "<integer>3</integer>";
                break;
            case 6:
                list += contact(random.bounded(2) ? "ABPerson" : "ABGroup", number, random.bounded(2) ? number : "");
                break;
            case 7:
                list += folder(random.bounded(4) ? number : QByteArray(), contents(depth - 1), number);
                break;
            case 8:
                list += folder(number, contents(depth - 1), number, random.bounded(3) ? "BookmarksBar" : "Other");
                break;
            default:
                list += linkEntry(number, number, "http://" + number + ".example/");
            }
        }
        return list;
    };
    BookmarkReader reader;
    for (int round = 0; round < 300; ++round) {
        const QByteArray xml = fileWith(contents(3));
        check(reader, round % 3 ? xml : binaryPropertyList(PropertyList::fromData(xml)));
    }
    QCOMPARE(_seen, 300);
}

void BookmarkReaderTest::damagedFiles()
{
    const LoggedMessages log;
    QRandomGenerator random(11);
    const QByteArray sound =
        fileWith(folder("F", linkEntry("A", "1") + note("N", "t") + folder("G", linkEntry("B", "2")), "U") +
                 linkEntry("C", "3"));
    const QByteArray pieces[] = {"&",      "<",        "\r",       "<key/>",   "</dict>",
                                 "<dict>", "</array>", "<array/>", "<string>", "\xff"};
    const QByteArray binary = binaryPropertyList(PropertyList::fromData(sound));
    BookmarkReader reader;
    for (int round = 0; round < 1000; ++round) {
        QByteArray damaged = round % 2 ? sound : binary;
        const qsizetype at = random.bounded(int(damaged.size()));
        if (random.bounded(2))
            damaged.insert(at, pieces[random.bounded(int(std::size(pieces)))]);
        else
            damaged.remove(at, 1 + random.bounded(60));
        check(reader, damaged);
        if (round % 10 == 0)
            check(reader, sound);
    }
    QVERIFY(_seen > 100);
}

void BookmarkReaderTest::missingFile()
{
    BookmarkReader reader;
    QVERIFY(!reader.read(path()));
    check(reader, fileWith(linkEntry("A", "1")));
    QFile::remove(path());
    QVERIFY(!reader.read(path()));
    check(reader, fileWith(linkEntry("A", "1")));
}

// One link more, and one that has gone.
void BookmarkReaderTest::readingAgainMakesLittle()
{
    constexpr int links = 2000;
    QByteArrayList folders;
    for (int number = 0; number < links / 20; ++number) {
        QByteArray contents;
        for (int i = 0; i < 20; ++i)
            contents +=
                linkEntry("Link", QByteArray::number(number * 20 + i), "http://a.example/" + QByteArray::number(i));
        folders.append(folder("Folder", contents, "F" + QByteArray::number(number)));
    }
    BookmarkReader reader;
    write(fileWith(folders.join()));
    reader.read(path());
    folders[10].replace(linkEntry("Link", "205", "http://a.example/5"), "");
    write(fileWith(linkEntry("New", "N") + folders.join()));
    const std::size_t before = allocationCount;
    const auto records = reader.read(path());
    QVERIFY2(allocationCount - before < links, qPrintable(QString::number(allocationCount - before)));
    QCOMPARE(records->count(), unsigned(1 + links / 20 + links));
    // And the tree: its root alone.
    const std::size_t beforeTree = allocationCount;
    const auto tree = BookmarkItems::treeOf(records);
    QVERIFY2(allocationCount - beforeTree < 50, qPrintable(QString::number(allocationCount - beforeTree)));
    QCOMPARE(tree->childCount(), unsigned(1 + links / 20));
    check(reader, fileWith(folders.join()));
}

void BookmarkReaderTest::longFoldersAreNotHeldInMemory()
{
    write(fileWith(folder("F", linkEntry("A", "1").repeated(20000))));
    BookmarkReader reader;
    reader.read(path());
    const std::size_t before = allocatedBytes;
    QCOMPARE(reader.read(path())->count(), 20002U);
    QVERIFY2(allocatedBytes - before < std::size_t(QFileInfo(path()).size()) / 2,
             qPrintable(QString::number(allocatedBytes - before)));
}

void BookmarkReaderTest::clearedBookmarksAreForgotten()
{
    BookmarkReader reader;
    write(fileWith(linkEntry("A", "1") + linkEntry("B", "2")));
    auto former = reader.read(path());
    const std::weak_ptr<const void> texts = former->sharedTexts();
    write(fileWith(""));
    reader.read(path());
    QVERIFY(!texts.expired());
    former.reset();
    QVERIFY(texts.expired());
    check(reader, fileWith(linkEntry("A", "1")));
    QVERIFY(reader.read(path())->wasted() < 0.5);
}

QTEST_MAIN(BookmarkReaderTest)
#include "BookmarkReaderTest.moc"
