#include "lists/DroppedData.h"

#include "lists/PasteboardTypes.h"
#include "lists/ScratchpadDrop.h"
#include "tests/lists/AskedData.h"
#include "tests/support/InstalledKinds.h"

#include <QMap>
#include <QtTest>

namespace
{
using Data = QMap<QString, QByteArray>;

QByteArray wide(const QString &text)
{
    return {reinterpret_cast<const char *>(text.utf16()), text.size() * qsizetype(sizeof(char16_t))};
}

void fill(QMimeData &mimeData, const Data &data)
{
    for (auto each = data.cbegin(); each != data.cend(); ++each)
        mimeData.setData(each.key(), each.value());
}
} // namespace

// What other applications offer in a drag, as it was seen, and what it becomes.
class DroppedDataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void chromium_data();
    void chromium() { becomes(); }
    void firefox_data();
    void firefox() { becomes(); }
    void others_data();
    void others() { becomes(); }
    void isAskedForItsAddressesOnce();

private:
    static void addColumns();
    static void becomes();
};

void DroppedDataTest::addColumns()
{
    QTest::addColumn<Data>("data");
    QTest::addColumn<QStringList>("made"); // kind, title, and what is in it
}

void DroppedDataTest::becomes()
{
    QFETCH(Data, data);
    QFETCH(QStringList, made);
    QMimeData mimeData;
    fill(mimeData, data);
    const DroppedData dropped(mimeData);
    QCOMPARE(dropped.offersAnyOf(PasteboardTypes::acceptableDragTypes()), !made.isEmpty());
    const auto root = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("root"));
    ScratchpadDrop drop(root, root, 0);
    QCOMPARE(drop.accept(dropped), !made.isEmpty());
    QStringList found;
    for (const KDRBookmarkPtr &item : root->children())
        found.append(QStringLiteral("%1 %2: %3").arg(int(item->type())).arg(item->title(), item->valueAsString()));
    QCOMPARE(found, made);
}

