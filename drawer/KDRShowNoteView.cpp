#include "drawer/KDRShowNoteView.h"

#include <QTextDocument>

namespace
{
constexpr qreal textMargin = 10;
}

void KDRShowNoteView::awakeFromNib(const std::function<QString()> &valueFieldText)
{
    setPlainText(valueFieldText());
    document()->setDocumentMargin(textMargin);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}
