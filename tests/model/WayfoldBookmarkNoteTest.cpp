#include "tests/model/ModelTestSupport.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/files/PropertyList.h"

#include <QtTest>

class WayfoldBookmarkNoteTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

private Q_SLOTS:
    void init();
    void cleanup();

    void makers();
    void value();
    void longTextIsCut_data();
    void longTextIsCut();
    void textIsCutWhicheverWayItComesIn();
    void tooltip();
    void noHalfCharacterIsLeft();
    void equality();
    void archive();
    void search();
    void writesDictionary();
    void readsDictionary();
    void readsValuesOfOtherTypes();
    void image();
    void newViaDialog();
    void titleInTheUsersLanguage();
    void editViaDialog();
};

void WayfoldBookmarkNoteTest::init()
{
    _home = std::make_unique<FreshHome>();
}

void WayfoldBookmarkNoteTest::cleanup()
{
    _home.reset();
}

static WayfoldBookmarkNotePtr note(const QString &text)
{
    return WayfoldBookmarkNote::bookmarkWithTitleAndNote("Title", text);
}

void WayfoldBookmarkNoteTest::makers()
{
    const auto untold = WayfoldBookmarkNote::bookmarkWithTitle("Title");
    QCOMPARE(untold->title(), "Title");
    QVERIFY(untold->valueAsString().isNull());
    QVERIFY(untold->tooltipText().isNull());
    QCOMPARE(note("Text")->title(), "Title");
    QCOMPARE(note("Text")->valueAsString(), "Text");
    untold->initWithTitleAndNote("Other", "More");
    QCOMPARE(untold->title(), "Other");
    QCOMPARE(untold->valueAsString(), "More");
    untold->init();
    QVERIFY(untold->valueAsString().isNull());
}

void WayfoldBookmarkNoteTest::value()
{
    const auto made = note("Text");
    QCOMPARE(made->value(), QVariant("Text"));
    made->setValue(QStringLiteral("Other"));
    QCOMPARE(made->valueAsString(), "Other");
    made->setValue(QStringLiteral(""));
    QVERIFY(made->valueAsString().isEmpty() && !made->valueAsString().isNull());
    made->setValue(QStringLiteral("Kept"));
    made->setValue(7);
    QCOMPARE(made->valueAsString(), "Kept");
    made->setValue({});
    QVERIFY(made->valueAsString().isNull());
}

void WayfoldBookmarkNoteTest::longTextIsCut_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("kept");
    QTest::newRow("short") << 5 << 5;
    QTest::newRow("one below") << 32767 << 32767;
    QTest::newRow("just fits") << 32768 << 32768;
    QTest::newRow("one above") << 32769 << 32768;
    QTest::newRow("forty thousand") << 40000 << 32768;
}

void WayfoldBookmarkNoteTest::longTextIsCut()
{
    QFETCH(int, length);
    QFETCH(int, kept);
    const auto made = note(QString(length - 1, 'a') + 'b');
    QCOMPARE(made->valueAsString().size(), kept);
    QCOMPARE(made->valueAsString().endsWith('b'), kept == length);
}

void WayfoldBookmarkNoteTest::textIsCutWhicheverWayItComesIn()
{
    const QString text(40000, 'a');
    const auto made = note("");
    made->setValue(text);
    QCOMPARE(made->valueAsString().size(), 32768);
    made->initWithTitleAndNote("T", text);
    QCOMPARE(made->valueAsString().size(), 32768);
    QCOMPARE(made->copy()->valueAsString().size(), 32768);
    QVariantMap dictionary = made->createDictionary(true);
    QCOMPARE(dictionary["Note"].toString().size(), 32768);
    dictionary["Note"] = text;
    QCOMPARE(WayfoldBookmarkNote::bookmarkFromDictionary(dictionary)->valueAsString().size(), 32768);
}

void WayfoldBookmarkNoteTest::tooltip()
{
    QCOMPARE(note("Text")->tooltipText(), "Text");
    QCOMPARE(note(QString(2048, 'a'))->tooltipText().size(), 2048);
    QCOMPARE(note(QString(2049, 'a'))->tooltipText().size(), 2048);
    QCOMPARE(note(QString(40000, 'a'))->tooltipText().size(), 2048);
}

void WayfoldBookmarkNoteTest::noHalfCharacterIsLeft()
{
    const QString smile = QString::fromUtf8("😀");
    QCOMPARE(smile.size(), 2);
    QCOMPARE(note(QString(32767, 'a') + smile)->valueAsString(), QString(32767, 'a'));
    QCOMPARE(note(QString(32766, 'a') + smile + 'b')->valueAsString(), QString(32766, 'a') + smile);
    QCOMPARE(note(QString(2047, 'a') + smile)->tooltipText(), QString(2047, 'a'));
}

void WayfoldBookmarkNoteTest::equality()
{
    const auto made = note("Text");
    const auto twin = made->copy();
    QVERIFY(made->isEqual(twin));
    twin->setValue(QStringLiteral("text"));
    QVERIFY(!made->isEqual(twin));
    const auto untold = WayfoldBookmarkNote::bookmarkWithTitle("Title");
    const auto empty = untold->copy();
    QVERIFY(untold->isEqual(empty));
    empty->setValue(QStringLiteral(""));
    QVERIFY(!untold->isEqual(empty));
}

