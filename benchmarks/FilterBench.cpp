#include "benchmarks/Benches.h"
#include "benchmarks/DrawerOnFiles.h"
#include "benchmarks/Figures.h"
#include "benchmarks/FilterPeers.h"
#include "benchmarks/Typing.h"

#include <QScrollBar>

namespace
{
// From the change of the search field to the list that is ready to be painted.
Typing typeInto(QLineEdit &field, OutlineView &list)
{
    const auto search = [&](const QString &text) {
        field.setText(text);
        DrawerOnFiles::layOut(list);
    };
    return Typing(search, [&] { search(QString()); });
}

// One screen of a list of nearly all entries, elsewhere in it each time.
double paintScreens(QLineEdit &field, OutlineView &list)
{
    field.setText(QStringLiteral("http"));
    DrawerOnFiles::layOut(list);
    QScrollBar &bar = *list.verticalScrollBar();
    const double time = Figures::medianMilliseconds([&] {
        bar.setValue((bar.value() + bar.maximum() / 3) % bar.maximum());
        list.viewport()->grab();
    });
    field.clear();
    return time;
}
} // namespace

bool measureFiltering(Figures &figures, GeneratedFiles &files, bool peers)
{
    const QString unit = QStringLiteral("ms");
    const DrawerOnFiles drawer(files);
    drawer.controller()->showHistoryTabView();
    const Typing history = typeInto(drawer.historyField(), drawer.history());
    figures.add(QStringLiteral("filter_ms_worst"), history.worst(), unit, QStringLiteral("proxy_filter_ms_worst"));
    figures.add(QStringLiteral("filter_ms_median"), history.median(), unit);
    figures.add(QStringLiteral("list_paint_ms"), paintScreens(drawer.historyField(), drawer.history()), unit);
    drawer.controller()->showBookmarkTabView();
    figures.add(QStringLiteral("bookmark_filter_ms_worst"),
                typeInto(drawer.bookmarkField(), drawer.bookmarks()).worst(), unit);

    const WayfoldBookmarkFolderPtr entries = DrawerStage::store().historyBookmarkRoot();
    if (peers)
        FilterPeers::measureProxy(figures, *entries);
    return !peers || FilterPeers::measureSqlite(figures, *entries);
}
