#include "model/UUIDSearch.h"
#include "tests/model/ModelTestSupport.h"
#include "tests/model/history/HistoryReading.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/BinaryPropertyList.h"
#include "tests/support/BytesRead.h"
#include "tests/support/LoggedMessages.h"

#include <QDir>
#include <QStringConverter>
#include <QtTest>

using HistoryReading::Entries;
using HistoryReading::entriesByReader;
using HistoryReading::entriesTheGeneralWay;

namespace
{
const QByteArray head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Some Body//DTD PLIST 1.0//EN\" "
    "\"http://www.example.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n";

QByteArray element(const QByteArray &title, const QByteArray &address, const QByteArray &seconds = "100.5")
{
    return "\t\t<dict>\n\t\t\t<key></key>\n\t\t\t<string>" + address +
           "</string>\n\t\t\t<key>lastVisitedDate</key>\n\t\t\t<string>" + seconds +
           "</string>\n\t\t\t<key>title</key>\n\t\t\t<string>" + title +
           "</string>\n\t\t\t<key>visitCount</key>\n\t\t\t<integer>3</integer>\n\t\t</dict>\n";
}

QByteArray fileOf(const QByteArray &topLevel)
{
    return head + "<dict>\n" + topLevel + "</dict>\n</plist>\n";
}

QByteArray fileWith(const QByteArray &elements)
{
    return fileOf("\t<key>WebHistoryDates</key>\n\t<array>\n" + elements +
                  "\t</array>\n\t<key>WebHistoryFileVersion</key>\n\t<integer>1</integer>\n");
}

QByteArray fileWith(const QList<QByteArray> &elements)
{
    return fileWith(elements.join());
}

// What the tests write into files; what is not an entry is among it.
class Samples
{
public:
    explicit Samples(quint32 seed) : _random(seed) {}

    int below(int limit) { return _random.bounded(limit); }
    template <class Choice>
    auto oneOf(const Choice &choices)
    {
        return choices[std::size_t(below(int(std::size(choices))))];
    }

