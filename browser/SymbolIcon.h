#pragma once

#include <QIcon>
#include <QImage>
#include <QString>

// The browser's own drawings, in the colour of the text that they stand beside, so that they suit light and dark.
namespace SymbolIcon
{
// The desktop's icon of that name when its theme has one, else our own drawing `symbol`.
QIcon themed(const QString &themeName, const QString &symbol);
// Our own drawing.
QIcon named(const QString &symbol);
// The same as a picture of that size in pixels; null when there is no such drawing.
QImage image(const QString &symbol, const QSize &size);
} // namespace SymbolIcon
