#include "lists/HistoryGrouping.h"

#include "lists/HistoryEntries.h"
#include "platform/base/StringRules.h"

#include <QHash>
#include <algorithm>
#include <numeric>

namespace
{
using Numbers = std::vector<unsigned>;

// The entries of a folder, which become its own when they are looked at.
class EntryChildren : public LazyChildren
{
public:
    EntryChildren(std::shared_ptr<HistoryEntries> entries, Numbers numbers)
        : _entries(std::move(entries))
        , _numbers(std::move(numbers))
    {}

    unsigned count() override { return unsigned(_numbers.size()); }
    bool isFolder(unsigned /*index*/) override { return false; }
    KDRBookmarkPtr makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder) override
    {
        const KDRBookmarkPtr item = _entries->item(_numbers[index]);
        item->setParent(folder);
        return item;
    }
    Numbers indexesOfMatches(const TextSearch &search) override
    {
        return indexesOf([&](unsigned number) { return _entries->matches(number, search); });
    }
    Numbers indexesOfWanted(const UUIDSearch &search) override
    {
        return indexesOf([&](unsigned number) { return _entries->isWanted(number, search); });
    }

private:
    template <class Predicate>
    Numbers indexesOf(Predicate isOne) const
    {
        Numbers indexes;
        for (unsigned index = 0; index < _numbers.size(); ++index) {
            if (isOne(_numbers[index]))
                indexes.push_back(index);
        }
        return indexes;
    }

    std::shared_ptr<HistoryEntries> _entries;
    Numbers _numbers;
};

// The folders of the second level, which are sorted out when somebody looks.
class GroupChildren : public LazyChildren
{
public:
    GroupChildren(const std::shared_ptr<HistoryEntries> &entries, Numbers numbers, HistoryGrouping::Level level)
        : _entries(entries)
        , _grouping(entries, {level})
        , _numbers(std::move(numbers))
    {}

    bool isEmpty() override { return false; }
    bool isFolder(unsigned /*index*/) override { return true; }
    unsigned count() override { return unsigned(groups().size()); }
    KDRBookmarkPtr makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder) override
    {
        WayfoldBookmarkFolderPtr child = _grouping.folderOf(groups()[index]);
        child->setParent(folder);
        return child;
    }
    Numbers indexesOfMatches(const TextSearch & /*search*/) override
    {
        Numbers indexes(count());
        std::iota(indexes.begin(), indexes.end(), 0);
        return indexes;
    }
    Numbers indexesOfWanted(const UUIDSearch &search) override
    {
        const auto isWanted = [&](unsigned number) { return _entries->isWanted(number, search); };
        Numbers indexes;
        if (std::none_of(_numbers.begin(), _numbers.end(), isWanted))
            return indexes;
        for (unsigned index = 0; index < count(); ++index) {
            const Numbers &numbers = groups()[index].numbers;
            if (std::any_of(numbers.begin(), numbers.end(), isWanted))
                indexes.push_back(index);
        }
        return indexes;
    }

private:
    const std::vector<HistoryGrouping::Group> &groups()
    {
        if (_groups.empty())
            _groups = _grouping.sortedGroupsOf(_numbers);
        return _groups;
    }

    std::shared_ptr<HistoryEntries> _entries;
    HistoryGrouping _grouping;
    Numbers _numbers;
    std::vector<HistoryGrouping::Group> _groups; // empty until somebody looks
};

// The children that hold folders which nobody has looked at.
std::vector<WayfoldBookmarkFolderPtr> unseenOuterFolders(const WayfoldBookmarkFolder &folder)
{
    std::vector<WayfoldBookmarkFolderPtr> outer;
    for (const KDRBookmarkPtr &child : folder.madeChildren()) {
        const auto sub = WayfoldBookmarkFolder::fromItem(child);
        if (sub && sub->lazyChildren() && !sub->isEmpty() && sub->isFolderAtIndex(0))
            outer.push_back(sub);
    }
    return outer;
}
} // namespace

HistoryGrouping::HistoryGrouping(std::shared_ptr<HistoryEntries> entries, std::vector<Level> levels)
    : _entries(std::move(entries))
    , _levels(std::move(levels))
{}