    QByteArray title()
    {
        static const char *const titles[] = {"News",   "",           "a &amp; b", "&#233;t&#xe9;",    "Caf\xc3\xa9",
                                             "]] > x", "two\nlines", " ",         "\xf0\x9f\x98\x80", "&lt;b&gt;"};
        return titles[below(int(std::size(titles)))] + QByteArray(below(3) ? "" : " ") + QByteArray::number(below(5));
    }
    QByteArray address()
    {
        static const char *const addresses[] = {"http://www.example.com/",
                                                "http://news.example.com/a?b=c&amp;d#e",
                                                "http://example.org",
                                                "no address",
                                                "file:///etc/hosts",
                                                "http://192.168.0.1:8080/x",
                                                "http://www.example.com/%C3%A9",
                                                "http://www.example.com/[x]",
                                                "HTTP://WWW.EXAMPLE.COM/"};
        return addresses[below(int(std::size(addresses)))];
    }
    QByteArray seconds()
    {
        static const char *const times[] = {"100.5", "0", "", "-1", "1e9", "1e99", "tomorrow", " 7", "317000000.25"};
        return times[below(int(std::size(times)))];
    }
    QByteArray oddElement()
    {
        static const char *const odd[] = {
            "<string>no entry</string>",
            "<dict/>",
            "<dict></dict>",
            "<array><dict><key/><string>http://x.example/</string><key>title</key><string>X</string></dict></array>",
            "<integer>7</integer>",
            "<dict><key>title</key><string>no address</string></dict>",
            "<dict><key/><string>http://untitled.example/</string></dict>",
            "<dict><key/><integer>1</integer><key>title</key><string>number for an address</string></dict>",
            "<dict><key/><string>http://n.example/</string><key>title</key><real>1.5</real></dict>",
            "<dict><key/><string>http://d.example/</string><key>title</key><string>Number for a date</string>"
            "<key>lastVisitedDate</key><integer>12</integer></dict>",
            "<dict><key>title</key><string>first</string><key>title</key><string>last</string><key/>"
            "<string>http://twice.example/</string></dict>",
            "<dict><key>title</key><string>first</string><key>title</key><true/><key/>"
            "<string>http://twice.example/</string></dict>",
            "<dict><key></key><string>http://first.example/</string><key/><string>http://last.example/</string>"
            "<key>title</key><string>Two addresses</string></dict>",
            "<dict><key>redirectURLs</key><array><string>http://r.example/</string></array><key/>"
            "<string>http://nested.example/</string><key>title</key><string>Nested</string><key>D</key><dict><key>title"
            "</key><string>inner</string><key/><string>http://inner.example/</string></dict></dict>",
            "<dict><key>when</key><date>2004-02-29T12:34:56Z</date><key>title</key><string>Date</string><key/>"
            "<string>http://date.example/</string></dict>",
            "<dict><key>icon</key><data>\n\tAAEC\n\t/w==\n\t</data><key/><string>http://data.example/</"
            "string><key>title"
            "</key><string>Data</string></dict>",
            "<dict><key>rank</key><real>-1.5e-3</real><key>visitCount</key><integer>18446744073709551615</integer>"
            "<key/><string>http://number.example/</string><key>title</key><string>Numbers</string></dict>",
            "<!-- <dict> --><dict><!-- a --><key>title</key><!-- b --><string>Comments</string><key/>"
            "<string>http://comment.example/</string></dict><!-- c -->",
            "<dict><key>T&#105;tle</key><true/><key>t&#105;tle</key><string>key by number</string><key/>"
            "<string>http://k.example/</string></dict>",
        };
        return odd[below(int(std::size(odd)))];
    }
    QByteArray element() { return below(4) ? ::element(title(), address(), seconds()) : "\t\t" + oddElement() + "\n"; }
    QList<QByteArray> elements(int most)
    {
        QList<QByteArray> list;
        for (int count = below(most + 1); count > 0; --count)
            list.append(element());
        return list;
    }
    QVariant value(int depth)
    {
        switch (below(depth > 0 ? 8 : 6)) {
        case 0:
            return qlonglong(below(1000));
        case 1:
            return below(2) == 0;
        case 2:
            return 1.5;
        case 3:
            return QByteArray("data");
        case 4:
            return QDateTime::fromSecsSinceEpoch(below(2000000000), Qt::UTC);
        case 5:
            return QString::fromUtf8(title());
        case 6:
            return QVariantList{value(depth - 1), value(depth - 1)};
        default:
            return entry(depth - 1);
        }
    }
    QVariantMap entry(int depth)
    {
        QVariantMap entry;
        if (below(10))
            entry.insert("", below(10) ? QVariant(QString::fromUtf8(address())) : value(depth));
        if (below(10))
            entry.insert("title", below(10) ? QVariant(QString::fromUtf8(title())) : value(depth));
        if (below(10))
            entry.insert("lastVisitedDate", below(10) ? QVariant(QString::fromUtf8(seconds())) : value(depth));
        if (below(2))
            entry.insert("D", value(depth));
        return entry;
    }
    QVariantMap file(int most)
    {
        QVariantList entries;
        for (int count = below(most + 1); count > 0; --count)
            entries.append(below(10) ? QVariant(entry(2)) : value(1));
        QVariantMap file = {{"WebHistoryFileVersion", qlonglong(1)}};
        if (below(20))
            file.insert("WebHistoryDates", below(20) ? QVariant(entries) : value(2));
        return file;
    }

    // Damage as a bad disk, or a careless program, does it.
    QByteArray damaged(QByteArray contents)
    {
        static const QByteArray pieces[] = {"&",
                                            "<",
                                            ">",
                                            "\r",
                                            QByteArray(1, '\0'),
                                            "\xff",
                                            "<!-- -->",
                                            "<key/>",
                                            "<key>title</key>",
                                            "<![CDATA[x]]>",
                                            "</dict>",
                                            "<string>",
                                            "&#10;",
                                            "\n"};
        for (int times = 1 + below(3); times > 0 && !contents.isEmpty(); --times) {
            const qsizetype at = below(int(contents.size()));
            switch (below(5)) {
            case 0:
                contents.remove(at, 1 + below(40));
                break;
            case 1:
                contents.insert(at, oneOf(pieces));
                break;
            case 2:
                contents[at] = char(below(256));
                break;
            case 3:
                contents.insert(at, contents.mid(below(int(contents.size())), 1 + below(200)));
                break;
            default:
                contents[at] = char(contents[at] + (below(2) ? 1 : -1));
            }
        }
        return contents;
    }

private:
    QRandomGenerator _random;
};
} // namespace

class HistoryReaderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

    QString path() const { return _home->path("History.plist"); }
    void write(const QByteArray &contents) const
    {
        QFile::remove(path()); // a file that is cut and filled again goes to the disk at once, which takes time
        _home->write("History.plist", contents);
    }
    // Both ways say the same of these contents, and the reader that has read others says the same as a fresh one.
    void checkBothWays(HistoryReader &reader, const QByteArray &contents)
    {
        write(contents);
        const Entries expected = entriesTheGeneralWay(path());
        const Entries fresh = entriesByReader(path());
        const Entries again = entriesByReader(reader, path());
        if (fresh != expected || again != expected)
            QFAIL(contents.toPercentEncoding(" <>\n\t/=\"&;:?").constData());
        _entriesSeen += expected ? int(expected->size()) : 0;
    }
    int _entriesSeen = 0;

private Q_SLOTS:
    void init() { _home = std::make_unique<FreshHome>(); }
    void cleanup() { _home.reset(); }

    void entriesInFileOrder();
    void forms_data();
    void forms();
    void timesTheFileIsRead_data();
    void timesTheFileIsRead();
    void notADictionary_data();
    void notADictionary();
    void missingFile();
    void notAFile();
    void binary();
    void sameInBothForms();
    void generatedFiles();
    void damagedFiles();
    void damagedBinaryFiles();
    void readAgain();
    void readAgainInAnotherForm();
    void readAgainAfterDamage();
    void readAgainFromNothing();
    void readingAgainMakesLittle_data();
    void readingAgainMakesLittle();
    void manyReadings();
    void formerRecordsStayAsTheyWere();
    void clearedHistoryIsForgotten();
};

void HistoryReaderTest::entriesInFileOrder()
{
    write(fileWith(element("Page &amp; more", "http://www.example.com/?a=b&amp;c", "86400.5") +
                   "<string>no entry</string>" + element("", "http://untitled.example/") + element("No address", "") +
                   element("Other", "http://b.example.org/", "0") +
                   element("Page &amp; more", "http://www.example.com/?a=b&amp;c", "86400.5")));
    HistoryReader reader;
    const auto records = reader.read(path());
    QVERIFY(records);
    QCOMPARE(records->count(), 3U);
    QCOMPARE(records->title(0), QString("Page & more"));
    QCOMPARE(records->address(0), QString("http://www.example.com/?a=b&c"));
    QCOMPARE(records->visited(0), qint64(978307200000 + 86400500));
    QCOMPARE(records->siteName(records->site(0)), QString("example.com"));
    QCOMPARE(records->title(1), QString("Other"));
    QCOMPARE(records->title(2), QString("Page & more"));
}

