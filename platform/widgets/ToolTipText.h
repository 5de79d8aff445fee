#pragma once

#include <QString>

// What a tool tip shows of a text that may be anything and of any length: its beginning, wrapped, and with nothing in
// it taken for markup.
namespace ToolTipText
{
constexpr qsizetype mostCharacters = 2048;
constexpr qsizetype mostLines = 40;

// As rich text, for QToolTip; empty for an empty text. What is cut off ends in an ellipsis, and no letter is cut.
QString shown(const QString &text);
} // namespace ToolTipText
