#pragma once

#include <QIcon>
#include <QImage>
#include <QRectF>
#include <QSizeF>
#include <memory>

class QPainter;

// An image that is drawn crisp at any size and pixel density when its source allows it (SVG, icon themes). Shared by
// pointer: the same image object may be on many rows.
class Image
{
public:
    enum CacheMode {
        NSImageCacheDefault = 0,
        NSImageCacheNever = 3, // no drawing is scaled from a rendering of another size; which none is here
    };

    // None when the file is missing or no image.
    static std::shared_ptr<Image> imageWithContentsOfFile(const QString &path);
    // None for a null icon.
    static std::shared_ptr<Image> imageWithIcon(const QIcon &icon, const QSizeF &naturalSize);
    // None for a null picture.
    static std::shared_ptr<Image> imageWithPicture(const QImage &picture);

    // In device-independent pixels; the natural size until `setSize`.
    QSizeF size() const { return _size; }
    void setSize(const QSizeF &size) { _size = size; }
    // Whether drawing at another size scales the picture.
    bool scalesWhenResized() const { return _scalesWhenResized; }
    void setScalesWhenResized(bool scales) { _scalesWhenResized = scales; }
    CacheMode cacheMode() const { return _cacheMode; }
    void setCacheMode(CacheMode mode) { _cacheMode = mode; }

    // Fills the rectangle when the picture may be scaled, else puts it into the middle at its natural size and cuts off
    // what stands over.
    void drawInRect(QPainter &painter, const QRectF &rect, QIcon::Mode mode = QIcon::Normal) const;
    // For buttons and other widgets that take icons.
    QIcon icon() const { return _icon; }

private:
    Image(QIcon icon, const QSizeF &size);

    QIcon _icon;
    QSizeF _naturalSize;
    QSizeF _size;
    bool _scalesWhenResized = false;
    CacheMode _cacheMode = NSImageCacheDefault;
};
