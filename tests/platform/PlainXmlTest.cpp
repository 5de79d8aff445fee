#include "platform/files/PlainXml.h"

#include "platform/files/PlainPropertyList.h"
#include "platform/files/PropertyList.h"
#include "platform/files/XmlPropertyListReader.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QTest>

namespace
{
using Tag = PlainXml::Tag;

const QByteArray documentType = "<!DOCTYPE plist PUBLIC \"-//Some Body//DTD PLIST 1.0//EN\" "
                                "\"http://www.example.com/DTDs/PropertyList-1.0.dtd\">";

// Gives its bytes out a few at a time, as a slow disk might.
class Trickle : public QIODevice
{
public:
    explicit Trickle(const QByteArray &contents) : _contents(contents) { open(ReadOnly | Unbuffered); }
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 most) override
    {
        const qint64 length = std::min({most, qint64(3), qint64(_contents.size()) - _at});
        std::copy_n(_contents.constData() + _at, length, data);
        _at += length;
        return length;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray _contents;
    qint64 _at = 0;
};

// A disk that gives up in the middle.
class BrokenDisk : public Trickle
{
public:
    using Trickle::Trickle;

protected:
    qint64 readData(char *data, qint64 most) override
    {
        const qint64 length = Trickle::readData(data, most);
        return length > 0 ? length : -1;
    }
};

// Whether the whole file is read, be it by no more than passing over its value.
bool isTaken(QIODevice &device)
{
    PlainXml xml(device);
    const bool isRead = xml.readProlog() && xml.skipValue(xml.readTag()) && xml.readEpilog();
    return isRead && !xml.failed();
}

bool isTaken(const QByteArray &contents)
{
    QBuffer buffer;
    buffer.setData(contents);
    buffer.open(QIODevice::ReadOnly);
    return isTaken(buffer);
}

QByteArray file(const QByteArray &value)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + documentType + "\n<plist version=\"1.0\">\n" + value +
           "\n</plist>\n";
}

// The text of the one string of a file.
QByteArray textOf(const QByteArray &contents, bool *ok)
{
    QBuffer buffer;
    buffer.setData(contents);
    buffer.open(QIODevice::ReadOnly);
    PlainXml xml(buffer);
    *ok = xml.readProlog();
    const Tag tag = xml.readTag();
    *ok = *ok && (tag == Tag::String || tag == Tag::EmptyString);
    QByteArray text = xml.readText(tag).toByteArray();
    *ok = *ok && xml.readEpilog() && !xml.failed();
    return text;
}

QVariant readTheGeneralWay(const QByteArray &contents)
{
    QBuffer buffer;
    buffer.setData(contents);
    buffer.open(QIODevice::ReadOnly);
    return XmlPropertyListReader(&buffer).read();
}

QVariant readThePlainWay(const QByteArray &contents)
{
    QBuffer buffer;
    buffer.setData(contents);
    buffer.open(QIODevice::ReadOnly);
    return PlainPropertyList(buffer).read();
}

const QByteArray sample = file("<dict>\n\t<key>a</key>\n\t<array>\n\t\t<integer>-12</integer>\n\t\t<real>1.5</real>\n"
                               "\t\t<true/><false/><string/><array/><dict/>\n\t</array>\n\t<key/>\n"
                               "\t<string>x &amp; y &#233; \xc3\xa9</string>\n</dict>");
// With what is rarer in it.
const QByteArray rareSample = file(
    "<!-- \xc3\xa9 <a> & -->\n<dict>\n\t<key>a</key> <!---->\n\t<date>2004-02-29T12:34:56Z</date>\n<!-- b -->\t<key>b"
    "</key>\n\t<data>\n\tAAEC\n\t/w==\n\t</data>\n\t<key>c</key>\n\t<array>\n\t\t<real>-1.5e-3</real>\n\t\t<real>inf"
    "</real>\n\t\t<integer>18446744073709551615</integer>\n\t\t<integer> +0x1F </integer>\n<!-- c\n-->\t</array>\n"
    "</dict>\n<!-- d -->");
} // namespace

class PlainXmlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tags();
    void prologs_data();
    void prologs();
    void epilogs_data();
    void epilogs();
    void texts_data();
    void texts();
    void values_data();
    void values();
    void unreadableTextInAKeyFails();
    void smallPiecesMakeNoDifference();
    void brokenDisk();
    void cutOff();
    void markedBytes();
    void markedBytesBeyondTheWindow();
    void acceptsNothingThatTheGeneralWayReadsOtherwise_data();
    void acceptsNothingThatTheGeneralWayReadsOtherwise();
};

void PlainXmlTest::tags()
{
    QBuffer buffer;
    buffer.setData("<plist version=\"1.0\"> <key> <string>\n<integer>\t<real><date><data><true/><false/><dict><array>"
                   "<key/><string/><dict/><array/></dict></array></plist>");
    buffer.open(QIODevice::ReadOnly);
    PlainXml xml(buffer);
    QVERIFY(xml.readProlog());
    for (const Tag tag : {Tag::Key, Tag::String, Tag::Integer, Tag::Real, Tag::Date, Tag::Data, Tag::True, Tag::False,
                          Tag::Dictionary, Tag::Array, Tag::EmptyKey, Tag::EmptyString, Tag::EmptyDictionary,
                          Tag::EmptyArray, Tag::EndDictionary, Tag::EndArray})
        QCOMPARE(xml.readTag(), tag);
    QVERIFY(!xml.failed());
    QCOMPARE(xml.readTag(), Tag::None);
    QVERIFY(xml.failed());
}

