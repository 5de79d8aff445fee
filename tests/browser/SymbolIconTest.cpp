#include "browser/SymbolIcon.h"

#include <QApplication>
#include <QDir>
#include <QPalette>
#include <QTest>

class SymbolIconTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyDrawing_data();
    void everyDrawing();
    void followsThePalette();
    void unknownDrawing();
    void themeWithoutIcons();
};

namespace
{
// The strongest colour in the picture.
QColor inkOf(const QImage &image)
{
    QColor ink(0, 0, 0, 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > ink.alpha())
                ink = image.pixelColor(x, y);
        }
    }
    return ink;
}
} // namespace

void SymbolIconTest::everyDrawing_data()
{
    QTest::addColumn<QString>("symbol");
    for (const QString &file : QDir(":/wayfold-browser/icons").entryList({"*.svg"}))
        QTest::newRow(qPrintable(file)) << file.chopped(4);
}

void SymbolIconTest::everyDrawing()
{
    QFETCH(QString, symbol);
    for (const int size : {16, 32, 48}) {
        const QImage image = SymbolIcon::image(symbol, QSize(size, size));
        QCOMPARE(image.size(), QSize(size, size));
        QVERIFY(inkOf(image).alpha() > 100);
    }
}

void SymbolIconTest::followsThePalette()
{
    const QIcon icon = SymbolIcon::named("stop");
    QPalette palette;
    palette.setColor(QPalette::ButtonText, Qt::red);
    QApplication::setPalette(palette);
    QCOMPARE(inkOf(icon.pixmap(32).toImage()).hue(), QColor(Qt::red).hue());
    palette.setColor(QPalette::ButtonText, Qt::blue);
    QApplication::setPalette(palette);
    QCOMPARE(inkOf(icon.pixmap(32).toImage()).hue(), QColor(Qt::blue).hue());
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, Qt::green);
    QApplication::setPalette(palette);
    QCOMPARE(inkOf(icon.pixmap(QSize(32, 32), QIcon::Disabled).toImage()).hue(), QColor(Qt::green).hue());
}

void SymbolIconTest::unknownDrawing()
{
    QVERIFY(SymbolIcon::image("nothing", QSize(16, 16)).isNull());
    QVERIFY(SymbolIcon::image("stop", QSize()).isNull());
}

void SymbolIconTest::themeWithoutIcons()
{
    QIcon::setThemeName("no such theme");
    const QIcon icon = SymbolIcon::themed("go-previous", "back");
    QVERIFY(inkOf(icon.pixmap(16).toImage()).alpha() > 100);
}

QTEST_MAIN(SymbolIconTest)
#include "SymbolIconTest.moc"
