#include "benchmarks/LifelikeBrowser.h"

#include <QUuid>
#include <algorithm>
#include <utility>

namespace
{
constexpr int siteCount = 3000;
constexpr double now = 772'000'000.0; // seconds since 2001-01-01: June 2025
constexpr double years = 4 * 365.25 * 86'400;

QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '));
}

// By language, in the order of LifelikeBrowser::Language.
const QStringList &titleWords(int language)
{
    static const QStringList known[] = {
        words("the a of for with how to news weather recipes release notes forum review guide best new open source "
              "garden kitchen travel photo music video shop price list questions answers library reference manual "
              "update report today question about cannot install error message community city science history book"),
        words("der die das und für mit über Straße Wetter Rezepte Nachrichten Küche Gärten Bücher Fußball Reise "
              "Anleitung Übersicht Preisvergleich Forum Hilfe Lösung häufige Fragen Öffnungszeiten Fahrplan "
              "Wörterbuch Geschichte schönste Städte Größe kaufen günstig heute"),
        words("новости погода сегодня рецепты как сделать форум обзор книга музыка история город скачать вопросы "
              "ответы лучшие новые для дома расписание словарь перевод и в на с"),
        words(
            "新闻 天气 食谱 论坛 评论 指南 最好的 历史 城市 音乐 图片 问题 下载 手册 今天 视频 旅游 图书馆 价格 更新"),
    };
    return known[language];
}

const QStringList &pathWords()
{
    static const QStringList known =
        words("news article articles blog posts wiki questions watch product products category tag user docs manual "
              "issues forum topic search archive download en de 2022 2023 2024 2025 index story img help");
    return known;
}
} // namespace

LifelikeBrowser::LifelikeBrowser() : _random(20'250'601)
{
    std::uint64_t weight = 0;
    for (int rank = 1; rank <= siteCount; ++rank) {
        Site site = madeUpSite();
        weight += 1'000'000'000 / std::uint64_t(rank); // the tenth is visited a tenth as often as the first
        site.weight = weight;
        _sites.push_back(site);
    }
}

QString LifelikeBrowser::madeUpName()
{
    static const QStringList syllables = words("ba ke li mo nu ra so ti ve wo za pre sta gri fo lun mar ten dor vil ex "
                                               "quo net by hub web soft book press data");
    QString name;
    for (int left = 2 + below(3); left > 0; --left)
        name += oneOf(syllables);
    return oneIn(8) ? name + QLatin1Char('-') + oneOf(syllables) : name;
}

QString LifelikeBrowser::uuid()
{
    const std::uint64_t low = _random();
    return QUuid(uint(_random()), ushort(low), ushort(low >> 16), uchar(low >> 32), uchar(low >> 40), uchar(low >> 48),
                 uchar(low >> 56), uchar(_random()), uchar(_random()), uchar(_random()), uchar(_random()))
        .toString(QUuid::WithoutBraces)
        .toUpper();
}

LifelikeBrowser::Site LifelikeBrowser::madeUpSite()
{
    static const std::pair<const char *, Language> domains[] = {
        {".com", Language::English},   {".com", Language::English}, {".com", Language::English},
        {".org", Language::English},   {".net", Language::English}, {".io", Language::English},
        {".co.uk", Language::English}, {".de", Language::German},   {".de", Language::German},
        {".at", Language::German},     {".ru", Language::Russian},  {".com.cn", Language::Chinese},
    };
    static const QStringList subdomains =
        words("www. www. www. www. en. news. blog. docs. forum. shop. m. static.cdn.");
    const QString scheme = oneIn(9) ? QStringLiteral("http://") : QStringLiteral("https://");
    if (oneIn(100))
        return {scheme + QStringLiteral("localhost:%1").arg(3000 + below(6000)), Language::English, 0};
    const auto &[domain, language] = domains[below(int(std::size(domains)))];
    QString host = (oneIn(3) ? QString() : oneOf(subdomains)) + madeUpName() + QLatin1String(domain);
    if (oneIn(40))
        host += QLatin1Char(':') + QString::number(8000 + below(1000));
    return {scheme + host, language, 0};
}

const LifelikeBrowser::Site &LifelikeBrowser::popularSite()
{
    const std::uint64_t wanted = _random() % _sites.back().weight;
    return *std::upper_bound(_sites.begin(), _sites.end(), wanted,
                             [](std::uint64_t weight, const Site &site) { return weight < site.weight; });
}

QString LifelikeBrowser::address(const Site &site, int number)
{
    QString address = site.origin + QLatin1Char('/');
    for (int left = below(4); left > 0; --left)
        address += oneOf(pathWords()) + QLatin1Char('/');
    if (oneIn(3))
        return address + QStringLiteral("index.html?id=%1&ref=%2").arg(number).arg(oneOf(pathWords()));
    for (int left = 1 + below(5); left > 0; --left)
        address += oneOf(titleWords(int(Language::English))) + QLatin1Char('-');
    address += QString::number(number);
    return oneIn(6) ? address + QStringLiteral("?utm_source=%1&page=%2").arg(oneOf(pathWords())).arg(below(30))
                    : address;
}

