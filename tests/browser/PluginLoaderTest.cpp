#include "browser/PluginLoader.h"

#include "tests/support/TemporaryHome.h"

#include <QLibraryInfo>
#include <QRegularExpression>
#include <QTest>

class PluginLoaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { qunsetenv("WAYFOLD_PLUGIN"); }
    void candidates();
    void chosenLibrary();
    void missingLibrary();
    void brokenLibrary();
    void otherLibrary();
};

void PluginLoaderTest::candidates()
{
    QCOMPARE(PluginLoader::candidates("/opt/bin"),
             QStringList({"/opt/Wayfold.plugin/Contents/Plugin/libwayfold.so",
                          "/opt/lib/wayfold/Wayfold.plugin/Contents/Plugin/libwayfold.so"}));
}

void PluginLoaderTest::chosenLibrary()
{
    qputenv("WAYFOLD_PLUGIN", "/elsewhere/libwayfold.so");
    QCOMPARE(PluginLoader::candidates("/opt/bin"), QStringList("/elsewhere/libwayfold.so"));
}

void PluginLoaderTest::missingLibrary()
{
    QVERIFY(!PluginLoader::load({}, nullptr).plugin);
    QVERIFY(!PluginLoader::load({"/nowhere/libwayfold.so"}, nullptr).plugin);
}

void PluginLoaderTest::brokenLibrary()
{
    const TemporaryHome home;
    home.write("libwayfold.so", "no library");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("could not be loaded"));
    QVERIFY(!PluginLoader::load({home.path("libwayfold.so")}, nullptr).plugin);
}

// A plug-in of Qt's that is none of ours.
void PluginLoaderTest::otherLibrary()
{
    const QString path = QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/imageformats/libqsvg.so";
    QVERIFY(QFile::exists(path));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("could not be loaded"));
    QVERIFY(!PluginLoader::load({path}, nullptr).plugin);
}

QTEST_GUILESS_MAIN(PluginLoaderTest)
#include "PluginLoaderTest.moc"
