#include "platform/widgets/Image.h"

#include "tests/support/TemporaryHome.h"

#include <QPainter>
#include <QTest>

namespace
{
constexpr auto svg = "<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16' viewBox='0 0 16 16'>"
                     "<rect x='0' y='0' width='8' height='16' fill='#ff0000'/>"
                     "<rect x='8' y='0' width='8' height='16' fill='#0000ff'/></svg>";

QImage halves(const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::blue);
    QPainter painter(&image);
    painter.fillRect(0, 0, size.width() / 2, size.height(), Qt::red);
    return image;
}

QImage drawn(const Image &image, const QSize &canvas, const QRectF &rect, qreal density = 1,
             QIcon::Mode mode = QIcon::Normal)
{
    QImage result(canvas * density, QImage::Format_ARGB32);
    result.setDevicePixelRatio(density);
    result.fill(Qt::white);
    QPainter painter(&result);
    image.drawInRect(painter, rect, mode);
    return result;
}

QRect paintedArea(const QImage &image)
{
    QRect area;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != QColor(Qt::white))
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}
} // namespace

class ImageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isNoneWithoutAPicture_data();
    void isNoneWithoutAPicture();
    void isNoneForNullPictures();
    void readsFiles_data();
    void readsFiles();
    void hasItsNaturalSizeAtFirst();
    void scalesOnlyWhenTold();
    void isCrispAtAnyDensity_data();
    void isCrispAtAnyDensity();
    void fillsTheRectangle();
    void cutsOffWhatStandsOver();
    void isDimmedWhenDisabled();
    void drawsWhateverItsCacheMode();
    void leavesThePainterAsItWas();
    void hasAnIcon();

private:
    TemporaryHome _home;
};

void ImageTest::isNoneWithoutAPicture_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("missing") << QByteArray();
    QTest::newRow("text") << QByteArray("not a picture");
    QTest::newRow("broken") << QByteArray("\x89PNG\r\n\x1a\nbroken");
}

void ImageTest::isNoneWithoutAPicture()
{
    QFETCH(QByteArray, contents);
    if (!contents.isEmpty())
        _home.write("picture.png", contents);
    QVERIFY(!Image::imageWithContentsOfFile(_home.path("picture.png")));
}

void ImageTest::isNoneForNullPictures()
{
    QVERIFY(!Image::imageWithContentsOfFile(QString()));
    QVERIFY(!Image::imageWithIcon(QIcon(), QSizeF(16, 16)));
    QVERIFY(!Image::imageWithPicture(QImage()));
}

void ImageTest::readsFiles_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSizeF>("size");
    QTest::newRow("SVG") << "halves.svg" << QSizeF(16, 16);
    QTest::newRow("PNG") << "halves.png" << QSizeF(24, 12);
}

void ImageTest::readsFiles()
{
    QFETCH(QString, name);
    QFETCH(QSizeF, size);
    _home.write("halves.svg", svg);
    QVERIFY(halves(QSize(24, 12)).save(_home.path("halves.png")));
    const auto image = Image::imageWithContentsOfFile(_home.path(name));
    QVERIFY(image);
    QCOMPARE(image->size(), size);
    const QImage result = drawn(*image, size.toSize(), QRectF(QPointF(), size));
    QCOMPARE(result.pixelColor(1, 1), QColor(Qt::red));
    QCOMPARE(result.pixelColor(result.width() - 2, 1), QColor(Qt::blue));
}

void ImageTest::hasItsNaturalSizeAtFirst()
{
    const auto image = Image::imageWithPicture(halves(QSize(20, 10)));
    QCOMPARE(image->size(), QSizeF(20, 10));
    QVERIFY(!image->scalesWhenResized());
    QCOMPARE(image->cacheMode(), Image::NSImageCacheDefault);
    image->setSize(QSizeF(16, 16));
    QCOMPARE(image->size(), QSizeF(16, 16));

    QImage dense = halves(QSize(32, 32));
    dense.setDevicePixelRatio(2);
    QCOMPARE(Image::imageWithPicture(dense)->size(), QSizeF(16, 16));
}

