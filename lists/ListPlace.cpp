#include "lists/ListPlace.h"

#include "platform/widgets/OutlineView.h"

#include <QScrollBar>
#include <algorithm>

namespace
{
constexpr int rowsRemembered = 4;
constexpr int nearby = 64; // rows; a visit adds one or two

bool isGone(int number)
{
    return number < 0;
}
} // namespace

ListPlace::ListPlace(const OutlineView &view) : _scrollPosition(view.verticalScrollBar()->value())
{
    const int top = _scrollPosition > 0 ? view.rowAtPoint(QPoint(0, 0)) : -1;
    for (int number = top; number >= 0 && number < std::min(top + rowsRemembered, view.numberOfRows()); ++number)
        _seen.push_back(rowOfView(view, number));
    if (view.currentRow() >= 0)
        _current = rowOfView(view, view.currentRow());
}

ListPlace::Row ListPlace::rowOfView(const OutlineView &view, int number)
{
    const auto item = std::static_pointer_cast<KDRBookmark>(view.itemAtRow(number));
    return {item, item ? item->uuid() : QString(), number};
}

void ListPlace::restore(OutlineView &view, const WayfoldBookmarkFolderPtr &root) const
{
    restoreScrollPosition(view, root);
    restoreCurrentRow(view);
}

void ListPlace::restoreScrollPosition(OutlineView &view, const WayfoldBookmarkFolderPtr &root) const
{
    std::vector<int> numbers = findNearby(view);
    if (std::all_of(numbers.cbegin(), numbers.cend(), isGone))
        numbers = findAnywhere(view, root);
    view.verticalScrollBar()->setValue(_scrollPosition + rowsMoved(numbers) * view.rectOfRow(0).height());
}

void ListPlace::restoreCurrentRow(OutlineView &view) const
{
    if (!_current)
        return;
    int number = findNearby(view, *_current);
    if (number < 0)
        number = view.rowForItem(_current->item.lock());
    if (number < 0 && view.selectedRow() < 0)
        number = std::min(_current->number, view.numberOfRows() - 1);
    view.setCurrentRow(number);
}

// -1 when the row is not there. Of several with the same identifier, the one that is meant is the nearest.
int ListPlace::findNearby(const OutlineView &view, const Row &row)
{
    const KDRBookmarkPtr same = row.item.lock();
    const auto isIt = [&](int number) {
        const auto item = std::static_pointer_cast<KDRBookmark>(view.itemAtRow(number));
        return item && (item == same || (item->isUUIDMade() && !row.uuid.isEmpty() && item->uuid() == row.uuid));
    };
    for (int distance = 0; distance <= nearby; ++distance) {
        for (const int number : {row.number + distance, row.number - distance}) {
            if (isIt(number))
                return number;
        }
    }
    return -1;
}

std::vector<int> ListPlace::findNearby(const OutlineView &view) const
{
    std::vector<int> numbers;
    for (const Row &row : _seen)
        numbers.push_back(findNearby(view, row));
    return numbers;
}

// Looks through the whole tree, once.
std::vector<int> ListPlace::findAnywhere(const OutlineView &view, const WayfoldBookmarkFolderPtr &root) const
{
    QStringList uuids;
    for (const Row &row : _seen)
        uuids.append(row.uuid);
    const QHash<QString, KDRBookmarkPtr> items =
        root && !_seen.empty() ? root->itemsWithUUIDs(uuids) : QHash<QString, KDRBookmarkPtr>();
    std::vector<int> numbers;
    for (const Row &row : _seen) {
        const int same = view.rowForItem(row.item.lock());
        numbers.push_back(same >= 0 ? same : view.rowForItem(items.value(row.uuid)));
    }
    return numbers;
}

// By how many the rows that were seen stand further down now. One that went elsewhere by itself, as a page does that is
// visited once more, does not count: it is not followed by the same row any more.
int ListPlace::rowsMoved(const std::vector<int> &numbers) const
{
    for (std::size_t i = 0; i + 1 < numbers.size(); ++i) {
        if (numbers[i] >= 0 && numbers[i + 1] == numbers[i] + 1)
            return numbers[i] - _seen[i].number;
    }
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (numbers[i] >= 0)
            return numbers[i] - _seen[i].number;
    }
    return 0;
}