void HistoryGrouping::fill(const WayfoldBookmarkFolderPtr &folder) const
{
    const std::vector<WayfoldBookmarkFolderPtr> outer = unseenOuterFolders(*folder);
    folder->removeAllButKnownFolders();
    Numbers numbers;
    numbers.reserve(_entries->count());
    for (unsigned number = 0; number < _entries->count(); ++number) {
        if (_levels.empty() || _entries->visited(number) != KDRBookmark::noTimestamp)
            numbers.push_back(number);
    }
    if (_levels.empty()) {
        fillGroup(folder, numbers);
        return;
    }
    fillGroups(folder, numbers);
    // Had somebody looked into them, their folders would be there still, and would go by this grouping.
    for (const WayfoldBookmarkFolderPtr &unseen : outer) {
        if (unseen->isEmpty())
            unseen->addChild(WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("")));
    }
    tidy(*folder);
}

void HistoryGrouping::fillGroups(const WayfoldBookmarkFolderPtr &folder, const Numbers &numbers) const
{
    QHash<QString, WayfoldBookmarkFolderPtr> known;
    for (const KDRBookmarkPtr &child : folder->children()) {
        if (!known.contains(child->title()))
            known.insert(child->title(), WayfoldBookmarkFolder::fromItem(child));
    }
    for (const Group &group : groupsOf(numbers)) {
        WayfoldBookmarkFolderPtr &place = known[group.title];
        if (!place) {
            place = emptyFolderOf(group);
            folder->addChild(place);
        }
        fillGroup(place, group.numbers);
    }
}

void HistoryGrouping::tidy(WayfoldBookmarkFolder &folder) const
{
    folder.removeEmptySubfolders();
    if (_levels.front() == Level::Day)
        folder.sortChildrenByTimestampDescending();
    else
        folder.sortChildrenByTitle();
}

// Entries without a site are left out where sites are asked for.
std::vector<HistoryGrouping::Group> HistoryGrouping::groupsOf(const Numbers &numbers) const
{
    const bool isByDay = _levels.front() == Level::Day;
    const bool needsSite = std::find(_levels.begin(), _levels.end(), Level::Site) != _levels.end();
    std::vector<Group> groups;
    std::vector<int> groupOfKey; // -1: none yet
    for (const unsigned number : numbers) {
        const bool isLeftOut = needsSite && _entries->site(number) == 0;
        // A day has its folder even if all that it holds is left out.
        if (isLeftOut && !isByDay)
            continue;
        const unsigned key = isByDay ? _entries->day(number) : _entries->site(number);
        if (key >= groupOfKey.size())
            groupOfKey.resize(std::size_t(key) * 2 + 16, -1);
        int &group = groupOfKey[key];
        if (group < 0) {
            group = int(groups.size());
            groups.push_back({isByDay ? _entries->dayTitle(key) : _entries->siteTitle(key), number, {}});
        }
        if (!isLeftOut)
            groups[std::size_t(group)].numbers.push_back(number);
    }
    return groups;
}

std::vector<HistoryGrouping::Group> HistoryGrouping::sortedGroupsOf(const Numbers &numbers) const
{
    std::vector<Group> groups = groupsOf(numbers);
    std::erase_if(groups, [](const Group &group) { return group.numbers.empty(); });
    const auto isBefore = [this](const Group &a, const Group &b) {
        return _levels.front() == Level::Day ? _entries->visited(a.first) > _entries->visited(b.first)
                                             : StringRules::compareIgnoringCase(a.title, b.title) < 0;
    };
    std::stable_sort(groups.begin(), groups.end(), isBefore);
    return groups;
}

WayfoldBookmarkFolderPtr HistoryGrouping::emptyFolderOf(const Group &group) const
{
    auto folder = WayfoldBookmarkFolder::bookmarkWithTitle(group.title);
    if (_levels.front() == Level::Day)
        folder->setTimestampInMilliseconds(_entries->visited(group.first));
    return folder;
}

WayfoldBookmarkFolderPtr HistoryGrouping::folderOf(const Group &group) const
{
    WayfoldBookmarkFolderPtr folder = emptyFolderOf(group);
    fillGroup(folder, group.numbers);
    return folder;
}

// A folder that holds something already is filled at once.
void HistoryGrouping::fillGroup(const WayfoldBookmarkFolderPtr &folder, const Numbers &numbers) const
{
    const bool hasFolders = _levels.size() > 1;
    if (numbers.empty())
        return;
    if (folder->isEmpty() && hasFolders)
        folder->setLazyChildren(std::make_shared<GroupChildren>(_entries, numbers, _levels.back()));
    else if (folder->isEmpty())
        folder->setLazyChildren(std::make_shared<EntryChildren>(_entries, numbers));
    else if (hasFolders) {
        const HistoryGrouping inner(_entries, {_levels.back()});
        inner.fillGroups(folder, numbers);
        inner.tidy(*folder);
    } else {
        for (const unsigned number : numbers)
            folder->addChild(_entries->item(number));
    }
}
