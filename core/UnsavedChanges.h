#pragma once

#include "model/TreeObserver.h"

#include <QTimer>
#include <functional>
#include <memory>

// Knows whether the item file's tree has changed since it was saved, in something that the file keeps: not in a smart
// folder, nor in a group's members. A change that nobody saves himself is saved when the event loop comes round, once
// for all that changed together.
class UnsavedChanges : public TreeObserver
{
public:
    explicit UnsavedChanges(std::function<void()> save);
    ~UnsavedChanges() override;
    UnsavedChanges(const UnsavedChanges &) = delete;
    UnsavedChanges &operator=(const UnsavedChanges &) = delete;

    // That tree from now on, as it is saved. None: no tree.
    void observe(const std::shared_ptr<WayfoldBookmarkFolder> &root);
    bool areAny() const { return _areAny; }
    // The tree was saved.
    void forget();

    void added(const Children &children) override { noteChildren(children); }
    void removed(const Children &children) override { noteChildren(children); }
    void moved(WayfoldBookmarkFolder &folder, const std::vector<int> &from) override;
    void replaced(WayfoldBookmarkFolder &folder) override;
    void changed(KDRBookmark &item, Field field) override;

private:
    void noteChildren(const Children &children);
    void note();

    std::function<void()> _save;
    std::shared_ptr<WayfoldBookmarkFolder> _root;
    bool _areAny = false;
    QTimer _nextPass;
};
