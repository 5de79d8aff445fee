#include "drawer/KDRShowNoteView.h"

void KDRShowNoteView::awakeFromNib(const std::function<QString()> &valueFieldText)
{
    setPlainText(valueFieldText());
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}
