#include "benchmarks/Benches.h"
#include "benchmarks/Figures.h"
#include "benchmarks/GeneratedFiles.h"
#include "benchmarks/PlistPeers.h"
#include "core/KDRDrawerBundle.h"
#include "model/WayfoldBookmarkFolder.h"
#include "tests/support/FakeHost.h"

namespace
{
// From file to tree, by the store's own operation: 0 when it did not get as many items as it should. Each run has a
// store of its own, since a store takes over what it read before.
double readMilliseconds(FakeHostApplication &host, QString &hostPath, const QString &file,
                        bool (KDRDrawerBundle::*read)(),
                        const KDRDrawerBundle::FolderPtr &(KDRDrawerBundle::*root)() const, double items)
{
    const auto newStore = [&] {
        host.historyPath = host.bookmarkPath = QString();
        KDRDrawerBundle::releaseSharedInstance();
        KDRDrawerBundle::sharedInstance();
        hostPath = file;
    };
    const double milliseconds =
        Figures::medianMilliseconds([&] { (KDRDrawerBundle::sharedInstance().*read)(); }, 7, newStore);
    const bool isWhole = (KDRDrawerBundle::sharedInstance().*root)()->deepChildCount() >= items;
    KDRDrawerBundle::releaseSharedInstance();
    return isWhole ? milliseconds : 0;
}
} // namespace

bool measureReading(Figures &figures, GeneratedFiles &files, bool peers)
{
    FakeHostApplication host;
    const auto history = [&](const QString &file) {
        return readMilliseconds(host, host.historyPath, file, &KDRDrawerBundle::loadHistoryBookmarkFile,
                                &KDRDrawerBundle::historyBookmarkRoot, files.entries() * 0.98); // some have no title
    };
    const double xml = history(files.history());
    const double binary = history(files.binaryHistory());
    const double bookmarks = readMilliseconds(
        host, host.bookmarkPath, files.bookmarks(), &KDRDrawerBundle::loadSafariBookmarkFile,
        &KDRDrawerBundle::safariBookmarkRoot, files.entries() * 0.2); // the links alone, without the folders

    const QString unit = QStringLiteral("ms");
    figures.add(QStringLiteral("history_read_ms"), xml, unit, QStringLiteral("plistlib_read_ms"));
    if (peers) {
        figures.add(QStringLiteral("plistlib_read_ms"), PlistPeers::plistlibReadMilliseconds(files.history()), unit);
        figures.add(QStringLiteral("libplist_read_ms"), PlistPeers::libplistReadMilliseconds(files.history()), unit);
    }
    figures.add(QStringLiteral("history_read_binary_ms"), binary, unit);
    figures.add(QStringLiteral("bookmarks_read_ms"), bookmarks, unit, QStringLiteral("plistlib_bookmarks_read_ms"));
    if (peers) {
        figures.add(QStringLiteral("plistlib_bookmarks_read_ms"),
                    PlistPeers::plistlibReadMilliseconds(files.bookmarks()), unit);
        figures.add(QStringLiteral("libplist_bookmarks_read_ms"),
                    PlistPeers::libplistReadMilliseconds(files.bookmarks()), unit);
    }
    return xml > 0 && binary > 0 && bookmarks > 0;
}
