#include "drawer/KDREditController.h"

#include "core/settings/WayfoldToolkit.h"
#include "platform/widgets/ModalDialog.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QShortcut>
#include <limits>

namespace
{
QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

void describe(QPushButton *button, const char *text, const char *toolTip)
{
    if (!button)
        return;
    button->setText(localized(text));
    button->setAccessibleName(localized(text));
    button->setToolTip(localized(toolTip));
}

} // namespace

KDREditController::~KDREditController()
{
    delete _editWindow;
}

void KDREditController::loadInterface(const QString &name, const KDRBookmarkPtr &bookmark)
{
    delete _editWindow;
    _interface.emplace(name);
    _editWindow = qobject_cast<QDialog *>(_interface->topLevelWidget());
    _titleField = outlet<QLineEdit>("titleField");
    _bookmark = bookmark;
    if (!_editWindow)
        return;
    _editWindow->setAttribute(Qt::WA_QuitOnClose, false);
    connectButtons();
    // A field would cut longer texts by itself, and the item with them.
    for (QLineEdit *field : _editWindow->findChildren<QLineEdit *>())
        field->setMaxLength(std::numeric_limits<int>::max());
    if (_titleField) {
        _titleField->setText(bookmark->title());
        _titleField->selectAll();
        _titleField->setFocus();
    }
}

void KDREditController::connectButtons()
{
    auto *buttons = outlet<QDialogButtonBox>("buttonBox");
    if (!buttons)
        return;
    QObject::connect(buttons, &QDialogButtonBox::accepted, _editWindow, [this, buttons] { saveEdit(buttons); });
    QObject::connect(buttons, &QDialogButtonBox::rejected, _editWindow, [this, buttons] { cancelEdit(buttons); });
    describe(buttons->button(QDialogButtonBox::Ok), QT_TRID_NOOP("OK"), QT_TRID_NOOP("Keep the changes"));
    describe(buttons->button(QDialogButtonBox::Cancel), QT_TRID_NOOP("Cancel"),
             QT_TRID_NOOP("Close without changing anything"));
    // Where Return begins a new line, Return with Control accepts.
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *accept = new QShortcut(QKeySequence(Qt::ControlModifier | key), _editWindow);
        QObject::connect(accept, &QShortcut::activated, _editWindow, [this, buttons] { saveEdit(buttons); });
    }
}

void KDREditController::connectAction(const char *name, const std::function<void(QObject *)> &handler) const
{
    if (_interface)
        _interface->connectAction(QString::fromLatin1(name), handler);
}

void KDREditController::setWindowTitle(const char *title)
{
    if (_editWindow)
        _editWindow->setWindowTitle(localized(title));
}

bool KDREditController::doEdit()
{
    if (!_editWindow)
        return false;
    ModalDialog::attachToActiveWindow(_editWindow);
    return ModalDialog::run(_editWindow) == QDialog::Accepted;
}

void KDREditController::saveEdit(QObject * /*sender*/)
{
    const QString title = _titleField ? _titleField->text() : QString();
    _bookmark->setTitle(title.isEmpty() ? localized(_defaultTitle) : title);
    writeValue();
    _editWindow->accept();
}

void KDREditController::cancelEdit(QObject * /*sender*/)
{
    _editWindow->reject();
}