void HistoryReaderTest::forms_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QStringList>("titles");
    const QByteArray a = element("A", "http://a.example/");
    const QByteArray b = element("B", "http://b.example/");
    const QByteArray usual = fileWith(a + b);
    const QStringList both = {"A", "B"};
    const auto row = [](const char *name, const QByteArray &contents, const QStringList &titles) {
        QTest::newRow(name) << contents << titles;
    };
    row("usual", usual, both);
    row("line ends of two characters", QByteArray(usual).replace("\n", "\r\n"), both);
    row("old line ends", QByteArray(usual).replace("\n", "\r"), both);
    row("without line ends", QByteArray(usual).replace("\n", "").replace("\t", ""), both);
    row("byte order mark", "\xef\xbb\xbf" + usual, both);
    row("no declaration", usual.mid(usual.indexOf("<!DOCTYPE")), both);
    row("no document type", "<plist version=\"1.0\">" + usual.mid(usual.indexOf("<dict>")), both);
    row("blanks at the end", usual + "\n\n \t\n", both);
    row("comments", QByteArray(usual).replace("<key>", "<!-- <key> --><key>"), both);
    row("comment in the document", QByteArray(usual).replace("<dict>", "<dict><!-- a comment -->"), both);
    row("instruction", QByteArray(usual).replace("<array>", "<array><?x y?>"), both);
    row("sections", fileWith(element("<![CDATA[A & <b>]]>", "http://a.example/") + b), {"A & <b>", "B"});
    row("entities", fileWith(element("&#65;&amp;&lt;&gt;&quot;&apos;&#x42;", "http://a.example/")), {"A&<>\"'B"});
    row("line end by number", fileWith(element("a&#10;b&#13;c", "http://a.example/")), {"a\nb\rc"});
    row("line end of two characters in a title", fileWith(element("a\r\nb", "http://a.example/")), {"a\nb"});
    row("Latin-1", QByteArray(fileWith(element("Caf\xe9", "http://a.example/"))).replace("UTF-8", "ISO-8859-1"),
        {QString::fromUtf8("Caf\xc3\xa9")});
    row("not in UTF-8", fileWith(element("Caf\xe9", "http://a.example/") + b),
        {QString::fromUtf8("Caf\xef\xbf\xbd"), "B"});
    row("encoding in small letters", QByteArray(usual).replace("UTF-8", "utf-8"), both);
    row("empty key in short", QByteArray(usual).replace("<key></key>", "<key/>"), both);
    row("empty key with a blank", QByteArray(usual).replace("<key></key>", "<key />"), both);
    row("blanks in tags", QByteArray(usual).replace("<string>", "<string >").replace("</dict>", "</dict\n>"), both);
    row("attributes", QByteArray(usual).replace("<array>", "<array note=\"&gt;\">"), both);
    row("empty list", fileWith(""), {});
    row("empty list in short", fileOf("<key>WebHistoryDates</key><array/>"), {});
    row("no list", fileOf(""), {});
    row("empty dictionary in short", head + "<dict/></plist>", {});
    row("list is a text", fileOf("<key>WebHistoryDates</key><string>none</string>"), {});
    row("list is an empty text", fileOf("<key>WebHistoryDates</key><string/>"), {});
    row("list is data", fileOf("<key>WebHistoryDates</key><data>YWJj</data>"), {});
    row("list is a dictionary", fileOf("<key>WebHistoryDates</key><dict><key>a</key>" + a + "</dict>"), {});
    row("list is an entry", fileOf("<key>WebHistoryDates</key>" + a), {});
    row("list in a list", fileWith("<array>" + a + "</array>" + b), {"B"});
    row("list of another key", fileOf("<key>Other</key><array>" + a + "</array>"), {});
    row("list twice",
        fileOf("<key>WebHistoryDates</key><array>" + a + "</array><key>WebHistoryDates</key><array>" + b + "</array>"),
        {"B"});
    row("list, then none",
        fileOf("<key>WebHistoryDates</key><array>" + a + "</array><key>WebHistoryDates</key><true/>"), {});
    row("none, then a list",
        fileOf("<key>WebHistoryDates</key><true/><key>WebHistoryDates</key><array>" + a + "</array>"), {"A"});
    row("list's key by number", fileOf("<key>WebHistory&#68;ates</key><array>" + a + "</array>"), {"A"});
    row("unknown element", fileWith(a + "<entry><a/></entry>" + b), both);
    row("integer that is none", fileWith("<dict><key>visitCount</key><integer>many</integer></dict>" + a), {"A"});
    row("date that is none", fileWith(a + "<dict><key>x</key><date>2004-02-30T12:00:00Z</date></dict>"), {"A"});
    row("title that is none", fileWith(QByteArray(a).replace("<string>A</string>", "<data>?</data>") + b), {"B"});
    const QVariantMap entry{{"", "http://a.example/"}, {"title", "A"}};
    row("binary, date beyond all calendars",
        binaryPropertyList(QVariantMap{{"WebHistoryDates", QVariantList{entry}},
                                       {"x", QDateTime::fromSecsSinceEpoch(1234567890, Qt::UTC)}})
            .replace(QByteArray::fromHex("3341"), QByteArray::fromHex("337f")),
        {"A"});
    row("something before and behind the list",
        fileOf("<key>x</key><dict><key>WebHistoryDates</key><array>" + a +
               "</array></dict><key>WebHistoryDates</key>"
               "<array>" +
               b + "</array><key>y</key><array><real>1.5</real><date>2004-02-29T12:00:00Z</date></array>"),
        {"B"});
    row("number for a title",
        fileWith("<dict><key/><string>http://a.example/</string><key>title</key>"
                 "<integer>5</integer></dict>" +
                 b),
        {"B"});
    row("number for an address", fileWith("<dict><key/><real>1</real><key>title</key><string>A</string></dict>" + b),
        {"B"});
    row("title twice",
        fileWith("<dict><key>title</key><string>A</string><key>title</key><string>C</string><key/>"
                 "<string>http://a.example/</string></dict>"),
        {"C"});
    row("title, then none",
        fileWith("<dict><key>title</key><string>A</string><key>title</key><string/><key/>"
                 "<string>http://a.example/</string></dict>" +
                 b),
        {"B"});
    row("entry in an entry",
        fileWith("<dict><key>x</key>" + a +
                 "<key>title</key><string>C</string><key/>"
                 "<string>http://c.example/</string></dict>"),
        {"C"});
    row("deep in an entry",
        fileWith("<dict><key>x</key>" + QByteArray("<array>").repeated(500) + QByteArray("</array>").repeated(500) +
                 "<key>title</key><string>C</string><key/>"
                 "<string>http://c.example/</string></dict>"),
        {"C"});
    row("long title", fileWith(element(QByteArray("0123456789").repeated(100000), "http://a.example/") + b),
        {QString("0123456789").repeated(100000), "B"});
    row("binary", binaryPropertyList(PropertyList::fromData(usual)), both);
    row("binary, beyond ASCII",
        binaryPropertyList(QVariantMap{
            {"WebHistoryDates", QVariantList{QVariantMap{{"", "http://a.example/"},
                                                         {"title", QString::fromUtf8("\xc3\xa9\xf0\x9f\x98\x80")}}}}}),
        {QString::fromUtf8("\xc3\xa9\xf0\x9f\x98\x80")});
    row("binary, bytes beyond ASCII in its text",
        binaryPropertyList(QVariantMap{{"WebHistoryDates",
                                        QVariantList{QVariantMap{{"", "http://a.example/Cafe"}, {"title", "Cafe"}}}}})
            .replace("Cafe", "Caf\xe9"),
        {QStringLiteral("Caf\ufffd")});
}

