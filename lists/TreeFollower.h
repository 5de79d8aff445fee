#pragma once

#include "model/TreeObserver.h"

#include <QPointer>

class OutlineItem;
class WayfoldOutlineView;

// Lets a list follow the tree that it shows, row by row: what changes below the root is told to the list as rows that
// come, go, move or look different. Everything else in the list stays where it is.
class TreeFollower : public TreeObserver
{
public:
    // The list may go first.
    explicit TreeFollower(WayfoldOutlineView *view);
    ~TreeFollower() override;
    Q_DISABLE_COPY_MOVE(TreeFollower)

    // Another root, which the list does not show yet; none: it follows nothing. The root is not held.
    void follow(const std::shared_ptr<WayfoldBookmarkFolder> &root);

    void added(const Children &children) override;
    void removed(const Children &children) override;
    void moved(WayfoldBookmarkFolder &folder, const std::vector<int> &from) override;
    void replaced(WayfoldBookmarkFolder &folder) override;
    void changed(KDRBookmark &item, Field field) override;

private:
    std::shared_ptr<OutlineItem> shown(WayfoldBookmarkFolder &folder) const;

    QPointer<WayfoldOutlineView> _view;
    std::weak_ptr<WayfoldBookmarkFolder> _root; // whether a site's folder is still in use is told by its holders
};
