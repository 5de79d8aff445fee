#include "browser/DisplayPlatform.h"

#include <QTest>

class DisplayPlatformTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choice_data();
    void choice();
    void chooses();
    void placesWindows();
};

void DisplayPlatformTest::choice_data()
{
    QTest::addColumn<QStringList>("environment");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("platforms");

    const QString x = "DISPLAY=:0";
    const QString wayland = "WAYLAND_DISPLAY=wayland-0";
    const QString variable = "QT_QPA_PLATFORM=offscreen";
    QTest::newRow("X11") << QStringList{x} << ""
                         << "xcb";
    QTest::newRow("Wayland with an X server") << QStringList{x, wayland} << ""
                                              << "xcb;wayland";
    QTest::newRow("Wayland alone") << QStringList{wayland} << ""
                                   << "wayland";
    QTest::newRow("Wayland, no X server named") << QStringList{"DISPLAY=", wayland} << ""
                                                << "wayland";
    QTest::newRow("nothing") << QStringList() << ""
                             << "";
    QTest::newRow("variable") << QStringList{x, wayland, variable} << ""
                              << "offscreen";
    QTest::newRow("empty variable") << QStringList{x, "QT_QPA_PLATFORM="} << ""
                                    << "xcb";
    QTest::newRow("argument") << QStringList{x, wayland} << "wayland"
                              << "wayland";
    QTest::newRow("argument before variable") << QStringList{x, variable} << "wayland"
                                              << "wayland";
}

void DisplayPlatformTest::choice()
{
    QFETCH(QStringList, environment);
    QFETCH(QString, asked);
    QFETCH(QString, platforms);
    QProcessEnvironment variables;
    for (const QString &entry : environment)
        variables.insert(entry.section('=', 0, 0), entry.section('=', 1));
    QCOMPARE(DisplayPlatform::choice(variables, asked), platforms);
}

void DisplayPlatformTest::chooses()
{
    const QByteArray before = qgetenv("QT_QPA_PLATFORM");
    qunsetenv("QT_QPA_PLATFORM");
    qputenv("DISPLAY", ":0");
    qunsetenv("WAYLAND_DISPLAY");
    DisplayPlatform::choose({});
    QCOMPARE(qgetenv("QT_QPA_PLATFORM"), QByteArray("xcb"));
    DisplayPlatform::choose("wayland");
    QCOMPARE(qgetenv("QT_QPA_PLATFORM"), QByteArray("wayland"));
    qunsetenv("QT_QPA_PLATFORM");
    qunsetenv("DISPLAY");
    DisplayPlatform::choose({});
    QVERIFY(!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"));
    qputenv("QT_QPA_PLATFORM", before);
}

void DisplayPlatformTest::placesWindows()
{
    QVERIFY(DisplayPlatform::canPlaceWindows());
}

QTEST_MAIN(DisplayPlatformTest)
#include "DisplayPlatformTest.moc"
