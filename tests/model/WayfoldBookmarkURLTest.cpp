#include "tests/model/ModelTestSupport.h"

#include "core/settings/WayfoldToolkit.h"
#include "tests/support/FakeHost.h"

#include <QtTest>

class WayfoldBookmarkURLTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

private Q_SLOTS:
    void init();
    void cleanup();

    void newLink();
    void value();
    void kindByAddress_data();
    void kindByAddress();
    void makersOfSubclassesDoNotCheck();
    void tooltip();
    void search_data();
    void search();
    void searchAfterChanges();
    void equality();
    void copy();
    void archive();
    void writesDictionary();
    void writesDictionaryWithoutAddress();
    void readsDictionary();
    void addressUnderTheEmptyKeyIsNotRead();
    void readingGivesFreshIdentifierAndTimestamp();
    void readsValuesOfOtherTypes_data();
    void readsValuesOfOtherTypes();
    void initFromDictionary();
    void siteIcon();
    void siteIconWithoutHost();
    void sharedImage();
    void sharedImageOfOurOwn();
    void noImageWhileIconsAreOff();
    void editViaDialog();
};

void WayfoldBookmarkURLTest::init()
{
    _home = std::make_unique<FreshHome>();
}

void WayfoldBookmarkURLTest::cleanup()
{
    _home.reset();
}

static QVariantMap leafDictionary(const QString &title, const QString &address)
{
    return {{"WebBookmarkType", "WebBookmarkTypeLeaf"},
            {"WebBookmarkUUID", "ID"},
            {"URLString", address},
            {"URIDictionary", QVariantMap{{"title", title}, {"", address}}}};
}

void WayfoldBookmarkURLTest::newLink()
{
    const auto made = WayfoldBookmarkURL::bookmarkWithTitle("Title");
    QCOMPARE(made->title(), "Title");
    QVERIFY(made->url().isNull());
    QVERIFY(made->value().value<Url>().isNull());
    QVERIFY(made->valueAsString().isNull());
    made->initWithTitleAndURL("Other", Url::URLWithString("http://b.example/"));
    QCOMPARE(made->title(), "Other");
    QCOMPARE(made->valueAsString(), "http://b.example/");
    made->init();
    QVERIFY(made->url().isNull());
}

void WayfoldBookmarkURLTest::value()
{
    const auto made = makeLink("Title", "HTTP://A.Example/Path?q=1");
    QCOMPARE(made->value().value<Url>(), Url::URLWithString("HTTP://A.Example/Path?q=1"));
    QCOMPARE(made->valueAsString(), "HTTP://A.Example/Path?q=1");
    made->setValue(QVariant::fromValue(Url::URLWithString("http://b.example/")));
    QCOMPARE(made->valueAsString(), "http://b.example/");
    made->setValue(QStringLiteral("http://c.example/")); // no address, a text
    QCOMPARE(made->valueAsString(), "http://b.example/");
    made->setValue({});
    QVERIFY(made->url().isNull());
}

void WayfoldBookmarkURLTest::kindByAddress_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("type");
    QTest::newRow("web") << "http://a.example/" << 2;
    QTest::newRow("secure web") << "https://a.example/" << 2;
    QTest::newRow("file") << "file:///tmp/a.txt" << 3;
    QTest::newRow("file on localhost") << "file://localhost/tmp/a.txt" << 3;
    QTest::newRow("mail") << "mailto:ann" << 5;
    QTest::newRow("mail in capitals") << "MAILTO:ann" << 2;
    QTest::newRow("mail in mixed case") << "Mailto:ann" << 2;
    QTest::newRow("file in capitals") << "FILE:///tmp/a.txt" << 2;
    QTest::newRow("no scheme") << "a.example/path" << 2;
    QTest::newRow("not an address") << "mailto:ann and bob" << 2;
    QTest::newRow("empty") << "" << 2;
    QTest::newRow("script") << "javascript:void(0)" << 2;
}

void WayfoldBookmarkURLTest::kindByAddress()
{
    QFETCH(QString, address);
    QFETCH(int, type);
    const auto made = WayfoldBookmarkURL::bookmarkWithTitleAndURL("Title", Url::URLWithString(address));
    QCOMPARE(int(made->type()), type);
    QCOMPARE(made->title(), "Title");
    QCOMPARE(made->url(), Url::URLWithString(address));
    const auto read = WayfoldBookmarkURL::bookmarkFromDictionary(leafDictionary("Title", address));
    QCOMPARE(int(read->type()), type);
    QCOMPARE(read->title(), "Title");
    QCOMPARE(read->uuid(), "ID");
    QCOMPARE(read->url(), Url::URLWithString(address));
}

