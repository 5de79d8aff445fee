#include "core/ItemMatching.h"

#include "core/EntryValues.h"

#include <QHash>
#include <algorithm>
#include <unordered_map>

namespace
{
using Values = std::array<const QVariantList *, 3>;

// Nothing can be different in what three states share.
bool isOneList(const Values &lists)
{
    return lists[0] && lists[1] && lists[2] && lists[0]->isSharedWith(*lists[1]) && lists[0]->isSharedWith(*lists[2]);
}

bool isOnePiece(const std::array<const QVariant *, 3> &values)
{
    return values[0] && values[1] && values[2] &&
           EntryValues::pieceOf(*values[0]) == EntryValues::pieceOf(*values[1]) &&
           EntryValues::pieceOf(*values[0]) == EntryValues::pieceOf(*values[2]);
}

// How far to look for what two lists have in common again.
constexpr std::size_t longestStep = 16;

bool hasSameIdentifier(const QVariant &a, const QVariant &b)
{
    const QString identifier = EntryValues::identifier(a);
    return !identifier.isEmpty() && identifier == EntryValues::identifier(b);
}

bool isLikely(const QVariant &a, const QVariant &b)
{
    return hasSameIdentifier(a, b) || EntryValues::isSameButChildren(a, b);
}
} // namespace

ItemMatching::ItemMatching(const QVariant &base, const QVariant &ours, const QVariant &theirs)
{
    _entries.push_back({{&base, &ours, &theirs}, {none, none, none}, none});
    _unitedWith.push_back(none);
    _pending.push_back(root);
    while (!_pending.empty()) {
        const int entry = _pending.back();
        _pending.pop_back();
        open(entry);
    }
    for (const Side side : {Ours, Theirs}) {
        pairMoved(side);
        pairByPlace(side);
    }
    pairAdded();
    resolveAll();
}

// --- Looking into folders -------------------------------------------------------------------------------------------

void ItemMatching::open(int entry)
{
    Values lists{};
    for (const Side side : {Base, Ours, Theirs}) {
        const QVariant *const value = _entries[std::size_t(entry)].value[side];
        lists[side] = value ? EntryValues::children(*value) : nullptr;
    }
    if (isOneList(lists) || (!lists[Base] && !lists[Ours] && !lists[Theirs]))
        return;
    _entries[std::size_t(entry)].lists = int(_lists.size());
    _lists.emplace_back();
    for (const Side side : {Base, Ours, Theirs}) {
        if (lists[side])
            openSide(entry, side, *lists[side]);
    }
    for (const Side side : {Base, Ours, Theirs}) {
        for (const int child : listsFor(entry)[side]) {
            const Entry &listed = _entries[std::size_t(child)];
            // Every entry is opened for the first of the sides that have it, when all have been looked at.
            const bool isFirst = std::all_of(listed.value.begin(), listed.value.begin() + side,
                                             [](const QVariant *value) { return !value; });
            if (isFirst && _unitedWith[std::size_t(child)] == none && !isOnePiece(listed.value))
                _pending.push_back(child);
        }
    }
}

void ItemMatching::openSide(int entry, Side side, const QVariantList &list)
{
    listsFor(entry)[side].assign(std::size_t(list.size()), none);
    if (side != Base)
        linkInStep(entry, side, list);
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (listsFor(entry)[side][std::size_t(i)] == none)
            listsFor(entry)[side][std::size_t(i)] = addEntry(side, entry, list[i]);
    }
    if (side != Base)
        pairWithBase(entry, side);
}

