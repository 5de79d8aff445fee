#include "model/FileIcons.h"

#include "platform/widgets/Image.h"
#include "platform/widgets/Workspace.h"

namespace
{
constexpr qsizetype mostIcons = 1000; // more than all lists show at once
} // namespace

std::shared_ptr<Image> FileIcons::iconForFile(const QString &path)
{
    const auto found = _icons.constFind(path);
    const bool isKept = found != _icons.constEnd() && !found->end.hasExpired();
    const Kept &kept = isKept ? *found : keep(path);
    return kept.image ? Image::imageWithIcon(kept.image->icon(), kept.image->size()) : nullptr;
}

const FileIcons::Kept &FileIcons::keep(const QString &path)
{
    if (_icons.size() >= mostIcons)
        _icons.clear();
    const std::shared_ptr<Image> image = Workspace::iconForFile(path);
    return *_icons.insert(path, {image, QDeadlineTimer(_keptFor)}); // from when it is known, however long that took
}