void HistoryReaderTest::forms()
{
    QFETCH(QByteArray, contents);
    QFETCH(QStringList, titles);
    HistoryReader reader;
    for (int time = 0; time < 2; ++time) {
        checkBothWays(reader, contents);
        const auto records = reader.read(path());
        QVERIFY(records);
        QStringList read;
        for (unsigned i = 0; i < records->count(); ++i) {
            read.append(records->title(i));
            QVERIFY(records->isWanted(i, UUIDSearch({records->address(i)}))); // found by what it says of itself
        }
        QCOMPARE(read, titles);
    }
}

void HistoryReaderTest::timesTheFileIsRead_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::addColumn<int>("times");
    const auto row = [](const char *name, const QByteArray &value, int times) {
        QTest::newRow(name) << "<dict><key>x</key>" + value + "</dict>" << times;
    };
    row("usual", "<true/>", 1);
    row("date", "<date>2004-02-29T12:34:56Z</date>", 1);
    row("data", "<data>\n\tAAEC\n</data>", 1);
    row("real with an exponent", "<real>1e-3</real>", 1);
    row("real with many digits", "<real>0.30000000000000004440892</real>", 1);
    row("large integer", "<integer>18446744073709551615</integer>", 1);
    row("comment", "<!-- a --><true/>", 1);
    row("line ends of two characters", "\r\n<string>\r\n</string>\r\n", 1);
    // What only the general way reads.
    row("section", "<string><![CDATA[a]]></string>", 2);
    row("instruction", "<?a b?><true/>", 2);
}

// One unusual element, as the last of many.
void HistoryReaderTest::timesTheFileIsRead()
{
    QFETCH(QByteArray, element);
    QFETCH(int, times);
    if (bytesRead() == 0)
        QSKIP("The system does not count what is read.");
    const QByteArray contents = fileWith(::element("A", "http://a.example/").repeated(5000) + element);
    write(contents);
    HistoryReader reader;
    const qint64 before = bytesRead();
    QVERIFY(reader.read(path()));
    QCOMPARE((bytesRead() - before + contents.size() / 2) / contents.size(), times);
}

