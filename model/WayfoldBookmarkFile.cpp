#include "model/WayfoldBookmarkFile.h"

#include "core/settings/WayfoldDefaults.h"
#include "model/ItemDialogs.h"
#include "platform/widgets/Image.h"

WayfoldBookmarkFilePtr WayfoldBookmarkFile::bookmarkWithTitle(const QString &title)
{
    auto link = std::make_shared<WayfoldBookmarkFile>();
    link->setTitle(title);
    return link;
}

WayfoldBookmarkFilePtr WayfoldBookmarkFile::bookmarkWithTitleAndURL(const QString &title, const Url &url)
{
    auto link = std::make_shared<WayfoldBookmarkFile>();
    link->setTitle(title);
    link->setURL(url);
    return link;
}

WayfoldBookmarkFilePtr WayfoldBookmarkFile::bookmarkFromDictionary(const QVariantMap &dictionary)
{
    auto link = std::make_shared<WayfoldBookmarkFile>(Blank());
    link->loadFromDictionary(dictionary);
    return link;
}

QString WayfoldBookmarkFile::tooltipText() const
{
    const QString path = url().path();
    // Addresses of folders end in a slash, paths do not.
    return path.size() > 1 && path.endsWith(QLatin1Char('/')) ? path.chopped(1) : path;
}

std::shared_ptr<Image> WayfoldBookmarkFile::imageForCellSize(const QSizeF &size)
{
    Q_UNUSED(size)
    if (!WayfoldDefaults::sharedInstance().showBookmarkIcons())
        return nullptr;
    return loadIconForFileScaledTo(url().path(), QSizeF(0, 0));
}

bool WayfoldBookmarkFile::editViaDialog()
{
    ItemDialogs *const dialogs = ItemDialogs::current();
    return dialogs && dialogs->editFile(std::static_pointer_cast<WayfoldBookmarkFile>(shared_from_this()));
}

KDRBookmarkPtr WayfoldBookmarkFile::makeNew() const
{
    return std::make_shared<WayfoldBookmarkFile>(Blank());
}

bool WayfoldBookmarkFile::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldBookmarkFile *>(&other);
}
