#include "benchmarks/Benches.h"
#include "benchmarks/Figures.h"
#include "benchmarks/GeneratedFiles.h"
#include "core/KDRDrawerBundle.h"
#include "lists/WayfoldHistoryDataSource.h"
#include "tests/support/FakeHost.h"

// The whole history, grouped in every style: into a new folder, and into the folder of the grouping before.
bool measureGrouping(Figures &figures, GeneratedFiles &files, bool /*peers*/)
{
    FakeHostApplication host;
    host.historyPath = files.history();
    host.bookmarkPath = files.noFile();
    const WayfoldBookmarkFolderPtr history = KDRDrawerBundle::sharedInstance().historyBookmarkRoot();
    bool complete = true;
    for (const char *again : {"", "again_"}) {
        for (int number = 0; number <= 4; ++number) {
            const QString style = QString::number(number);
            WayfoldBookmarkFolderPtr folder;
            const auto newFolder = [&] {
                if (!folder || !*again)
                    folder = WayfoldBookmarkFolder::bookmarkWithTitle(QString());
            };
            const auto regroup = [&] {
                WayfoldHistoryDataSource::regroupBookmarksFromFolderIntoFolderWithGroupingStyle(history, folder, style);
            };
            const double milliseconds = Figures::medianMilliseconds(regroup, 7, newFolder);
            complete = complete && folder->childCount() > 0;
            figures.add(QStringLiteral("regroup_%1ms_%2").arg(QLatin1String(again), style), milliseconds,
                        QStringLiteral("ms"));
        }
    }
    KDRDrawerBundle::releaseSharedInstance();
    return complete;
}