void WayfoldBookmarkURLTest::makersOfSubclassesDoNotCheck()
{
    const Url web = Url::URLWithString("http://a.example/");
    const Url mail = Url::URLWithString("mailto:ann");
    QCOMPARE(int(WayfoldBookmarkFile::bookmarkWithTitleAndURL("T", mail)->type()), 3);
    QCOMPARE(int(WayfoldBookmarkEmail::bookmarkWithTitleAndURL("T", web)->type()), 5);
    QCOMPARE(int(WayfoldHistoryURL::bookmarkWithTitleAndURL("T", mail)->type()), 6);
    QCOMPARE(int(WayfoldBookmarkFile::bookmarkFromDictionary(leafDictionary("T", "mailto:ann"))->type()), 3);
    QCOMPARE(int(WayfoldBookmarkEmail::bookmarkFromDictionary(leafDictionary("T", "http://a.example/"))->type()), 5);
}

void WayfoldBookmarkURLTest::tooltip()
{
    QCOMPARE(makeLink("T", "http://a.example/x%20y")->tooltipText(), "http://a.example/x%20y");
    QVERIFY(WayfoldBookmarkURL::bookmarkWithTitle("T")->tooltipText().isNull());
}

void WayfoldBookmarkURLTest::search_data()
{
    QTest::addColumn<QString>("substring");
    QTest::addColumn<bool>("found");
    QTest::newRow("title") << "titl" << true;
    QTest::newRow("title, other case") << "TITLE" << true;
    QTest::newRow("address") << "example/pa" << true;
    QTest::newRow("address, other case") << "EXAMPLE/PA" << true;
    QTest::newRow("escapes as written") << "%20" << true;
    QTest::newRow("absent") << "absent" << false;
    QTest::newRow("empty") << "" << false;
}

void WayfoldBookmarkURLTest::search()
{
    QFETCH(QString, substring);
    QFETCH(bool, found);
    const auto made = makeLink("Title", "http://a.Example/Path%20");
    QCOMPARE(made->bookmarksWithSubstring(substring).size(), std::size_t(found ? 1 : 0));
    QVERIFY(WayfoldBookmarkURL::bookmarkWithTitle(QString())->bookmarksWithSubstring(substring).empty());
}

void WayfoldBookmarkURLTest::searchAfterChanges()
{
    const auto made = makeLink("first", "http://second.example/");
    const auto isFound = [&](const char *text) { return !made->bookmarksWithSubstring(text).empty(); };
    QVERIFY(isFound("first") && isFound("second"));
    made->setTitle("third");
    QVERIFY(isFound("third") && isFound("second") && !isFound("first"));
    made->setURL(Url::URLWithString("http://fourth.example/"));
    QVERIFY(isFound("third") && isFound("fourth") && !isFound("second"));
    made->setValue({});
    QVERIFY(isFound("third") && !isFound("fourth"));
    made->initFromDictionary(leafDictionary("fifth", "http://sixth.example/"));
    QVERIFY(isFound("fifth") && isFound("sixth") && !isFound("third"));
    made->init();
    QVERIFY(!isFound("fifth") && !isFound("sixth"));
}

void WayfoldBookmarkURLTest::equality()
{
    const auto made = makeLink("Title", "http://a.example/");
    const auto twin = std::static_pointer_cast<WayfoldBookmarkURL>(made->copy());
    QVERIFY(made->isEqual(twin));
    twin->setURL(Url::URLWithString("http://A.example/"));
    QVERIFY(!made->isEqual(twin));
    twin->setURL({});
    QVERIFY(!made->isEqual(twin));
    const auto note = WayfoldBookmarkNote::bookmarkWithTitle("Title");
    note->setUUID(made->uuid());
    QVERIFY(!made->isEqual(note));
}

void WayfoldBookmarkURLTest::copy()
{
    const auto made = makeLink("Title", "http://a.example/");
    const auto twin = made->copy();
    QCOMPARE(twin->valueAsString(), "http://a.example/");
    twin->setValue({});
    QCOMPARE(made->valueAsString(), "http://a.example/");
}

void WayfoldBookmarkURLTest::archive()
{
    QCOMPARE(roundTripThroughArchive(makeLink("Title", "HTTP://a.example/"))->valueAsString(), "HTTP://a.example/");
    QVERIFY(roundTripThroughArchive(WayfoldBookmarkURL::bookmarkWithTitle("T"))->url().isNull());
}

