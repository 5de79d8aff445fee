#include "drawer/KDREditNoteController.h"

#include "drawer/TextViewText.h"

KDREditNoteController::KDREditNoteController() : KDREditController(QT_TRID_NOOP("Untitled Note")) {}

void KDREditNoteController::initEditingNote(const WayfoldBookmarkNotePtr &note)
{
    loadInterface(QStringLiteral("KDREditNote"), note);
    setWindowTitle("Edit Note");
    _note = note;
    _valueField = outlet<QTextEdit>("valueField");
    if (!_valueField)
        return;
    _valueField->setPlainText(note->valueAsString());
    _valueField->moveCursor(QTextCursor::End);
}

void KDREditNoteController::initNewNote(const WayfoldBookmarkNotePtr &note)
{
    initEditingNote(note);
    setWindowTitle("New Note");
}

// A text that was not touched stays as it is, down to its line ends.
void KDREditNoteController::writeValue()
{
    if (!_valueField || !_valueField->document()->isModified())
        return;
    const QString text = TextViewText::text(*_valueField);
    if (!text.isEmpty())
        _note->setValue(text);
}
