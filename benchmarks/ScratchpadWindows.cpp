#include "benchmarks/ScratchpadWindows.h"

#include "benchmarks/LifelikeItems.h"

ScratchpadWindows::ScratchpadWindows(int count)
{
    QDir().mkpath(QFileInfo(itemFile()).path());
    LifelikeItems::tree()->writeDictionaryFile(itemFile());
    for (int number = 0; number < count; ++number) {
        const auto window = stage.openWindow(QRectF(100, 100, 1000, 800), true);
        DrawerStage::drawer(*window)->open();
        DrawerStage::controller(*window)->showScratchPadTabView();
        _windows.push_back(window);
        _lists.push_back(DrawerStage::controller(*window)->scratchOutlineView());
    }
    QCoreApplication::processEvents();
}

WayfoldScratchDataSource &ScratchpadWindows::dataSource() const
{
    return *DrawerStage::controller(*_windows.back())->scratchDataSource();
}

WayfoldBookmarkFolderPtr ScratchpadWindows::site(int number)
{
    return WayfoldBookmarkFolder::fromItem(DrawerStage::store().bookmarkRoot()->childAtIndex(unsigned(number)));
}

void ScratchpadWindows::openSites(int count)
{
    std::vector<OutlineItemPtr> sites;
    for (int number = 0; number < count; ++number)
        sites.push_back(site(number));
    for (WayfoldScratchOutlineView *list : _lists)
        list->expandItems(sites);
    QCoreApplication::processEvents();
}
