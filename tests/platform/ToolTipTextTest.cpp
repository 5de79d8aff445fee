#include "platform/widgets/ToolTipText.h"

#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QtTest>

class ToolTipTextTest : public QObject
{
    Q_OBJECT

private:
    // What is read on the screen; places where a word may be broken are not seen.
    static QString read(const QString &text)
    {
        return QTextDocumentFragment::fromHtml(ToolTipText::shown(text)).toPlainText().remove(QChar(0x200b));
    }

private Q_SLOTS:
    void shortTextsAreShownWhole_data();
    void shortTextsAreShownWhole();
    void longTextsAreCut_data();
    void longTextsAreCut();
    void longWordsAreBroken();
    void shortLinesAreNotWrapped_data();
    void shortLinesAreNotWrapped();
    void sizeOnTheScreen_data();
    void sizeOnTheScreen();
};

void ToolTipTextTest::shortTextsAreShownWhole_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("address") << "http://www.example.com/?a=b&c=d";
    QTest::newRow("markup") << "<b>mint & thyme</b>";
    QTest::newRow("entity") << "&lt;b&gt; &amp;amp;";
    QTest::newRow("lines") << "one\ntwo\nthree";
    QTest::newRow("longest") << QStringLiteral("abcdefg ").repeated(256).chopped(1) + "h";
    QTest::newRow("most lines") << QStringLiteral("a\n").repeated(39) + "a";
    QTest::newRow("word that is nearly broken") << QString(60, 'a');
}

void ToolTipTextTest::shortTextsAreShownWhole()
{
    QFETCH(QString, text);
    QCOMPARE(read(text), text);
    QVERIFY(Qt::mightBeRichText(ToolTipText::shown(text))); // or it would be judged by what is in it
    QVERIFY(text.size() > 60 || !ToolTipText::shown(text).contains(QChar(0x200b)));
    QVERIFY(ToolTipText::shown(QString()).isEmpty());
}

void ToolTipTextTest::longTextsAreCut_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("beginning");
    const QString x(2047, 'x');
    const QString y(2046, 'y');
    const QString face = QStringLiteral("\U0001f600");
    const QString accented = QStringLiteral("e\u0301");
    const QString flag = QStringLiteral("\U0001f1e9\U0001f1ea");
    QTest::newRow("a letter too long") << x + "ab" << x + "a";
    QTest::newRow("very long") << QString(400000, 'x') << x + "x";
    QTest::newRow("within a pair") << x + face << x;
    QTest::newRow("behind a pair") << y + face + "z" << y + face;
    QTest::newRow("within an accented letter") << x + accented << x;
    QTest::newRow("behind an accented letter") << y + accented + "z" << y + accented;
    QTest::newRow("within a flag") << y + flag << y;
    QTest::newRow("too many lines") << QStringLiteral("a\n").repeated(40) << QStringLiteral("a\n").repeated(39) + "a";
    QTest::newRow("empty lines") << QString(2000, '\n') << QString(39, '\n');
    QTest::newRow("one letter of many marks") << "x" + QStringLiteral("\u0301").repeated(3000) << "";
}

void ToolTipTextTest::longTextsAreCut()
{
    QFETCH(QString, text);
    QFETCH(QString, beginning);
    QCOMPARE(read(text), beginning + QChar(0x2026));
}

// Where it is seen as two words, and never within a letter.
void ToolTipTextTest::longWordsAreBroken()
{
    const QChar place(0x200b);
    QVERIFY(ToolTipText::shown(QString(61, 'a')).contains(QString(60, 'a') + place + "a"));
    const QString accented = QStringLiteral("e\u0301");
    QVERIFY(ToolTipText::shown(accented.repeated(61)).contains(accented.repeated(60) + place + accented));
    QVERIFY(!ToolTipText::shown(QString(60, 'a') + " " + QString(60, 'b')).contains(place));
}

// A label would make a column of a text that is not much wider than it is high.
void ToolTipTextTest::shortLinesAreNotWrapped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("lines");
    QTest::newRow("address") << "http://news.example.com:8099/a-page.html" << 1;
    QTest::newRow("words") << "some words that are not too many for one line" << 1;
    QTest::newRow("longest line") << QStringLiteral("word ").repeated(12).chopped(1) + "." << 1;
    QTest::newRow("two lines") << "the first line of what is shown\nand the second line of it" << 2;
}

void ToolTipTextTest::shortLinesAreNotWrapped()
{
    QFETCH(QString, text);
    QFETCH(int, lines);
    QLabel label(ToolTipText::shown(text));
    label.setWordWrap(true);
    const QLabel letters(ToolTipText::shown(QStringLiteral("a\n").repeated(lines).chopped(1)));
    QCOMPARE(label.sizeHint().height(), letters.sizeHint().height());
    QCOMPARE(read(text), text);
}

// It fits on the smallest screen.
void ToolTipTextTest::sizeOnTheScreen_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("word") << QString(400000, 'W');
    QTest::newRow("wide line") << QString(60, 'W');
    QTest::newRow("address") << "http://www.example.com/" + QStringLiteral("path/to-some?thing&").repeated(20000);
    QTest::newRow("words") << QStringLiteral("some words ").repeated(40000);
    QTest::newRow("lines") << QStringLiteral("a\n").repeated(100000);
    QTest::newRow("ideographs") << QStringLiteral("\u4e2d\u6587").repeated(100000);
}

void ToolTipTextTest::sizeOnTheScreen()
{
    QFETCH(QString, text);
    QLabel label(ToolTipText::shown(text)); // as QToolTip shows it
    label.setWordWrap(true);
    const QSize size = label.sizeHint();
    QVERIFY2(size.width() <= 1024 && size.height() <= 768,
             qPrintable(QStringLiteral("%1 x %2").arg(size.width()).arg(size.height())));
}

QTEST_MAIN(ToolTipTextTest)
#include "ToolTipTextTest.moc"