QString LifelikeBrowser::title(Language language)
{
    const QString gap = language == Language::Chinese ? QString() : QStringLiteral(" ");
    QString title = oneOf(titleWords(int(language)));
    title[0] = title[0].toUpper();
    for (int left = 2 + below(9); left > 0; --left)
        title += gap + oneOf(titleWords(int(language)));
    if (oneIn(25))
        title += QStringLiteral(" \U0001F389");
    return oneIn(30) ? title + QStringLiteral(" & more <") + QString::number(below(100)) + QLatin1Char('>') : title;
}

QVariantMap LifelikeBrowser::visit(int number, double seconds)
{
    const Site &site = popularSite();
    const QString address = this->address(site, number);
    const QString title = this->title(site.language) + QStringLiteral(" – ") + site.origin.section(QLatin1Char('/'), 2);
    QVariantMap entry{
        {QStringLiteral(""), address},
        {QStringLiteral("lastVisitedDate"), QString::number(seconds, 'f', 1)},
        {QStringLiteral("visitCount"), oneIn(3) ? 1 + below(60) : 1},
    };
    if (!oneIn(200))
        entry.insert(QStringLiteral("title"), title);
    if (oneIn(20))
        entry.insert(QStringLiteral("displayTitle"), this->title(site.language));
    if (oneIn(15))
        entry.insert(QStringLiteral("redirectURLs"), QVariantList{address + QStringLiteral("#top")});
    return entry;
}

QVariantMap LifelikeBrowser::history(int count)
{
    QVariantList entries;
    entries.reserve(count);
    double seconds = now;
    for (int number = 0; number < count; ++number) {
        entries.append(visit(number, seconds));
        seconds -= years / count * below(2001) / 1000;
    }
    return {{QStringLiteral("WebHistoryFileVersion"), 1}, {QStringLiteral("WebHistoryDates"), entries}};
}

QVariantMap LifelikeBrowser::visitNow(int number)
{
    return {
        {QStringLiteral(""), QStringLiteral("https://www.example.com/visited/now/%1").arg(number)},
        {QStringLiteral("title"), QStringLiteral("Visited just now")},
        {QStringLiteral("lastVisitedDate"), QString::number(now + 60 + number, 'f', 1)},
        {QStringLiteral("visitCount"), 1},
    };
}

QVariantMap LifelikeBrowser::bookmarkNow(int number)
{
    const QString address = QStringLiteral("https://www.example.com/kept/now/%1").arg(number);
    return {
        {QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeLeaf")},
        {QStringLiteral("WebBookmarkUUID"), QStringLiteral("KEPT-NOW-%1").arg(number)},
        {QStringLiteral("URLString"), address},
        {QStringLiteral("URIDictionary"),
         QVariantMap{{QStringLiteral(""), address}, {QStringLiteral("title"), QStringLiteral("Kept just now")}}},
    };
}

QVariantMap LifelikeBrowser::link(int number)
{
    const Site &site = popularSite();
    const QString address = this->address(site, number);
    return {
        {QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeLeaf")},
        {QStringLiteral("WebBookmarkUUID"), uuid()},
        {QStringLiteral("URLString"), address},
        {QStringLiteral("URIDictionary"),
         QVariantMap{{QStringLiteral(""), address}, {QStringLiteral("title"), title(site.language)}}},
    };
}

QVariantMap LifelikeBrowser::folder(const QString &title, const QVariantList &children)
{
    return {
        {QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeList")},
        {QStringLiteral("WebBookmarkUUID"), uuid()},
        {QStringLiteral("Title"), title},
        {QStringLiteral("Children"), children},
    };
}

// Folders of up to twenty links each, some of them within one another.
QVariantList LifelikeBrowser::foldersOfLinks(int count, int depth)
{
    QVariantList children;
    while (count > 0) {
        const bool deeper = depth < 4 && count > 40 && oneIn(3);
        const int size = std::min(count, deeper ? 40 + below(200) : 1 + below(20));
        count -= size;
        QVariantList links;
        for (int left = deeper ? 0 : size; left > 0; --left)
            links.append(link(count + left));
        children.append(folder(title(Language::English), deeper ? foldersOfLinks(size, depth + 1) : links));
    }
    return children;
}

QVariantMap LifelikeBrowser::bookmarks(int count)
{
    const int inBar = count / 10;
    QVariantMap root = folder(QString(), {folder(QStringLiteral("BookmarksBar"), foldersOfLinks(inBar, 1)),
                                          folder(QStringLiteral("BookmarksMenu"), foldersOfLinks(count - inBar, 1))});
    root.insert(QStringLiteral("WebBookmarkFileVersion"), 1);
    return root;
}
