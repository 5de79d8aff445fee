#pragma once

#include <QString>

class WayfoldBookmarkFolder;

// What the same changes of the same items take in other ways of building such lists and such a file: the median of
// seven runs in milliseconds, after one that does not count.
namespace ItemChangePeers
{
// One row of a database in the folder changed and committed. 0 when there can be no database.
double sqliteSaveMilliseconds(const WayfoldBookmarkFolder &root, const QString &folder);
// One title changed in a model of Qt's own, until as many tree views have painted it. All folders are open.
double qtChangeShownMilliseconds(const WayfoldBookmarkFolder &root, int views);
// The first row of each folder, all of them selected, removed from such a model, until the tree view is painted.
double qtDeleteMilliseconds(const WayfoldBookmarkFolder &root);
// As many rows as there are entries, all of them selected, read again into such a model and selected again by their
// identifiers.
double qtReloadSelectedMilliseconds(const WayfoldBookmarkFolder &entries);
} // namespace ItemChangePeers
