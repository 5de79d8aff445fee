#include "drawer/TextViewText.h"

#include <QTextDocument>
#include <QTextEdit>

QString TextViewText::text(const QTextEdit &view)
{
    QString text = view.document()->toRawText();
    for (QChar &character : text) {
        if (character == QChar::ParagraphSeparator || character == QChar::LineSeparator)
            character = u'\n';
    }
    return text;
}