void WayfoldBookmarkURLTest::writesDictionary()
{
    const auto made = makeLink("Title", "http://a.example/");
    const QVariantMap expected{
        {"WebBookmarkType", "WebBookmarkTypeLeaf"},
        {"URLString", "http://a.example/"},
        {"WebBookmarkUUID", made->uuid()},
        {"URIDictionary", QVariantMap{{"title", "Title"}, {"", "http://a.example/"}}},
    };
    QCOMPARE(made->createDictionary(true), expected);
    QCOMPARE(made->createDictionary(false), expected);
}

void WayfoldBookmarkURLTest::writesDictionaryWithoutAddress()
{
    const auto made = WayfoldBookmarkURL::bookmarkWithTitle("Title");
    const QVariantMap dictionary = made->createDictionary(true);
    QCOMPARE(dictionary["URLString"], QVariant(""));
    QVERIFY(!dictionary["URLString"].toString().isNull());
    QCOMPARE(dictionary["URIDictionary"], QVariant(QVariantMap{{"title", "Title"}, {"", ""}}));
}

void WayfoldBookmarkURLTest::readsDictionary()
{
    const auto made = WayfoldBookmarkURL::bookmarkFromDictionary(leafDictionary("Title", "http://a.example/"));
    QCOMPARE(made->title(), "Title");
    QCOMPARE(made->uuid(), "ID");
    QCOMPARE(made->valueAsString(), "http://a.example/");
    QCOMPARE(made->createDictionary(true), leafDictionary("Title", "http://a.example/"));
}

void WayfoldBookmarkURLTest::addressUnderTheEmptyKeyIsNotRead()
{
    QVariantMap dictionary = leafDictionary("Title", "http://a.example/");
    dictionary.remove("URLString");
    QVERIFY(WayfoldBookmarkURL::bookmarkFromDictionary(dictionary)->url().isNull());
    dictionary["URLString"] = "http://b.example/";
    QCOMPARE(WayfoldBookmarkURL::bookmarkFromDictionary(dictionary)->valueAsString(), "http://b.example/");
}

void WayfoldBookmarkURLTest::readingGivesFreshIdentifierAndTimestamp()
{
    QVariantMap dictionary = leafDictionary("Title", "http://a.example/");
    dictionary["WebBookmarkUUID"] = "";
    const auto made = makeLink("Old");
    const QString old = made->uuid();
    made->setTimestamp({});
    made->loadFromDictionary(dictionary);
    QVERIFY(!made->uuid().isEmpty());
    QVERIFY(made->uuid() != old);
    QVERIFY(made->timestamp().isValid());
    dictionary.remove("WebBookmarkUUID");
    made->loadFromDictionary(dictionary);
    QVERIFY(!made->uuid().isEmpty());
}

void WayfoldBookmarkURLTest::readsValuesOfOtherTypes_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("integer") << QVariant(7LL);
    QTest::newRow("real") << QVariant(7.5);
    QTest::newRow("boolean") << QVariant(true);
    QTest::newRow("date") << QVariant(QDateTime::currentDateTimeUtc());
    QTest::newRow("data") << QVariant(QByteArray("http://a.example/"));
    QTest::newRow("list") << QVariant(QVariantList{"http://a.example/"});
    QTest::newRow("dictionary") << QVariant(QVariantMap{{"title", 1}});
    QTest::newRow("nothing") << QVariant();
}

void WayfoldBookmarkURLTest::readsValuesOfOtherTypes()
{
    QFETCH(QVariant, value);
    QVariantMap dictionary = leafDictionary("Title", "http://a.example/");
    dictionary["URLString"] = value;
    QVERIFY(WayfoldBookmarkURL::bookmarkFromDictionary(dictionary)->url().isNull());
    dictionary["URIDictionary"] = QVariantMap{{"title", value}};
    QVERIFY(WayfoldBookmarkURL::bookmarkFromDictionary(dictionary)->title().isNull());
    dictionary["URIDictionary"] = value;
    QVERIFY(WayfoldBookmarkURL::bookmarkFromDictionary(dictionary)->title().isNull());
    dictionary["WebBookmarkUUID"] = value;
    QCOMPARE(WayfoldBookmarkURL::bookmarkFromDictionary(dictionary)->uuid().size(), 36);
}

void WayfoldBookmarkURLTest::initFromDictionary()
{
    const auto made = makeLink("Old");
    made->initFromDictionary(leafDictionary("New", "mailto:ann"));
    QCOMPARE(made->title(), "New");
    QCOMPARE(made->valueAsString(), "mailto:ann");
    QCOMPARE(int(made->type()), 2); // an object does not change its class
}

