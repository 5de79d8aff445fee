#include "tests/e2e/support/Desk.h"

#include "tests/e2e/support/Tool.h"

#include <QGuiApplication>
#include <QRegularExpression>

namespace
{
std::optional<QByteArray> xdotool(const QStringList &arguments)
{
    return Tool::run(QStringLiteral("xdotool"), arguments);
}

bool command(const QString &name, WId window, const QStringList &arguments = {})
{
    return xdotool(QStringList{name, QString::number(window)} + arguments).has_value();
}
} // namespace

QList<WId> Desk::visibleWindows()
{
    // "search" finds a window by any of its conditions unless told to mind all, and fails when it finds none.
    const auto found = xdotool({QStringLiteral("search"), QStringLiteral("--all"), QStringLiteral("--onlyvisible"),
                                QStringLiteral("--pid"), QString::number(QCoreApplication::applicationPid()),
                                QStringLiteral("--name"), QString()});
    QList<WId> windows;
    for (const QByteArray &line : found.value_or(QByteArray()).split('\n')) {
        if (!line.isEmpty())
            windows += line.toULongLong();
    }
    return windows;
}

QRect Desk::geometryOf(WId window)
{
    const auto info = Tool::run(QStringLiteral("xwininfo"), {QStringLiteral("-id"), QString::number(window)});
    static const QRegularExpression numbers(
        QStringLiteral(
            "Absolute upper-left X:\\s+(-?\\d+).*Absolute upper-left Y:\\s+(-?\\d+).*Width: (\\d+).*Height: (\\d+)"),
        QRegularExpression::DotMatchesEverythingOption);
    const auto match = numbers.match(QString::fromUtf8(info.value_or(QByteArray())));
    if (!match.hasMatch())
        return {};
    // The display counts pixels.
    const auto points = [&](int number) {
        return qRound(match.captured(number).toInt() / qGuiApp->devicePixelRatio());
    };
    return {points(1), points(2), points(3), points(4)};
}

bool Desk::isLeftOutOfTaskBar(WId window)
{
    const auto states = Tool::run(QStringLiteral("xprop"),
                                  {QStringLiteral("-id"), QString::number(window), QStringLiteral("_NET_WM_STATE")});
    return states && states->contains("_NET_WM_STATE_SKIP_TASKBAR");
}

bool Desk::minimise(WId window)
{
    return command(QStringLiteral("windowminimize"), window);
}

bool Desk::activate(WId window)
{
    return command(QStringLiteral("windowactivate"), window);
}

bool Desk::resize(WId window, const QSize &size)
{
    return command(QStringLiteral("windowsize"), window,
                   {QString::number(size.width()), QString::number(size.height())});
}

bool Desk::moveTo(WId window, const QPoint &position)
{
    return command(QStringLiteral("windowmove"), window,
                   {QString::number(position.x()), QString::number(position.y())});
}

bool Desk::sendToWorkspace(WId window, int workspace)
{
    return command(QStringLiteral("set_desktop_for_window"), window, {QString::number(workspace)});
}

bool Desk::changeToWorkspace(int workspace)
{
    return xdotool({QStringLiteral("set_desktop"), QString::number(workspace)}).has_value();
}

int Desk::workspaceOf(WId window)
{
    const auto answer = xdotool({QStringLiteral("get_desktop_for_window"), QString::number(window)});
    bool isNumber = false;
    const int workspace = answer.value_or(QByteArray()).trimmed().toInt(&isNumber);
    return isNumber ? workspace : -1;
}
