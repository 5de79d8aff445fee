#pragma once

#include "tests/drawer/DrawerStage.h"

// Browser windows with open drawers, each of which shows the whole Scratchpad, over a file of 20,000 items.
class ScratchpadWindows
{
public:
    explicit ScratchpadWindows(int count);

    DrawerStage stage; // with a home of its own

    QString itemFile() const { return stage.home.path(QStringLiteral("Library/Wayfold/Bookmarks.plist")); }
    const std::vector<WayfoldScratchOutlineView *> &lists() const { return _lists; }
    // The list of the window in front.
    WayfoldScratchOutlineView &list() const { return *_lists.back(); }
    WayfoldScratchDataSource &dataSource() const;

    // The folder of a site, which has the number that LifelikeItems gave it.
    static WayfoldBookmarkFolderPtr site(int number);
    // Opens the folders of the first sites in every list.
    void openSites(int count);

private:
    std::vector<std::shared_ptr<FakeHostWindow>> _windows;
    std::vector<WayfoldScratchOutlineView *> _lists;
};
