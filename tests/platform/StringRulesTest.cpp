#include "platform/base/StringRules.h"

#include <QTest>
#include <limits>

class StringRulesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void containsIgnoringCase_data();
    void containsIgnoringCase();
    void searchFormOfUtf8IsThatOfTheText();
    void findsAtEveryPlace();
    void fromUtf8_data();
    void fromUtf8();
    void compareIgnoringCase_data();
    void compareIgnoringCase();
    void replacingPercentEscapes_data();
    void replacingPercentEscapes();
    void longPartsAreFound();
    void marksInARow();
    void addingPercentEscapes_data();
    void addingPercentEscapes();
    void escapedValue_data();
    void escapedValue();
    void addingPercentEscapesToEveryAsciiCharacter();
    void trimmed_data();
    void trimmed();
    void beginning_data();
    void beginning();
    void integerValue_data();
    void integerValue();
    void doubleValue_data();
    void doubleValue();
};

static void compare(const QString &answer, const QString &expected)
{
    QCOMPARE(answer, expected);
    QCOMPARE(answer.isNull(), expected.isNull());
}

void StringRulesTest::containsIgnoringCase_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("part");
    QTest::addColumn<bool>("answer");
    QTest::newRow("same case") << "Related History"
                               << "History" << true;
    QTest::newRow("other case") << "Related History"
                                << "hIsToRy" << true;
    QTest::newRow("at the front") << "Related"
                                  << "rel" << true;
    QTest::newRow("whole") << "Related"
                           << "RELATED" << true;
    QTest::newRow("not there") << "Related"
                               << "later" << false;
    QTest::newRow("longer part") << "Rel"
                                 << "Related" << false;
    QTest::newRow("empty part") << "Related"
                                << "" << false;
    QTest::newRow("null part") << "Related" << QString() << false;
    QTest::newRow("empty in empty") << ""
                                    << "" << false;
    QTest::newRow("null text") << QString() << "a" << false;
    QTest::newRow("no regular expression") << "abc"
                                           << "a.c" << false;
    QTest::newRow("accent in other case") << QStringLiteral("CAF\u00c9") << QStringLiteral("caf\u00e9") << true;
    QTest::newRow("one character in two")
        << QStringLiteral("Cafe\u0301 au lait") << QStringLiteral("\u00e9 AU") << true;
    QTest::newRow("two characters in one") << QStringLiteral("Caf\u00e9") << QStringLiteral("fE\u0301") << true;
    QTest::newRow("marks in another order")
        << QStringLiteral("a\u0323\u0302") << QStringLiteral("A\u0302\u0323") << true;
    QTest::newRow("a letter is no accented letter") << QStringLiteral("Caf\u00e9") << "cafe" << false;
    QTest::newRow("nor in two characters") << QStringLiteral("Cafe\u0301") << "cafe" << false;
    QTest::newRow("nor where no character has both") << QStringLiteral("x\u0323") << "x" << false;
    QTest::newRow("the later bare letter") << QStringLiteral("x\u0323x") << "X" << true;
    QTest::newRow("Greek") << QStringLiteral("\u039f\u0394\u039f\u03a3") << QStringLiteral("\u03bf\u03b4\u03bf\u03c2")
                           << true;
    QTest::newRow("Cyrillic") << QStringLiteral("\u041c\u043e\u0441\u043a\u0432\u0430")
                              << QStringLiteral("\u041c\u041e\u0421\u041a") << true;
    QTest::newRow("sharp s") << QStringLiteral("Stra\u00dfe") << "STRASSE" << true;
    QTest::newRow("capital sharp s") << QStringLiteral("STRA\u1e9eE") << QStringLiteral("stra\u00dfe") << true;
    QTest::newRow("ligature") << QStringLiteral("of\ufb01ce") << "OFFICE" << true;
    QTest::newRow("ligature as it is read") << QStringLiteral("\ufb01le") << "FILE" << true;
    QTest::newRow("dotless i is no i") << QStringLiteral("\u0131") << "i" << false;
    QTest::newRow("Kelvin sign") << "300 k" << QStringLiteral("300 \u212a") << true;
    QTest::newRow("no Turkish rule") << "INDIGO"
                                     << "indigo" << true;
    QTest::newRow("beyond the first plane") << QStringLiteral("\U00010400") << QStringLiteral("\U00010428") << true;
    QTest::newRow("Japanese") << QStringLiteral("\u65e5\u672c\u8a9e") << QStringLiteral("\u672c") << true;
    QTest::newRow("half-voiced kana in two") << QStringLiteral("\u30cf\u309a") << QStringLiteral("\u30d1") << true;
}