void PlainXmlTest::prologs_data()
{
    QTest::addColumn<QByteArray>("prolog");
    QTest::addColumn<bool>("isTaken");
    const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    const QByteArray root = "<plist version=\"1.0\">";
    QTest::newRow("usual") << declaration + "\n" + documentType + "\n" + root << true;
    QTest::newRow("small letters") << QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>") + root << true;
    QTest::newRow("no declaration") << documentType + root << true;
    QTest::newRow("no document type") << declaration + root << true;
    QTest::newRow("root alone") << root << true;
    QTest::newRow("line ends of two characters") << declaration + "\r\n" + documentType + "\r\n" + root + "\r\n"
                                                 << true;
    QTest::newRow("line end of two characters in a comment") << declaration + "<!-- a\r\nb -->" + root << true;
    QTest::newRow("document type over two lines")
        << declaration + QByteArray(documentType).replace("EN\" \"", "EN\"\n \"") + root << true;
    QTest::newRow("other encoding") << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>") + root << false;
    QTest::newRow("declaration in capitals")
        << QByteArray("<?XML VERSION=\"1.0\" ENCODING=\"UTF-8\"?>") + root << false;
    QTest::newRow("declarations of its own")
        << declaration + "<!DOCTYPE plist PUBLIC \"a\" \"b\" [<!ENTITY x \"y\">]>" + root << false;
    QTest::newRow("unfinished document type") << declaration + "<!DOCTYPE plist PUBLIC \"a\" \"b\"" + root << false;
    QTest::newRow("document type with something else")
        << declaration + "<!DOCTYPE plist PUBLIC \"a\" \"b\" c>" + root << false;
    QTest::newRow("document type without blank") << declaration + "<!DOCTYPE plist PUBLIC \"a\"\"b\">" + root << false;
    QTest::newRow("document type with odd characters")
        << declaration + "<!DOCTYPE plist PUBLIC \"{}\" \"b\">" + root << false;
    QTest::newRow("document type with a less-than")
        << declaration + "<!DOCTYPE plist PUBLIC \"a\" <\"b\">" + root << false;
    QTest::newRow("comments") << "<!--a-->" + documentType + "\n<!--b--> <!----><!--c-->" + root << true;
    QTest::newRow("comment behind the declaration") << declaration + "<!-- hello -->" + root << true;
    QTest::newRow("comment before the declaration") << "<!-- hello -->" + declaration + root << false;
    QTest::newRow("comment that does not end") << declaration + "<!-- hello ->" + root << false;
    QTest::newRow("comment within the document type")
        << declaration + QByteArray(documentType).replace("plist", "plist <!-- -->") + root << false;
    QTest::newRow("no version") << declaration + "<plist>" << false;
    QTest::newRow("other root") << declaration + "<list version=\"1.0\">" << false;
    QTest::newRow("byte order mark") << "\xef\xbb\xbf" + declaration + root << false;
    QTest::newRow("blank first") << " " + declaration + root << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void PlainXmlTest::prologs()
{
    QFETCH(QByteArray, prolog);
    QFETCH(bool, isTaken);
    const QByteArray contents = prolog + "<true/></plist>";
    QCOMPARE(::isTaken(contents), isTaken);
    if (isTaken)
        QCOMPARE(readTheGeneralWay(contents), QVariant(true));
}

void PlainXmlTest::epilogs_data()
{
    QTest::addColumn<QByteArray>("epilog");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("alone") << QByteArray("</plist>") << true;
    QTest::newRow("blanks") << QByteArray(" \n\t</plist>\n\n \t") << true;
    QTest::newRow("line ends of two characters") << QByteArray("\r\n</plist>\r\n") << true;
    QTest::newRow("none") << QByteArray() << false;
    QTest::newRow("other") << QByteArray("</list>") << false;
    QTest::newRow("text behind") << QByteArray("</plist>x") << false;
    QTest::newRow("NUL behind") << QByteArray("</plist>\n\0", 10) << false;
    QTest::newRow("comments") << QByteArray("<!-- a --></plist>\n<!-- b --><!-- c -->\n") << true;
    QTest::newRow("half a comment") << QByteArray("</plist><!-- -") << false;
    QTest::newRow("half the start of a comment") << QByteArray("</plist><!-") << false;
    QTest::newRow("second value") << QByteArray("<true/></plist>") << false;
}

void PlainXmlTest::epilogs()
{
    QFETCH(QByteArray, epilog);
    QFETCH(bool, isTaken);
    const QByteArray contents = "<plist version=\"1.0\"><true/>" + epilog;
    QCOMPARE(::isTaken(contents), isTaken);
    if (isTaken)
        QCOMPARE(readTheGeneralWay(contents), QVariant(true));
}

void PlainXmlTest::texts_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::addColumn<bool>("isTaken");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const QByteArray &element, const QString &text) {
        QTest::newRow(name) << element << true << text;
    };
    const auto refused = [](const char *name, const QByteArray &element) {
        QTest::newRow(name) << element << false << QString();
    };
    row("plain", "<string>hello</string>", "hello");
    row("empty", "<string></string>", "");
    row("empty in short", "<string/>", "");
    row("blanks are kept", "<string> a\n\tb </string>", " a\n\tb ");
    row("beyond ASCII", "<string>\xc3\xa9\xf0\x9f\x98\x80</string>", QStringLiteral("\u00e9\U0001f600"));
    row("byte order mark first", "<string>\xef\xbb\xbf\xc3\xa9</string>", QStringLiteral("\ufeff\u00e9"));
    row("byte order marks alone", "<string>\xef\xbb\xbf\xef\xbb\xbf</string>", QStringLiteral("\ufeff\ufeff"));
    row("byte order mark by number", "<string>&#xFEFF;a</string>", QStringLiteral("\ufeffa"));
    row("entities", "<string>&amp;&lt;&gt;&quot;&apos;</string>", "&<>\"'");
    row("entity of an entity", "<string>&amp;lt;</string>", "&lt;");
    row("by number", "<string>&#65;&#x42;&#xe9;&#x1f600;&#0067;</string>", QStringLiteral("AB\u00e9\U0001f600C"));
    row("brackets", "<string>]] ]&gt; a]]</string>", "]] ]> a]]");
    row("greater-than", "<string>a > b</string>", "a > b");
    row("delete", "<string>a\x7f</string>", "a\x7f");
    refused("unknown entity", "<string>&nbsp;</string>");
    refused("unfinished entity", "<string>&amp</string>");
    refused("lone ampersand", "<string>a & b</string>");
    refused("no number", "<string>&#;</string>");
    refused("no hexadecimal number", "<string>&#x;</string>");
    refused("capital X", "<string>&#X41;</string>");
    refused("sign", "<string>&#-65;</string>");
    refused("half a pair by number", "<string>&#xd800;</string>");
    refused("beyond all characters", "<string>&#x110000;</string>");
    refused("number that is far too large", "<string>&#4294967361;</string>");
    refused("NUL by number", "<string>&#0;</string>");
    refused("no character by number", "<string>&#xffff;</string>");
    refused("NUL", QByteArray("<string>a\0b</string>", 20));
    refused("control character", "<string>\x01</string>");
    row("line end of two characters", "<string>a\r\nb\r\n</string>", "a\nb\n");
    row("old line ends", "<string>\ra\r\rb\n\r</string>", "\na\n\nb\n\n");
    row("line end of two characters and an entity", "<string>&amp;\r\n&#65;\r</string>", "&\nA\n");
    refused("carriage return by number", "<string>a&#13;b</string>");
    refused("not in UTF-8", "<string>\xe9</string>");
    refused("overlong", "<string>\xc0\x80</string>");
    refused("half a pair", "<string>\xed\xa0\x80</string>");
    refused("no character", "<string>\xef\xbf\xbf</string>");
    refused("end of a section", "<string>a]]>b</string>");
    refused("section", "<string><![CDATA[x]]></string>");
    refused("comment", "<string>a<!-- -->b</string>");
    refused("element", "<string><b/></string>");
    refused("not closed", "<string>a");
    refused("closed otherwise", "<string>a</strinG>");
    refused("blank in the end tag", "<string>a</string >");
    refused("attribute", "<string a=\"b\">a</string>");
}

