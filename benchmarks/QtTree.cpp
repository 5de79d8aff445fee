#include "benchmarks/QtTree.h"

#include <QCoreApplication>

namespace
{
// From the top to the bottom: rows that have rows already when they are added are not all told of their model.
void append(QStandardItem *parent, const WayfoldBookmarkFolder &folder)
{
    QList<QStandardItem *> rows;
    for (const KDRBookmarkPtr &child : folder.children()) {
        rows.append(new QStandardItem(child->title()));
        rows.last()->setData(child->uuid(), QtTree::uuidRole);
    }
    parent->setColumnCount(1); // which adding rows leaves at none
    parent->appendRows(rows);
    for (unsigned number = 0; number < folder.childCount(); ++number) {
        if (const WayfoldBookmarkFolderPtr subfolder = WayfoldBookmarkFolder::fromItem(folder.childAtIndex(number)))
            append(rows[number], *subfolder);
    }
}
} // namespace

QtTree::QtTree(const WayfoldBookmarkFolder &root, int views)
{
    fill(root);
    for (int number = 0; number < views; ++number) {
        auto view = std::make_unique<QTreeView>();
        view->setUniformRowHeights(true);
        view->setHeaderHidden(true);
        view->setSelectionMode(QAbstractItemView::ExtendedSelection);
        view->resize(300, 600);
        view->setModel(&model);
        view->expandAll();
        view->show();
        _views.push_back(std::move(view));
    }
    QCoreApplication::processEvents();
}

void QtTree::fill(const WayfoldBookmarkFolder &root)
{
    append(model.invisibleRootItem(), root);
}