void HistoryReaderTest::notADictionary_data()
{
    QTest::addColumn<QByteArray>("contents");
    const QByteArray a = element("A", "http://a.example/");
    const QByteArray usual = fileWith(a);
    const auto row = [](const char *name, const QByteArray &contents) { QTest::newRow(name) << contents; };
    const auto utf16 = [&](const char *name) {
        QStringEncoder encode(name, QStringEncoder::Flag::WriteBom);
        return QByteArray(encode(QString::fromUtf8(QByteArray(usual).replace("UTF-8", "UTF-16"))));
    };
    row("empty", "");
    row("text", "hello");
    row("blanks", " \n");
    row("list", head + "<array>" + a + "</array></plist>");
    row("text as the value", head + "<string>x</string></plist>");
    row("two values", head + "<dict/><dict/></plist>");
    row("no value", head + "</plist>");
    row("half", usual.left(usual.size() / 2));
    row("no end", usual.left(usual.lastIndexOf("</plist>")));
    row("text behind", usual + "x");
    row("two bytes a character, little end first", utf16("UTF-16LE"));
    row("two bytes a character, big end first", utf16("UTF-16BE"));
    row("NUL in a title", fileWith(element(QByteArray("a\0b", 3), "http://a.example/")));
    row("declarations of its own", QByteArray(usual).replace("dtd\">", "dtd\" [<!ENTITY e \"x\">]>"));
    row("own entity",
        QByteArray(fileWith(element("&e;", "http://a.example/"))).replace("dtd\">", "dtd\" [<!ENTITY e \"x\">]>"));
    row("unknown entity", fileWith(element("&nbsp;", "http://a.example/")));
    row("unknown entity in a key of no concern", fileOf("<key>&nbsp;</key><true/>"));
    row("value without a key", fileWith("<dict><string>x</string></dict>"));
    row("key without a value", fileWith("<dict><key>title</key></dict>"));
    row("beyond all depths", fileWith(QByteArray("<array>").repeated(2000) + QByteArray("</array>").repeated(2000)));
    row("binary, empty", "bplist00");
    row("binary, another version", "bplist01" + binaryPropertyList(QVariantMap()).mid(8));
    row("binary list", binaryPropertyList(QVariantList{1}));
    row("binary text", binaryPropertyList("x"));
}

void HistoryReaderTest::notADictionary()
{
    QFETCH(QByteArray, contents);
    LoggedMessages log;
    HistoryReader reader;
    checkBothWays(reader, contents);
    QVERIFY(!reader.read(path()));
    QVERIFY(!log.texts().isEmpty());
    // And what was read before makes no difference.
    write(fileWith(element("A", "http://a.example/")));
    QVERIFY(reader.read(path()));
    checkBothWays(reader, contents);
}

void HistoryReaderTest::missingFile()
{
    HistoryReader reader;
    QVERIFY(!reader.read(path()));
    write(fileWith(element("A", "http://a.example/")));
    QCOMPARE(reader.read(path())->count(), 1U);
    QVERIFY(QFile::remove(path()));
    QVERIFY(!reader.read(path()));
    write(fileWith(element("A", "http://a.example/")));
    QCOMPARE(reader.read(path())->count(), 1U);
}

void HistoryReaderTest::notAFile()
{
    LoggedMessages log;
    QVERIFY(QDir().mkpath(path()));
    HistoryReader reader;
    QVERIFY(!reader.read(path()));
    QVERIFY(log.contain("not a plain file"));
}

void HistoryReaderTest::binary()
{
    const auto entry = [](const QString &title, const QString &address) {
        return QVariantMap{{"", address}, {"title", title}, {"lastVisitedDate", "12.5"}, {"visitCount", qlonglong(2)}};
    };
    write(binaryPropertyList(QVariantMap{
        {"WebHistoryDates", QVariantList{entry("A", "http://www.a.example/"), "no entry",
                                         entry("", "http://b.example/"), entry(QString::fromUtf8("\xc3\xa9"), "c")}},
        {"WebHistoryFileVersion", qlonglong(1)}}));
    HistoryReader reader;
    const auto records = reader.read(path());
    QVERIFY(records);
    QCOMPARE(records->count(), 2U);
    QCOMPARE(records->title(0), QString("A"));
    QCOMPARE(records->siteName(records->site(0)), QString("a.example"));
    QCOMPARE(records->visited(0), qint64(978307200000 + 12500));
    QCOMPARE(records->title(1), QString::fromUtf8("\xc3\xa9"));
}

void HistoryReaderTest::sameInBothForms()
{
    Samples samples(3);
    for (int round = 0; round < 100; ++round) {
        const QVariantMap file = samples.file(20);
        write(PropertyList::toXml(file));
        const Entries fromXml = entriesByReader(path());
        write(binaryPropertyList(file));
        QCOMPARE(entriesByReader(path()), fromXml);
    }
}

