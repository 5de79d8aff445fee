#include "platform/contacts/ContactLabels.h"

#include <QHash>

namespace
{
// Types that say how or whether to reach somebody, and not where.
bool saysNothing(const QString &type)
{
    static const QStringList words = {
        QStringLiteral("voice"),   QStringLiteral("pref"),    QStringLiteral("internet"),  QStringLiteral("msg"),
        QStringLiteral("isdn"),    QStringLiteral("bbs"),     QStringLiteral("modem"),     QStringLiteral("pcs"),
        QStringLiteral("x400"),    QStringLiteral("smtp"),    QStringLiteral("aol"),       QStringLiteral("applelink"),
        QStringLiteral("attmail"), QStringLiteral("cis"),     QStringLiteral("eworld"),    QStringLiteral("ibmmail"),
        QStringLiteral("mcimail"), QStringLiteral("prodigy"), QStringLiteral("tlx"),       QStringLiteral("powershare"),
        QStringLiteral("dom"),     QStringLiteral("intl"),    QStringLiteral("textphone"),
    };
    return words.contains(type) || type.startsWith(QStringLiteral("x-evolution-"));
}

// One text each for all cards.
const QStringList &plainWords()
{
    static const QStringList words = {QStringLiteral("car"),  QStringLiteral("main"),  QStringLiteral("home"),
                                      QStringLiteral("work"), QStringLiteral("video"), QStringLiteral("text"),
                                      QStringLiteral("other")};
    return words;
}

QString ownWord(const QStringList &types)
{
    for (const QString &type : types) {
        if (!type.isEmpty() && !saysNothing(type.toLower()))
            return type.startsWith(QStringLiteral("x-"), Qt::CaseInsensitive) ? type.mid(2) : type;
    }
    return {};
}
} // namespace

QString ContactLabels::ofTypes(const QStringList &types)
{
    const auto has = [&types](const char *type) { return types.contains(QLatin1String(type), Qt::CaseInsensitive); };
    if (has("pager"))
        return QStringLiteral("pager");
    if (has("fax"))
        return has("home")   ? QStringLiteral("home fax")
               : has("work") ? QStringLiteral("work fax")
                             : QStringLiteral("fax");
    if (has("cell") || has("iphone") || has("mobile"))
        return QStringLiteral("mobile");
    for (const QString &word : plainWords()) {
        if (types.contains(word, Qt::CaseInsensitive))
            return word;
    }
    return ownWord(types);
}

QString ContactLabels::ofText(const QString &text)
{
    static const QString before = QStringLiteral("_$!<");
    static const QString after = QStringLiteral(">!$_");
    if (!text.startsWith(before) || !text.endsWith(after) || text.size() < before.size() + after.size())
        return text;
    static const QHash<QString, QString> known = {
        {QStringLiteral("home"), QStringLiteral("home")},
        {QStringLiteral("work"), QStringLiteral("work")},
        {QStringLiteral("mobile"), QStringLiteral("mobile")},
        {QStringLiteral("iphone"), QStringLiteral("mobile")},
        {QStringLiteral("main"), QStringLiteral("main")},
        {QStringLiteral("homefax"), QStringLiteral("home fax")},
        {QStringLiteral("workfax"), QStringLiteral("work fax")},
        {QStringLiteral("otherfax"), QStringLiteral("fax")},
        {QStringLiteral("pager"), QStringLiteral("pager")},
        {QStringLiteral("car"), QStringLiteral("car")},
        {QStringLiteral("other"), QStringLiteral("other")},
    };
    const QString word = text.mid(before.size(), text.size() - before.size() - after.size());
    return known.value(word.toLower(), word);
}
