#include "browser/DisplayPlatform.h"

#include <QGuiApplication>

namespace
{
const QString variable = QStringLiteral("QT_QPA_PLATFORM");
} // namespace

QString DisplayPlatform::choice(const QProcessEnvironment &environment, const QString &asked)
{
    if (!asked.isEmpty())
        return asked;
    if (!environment.value(variable).isEmpty())
        return environment.value(variable);
    QStringList platforms;
    if (!environment.value(QStringLiteral("DISPLAY")).isEmpty())
        platforms.append(QStringLiteral("xcb"));
    if (!environment.value(QStringLiteral("WAYLAND_DISPLAY")).isEmpty())
        platforms.append(QStringLiteral("wayland"));
    return platforms.join(QLatin1Char(';'));
}

void DisplayPlatform::choose(const QString &asked)
{
    const QString platforms = choice(QProcessEnvironment::systemEnvironment(), asked);
    if (!platforms.isEmpty())
        qputenv(qPrintable(variable), platforms.toLocal8Bit());
}

bool DisplayPlatform::canPlaceWindows()
{
    return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}
