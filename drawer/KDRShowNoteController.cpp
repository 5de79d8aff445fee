#include "drawer/KDRShowNoteController.h"

#include "drawer/KDRShowNoteView.h"
#include "platform/widgets/InterfaceFile.h"
#include "platform/widgets/SideWindow.h"

#include <QEvent>

void KDRShowNoteController::showNote(const WayfoldBookmarkNotePtr &note)
{
    auto *controller = new KDRShowNoteController; // owns itself
    controller->initShowNote(note);
    controller->makeKeyAndOrderFront();
}

KDRShowNoteController::~KDRShowNoteController()
{
    delete _window;
}

void KDRShowNoteController::initShowNote(const WayfoldBookmarkNotePtr &note)
{
    _bookmark = note;
    const InterfaceFile interface(QStringLiteral("KDRShowNote"));
    _window = interface.topLevelWidget();
    _valueField = interface.outlet<KDRShowNoteView>(QStringLiteral("valueField"));
    if (_valueField)
        _valueField->awakeFromNib([this] { return getValueFieldText(); });
    windowDidLoad();
}

void KDRShowNoteController::windowDidLoad()
{
    if (!_window) {
        deleteLater();
        return;
    }
    _window->setWindowTitle(_bookmark->title());
    SideWindow::prepare(_window);
    _window->installEventFilter(this);
}

QString KDRShowNoteController::getValueFieldText() const
{
    return _bookmark->valueAsString();
}

void KDRShowNoteController::makeKeyAndOrderFront()
{
    if (_window)
        SideWindow::makeKeyAndOrderFront(_window);
}

bool KDRShowNoteController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == _window && event->type() == QEvent::Close)
        windowWillClose();
    return QObject::eventFilter(watched, event);
}

void KDRShowNoteController::windowWillClose()
{
    deleteLater();
}
