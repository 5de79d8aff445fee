#include "benchmarks/Benches.h"
#include "benchmarks/DrawerOnFiles.h"
#include "benchmarks/Figures.h"
#include "lists/WayfoldHistoryDataSource.h"
#include "model/WayfoldAutoFolder.h"
#include "model/WayfoldHistoryURL.h"

#include <cstdio>

namespace
{
// The Scratchpad shows the site that was visited last, whose smart folders have been looked into.
bool showSiteWithSmartFolders(const DrawerOnFiles &drawer)
{
    const KDRBookmarkPtr newest = DrawerStage::store().historyBookmarkRoot()->childAtIndex(0);
    const QString key = std::static_pointer_cast<WayfoldHistoryURL>(newest)->trackedHostName();
    const auto site = WayfoldBookmarkFolder::bookmarkWithTitle(key);
    site->addChild(DrawerStage::note(QStringLiteral("Something to remember")));
    DrawerStage::store().bookmarkRoot()->addChild(site);
    site->addAutoFolders();
    drawer.controller()->setScratchDrawerLabelUsingFrame(key, nullptr);
    for (const KDRBookmarkPtr &child : site->children()) {
        if (const auto folder = std::dynamic_pointer_cast<WayfoldAutoFolder>(child))
            folder->ensureUpToDate();
    }
    const auto related = std::dynamic_pointer_cast<WayfoldAutoFolder>(site->lastChild());
    return related && related->isLoaded() && related->childCount() > 0 &&
           drawer.controller()->scratchDataSource()->localRootFolder() == site;
}

// Everything that the main thread does when the browser has written one visit more. The first time, when the form of
// the file is another one than before, does not count.
bool measureReread(Figures &figures, const char *name, GeneratedFiles &files, const QString &file,
                   DrawerOnFiles &drawer)
{
    drawer.stage.host.historyPath = file;
    KDRDrawerBundle &store = DrawerStage::store();
    const unsigned before = store.historyBookmarkRoot()->childCount();
    bool written = true;
    const double milliseconds = Figures::medianMilliseconds(
        [&] {
            store.tagSafariFiles();
            QCoreApplication::processEvents(); // the notifications
            DrawerOnFiles::layOut(drawer.history());
        },
        7, [&] { written = files.addVisitTo(file) && written; });
    figures.add(QLatin1String(name), milliseconds, QStringLiteral("ms"));
    return written && store.historyBookmarkRoot()->childCount() == before + 8;
}

// Also with the drawer closed, in which the list is to follow when it is seen again.
bool measureRereads(Figures &figures, GeneratedFiles &files, DrawerOnFiles &drawer)
{
    const auto isNewestShown = [&] {
        const WayfoldBookmarkFolderPtr shown = drawer.controller()->historyDataSource()->localRootFolder();
        return shown->findByUUID(DrawerStage::store().historyBookmarkRoot()->childAtIndex(0)->uuid()) != nullptr;
    };
    const auto isRead = [&](const char *name, const QString &file) {
        return measureReread(figures, name, files, file, drawer) && isNewestShown();
    };
    bool complete = isRead("history_reread_crlf_ms", files.crlfHistory());
    complete = isRead("history_reread_binary_ms", files.binaryHistory()) && complete;
    complete = isRead("history_reread_ms", files.history()) && complete;
    drawer.controller()->drawer()->close();
    complete = measureReread(figures, "closed_drawer_reread_ms", files, files.history(), drawer) && complete;
    drawer.controller()->drawer()->open();
    if (complete && isNewestShown())
        return true;
    std::fprintf(stderr, "the visits did not come into the list\n");
    return false;
}

void measureReload(Figures &figures, WayfoldHistoryOutlineView &list)
{
    for (int row = std::min(200, list.numberOfRows()) - 1; row >= 0; --row)
        list.expandItem(list.itemAtRow(row));
    const double milliseconds = Figures::medianMilliseconds([&] {
        list.prepForReloadData();
        list.reloadData();
        DrawerOnFiles::layOut(list);
    });
    figures.add(QStringLiteral("list_reload_ms"), milliseconds, QStringLiteral("ms"));
}

void measureIdleCheck(Figures &figures)
{
    constexpr int checks = 1000;
    const double milliseconds = Figures::medianMilliseconds([&] {
        for (int check = 0; check < checks; ++check)
            DrawerStage::store().tagSafariFiles();
    });
    figures.add(QStringLiteral("idle_check_us"), milliseconds * 1000 / checks, QStringLiteral("us"));
}
} // namespace

bool measureHistoryTab(Figures &figures, GeneratedFiles &files, bool /*peers*/)
{
    DrawerOnFiles drawer(files);
    if (!showSiteWithSmartFolders(drawer)) {
        std::fprintf(stderr, "the Scratchpad does not show the site with its smart folders\n");
        return false;
    }
    drawer.controller()->showHistoryTabView();
    DrawerOnFiles::layOut(drawer.history());
    const bool complete = measureRereads(figures, files, drawer);
    measureReload(figures, drawer.history());
    measureIdleCheck(figures);
    return complete;
}
