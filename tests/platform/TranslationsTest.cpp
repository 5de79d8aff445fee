#include "platform/files/Bundle.h"
#include "platform/widgets/InterfaceFile.h"

#include <QComboBox>
#include <QDir>
#include <QFontDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLibraryInfo>
#include <QProcess>
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

// What lupdate finds in these files or folders, as it writes that down; null when it cannot be run. Our ways to ask for
// a text go by the text itself, as Qt's way with identifiers does. What is not written where it is asked for, as in a
// table, is marked there by QT_TRID_NOOP.
QString lupdate(const QStringList &places)
{
    const QTemporaryDir folder;
    const QString catalogue = folder.filePath(QStringLiteral("found.ts"));
    QProcess process;
    process.start(QLibraryInfo::path(QLibraryInfo::BinariesPath) + QStringLiteral("/lupdate"),
                  QStringList{QStringLiteral("-silent"), QStringLiteral("-no-ui-lines"), QStringLiteral("-locations"),
                              QStringLiteral("none"), QStringLiteral("-tr-function-alias"),
                              QStringLiteral("qtTrId+=localized,qtTrId+=localizedString")} +
                      places + QStringList{QStringLiteral("-ts"), catalogue});
    QFile file(catalogue);
    const bool hasRun = process.waitForFinished() && process.exitCode() == 0 && file.open(QIODevice::ReadOnly);
    return hasRun ? QString::fromUtf8(file.readAll()) : QString();
}

// What the code asks for. lupdate does not escape identifiers, so this is no XML.
QStringList textsOfCode(const QStringList &places)
{
    static const QRegularExpression message(QStringLiteral(R"re(<message id="(.*?)">\n *<source>)re"),
                                            QRegularExpression::DotMatchesEverythingOption);
    QStringList texts;
    const QString found = lupdate(places);
    auto messages = message.globalMatch(found);
    while (messages.hasNext())
        texts.append(messages.next().captured(1));
    return texts;
}

QStringList textsOfSources()
{
    QStringList rooms;
    for (const char *room : {"core", "model", "lists", "drawer", "platform"})
        rooms.append(sourcePath(QLatin1String(room)));
    return textsOfCode(rooms);
}

QString unescaped(QString xml)
{
    for (const auto &[escaped, character] : {std::pair("&lt;", "<"), std::pair("&gt;", ">"), std::pair("&quot;", "\""),
                                             std::pair("&apos;", "'"), std::pair("&amp;", "&")})
        xml.replace(QLatin1String(escaped), QLatin1String(character));
    return xml;
}

QStringList textsOfInterfaceFiles()
{
    static const QRegularExpression source(QStringLiteral("<source>(.*?)</source>"),
                                           QRegularExpression::DotMatchesEverythingOption);
    QStringList texts;
    const QString found = lupdate({sourcePath(QStringLiteral("resources/ui"))});
    auto sources = source.globalMatch(found);
    while (sources.hasNext())
        texts.append(unescaped(sources.next().captured(1)));
    return texts;
}

// Those of Qt's own dialog for fonts, which come into the catalogue because Qt's are not in all languages.
QStringList textsOfFontDialog()
{
    QFontDialog dialog;
    dialog.setOption(QFontDialog::DontUseNativeDialog);
    QStringList texts;
    for (const QLabel *label : dialog.findChildren<QLabel *>())
        texts.append(label->text());
    for (const QGroupBox *group : dialog.findChildren<QGroupBox *>())
        texts.append(group->title());
    for (const QComboBox *box : dialog.findChildren<QComboBox *>()) {
        for (int i = 0; i < box->count(); ++i)
            texts.append(box->itemText(i));
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
    void textsOfMadeUpCodeAreFound();
    void compiledCatalogueHoldsThem();
    void labelsOfTabsStay();
    void interfaceFilesAreTranslated();

private:
    static QStringList allTexts()
    {
        QStringList texts = textsOfSources() + textsOfInterfaceFiles();
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
    const QStringList texts = allTexts();
    for (const QString &text : texts)
        QVERIFY2(sources.contains(text), qPrintable(text + QStringLiteral(": is not translated")));
    const QStringList ofQt = textsOfFontDialog();
    for (const QString &source : sources)
        QVERIFY2(texts.contains(source) || ofQt.contains(source),
                 qPrintable(source + QStringLiteral(": nothing asks for it, or it is not marked (QT_TRID_NOOP)")));
    for (const QString &label : tabLabels)
        QVERIFY2(!sources.contains(label), qPrintable(label));
}

void TranslationsTest::textsOfTheCodeAreFound()
{
    const QStringList texts = textsOfSources();
    for (const char *text :
         {"Close Drawer", "Focus on %@", "Untitled URL", "Related History", "Keep the changes", "No Matches",
          "There are no bookmarks.\n\nThose that you add in the browser appear here.", "Visited Page", "work fax",
          "Are you sure you want to delete \"%@\"?", "Choose File or Folder", "Version %@"})
        QVERIFY2(texts.contains(QString::fromUtf8(text)), text);
}

void TranslationsTest::textsOfMadeUpCodeAreFound()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("MadeUp.cpp")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("void f(bool x) { localized(\"An \\\"apple\\\" & <more>\"); Bundle::localizedString(\n\"Two\\n\\n\" "
               "\"lines\"); }\n"
               "const char *const table[] = {QT_TRID_NOOP(\"Pear\"), \"Quince\"}; // localized(\"Rose hip\")\n"
               "const QString text = QStringLiteral(QT_TRID_NOOP(\"Sloe\"));\n");
    file.close();
    QStringList texts = textsOfCode({file.fileName()});
    texts.sort();
    QCOMPARE(texts, QStringList({"An \"apple\" & <more>", "Pear", "Sloe", "Two\n\nlines"}));
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