void StringRulesTest::containsIgnoringCase()
{
    QFETCH(QString, text);
    QFETCH(QString, part);
    QFETCH(bool, answer);
    QCOMPARE(StringRules::containsIgnoringCase(text, part), answer);
    QByteArray form;
    StringRules::appendSearchForm(text.toUtf8(), form);
    QCOMPARE(form, StringRules::searchForm(text));
    QCOMPARE(StringRules::searchFormContains(form, StringRules::searchForm(part)), answer);
}

// Every character, alone, in company, and with marks that it may or may not join.
void StringRulesTest::searchFormOfUtf8IsThatOfTheText()
{
    const QString frames[] = {QStringLiteral("%1"), QStringLiteral("A%1\u00c9%1"), QStringLiteral("%1\u0301"),
                              QStringLiteral("\u30cf%1\u3099\uac00\u11a8")};
    constexpr char32_t last = 0x1ffff;
    for (char32_t c = 0x20; c <= last; ++c) {
        if (QChar::isSurrogate(c))
            continue;
        for (const QString &frame : frames) {
            const QString text = frame.arg(QStringView(QChar::fromUcs4(c)));
            QByteArray form;
            StringRules::appendSearchForm(text.toUtf8(), form);
            if (form != StringRules::searchForm(text))
                QFAIL(qPrintable(QStringLiteral("U+%1 in \"%2\"").arg(uint(c), 4, 16).arg(frame)));
        }
    }
    const QByteArray broken[] = {"Caf\xc3", "\xc3\x41", "\xe2\x80", "\xe4\xb8\x41", "\xf0\x9f\x8c", "\xf0\x9f\x8c\x41"};
    for (const QByteArray &bytes : broken) {
        QByteArray form = "before ";
        StringRules::appendSearchForm(bytes, form);
        QCOMPARE(form, "before " + StringRules::searchForm(QString::fromUtf8(bytes)));
    }
}

// At the front, in the middle and at the end of long and of short texts, and nowhere when a letter is missing.
void StringRulesTest::findsAtEveryPlace()
{
    const QByteArray parts[] = {"x", "xy", "xay", "xyxyx", "x-is-longer-than-sixteen-y"};
    for (const QByteArray &part : parts) {
        for (int before = 0; before < 40; ++before) {
            for (int after = 0; after < 40; ++after) {
                const QByteArray text = QByteArray(before, 'x') + part + QByteArray(after, 'y');
                QVERIFY(StringRules::searchFormContains(text, part));
                const QByteArray other = QByteArray(before, 'a') + part.chopped(1) + QByteArray(after, 'x');
                QCOMPARE(StringRules::searchFormContains(other, part), other.contains(part));
                const QByteArrayView cut = QByteArrayView(text).chopped(after + 1);
                QCOMPARE(StringRules::searchFormContains(cut, part), cut.toByteArray().contains(part));
            }
        }
    }
}