void DroppedDataTest::chromium_data()
{
    addColumns();
    const QByteArray page = "http://127.0.0.1:8917/second.html";
    const QByteArray picture = "http://127.0.0.1:8917/dot.png";
    const QByteArray origin = "http://127.0.0.1:8917";
    const QByteArray id = "929C4894454CBB8CAECCEB544AAA915D";
    QTest::newRow("a link") << Data{{"text/uri-list", page},
                                    {"text/plain", page},
                                    {"_NETSCAPE_URL", page + "\nThe second page"},
                                    {"chromium/x-renderer-taint", origin},
                                    {"text/html", "<a href=\"" + page + "\">The second page</a>"},
                                    {"chromium/x-drag-id", id}}
                            << QStringList{"2 The second page: http://127.0.0.1:8917/second.html"};
    const QByteArray street = "http://www.example.com/stra%C3%9Fe?q=1&r=%C3%BC#top";
    QTest::newRow("a link beyond ASCII")
        << Data{{"text/uri-list", street},
                {"text/plain", street},
                {"_NETSCAPE_URL", street + "\nStra\xc3\x9f"
                                           "e & Gru\xc3\x9f mit Zeilen"},
                {"text/html", "<a href=\"http://www.example.com/stra%C3%9Fe?q=1&amp;r=%C3%BC#top\">Stra\xc3\x9f"
                              "e &amp; <b>Gru\xc3\x9f</b>\n  mit Zeilen</a>"}}
        << QStringList{QString::fromUtf8("2 Stra\xc3\x9f"
                                         "e & Gru\xc3\x9f mit Zeilen: "
                                         "http://www.example.com/stra%C3%9Fe?q=1&r=%C3%BC#top")};
    QTest::newRow("a link whose text is its address")
        << Data{{"text/uri-list", "https://example.com/"},
                {"text/plain", "https://example.com/"},
                {"_NETSCAPE_URL", "https://example.com/\nhttps://example.com/"}}
        << QStringList{"2 https://example.com/: https://example.com/"};
    QTest::newRow("a link around a picture")
        << Data{{"text/uri-list", page},
                {"text/plain", page},
                {"XdndDirectSave0", "F"},
                {"application/octet-stream", "\x89PNG\r\n\x1a\n"},
                {"text/html", "<img src=\"" + picture + "\" alt=\"A red dot\" width=\"50\" height=\"50\">"}}
        << QStringList{"2 /second.html: http://127.0.0.1:8917/second.html"};
    QTest::newRow("a picture") << Data{{"text/uri-list", picture},
                                       {"text/plain", picture},
                                       {"XdndDirectSave0", "F"},
                                       {"application/octet-stream", "\x89PNG\r\n\x1a\n"},
                                       {"text/html",
                                        "<img src=\"" + picture + "\" alt=\"A red dot\" width=\"50\" height=\"50\">"}}
                               << QStringList{"2 /dot.png: http://127.0.0.1:8917/dot.png"};
    QTest::newRow("a selection") << Data{{"text/plain", "Some \xc3\xbcmlauts."},
                                         {"chromium/x-renderer-taint", origin},
                                         {"text/html", "<div>Some \xc3\xbcmlauts.</div>"}}
                                 << QStringList{QString::fromUtf8("4 Some \xc3\xbcmlauts.: Some \xc3\xbcmlauts.")};
    QTest::newRow("a selection with links")
        << Data{{"text/plain", "First and Second links"},
                {"text/html", "<a href=\"http://127.0.0.1:8917/one.html\">First</a> and "
                              "<a href=\"http://127.0.0.1:8917/two.html\">Second</a> links"}}
        << QStringList{"4 First and Second links: First and Second links"};
    QTest::newRow("a script") << Data{{"text/uri-list", "javascript:document.title='run'"},
                                      {"text/plain", "javascript:document.title='run'"},
                                      {"_NETSCAPE_URL", "javascript:document.title='run'\nRun a script"}}
                              << QStringList{"2 Run a script: javascript:document.title='run'"};
    QTest::newRow("a mail") << Data{{"text/uri-list", "mailto:ann@example.com?subject=Hello"},
                                    {"text/plain", "mailto:ann@example.com?subject=Hello"},
                                    {"_NETSCAPE_URL", "mailto:ann@example.com?subject=Hello\nWrite to Ann"}}
                            << QStringList{"5 Write to Ann: mailto:ann@example.com?subject=Hello"};
    QTest::newRow("the icon beside the address")
        << Data{{"text/uri-list", "http://127.0.0.1:8917/index.html"},
                {"text/plain", "http://127.0.0.1:8917/index.html"},
                {"_NETSCAPE_URL", "http://127.0.0.1:8917/index.html\nIndex of things"}}
        << QStringList{"2 Index of things: http://127.0.0.1:8917/index.html"};
}

