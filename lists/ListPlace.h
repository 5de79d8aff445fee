#pragma once

#include "model/WayfoldBookmarkFolder.h"

#include <memory>
#include <optional>
#include <vector>

class OutlineView;

// Where the user is in a list: the rows that are seen, and the one that the keyboard stands on. They are found again
// when the list has been loaded anew, with other rows above them, or from another tree with the same identifiers:
//
//     const ListPlace place(view);
//     ... the list is loaded anew, what was open is opened, what was selected is selected ...
//     place.restore(view, root);
class ListPlace
{
public:
    explicit ListPlace(const OutlineView &view);

    // Scrolls to where the rows that were seen stand as before. What stood at the very top of its list does so again.
    // The keyboard goes to its old item; to where that stood if it is gone and nothing is selected.
    // `root`: what the list shows now; may be none.
    void restore(OutlineView &view, const WayfoldBookmarkFolderPtr &root) const;

private:
    struct Row
    {
        std::weak_ptr<KDRBookmark> item; // whether a site's folder is still in use is told by its reference count
        QString uuid;
        int number;
    };

    static Row rowOfView(const OutlineView &view, int number);
    static int findNearby(const OutlineView &view, const Row &row);
    std::vector<int> findNearby(const OutlineView &view) const;
    std::vector<int> findAnywhere(const OutlineView &view, const WayfoldBookmarkFolderPtr &root) const;
    int rowsMoved(const std::vector<int> &numbers) const;
    void restoreScrollPosition(OutlineView &view, const WayfoldBookmarkFolderPtr &root) const;
    void restoreCurrentRow(OutlineView &view) const;

    int _scrollPosition;
    std::vector<Row> _seen; // the first few that are seen; none at the very top
    std::optional<Row> _current;
};
