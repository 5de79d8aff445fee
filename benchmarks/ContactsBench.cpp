#include "benchmarks/ContactsBench.h"

#include "benchmarks/Benches.h"
#include "benchmarks/ChildProcess.h"
#include "benchmarks/ContactPeers.h"
#include "benchmarks/EventWork.h"
#include "benchmarks/Figures.h"
#include "benchmarks/GeneratedFiles.h"
#include "benchmarks/LifelikeContacts.h"
#include "benchmarks/MemoryBench.h"
#include "platform/contacts/ContactFolder.h"

#include <QFile>
#include <QTemporaryDir>

namespace
{
constexpr int cards = 20'000;

bool isReady(const ContactStore &store)
{
    return store.state() == ContactStore::Ready;
}

void measureLoad(Figures &figures, const QString &folder)
{
    std::vector<double> totals;
    std::vector<double> longest;
    for (int run = -1; run < 7; ++run) {
        const ContactFolder store(folder);
        EventWork work;
        work.until([&] { return isReady(store); });
        if (run >= 0) {
            totals.push_back(work.total());
            longest.push_back(work.longest());
        }
    }
    const QString peer = QStringLiteral("contacts_vobject_load_ms");
    figures.add(QStringLiteral("contacts_load_ms"), Figures::median(totals), QStringLiteral("ms"), peer);
    figures.add(peer, ContactPeers::vobjectLoadMilliseconds(folder), QStringLiteral("ms"));
    figures.add(QStringLiteral("contacts_load_longest_slice_ms"), Figures::median(longest), QStringLiteral("ms"));
}

bool measureSearch(Figures &figures, const ContactFolder &store)
{
    const QString text = QStringLiteral("marsim"); // in some names, addresses and home pages
    std::size_t found = 0;
    const double search = Figures::medianMilliseconds([&] { found = store.recordsContainingSubstring(text).size(); });
    const QString peer = QStringLiteral("contacts_scan_ms");
    figures.add(QStringLiteral("contacts_search_ms"), search, QStringLiteral("ms"), peer);
    figures.add(peer, ContactPeers::scanMilliseconds(store.folder(), text.toLatin1()), QStringLiteral("ms"));
    return found > 0 && found < cards / 2;
}

// Another program writes a card: all that is done until the store has it.
bool measureChange(Figures &figures, const ContactFolder &store)
{
    constexpr int number = cards / 2;
    std::vector<double> times;
    for (int run = 0; run < 7; ++run) {
        const quint64 generation = store.generation();
        QFile file(store.folder() + u'/' + LifelikeContacts::fileName(number));
        if (!file.open(QIODevice::WriteOnly))
            return false;
        file.write(LifelikeContacts().card(number, run + 10));
        file.close();
        QFile folder(store.folder() + QStringLiteral("/.touched"));
        if (!folder.open(QIODevice::WriteOnly)) // or the change would be seen by a later check only
            return false;
        folder.remove();
        EventWork work;
        work.until([&] { return store.generation() > generation; });
        times.push_back(work.total());
    }
    figures.add(QStringLiteral("contacts_change_ms"), Figures::median(times), QStringLiteral("ms"));
    return true;
}
} // namespace

std::optional<double> ContactsBench::bytesPerCard(const QString &folder, int count)
{
    {
        const QTemporaryDir none; // what the first store of all needs does not count
        const ContactFolder store(none.path());
        EventWork().until([&] { return isReady(store); });
    }
    const double before = MemoryBench::residentSize();
    const ContactFolder store(folder);
    EventWork().until([&] { return isReady(store); });
    if (store.people().size() != std::size_t(count) || before == 0)
        return {};
    return (MemoryBench::residentSize() - before) / count;
}

bool measureContacts(Figures &figures)
{
    const QTemporaryDir home;
    const QString folder = home.filePath(QStringLiteral("cards"));
    if (!LifelikeContacts().write(folder, cards))
        return false;
    measureLoad(figures, folder);
    const std::optional<double> bytes =
        ChildProcess::measure(QStringLiteral("contacts"), GeneratedFiles(folder, cards));
    if (bytes)
        figures.add(QStringLiteral("contacts_bytes_each"), *bytes, QStringLiteral("bytes"));
    const ContactFolder store(folder);
    EventWork().until([&] { return isReady(store); });
    return measureSearch(figures, store) && measureChange(figures, store) && bytes;
}
