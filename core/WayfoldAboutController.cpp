#include "core/WayfoldAboutController.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/host/CurrentHost.h"
#include "platform/host/HostApplication.h"
#include "platform/host/HostWindow.h"
#include "platform/widgets/Image.h"
#include "platform/widgets/InterfaceFile.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <QShortcut>

namespace
{
constexpr QSize iconSize(64, 64);

QPointer<QWidget> openWindow;

QString versionLine()
{
    const QString version = WayfoldToolkit::getCurrentVersion();
    return WayfoldToolkit::localizedString(QStringLiteral("Version %@"))
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

// Of the screen that the user looks at.
QRectF visibleScreenFrame()
{
    HostApplication *host = currentHost();
    const std::shared_ptr<HostWindow> window = host ? host->keyWindow() : nullptr;
    return window ? window->visibleScreenFrame() : QRectF(QGuiApplication::primaryScreen()->availableGeometry());
}

void center(QWidget *window)
{
    window->adjustSize();
    QRect frame = window->frameGeometry();
    frame.moveCenter(visibleScreenFrame().center().toPoint());
    window->move(frame.topLeft());
}

QWidget *makeWindow()
{
    const InterfaceFile interface(QStringLiteral("WayfoldAbout"));
    QWidget *window = interface.topLevelWidget();
    if (!window)
        return nullptr;
    fillIn(interface);
    window->setAttribute(Qt::WA_DeleteOnClose);
    // The browser may quit although this window is open.
    window->setAttribute(Qt::WA_QuitOnClose, false);
    for (auto *close : {new QShortcut(Qt::Key_Escape, window), new QShortcut(QKeySequence::Close, window)})
        QObject::connect(close, &QShortcut::activated, window, &QWidget::close);
    center(window);
    return window;
}
} // namespace

void WayfoldAboutController::displayAboutWindow()
{
    if (!openWindow)
        openWindow = makeWindow();
    if (!openWindow)
        return;
    openWindow->show();
    openWindow->raise();
    openWindow->activateWindow();
}

QWidget *WayfoldAboutController::window()
{
    return openWindow;
}
