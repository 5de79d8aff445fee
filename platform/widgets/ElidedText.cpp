#include "platform/widgets/ElidedText.h"

QString ElidedText::inWidth(const QString &text, const QFontMetrics &metrics, Qt::TextElideMode mode, int width)
{
    constexpr QChar rightToLeftMark(0x200f);
    QString elided = metrics.elidedText(text, mode, width, Qt::TextSingleLine);
    if (elided.endsWith(QChar(0x2026)) && elided.isRightToLeft())
        elided.append(rightToLeftMark);
    return elided;
}
