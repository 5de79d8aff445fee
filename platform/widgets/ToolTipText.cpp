#include "platform/widgets/ToolTipText.h"

#include <QTextBoundaryFinder>
#include <QTextDocument>

namespace
{
// A longer word is given places where it may be broken, since it would be as wide as it is long.
constexpr qsizetype longestWord = 60;
// A text without longer lines is not wrapped: a label would make a narrow column of it.
constexpr qsizetype longestLine = 60;
constexpr QChar ellipsis(0x2026);
constexpr QChar breakingPlace(0x200b);

// Where the text ends that has no more lines than may be shown.
qsizetype endOfLastLine(QStringView text)
{
    qsizetype end = -1;
    for (qsizetype line = 0; line < ToolTipText::mostLines; ++line) {
        end = text.indexOf(u'\n', end + 1);
        if (end < 0)
            return text.size();
    }
    return end;
}

// The beginning of the text, and whether that is all.
QStringView beginningOf(QStringView text, bool *isAll)
{
    const qsizetype seen = std::min(text.size(), ToolTipText::mostCharacters + 2); // enough to see what is cut
    qsizetype end = std::min(endOfLastLine(text.first(seen)), ToolTipText::mostCharacters);
    *isAll = end == text.size();
    if (*isAll)
        return text;
    QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text.first(seen));
    letters.setPosition(end);
    if (!letters.isAtBoundary())
        end = std::max<qsizetype>(letters.toPreviousBoundary(), 0);
    return text.first(end);
}

bool hasShortLines(QStringView text)
{
    const QList<QStringView> lines = text.split(u'\n');
    return std::all_of(lines.cbegin(), lines.cend(), [](QStringView line) { return line.size() <= longestLine; });
}

QString withBreakingPlaces(QStringView text)
{
    QString result;
    QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text);
    qsizetype start = 0;
    qsizetype inWord = 0;
    for (qsizetype end = letters.toNextBoundary(); end > 0; end = letters.toNextBoundary()) {
        inWord = text[start].isSpace() ? 0 : inWord + 1;
        if (inWord > longestWord) {
            result += breakingPlace;
            inWord = 1;
        }
        result += text.sliced(start, end - start);
        start = end;
    }
    return result;
}
} // namespace

QString ToolTipText::shown(const QString &text)
{
    if (text.isEmpty())
        return QString();
    bool isAll = false;
    QString beginning = withBreakingPlaces(beginningOf(text, &isAll));
    if (!isAll)
        beginning += ellipsis;
    const QString wrapping = hasShortLines(beginning) ? QStringLiteral("nowrap") : QStringLiteral("normal");
    return QStringLiteral("<div style=\"white-space: %1\">%2</div>")
        .arg(wrapping, Qt::convertFromPlainText(beginning, Qt::WhiteSpaceNormal));
}
