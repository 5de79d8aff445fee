#include "platform/base/Scanner.h"

#include "tests/support/AllocationCount.h"

#include <QTest>

class ScannerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scanUpToString_data();
    void scanUpToString();
    void scansPieceByPiece();
    void keepsBlanksInsideAndBehindAPiece();
    void emptyPieceIsNotTaken();
    void isAtEnd_data();
    void isAtEnd();
    void scanString();
    void theTextIsNotCopied();
};

void ScannerTest::scanUpToString_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("delimiter");
    QTest::addColumn<bool>("answer");
    QTest::addColumn<QString>("piece");
    QTest::newRow("up to it") << "mailto:ann"
                              << ":" << true << "mailto";
    QTest::newRow("first of two") << "a&b&c"
                                  << "&" << true << "a";
    QTest::newRow("not there") << "ann"
                               << "?" << true << "ann";
    QTest::newRow("empty before it") << "?subject=Hi"
                                     << "?" << false << "untouched";
    QTest::newRow("blanks before it") << " \n\t?"
                                      << "?" << false << "untouched";
    QTest::newRow("nothing left") << ""
                                  << "?" << false << "untouched";
    QTest::newRow("only blanks left") << "  "
                                      << "?" << false << "untouched";
    QTest::newRow("null") << QString() << "?" << false << "untouched";
    QTest::newRow("leading blanks") << " \r\n\tann?"
                                    << "?" << true << "ann";
    QTest::newRow("long delimiter") << "a-b--c"
                                    << "--" << true << "a-b";
}

void ScannerTest::scanUpToString()
{
    QFETCH(QString, text);
    QFETCH(QString, delimiter);
    QFETCH(bool, answer);
    Scanner scanner(text);
    QString result = QStringLiteral("untouched");
    QCOMPARE(scanner.scanUpToString(delimiter, &result), answer);
    QTEST(result, "piece");
}

void ScannerTest::scansPieceByPiece()
{
    Scanner scanner(QStringLiteral("mailto:ann?cc=cy"));
    QString piece;
    QVERIFY(scanner.scanUpToString(":", &piece));
    QVERIFY(!scanner.isAtEnd());
    QVERIFY(scanner.scanString(":"));
    QVERIFY(scanner.scanUpToString("?", &piece));
    QCOMPARE(piece, "ann");
    QVERIFY(scanner.scanString("?"));
    QVERIFY(scanner.scanUpToString("&", &piece));
    QCOMPARE(piece, "cc=cy");
    QVERIFY(scanner.isAtEnd());
}

void ScannerTest::keepsBlanksInsideAndBehindAPiece()
{
    Scanner scanner(QStringLiteral("  a b ? c"));
    QString piece;
    QVERIFY(scanner.scanUpToString("?", &piece));
    QCOMPARE(piece, "a b ");
    QVERIFY(scanner.scanString("?"));
    QVERIFY(scanner.scanUpToString("?", &piece));
    QCOMPARE(piece, "c");
}

void ScannerTest::emptyPieceIsNotTaken()
{
    // The delimiter that stands next is still there for the next piece.
    Scanner scanner(QStringLiteral("?subject=Hi"));
    QString piece;
    QVERIFY(!scanner.scanUpToString("?", &piece));
    QVERIFY(scanner.scanUpToString("&", &piece));
    QCOMPARE(piece, "?subject=Hi");
}

void ScannerTest::isAtEnd_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("answer");
    QTest::newRow("null") << QString() << true;
    QTest::newRow("empty") << "" << true;
    QTest::newRow("blanks") << " \n" << true;
    QTest::newRow("text") << " a" << false;
}

void ScannerTest::isAtEnd()
{
    QFETCH(QString, text);
    const Scanner scanner(text);
    QTEST(scanner.isAtEnd(), "answer");
}

void ScannerTest::scanString()
{
    Scanner scanner(QStringLiteral(" ab c"));
    QVERIFY(!scanner.scanString("b"));
    QVERIFY(!scanner.scanString(""));
    QVERIFY(scanner.scanString("ab"));
    QVERIFY(scanner.scanString("c"));
    QVERIFY(!scanner.scanString("c"));
    QVERIFY(scanner.isAtEnd());
}

// What is taken from the heap is the pieces, and nothing for looking at what is left.
void ScannerTest::theTextIsNotCopied()
{
    constexpr int pieces = 1000;
    const QString text = QStringLiteral(" piece&").repeated(pieces);
    Scanner scanner(text);
    const std::size_t before = allocatedBytes;
    int scanned = 0;
    for (QString piece; !scanner.isAtEnd(); ++scanned) {
        QVERIFY(scanner.scanUpToString("&", &piece));
        QVERIFY(scanner.scanString("&"));
    }
    QCOMPARE(scanned, pieces);
    constexpr std::size_t mostOfAPiece = 200;
    QVERIFY2(allocatedBytes - before < pieces * mostOfAPiece, qPrintable(QString::number(allocatedBytes - before)));
}

QTEST_GUILESS_MAIN(ScannerTest)
#include "ScannerTest.moc"
