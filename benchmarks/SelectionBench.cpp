#include "benchmarks/Benches.h"
#include "benchmarks/DrawerOnFiles.h"
#include "benchmarks/Figures.h"
#include "benchmarks/ItemChangePeers.h"
#include "benchmarks/PaintedRow.h"
#include "benchmarks/UserWait.h"

#include <cstdio>

// All entries of the history are found and selected, and the list is loaded anew, until it is painted.
bool measureSelection(Figures &figures, GeneratedFiles &files, bool peers)
{
    const DrawerOnFiles drawer(files);
    drawer.controller()->showHistoryTabView();
    WayfoldHistoryOutlineView &list = drawer.history();
    drawer.historyField().setText(QStringLiteral("://")); // in every address
    DrawerOnFiles::layOut(list);
    PaintedRow row(list, list.viewport()->rect());
    const double milliseconds = Figures::medianMilliseconds([&] {
        row.forget();
        list.selectAll();
        list.prepForReloadData();
        list.reloadData();
        EventWork().until([&] { return row.isPainted(); });
    });
    const QString unit = QStringLiteral("ms");
    figures.add(QStringLiteral("reload_selected_ms"), milliseconds, unit, QStringLiteral("qt_reload_selected_ms"));
    if (peers)
        figures.add(QStringLiteral("qt_reload_selected_ms"),
                    ItemChangePeers::qtReloadSelectedMilliseconds(*DrawerStage::store().historyBookmarkRoot()), unit);
    const int selected = list.numberOfSelectedRows();
    const int all = int(DrawerStage::store().historyBookmarkRoot()->childCount());
    if (selected == all)
        return true;
    std::fprintf(stderr, "%d of %d entries are selected\n", selected, all);
    return false;
}