void StringRulesTest::fromUtf8_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QByteArray("") << QStringLiteral("");
    QTest::newRow("beyond ASCII") << QByteArray("a\xc3\xa9\xf0\x9f\x98\x80") << QStringLiteral("a\u00e9\U0001f600");
    QTest::newRow("byte order mark alone") << QByteArray("\xef\xbb\xbf") << QStringLiteral("\ufeff");
    QTest::newRow("byte order mark first") << QByteArray("\xef\xbb\xbf\xc3\xa9") << QStringLiteral("\ufeff\u00e9");
    QTest::newRow("byte order marks") << QByteArray("\xef\xbb\xbf\xef\xbb\xbf|\xef\xbb\xbf")
                                      << QStringLiteral("\ufeff\ufeff|\ufeff");
    QTest::newRow("damaged") << QByteArray("\xe9 a") << QStringLiteral("\ufffd a");
    QTest::newRow("cut short") << QByteArray("a\xc3") << QStringLiteral("a\ufffd");
    QTest::newRow("damaged behind a mark") << QByteArray("\xef\xbb\xbf\xe9 a") << QStringLiteral("\ufeff\ufffd a");
    QTest::newRow("cut short behind a mark") << QByteArray("\xef\xbb\xbf\xc3") << QStringLiteral("\ufeff\ufffd");
    QTest::newRow("half a mark") << QByteArray("\xef\xbb") << QStringLiteral("\ufffd\ufffd");
}

void StringRulesTest::fromUtf8()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    compare(StringRules::fromUtf8(bytes), text);
}

void StringRulesTest::compareIgnoringCase_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("answer");
    QTest::newRow("same") << "abc"
                          << "ABC" << 0;
    QTest::newRow("less") << "abc"
                          << "ABD" << -1;
    QTest::newRow("shorter") << "AB"
                             << "abc" << -1;
    QTest::newRow("empty first") << ""
                                 << "a" << -1;
    QTest::newRow("accents") << QStringLiteral("\u00c9") << QStringLiteral("e\u0301") << 0;
    QTest::newRow("ASCII first") << "Z" << QStringLiteral("\u00e9") << -1;
    QTest::newRow("sign between the cases") << "_"
                                            << "A" << -1; // letters compare as small ones
    QTest::newRow("the same beside another alphabet") << QStringLiteral("_\u00e9") << QStringLiteral("A\u00e9") << -1;
}

void StringRulesTest::compareIgnoringCase()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, answer);
    const auto sign = [](int value) { return (value > 0) - (value < 0); };
    QCOMPARE(sign(StringRules::compareIgnoringCase(a, b)), answer);
    QCOMPARE(sign(StringRules::compareIgnoringCase(b, a)), -answer);
    QCOMPARE(sign(QString::compare(StringRules::comparisonForm(a), StringRules::comparisonForm(b))), answer);
}

void StringRulesTest::replacingPercentEscapes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("answer");
    QTest::newRow("null") << QString() << QString();
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("no escapes") << QStringLiteral("caf\u00e9") << QStringLiteral("caf\u00e9");
    QTest::newRow("blank") << "Hello%20there"
                           << "Hello there";
    QTest::newRow("plus stays") << "a+b%2B"
                                << "a+b+";
    QTest::newRow("UTF-8") << "%C3%A9%f0%9f%98%80" << QStringLiteral("\u00e9\U0001f600");
    QTest::newRow("beside plain UTF-8") << QStringLiteral("\u00e9%20") << QStringLiteral("\u00e9 ");
    QTest::newRow("byte order mark") << "%EF%BB%BFa" << QStringLiteral("\ufeffa");
    QTest::newRow("not UTF-8") << "%E9" << QString();
    QTest::newRow("UTF-8 cut short") << "%C3" << QString();
    QTest::newRow("no digits") << "100%" << QString();
    QTest::newRow("one digit") << "%4" << QString();
    QTest::newRow("other letters") << "%4g" << QString();
    QTest::newRow("only once") << "%2541"
                               << "%41";
}

void StringRulesTest::replacingPercentEscapes()
{
    QFETCH(QString, text);
    QFETCH(QString, answer);
    compare(StringRules::replacingPercentEscapes(text), answer);
}

void StringRulesTest::longPartsAreFound()
{
    for (const int length : {255, 256, 257, 1000}) {
        const QByteArray part = QByteArray("a").repeated(length - 1) + "b";
        QVERIFY(StringRules::searchFormContains("a" + part + "c", part));
        QVERIFY(StringRules::searchFormContains(part, part));
        QVERIFY(!StringRules::searchFormContains(part.chopped(1) + "c", part));
        QVERIFY(!StringRules::searchFormContains(part.mid(1), part));
        QVERIFY(!StringRules::searchFormContains(part + "\xcc\x81", part)); // an accented b
    }
}

