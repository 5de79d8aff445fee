#include "platform/widgets/SideWindow.h"

#include "platform/host/CurrentHost.h"
#include "platform/host/HostApplication.h"
#include "platform/host/HostWindow.h"

#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <QWidget>

namespace
{
QRectF visibleScreenFrame()
{
    HostApplication *host = currentHost();
    const std::shared_ptr<HostWindow> window = host ? host->keyWindow() : nullptr;
    return window ? window->visibleScreenFrame() : QRectF(QGuiApplication::primaryScreen()->availableGeometry());
}
} // namespace

void SideWindow::prepare(QWidget *window)
{
    window->setAttribute(Qt::WA_QuitOnClose, false);
    for (auto *close : {new QShortcut(Qt::Key_Escape, window), new QShortcut(QKeySequence::Close, window)}) {
        close->setAutoRepeat(false);
        QObject::connect(close, &QShortcut::activated, window, &QWidget::close);
    }
}

void SideWindow::center(QWidget *window)
{
    window->adjustSize();
    QRect frame = window->frameGeometry();
    frame.moveCenter(visibleScreenFrame().center().toPoint());
    window->move(frame.topLeft());
}

void SideWindow::makeKeyAndOrderFront(QWidget *window)
{
    window->show();
    window->raise();
    window->activateWindow();
}
