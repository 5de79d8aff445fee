#include "browser/SymbolIcon.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

namespace
{
QByteArray drawing(const QString &symbol)
{
    QFile file(QStringLiteral(":/wayfold-browser/icons/%1.svg").arg(symbol));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void paintDrawing(QPainter *painter, const QRectF &rect, const QByteArray &drawing, const QColor &color)
{
    QByteArray svg = drawing;
    QSvgRenderer renderer(svg.replace("currentColor", color.name().toLatin1()));
    QSizeF size = QSizeF(1, 1).scaled(rect.size(), Qt::KeepAspectRatio);
    QRectF target(QPointF(), size);
    target.moveCenter(rect.center());
    renderer.render(painter, target);
}

// Draws in the palette's colour of the moment.
class SymbolIconEngine : public QIconEngine
{
public:
    explicit SymbolIconEngine(QByteArray drawing) : _drawing(std::move(drawing)) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        paintDrawing(painter, rect, _drawing, QApplication::palette().color(group, role));
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        paint(&painter, QRect(QPoint(), size), mode, state);
        painter.end();
        return QPixmap::fromImage(image);
    }
    QIconEngine *clone() const override { return new SymbolIconEngine(*this); }

private:
    QByteArray _drawing;
};
} // namespace

QIcon SymbolIcon::themed(const QString &themeName, const QString &symbol)
{
    return QIcon::hasThemeIcon(themeName) ? QIcon::fromTheme(themeName) : named(symbol);
}

QIcon SymbolIcon::named(const QString &symbol)
{
    return QIcon(new SymbolIconEngine(drawing(symbol)));
}

QImage SymbolIcon::image(const QString &symbol, const QSize &size)
{
    const QByteArray svg = drawing(symbol);
    if (svg.isEmpty() || size.isEmpty())
        return {};
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paintDrawing(&painter, QRectF(QPointF(), size), svg, QApplication::palette().color(QPalette::Text));
    painter.end();
    return image;
}
