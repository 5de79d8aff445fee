#include "benchmarks/FilterPeers.h"

#include "benchmarks/DrawerOnFiles.h"
#include "benchmarks/Figures.h"
#include "benchmarks/Typing.h"

#include <QSortFilterProxyModel>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardItemModel>
#include <QTreeView>
#include <vector>

namespace
{
using Row = std::pair<QString, QString>; // title and address

std::vector<Row> rowsOf(const WayfoldBookmarkFolder &entries)
{
    std::vector<Row> rows;
    for (const KDRBookmarkPtr &entry : entries.children())
        rows.emplace_back(entry->title(), entry->valueAsString());
    return rows;
}

bool fill(QSqlDatabase &database, const std::vector<Row> &rows)
{
    QSqlQuery query(database);
    if (!query.exec(QStringLiteral("CREATE TABLE history (title TEXT, address TEXT)")) || !database.transaction() ||
        !query.prepare(QStringLiteral("INSERT INTO history VALUES (?, ?)")))
        return false;
    for (const auto &[title, address] : rows) {
        query.addBindValue(title);
        query.addBindValue(address);
        if (!query.exec())
            return false;
    }
    return database.commit();
}

void search(const QSqlDatabase &database, const QString &text)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    query.prepare(QStringLiteral("SELECT title, address FROM history WHERE title LIKE ? OR address LIKE ?"));
    const QString pattern = QLatin1Char('%') + text + QLatin1Char('%');
    query.addBindValue(pattern);
    query.addBindValue(pattern);
    query.exec();
    std::vector<Row> found;
    while (query.next())
        found.emplace_back(query.value(0).toString(), query.value(1).toString());
}
} // namespace

void FilterPeers::measureProxy(Figures &figures, const WayfoldBookmarkFolder &entries)
{
    QStandardItemModel model;
    for (const auto &[title, address] : rowsOf(entries))
        model.appendRow({new QStandardItem(title), new QStandardItem(address)});
    QSortFilterProxyModel proxy;
    proxy.setFilterCaseSensitivity(Qt::CaseInsensitive);
    proxy.setFilterKeyColumn(-1);
    proxy.setSourceModel(&model);
    QTreeView view;
    view.setRootIsDecorated(false);
    view.setUniformRowHeights(true);
    view.resize(300, 600);
    view.setModel(&proxy);
    view.show();
    const auto search = [&](const QString &text) {
        proxy.setFilterFixedString(text);
        DrawerOnFiles::layOut(view);
    };
    const Typing typing(search, [&] { search(QString()); });
    figures.add(QStringLiteral("proxy_filter_ms_worst"), typing.worst(), QStringLiteral("ms"));
}

bool FilterPeers::measureSqlite(Figures &figures, const WayfoldBookmarkFolder &entries)
{
    const QString name = QStringLiteral("history");
    bool filled = false;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(QStringLiteral(":memory:"));
        filled = database.open() && fill(database, rowsOf(entries));
        if (filled) {
            const Typing typing([&](const QString &text) { search(database, text); }, [] {});
            figures.add(QStringLiteral("sqlite_like_ms_worst"), typing.worst(), QStringLiteral("ms"));
        }
    }
    QSqlDatabase::removeDatabase(name);
    return filled;
}