void PlainXmlTest::texts()
{
    QFETCH(QByteArray, element);
    QFETCH(bool, isTaken);
    QFETCH(QString, text);
    bool ok = false;
    const QByteArray read = textOf(file(element), &ok);
    QCOMPARE(ok, isTaken);
    if (!isTaken)
        return;
    QCOMPARE(read, text.toUtf8());
    QCOMPARE(readThePlainWay(file(element)), QVariant(text));
    QCOMPARE(readTheGeneralWay(file(element)), QVariant(text));
}

void PlainXmlTest::values_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("isTaken");
    const auto row = [](const QByteArray &value, bool isTaken) { QTest::newRow(value.left(80)) << value << isTaken; };
    row("<integer>0</integer>", true);
    row("<integer>-123</integer>", true);
    row("<integer>999999999999999999</integer>", true);
    row("<integer>9223372036854775807</integer>", true);
    row("<integer>-9223372036854775808</integer>", true);
    row("<integer>18446744073709551615</integer>", true);
    row("<integer>\n\t+007 </integer>", true);
    row("<integer>-0x1f</integer>", true);
    row("<integer>0XFFFFFFFFFFFFFFFF</integer>", true);
    row("<integer>&#49;2</integer>", true);
    row("<integer></integer>", false);
    row("<integer>-</integer>", false);
    row("<integer>+-1</integer>", false);
    row("<integer>0x</integer>", false);
    row("<integer>1 2</integer>", false);
    row("<integer>\xef\xbb\xbf"
        "1</integer>",
        false);
    row("<integer>1.0</integer>", false);
    row("<integer>-9223372036854775809</integer>", false);
    row("<integer>18446744073709551616</integer>", false);
    row("<integer>99999999999999999999</integer>", false);
    row("<integer/>", false);
    row("<integer>1<!-- -->2</integer>", false);
    row("<real>1</real>", true);
    row("<real>-1.25</real>", true);
    row("<real>1.</real>", true);
    row("<real>.5</real>", true);
    row("<real>+1.5e-300</real>", true);
    row("<real>2E5</real>", true);
    row("<real>0.30000000000000004440892098500626</real>", true);
    row("<real> 1 </real>", true);
    row("<real>-0.0</real>", true);
    row("<real>nan</real>", true);
    row("<real>-Infinity</real>", true);
    row("<real></real>", false);
    row("<real>1.2.3</real>", false);
    row("<real>1,5</real>", false);
    row("<real>-</real>", false);
    row("<real>x</real>", false);
    row("<true></true>", false);
    row("<date>2004-02-29T23:59:59Z</date>", true);
    row("<date>\n\t0001-01-01T00:00:00Z </date>", true);
    row("<date>9999-12-31T00:00:00Z</date>", true);
    row("<date>2004-02-30T00:00:00Z</date>", false);
    row("<date>2004-02-29T24:00:00Z</date>", false);
    row("<date>2004-02-29T12:00:60Z</date>", false);
    row("<date>0000-02-01T00:00:00Z</date>", false);
    row("<date>2004-02-01T00:00:00</date>", false);
    row("<date>2004-2-1T00:00:00Z</date>", false);
    row("<date>2004-02-01 00:00:00Z</date>", false);
    row("<date>2004-02-01T00:00:00Z0</date>", false);
    row("<date>-004-02-01T00:00:00Z</date>", false);
    row("<date>--004-02-01T00:00:00Z</date>", false);
    row("<date></date>", false);
    row("<data>AAEC/w==</data>", true);
    row("<data>\n\tAA EC\n\t/w==\n</data>", true);
    row("<data></data>", true);
    row("<data>AAEC/w</data>", true);
    row("<data>&</data>", false);
    row("<data>A*EC</data>", false);
    row("<data>AAEC\r\n</data>", true);
    row("<integer>7\r\n</integer>", true);
    row("<dict><key>a</key><true/><key/><false/></dict>", true);
    row("<dict><key>a</key></dict>", false);
    row("<dict><true/></dict>", false);
    row("<dict><key>a</key><key>b</key></dict>", false);
    row("<dict></array>", false);
    row("<array></dict>", false);
    row("<array><key>a</key></array>", false);
    row("<array><true/>text</array>", false);
    row("<array><true/><array/><dict/><string/></array>", true);
    row("<dict><!--a--><key>a</key><!--b--><true/><!--c--></dict>", true);
    row("<array><!-- </array> -->\n<!----><true/></array>", true);
    row("<array><!--" + QByteArray("long ").repeated(200000) + "--><true/></array>", true);
    row("<!--a--><true/><!--b-->", true);
    row("<array><!-- a -- b --><true/></array>", false);
    row("<array><!-- a ---><true/></array>", false);
    row("<array><!--><true/></array>", false);
    row("<array><!-- \xff --><true/></array>", false);
    row("<array><!-- \x01 --><true/></array>", false);
    row("<array><!- a --><true/></array>", false);
    row("<array><![CDATA[ ]]><true/></array>", false);
    row("</array>", false);
    row("<key>a</key>", false);
    row("<set/>", false);
    row("", false);
    for (const bool isTaken : {true, false}) {
        const int depth = PlainXml::greatestDepth + (isTaken ? 1 : 2); // the outermost is not deep at all
        row(QByteArray("<array>").repeated(depth) + QByteArray("</array>").repeated(depth), isTaken);
        row(QByteArray("<dict><key>a</key>").repeated(depth - 1) + "<true/>" +
                QByteArray("</dict>").repeated(depth - 1),
            isTaken);
    }
    row(QByteArray("<array>").repeated(5000) + QByteArray("</array>").repeated(5000), false);
    row(QByteArray("<array>").repeated(200000), false);
}

