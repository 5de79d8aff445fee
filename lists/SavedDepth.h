#pragma once

class KDRBookmark;
class WayfoldBookmarkFolder;

// The item file holds values nested only so deep. An item that would lie deeper would keep the whole tree from being
// saved, so it is not let in.
namespace SavedDepth
{
// Whether the item, with all that is in it, can be saved inside of the folder.
bool fits(const WayfoldBookmarkFolder &folder, const KDRBookmark &item);
// Whether an item that has none in it can.
bool hasRoom(const WayfoldBookmarkFolder &folder);
} // namespace SavedDepth
