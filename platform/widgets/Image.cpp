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
    return std::shared_ptr<Image>(new Image(QIcon(path), size));
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
    return std::shared_ptr<Image>(new Image(icon, picture.deviceIndependentSize()));
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
    // The icon keeps a rendering of each size and density, which is what drawing it afresh would give: a list draws the
    // same picture on every row, and rendering it there each time would take longer than a frame.
    const qreal density = painter.device()->devicePixelRatio();
    const QPixmap pixmap = _icon.pixmap(target.size().toSize().expandedTo(QSize(1, 1)), density, mode);
    if (pixmap.isNull())
        return;
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(target, pixmap, QRectF(pixmap.rect()));
    painter.restore();
}
