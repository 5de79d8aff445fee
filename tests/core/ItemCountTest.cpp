#include "core/ItemCount.h"

#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldBookmarkNote.h"
#include "platform/files/PropertyList.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/PythonScript.h"
#include "tests/support/TemporaryHome.h"

#include <QtTest>
#include <optional>

using namespace std::chrono_literals;

namespace
{
const QString name = QStringLiteral("Bookmarks.plist");

QByteArray fileWith(const QByteArray &children)
{
    return "<plist version=\"1.0\"><dict><key>WebBookmarkType</key><string>WebBookmarkTypeList</string>"
           "<key>Children</key><array>" +
           children + "</array></dict></plist>\n";
}

QByteArray folder(const QByteArray &children)
{
    return "<dict><key>Children</key><array>" + children +
           "</array><key>WebBookmarkType</key><string>WebBookmarkTypeList</string></dict>";
}

const QByteArray note = "<dict><key>WebBookmarkType</key><string>WebBookmarkTypeNote</string></dict>";
} // namespace

class ItemCountTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _home.emplace(); }
    void cleanup() { _home.reset(); }

    void counts_data();
    void counts();
    void countsWhatIsWritten();
    void countsInSlices();
    void countsWhatAnotherProgramHasWritten();
    void cannotBeRead_data();
    void cannotBeRead();
    void unusualAndLargeIsNotCounted();

private:
    static std::optional<ItemCount::Holding> countIn(const QString &path)
    {
        ItemCount count(path);
        while (!count.advance(1000ms)) {
        }
        return count.holding();
    }

    std::optional<TemporaryHome> _home;
};

void ItemCountTest::counts_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<int>("items");
    QTest::addColumn<int>("sites");

    QTest::newRow("nothing") << fileWith("") << 0 << 0;
    QTest::newRow("no children") << QByteArray("<plist version=\"1.0\"><dict/></plist>") << 0 << 0;
    QTest::newRow("empty list") << QByteArray("<plist version=\"1.0\"><dict><key>Children</key><array/></dict></plist>")
                                << 0 << 0;
    QTest::newRow("notes") << fileWith(note + note) << 2 << 0;
    QTest::newRow("a site") << fileWith(folder(note + note)) << 3 << 1;
    QTest::newRow("an empty site") << fileWith(folder("")) << 1 << 1;
    QTest::newRow("folder in a site") << fileWith(folder(folder(note) + note)) << 4 << 1;
    QTest::newRow("sites and notes") << fileWith(note + folder(note) + note + folder("")) << 5 << 2;
    QTest::newRow("entry of no kind") << fileWith("<dict/>") << 1 << 0;
    QTest::newRow("loose text") << fileWith("<string>text</string>" + note) << 1 << 0;
    QTest::newRow("lists that are no children") << fileWith("<dict><key>Others</key><array>" + note +
                                                            "</array><key>URIDictionary</key><dict><key>Children"
                                                            "</key><array>" +
                                                            note + "</array></dict></dict>")
                                                << 1 << 0;
    QTest::newRow("type of something else")
        << fileWith("<dict><key>X</key><dict><key>WebBookmarkType</key><string>WebBookmarkTypeList</string></dict>"
                    "</dict>")
        << 1 << 0;
    QTest::newRow("entities") << fileWith("<dict><key>Title</key><string>&lt;dict&gt; &amp;</string></dict>") << 1 << 0;
}

void ItemCountTest::counts()
{
    QFETCH(QByteArray, contents);
    QFETCH(int, items);
    QFETCH(int, sites);
    _home->write(name, contents);
    const std::optional<ItemCount::Holding> holding = countIn(_home->path(name));
    QVERIFY(holding);
    QCOMPARE(holding->items, items);
    QCOMPARE(holding->sites, sites);
    // In general, too, in which comes what is unusual.
    QByteArray unusual = contents;
    unusual.replace("<dict>", "<dict >");
    _home->write(name, unusual);
    const std::optional<ItemCount::Holding> again = countIn(_home->path(name));
    QVERIFY(again);
    QCOMPARE(again->items, items);
    QCOMPARE(again->sites, sites);
}

