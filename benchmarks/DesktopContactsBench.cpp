#include "benchmarks/DesktopContactsBench.h"

#include "benchmarks/Benches.h"
#include "benchmarks/ChildProcess.h"
#include "benchmarks/EventWork.h"
#include "benchmarks/Figures.h"
#include "benchmarks/GeneratedFiles.h"
#include "benchmarks/LibebookPeer.h"
#include "benchmarks/LifelikeContacts.h"
#include "benchmarks/MemoryBench.h"
#include "platform/contacts/DesktopContacts.h"
#include "tests/platform/contacts/DesktopSession.h"

#include <cstdio>

namespace
{
constexpr int cardsAtHome = 20'000;
const QByteArray searched = "marsim"; // in some names, addresses and home pages

struct Named
{
    const char *name;
    const char *unit;
    const char *peer; // null: none
};
constexpr Named figureNames[] = {
    {"desktop_contacts_load_ms", "ms", "libebook_load_ms"},     {"libebook_load_ms", "ms", nullptr},
    {"desktop_contacts_load_work_ms", "ms", nullptr},           {"desktop_contacts_longest_slice_ms", "ms", nullptr},
    {"desktop_contacts_search_ms", "ms", "libebook_search_ms"}, {"libebook_search_ms", "ms", nullptr},
    {"desktop_contacts_change_ms", "ms", "libebook_change_ms"}, {"libebook_change_ms", "ms", nullptr},
    {"desktop_contacts_bytes_each", "bytes", nullptr},
};

bool isReady(const ContactStore &store)
{
    return store.state() == ContactStore::Ready;
}

bool write(LibebookPeer &book, int cards)
{
    LifelikeContacts contacts;
    QByteArrayList texts;
    for (int i = 0; i < cards; ++i)
        texts.append(contacts.card(i));
    return book.add(texts);
}

// Each from connecting on, until the last card is there.
bool measureLoad(std::vector<double> &values, int cards)
{
    bool isWhole = true;
    std::vector<double> times;
    std::vector<double> work;
    std::vector<double> longest;
    for (int run = -1; run < 3; ++run) {
        const Stopwatch watch;
        const DesktopContacts store;
        EventWork events;
        events.until([&] { return isReady(store); });
        isWhole = isWhole && store.people().size() == std::size_t(cards);
        if (run < 0)
            continue;
        times.push_back(watch.milliseconds());
        work.push_back(events.total());
        longest.push_back(events.longest());
    }
    const auto ask = [&] {
        LibebookPeer other;
        isWhole = isWhole && other.open() && other.countOfAll() == cards;
    };
    for (const double value :
         {Figures::median(times), Figures::medianMilliseconds(ask, 3), Figures::median(work), Figures::median(longest)})
        values.push_back(value);
    return isWhole;
}

bool measureSearch(std::vector<double> &values, const ContactStore &store, const LibebookPeer &book)
{
    int found = 0;
    int foundThere = 0;
    values.push_back(Figures::medianMilliseconds(
        [&] { found = int(store.recordsContainingSubstring(QString::fromLatin1(searched)).size()); }));
    values.push_back(Figures::medianMilliseconds([&] { foundThere = book.countContaining(searched); }));
    return found > 0 && found == foundThere;
}

// Another program changes a card: all that is done until the store has it, without the time that the service takes to
// tell; and what it takes to ask for the card instead.
bool measureChange(std::vector<double> &values, const ContactStore &store, LibebookPeer &book, int number)
{
    bool isChanged = true;
    std::vector<double> times;
    for (int run = 0; run < 7; ++run) {
        const quint64 generation = store.generation();
        isChanged = isChanged && book.change(LifelikeContacts().card(number, run + 10));
        EventWork work;
        work.until([&] { return !isChanged || store.generation() > generation; });
        times.push_back(work.total());
    }
    const QByteArray id = "card-" + QByteArray::number(number);
    values.push_back(Figures::median(times));
    values.push_back(Figures::medianMilliseconds([&] { isChanged = isChanged && book.hasCard(id); }));
    return isChanged;
}
} // namespace

std::optional<std::vector<double>> DesktopContactsBench::measure(int cards)
{
    if (!DesktopSession::isInstalled())
        return std::vector<double>();
    const DesktopSession session;
    LibebookPeer book;
    if (!book.open())
        return std::vector<double>();
    std::vector<double> values;
    if (!write(book, cards) || !measureLoad(values, cards))
        return {};
    {
        const DesktopContacts store;
        EventWork().until([&] { return isReady(store); });
        if (!measureSearch(values, store, book) || !measureChange(values, store, book, cards / 2))
            return {};
    }
    const std::optional<double> bytes = ChildProcess::measure(QStringLiteral("desktop contacts' memory"), {{}, cards});
    if (!bytes)
        return {};
    values.push_back(*bytes);
    return values;
}

std::optional<double> DesktopContactsBench::bytesPerCard(int cards)
{
    LibebookPeer book; // what the library needs does not count
    if (!book.open() || book.countContaining(searched) == 0)
        return {};
    const double before = MemoryBench::residentSize();
    const DesktopContacts store;
    EventWork().until([&] { return isReady(store) && store.people().size() == std::size_t(cards); });
    return before == 0 ? std::optional<double>() : (MemoryBench::residentSize() - before) / cards;
}

bool measureDesktopContacts(Figures &figures)
{
    const auto values = ChildProcess::measureAll(QStringLiteral("desktop contacts"), {{}, cardsAtHome});
    if (!values)
        return false;
    if (values->empty()) {
        std::fprintf(stderr, "left out: the desktop's contacts, whose service is not there\n");
        return true;
    }
    if (values->size() != std::size(figureNames))
        return false;
    for (std::size_t i = 0; i < values->size(); ++i)
        figures.add(QLatin1String(figureNames[i].name), values->at(i), QLatin1String(figureNames[i].unit),
                    QLatin1String(figureNames[i].peer));
    return true;
}
