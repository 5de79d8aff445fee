#include "core/WayfoldAboutController.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/widgets/Image.h"
#include "platform/widgets/InterfaceFile.h"
#include "platform/widgets/SideWindow.h"

#include <QLabel>
#include <QPointer>

namespace
{
constexpr QSize iconSize(64, 64);

QPointer<QWidget> openWindow;

QString versionLine()
{
    const QString version = WayfoldToolkit::getCurrentVersion();
    return WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("Version %@")))
        .replace(QStringLiteral("%@"), version.isNull() ? QStringLiteral("1.0.0") : version);
}

void fillIn(const InterfaceFile &interface)
{
    if (auto *field = interface.outlet<QLabel>(QStringLiteral("versionField")))
        field->setText(versionLine());
    auto *picture = interface.outlet<QLabel>(QStringLiteral("iconView"));
    const std::shared_ptr<Image> icon = WayfoldToolkit::loadImageNamed(QStringLiteral("wayfold"));
    if (picture && icon)
        picture->setPixmap(icon->icon().pixmap(iconSize, picture->devicePixelRatio()));
}

QWidget *makeWindow()
{
    const InterfaceFile interface(QStringLiteral("WayfoldAbout"));
    QWidget *window = interface.topLevelWidget();
    if (!window)
        return nullptr;
    fillIn(interface);
    window->setAttribute(Qt::WA_DeleteOnClose);
    SideWindow::prepare(window);
    SideWindow::center(window);
    return window;
}
} // namespace

void WayfoldAboutController::displayAboutWindow()
{
    if (!openWindow)
        openWindow = makeWindow();
    if (openWindow)
        SideWindow::makeKeyAndOrderFront(openWindow);
}

QWidget *WayfoldAboutController::window()
{
    return openWindow;
}
