#pragma once

#include <QFontMetrics>
#include <QString>

namespace ElidedText
{
// As much of the text as fits into the width (points), on one line. The ellipsis follows what is left of it: it stands
// on the left of a text that is read from right to left, whatever the direction of the window.
QString inWidth(const QString &text, const QFontMetrics &metrics, Qt::TextElideMode mode, int width);
} // namespace ElidedText
