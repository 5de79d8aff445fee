#pragma once

#include "drawer/KDREditController.h"
#include "model/WayfoldBookmarkFile.h"

class QFileDialog;

// The dialog of a file link: title and path, with a file chooser.
class KDREditFileController : public KDREditController
{
public:
    KDREditFileController();

    void initEditingBookmark(const WayfoldBookmarkFilePtr &bookmark);
    // Shows the file chooser, as a sheet of the dialog.
    void chooseFile(QObject *sender);

private:
    void writeValue() override;
    void chooseFileDidEnd(const QFileDialog &panel, int returnCode);

    WayfoldBookmarkFilePtr _link;
    QPointer<QLineEdit> _valueField;
};