// Sorting the marks of a letter takes quadratic time; so no letter has as many as a page's title may give it.
void StringRulesTest::marksInARow()
{
    const QString acute = QStringLiteral("\u0301");   // above the letter
    const QString cedilla = QStringLiteral("\u0327"); // below it, and sorted before what is above
    const auto marksAtOnce = [](const QString &text) {
        qsizetype most = 0;
        qsizetype marks = 0;
        for (const uint c : QString::fromUtf8(StringRules::searchForm(text)).toUcs4()) {
            marks = QChar::combiningClass(c) == 0 ? 0 : marks + 1;
            most = std::max(most, marks);
        }
        return most;
    };
    QCOMPARE(marksAtOnce("x" + acute.repeated(30)), 30);
    QCOMPARE(marksAtOnce("x" + acute.repeated(31)), 30);
    QCOMPARE(marksAtOnce("x" + (acute + cedilla).repeated(5000) + "y"), 30);
    QCOMPARE(marksAtOnce(QStringLiteral("\U0001d165\U0001d16d").repeated(5000)), 30); // in two halves each
    QCOMPARE(StringRules::searchForm("x" + (acute + cedilla).repeated(15)),
             StringRules::searchForm("x" + (cedilla + acute).repeated(15)));
    const QString title = "x" + (acute + cedilla).repeated(5000) + "y";
    QVERIFY(StringRules::containsIgnoringCase("Title " + title, title));
    QVERIFY(StringRules::containsIgnoringCase(title, QStringLiteral("y")));
    QVERIFY(StringRules::searchFormContains(StringRules::searchForm("Title " + title), StringRules::searchForm(title)));
}

void StringRulesTest::addingPercentEscapes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("answer");
    QTest::newRow("null") << QString() << QString();
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("people") << "ann@example.com,bob@example.com"
                            << "ann@example.com,bob@example.com";
    QTest::newRow("line ends") << "ann\nbob"
                               << "ann%0Abob";
    QTest::newRow("reserved") << "@,&=?:/;+$!"
                              << "@,&=?:/;+$!";
    QTest::newRow("escaped") << "100% #[]"
                             << "100%25%20%23%5B%5D";
    QTest::newRow("UTF-8") << QStringLiteral("\u00e9\U0001f600") << "%C3%A9%F0%9F%98%80";
}

void StringRulesTest::addingPercentEscapes()
{
    QFETCH(QString, text);
    QFETCH(QString, answer);
    compare(StringRules::addingPercentEscapes(text), answer);
}

void StringRulesTest::escapedValue_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("answer");
    QTest::newRow("null") << QString() << QString();
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("address") << "ann@example.com"
                             << "ann@example.com";
    QTest::newRow("what ends a value") << "a&b=c?d#e;f+g"
                                       << "a%26b%3Dc%3Fd%23e%3Bf%2Bg";
    QTest::newRow("what does not") << "Hi, (all): $1/2!"
                                   << "Hi,%20(all):%20$1/2!";
    QTest::newRow("percent sign") << "100%"
                                  << "100%25";
    QTest::newRow("UTF-8") << QStringLiteral("\u00e9\U0001f600") << "%C3%A9%F0%9F%98%80";
}

void StringRulesTest::escapedValue()
{
    QFETCH(QString, text);
    QFETCH(QString, answer);
    compare(StringRules::escapedValue(text), answer);
}

void StringRulesTest::addingPercentEscapesToEveryAsciiCharacter()
{
    const QString stays = QStringLiteral("-_.!~*'();/?:@&=+$,");
    for (int c = 1; c < 0x80; c++) {
        const QString text = QChar(c);
        const bool isAlphanumeric = QChar(c).isLetterOrNumber();
        const QString expected = isAlphanumeric || stays.contains(text)
                                     ? text
                                     : QStringLiteral("%%1").arg(c, 2, 16, QLatin1Char('0')).toUpper();
        QCOMPARE(StringRules::addingPercentEscapes(text), expected);
    }
}