void HistoryReaderTest::generatedFiles()
{
    Samples samples(4);
    HistoryReader reader;
    for (int round = 0; round < 200; ++round) {
        checkBothWays(reader, fileWith(samples.elements(15)));
        checkBothWays(reader, PropertyList::toXml(samples.file(15)));
        checkBothWays(reader, binaryPropertyList(samples.file(15)));
    }
    QVERIFY(_entriesSeen > 2000);
}

void HistoryReaderTest::damagedFiles()
{
    Samples samples(5);
    LoggedMessages log;
    HistoryReader reader;
    for (int round = 0; round < 1000; ++round)
        checkBothWays(reader, samples.damaged(fileWith(samples.elements(4))));
    QVERIFY(_entriesSeen > 200); // some damage is not to be seen
}

void HistoryReaderTest::damagedBinaryFiles()
{
    Samples samples(6);
    LoggedMessages log;
    HistoryReader reader;
    for (int round = 0; round < 1000; ++round) {
        QByteArray contents = binaryPropertyList(samples.file(4));
        for (int times = 1 + samples.below(3); times > 0; --times)
            contents[samples.below(int(contents.size()))] = char(samples.below(256));
        checkBothWays(reader, contents);
    }
    QVERIFY(_entriesSeen > 200);
}

void HistoryReaderTest::readAgain()
{
    Samples samples(7);
    for (int history = 0; history < 10; ++history) {
        HistoryReader reader;
        QList<QByteArray> elements = samples.elements(60);
        for (int round = 0; round < 20; ++round) {
            checkBothWays(reader, fileWith(elements));
            for (int edits = samples.below(4); edits > 0; --edits) {
                const int at = samples.below(int(elements.size()) + 1);
                const int other = samples.below(int(elements.size()) + 1);
                const bool isThere = at < elements.size();
                switch (samples.below(6)) {
                case 0: // a visit
                    elements.prepend(samples.element());
                    break;
                case 1:
                    elements.insert(at, samples.element());
                    break;
                case 2:
                    elements.remove(at, std::min(samples.below(25), int(elements.size()) - at));
                    break;
                case 3:
                    if (isThere)
                        elements[at] = samples.element();
                    break;
                case 4:
                    if (isThere)
                        elements.move(at, std::min(other, int(elements.size()) - 1));
                    break;
                default:
                    if (isThere)
                        elements.insert(other, elements.at(at));
                }
            }
        }
    }
    QVERIFY(_entriesSeen > 2000);
}

void HistoryReaderTest::readAgainInAnotherForm()
{
    Samples samples(8);
    HistoryReader reader;
    QList<QByteArray> elements = samples.elements(30);
    for (int round = 0; round < 200; ++round) {
        if (samples.below(3) == 0)
            elements.prepend(samples.element());
        if (samples.below(3) == 0 && !elements.isEmpty())
            elements.removeLast();
        const QByteArray plain = fileWith(elements);
        switch (samples.below(4)) {
        case 0:
            checkBothWays(reader, binaryPropertyList(PropertyList::fromData(plain)));
            break;
        case 1:
            checkBothWays(reader, "<?x y?>" + plain.mid(plain.indexOf("<plist")));
            break;
        default:
            checkBothWays(reader, plain);
        }
    }
}

void HistoryReaderTest::readAgainAfterDamage()
{
    Samples samples(9);
    LoggedMessages log;
    HistoryReader reader;
    QList<QByteArray> elements = samples.elements(20);
    for (int round = 0; round < 300; ++round) {
        checkBothWays(reader, samples.damaged(fileWith(elements)));
        checkBothWays(reader, fileWith(elements));
        if (!elements.isEmpty())
            elements[samples.below(int(elements.size()))] = samples.element();
    }
}

void HistoryReaderTest::readAgainFromNothing()
{
    HistoryReader reader;
    checkBothWays(reader, fileWith(""));
    checkBothWays(reader, fileWith(element("A", "http://a.example/")));
    checkBothWays(reader, fileOf(""));
    checkBothWays(reader, fileWith(element("A", "http://a.example/") + element("B", "http://b.example/")));
}

