#include "platform/files/Bundle.h"
#include "tests/support/TemporaryHome.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>
#include <QTranslator>

class BundleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void environmentNamesTheBundle();
    void foundFromWhereTheCodeLies();
    void notFoundOutsideOfABundle();
    void pathForResource();
    void pathForImageResource_data();
    void pathForImageResource();
    void localizedString_data();
    void localizedString();
    void localizedStringOfAnotherBundle();
    void catalogueOfTheHostIsNotAsked();
    void languagesOfTheUser_data();
    void languagesOfTheUser();

private:
    const QByteArray _installed = qgetenv("WAYFOLD_BUNDLE");
    const QLocale _locale;
};

namespace
{
// Runs a copy of this program that lies at that path, and answers what it takes for its bundle.
QString bundleSeenFrom(const QString &program)
{
    QDir().mkpath(QFileInfo(program).path());
    QFile::copy(QCoreApplication::applicationFilePath(), program);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("WAYFOLD_BUNDLE");
    QProcess child;
    child.setProcessEnvironment(environment);
    child.start(program, {"--print-bundle"});
    child.waitForFinished();
    return QString::fromUtf8(child.readAllStandardOutput()).trimmed();
}
} // namespace

void BundleTest::cleanup()
{
    qunsetenv("WAYFOLD_BUNDLE");
    QLocale::setDefault(_locale);
}

void BundleTest::environmentNamesTheBundle()
{
    qputenv("WAYFOLD_BUNDLE", "/x/y/../Wayfold.plugin/");
    QCOMPARE(Bundle::path(), "/x/Wayfold.plugin");
    qputenv("WAYFOLD_BUNDLE", "/z/Wayfold.plugin");
    QCOMPARE(Bundle::path(), "/z/Wayfold.plugin");
}

void BundleTest::foundFromWhereTheCodeLies()
{
    const TemporaryHome home;
    const QString bundle = QDir(home.path("a place/Wayfold.plugin")).absolutePath();
    QCOMPARE(bundleSeenFrom(bundle + "/Contents/Plugin/program"), bundle);
}

void BundleTest::notFoundOutsideOfABundle()
{
    const TemporaryHome home;
    QCOMPARE(bundleSeenFrom(home.path("elsewhere/program")), "(none)");
}

void BundleTest::pathForResource()
{
    const TemporaryHome home;
    home.write("Wayfold.plugin/Contents/Resources/KDREditNote.ui", "");
    home.write("Wayfold.plugin/Contents/Resources/images/A.svg", "");
    home.write("Wayfold.plugin/Contents/Info.plist", "");
    qputenv("WAYFOLD_BUNDLE", home.path("Wayfold.plugin").toUtf8());
    const QString resources = home.path("Wayfold.plugin/Contents/Resources/");
    QCOMPARE(Bundle::pathForResource("KDREditNote.ui"), resources + "KDREditNote.ui");
    QCOMPARE(Bundle::pathForResource("images/A.svg"), resources + "images/A.svg");
    QVERIFY(Bundle::pathForResource("Missing.ui").isNull());
    QVERIFY(Bundle::pathForResource("images").isNull());
    QVERIFY(Bundle::pathForResource("Info.plist").isNull());
    QVERIFY(Bundle::pathForResource("").isNull());
    QVERIFY(Bundle::pathForResource(QString()).isNull());
}

void BundleTest::pathForImageResource_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("file");
    QTest::newRow("only one") << "Only"
                              << "Only.png";
    QTest::newRow("vector graphics first") << "All"
                                           << "All.svg";
    QTest::newRow("then png") << "NoSvg"
                              << "NoSvg.png";
    QTest::newRow("then jpg") << "Photo"
                              << "Photo.jpg";
    QTest::newRow("then gif") << "Film"
                              << "Film.gif";
    QTest::newRow("with its ending") << "All.png"
                                     << "All.png";
    QTest::newRow("name with a dot") << "Folder.16"
                                     << "Folder.16.svg";
    QTest::newRow("missing") << "Missing" << QString();
    QTest::newRow("missing with an ending") << "Only.svg" << QString();
    QTest::newRow("no image") << "Text" << QString();
    QTest::newRow("empty") << "" << QString();
}

void BundleTest::pathForImageResource()
{
    QFETCH(QString, name);
    QFETCH(QString, file);
    const TemporaryHome home;
    const char *files[] = {"Only.png",  "All.gif",   "All.jpg",   "All.png",  "All.svg",       "NoSvg.gif", "NoSvg.jpg",
                           "NoSvg.png", "Photo.gif", "Photo.jpg", "Film.gif", "Folder.16.svg", "Text.txt"};
    for (const char *image : files)
        home.write(QStringLiteral("Wayfold.plugin/Contents/Resources/%1").arg(image), "");
    qputenv("WAYFOLD_BUNDLE", home.path("Wayfold.plugin").toUtf8());
    const QString answer = Bundle::pathForImageResource(name);
    QCOMPARE(answer.isNull(), file.isNull());
    if (!file.isNull())
        QCOMPARE(answer, home.path("Wayfold.plugin/Contents/Resources/" + file));
}

