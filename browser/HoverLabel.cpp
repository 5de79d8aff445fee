#include "browser/HoverLabel.h"

#include <QEvent>

namespace
{
constexpr int messageTime = 6000; // milliseconds
} // namespace

HoverLabel::HoverLabel(QWidget *parent) : QLabel(parent)
{
    setObjectName(QStringLiteral("hoverLabel"));
    setTextFormat(Qt::PlainText);
    setAutoFillBackground(true);
    setFrameStyle(QFrame::StyledPanel | QFrame::Plain);
    setMargin(2);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    _hideTimer.setSingleShot(true);
    _hideTimer.setInterval(messageTime);
    connect(&_hideTimer, &QTimer::timeout, this, &QWidget::hide);
    parent->installEventFilter(this);
    hide();
}

void HoverLabel::showText(const QString &text)
{
    if (text.isEmpty() && _hideTimer.isActive())
        return; // a remark is still to be read
    _hideTimer.stop();
    _fullText = text;
    setVisible(!text.isEmpty());
    place();
}

void HoverLabel::showMessage(const QString &text)
{
    _hideTimer.stop();
    showText(text);
    if (!text.isEmpty())
        _hideTimer.start();
}

bool HoverLabel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        place();
    return QLabel::eventFilter(watched, event);
}

void HoverLabel::place()
{
    if (isHidden())
        return;
    const int widest = qMax(60, parentWidget()->width() * 2 / 3);
    setText(fontMetrics().elidedText(_fullText, Qt::ElideMiddle, widest));
    adjustSize();
    move(0, parentWidget()->height() - height());
    raise();
}
