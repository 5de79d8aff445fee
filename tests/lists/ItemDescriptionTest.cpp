#include "lists/ItemDescription.h"

#include "model/WayfoldBookmarkAutoFolder.h"
#include "tests/lists/ListStage.h"

class ItemDescriptionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void tellsKindAndDestination_data();
    void tellsKindAndDestination();
    void speaksGerman();
};

void ItemDescriptionTest::tellsKindAndDestination_data()
{
    QTest::addColumn<KDRBookmarkPtr>("item");
    QTest::addColumn<QString>("description");
    const auto row = [](const char *name, const KDRBookmarkPtr &item, const char *description) {
        QTest::newRow(name) << item << QString::fromLatin1(description);
    };
    row("folder", ListStage::folder("A"), "Folder");
    row("smart folder", WayfoldAutoFolder::bookmarkWithTitle("A"), "Smart Folder");
    row("link", ListStage::link("A", "http://a.org/b?c"), "Link: http://a.org/b?c");
    row("link without an address", ListStage::link("A", QString()), "Link");
    row("visited page", ListStage::history("A"), "Visited Page: http://www.example.com/visited");
    row("file", ListStage::file("A", "/tmp/a b.txt"), "File: /tmp/a b.txt");
    row("note", ListStage::note("A", "text"), "Note");
    row("mail", ListStage::mail("A", "mailto:ann@a.org,bob?cc=cy&bcc=di&subject=Hello"),
        "Email Link: ann@a.org, bob, cy, di");
    row("mail to nobody", ListStage::mail("A", "mailto:"), "Email Link");
    row("person", ListStage::person("A"), "Person");
    row("organization", ListStage::organization("Kettle works"), "Organization");
    row("group", ListStage::group("A"), "Group");
    row("of no kind", KDRBookmark::bookmarkWithTitle("A"), "");
}

void ItemDescriptionTest::tellsKindAndDestination()
{
    QFETCH(KDRBookmarkPtr, item);
    QVERIFY(item);
    QTEST(ItemDescription::ofItem(*item), "description");
}

void ItemDescriptionTest::speaksGerman()
{
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    QCOMPARE(ItemDescription::ofItem(*ListStage::folder("A")), QStringLiteral("Ordner"));
    QCOMPARE(ItemDescription::ofItem(*ListStage::history("A")),
             QStringLiteral("Besuchte Seite: http://www.example.com/visited"));
}

QTEST_MAIN(ItemDescriptionTest)
#include "ItemDescriptionTest.moc"
