#pragma once

class Figures;
class WayfoldBookmarkFolder;

// What a search takes in other ways of building such a list, over the same entries.
namespace FilterPeers
{
// Qt's own proxy over its own model, in its own tree view.
void measureProxy(Figures &figures, const WayfoldBookmarkFolder &entries);
// A database in memory; every row found is fetched. False when it cannot be made.
bool measureSqlite(Figures &figures, const WayfoldBookmarkFolder &entries);
} // namespace FilterPeers
