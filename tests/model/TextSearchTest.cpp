#include "model/TextSearch.h"
#include "platform/base/StringRules.h"

#include <QRandomGenerator>
#include <QTest>

class TextSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void finds_data();
    void finds();
    void keepsItsText();
    void searchFormsAnswerTheSame();
    void searchFormOfPiecesIsThatOfTheirTexts();
};

void TextSearchTest::finds_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<bool>("isFound");
    const auto row = [](const char *name, const QString &text, const QString &wanted, bool isFound) {
        QTest::newRow(name) << text << wanted << isFound;
    };
    row("whole", "example", "example", true);
    row("front", "example", "exa", true);
    row("middle", "example", "xamp", true);
    row("end", "example", "ple", true);
    row("other case", "ExAmPlE", "XaMp", true);
    row("longer", "example", "examples", false);
    row("not there", "example", "y", false);
    row("nothing wanted", "example", "", false);
    row("none wanted", "example", QString(), false);
    row("no text", "", "a", false);
    row("none", QString(), "a", false);
    row("nothing in nothing", "", "", false);
    row("accented", QString::fromUtf8("Caf\xc3\x89"), QString::fromUtf8("caf\xc3\xa9"), true);
    row("accented, spelled in two ways", QString::fromUtf8("Cafe\xcc\x81"), QString::fromUtf8("\xc3\xa9"), true);
    row("bare letter in an accented one", QString::fromUtf8("cafe\xcc\x81"), "cafe", false);
    row("sharp s", QString::fromUtf8("STRASSE"), QString::fromUtf8("stra\xc3\x9f"), true);
    row("beyond the first plane", QString::fromUtf8("a\xf0\x9f\x98\x80z"), QString::fromUtf8("\xf0\x9f\x98\x80"), true);
    row("Greek", QString::fromUtf8("\xce\xa3\xce\x9f\xce\xa6\xce\x9f\xce\xa3"), QString::fromUtf8("\xcf\x83\xce\xbf"),
        true);
    row("first hit has a mark, second has none", QString::fromUtf8("e\xcc\x81 e"), "e", true);
    row("a byte of another letter", QString::fromUtf8("\xc3\xa9"), QString::fromUtf8("\xc2\xa9"), false);
}

void TextSearchTest::finds()
{
    QFETCH(QString, text);
    QFETCH(QString, wanted);
    QFETCH(bool, isFound);
    const TextSearch search(wanted);
    QCOMPARE(search.isFoundIn(text), isFound);
    QCOMPARE(search.isFoundInSearchForm(StringRules::searchForm(text)), isFound);
}

void TextSearchTest::keepsItsText()
{
    QCOMPARE(TextSearch("ABC").text(), QString("ABC"));
    QVERIFY(TextSearch(QString()).text().isNull());
}

namespace
{
QString randomText(QRandomGenerator &random, int most)
{
    static const char32_t letters[] = {U'a',   U'A',    U'b',   U'e',   U'E',    U's',   U' ',  0x301,
                                       0xe9,   0xc9,    0xdf,   0x130,  0x131,   0x3c3,  0x3c2, 0x3a3,
                                       0xfb01, 0x1f600, 0x1e9e, 0x212b, 0x10400, 0x10428};
    QString text = QString::fromLatin1("");
    for (int length = random.bounded(most + 1); length > 0; --length) {
        const char32_t letter = letters[random.bounded(int(std::size(letters)))];
        text += QString::fromUcs4(&letter, 1);
    }
    return text;
}
} // namespace

void TextSearchTest::searchFormsAnswerTheSame()
{
    QRandomGenerator random(7);
    int found = 0;
    for (int round = 0; round < 10000; ++round) {
        const QString text = randomText(random, 8);
        const QString wanted = randomText(random, 3);
        const TextSearch search(wanted);
        const bool isFound = search.isFoundIn(text);
        found += isFound;
        QVERIFY2(search.isFoundInSearchForm(StringRules::searchForm(text)) == isFound,
                 qPrintable(text + " / " + wanted));
    }
    QVERIFY(found > 300);
}

void TextSearchTest::searchFormOfPiecesIsThatOfTheirTexts()
{
    QRandomGenerator random(8);
    for (int round = 0; round < 5000; ++round) {
        const QString text = randomText(random, 8);
        QByteArray form = "before";
        StringRules::appendSearchForm(text.toUtf8(), form);
        QCOMPARE(form, "before" + StringRules::searchForm(text));
    }
}

QTEST_APPLESS_MAIN(TextSearchTest)
#include "TextSearchTest.moc"