void PlainXmlTest::values()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, isTaken);
    QCOMPARE(::isTaken(file(value)), isTaken);
    const QVariant read = readThePlainWay(file(value));
    QCOMPARE(read.isValid(), isTaken);
    if (isTaken)
        QCOMPARE(PropertyList::toXml(read), PropertyList::toXml(readTheGeneralWay(file(value))));
}

void PlainXmlTest::unreadableTextInAKeyFails()
{
    QVERIFY(isTaken(file("<dict><key>a&amp;</key><true/></dict>")));
    QVERIFY(!isTaken(file("<dict><key>a&b;</key><true/></dict>")));
    QVERIFY(!isTaken(file("<dict><key>\xff</key><array/></dict>")));
    // Nothing follows a failure.
    QBuffer buffer;
    buffer.setData(file("<dict><key>&b;</key><true/></dict>"));
    buffer.open(QIODevice::ReadOnly);
    PlainXml xml(buffer);
    QVERIFY(xml.readProlog());
    QCOMPARE(xml.readTag(), Tag::Dictionary);
    QCOMPARE(xml.readTag(), Tag::Key);
    QVERIFY(xml.readText(Tag::Key).isEmpty());
    QCOMPARE(xml.readTag(), Tag::None);
    QVERIFY(!xml.readEpilog());
}

void PlainXmlTest::smallPiecesMakeNoDifference()
{
    for (const QByteArray &contents : {sample, rareSample}) {
        QVERIFY(isTaken(contents));
        Trickle trickle(contents);
        QVERIFY(isTaken(trickle));
    }
}

