#include "platform/widgets/Image.h"

#include <QImageReader>
#include <QPainter>
#include <QPixmap>

Image::Image(QIcon icon, const QSizeF &size) : _icon(std::move(icon)), _naturalSize(size), _size(size) {}

std::shared_ptr<Image> Image::imageWithContentsOfFile(const QString &path)
{
    QImageReader reader(path);
    if (path.isEmpty() || !reader.canRead())
        return nullptr;
    QSize size = reader.size();
    if (!size.isValid())
        size = reader.read().size(); // the format does not tell before it is read
    if (size.isEmpty())
        return nullptr;
    auto image = std::shared_ptr<Image>(new Image(QIcon(path), size));
    image->_path = path;
    return image;
}

std::shared_ptr<Image> Image::imageWithIcon(const QIcon &icon, const QSizeF &naturalSize)
{
    return icon.isNull() ? nullptr : std::shared_ptr<Image>(new Image(icon, naturalSize));
}

std::shared_ptr<Image> Image::imageWithPicture(const QImage &picture)
{
    if (picture.isNull())
        return nullptr;
    const QIcon icon(QPixmap::fromImage(picture));
    auto image = std::shared_ptr<Image>(new Image(icon, picture.deviceIndependentSize()));
    image->_picture = picture;
    return image;
}

// An icon keeps what it has rendered; a new one has nothing to keep yet.
QIcon Image::iconToDraw() const
{
    if (_cacheMode != NSImageCacheNever)
        return _icon;
    if (!_path.isNull())
        return QIcon(_path);
    return _picture.isNull() ? _icon : QIcon(QPixmap::fromImage(_picture));
}

void Image::drawInRect(QPainter &painter, const QRectF &rect, QIcon::Mode mode) const
{
    QRectF target = rect;
    if (!_scalesWhenResized) {
        target = QRectF(QPointF(), _naturalSize);
        target.moveCenter(rect.center());
    }
    if (target.isEmpty())
        return;
    const qreal density = painter.device()->devicePixelRatio();
    const QPixmap pixmap = iconToDraw().pixmap(target.size().toSize().expandedTo(QSize(1, 1)), density, mode);
    if (pixmap.isNull())
        return;
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(target, pixmap, QRectF(pixmap.rect()));
    painter.restore();
}
