#include "drawer/WayfoldBookmarkTextCell.h"

#include "core/KDRDrawerBundle.h"
#include "core/settings/WayfoldDefaults.h"
#include "platform/base/Log.h"
#include "platform/widgets/Image.h"

#include <QPainter>
#include <QStyleOptionViewItem>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace
{
// Where a rectangle that is read from left to right lies in a cell of that direction.
QRectF visualRect(Qt::LayoutDirection direction, const QRectF &cell, QRectF rect)
{
    if (direction == Qt::RightToLeft)
        rect.moveRight(cell.left() + cell.right() - rect.left());
    return rect;
}
} // namespace

QMenu *WayfoldBookmarkTextCell::defaultMenu()
{
    return KDRDrawerBundle::sharedInstance().menu();
}

std::unique_ptr<TextFieldCell> WayfoldBookmarkTextCell::copy() const
{
    return std::unique_ptr<TextFieldCell>(new WayfoldBookmarkTextCell(*this));
}

std::shared_ptr<Image> WayfoldBookmarkTextCell::image() const
{
    return WayfoldDefaults::sharedInstance().showBookmarkIcons() ? _image : nullptr;
}

void WayfoldBookmarkTextCell::setImage(const std::shared_ptr<Image> &image)
{
    if (image == _image)
        return;
    _image = image;
    if (_image)
        _image->setScalesWhenResized(true);
}

// --- Layout ---------------------------------------------------------------------------------------------------------

QSizeF WayfoldBookmarkTextCell::cellSize() const
{
    QSizeF size = TextFieldCell::cellSize();
    if (const std::shared_ptr<Image> shown = image())
        size.rwidth() += shown->size().width() + imageGap;
    return size;
}

void WayfoldBookmarkTextCell::divideRectIntoImageFrameAndTextFrame(const QRectF &rect, QRectF &imageFrame,
                                                                   QRectF &textFrame) const
{
    const std::shared_ptr<Image> shown = image();
    const qreal slot = shown ? std::min(shown->size().width() + imageGap, rect.width()) : 0;
    imageFrame = shown ? QRectF(rect.topLeft(), QSizeF(slot, rect.height())) : QRectF();
    textFrame = rect.adjusted(slot, 0, 0, 0);
}

QRectF WayfoldBookmarkTextCell::computeTextFrame(const QRectF &rect) const
{
    QRectF imageFrame;
    QRectF textFrame;
    divideRectIntoImageFrameAndTextFrame(rect, imageFrame, textFrame);
    return textFrame;
}

QRectF WayfoldBookmarkTextCell::imageFrameForCellFrame(const QRectF &cellFrame) const
{
    qCInfo(logWayfold, "imageFrameForCellFrame was actually called");
    const std::shared_ptr<Image> shown = image();
    if (!shown)
        return {};
    const QSizeF size = shown->size();
    const qreal above = std::ceil((cellFrame.height() - size.height()) * 0.5);
    return {cellFrame.topLeft() + QPointF(imageGap, above), size};
}

// --- Drawing and editing --------------------------------------------------------------------------------------------

void WayfoldBookmarkTextCell::drawWithFrameInView(const QRectF &cellFrame, QPainter &painter,
                                                  const QStyleOptionViewItem &view) const
{
    const std::shared_ptr<Image> shown = image();
    if (!shown) {
        TextFieldCell::drawWithFrameInView(cellFrame, painter, view);
        return;
    }
    const QSizeF size(cellFrame.height(), cellFrame.height());
    shown->setSize(size);
    QRectF imageFrame;
    QRectF textFrame;
    divideRectIntoImageFrameAndTextFrame(cellFrame, imageFrame, textFrame);
    if (drawsBackground())
        painter.fillRect(visualRect(view.direction, cellFrame, imageFrame), backgroundColor());
    // Its lower edge lies on a whole point.
    const qreal bottom = imageFrame.top() + std::ceil((cellFrame.height() + size.height()) * 0.5);
    const QRectF picture(QPointF(imageFrame.left() + imageGap, bottom - size.height()), size);
    shown->drawInRect(painter, visualRect(view.direction, cellFrame, picture),
                      view.state & QStyle::State_Enabled ? QIcon::Normal : QIcon::Disabled);
    TextFieldCell::drawWithFrameInView(visualRect(view.direction, cellFrame, textFrame), painter, view);
}

void WayfoldBookmarkTextCell::editWithFrameInViewEditorDelegateEvent(const QRectF &frame, QWidget &view,
                                                                     QLineEdit &editor, QObject *delegate,
                                                                     const QEvent *event) const
{
    TextFieldCell::editWithFrameInViewEditorDelegateEvent(
        visualRect(view.layoutDirection(), frame, computeTextFrame(frame)), view, editor, delegate, event);
}

void WayfoldBookmarkTextCell::selectWithFrameInViewEditorDelegateStartLength(const QRectF &frame, QWidget &view,
                                                                             QLineEdit &editor, QObject *delegate,
                                                                             int start, int length) const
{
    TextFieldCell::selectWithFrameInViewEditorDelegateStartLength(
        visualRect(view.layoutDirection(), frame, computeTextFrame(frame)), view, editor, delegate, start, length);
}
