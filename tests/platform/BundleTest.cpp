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
    void localizedStringWithoutCatalogue();
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

class Catalogue : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *text, const char *, int) const override
    {
        if (QByteArray(context) != "Wayfold")
            return QStringLiteral("of another context");
        if (QByteArray(text) == "New Folder")
            return QStringLiteral("Neuer Ordner");
        if (QByteArray(text) == "Caf\xc3\xa9")
            return QStringLiteral("Kaffeehaus");
        return QByteArray(text) == "Emptied" ? QStringLiteral("") : QString();
    }
};
} // namespace

void BundleTest::cleanup()
{
    qunsetenv("WAYFOLD_BUNDLE");
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
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    QTest::newRow("translated") << "New Folder"
                                << "Neuer Ordner";
    QTest::newRow("beyond ASCII") << QStringLiteral("Caf\u00e9") << "Kaffeehaus";
    QTest::newRow("not translated") << "Untitled Note"
                                    << "Untitled Note";
    QTest::newRow("translated as nothing") << "Emptied"
                                           << "Emptied";
    QTest::newRow("empty") << ""
                           << "";
}

void BundleTest::localizedString()
{
    QFETCH(QString, key);
    QFETCH(QString, text);
    Catalogue catalogue;
    QCoreApplication::installTranslator(&catalogue);
    QCOMPARE(Bundle::localizedString(key), text);
    QCoreApplication::removeTranslator(&catalogue);
}

void BundleTest::localizedStringWithoutCatalogue()
{
    QCOMPARE(Bundle::localizedString("Untitled Note"), "Untitled Note");
    QCOMPARE(Bundle::localizedString(QStringLiteral("\u65e5\u672c")), QStringLiteral("\u65e5\u672c"));
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc == 2 && QByteArray(argv[1]) == "--print-bundle") {
        const QString path = Bundle::path();
        puts(path.isNull() ? "(none)" : qPrintable(path));
        return 0;
    }
    BundleTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "BundleTest.moc"
