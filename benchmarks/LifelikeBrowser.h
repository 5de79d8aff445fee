#pragma once

#include <QVariantMap>
#include <cstdint>
#include <random>
#include <vector>

// What the files of a browser hold after years of use, made up: the same at every run and on every machine.
class LifelikeBrowser
{
public:
    LifelikeBrowser();

    // The contents of a history file: `count` pages of some 3,000 sites, few of them visited often and most hardly
    // ever, over four years, the newest first, one entry an address.
    QVariantMap history(int count);
    // The contents of a bookmark file: `count` links in nested folders below the bookmarks bar and the menu.
    QVariantMap bookmarks(int count);
    // One more visit, newer than all others.
    static QVariantMap bookmarkNow(int number);
    static QVariantMap visitNow(int number);

private:
    enum class Language { English, German, Russian, Chinese };
    struct Site
    {
        QString origin; // scheme, host and port
        Language language;
        std::uint64_t weight; // its own and that of all before it
    };

    // Below the limit. Not a distribution of the library's, whose results differ from one to the next.
    int below(int limit) { return int(_random() % std::uint64_t(limit)); }
    bool oneIn(int number) { return below(number) == 0; }
    QString oneOf(const QStringList &words) { return words[below(int(words.size()))]; }
    QString madeUpName();
    QString uuid();
    Site madeUpSite();
    const Site &popularSite();
    // Of a page that no other address has that ends in this number.
    QString address(const Site &site, int number);
    QString title(Language language);
    QVariantMap visit(int number, double seconds);
    QVariantMap link(int number);
    QVariantMap folder(const QString &title, const QVariantList &children);
    QVariantList foldersOfLinks(int count, int depth);

    std::mt19937_64 _random;
    std::vector<Site> _sites;
};