void WayfoldBookmarkURLTest::siteIcon()
{
    struct Host : FakeHostApplication
    {
        mutable QList<QSize> sizes;
        mutable QStringList addresses;
        QImage siteIconForAddress(const QString &address, const QSize &size) const override
        {
            sizes.append(size);
            addresses.append(address);
            return FakeHostApplication::siteIconForAddress(address, size);
        }
    } host;
    QImage picture(16, 16, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::red);
    host.siteIcons.insert("http://a.example/", picture);
    const QSize pixels = QSize(16, 16) * qGuiApp->devicePixelRatio(); // sharp on every screen
    const auto image = makeLink("T")->imageForCellSize(QSizeF(32, 32));
    QVERIFY(image);
    QCOMPARE(image->cacheMode(), Image::NSImageCacheNever);
    QCOMPARE(image->size(), QSizeF(16, 16));
    QCOMPARE(host.sizes, QList<QSize>{pixels});
    QCOMPARE(host.addresses, QStringList{"http://a.example/"});
    const auto neutral = makeLink("T", "http://unseen.example/")->imageForCellSize(QSizeF(16, 16));
    QVERIFY(neutral); // as every link has without site icons
    WayfoldDefaults::sharedInstance().setShowFavicons(false);
    QCOMPARE(makeLink("T")->imageForCellSize(QSizeF(16, 16)), neutral);
    WayfoldDefaults::sharedInstance().setShowFavicons(true);
    QVERIFY(WayfoldHistoryURL::bookmarkWithTitleAndURL("T", Url::URLWithString("http://a.example/"))
                ->imageForCellSize(QSizeF(16, 16)));
}

void WayfoldBookmarkURLTest::siteIconWithoutHost()
{
    QVERIFY(makeLink("T")->imageForCellSize(QSizeF(16, 16)));
}

void WayfoldBookmarkURLTest::sharedImage()
{
    WayfoldDefaults::sharedInstance().setShowFavicons(false);
    FakeHostApplication host;
    QImage picture(32, 32, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::blue);
    host.images.insert("BookmarkPreferences", picture);
    const auto image = makeLink("T")->imageForCellSize(QSizeF(16, 16));
    QVERIFY(image);
    QCOMPARE(image->cacheMode(), Image::NSImageCacheNever);
    QCOMPARE(makeLink("Other", "http://b.example/")->imageForCellSize(QSizeF(64, 64)), image);
    QCOMPARE(WayfoldHistoryURL::bookmarkWithTitle("H")->imageForCellSize(QSizeF(16, 16)), image);
}

// A host may have none for all links.
void WayfoldBookmarkURLTest::sharedImageOfOurOwn()
{
    WayfoldDefaults::sharedInstance().setShowFavicons(false);
    const FakeHostApplication host;
    const auto image = makeLink("T")->imageForCellSize(QSizeF(16, 16));
    QVERIFY(image);
    QCOMPARE(image->cacheMode(), Image::NSImageCacheNever);
    QCOMPARE(image->size(), QSizeF(16, 16));
    QCOMPARE(makeLink("Other", "http://b.example/")->imageForCellSize(QSizeF(64, 64)), image);
}

void WayfoldBookmarkURLTest::noImageWhileIconsAreOff()
{
    FakeHostApplication host;
    QImage picture(16, 16, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::red);
    host.siteIcons.insert("http://a.example/", picture);
    host.images.insert("BookmarkPreferences", picture);
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QVERIFY(!makeLink("T")->imageForCellSize(QSizeF(16, 16)));
    WayfoldDefaults::sharedInstance().setShowFavicons(false);
    QVERIFY(!makeLink("T")->imageForCellSize(QSizeF(16, 16)));
}

void WayfoldBookmarkURLTest::editViaDialog()
{
    const auto made = makeLink("T");
    QVERIFY(!made->editViaDialog());
    RecordingDialogs dialogs;
    QVERIFY(made->editViaDialog());
    QCOMPARE(dialogs.opened, QStringList{"editURL"});
    QCOMPARE(dialogs.item, made);
    dialogs.accepts = false;
    QVERIFY(!made->editViaDialog());

    // A history entry has the link's.
    const auto entry = WayfoldHistoryURL::bookmarkWithTitleAndURL("H", Url::URLWithString("http://a.example/"));
    dialogs.opened.clear();
    dialogs.accepts = true;
    QVERIFY(entry->editViaDialog());
    QCOMPARE(dialogs.opened, QStringList{"editURL"});
    QCOMPARE(dialogs.item, entry);
}

QTEST_MAIN(WayfoldBookmarkURLTest)
#include "WayfoldBookmarkURLTest.moc"