void DroppedDataTest::firefox_data()
{
    addColumns();
    const QString page = QStringLiteral("http://127.0.0.1:8917/second.html");
    const QString picture = QStringLiteral("http://127.0.0.1:8917/dot.png");
    const QByteArray meta = "<meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\">";
    QTest::newRow("a link") << Data{{"text/uri-list", page.toUtf8()},
                                    {"_NETSCAPE_URL", page.toUtf8() + "\nThe second page"},
                                    {"text/x-moz-url-data", wide(page)},
                                    {"text/x-moz-url-desc", wide(QStringLiteral("The second page"))},
                                    {"text/_moz_htmlinfo", wide(QStringLiteral("0,0"))},
                                    {"text/html", meta + "<a href=\"" + page.toUtf8() + "\">The second page</a>"},
                                    {"text/plain", page.toUtf8()},
                                    {"text/plain;charset=utf-8", page.toUtf8()}}
                            << QStringList{"2 The second page: http://127.0.0.1:8917/second.html"};
    QTest::newRow("a link around a picture") << Data{{"text/uri-list", page.toUtf8() + "\r\n"},
                                                     {"_NETSCAPE_URL", page.toUtf8() + "\nA red dot"},
                                                     {"text/x-moz-url-data", wide(page)},
                                                     {"text/x-moz-url-desc", wide(QStringLiteral("A red dot"))},
                                                     {"text/plain", page.toUtf8()},
                                                     {"image/png", "\x89PNG\r\n\x1a\n"},
                                                     {"application/x-moz-file-promise-url", wide(picture)}}
                                             << QStringList{"2 A red dot: http://127.0.0.1:8917/second.html"};
    QTest::newRow("a picture") << Data{{"text/uri-list", picture.toUtf8() + "\r\n"},
                                       {"_NETSCAPE_URL", picture.toUtf8() + "\nA red dot"},
                                       {"text/x-moz-url-data", wide(picture)},
                                       {"text/x-moz-url-desc", wide(QStringLiteral("A red dot"))},
                                       {"text/plain", picture.toUtf8()},
                                       {"image/png", "\x89PNG\r\n\x1a\n"},
                                       {"application/x-moz-file-promise-url", wide(picture)}}
                               << QStringList{"2 A red dot: http://127.0.0.1:8917/dot.png"};
    QTest::newRow("a selection") << Data{{"text/_moz_htmlinfo", wide(QStringLiteral("0,0"))},
                                         {"text/html", meta + "Some \xc3\xbcmlauts."},
                                         {"text/plain", "Some \xc3\xbcmlauts."},
                                         {"text/plain;charset=utf-8", "Some \xc3\xbcmlauts."}}
                                 << QStringList{QString::fromUtf8("4 Some \xc3\xbcmlauts.: Some \xc3\xbcmlauts.")};
    // Of a script, the address list and the wide title are all there is.
    const QString script = QStringLiteral("javascript:document.title='run'");
    QTest::newRow("a script") << Data{{"text/uri-list", script.toUtf8()},
                                      {"text/x-moz-url-data", wide(script)},
                                      {"text/x-moz-url-desc", wide(QStringLiteral("Run a script"))},
                                      {"text/plain", script.toUtf8()}}
                              << QStringList{"2 Run a script: javascript:document.title='run'"};
    QTest::newRow("the icon beside the address")
        << Data{{"text/uri-list", "http://127.0.0.1:8917/index.html"},
                {"_NETSCAPE_URL", "http://127.0.0.1:8917/index.html\nIndex of things"},
                {"text/plain", "http://127.0.0.1:8917/index.html"},
                {"text/html", meta + "<a href=\"http://127.0.0.1:8917/index.html\">"
                                     "http://127.0.0.1:8917/index.html</a>"}}
        << QStringList{"2 Index of things: http://127.0.0.1:8917/index.html"};
    QTest::newRow("a tab") << Data{{"application/x-moz-tabbrowser-tab", ""},
                                   {"text/x-moz-text-internal",
                                    wide(QStringLiteral("http://127.0.0.1:8917/index.html"))}}
                           << QStringList{"2 /index.html: http://127.0.0.1:8917/index.html"};
    QTest::newRow("bookmarks") << Data{{"application/x-moz-internal-item-list", ""},
                                       {"text/uri-list", "http://www.example.com/one\r\r\n"
                                                         "http://www.example.com/two\r\r\n"}}
                               << QStringList{"2 /one: http://www.example.com/one",
                                              "2 /two: http://www.example.com/two"};
    QTest::newRow("a folder of one bookmark") << Data{{"text/uri-list", "http://www.example.com/three"},
                                                      {"_NETSCAPE_URL", "http://www.example.com/three\nThree"},
                                                      {"text/plain", "Folder\r\nhttp://www.example.com/three"}}
                                              << QStringList{"2 Three: http://www.example.com/three"};
}

