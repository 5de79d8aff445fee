#include "drawer/MessageBar.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/widgets/Image.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <algorithm>

namespace
{
constexpr int slideMilliseconds = 150;
constexpr int margin = 8;
constexpr int spacing = 6;
constexpr int gapBelow = 6; // to what the bar stands above
constexpr int iconSize = 16;
constexpr qreal radius = 4;
constexpr qreal groundOpacity = 0.16;
constexpr qreal lineOpacity = 0.6;
constexpr qreal startOfNudge = 0.7; // how far the bar slides back when it says the same again

// What a kind of message looks like, and how it is read out.
struct Look
{
    const char *image;
    QColor color;
    const char *name;
};

const Look &lookOf(Messages::Kind kind)
{
    static const Look looks[] = {
        {"WayfoldMessageInformation", QColor(0x3d, 0x7e, 0xc1), QT_TRID_NOOP("Information")},
        {"WayfoldMessageWarning", QColor(0xd0, 0x8b, 0x12), QT_TRID_NOOP("Warning")},
        {"WayfoldMessageError", QColor(0xc4, 0x4b, 0x42), QT_TRID_NOOP("Error")},
    };
    return looks[kind];
}

QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

// Screen readers read a notification when it shows, wherever the keyboard is.
QAccessibleInterface *accessibleBar(const QString & /*className*/, QObject *object)
{
    auto *bar = qobject_cast<MessageBar *>(object);
    return bar ? new QAccessibleWidget(bar, QAccessible::Notification) : nullptr;
}

bool isSame(const Messages::Message &a, const Messages::Message &b)
{
    return a.subject == b.subject && a.kind == b.kind && a.text == b.text &&
           std::equal(a.buttons.cbegin(), a.buttons.cend(), b.buttons.cbegin(), b.buttons.cend(),
                      [](const Messages::Button &x, const Messages::Button &y) { return x.title == y.title; });
}
} // namespace

// Where everything stands in a bar of some width that is all the way in.
struct MessageBar::Places
{
    QRect frame;
    QRect icon;
    QRect text;
    QRect closeButton;
    QList<QRect> buttons;
    int height = 0;
};

MessageBar::MessageBar(Messages *messages, QWidget *parent)
    : QFrame(parent)
    , _messages(messages)
    , _text(new QLabel(this))
    , _closeButton(new QToolButton(this))
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(accessibleBar), true);
    setObjectName(QStringLiteral("messageBar"));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    _text->setTextFormat(Qt::PlainText);
    _text->setWordWrap(true);
    _closeButton->setObjectName(QStringLiteral("closeMessageButton"));
    _closeButton->setAutoRaise(true);
    _closeButton->setFocusPolicy(Qt::TabFocus);
    _closeButton->setIconSize(QSize(iconSize, iconSize));
    _closeButton->setToolTip(localized("Close this message"));
    _closeButton->setAccessibleName(localized("Close Message"));
    if (const std::shared_ptr<Image> image = WayfoldToolkit::loadImageNamed(QStringLiteral("WayfoldMessageClose")))
        _closeButton->setIcon(image->icon());
    connect(_closeButton, &QToolButton::clicked, this, &MessageBar::dismiss);
    connect(qApp, &QApplication::focusChanged, this, &MessageBar::noteKeyboard);
    _slide.setEasingCurve(QEasingCurve::OutQuad);
    connect(&_slide, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        _shown = value.toReal();
        updateGeometry();
    });
    connect(&_slide, &QVariantAnimation::finished, this, &MessageBar::slideEnded);
    hide();
    if (messages) {
        connect(messages, &Messages::changed, this, &MessageBar::showCurrent);
        showCurrent();
    }
}

// --- What it says ---------------------------------------------------------------------------------------------------

void MessageBar::showCurrent()
{
    const Messages::Message *message = _messages ? _messages->current() : nullptr;
    if (!message) {
        giveKeyboardBack();
        slideTo(0);
        return;
    }
    const bool isNew = isLeaving() || !isSame(*_message, *message);
    fill(*message);
    if (isHidden())
        show();
    if (isNew || _wasPressed)
        announce();
    if (!isNew && _wasPressed)
        _shown = std::min(_shown, startOfNudge);
    slideTo(1);
}

void MessageBar::fill(const Messages::Message &message)
{
    const bool hasOtherButtons = !_message || !isSame(*_message, message);
    _message = message;
    _icon = WayfoldToolkit::loadImageNamed(QString::fromLatin1(lookOf(message.kind).image));
    _text->setText(message.text);
    if (hasOtherButtons)
        fillButtons(message.buttons);
    layOut();
    updateGeometry();
    update();
}

void MessageBar::fillButtons(const std::vector<Messages::Button> &buttons)
{
    giveKeyboardBack();
    for (QPushButton *button : std::as_const(_buttons)) {
        button->hide();
        button->deleteLater(); // may be the one that is being pressed
    }
    _buttons.clear();
    QWidget *before = _closeButton;
    for (const Messages::Button &described : buttons) {
        auto *button = new QPushButton(described.title, this);
        button->setAutoDefault(false);
        button->setFocusPolicy(Qt::TabFocus);
        button->setToolTip(described.toolTip);
        const int index = int(_buttons.size());
        connect(button, &QPushButton::clicked, this, [this, index] { press(index); });
        setTabOrder(before, button);
        button->show();
        _buttons.append(button);
        before = button;
    }
    // First what can be done, then the way out.
    if (before != _closeButton)
        setTabOrder(before, _closeButton);
}

