#pragma once

class QWidget;

namespace HelpText
{
// For a window whose tool tips are whole sentences: shows them in lines of a readable length, and gives them to "What's
// This?" and to screen readers.
void prepare(QWidget *window);
} // namespace HelpText