void ItemCountTest::countsWhatIsWritten()
{
    const auto root = WayfoldBookmarkFolder::bookmarkWithTitle(QString());
    for (int site = 0; site < 3; ++site) {
        const auto list = WayfoldBookmarkFolder::bookmarkWithTitle(QString::number(site));
        list->addAutoFolders(); // which are not saved
        root->addChild(list);
        for (int i = 0; i < 10; ++i)
            list->addChild(WayfoldBookmarkNote::bookmarkWithTitleAndNote(QStringLiteral("Milk"), QStringLiteral("a")));
    }
    QVERIFY(root->writeDictionaryFile(_home->path(name)));
    const std::optional<ItemCount::Holding> holding = countIn(_home->path(name));
    QVERIFY(holding);
    QCOMPARE(holding->items, 33);
    QCOMPARE(holding->sites, 3);
}

void ItemCountTest::countsInSlices()
{
    QByteArray sites;
    for (int i = 0; i < 200; ++i)
        sites += folder(note.repeated(100));
    _home->write(name, fileWith(sites));
    ItemCount count(_home->path(name));
    int slices = 1;
    while (!count.advance(0ms)) {
        QVERIFY(!count.holding());
        ++slices;
    }
    QVERIFY2(slices > 100, qPrintable(QString::number(slices)));
    QCOMPARE(count.holding()->items, 20200);
    QCOMPARE(count.holding()->sites, 200);
    QVERIFY(count.advance(0ms)); // and stays so
    QCOMPARE(count.holding()->items, 20200);
}

void ItemCountTest::countsWhatAnotherProgramHasWritten()
{
    for (const char *format : {"FMT_XML", "FMT_BINARY"}) {
        QCOMPARE(
            runPython(*_home, QByteArray("site = {'WebBookmarkType': 'WebBookmarkTypeList', 'Children': [{'Title': "
                                         "'a'}] * 5}\nplistlib.dump({'Children': [site, site, {'Title': 'b'}]}, "
                                         "open('Bookmarks.plist', 'wb'), fmt=plistlib.") +
                                  format + ")\n"),
            QString());
        const std::optional<ItemCount::Holding> holding = countIn(_home->path(name));
        QVERIFY(holding);
        QCOMPARE(holding->items, 13);
        QCOMPARE(holding->sites, 2);
    }
}

void ItemCountTest::cannotBeRead_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("notes");
    QTest::newRow("cut off") << fileWith(note).left(100);
    QTest::newRow("cut off behind the root") << fileWith(note).chopped(10);
    QTest::newRow("an array") << QByteArray("<plist version=\"1.0\"><array/></plist>");
    QTest::newRow("key without value") << QByteArray("<plist version=\"1.0\"><dict><key>a</key></dict></plist>");
    QTest::newRow("value without key") << QByteArray("<plist version=\"1.0\"><dict><array/></dict></plist>");
    QTest::newRow("crossed") << QByteArray(
        "<plist version=\"1.0\"><dict><key>Children</key><array></dict></array></plist>");
}

void ItemCountTest::cannotBeRead()
{
    QFETCH(QByteArray, contents);
    _home->write(name, contents);
    QVERIFY(!countIn(_home->path(name)));
    QVERIFY(!countIn(_home->path(QStringLiteral("missing"))));
    QVERIFY(!countIn(_home->path()));
}

void ItemCountTest::unusualAndLargeIsNotCounted()
{
    QByteArray contents = fileWith(note.repeated(10000));
    contents.replace("<dict>", "<dict >");
    _home->write(name, contents);
    QVERIFY(!countIn(_home->path(name)));
}

QTEST_GUILESS_MAIN(ItemCountTest)
#include "ItemCountTest.moc"
