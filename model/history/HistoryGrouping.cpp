#include "model/history/HistoryGrouping.h"

#include "model/history/HistoryEntries.h"
#include "platform/base/StringRules.h"

#include <QHash>
#include <algorithm>
#include <numeric>
#include <optional>

namespace
{
// The entries of a folder, which become its own when they are looked at.
class EntryChildren : public LazyChildren
{
public:
    EntryChildren(std::shared_ptr<HistoryEntries> entries, EntryNumbers numbers)
        : _entries(std::move(entries))
        , _numbers(std::move(numbers))
    {}

    unsigned count() override { return _numbers.size(); }
    bool isFolder(unsigned /*index*/) override { return false; }
    bool hasFolders() override { return false; }
    KDRBookmarkPtr makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder) override
    {
        KDRBookmarkPtr item = _entries->item(_numbers[index]);
        item->setParent(folder);
        return item;
    }
    std::vector<unsigned> indexesOfMatches(const TextSearch &search) override
    {
        return indexesOf([&](unsigned number) { return _entries->matches(number, search); });
    }
    std::vector<unsigned> indexesOfWanted(const UUIDSearch &search) override
    {
        return indexesOf([&](unsigned number) { return _entries->isWanted(number, search); });
    }

private:
    template <class Predicate>
    std::vector<unsigned> indexesOf(Predicate isOne) const
    {
        std::vector<unsigned> indexes;
        for (unsigned index = 0; index < _numbers.size(); ++index) {
            if (isOne(_numbers[index]))
                indexes.push_back(index);
        }
        return indexes;
    }

    std::shared_ptr<HistoryEntries> _entries;
    EntryNumbers _numbers;
};

// The folders of the second level, which are sorted out when somebody looks.
class GroupChildren : public LazyChildren
{
public:
    GroupChildren(const std::shared_ptr<HistoryEntries> &entries, EntryNumbers numbers, HistoryGrouping::Level level)
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
    std::vector<unsigned> indexesOfMatches(const TextSearch & /*search*/) override
    {
        std::vector<unsigned> indexes(count());
        std::iota(indexes.begin(), indexes.end(), 0);
        return indexes;
    }
    std::vector<unsigned> indexesOfWanted(const UUIDSearch &search) override
    {
        const auto isWanted = [&](unsigned number) { return _entries->isWanted(number, search); };
        std::vector<unsigned> indexes;
        if (std::none_of(_numbers.begin(), _numbers.end(), isWanted))
            return indexes;
        for (unsigned index = 0; index < count(); ++index) {
            const EntryNumbers &numbers = groups()[index].numbers;
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
    EntryNumbers _numbers;
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
// None for a style that is not one.
std::optional<std::vector<HistoryGrouping::Level>> levelsOfStyle(const QString &style)
{
    using Level = HistoryGrouping::Level;
    if (style == u"0")
        return std::vector<Level>();
    if (style == u"1")
        return std::vector<Level>{Level::Day};
    if (style == u"2")
        return std::vector<Level>{Level::Day, Level::Site};
    if (style == u"3")
        return std::vector<Level>{Level::Site};
    if (style == u"4")
        return std::vector<Level>{Level::Site, Level::Day};
    return std::nullopt;
}
} // namespace

void HistoryGrouping::regroup(const WayfoldBookmarkFolderPtr &from, const WayfoldBookmarkFolderPtr &into,
                              const QString &style)
{
    if (!into)
        return;
    const std::optional<std::vector<Level>> levels = levelsOfStyle(style);
    if (!levels) {
        into->removeAllLeafChildren();
        return;
    }
    const WayfoldBookmarkFolderPtr source = from ? from : WayfoldBookmarkFolder::bookmarkWithTitle(QString());
    HistoryGrouping(HistoryEntries::ofFolder(*source), *levels).fill(into);
}

HistoryGrouping::HistoryGrouping(std::shared_ptr<HistoryEntries> entries, std::vector<Level> levels)
    : _entries(std::move(entries))
    , _levels(std::move(levels))
{}

void HistoryGrouping::fill(const WayfoldBookmarkFolderPtr &folder) const
{
    const std::vector<WayfoldBookmarkFolderPtr> outer = unseenOuterFolders(*folder);
    folder->removeAllButKnownFolders();
    std::vector<unsigned> all;
    all.reserve(_entries->count());
    for (unsigned number = 0; number < _entries->count(); ++number) {
        if (_levels.empty() || _entries->visited(number) != KDRBookmark::noTimestamp)
            all.push_back(number);
    }
    const EntryNumbers numbers(std::move(all));
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

void HistoryGrouping::fillGroups(const WayfoldBookmarkFolderPtr &folder, const EntryNumbers &numbers) const
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

std::vector<HistoryGrouping::Group> HistoryGrouping::groupsOf(const EntryNumbers &numbers) const
{
    Sorting sorting = sort(numbers);
    std::vector<unsigned> ends(sorting.groups.size() + 1); // of the groups before, then of each
    for (const unsigned group : sorting.groupOfPlace) {
        if (group != nowhere)
            ++ends[group + 1];
    }
    std::partial_sum(ends.begin(), ends.end(), ends.begin());
    const auto list = std::make_shared<std::vector<unsigned>>(ends.back());
    for (std::size_t group = 0; group < sorting.groups.size(); ++group)
        sorting.groups[group].numbers = EntryNumbers(list, ends[group], ends[group + 1]);
    for (unsigned place = 0; place < numbers.size(); ++place) {
        if (const unsigned group = sorting.groupOfPlace[place]; group != nowhere)
            (*list)[ends[group]++] = numbers[place];
    }
    return std::move(sorting.groups);
}

// Entries without a site are left out where sites are asked for.
HistoryGrouping::Sorting HistoryGrouping::sort(const EntryNumbers &numbers) const
{
    const bool isByDay = _levels.front() == Level::Day;
    const bool needsSite = std::find(_levels.begin(), _levels.end(), Level::Site) != _levels.end();
    Sorting sorting;
    sorting.groupOfPlace.reserve(numbers.size());
    std::vector<unsigned> groupOfKey;
    for (const unsigned number : numbers) {
        const bool isLeftOut = needsSite && _entries->site(number) == 0;
        // A day has its folder even if all that it holds is left out.
        if (isLeftOut && !isByDay) {
            sorting.groupOfPlace.push_back(nowhere);
            continue;
        }
        const unsigned key = isByDay ? _entries->day(number) : _entries->site(number);
        if (key >= groupOfKey.size())
            groupOfKey.resize(std::size_t(key) * 2 + 16, nowhere);
        unsigned &group = groupOfKey[key];
        if (group == nowhere) {
            group = unsigned(sorting.groups.size());
            sorting.groups.push_back({isByDay ? _entries->dayTitle(key) : _entries->siteTitle(key), number, {}});
        }
        sorting.groupOfPlace.push_back(isLeftOut ? nowhere : group);
    }
    return sorting;
}

std::vector<HistoryGrouping::Group> HistoryGrouping::sortedGroupsOf(const EntryNumbers &numbers) const
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
void HistoryGrouping::fillGroup(const WayfoldBookmarkFolderPtr &folder, const EntryNumbers &numbers) const
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