// Most of a list is as it was, in the same order: that is found by going through both in step. What is left is paired
// with more care.
void ItemMatching::linkInStep(int entry, Side side, const QVariantList &list)
{
    std::vector<int> &linked = listsFor(entry)[side];
    const std::vector<int> &base = listsFor(entry)[Base];
    const auto baseValue = [&](std::size_t i) -> const QVariant & {
        return *_entries[std::size_t(base[i])].value[Base];
    };
    const auto link = [&](std::size_t ofBase, std::size_t ofSide) {
        const QVariant &value = list[qsizetype(ofSide)];
        if (!EntryValues::isSameButChildren(baseValue(ofBase), value))
            return hasSameIdentifier(baseValue(ofBase), value);
        Entry &listed = _entries[std::size_t(base[ofBase])];
        listed.value[side] = &value;
        listed.parent[side] = entry;
        linked[ofSide] = base[ofBase];
        return true;
    };
    std::size_t front = 0;
    std::size_t sideFront = 0;
    std::size_t end = base.size();
    std::size_t sideEnd = linked.size();
    const auto findStep = [&] {
        for (std::size_t step = 1; step <= longestStep; ++step) {
            for (const auto &[ofBase, ofSide] :
                 {std::pair(step, std::size_t(0)), {std::size_t(0), step}, {step, step}}) {
                if (front + ofBase < end && sideFront + ofSide < sideEnd &&
                    isLikely(baseValue(front + ofBase), list[qsizetype(sideFront + ofSide)])) {
                    front += ofBase;
                    sideFront += ofSide;
                    return true;
                }
            }
        }
        return false;
    };
    while (front < end && sideFront < sideEnd) {
        if (link(front, sideFront)) {
            ++front;
            ++sideFront;
        } else if (!findStep()) {
            break;
        }
    }
    while (front < end && sideFront < sideEnd && link(end - 1, sideEnd - 1)) {
        --end;
        --sideEnd;
    }
}

int ItemMatching::addEntry(Side side, int parent, const QVariant &value)
{
    Entry entry;
    entry.value[side] = &value;
    entry.parent[side] = parent;
    _entries.push_back(entry);
    _unitedWith.push_back(none);
    return int(_entries.size()) - 1;
}

// --- What belongs together ------------------------------------------------------------------------------------------

void ItemMatching::pairWithBase(int folder, Side side)
{
    Candidates first = candidatesIn(folder, Base, side);
    Candidates second = candidatesIn(folder, side, Base);
    const auto pair = [&](Likeness likeness, Nameless nameless = Nameless::Neither) {
        pairAlike(first, second, Base, side, likeness, nameless);
    };
    pair(Likeness::IdentifierAndContents);
    pair(Likeness::IdentifierAndTitle);
    noteNeighbours(folder, Base, side, first);
    noteNeighbours(folder, side, Base, second);
    pair(Likeness::IdentifierAndPlace);
    pair(Likeness::Identifier);
    pair(Likeness::Contents, Nameless::First);
    pair(Likeness::Contents, Nameless::Second);
    pair(Likeness::Title, Nameless::First);
    pair(Likeness::Title, Nameless::Second);
}

// Between folders. Those without an identifier come last: they go by what lies in folders that were moved, too.
void ItemMatching::pairMoved(Side side)
{
    const auto pair = [&](Likeness likeness, Nameless nameless) {
        Candidates first = allCandidates(Base, side);
        Candidates second = allCandidates(side, Base);
        pairAlike(first, second, Base, side, likeness, nameless);
        pairInPairedFolders(side);
    };
    pair(Likeness::IdentifierAndContents, Nameless::Neither);
    pair(Likeness::IdentifierAndTitle, Nameless::Neither);
    pair(Likeness::Identifier, Nameless::Neither);
    pair(Likeness::Contents, Nameless::First);
    pair(Likeness::Contents, Nameless::Second);
}

void ItemMatching::pairInPairedFolders(Side side)
{
    while (!_paired.empty()) {
        const int folder = _paired.back();
        _paired.pop_back();
        pairWithBase(folder, side);
    }
}

// What is left without an identifier, and has changed where it stands.
void ItemMatching::pairByPlace(Side side)
{
    for (int folder = 0; folder < int(_entries.size()); ++folder) {
        if (_entries[std::size_t(folder)].lists == none)
            continue;
        Candidates first = candidatesIn(folder, Base, side);
        Candidates second = candidatesIn(folder, side, Base);
        noteNeighbours(folder, Base, side, first);
        noteNeighbours(folder, side, Base, second);
        pairAlike(first, second, Base, side, Likeness::Place);
    }
}

