#include "platform/widgets/TextFieldCell.h"

#include "platform/widgets/ElidedText.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionViewItem>

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

void drawFocus(const QRect &frame, QPainter &painter, const QStyleOptionViewItem &view)
{
    const bool isSelected = view.state & QStyle::State_Selected;
    QStyleOptionFocusRect focus;
    focus.QStyleOption::operator=(view);
    focus.rect = frame;
    focus.state |= QStyle::State_KeyboardFocusChange | QStyle::State_Item;
    focus.backgroundColor =
        view.palette.color(colorGroup(view.state), isSelected ? QPalette::Highlight : QPalette::Base);
    const QStyle *style = view.widget ? view.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, view.widget);
}
} // namespace

std::unique_ptr<TextFieldCell> TextFieldCell::copy() const
{
    return std::unique_ptr<TextFieldCell>(new TextFieldCell(*this));
}

QSizeF TextFieldCell::cellSize() const
{
    const QFontMetricsF metrics(_font);
    return {metrics.horizontalAdvance(_stringValue) + 2 * textPadding, metrics.height()};
}

// --- Drawing --------------------------------------------------------------------------------------------------------

void TextFieldCell::drawWithFrameInView(const QRectF &frame, QPainter &painter, const QStyleOptionViewItem &view) const
{
    if (_drawsBackground)
        painter.fillRect(frame, _backgroundColor);
    drawText(frame, painter, view);
    if (view.state & QStyle::State_HasFocus)
        drawFocus(frame.toRect(), painter, view);
}

void TextFieldCell::drawText(const QRectF &frame, QPainter &painter, const QStyleOptionViewItem &view) const
{
    const QRectF inner = frame.adjusted(textPadding, 0, -textPadding, 0);
    if (_stringValue.isEmpty() || inner.width() <= 0)
        return;
    const QPalette::ColorRole role = view.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text;
    painter.setPen(view.palette.color(colorGroup(view.state), role));
    painter.setFont(_font);
    const QString elided = ElidedText::inWidth(_stringValue.left(longestText), painter.fontMetrics(),
                                               view.textElideMode, int(inner.width()));
    painter.drawText(
        inner, int(QStyle::visualAlignment(view.direction, Qt::AlignLeft | Qt::AlignVCenter)) | Qt::TextSingleLine,
        elided);
}

// --- Editing --------------------------------------------------------------------------------------------------------

void TextFieldCell::openEditor(const QRectF &frame, QWidget &view, QLineEdit &editor, QObject *delegate) const
{
    editor.setParent(&view);
    editor.setFont(_font);
    editor.setText(_stringValue);
    editor.setGeometry(frame.toRect());
    if (delegate)
        editor.installEventFilter(delegate);
    editor.show();
    editor.setFocus(Qt::OtherFocusReason);
}

void TextFieldCell::editWithFrameInViewEditorDelegateEvent(const QRectF &frame, QWidget &view, QLineEdit &editor,
                                                           QObject *delegate, const QEvent *event) const
{
    openEditor(frame, view, editor, delegate);
    if (event && event->type() == QEvent::MouseButtonPress) {
        const QPoint point = static_cast<const QMouseEvent *>(event)->position().toPoint();
        editor.setCursorPosition(editor.cursorPositionAt(editor.mapFrom(&view, point)));
    }
}

void TextFieldCell::selectWithFrameInViewEditorDelegateStartLength(const QRectF &frame, QWidget &view,
                                                                   QLineEdit &editor, QObject *delegate, int start,
                                                                   int length) const
{
    openEditor(frame, view, editor, delegate);
    editor.setSelection(start, length);
}