void ImageTest::scalesOnlyWhenTold()
{
    const auto image = Image::imageWithPicture(halves(QSize(8, 8)));
    QCOMPARE(paintedArea(drawn(*image, QSize(32, 32), QRectF(0, 0, 32, 32))), QRect(12, 12, 8, 8));
    image->setScalesWhenResized(true);
    QCOMPARE(paintedArea(drawn(*image, QSize(32, 32), QRectF(0, 0, 32, 32))), QRect(0, 0, 32, 32));
}

void ImageTest::isCrispAtAnyDensity_data()
{
    QTest::addColumn<qreal>("density");
    QTest::newRow("1x") << 1.0;
    QTest::newRow("1.5x") << 1.5;
    QTest::newRow("2x") << 2.0;
    QTest::newRow("3x") << 3.0;
}

// The edge between the two halves stays one sharp line.
void ImageTest::isCrispAtAnyDensity()
{
    QFETCH(qreal, density);
    _home.write("halves.svg", svg);
    const auto image = Image::imageWithContentsOfFile(_home.path("halves.svg"));
    image->setScalesWhenResized(true);
    const QImage result = drawn(*image, QSize(24, 24), QRectF(2, 2, 20, 20), density);
    const int edge = int(12 * density);
    const int middle = result.height() / 2;
    QCOMPARE(result.pixelColor(edge - 1, middle), QColor(Qt::red));
    QCOMPARE(result.pixelColor(edge, middle), QColor(Qt::blue));
    QCOMPARE(paintedArea(result), QRect(int(2 * density), int(2 * density), int(20 * density), int(20 * density)));
}

void ImageTest::fillsTheRectangle()
{
    const auto image = Image::imageWithPicture(halves(QSize(32, 8)));
    image->setScalesWhenResized(true);
    QCOMPARE(paintedArea(drawn(*image, QSize(20, 20), QRectF(2, 2, 16, 16))), QRect(2, 2, 16, 16));
}

void ImageTest::cutsOffWhatStandsOver()
{
    const auto image = Image::imageWithPicture(halves(QSize(30, 30)));
    QCOMPARE(paintedArea(drawn(*image, QSize(40, 40), QRectF(10, 10, 16, 16))), QRect(10, 10, 16, 16));
}

void ImageTest::isDimmedWhenDisabled()
{
    const auto image = Image::imageWithPicture(halves(QSize(16, 16)));
    const QRectF rect(0, 0, 16, 16);
    const QColor normal = drawn(*image, QSize(16, 16), rect).pixelColor(3, 3);
    const QColor disabled = drawn(*image, QSize(16, 16), rect, 1, QIcon::Disabled).pixelColor(3, 3);
    QCOMPARE(normal, QColor(Qt::red));
    QVERIFY(disabled.saturation() < normal.saturation() / 2);
}

void ImageTest::drawsWhateverItsCacheMode()
{
    _home.write("picture.svg", svg);
    const auto image = Image::imageWithContentsOfFile(_home.path("picture.svg"));
    const QRectF rect(0, 0, 16, 16);
    QCOMPARE(drawn(*image, QSize(16, 16), rect).pixelColor(1, 1), QColor(Qt::red));
    image->setCacheMode(Image::NSImageCacheNever);
    QCOMPARE(image->cacheMode(), Image::NSImageCacheNever);
    QCOMPARE(drawn(*image, QSize(16, 16), rect).pixelColor(1, 1), QColor(Qt::red));

    const auto picture = Image::imageWithPicture(halves(QSize(16, 16)));
    picture->setCacheMode(Image::NSImageCacheNever);
    QCOMPARE(drawn(*picture, QSize(16, 16), rect).pixelColor(1, 1), QColor(Qt::red));
}

void ImageTest::leavesThePainterAsItWas()
{
    const auto image = Image::imageWithPicture(halves(QSize(8, 8)));
    QImage canvas(20, 20, QImage::Format_ARGB32);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    image->drawInRect(painter, QRectF(0, 0, 8, 8));
    QVERIFY(!painter.hasClipping());
    image->drawInRect(painter, QRectF());
    painter.end();
    QCOMPARE(paintedArea(canvas), QRect(0, 0, 8, 8));
}

void ImageTest::hasAnIcon()
{
    const auto image = Image::imageWithPicture(halves(QSize(16, 16)));
    QCOMPARE(image->icon().availableSizes(), QList<QSize>({QSize(16, 16)}));
}

QTEST_MAIN(ImageTest)
#include "ImageTest.moc"