void ItemMatching::pairAdded()
{
    const int count = int(_entries.size());
    for (int entry = 0; entry < count; ++entry) {
        const Entry &folder = _entries[std::size_t(entry)];
        if (folder.lists == none || !folder.value[Ours] || !folder.value[Theirs])
            continue;
        _paired.push_back(entry);
        while (!_paired.empty()) {
            const int paired = _paired.back();
            _paired.pop_back();
            pairAddedIn(paired);
        }
    }
}

// Only what both have put into the same folder: elsewhere it is a copy, and both stay.
void ItemMatching::pairAddedIn(int folder)
{
    Candidates first = candidatesIn(folder, Ours, Theirs);
    Candidates second = candidatesIn(folder, Theirs, Ours);
    const auto isKnown = [&](const Candidate &candidate) {
        return _entries[std::size_t(candidate.entry)].value[Base] != nullptr;
    };
    std::erase_if(first, isKnown);
    std::erase_if(second, isKnown);
    const auto pair = [&](Likeness likeness, Nameless nameless = Nameless::Neither) {
        pairAlike(first, second, Ours, Theirs, likeness, nameless);
    };
    pair(Likeness::IdentifierAndContents);
    pair(Likeness::Identifier);
    pair(Likeness::Contents, Nameless::First);
    pair(Likeness::Contents, Nameless::Second);
    if (folder == root)
        pair(Likeness::SiteTitle);
}

ItemMatching::Candidates ItemMatching::candidatesIn(int folder, Side of, Side lacking) const
{
    const Entry &opened = _entries[std::size_t(folder)];
    Candidates candidates;
    for (const int listed : listsOf(opened)[of]) {
        const int entry = resolved(listed);
        if (!_entries[std::size_t(entry)].value[lacking])
            candidates.push_back(candidate(entry, of));
    }
    return candidates;
}

ItemMatching::Candidates ItemMatching::allCandidates(Side of, Side lacking) const
{
    Candidates candidates;
    for (int entry = 0; entry < int(_entries.size()); ++entry) {
        const Entry &listed = _entries[std::size_t(entry)];
        if (listed.value[of] && !listed.value[lacking])
            candidates.push_back(candidate(entry, of));
    }
    return candidates;
}

ItemMatching::Candidate ItemMatching::candidate(int entry, Side side) const
{
    const QVariant &value = *_entries[std::size_t(entry)].value[side];
    return {entry, EntryValues::identifier(value), EntryValues::kind(value), EntryValues::title(value),
            EntryValues::hashWithoutChildrenAndIdentifier(value)};
}

// What stands before each candidate, of what both sides have there.
void ItemMatching::noteNeighbours(int folder, Side of, Side other, Candidates &candidates) const
{
    auto next = candidates.begin();
    int before = none;
    for (const int listed : listsOf(_entries[std::size_t(folder)])[of]) {
        const int entry = resolved(listed);
        if (next != candidates.end() && next->entry == entry)
            (next++)->before = before;
        else if (_entries[std::size_t(entry)].parent[other] == folder)
            before = entry;
    }
}

// 0: it takes no part.
std::size_t ItemMatching::keyOf(const Candidate &candidate, Likeness likeness, bool mustBeNameless)
{
    const bool isNameless = candidate.identifier.isEmpty();
    if (mustBeNameless && !isNameless)
        return 0;
    const std::size_t seed = 1 + std::size_t(likeness);
    switch (likeness) {
    case Likeness::IdentifierAndContents:
        return isNameless ? 0 : qHashMulti(seed, candidate.identifier, candidate.kind, candidate.contents);
    case Likeness::IdentifierAndTitle:
        return isNameless ? 0 : qHashMulti(seed, candidate.identifier, candidate.kind, candidate.title);
    case Likeness::IdentifierAndPlace:
        return isNameless ? 0 : qHashMulti(seed, candidate.identifier, candidate.kind, candidate.before);
    case Likeness::Identifier:
        return isNameless ? 0 : qHashMulti(seed, candidate.identifier, candidate.kind);
    case Likeness::Contents:
        return qHashMulti(seed, candidate.kind, candidate.contents);
    case Likeness::Title:
        return candidate.title.isEmpty() ? 0 : qHashMulti(seed, candidate.kind, candidate.title);
    case Likeness::Place: // of a folder there would be two titles, and only one of them could stay
        return !isNameless || candidate.kind == EntryValues::folderKind
                   ? 0
                   : qHashMulti(seed, candidate.kind, candidate.before);
    case Likeness::SiteTitle:
        return candidate.title.isEmpty() ? 0 : qHashMulti(seed, candidate.kind, candidate.title);
    }
    return 0;
}

