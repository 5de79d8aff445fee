#include "core/UnsavedChanges.h"

#include "model/WayfoldBookmarkFolder.h"

#include <algorithm>

namespace
{
// Whether what the folder holds stands in the item file. None: the root itself is asked about.
bool isWrittenWithin(const KDRBookmark *folder)
{
    for (; folder; folder = folder->holder()) {
        if (static_cast<const WayfoldBookmarkFolder *>(folder)->isAutoFolder())
            return false;
    }
    return true;
}

bool isWrittenField(TreeObserver::Field field)
{
    return field != TreeObserver::Field::Timestamp && field != TreeObserver::Field::Appearance;
}
} // namespace

UnsavedChanges::UnsavedChanges(std::function<void()> save) : _save(std::move(save))
{
    _nextPass.setSingleShot(true);
    QObject::connect(&_nextPass, &QTimer::timeout, &_nextPass, [this] { _save(); });
}

UnsavedChanges::~UnsavedChanges()
{
    observe(nullptr);
}

void UnsavedChanges::observe(const std::shared_ptr<WayfoldBookmarkFolder> &root)
{
    if (_root)
        _root->removeObserver(this);
    _root = root;
    if (_root)
        _root->addObserver(this);
    forget();
}

void UnsavedChanges::forget()
{
    _areAny = false;
    _nextPass.stop();
}

void UnsavedChanges::moved(WayfoldBookmarkFolder &folder, const std::vector<int> & /*from*/)
{
    replaced(folder);
}

void UnsavedChanges::replaced(WayfoldBookmarkFolder &folder)
{
    if (isWrittenWithin(&folder))
        note();
}

void UnsavedChanges::changed(KDRBookmark &item, Field field)
{
    if (isWrittenField(field) && item.canBePersistent() && isWrittenWithin(item.holder()))
        note();
}

void UnsavedChanges::noteChildren(const Children &children)
{
    const auto isWritten = [](const std::shared_ptr<KDRBookmark> &item) { return item->canBePersistent(); };
    if (isWrittenWithin(&children.folder) && std::any_of(children.items.begin(), children.items.end(), isWritten))
        note();
}

void UnsavedChanges::note()
{
    _areAny = true;
    _nextPass.start(0);
}