void PlainXmlTest::brokenDisk()
{
    BrokenDisk whole(sample);
    QVERIFY(!isTaken(whole)); // it may have been about to say more
    BrokenDisk half(sample.left(sample.size() / 2));
    QVERIFY(!isTaken(half));
}

void PlainXmlTest::cutOff()
{
    const qsizetype end = sample.lastIndexOf('>');
    for (qsizetype length = 0; length <= end; ++length)
        QVERIFY2(!isTaken(sample.left(length)), QByteArray::number(length));
    QVERIFY(isTaken(sample.left(end + 1)));
    for (qsizetype length = 0; length < rareSample.lastIndexOf('>'); ++length)
        QVERIFY2(!isTaken(rareSample.left(length)), QByteArray::number(length));
}

void PlainXmlTest::markedBytes()
{
    Trickle trickle("<plist version=\"1.0\"><array> <string>a&amp;</string>\n<true/></array></plist>");
    PlainXml xml(trickle);
    QVERIFY(xml.readProlog());
    QCOMPARE(xml.readTag(), Tag::Array);
    xml.mark();
    QVERIFY(xml.skipValue(xml.readTag()));
    QCOMPARE(xml.markedBytes().toByteArray(), QByteArray(" <string>a&amp;</string>"));
    QCOMPARE(xml.peek(8).toByteArray(), QByteArray("\n<true/>"));
    xml.mark();
    xml.pass(8);
    QCOMPARE(xml.markedBytes().toByteArray(), QByteArray("\n<true/>"));
    xml.unmark();
    QCOMPARE(xml.readTag(), Tag::EndArray);
    QVERIFY(xml.readEpilog());
    QVERIFY(xml.peek(100).isEmpty());
    QVERIFY(!xml.failed());
}

void PlainXmlTest::markedBytesBeyondTheWindow()
{
    const QByteArray element = "<string>" + QByteArray("0123456789").repeated(200000) + "</string>";
    QBuffer buffer;
    buffer.setData("<plist version=\"1.0\">" + element + "</plist>");
    buffer.open(QIODevice::ReadOnly);
    PlainXml xml(buffer);
    QVERIFY(xml.readProlog());
    xml.mark();
    QVERIFY(xml.skipValue(xml.readTag()));
    QCOMPARE(xml.markedBytes().toByteArray(), element);
    xml.unmark();
    QVERIFY(xml.readEpilog());
}

void PlainXmlTest::acceptsNothingThatTheGeneralWayReadsOtherwise_data()
{
    QTest::addColumn<QByteArray>("sample");
    QTest::newRow("usual") << sample;
    QTest::newRow("with what is rarer") << rareSample;
}

void PlainXmlTest::acceptsNothingThatTheGeneralWayReadsOtherwise()
{
    QFETCH(QByteArray, sample);
    QRandomGenerator random(1);
    const QByteArray pieces[] = {"&",  "<", ">",     "]]>",  "\r",         "\xff", "</string>", "<true/>",
                                 "\"", " ", "<key>", "&#9;", "-",          "--",   "<!--",      "-->",
                                 "e",  "+", "0",     "=",    "<!-- - -->", "x",    "T",         "."};
    int taken = 0;
    for (int round = 0; round < 5000; ++round) {
        QByteArray contents = sample;
        const qsizetype at = random.bounded(int(contents.size()));
        switch (random.bounded(4)) {
        case 0:
            contents.remove(at, random.bounded(1, 20));
            break;
        case 1:
            contents.insert(at, pieces[random.bounded(int(std::size(pieces)))]);
            break;
        case 2:
            contents[at] = char(random.bounded(256));
            break;
        default:
            contents.insert(at, sample.mid(random.bounded(int(sample.size())), random.bounded(1, 30)));
        }
        const QVariant plain = readThePlainWay(contents);
        QVERIFY2(!plain.isValid() || isTaken(contents), contents);
        if (!isTaken(contents))
            continue;
        ++taken;
        const QVariant general = readTheGeneralWay(contents);
        QVERIFY2(general.isValid(), contents);
        QVERIFY2(!plain.isValid() || PropertyList::toXml(plain) == PropertyList::toXml(general), contents);
    }
    QVERIFY(taken > 300); // a good deal of them is harmless
}

QTEST_APPLESS_MAIN(PlainXmlTest)
#include "PlainXmlTest.moc"
