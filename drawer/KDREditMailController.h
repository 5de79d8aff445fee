#pragma once

#include "drawer/KDREditController.h"
#include "model/WayfoldBookmarkEmail.h"

// The dialog of an e-mail link: title, subject and the three lists of recipients, one address a line.
class KDREditMailController : public KDREditController
{
public:
    KDREditMailController();

    void initForEditing(const WayfoldBookmarkEmailPtr &link);
    void initForNew(const WayfoldBookmarkEmailPtr &link);

private:
    void writeValue() override;
    void fillFields();

    WayfoldBookmarkEmailPtr _link;
    QPointer<QLineEdit> _subjectField;
    QPointer<QTextEdit> _toField;
    QPointer<QTextEdit> _ccField;
    QPointer<QTextEdit> _bccField;
};