// What belongs to nothing any more is let go at some time, and nothing is lost by it.
void HistoryReaderTest::readingAgainMakesLittle_data()
{
    QTest::addColumn<std::function<QByteArray(const QByteArray &)>>("form");
    using Form = std::function<QByteArray(const QByteArray &)>;
    QTest::newRow("plain") << Form([](const QByteArray &xml) { return xml; });
    QTest::newRow("line ends of two characters")
        << Form([](const QByteArray &xml) { return QByteArray(xml).replace("\n", "\r\n"); });
    QTest::newRow("binary") << Form(
        [](const QByteArray &xml) { return binaryPropertyList(PropertyList::fromData(xml)); });
}

// One visit more, and one that moves to the front: what the reader makes anew is these two.
void HistoryReaderTest::readingAgainMakesLittle()
{
    QFETCH(std::function<QByteArray(const QByteArray &)>, form);
    constexpr int entries = 2000;
    QList<QByteArray> elements;
    for (int i = 0; i < entries; ++i)
        elements.append(element("Title " + QByteArray::number(i), "http://a.example/" + QByteArray::number(i)));
    HistoryReader reader;
    write(form(fileWith(elements)));
    const auto former = reader.read(path());
    elements.move(1000, 0);
    elements.prepend(element("New", "http://b.example/"));
    write(form(fileWith(elements)));
    const std::size_t before = allocationCount;
    const auto present = reader.read(path());
    QVERIFY2(allocationCount - before < entries / 4, qPrintable(QString::number(allocationCount - before)));
    QCOMPARE(present->count(), unsigned(entries) + 1);
    QCOMPARE(present->title(1), QString("Title 1000"));
    for (unsigned i = 0; i < entries; ++i) {
        if (i != 1000)
            QCOMPARE(present->serialNumber(i < 1000 ? i + 2 : i + 1), former->serialNumber(i));
    }
    checkBothWays(reader, form(fileWith(elements)));
}

void HistoryReaderTest::manyReadings()
{
    HistoryReader reader;
    QList<QByteArray> elements;
    for (int i = 0; i < 30; ++i)
        elements.append(element("Title " + QByteArray::number(i), "http://a.example/" + QByteArray::number(i)));
    double mostWaste = 0;
    for (int round = 0; round < 300; ++round) {
        elements.removeLast();
        elements.prepend(
            element("Visit " + QByteArray::number(round), "http://b.example/" + QByteArray::number(round)));
        checkBothWays(reader, fileWith(elements));
        mostWaste = std::max(mostWaste, reader.read(path())->wasted());
    }
    QVERIFY(mostWaste > 0.2);
    QVERIFY(mostWaste < 0.7);
}

void HistoryReaderTest::formerRecordsStayAsTheyWere()
{
    HistoryReader reader;
    write(fileWith(element("A", "http://www.a.example/") + element("B", "http://www.b.example/")));
    const auto former = reader.read(path());
    write(fileWith(element("C", "http://www.c.example/") + element("B", "http://www.b.example/")));
    const auto present = reader.read(path());
    QCOMPARE(former->count(), 2U);
    QCOMPARE(former->title(0), QString("A"));
    QCOMPARE(former->siteName(former->site(0)), QString("a.example"));
    QCOMPARE(present->title(0), QString("C"));
    QCOMPARE(present->title(1), QString("B"));
    QCOMPARE(present->site(1), former->site(1));
}

// Its texts go with the last who shows them.
void HistoryReaderTest::clearedHistoryIsForgotten()
{
    HistoryReader reader;
    write(fileWith(element("A", "http://www.a.example/") + element("B", "http://www.b.example/")));
    auto former = reader.read(path());
    const std::weak_ptr<const void> texts = former->sharedTexts();
    write(fileWith(""));
    QCOMPARE(reader.read(path())->count(), 0U);
    QVERIFY(!texts.expired());
    former.reset();
    QVERIFY(texts.expired());
    // What is left of many is as good as before.
    write(fileWith(element("C", "http://www.c.example/") + element("D", "http://d.example/") +
                   element("E", "http://e.example/")));
    former = reader.read(path());
    write(fileWith(element("D", "http://d.example/", "7")));
    const auto left = reader.read(path());
    QCOMPARE(left->wasted(), 0.0);
    QCOMPARE(left->title(0), QString("D"));
    QCOMPARE(left->siteName(left->site(0)), QString("d.example"));
    checkBothWays(reader, fileWith(element("F", "http://f.example/") + element("D", "http://d.example/", "7")));
}

QTEST_MAIN(HistoryReaderTest)
#include "HistoryReaderTest.moc"
