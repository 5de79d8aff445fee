#include "benchmarks/Benches.h"
#include "benchmarks/DrawerOnFiles.h"
#include "benchmarks/Figures.h"
#include "benchmarks/PlistPeers.h"

#include <cstdio>

// Everything that the main thread does when the browser has kept one bookmark more, until the list is painted.
bool measureBookmarkTab(Figures &figures, GeneratedFiles &files, bool peers)
{
    const DrawerOnFiles drawer(files);
    drawer.controller()->showBookmarkTabView();
    WayfoldBookmarkOutlineView &list = drawer.bookmarks();
    DrawerOnFiles::layOut(list);
    for (int row = std::min(20, list.numberOfRows()) - 1; row >= 0; --row)
        list.expandItem(list.itemAtRow(row));
    KDRDrawerBundle &store = DrawerStage::store();
    const unsigned before = store.safariBookmarkRoot()->childCount();
    bool written = true;
    const double milliseconds = Figures::medianMilliseconds(
        [&] {
            store.tagSafariFiles();
            QCoreApplication::processEvents(); // the notifications
            DrawerOnFiles::layOut(list);
            list.viewport()->grab();
        },
        7, [&] { written = files.addBookmark() && written; });
    const QString unit = QStringLiteral("ms");
    figures.add(QStringLiteral("bookmarks_reread_ms"), milliseconds, unit,
                QStringLiteral("plistlib_bookmarks_reread_ms"));
    if (peers)
        figures.add(QStringLiteral("plistlib_bookmarks_reread_ms"),
                    PlistPeers::plistlibReadMilliseconds(files.bookmarks()), unit);
    if (written && store.safariBookmarkRoot()->childCount() == before + 8)
        return true;
    std::fprintf(stderr, "the bookmarks did not come into the list\n");
    return false;
}
