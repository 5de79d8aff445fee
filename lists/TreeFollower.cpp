#include "lists/TreeFollower.h"

#include "lists/WayfoldOutlineView.h"
#include "model/WayfoldBookmarkFolder.h"

TreeFollower::TreeFollower(WayfoldOutlineView *view) : _view(view) {}

TreeFollower::~TreeFollower()
{
    follow(nullptr);
}

void TreeFollower::follow(const std::shared_ptr<WayfoldBookmarkFolder> &root)
{
    if (const WayfoldBookmarkFolderPtr former = _root.lock())
        former->removeObserver(this);
    _root = root;
    if (root)
        root->addObserver(this);
}

// What the list shows the folder's children below: none is its root.
OutlineItemPtr TreeFollower::shown(WayfoldBookmarkFolder &folder) const
{
    return &folder == _root.lock().get() ? nullptr : folder.shared_from_this();
}

void TreeFollower::added(const Children &children)
{
    if (_view)
        _view->insertItems({children.items.begin(), children.items.end()}, children.first, shown(children.folder));
}

void TreeFollower::removed(const Children &children)
{
    if (_view)
        _view->removeItems(int(children.items.size()), children.first, shown(children.folder));
}

void TreeFollower::moved(WayfoldBookmarkFolder &folder, const std::vector<int> &from)
{
    if (_view)
        _view->moveItems(from, shown(folder));
}

void TreeFollower::replaced(WayfoldBookmarkFolder &folder)
{
    if (_view)
        _view->replaceContentsOfItem(shown(folder));
}

void TreeFollower::changed(KDRBookmark &item, Field field)
{
    const bool isSeen = field == Field::Title || field == Field::Value || field == Field::Appearance;
    if (_view && isSeen)
        _view->changeItem(item.shared_from_this());
}
