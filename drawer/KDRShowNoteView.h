#pragma once

#include <QTextEdit>
#include <functional>

// A note's text, to be read and copied.
class KDRShowNoteView : public QTextEdit
{
    Q_OBJECT

public:
    using QTextEdit::QTextEdit;

    // Run once, when the view comes from its interface file: takes the text, then lets nobody change it.
    void awakeFromNib(const std::function<QString()> &valueFieldText);
};
