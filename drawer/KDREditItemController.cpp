#include "drawer/KDREditItemController.h"

KDREditItemController::KDREditItemController() : KDREditController(QT_TRID_NOOP("Untitled URL")) {}

void KDREditItemController::initEditingBookmark(const WayfoldBookmarkURLPtr &bookmark)
{
    loadInterface(QStringLiteral("KDREditItem"), bookmark);
    _link = bookmark;
    _valueField = outlet<QLineEdit>("valueField");
    if (_valueField)
        _valueField->setText(bookmark->url().absoluteString());
}

void KDREditItemController::writeValue()
{
    if (_valueField && !_valueField->text().isEmpty())
        _link->setURL(Url::URLWithString(_valueField->text()));
}
