#include "platform/widgets/OutlineDelegate.h"

#include "platform/widgets/Image.h"
#include "platform/widgets/OutlineModel.h"
#include "platform/widgets/OutlineView.h"
#include "platform/widgets/OutlineViewDataSource.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QtMath>

namespace
{
constexpr int textPadding = 2; // within the text's frame, at either end
// No list is wide enough for more, and measuring takes time.
constexpr int longestText = 1000;

QPalette::ColorGroup colorGroup(QStyle::State state)
{
    if (!(state & QStyle::State_Enabled))
        return QPalette::Disabled;
    return state & QStyle::State_Active ? QPalette::Active : QPalette::Inactive;
}
} // namespace

OutlineDelegate::OutlineDelegate(OutlineView &view) : QStyledItemDelegate(&view), _view(view) {}

QRect OutlineDelegate::imageFrame(const QRect &cell)
{
    return {cell.x() + imageGap, cell.y(), cell.height(), cell.height()};
}

QRect OutlineDelegate::textFrame(const QRect &cell, bool hasImage)
{
    return hasImage ? cell.adjusted(cell.height() + imageGap, 0, 0, 0) : cell;
}

void OutlineDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    OutlineViewDataSource *source = _view.outlineDataSource();
    const OutlineItemPtr item = static_cast<const OutlineModel *>(index.model())->itemOfIndex(index);
    if (!source || !item)
        return;
    // The value first: asking for it may bring the item up to date.
    const QString text = source->outlineViewObjectValueByItem(_view, item);
    OutlineCell cell;
    cell.font = option.font;
    source->outlineViewWillDisplayCell(_view, cell, item);

    const QStyle *style = _view.style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, &_view);
    if (cell.image) {
        const QRect frame = QStyle::visualRect(option.direction, option.rect, imageFrame(option.rect));
        cell.image->setScalesWhenResized(true);
        cell.image->setSize(frame.size());
        cell.image->drawInRect(*painter, frame, option.state & QStyle::State_Enabled ? QIcon::Normal : QIcon::Disabled);
    }
    const QRect frame =
        QStyle::visualRect(option.direction, option.rect, textFrame(option.rect, cell.image != nullptr));
    drawText(*painter, option, frame, cell.font, text);
    if (option.state & QStyle::State_HasFocus) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        focus.rect = frame;
        focus.state |= QStyle::State_KeyboardFocusChange | QStyle::State_Item;
        focus.backgroundColor = option.palette.color(
            colorGroup(option.state), option.state & QStyle::State_Selected ? QPalette::Highlight : QPalette::Base);
        style->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter, &_view);
    }
}

void OutlineDelegate::drawText(QPainter &painter, const QStyleOptionViewItem &option, const QRect &frame,
                               const QFont &font, const QString &text) const
{
    const QRect inner = frame.adjusted(textPadding, 0, -textPadding, 0);
    if (text.isEmpty() || inner.width() <= 0)
        return;
    const QPalette::ColorRole role = option.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text;
    painter.setPen(option.palette.color(colorGroup(option.state), role));
    painter.setFont(font);
    const QString elided = painter.fontMetrics().elidedText(text.left(longestText), option.textElideMode, inner.width(),
                                                            Qt::TextSingleLine);
    painter.drawText(
        inner, int(QStyle::visualAlignment(option.direction, Qt::AlignLeft | Qt::AlignVCenter)) | Qt::TextSingleLine,
        elided);
}

QSize OutlineDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex & /*index*/) const
{
    const int height = qCeil(_view.rowHeight());
    return {option.fontMetrics.averageCharWidth() * 20 + height, height};
}
