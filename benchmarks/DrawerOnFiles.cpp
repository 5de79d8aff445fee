#include "benchmarks/DrawerOnFiles.h"

namespace
{
struct ItemView : QAbstractItemView
{
    using QAbstractItemView::executeDelayedItemsLayout;
};
} // namespace

DrawerOnFiles::DrawerOnFiles(const GeneratedFiles &files)
{
    stage.host.historyPath = files.history();
    stage.host.bookmarkPath = files.bookmarks();
    _window = stage.openWindow(QRectF(100, 100, 1000, 800), true);
    DrawerStage::drawer(*_window)->open();
    QCoreApplication::processEvents();
}

void DrawerOnFiles::layOut(QAbstractItemView &view)
{
    (view.*(&ItemView::executeDelayedItemsLayout))();
}

QLineEdit *DrawerOnFiles::field(const char *name) const
{
    return DrawerStage::drawer(*_window)->findChild<QLineEdit *>(QLatin1String(name));
}