// Of two with the same key, which they may have by chance.
bool ItemMatching::isAlike(const Candidate &first, const Candidate &second, Side firstSide, Side secondSide,
                           Likeness likeness) const
{
    const QVariant &one = *_entries[std::size_t(first.entry)].value[firstSide];
    const QVariant &other = *_entries[std::size_t(second.entry)].value[secondSide];
    switch (likeness) {
    case Likeness::IdentifierAndContents:
        return EntryValues::isSameButChildren(one, other);
    case Likeness::Contents:
        return EntryValues::isSameButChildrenAndIdentifier(one, other);
    case Likeness::Title:
        return first.kind == second.kind && first.title == second.title;
    case Likeness::SiteTitle:
        return EntryValues::children(one) && EntryValues::children(other) && first.title == second.title;
    case Likeness::Place:
        return first.kind == second.kind;
    default:
        return first.kind == second.kind && first.identifier == second.identifier;
    }
}

// Each goes with the first of those that are like it. Those that found one are candidates no longer.
void ItemMatching::pairAlike(Candidates &first, Candidates &second, Side firstSide, Side secondSide, Likeness likeness,
                             Nameless nameless)
{
    if (first.empty() || second.empty())
        return;
    struct Queue
    {
        std::vector<std::size_t> waiting;
        std::size_t next = 0;
    };
    std::unordered_map<std::size_t, Queue> queues;
    for (std::size_t i = 0; i < first.size(); ++i) {
        if (const std::size_t key = keyOf(first[i], likeness, nameless == Nameless::First))
            queues[key].waiting.push_back(i);
    }
    for (Candidate &candidate : second) {
        const auto found = queues.find(keyOf(candidate, likeness, nameless == Nameless::Second));
        if (found == queues.end() || found->second.next == found->second.waiting.size())
            continue;
        Candidate &partner = first[found->second.waiting[found->second.next]];
        if (!isAlike(partner, candidate, firstSide, secondSide, likeness))
            continue;
        ++found->second.next;
        unite(partner.entry, candidate.entry, secondSide);
        partner.entry = none;
        candidate.entry = none;
    }
    const auto isPaired = [](const Candidate &candidate) { return candidate.entry == none; };
    std::erase_if(first, isPaired);
    std::erase_if(second, isPaired);
}

// The other has a version of that side alone.
void ItemMatching::unite(int entry, int other, Side side)
{
    Entry &kept = _entries[std::size_t(entry)];
    Entry &given = _entries[std::size_t(other)];
    kept.value[side] = std::exchange(given.value[side], nullptr);
    kept.parent[side] = std::exchange(given.parent[side], none);
    _unitedWith[std::size_t(other)] = entry;
    const int lists = std::exchange(given.lists, none);
    if (lists == none)
        return;
    if (kept.lists == none) {
        kept.lists = lists;
        return;
    }
    _lists[std::size_t(kept.lists)][side] = std::move(_lists[std::size_t(lists)][side]);
    _paired.push_back(entry);
}

int ItemMatching::resolved(int entry) const
{
    while (entry != none && _unitedWith[std::size_t(entry)] != none)
        entry = _unitedWith[std::size_t(entry)];
    return entry;
}

void ItemMatching::resolveAll()
{
    for (Entry &entry : _entries) {
        for (int &parent : entry.parent)
            parent = resolved(parent);
    }
    for (Lists &lists : _lists) {
        for (std::vector<int> &list : lists) {
            for (int &entry : list)
                entry = resolved(entry);
        }
    }
}