void StringRulesTest::trimmed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("answer");
    QTest::newRow("null") << QString() << QString();
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("only blanks") << " \t\n"
                                 << "";
    QTest::newRow("around") << " \r\n a b\t\u2028"
                            << "a b";
    QTest::newRow("inside") << "a\n b"
                            << "a\n b";
}

void StringRulesTest::trimmed()
{
    QFETCH(QString, text);
    QFETCH(QString, answer);
    compare(StringRules::trimmed(text), answer);
}

void StringRulesTest::beginning_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("answer");
    const QString rocket = QStringLiteral("\U0001F680");
    QTest::newRow("null") << QString() << 3 << QString();
    QTest::newRow("shorter") << "ab" << 3 << "ab";
    QTest::newRow("as long") << "abc" << 3 << "abc";
    QTest::newRow("longer") << "abcd" << 3 << "abc";
    QTest::newRow("nothing") << rocket << 0 << "";
    QTest::newRow("within a character") << "ab" + rocket << 3 << "ab";
    QTest::newRow("behind a character") << "ab" + rocket + "c" << 4 << "ab" + rocket;
    QTest::newRow("before a character") << "abc" + rocket << 3 << "abc";
    QTest::newRow("behind half a character") << "ab" + rocket.left(1) + "c" << 3 << "ab" + rocket.left(1);
}

void StringRulesTest::beginning()
{
    QFETCH(QString, text);
    QFETCH(int, length);
    QFETCH(QString, answer);
    compare(StringRules::beginning(text, length), answer);
}

void StringRulesTest::integerValue_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("answer");
    QTest::newRow("null") << QString() << 0;
    QTest::newRow("plain") << "203" << 203;
    QTest::newRow("leading blank") << " 1" << 1;
    QTest::newRow("leading zeros") << "007" << 7;
    QTest::newRow("signs") << "-12" << -12;
    QTest::newRow("plus") << "+12" << 12;
    QTest::newRow("text behind") << "3b4" << 3;
    QTest::newRow("fraction") << "2.9" << 2;
    QTest::newRow("no digits") << "beta" << 0;
    QTest::newRow("two signs") << "+-1" << 0;
    QTest::newRow("too large") << "2147483648" << std::numeric_limits<int>::max();
    QTest::newRow("too small") << "-2147483649" << std::numeric_limits<int>::min();
    QTest::newRow("far too large") << "99999999999999999999999" << std::numeric_limits<int>::max();
    QTest::newRow("far too small") << "-99999999999999999999999" << std::numeric_limits<int>::min();
}

void StringRulesTest::integerValue()
{
    QFETCH(QString, text);
    QFETCH(int, answer);
    QCOMPARE(StringRules::integerValue(text), answer);
}

void StringRulesTest::doubleValue_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("answer");
    QTest::newRow("null") << QString() << 0.0;
    QTest::newRow("integer") << "1" << 1.0;
    QTest::newRow("fraction") << " 12.5 points" << 12.5;
    QTest::newRow("point first") << ".5" << 0.5;
    QTest::newRow("point last") << "5." << 5.0;
    QTest::newRow("nought first") << "0.5" << 0.5;
    QTest::newRow("nine first") << "9.5" << 9.5;
    QTest::newRow("exponent") << "-1.5e3x" << -1500.0;
    QTest::newRow("broken exponent") << "2e" << 2.0;
    QTest::newRow("comma") << "1,5" << 1.0;
    QTest::newRow("no number") << "yes" << 0.0;
    QTest::newRow("infinity is no number") << "inf" << 0.0;
}

void StringRulesTest::doubleValue()
{
    QFETCH(QString, text);
    QFETCH(double, answer);
    QCOMPARE(StringRules::doubleValue(text), answer);
    QCOMPARE(StringRules::doubleValue(QByteArrayView(text.toUtf8())), answer);
}

QTEST_GUILESS_MAIN(StringRulesTest)
#include "StringRulesTest.moc"
