#include "drawer/KDREditFileController.h"

#include "drawer/FileOrFolderPanel.h"
#include "platform/files/Paths.h"

KDREditFileController::KDREditFileController() : KDREditController(QT_TRID_NOOP("Untitled File")) {}

void KDREditFileController::initEditingBookmark(const WayfoldBookmarkFilePtr &bookmark)
{
    loadInterface(QStringLiteral("KDREditFile"), bookmark);
    _link = bookmark;
    _valueField = outlet<QLineEdit>("valueField");
    if (_valueField)
        _valueField->setText(bookmark->url().path());
    connectAction("chooseFile:", [this](QObject *sender) { chooseFile(sender); });
}

void KDREditFileController::chooseFile(QObject * /*sender*/)
{
    if (!_valueField)
        return;
    auto *panel = new FileOrFolderPanel(editWindow(), _valueField->text());
    panel->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(panel, &QDialog::finished, editWindow(),
                     [this, panel](int returnCode) { chooseFileDidEnd(*panel, returnCode); });
    panel->open();
}

void KDREditFileController::chooseFileDidEnd(const QFileDialog &panel, int returnCode)
{
    const QStringList chosen = panel.selectedFiles();
    if (returnCode == QDialog::Accepted && !chosen.isEmpty() && _valueField)
        _valueField->setText(chosen.constFirst());
}

void KDREditFileController::writeValue()
{
    if (_valueField && !_valueField->text().isEmpty())
        _link->setURL(Url::fileURLWithPath(Paths::expandingTilde(_valueField->text())));
}
