#pragma once

#include "model/WayfoldBookmarkFolder.h"

#include <QStandardItemModel>
#include <QTreeView>

// A list as it is built of Qt's own parts: a standard model, and tree views that show it.
class QtTree
{
public:
    QtTree(const WayfoldBookmarkFolder &root, int views);

    QStandardItemModel model;
    QTreeView &view(int number = 0) { return *_views[std::size_t(number)]; }

    // Fills the empty model: each row knows its item's identifier.
    void fill(const WayfoldBookmarkFolder &root);

    static constexpr int uuidRole = Qt::UserRole;

private:
    std::vector<std::unique_ptr<QTreeView>> _views;
};
