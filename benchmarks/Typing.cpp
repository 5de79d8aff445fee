#include "benchmarks/Typing.h"

#include "benchmarks/Figures.h"

#include <QStringList>
#include <algorithm>

namespace
{
const QStringList &words()
{
    static const QStringList known = {
        QStringLiteral("http"),       QStringLiteral("qzqzqz"),  QStringLiteral("weather"), QStringLiteral("recipes"),
        QStringLiteral("straße"),     QStringLiteral("новости"), QStringLiteral("release"), QStringLiteral("forum"),
        QStringLiteral("index.html"), QStringLiteral("天气"),
    };
    return known;
}
} // namespace

Typing::Typing(const std::function<void(const QString &text)> &search, const std::function<void()> &clear)
{
    for (const QString &word : words()) {
        std::vector<std::vector<double>> times(size_t(word.size())); // by letter
        for (int run = -1; run < 7; ++run) {
            clear();
            for (qsizetype letter = 0; letter < word.size(); ++letter) {
                const double time = Figures::milliseconds([&] { search(word.left(letter + 1)); });
                if (run >= 0)
                    times[size_t(letter)].push_back(time);
            }
        }
        for (const std::vector<double> &ofLetter : times)
            _letters.push_back(Figures::median(ofLetter));
    }
    clear();
}

double Typing::worst() const
{
    return *std::max_element(_letters.begin(), _letters.end());
}

double Typing::median() const
{
    return Figures::median(_letters);
}
