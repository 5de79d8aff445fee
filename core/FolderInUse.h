#pragma once

#include <memory>

class KDRBookmark;
class WayfoldBookmarkFolder;

// Whoever shows a site's folder, or is about to put something into it, holds one of these: a provisional folder stays
// as long as there is any for it. To hold the folder alone does not count.
class FolderInUse
{
public:
    // Of no folder.
    FolderInUse() = default;
    explicit FolderInUse(std::shared_ptr<WayfoldBookmarkFolder> folder);
    FolderInUse(const FolderInUse &other);
    FolderInUse(FolderInUse &&other) noexcept = default;
    FolderInUse &operator=(FolderInUse other) noexcept;
    ~FolderInUse();

    const std::shared_ptr<WayfoldBookmarkFolder> &folder() const { return _folder; }

    // Only the address is looked at: the item may be gone.
    static bool isInUse(const KDRBookmark *item);

private:
    std::shared_ptr<WayfoldBookmarkFolder> _folder;
};