void MessageBar::announce()
{
    setAccessibleName(localized(lookOf(_message->kind).name) + QStringLiteral(": ") + _message->text);
    for (const QAccessible::Event type : {QAccessible::Alert, QAccessible::ObjectShow}) {
        QAccessibleEvent event(this, type);
        QAccessible::updateAccessibility(&event);
    }
}

void MessageBar::press(int button)
{
    if (isLeaving())
        return;
    // The message may be another one when its button has done its work.
    const std::function<void()> act = _message->buttons.at(std::size_t(button)).act;
    const QPointer<MessageBar> alive(this);
    _wasPressed = true;
    if (act)
        act();
    if (alive)
        _wasPressed = false;
}

void MessageBar::dismiss()
{
    if (_messages && _message)
        _messages->clear(_message->subject);
}

// --- Sliding --------------------------------------------------------------------------------------------------------

int MessageBar::slideTime() const
{
    if (_slideDuration >= 0)
        return _slideDuration;
    return style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0 ? slideMilliseconds : 0;
}

// From wherever it is, at the same speed.
void MessageBar::slideTo(qreal goal)
{
    _goal = goal;
    _slide.stop();
    const int time = isVisible() ? int(slideTime() * qAbs(goal - _shown)) : 0;
    if (time == 0) {
        _shown = goal;
        slideEnded();
        return;
    }
    _slide.setStartValue(_shown);
    _slide.setEndValue(goal);
    _slide.setDuration(time);
    _slide.start();
}

void MessageBar::slideEnded()
{
    updateGeometry();
    if (!isLeaving())
        return;
    hide();
    _message.reset();
}

// --- Keyboard -------------------------------------------------------------------------------------------------------

void MessageBar::keyPressEvent(QKeyEvent *event)
{
    auto *button = qobject_cast<QAbstractButton *>(QApplication::focusWidget());
    if (event->matches(QKeySequence::Cancel))
        dismiss();
    else if (button && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        button->click();
    else
        QFrame::keyPressEvent(event);
}

void MessageBar::noteKeyboard(QWidget *before, QWidget *now)
{
    if (before && isAncestorOf(now) && !isAncestorOf(before) && before->window() == window())
        _hadKeyboard = before;
}

void MessageBar::giveKeyboardBack()
{
    if (isAncestorOf(window()->focusWidget()) && _hadKeyboard)
        _hadKeyboard->setFocus(Qt::OtherFocusReason);
}

// --- Geometry and drawing -------------------------------------------------------------------------------------------

MessageBar::Places MessageBar::placesIn(int width) const
{
    Places places;
    const QSize close = _closeButton->sizeHint();
    const int left = margin + iconSize + spacing;
    const int right = width - margin;
    places.closeButton = QRect(QPoint(right - close.width() + margin / 2, margin / 2), close);
    const int textWidth = std::max(1, places.closeButton.left() - spacing - left);
    places.text = QRect(left, margin, textWidth, _text->heightForWidth(textWidth));
    const int line = _text->fontMetrics().height();
    places.icon = QRect(margin, margin + (line - iconSize) / 2, iconSize, iconSize);

    // As many buttons beside each other as there is room for.
    QPoint next(left, places.text.bottom() + 1 + spacing);
    int bottom = std::max(places.text.bottom() + 1, places.closeButton.bottom() + 1 - margin / 2);
    for (const QPushButton *button : _buttons) {
        const QSize size = button->sizeHint().boundedTo(QSize(std::max(1, right - left), QWIDGETSIZE_MAX));
        if (next.x() > left && next.x() + size.width() > right)
            next = QPoint(left, bottom + spacing);
        places.buttons.append(QRect(next, size));
        bottom = next.y() + size.height();
        next.rx() += size.width() + spacing;
    }
    places.frame = QRect(0, 0, width, bottom + margin);
    places.height = places.frame.height() + gapBelow;
    return places;
}

int MessageBar::heightForWidth(int width) const
{
    return qRound(placesIn(width).height * _shown);
}

QSize MessageBar::sizeHint() const
{
    return {width(), heightForWidth(width())};
}

QSize MessageBar::minimumSizeHint() const
{
    return {0, 0};
}

void MessageBar::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    layOut();
}

// What has not slid in yet stands above the bar's upper edge.
void MessageBar::layOut()
{
    const Places places = placesIn(width());
    const auto put = [this, &places](QWidget *widget, const QRect &place) {
        widget->setGeometry(
            QStyle::visualRect(layoutDirection(), rect(), place.translated(0, height() - places.height)));
    };
    put(_text, places.text);
    put(_closeButton, places.closeButton);
    for (qsizetype i = 0; i < _buttons.size(); ++i)
        put(_buttons[i], places.buttons[i]);
}

void MessageBar::paintEvent(QPaintEvent * /*event*/)
{
    if (!_message)
        return;
    const Places places = placesIn(width());
    const int top = height() - places.height;
    QColor ground = lookOf(_message->kind).color;
    QColor line = ground;
    ground.setAlphaF(groundOpacity);
    line.setAlphaF(lineOpacity);

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(line);
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(places.frame.translated(0, top)).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    if (_icon)
        _icon->drawInRect(painter, QStyle::visualRect(layoutDirection(), rect(), places.icon.translated(0, top)));
}
