#pragma once

#include <QVariantMap>
#include <memory>

class WayfoldBookmarkFolder;

// Makes a tree that lists show the one that a merge has come to, by the smallest changes: whatever is in both stays the
// very object, also where it was moved; only fields that differ are set, only children that came, went or moved are
// touched. So whoever observes the tree is told item by item. Folders in which nothing is different are not looked
// into.
namespace TreeUpdate
{
// `ours` is what the tree is: createDictionary(true), or the same as ItemMerge::ours() has it. What is not written to
// files (smart folders) stays where it is. Items that have no identifier in the dictionary keep, or get, one of their
// own.
void update(const std::shared_ptr<WayfoldBookmarkFolder> &root, const QVariantMap &ours, const QVariantMap &merged);
} // namespace TreeUpdate