void BundleTest::localizedString_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *locale, const char *key, const QString &text) {
        QTest::newRow(name) << QString::fromLatin1(locale) << QString::fromUtf8(key) << text;
    };
    row("translated", "de_DE", "Untitled Note", QStringLiteral("Notiz ohne Titel"));
    row("another country", "de_AT", "Untitled Note", QStringLiteral("Notiz ohne Titel"));
    row("beyond ASCII", "de_DE", "About Wayfold", QStringLiteral("\u00dcber Wayfold"));
    row("not translated", "de_DE", "Not a text of ours", QStringLiteral("Not a text of ours"));
    row("key beyond ASCII", "de_DE", "\xe6\x97\xa5\xe6\x9c\xac", QStringLiteral("\u65e5\u672c"));
    row("empty", "de_DE", "", QStringLiteral(""));
    QTest::newRow("none") << "de_DE" << QString() << QString();
    row("without catalogue", "fr_FR", "Untitled Note", QStringLiteral("Untitled Note"));
    row("English", "en_GB", "Untitled Note", QStringLiteral("Untitled Note"));
    row("no language", "C", "Untitled Note", QStringLiteral("Untitled Note"));
}

void BundleTest::localizedString()
{
    QFETCH(QString, locale);
    QFETCH(QString, key);
    QFETCH(QString, text);
    qputenv("WAYFOLD_BUNDLE", _installed);
    QLocale::setDefault(QLocale(locale));
    const QString answer = Bundle::localizedString(key);
    QCOMPARE(answer, text);
    QCOMPARE(answer.isNull(), text.isNull());
}

void BundleTest::localizedStringOfAnotherBundle()
{
    const TemporaryHome other;
    QFile catalogue(QFile::decodeName(_installed) + "/Contents/Resources/wayfold_de.qm");
    QVERIFY(catalogue.open(QIODevice::ReadOnly));
    other.write("Contents/Resources/wayfold_fr.qm", catalogue.readAll());

    qputenv("WAYFOLD_BUNDLE", QFile::encodeName(other.path()));
    QLocale::setDefault(QLocale("fr_FR"));
    QCOMPARE(Bundle::localizedString("Untitled Note"), "Notiz ohne Titel");
    QLocale::setDefault(QLocale("de_DE"));
    QCOMPARE(Bundle::localizedString("Untitled Note"), "Untitled Note");
    qunsetenv("WAYFOLD_BUNDLE");
    QCOMPARE(Bundle::localizedString("Untitled Note"), "Untitled Note");
}

void BundleTest::catalogueOfTheHostIsNotAsked()
{
    QTranslator ofTheHost;
    QVERIFY(ofTheHost.load("wayfold_de", QFile::decodeName(_installed) + "/Contents/Resources"));
    QCoreApplication::installTranslator(&ofTheHost);
    qputenv("WAYFOLD_BUNDLE", _installed);
    QCOMPARE(Bundle::localizedString("Untitled Note"), "Untitled Note");
    QCoreApplication::removeTranslator(&ofTheHost);
}

void BundleTest::languagesOfTheUser_data()
{
    QTest::addColumn<QString>("languages");
    QTest::addColumn<QString>("text");
    QTest::newRow("German") << "de"
                            << "Notiz ohne Titel";
    QTest::newRow("French, then German") << "fr:de_AT"
                                         << "Notiz ohne Titel";
    QTest::newRow("English, then German") << "en:de"
                                          << "Untitled Note";
    QTest::newRow("none") << ""
                          << "Untitled Note";
}

void BundleTest::languagesOfTheUser()
{
    QFETCH(QString, languages);
    QFETCH(QString, text);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("WAYFOLD_BUNDLE", QString::fromLocal8Bit(_installed));
    environment.insert("LANGUAGE", languages);
    QProcess child;
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(), {"--print-text", "Untitled Note"});
    QVERIFY(child.waitForFinished());
    QCOMPARE(QString::fromUtf8(child.readAllStandardOutput()).trimmed(), text);
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc == 2 && QByteArray(argv[1]) == "--print-bundle") {
        const QString path = Bundle::path();
        puts(path.isNull() ? "(none)" : qPrintable(path));
        return 0;
    }
    if (argc == 3 && QByteArray(argv[1]) == "--print-text") {
        puts(Bundle::localizedString(QString::fromUtf8(argv[2])).toUtf8().constData());
        return 0;
    }
    BundleTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "BundleTest.moc"
