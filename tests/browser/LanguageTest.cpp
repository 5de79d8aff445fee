#include "browser/Language.h"

#include <QDir>
#include <QDirIterator>
#include <QKeySequence>
#include <QLocale>
#include <QRegularExpression>
#include <QTest>
#include <QXmlStreamReader>

namespace
{
QString sourcePath(const QString &relative)
{
    return qEnvironmentVariable("WAYFOLD_SOURCE") + QLatin1Char('/') + relative;
}

// The texts of a string literal that may go over several lines.
QString joined(const QString &literals)
{
    static const QRegularExpression literal(R"(\x22((?:[^\x22\\]|\\.)*)\x22)");
    QString text;
    auto parts = literal.globalMatch(literals);
    while (parts.hasNext())
        text += parts.next().captured(1);
    return text.replace("\\t", "\t").replace("\\n", "\n").replace("\\\"", "\"");
}

// What the browser's code shows in the user's language.
QStringList textsOfSources()
{
    static const QRegularExpression shown(
        R"((?:\btr\(|\btranslate\(\x22\w+\x22,)\s*((?:\x22(?:[^\x22\\]|\\.)*\x22\s*)+))");
    QStringList texts;
    QDirIterator files(sourcePath("browser"), {"*.cpp"}, QDir::Files);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        auto matches = shown.globalMatch(QString::fromUtf8(file.readAll()));
        while (matches.hasNext())
            texts.append(joined(matches.next().captured(1)));
    }
    return texts;
}

struct Message
{
    QString translation;
    bool isFinished;
};

QHash<QString, Message> messagesOf(const QString &catalogue)
{
    QFile file(catalogue);
    QHash<QString, Message> messages;
    if (!file.open(QIODevice::ReadOnly))
        return messages;
    QXmlStreamReader xml(&file);
    QString source;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == u"source") {
            source = xml.readElementText();
        } else if (xml.name() == u"translation") {
            const bool isFinished = !xml.attributes().hasAttribute("type");
            messages.insert(source,
                            {xml.readElementText(QXmlStreamReader::IncludeChildElements).trimmed(), isFinished});
        }
    }
    return messages;
}

QStringList placeholdersOf(const QString &text)
{
    static const QRegularExpression placeholder(QStringLiteral("%\\d"));
    QStringList found;
    auto matches = placeholder.globalMatch(text);
    while (matches.hasNext())
        found.append(matches.next().captured(0));
    found.sort();
    return found;
}
} // namespace

class LanguageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }
    void everyTextHasATranslation();
    void speaks_data();
    void speaks();
    void endsWithItsObject();
    void keysAreUnderstood();
};

void LanguageTest::everyTextHasATranslation()
{
    const QHash<QString, Message> messages = messagesOf(sourcePath("browser/translations/browser_de.ts"));
    const QStringList texts = textsOfSources();
    QVERIFY(texts.size() > 150);
    for (const char *text : {"&Copy\tCtrl+C", "Pages to open.", "Forget all %n visited page(s)?", "Try Again"})
        QVERIFY2(texts.contains(text), text);
    for (const QString &text : texts) {
        QVERIFY2(messages.contains(text), qPrintable(text));
        const Message message = messages.value(text);
        QVERIFY2(message.isFinished && !message.translation.isEmpty(), qPrintable(text));
        QCOMPARE(placeholdersOf(message.translation), placeholdersOf(text));
        QCOMPARE(message.translation.count('&'), text.count('&'));
        QCOMPARE(message.translation.count('\t'), text.count('\t'));
    }
    for (const QString &text : messages.keys())
        QVERIFY2(texts.contains(text), qPrintable("not used: " + text));
}

void LanguageTest::speaks_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("close");
    QTest::addColumn<QString>("one");
    QTest::addColumn<QString>("three");

    const QString english = "Close";
    QTest::newRow("German") << QLocale("de_DE") << "Schließen"
                            << "1 besuchte Seite vergessen?"
                            << "Alle 3 besuchten Seiten vergessen?";
    QTest::newRow("Swiss") << QLocale("de_CH") << "Schließen"
                           << "1 besuchte Seite vergessen?"
                           << "Alle 3 besuchten Seiten vergessen?";
    QTest::newRow("English") << QLocale("en_GB") << english << "Forget 1 visited page?"
                             << "Forget all 3 visited pages?";
    QTest::newRow("another") << QLocale("eo") << english << "Forget all 1 visited page(s)?"
                             << "Forget all 3 visited page(s)?";
    QTest::newRow("none") << QLocale::c() << english << "Forget all 1 visited page(s)?"
                          << "Forget all 3 visited page(s)?";
}

void LanguageTest::speaks()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, close);
    QFETCH(QString, one);
    QFETCH(QString, three);
    QLocale::setDefault(locale);
    const Language language;
    const auto forget = [](int count) {
        return QCoreApplication::translate("BrowserMenus", "Forget all %n visited page(s)?", nullptr, count);
    };
    QCOMPARE(QCoreApplication::translate("FindBar", "Close"), close);
    QCOMPARE(forget(1), one);
    QCOMPARE(forget(3), three);
}

void LanguageTest::endsWithItsObject()
{
    QLocale::setDefault(QLocale("de_DE"));
    {
        const Language language;
        QCOMPARE(QCoreApplication::translate("FindBar", "Close"), QString("Schließen"));
    }
    QCOMPARE(QCoreApplication::translate("FindBar", "Close"), QString("Close"));
}

// Menus show keys by their German names, the code knows them by their English ones.
void LanguageTest::keysAreUnderstood()
{
    QLocale::setDefault(QLocale("de_DE"));
    const Language language;
    const QKeySequence keys("Ctrl+Shift+PgDown");
    QCOMPARE(keys, QKeySequence(Qt::ControlModifier | Qt::ShiftModifier | Qt::Key_PageDown));
    QCOMPARE(keys.toString(QKeySequence::NativeText), QString("Strg+Umschalt+Bild abwärts"));
}

QTEST_GUILESS_MAIN(LanguageTest)
#include "LanguageTest.moc"
