#include "benchmarks/ItemChangePeers.h"

#include "benchmarks/EventWork.h"
#include "benchmarks/Figures.h"
#include "benchmarks/LifelikeItems.h"
#include "benchmarks/PaintedRow.h"
#include "benchmarks/QtTree.h"

#include <QSet>
#include <QSqlDatabase>
#include <QSqlQuery>

namespace
{
bool insert(QSqlQuery &query, const WayfoldBookmarkFolder &folder)
{
    int position = 0;
    for (const KDRBookmarkPtr &child : folder.children()) {
        for (const QVariant &value :
             {QVariant(child->uuid()), QVariant(folder.uuid()), QVariant(position++), QVariant(int(child->type())),
              QVariant(child->title()), QVariant(child->valueAsString())})
            query.addBindValue(value);
        const WayfoldBookmarkFolderPtr subfolder = WayfoldBookmarkFolder::fromItem(child);
        if (!query.exec() || (subfolder && !insert(query, *subfolder)))
            return false;
    }
    return true;
}

bool fill(QSqlDatabase &database, const WayfoldBookmarkFolder &root)
{
    QSqlQuery query(database);
    return query.exec(QStringLiteral("CREATE TABLE items (uuid TEXT PRIMARY KEY, parent TEXT, position INTEGER, "
                                     "kind INTEGER, title TEXT, value TEXT)")) &&
           database.transaction() && query.prepare(QStringLiteral("INSERT INTO items VALUES (?, ?, ?, ?, ?, ?)")) &&
           insert(query, root) && database.commit();
}

double updateMilliseconds(const QSqlDatabase &database, const QString &uuid)
{
    int updates = 0;
    bool isUpdated = true;
    const double milliseconds = Figures::medianMilliseconds([&] {
        QSqlQuery query(database);
        query.prepare(QStringLiteral("UPDATE items SET title = ?, value = ? WHERE uuid = ?"));
        const QString title = QStringLiteral("Another title %1").arg(++updates);
        for (const QString &value : {title, title, uuid})
            query.addBindValue(value);
        isUpdated = query.exec() && query.numRowsAffected() == 1 && isUpdated;
    });
    return isUpdated ? milliseconds : 0;
}

KDRBookmarkPtr firstNote(const WayfoldBookmarkFolder &root)
{
    return WayfoldBookmarkFolder::fromItem(root.childAtIndex(0))->childAtIndex(LifelikeItems::firstNoteOfSite);
}

// A database that is open cannot be removed, nor one that anything still refers to.
double sqliteMilliseconds(const QString &name, const QString &file, const WayfoldBookmarkFolder &root)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    database.setDatabaseName(file);
    return database.open() && fill(database, root) ? updateMilliseconds(database, firstNote(root)->uuid()) : 0;
}

void selectFirstRows(QtTree &tree)
{
    QItemSelection selection;
    for (int number = 0; number < tree.model.rowCount(); ++number) {
        const QModelIndex first = tree.model.index(0, 0, tree.model.index(number, 0));
        selection.select(first, first);
    }
    tree.view().selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void removeSelectedRows(QtTree &tree)
{
    const QModelIndexList selected = tree.view().selectionModel()->selectedIndexes();
    const QList<QPersistentModelIndex> rows(selected.cbegin(), selected.cend());
    tree.view().clearSelection(); // or the view lays itself out again for each
    for (const QPersistentModelIndex &row : rows)
        tree.model.removeRow(row.row(), row.parent());
}

QSet<QString> selectedUUIDs(const QtTree &tree, const QTreeView &view)
{
    QSet<QString> uuids;
    for (const QModelIndex &index : view.selectionModel()->selectedIndexes())
        uuids.insert(tree.model.data(index, QtTree::uuidRole).toString());
    return uuids;
}

// Neighbours are selected as one range, as the selection takes its time with many.
void selectUUIDs(const QtTree &tree, const QTreeView &view, const QSet<QString> &uuids)
{
    QItemSelection selection;
    const int count = tree.model.rowCount();
    int begin = -1;
    for (int row = 0; row <= count; ++row) {
        const bool isSelected =
            row < count && uuids.contains(tree.model.index(row, 0).data(QtTree::uuidRole).toString());
        if (isSelected && begin < 0)
            begin = row;
        if (!isSelected && begin >= 0)
            selection.select(tree.model.index(std::exchange(begin, -1), 0), tree.model.index(row - 1, 0));
    }
    view.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}
} // namespace

double ItemChangePeers::sqliteSaveMilliseconds(const WayfoldBookmarkFolder &root, const QString &folder)
{
    const QString name = QStringLiteral("items");
    const double milliseconds = sqliteMilliseconds(name, folder + QStringLiteral("/items.sqlite"), root);
    QSqlDatabase::removeDatabase(name);
    return milliseconds;
}

double ItemChangePeers::qtChangeShownMilliseconds(const WayfoldBookmarkFolder &root, int views)
{
    QtTree tree(root, views);
    QStandardItem *note = tree.model.item(0)->child(LifelikeItems::firstNoteOfSite);
    std::vector<std::unique_ptr<PaintedRow>> rows;
    for (int number = 0; number < views; ++number)
        rows.push_back(std::make_unique<PaintedRow>(tree.view(number), tree.view(number).visualRect(note->index())));
    int edits = 0;
    return Figures::medianMilliseconds(
        [&] {
            note->setText(QStringLiteral("Another title %1").arg(++edits));
            EventWork().until([&] {
                return std::all_of(rows.cbegin(), rows.cend(), [](const auto &row) { return row->isPainted(); });
            });
        },
        7,
        [&] {
            for (const auto &row : rows)
                row->forget();
        });
}

double ItemChangePeers::qtDeleteMilliseconds(const WayfoldBookmarkFolder &root)
{
    QtTree tree(root, 1);
    PaintedRow row(tree.view(), tree.view().viewport()->rect());
    const auto putBack = [&] {
        tree.model.clear();
        tree.fill(root);
        tree.view().expandAll();
        selectFirstRows(tree);
        QCoreApplication::processEvents();
        row.forget();
    };
    const auto remove = [&] {
        removeSelectedRows(tree);
        EventWork().until([&] { return row.isPainted(); });
    };
    return Figures::medianMilliseconds(remove, 7, putBack);
}

double ItemChangePeers::qtReloadSelectedMilliseconds(const WayfoldBookmarkFolder &entries)
{
    QtTree tree(entries, 1);
    PaintedRow row(tree.view(), tree.view().viewport()->rect());
    const auto reload = [&] {
        row.forget();
        tree.view().selectAll();
        const QSet<QString> uuids = selectedUUIDs(tree, tree.view());
        tree.model.clear();
        tree.fill(entries);
        selectUUIDs(tree, tree.view(), uuids);
        EventWork().until([&] { return row.isPainted(); });
    };
    return Figures::medianMilliseconds(reload);
}