void DroppedDataTest::others_data()
{
    addColumns();
    QTest::newRow("several with their titles")
        << Data{{"text/uri-list", "http://a/b\r\nhttp://a/c\r\n"},
                {"text/x-moz-url", wide(QStringLiteral("http://a/b\nOne\nhttp://a/c\n Two\n"))}}
        << QStringList{"2 One: http://a/b", "2 Two: http://a/c"};
    QTest::newRow("titles that cannot be read")
        << Data{{"text/uri-list", "http://a/b"}, {"text/x-moz-url", "http://a/b\nOne"}}
        << QStringList{"2 /b: http://a/b"};
    QTest::newRow("one title of two that can be read")
        << Data{{"text/uri-list", "http://a/b\r\nhttp://a/c"},
                {"text/x-moz-url", wide(QStringLiteral("http://a/b\nOne\nhttp://[\nTwo"))}}
        << QStringList{"2 /b: http://a/b", "2 /c: http://a/c"};
    QTest::newRow("an odd number of bytes")
        << Data{{"text/x-moz-url", wide(QStringLiteral("http://a/b\nOne")) + 'x'}} << QStringList{"2 One: http://a/b"};
    QTest::newRow("a closing zero") << Data{{"text/x-moz-url",
                                             wide(QStringLiteral("http://a/b\nOne")) + QByteArray(2, '\0')}}
                                    << QStringList{"2 One: http://a/b"};
    QTest::newRow("a mark of the byte order")
        << Data{{"text/x-moz-url", wide(QString(QChar(QChar::ByteOrderMark)) + QStringLiteral("http://a/b\nOne"))}}
        << QStringList{"2 One: http://a/b"};
    QTest::newRow("an address without a title")
        << Data{{"text/x-moz-url", wide(QStringLiteral("http://a/b"))}} << QStringList{"2 /b: http://a/b"};
    QTest::newRow("address and title alone")
        << Data{{"_NETSCAPE_URL", "http://a/b\nOne\nhttp://a/c\nTwo"}} << QStringList{"2 One: http://a/b"};
    QTest::newRow("address without its title")
        << Data{{"_NETSCAPE_URL", "http://a/b"}} << QStringList{"2 /b: http://a/b"};
    QTest::newRow("a text with a colon") << Data{{"text/uri-list", "http://a/b"}, {"text/plain", "Note: mind the gap"}}
                                         << QStringList{"2 Note: mind the gap: http://a/b"};
    QTest::newRow("no address, but words")
        << Data{{"text/uri-list", "b"}, {"text/plain", "words"}} << QStringList{"4 words: words"};
    QTest::newRow("a tab without an address")
        << Data{{"text/x-moz-text-internal", wide(QStringLiteral("words"))}} << QStringList();
    QTest::newRow("files and a link") << Data{{"text/uri-list", "file:///tmp/a\r\nhttp://a/b"}}
                                      << QStringList{"3 /tmp/a: file:///tmp/a", "2 /b: http://a/b"};
    QTest::newRow("a picture alone") << Data{{"image/png", "\x89PNG"}} << QStringList();
}

void DroppedDataTest::isAskedForItsAddressesOnce()
{
    AskedData data;
    fill(data, {{"text/uri-list", "file:///tmp/a\r\nfile:///tmp/b\r\n"}});
    const DroppedData dropped(data);
    QVERIFY(dropped.offers(PasteboardTypes::NSFilenamesPboardType));
    const int asked = data.asked;
    QVERIFY(asked > 0);
    QVERIFY(!dropped.offers(PasteboardTypes::NSURLPboardType));
    QVERIFY(!dropped.offers(PasteboardTypes::WebURLsWithTitles));
    QCOMPARE(dropped.propertyListForType(PasteboardTypes::NSFilenamesPboardType),
             QVariantList({QStringLiteral("/tmp/a"), QStringLiteral("/tmp/b")}));
    QCOMPARE(data.asked, asked);
}

QTEST_GUILESS_MAIN(DroppedDataTest)

#include "DroppedDataTest.moc"
