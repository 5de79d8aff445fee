#include "tests/e2e/support/Hands.h"

#include "tests/e2e/support/Desk.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Tool.h"

#include <QDeadlineTimer>

namespace
{
bool xdotool(const QStringList &arguments)
{
    return Tool::run(QStringLiteral("xdotool"), arguments).has_value();
}

QStringList move(const QPoint &position)
{
    return {QStringLiteral("mousemove"), QString::number(position.x()), QString::number(position.y())};
}
} // namespace

bool Hands::moveTo(const QPoint &position)
{
    return xdotool(move(position));
}

bool Hands::clickAt(const QPoint &position, int button)
{
    return xdotool(move(position) + QStringList{QStringLiteral("click"), QString::number(button)});
}

bool Hands::clickOn(QWidget *widget)
{
    if (!widget)
        return false;
    const WId window = Stage::onMain([&] { return widget->window()->winId(); });
    const QDeadlineTimer deadline(30000);
    while (!deadline.hasExpired()) {
        const QRect place = Desk::geometryOf(window);
        const bool isReady = Stage::onMain([&] {
            const QWidget *top = widget->window();
            return widget->isVisible() && widget->isEnabled() && top->geometry() == place &&
                   (top->isActiveWindow() || !top->isModal());
        });
        if (isReady)
            return clickAt(Eyes::middleOf(widget));
    }
    return false;
}

bool Hands::doubleClickAt(const QPoint &position)
{
    return xdotool(move(position) + QStringList{QStringLiteral("click"), QStringLiteral("--repeat"),
                                                QStringLiteral("2"), QStringLiteral("--delay"), QStringLiteral("60"),
                                                QStringLiteral("1")});
}

bool Hands::drag(const QPoint &from, const QPoint &to)
{
    const QStringList pause{QStringLiteral("sleep"), QStringLiteral("0.03")};
    QStringList arguments = move(from) + pause + QStringList{QStringLiteral("mousedown"), QStringLiteral("1")};
    const int steps = 12;
    for (int step = 1; step <= steps; ++step)
        arguments += pause + move(from + (to - from) * step / steps);
    return xdotool(arguments + pause + QStringList{QStringLiteral("mouseup"), QStringLiteral("1")});
}

bool Hands::press(const QString &keys)
{
    return xdotool({QStringLiteral("key"), QStringLiteral("--clearmodifiers"), keys});
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
