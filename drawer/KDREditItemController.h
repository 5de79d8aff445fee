#pragma once

#include "drawer/KDREditController.h"
#include "model/WayfoldBookmarkURL.h"

// The dialog of a web link: title and address.
class KDREditItemController : public KDREditController
{
public:
    KDREditItemController();

    void initEditingBookmark(const WayfoldBookmarkURLPtr &bookmark);

private:
    void writeValue() override;

    WayfoldBookmarkURLPtr _link;
    QPointer<QLineEdit> _valueField;
};
