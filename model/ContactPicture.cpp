#include "model/ContactPicture.h"

#include "model/ItemImages.h"

#include <QBuffer>
#include <QImageReader>
#include <algorithm>

namespace
{
constexpr int maximumSide = 128; // pixels

// The square in the middle.
QRect middleOf(const QSize &size)
{
    const int side = std::min(size.width(), size.height());
    return {(size.width() - side) / 2, (size.height() - side) / 2, side, side};
}
} // namespace

std::shared_ptr<Image> ContactPicture::fromData(const QByteArray &file)
{
    if (file.isEmpty())
        return nullptr;
    QBuffer buffer;
    buffer.setData(file);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    // Read no larger than needed, which some formats do at a fraction of the time.
    const QSize size = reader.size();
    if (std::min(size.width(), size.height()) > maximumSide)
        reader.setScaledSize(size.scaled(maximumSide, maximumSide, Qt::KeepAspectRatioByExpanding));
    const QImage picture = reader.read();
    return picture.isNull() ? nullptr
                            : ItemImages::neverCached(Image::imageWithPicture(picture.copy(middleOf(picture.size()))));
}

QByteArray ContactPicture::toPng(const Image &image)
{
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    const QIcon icon = image.icon();
    icon.pixmap(icon.actualSize(QSize(maximumSide, maximumSide), QIcon::Normal), 1.0).save(&file, "PNG");
    return file.data();
}
