#include "tests/e2e/support/Hands.h"

#include "tests/e2e/support/Desk.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Tool.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QTreeView>

namespace
{
bool xdotool(const QStringList &arguments)
{
    return Tool::run(QStringLiteral("xdotool"), arguments).has_value();
}

QPoint pointer; // where it was moved to last

const QStringList shortPause{QStringLiteral("sleep"), QStringLiteral("0.03")};

// The display counts pixels, of which there may be several to the point.
QStringList move(const QPoint &position)
{
    pointer = position;
    const QPoint pixel = position * qGuiApp->devicePixelRatio();
    return {QStringLiteral("mousemove"), QString::number(pixel.x()), QString::number(pixel.y())};
}

// Without a pause anywhere, and whatever time goes by between them on a busy machine, two clicks are a double click.
QStringList clicks(int count, int button)
{
    static const int interval = Stage::onMain([] { return QApplication::doubleClickInterval(); });
    constexpr int longInterval = 30000;
    Stage::onMain([&] { QApplication::setDoubleClickInterval(count > 1 ? longInterval : interval); });
    QStringList arguments;
    for (int click = 0; click < count; ++click) {
        for (const QString &command : {QStringLiteral("mousedown"), QStringLiteral("mouseup")})
            arguments += {command, QString::number(button)};
    }
    return arguments;
}

// Whether the pointer would meet the widget there. The application asks the display which window lies on top, so this
// is false for a window that is not mapped yet or is covered by another.
bool meets(const QWidget *widget, const QPoint &position)
{
    const QWidget *top = widget->window();
    const QWidget *met = QApplication::widgetAt(position);
    return widget->isVisible() && widget->isEnabled() && (top->isActiveWindow() || !top->isModal()) &&
           (met == widget || widget->isAncestorOf(met));
}
} // namespace

bool Hands::moveTo(const QPoint &position)
{
    return xdotool(move(position));
}

bool Hands::clickAt(const QPoint &position, int button)
{
    return xdotool(move(position) + clicks(1, button));
}

bool Hands::pointAt(QWidget *widget, const Place &place)
{
    if (!widget)
        return false;
    const WId window = Stage::onMain([&] { return widget->window()->winId(); });
    const QDeadlineTimer deadline(Stage::patience);
    do {
        // A tool tip that lies over the widget goes away when the pointer comes.
        const std::optional<QPoint> position = Stage::onMain(place);
        if (!position || !moveTo(*position))
            continue;
        const QRect geometry = Desk::geometryOf(window);
        const bool isThere = Stage::onMain([&] {
            return widget->window()->geometry() == geometry && meets(widget, *position) && place() == position;
        });
        if (isThere)
            return true;
    } while (!deadline.hasExpired());
    return false;
}

bool Hands::click(int button)
{
    return xdotool(clicks(1, button));
}

bool Hands::doubleClick()
{
    return xdotool(clicks(2, 1));
}

bool Hands::clickOn(QWidget *widget)
{
    return pointAt(widget, [widget] { return std::optional(Eyes::middleOf(widget)); }) && click();
}

bool Hands::clickInto(QWidget *field)
{
    return clickOn(field) && Stage::eventually([field] { return field->hasFocus(); });
}

bool Hands::clickOnRow(QTreeView *list, const QString &text)
{
    return list && pointAt(list->viewport(), [&] { return Eyes::rowWithText(list, text); }) && click();
}

bool Hands::doubleClickOnRow(QTreeView *list, const QString &text)
{
    return list && pointAt(list->viewport(), [&] { return Eyes::rowWithText(list, text); }) && doubleClick();
}

bool Hands::clickOnAnotherRow(QTreeView *list, const QString &text)
{
    const QStringList control{QStringLiteral("ctrl")};
    return list && pointAt(list->viewport(), [&] { return Eyes::rowWithText(list, text); }) &&
           xdotool(QStringList{QStringLiteral("keydown")} + control + clicks(1, 1) +
                   QStringList{QStringLiteral("keyup")} + control);
}

bool Hands::drag(const QPoint &from, const QPoint &to)
{
    return moveTo(from) && lift() && carryTo(to) && drop();
}

bool Hands::lift()
{
    return xdotool(shortPause + QStringList{QStringLiteral("mousedown"), QStringLiteral("1")});
}

bool Hands::carryTo(const QPoint &position)
{
    const QPoint from = pointer;
    QStringList arguments;
    const int steps = 12;
    for (int step = 1; step <= steps; ++step)
        arguments += shortPause + move(from + (position - from) * step / steps);
    return xdotool(arguments + shortPause);
}

bool Hands::drop()
{
    return xdotool({QStringLiteral("mouseup"), QStringLiteral("1")});
}

bool Hands::press(const QString &keys)
{
    return xdotool(QStringList{QStringLiteral("key"), QStringLiteral("--clearmodifiers")} +
                   keys.split(QLatin1Char(' ')));
}

bool Hands::type(const QString &text)
{
    // "type" leaves line ends out.
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i > 0 && !press(QStringLiteral("Return")))
            return false;
        if (!lines[i].isEmpty() && !xdotool({QStringLiteral("type"), QStringLiteral("--clearmodifiers"),
                                             QStringLiteral("--delay"), QStringLiteral("12"), lines[i]}))
            return false;
    }
    return true;
}

bool Hands::takeKeyboard(const QString &layout)
{
    return Tool::run(QStringLiteral("setxkbmap"), {layout}).has_value();
}
