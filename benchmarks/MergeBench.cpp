#include "benchmarks/Benches.h"
#include "benchmarks/Figures.h"
#include "benchmarks/LifelikeItems.h"
#include "benchmarks/Stopwatch.h"
#include "core/ItemMerge.h"
#include "platform/files/PropertyList.h"
#include "tests/support/TemporaryHome.h"

#include <QProcess>
#include <cstdio>
#include <sys/resource.h>

namespace
{
constexpr int changes = 100; // on either side

// The tree as it is saved after the first, or the second, of two sides has given notes other titles.
QVariantMap changedTree(const WayfoldBookmarkFolder &root, int side)
{
    for (int number = 0; number < changes; ++number) {
        const auto site = WayfoldBookmarkFolder::fromItem(root.childAtIndex(unsigned(number * 10 + side)));
        const KDRBookmarkPtr note = site->childAtIndex(LifelikeItems::firstNoteOfSite);
        note->setTitle(note->title() + QStringLiteral(", changed by %1").arg(side));
    }
    return root.createDictionary(true);
}

// Of all children that have ended.
double childrensMilliseconds()
{
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
}

// The tool that merges texts line by line. 0 when it does not merge them.
double diff3Milliseconds(const QStringList &files)
{
    std::vector<double> times;
    for (int run = -1; run < 7; ++run) {
        const double before = childrensMilliseconds();
        const Stopwatch watch;
        QProcess diff3;
        diff3.start(QStringLiteral("diff3"), QStringList{QStringLiteral("-m")} + files);
        if (!diff3.waitForFinished(600'000) || diff3.exitCode() != 0)
            return 0;
        const bool isProcessorTime = Stopwatch::countsProcessorTime();
        const double time = isProcessorTime ? childrensMilliseconds() - before : watch.milliseconds();
        if (run >= 0)
            times.push_back(time);
    }
    return Figures::median(times);
}
} // namespace

// The three trees in memory, until the one in which both sides' changes are.
bool measureMerge(Figures &figures)
{
    const auto read = WayfoldBookmarkFolder::bookmarkFromDictionary(LifelikeItems::tree()->createDictionary(true));
    const QVariantMap base = read->createDictionary(true);
    const auto changedBy = [&](int side) {
        return changedTree(*WayfoldBookmarkFolder::bookmarkFromDictionary(base), side);
    };
    const QVariantMap ours = changedBy(1);
    const QVariantMap theirs = changedBy(2);
    bool holdsAll = true;
    ItemMerge::Report report;
    const double milliseconds = Figures::medianMilliseconds([&] {
        const ItemMerge merge(base, ours, theirs, [](const QString &title) { return title; });
        holdsAll = merge.holdsAll() && holdsAll;
        report = merge.report();
    });
    const TemporaryHome home;
    QStringList files;
    for (const auto &[name, tree] :
         {std::pair("ours", &ours), std::pair("base", &base), std::pair("theirs", &theirs)}) {
        files.append(home.path(QLatin1String(name)));
        PropertyList::writeFile(*tree, files.last());
    }
    figures.add(QStringLiteral("merge_ms"), milliseconds, QStringLiteral("ms"), QStringLiteral("diff3_merge_ms"));
    figures.add(QStringLiteral("diff3_merge_ms"), diff3Milliseconds(files), QStringLiteral("ms"));
    if (holdsAll && report.changed == changes && report.seconds.isEmpty())
        return true;
    std::fprintf(stderr, "%d of %d changes were merged\n", report.changed, changes);
    return false;
}
