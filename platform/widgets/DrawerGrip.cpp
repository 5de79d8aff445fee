#include "platform/widgets/DrawerGrip.h"

#include "platform/files/Bundle.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace
{
constexpr int dots = 3;
constexpr int dotSize = 2;
constexpr int dotDistance = 6;
} // namespace

DrawerGrip::DrawerGrip(QWidget *parent) : QWidget(parent)
{
    setCursor(Qt::SplitHCursor);
    setFocusPolicy(Qt::TabFocus); // the mouse leaves the keyboard where it is
    setToolTip(
        Bundle::localizedString(QStringLiteral(QT_TRID_NOOP("Drag or press the arrow keys to change the width"))));
    setAccessibleName(Bundle::localizedString(QStringLiteral(QT_TRID_NOOP("Width of the drawer"))));
}

void DrawerGrip::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    _start = event->globalPosition().toPoint().x();
    Q_EMIT grabbed();
}

void DrawerGrip::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        Q_EMIT dragged(event->globalPosition().toPoint().x() - _start);
}

void DrawerGrip::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Left && event->key() != Qt::Key_Right) {
        QWidget::keyPressEvent(event);
        return;
    }
    Q_EMIT grabbed();
    Q_EMIT dragged(event->key() == Qt::Key_Left ? -keyStep : keyStep);
}

void DrawerGrip::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    QColor color = palette().color(hasFocus() ? QPalette::HighlightedText : QPalette::WindowText);
    if (hasFocus())
        painter.fillRect(rect(), palette().color(QPalette::Highlight));
    else
        color.setAlphaF(0.35F);
    const int x = (width() - dotSize) / 2;
    const int y = (height() - (dots - 1) * dotDistance - dotSize) / 2;
    for (int i = 0; i < dots; ++i)
        painter.fillRect(x, y + i * dotDistance, dotSize, dotSize, color);
}
