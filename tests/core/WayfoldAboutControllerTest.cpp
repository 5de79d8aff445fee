#include "core/WayfoldAboutController.h"

#include "tests/support/FakeHost.h"
#include "tests/support/TemporaryHome.h"

#include <QLabel>
#include <QtTest>

class WayfoldAboutControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        qputenv("WAYFOLD_BUNDLE", _bundle);
        if (window())
            window()->close();
        QTRY_VERIFY(!window());
    }

    void showsNameAndVersion();
    void versionThatCannotBeRead();
    void opensInTheMiddleOfTheKeyWindowsScreen();
    void thereIsOneOnly();
    void closes_data();
    void closes();
    void browserMayQuitWhileItIsOpen();
    void missingInterfaceFile();

private:
    static QWidget *window() { return WayfoldAboutController::window(); }
    static QString text(const char *name) { return window()->findChild<QLabel *>(QLatin1String(name))->text(); }

    const QByteArray _bundle = qgetenv("WAYFOLD_BUNDLE");
};

void WayfoldAboutControllerTest::showsNameAndVersion()
{
    QVERIFY(!window());
    WayfoldAboutController::displayAboutWindow();
    QVERIFY(window());
    QVERIFY(window()->isVisible());
    QTRY_VERIFY(window()->isActiveWindow());
    QCOMPARE(window()->windowTitle(), QStringLiteral("About Wayfold"));
    QCOMPARE(text("nameField"), QStringLiteral("Wayfold"));
    QVERIFY2(QRegularExpression(QStringLiteral("^Version \\d+\\.\\d+\\.\\d+$")).match(text("versionField")).hasMatch(),
             qPrintable(text("versionField")));
    QVERIFY(!window()->findChild<QLabel *>(QStringLiteral("iconView"))->pixmap().isNull());
}

void WayfoldAboutControllerTest::versionThatCannotBeRead()
{
    // A plug-in folder that has nothing but the interface file.
    const TemporaryHome folder;
    QFile interface(QFile::decodeName(_bundle) + QStringLiteral("/Contents/Resources/WayfoldAbout.ui"));
    QVERIFY(interface.open(QIODevice::ReadOnly));
    folder.write(QStringLiteral("Contents/Resources/WayfoldAbout.ui"), interface.readAll());
    qputenv("WAYFOLD_BUNDLE", QFile::encodeName(folder.path()));
    WayfoldAboutController::displayAboutWindow();
    QVERIFY(window());
    QCOMPARE(text("versionField"), QStringLiteral("Version 1.0.0"));
}

void WayfoldAboutControllerTest::opensInTheMiddleOfTheKeyWindowsScreen()
{
    FakeHostApplication host;
    host.key = host.openWindow();
    host.key->screenFrame = QRectF(100, 50, 600, 400);
    WayfoldAboutController::displayAboutWindow();
    const QPoint offCenter = window()->frameGeometry().center() - QPoint(400, 250);
    constexpr int frameWidths = 8; // not known before the window shows
    QVERIFY2(offCenter.manhattanLength() <= frameWidths, qPrintable(QDebug::toString(window()->frameGeometry())));
}

void WayfoldAboutControllerTest::thereIsOneOnly()
{
    WayfoldAboutController::displayAboutWindow();
    const QPointer<QWidget> first = window();
    QWidget other;
    other.show();
    other.activateWindow();
    QTRY_VERIFY(other.isActiveWindow());
    WayfoldAboutController::displayAboutWindow();
    QCOMPARE(window(), first);
    QTRY_VERIFY(first->isActiveWindow());
}

void WayfoldAboutControllerTest::closes_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Escape") << int(Qt::Key_Escape) << int(Qt::NoModifier);
    QTest::newRow("Control and W") << int(Qt::Key_W) << int(Qt::ControlModifier);
}

void WayfoldAboutControllerTest::closes()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    WayfoldAboutController::displayAboutWindow();
    QTRY_VERIFY(window()->isActiveWindow());
    QTest::keyClick(window(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QTRY_VERIFY(!window());
    WayfoldAboutController::displayAboutWindow();
    QVERIFY(window()); // and opens again
}

void WayfoldAboutControllerTest::browserMayQuitWhileItIsOpen()
{
    WayfoldAboutController::displayAboutWindow();
    QVERIFY(!window()->testAttribute(Qt::WA_QuitOnClose));
}

void WayfoldAboutControllerTest::missingInterfaceFile()
{
    qputenv("WAYFOLD_BUNDLE", "/nowhere");
    WayfoldAboutController::displayAboutWindow();
    QVERIFY(!window());
}

QTEST_MAIN(WayfoldAboutControllerTest)
#include "WayfoldAboutControllerTest.moc"
