#pragma once

#include <QString>

class QTextEdit;

// The text of a text view as it was typed: lines end in "\n", and blanks that do not break stay what they are.
namespace TextViewText
{
QString text(const QTextEdit &view);
}
