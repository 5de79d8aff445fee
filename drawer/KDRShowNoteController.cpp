#include "drawer/KDRShowNoteController.h"

#include "drawer/KDRShowNoteView.h"
#include "platform/widgets/InterfaceFile.h"

#include <QEvent>
#include <QShortcut>

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
    // The browser may quit although notes are being read.
    _window->setAttribute(Qt::WA_QuitOnClose, false);
    _window->installEventFilter(this);
    for (auto *close : {new QShortcut(Qt::Key_Escape, _window), new QShortcut(QKeySequence::Close, _window)})
        connect(close, &QShortcut::activated, _window, &QWidget::close);
}

QString KDRShowNoteController::getValueFieldText() const
{
    return _bookmark->valueAsString();
}

void KDRShowNoteController::makeKeyAndOrderFront()
{
    if (!_window)
        return;
    _window->show();
    _window->raise();
    _window->activateWindow();
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
