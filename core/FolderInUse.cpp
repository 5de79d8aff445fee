#include "core/FolderInUse.h"

#include "model/WayfoldBookmarkFolder.h"

#include <QHash>
#include <utility>

namespace
{
// How many stand for each folder.
QHash<const KDRBookmark *, int> &uses()
{
    static QHash<const KDRBookmark *, int> uses;
    return uses;
}
} // namespace

FolderInUse::FolderInUse(std::shared_ptr<WayfoldBookmarkFolder> folder) : _folder(std::move(folder))
{
    if (_folder)
        ++uses()[_folder.get()];
}

FolderInUse::FolderInUse(const FolderInUse &other) : FolderInUse(other._folder) {}

FolderInUse &FolderInUse::operator=(FolderInUse other) noexcept
{
    std::swap(_folder, other._folder);
    return *this;
}

FolderInUse::~FolderInUse()
{
    if (_folder && --uses()[_folder.get()] == 0)
        uses().remove(_folder.get());
}

bool FolderInUse::isInUse(const KDRBookmark *item)
{
    return uses().contains(item);
}