void WayfoldBookmarkNoteTest::archive()
{
    QCOMPARE(roundTripThroughArchive(note("Two\nlines"))->valueAsString(), "Two\nlines");
    QVERIFY(roundTripThroughArchive(WayfoldBookmarkNote::bookmarkWithTitle("T"))->valueAsString().isNull());

    // The limit holds on this way in as well.
    const QVariantMap archive{{"$class", "WayfoldBookmarkNote"}, {"_noteText", QString(40000, u'a')}};
    const auto decoded = KeyedUnarchiver::unarchiveObjectWithData(PropertyList::toXml(archive));
    const auto cut = std::dynamic_pointer_cast<WayfoldBookmarkNote>(decoded);
    QVERIFY(cut);
    QCOMPARE(cut->valueAsString(), QString(32768, u'a'));
}

void WayfoldBookmarkNoteTest::search()
{
    // By title only.
    QCOMPARE(note("Text")->bookmarksWithSubstring("title").size(), std::size_t(1));
    QVERIFY(note("Text")->bookmarksWithSubstring("Text").empty());
}

void WayfoldBookmarkNoteTest::writesDictionary()
{
    const auto made = note("Text");
    const QVariantMap expected{
        {"WebBookmarkType", "WebBookmarkTypeNote"},
        {"Note", "Text"},
        {"WebBookmarkUUID", made->uuid()},
        {"URIDictionary", QVariantMap{{"title", "Title"}, {"", ""}}},
    };
    QCOMPARE(made->createDictionary(true), expected);
    QCOMPARE(made->createDictionary(false), expected);
    const QVariant none = WayfoldBookmarkNote::bookmarkWithTitle("T")->createDictionary(true)["Note"];
    QCOMPARE(none, QVariant(""));
    QVERIFY(!none.toString().isNull());
}

void WayfoldBookmarkNoteTest::readsDictionary()
{
    const QVariantMap dictionary{
        {"Note", "Text"}, {"WebBookmarkUUID", "ID"}, {"URIDictionary", QVariantMap{{"title", "Title"}}}};
    const auto made = WayfoldBookmarkNote::bookmarkFromDictionary(dictionary);
    QCOMPARE(made->title(), "Title");
    QCOMPARE(made->valueAsString(), "Text");
    QCOMPARE(made->uuid(), "ID");
    // An empty identifier is none.
    QVariantMap withoutIdentifier = dictionary;
    withoutIdentifier["WebBookmarkUUID"] = "";
    QCOMPARE(WayfoldBookmarkNote::bookmarkFromDictionary(withoutIdentifier)->uuid().size(), 36);
    made->loadFromDictionary(withoutIdentifier);
    QCOMPARE(made->uuid().size(), 36);

    made->initFromDictionary({});
    QVERIFY(made->title().isNull());
    QVERIFY(made->valueAsString().isNull());
    QCOMPARE(made->uuid().size(), 36);
}

void WayfoldBookmarkNoteTest::readsValuesOfOtherTypes()
{
    for (const QVariant &value : QVariantList{7, 7.5, true, QByteArray("Text"), QVariantList{"Text"},
                                              QVariantMap{{"title", 1}}, QDateTime::currentDateTimeUtc()}) {
        const auto made = WayfoldBookmarkNote::bookmarkFromDictionary(
            {{"Note", value}, {"WebBookmarkUUID", value}, {"URIDictionary", value}});
        QVERIFY(made->title().isNull());
        QVERIFY(made->valueAsString().isNull());
        QCOMPARE(made->uuid().size(), 36);
    }
}

void WayfoldBookmarkNoteTest::image()
{
    const auto made = note("Text");
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QVERIFY(!made->imageForCellSize(QSizeF(16, 16)));
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(true);
    const auto image = made->imageForCellSize(QSizeF(16, 16));
    QVERIFY(image);
    QCOMPARE(image->cacheMode(), Image::NSImageCacheNever);
    QCOMPARE(pictureOf(image), pictureOf(WayfoldToolkit::loadImageNamed("WayfoldBookmarkImageNote")));
    QCOMPARE(note("Other")->imageForCellSize(QSizeF(64, 64)), image);
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QCOMPARE(made->imageForCellSize(QSizeF(16, 16)), image);
}

void WayfoldBookmarkNoteTest::newViaDialog()
{
    QVERIFY(!WayfoldBookmarkNote::newViaDialog());
    RecordingDialogs dialogs;
    const auto made = WayfoldBookmarkNote::newViaDialog();
    QVERIFY(made);
    QCOMPARE(made->title(), "Untitled Note");
    QVERIFY(made->valueAsString().isEmpty() && !made->valueAsString().isNull());
    QCOMPARE(dialogs.opened, QStringList{"newNote"});
    QCOMPARE(dialogs.item, made);
    dialogs.accepts = false;
    QVERIFY(!WayfoldBookmarkNote::newViaDialog());
}

void WayfoldBookmarkNoteTest::titleInTheUsersLanguage()
{
    const UserLanguage german("de_DE");
    RecordingDialogs dialogs;
    QCOMPARE(WayfoldBookmarkNote::newViaDialog()->title(), "Notiz ohne Titel");
}

void WayfoldBookmarkNoteTest::editViaDialog()
{
    const auto made = note("Text");
    QVERIFY(!made->editViaDialog());
    RecordingDialogs dialogs;
    QVERIFY(made->editViaDialog());
    QCOMPARE(dialogs.opened, QStringList{"editNote"});
    QCOMPARE(dialogs.item, made);

    const KDRBookmarkPtr before = made->copy();
    dialogs.accepts = false;
    QVERIFY(!made->editViaDialog());
    QVERIFY(made->isEqual(before));
}

QTEST_MAIN(WayfoldBookmarkNoteTest)
#include "WayfoldBookmarkNoteTest.moc"
