#include "platform/files/Bundle.h"
#include "platform/widgets/InterfaceFile.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <QtTest>

namespace
{
// In the source tree.
QString sourcePath(const QString &relative)
{
    return qEnvironmentVariable("WAYFOLD_SOURCE") + QLatin1Char('/') + relative;
}

const QString translationsFolder = sourcePath(QStringLiteral("resources/translations"));

struct Message
{
    QString source;
    QString translation;
    bool isFinished;
};

QList<Message> messagesOf(const QString &catalogue)
{
    QFile file(catalogue);
    QList<Message> messages;
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
            const bool isFinished = xml.attributes().value(QStringLiteral("type")).isEmpty();
            messages.append({source, xml.readElementText(), isFinished});
        }
    }
    return messages;
}

// What an interface file shows in the user's language.
QStringList textsOf(const QString &interfaceFile)
{
    QFile file(interfaceFile);
    QStringList texts;
    if (!file.open(QIODevice::ReadOnly))
        return texts;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != u"string")
            continue;
        const bool isShown = xml.attributes().value(QStringLiteral("notr")).isEmpty();
        const QString text = xml.readElementText();
        if (isShown && !text.isEmpty())
            texts.append(text);
    }
    return texts;
}

// What the code asks for: the texts, which begin with a capital letter, in statements that show one in the user's
// language.
QStringList textsOfSources()
{
    static const QRegularExpression statement(QStringLiteral(
        R"re((localized(String)?\(|setToolTip\(|setWindowTitle\(|describe\(|KDREditController\(")[^;{]*)re"));
    static const QRegularExpression text(QStringLiteral(R"re("([A-Z](?:[^"\\]|\\.)*)")re"));
    static const QRegularExpression seam(
        QStringLiteral(R"re((?<!\\)"\s+")re")); // of a text that goes on in the next line
    QStringList texts;
    for (const char *room : {"core", "model", "lists", "drawer", "platform"}) {
        QDirIterator files(sourcePath(QLatin1String(room)), {QStringLiteral("*.cpp")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.open(QIODevice::ReadOnly))
                continue;
            auto statements = statement.globalMatch(QString::fromUtf8(file.readAll()));
            while (statements.hasNext()) {
                auto found = text.globalMatch(statements.next().captured(0).remove(seam));
                while (found.hasNext())
                    texts.append(found.next()
                                     .captured(1)
                                     .replace(QStringLiteral("\\\""), QStringLiteral("\""))
                                     .replace(QStringLiteral("\\n"), QStringLiteral("\n")));
            }
        }
    }
    return texts;
}

// "%@" and its like, "%2$@" as well.
QStringList placeholdersOf(const QString &text)
{
    static const QRegularExpression placeholder(QStringLiteral("%(\\d\\$)?[@u]"));
    QStringList found;
    auto matches = placeholder.globalMatch(text);
    while (matches.hasNext())
        found.append(matches.next().captured(0));
    return found;
}
} // namespace

class TranslationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void cataloguesAreComplete_data();
    void cataloguesAreComplete();
    void textsOfTheCodeAreFound();
    void compiledCatalogueHoldsThem();
    void labelsOfTabsStay();
    void interfaceFilesAreTranslated();

private:
    static QStringList allTexts()
    {
        QStringList texts = textsOfSources();
        const QDir folder(sourcePath(QStringLiteral("resources/ui")));
        const QStringList files = folder.entryList({QStringLiteral("*.ui")});
        for (const QString &file : files)
            texts.append(textsOf(folder.filePath(file)));
        texts.removeDuplicates();
        for (const QString &label : tabLabels)
            texts.removeAll(label);
        return texts;
    }

    // They are compared literally.
    static inline const QStringList tabLabels = {"Scratchpad", "Bookmarks", "History"};
};

void TranslationsTest::cataloguesAreComplete_data()
{
    QTest::addColumn<QString>("catalogue");
    const QStringList catalogues = QDir(translationsFolder).entryList({QStringLiteral("wayfold_*.ts")});
    QVERIFY(catalogues.contains(QStringLiteral("wayfold_de.ts")));
    for (const QString &catalogue : catalogues)
        QTest::newRow(qPrintable(catalogue)) << catalogue;
}

void TranslationsTest::cataloguesAreComplete()
{
    QFETCH(QString, catalogue);
    const QList<Message> messages = messagesOf(QDir(translationsFolder).filePath(catalogue));
    QStringList sources;
    for (const Message &message : messages) {
        const QByteArray source = message.source.toUtf8();
        QVERIFY2(message.isFinished && !message.translation.isEmpty(), source);
        QVERIFY2(!sources.contains(message.source), source); // twice
        sources.append(message.source);
        QCOMPARE(message.translation.count(QLatin1Char('&')), message.source.count(QLatin1Char('&')));
        // Each value is used as often, unless the translation says which of them it wants.
        const QStringList placeholders = placeholdersOf(message.translation);
        if (placeholders.filter(QStringLiteral("$")).isEmpty())
            QVERIFY2(placeholders == placeholdersOf(message.source), source);
    }
    for (const QString &text : allTexts())
        QVERIFY2(sources.contains(text), qPrintable(text));
    for (const QString &label : tabLabels)
        QVERIFY2(!sources.contains(label), qPrintable(label));
}

void TranslationsTest::textsOfTheCodeAreFound()
{
    const QStringList texts = textsOfSources();
    for (const char *text :
         {"Close Drawer", "Focus on %@", "Untitled URL", "Related History", "Keep the changes", "No Matches",
          "There are no bookmarks.\n\nThose that you add in the browser appear here.", "Visited Page",
          "Are you sure you want to delete \"%@\"?", "Choose File or Folder", "Version %@"})
        QVERIFY2(texts.contains(QString::fromUtf8(text)), text);
}

void TranslationsTest::compiledCatalogueHoldsThem()
{
    const QList<Message> messages = messagesOf(QDir(translationsFolder).filePath(QStringLiteral("wayfold_de.ts")));
    QVERIFY(messages.size() > 80);
    for (const Message &message : messages)
        QCOMPARE(Bundle::localizedString(message.source), message.source);
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    for (const Message &message : messages)
        QCOMPARE(Bundle::localizedString(message.source), message.translation);
}

void TranslationsTest::labelsOfTabsStay()
{
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    QVERIFY(Bundle::localizedString(QStringLiteral("Sites")) != QStringLiteral("Sites"));
    for (const QString &label : tabLabels)
        QCOMPARE(Bundle::localizedString(label), label);
}

void TranslationsTest::interfaceFilesAreTranslated()
{
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    const InterfaceFile menu(QStringLiteral("KDRDrawerMenu"));
    const std::unique_ptr<QWidget> owner(menu.topLevelWidget());
    QCOMPARE(menu.outlet<QAction>(QStringLiteral("aboutItem"))->text(), QStringLiteral("\u00dcber Wayfold"));
    QCOMPARE(menu.outlet<QAction>(QStringLiteral("deleteItem"))->text(), QStringLiteral("L\u00f6schen"));
}

QTEST_MAIN(TranslationsTest)
#include "TranslationsTest.moc"
