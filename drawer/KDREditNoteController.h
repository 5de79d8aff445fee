#pragma once

#include "drawer/KDREditController.h"
#include "model/WayfoldBookmarkNote.h"

// The dialog of a note: title and text. A note cannot be emptied in it.
class KDREditNoteController : public KDREditController
{
public:
    KDREditNoteController();

    void initEditingNote(const WayfoldBookmarkNotePtr &note);
    void initNewNote(const WayfoldBookmarkNotePtr &note);

private:
    void writeValue() override;

    WayfoldBookmarkNotePtr _note;
    QPointer<QTextEdit> _valueField;
};
