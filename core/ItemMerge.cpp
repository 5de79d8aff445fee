#include "core/ItemMerge.h"

#include "core/EntryValues.h"
#include "core/FieldMerge.h"
#include "core/ItemMatching.h"
#include "core/MergeCheck.h"
#include "core/OrderMerge.h"
#include "core/settings/WayfoldToolkit.h"
#include "model/ItemDictionary.h"

#include <QLocale>
#include <QUuid>
#include <algorithm>
#include <deque>

namespace
{
constexpr int none = ItemMatching::none;
constexpr int root = ItemMatching::root;
using Side = ItemMatching::Side;
constexpr Side Base = ItemMatching::Base;
constexpr Side Ours = ItemMatching::Ours;
constexpr Side Theirs = ItemMatching::Theirs;

// One merge: what is there at the end, where, in which order, and made of what.
class Merge
{
public:
    Merge(const QVariant &base, const QVariant &ours, const QVariant &theirs,
          const ItemMerge::TitleOfSecond &titleOfSecond, ItemMerge::Report &report)
        : _matching(base, ours, theirs)
        , _titleOfSecond(titleOfSecond)
        , _report(report)
        , _outcomes(_matching.entries().size())
    {}

    QVariant run();

private:
    using Entry = ItemMatching::Entry;
    struct Outcome
    {
        bool exists = false;
        bool staysWhole = false; // deleted by one side, but the other has changed it
        int parent = none;
        std::vector<int> children;
        const QVariant *value = nullptr;
        const QVariant *second = nullptr; // our version, where both are kept
    };

    const Entry &entry(int index) const { return _matching.entries()[std::size_t(index)]; }
    Outcome &outcome(int index) { return _outcomes[std::size_t(index)]; }
    int count() const { return int(_outcomes.size()); }

    void keepWhatOneDeleted(Side kept, Side deleting);
    bool isChanged(const Entry &item, Side side) const;
    void choosePlaces();
    int chosenParent(const Entry &item) const;
    void keepFoldersOf(int index);
    void breakCircles();
    bool isInCircle(int index);
    void arrange();
    std::vector<int> listed(int folder, Side side);
    void build();
    void buildEntry(int index);
    QVariant mergedFields(const Entry &item, FieldMerge &merge) const;
    const QVariant *fieldsOf(int index);
    const QVariant *withChildren(int index, const QVariant *fields);
    bool isListOf(int index, Side side);
    QVariant secondOf(QVariant ours);
    void noteOverruled(const Entry &item, const QVariant &merged);
    void count(int index, const QVariant *fields);
    const QVariant *keep(QVariant value) { return &_made.emplace_back(std::move(value)); }

    ItemMatching _matching;
    const ItemMerge::TitleOfSecond &_titleOfSecond;
    ItemMerge::Report &_report;
    std::vector<Outcome> _outcomes;
    std::vector<int> _walkOfEntry; // by entry: the last walk that came by
    int _walk = 0;
    std::deque<QVariant> _made;
};

QVariant Merge::run()
{
    for (int index = 0; index < count(); ++index) {
        const Entry &item = entry(index);
        // What only one side has, it has added.
        outcome(index).exists =
            (item.value[Ours] && item.value[Theirs]) || (!item.value[Base] && (item.value[Ours] || item.value[Theirs]));
    }
    keepWhatOneDeleted(Ours, Theirs);
    keepWhatOneDeleted(Theirs, Ours);
    choosePlaces();
    breakCircles();
    arrange();
    build();
    return *outcome(root).value;
}

// --- What is there --------------------------------------------------------------------------------------------------

// From the root downwards, since what a folder that stays holds may stay with it.
void Merge::keepWhatOneDeleted(Side kept, Side deleting)
{
    const auto isDeleted = [&](const Entry &item) { return item.value[Base] && !item.value[deleting]; };
    std::vector<int> pending = {root};
    while (!pending.empty()) {
        const int index = pending.back();
        pending.pop_back();
        const Entry &item = entry(index);
        if (isDeleted(item)) {
            const int folder = item.parent[kept];
            const bool staysWithFolder = isDeleted(entry(folder)) && outcome(folder).staysWhole;
            outcome(index).staysWhole = staysWithFolder || isChanged(item, kept);
            outcome(index).exists = outcome(index).staysWhole;
        }
        if (item.lists != none) {
            const std::vector<int> &list = _matching.listsOf(item)[kept];
            pending.insert(pending.end(), list.begin(), list.end());
        }
    }
}

bool Merge::isChanged(const Entry &item, Side side) const
{
    return item.parent[side] != item.parent[Base] ||
           !EntryValues::isSameButChildren(*item.value[side], *item.value[Base]);
}

// --- Where it is ----------------------------------------------------------------------------------------------------

void Merge::choosePlaces()
{
    for (int index = 0; index < count(); ++index)
        outcome(index).parent = chosenParent(entry(index));
    for (int index = 0; index < count(); ++index) {
        if (outcome(index).exists)
            keepFoldersOf(index);
    }
}

int Merge::chosenParent(const Entry &item) const
{
    if (!item.value[Ours])
        return item.parent[Theirs];
    const bool haveOnlyTheyMovedIt = item.value[Theirs] && item.value[Base] && item.parent[Ours] == item.parent[Base];
    return haveOnlyTheyMovedIt ? item.parent[Theirs] : item.parent[Ours];
}

void Merge::keepFoldersOf(int index)
{
    for (int folder = outcome(index).parent; folder != none && !outcome(folder).exists; folder = outcome(folder).parent)
        outcome(folder).exists = true;
}

// Folders that each side has moved into the other's. Each of these circles has an item that they have moved, since ours
// has no circle, and neither has theirs.
void Merge::breakCircles()
{
    _walkOfEntry.assign(_outcomes.size(), none);
    const auto isMovedByThem = [&](int index) {
        return entry(index).value[Ours] && outcome(index).parent != entry(index).parent[Ours];
    };
    for (int index = 0; index < count(); ++index) {
        if (!outcome(index).exists || entry(index).lists == none || !isMovedByThem(index))
            continue;
        // Another circle may come about by putting one back.
        for (int moved = index; isInCircle(moved);) {
            int next = moved;
            while (!isMovedByThem(next))
                next = outcome(next).parent;
            outcome(next).parent = entry(next).parent[Ours];
            keepFoldersOf(next);
            moved = next;
        }
    }
}

bool Merge::isInCircle(int index)
{
    ++_walk;
    for (int folder = outcome(index).parent; folder != none; folder = outcome(folder).parent) {
        if (folder == index)
            return true;
        if (std::exchange(_walkOfEntry[std::size_t(folder)], _walk) == _walk)
            return false; // another one, which will have its turn
    }
    return false;
}

void Merge::arrange()
{
    OrderMerge order(count());
    for (int index = 0; index < count(); ++index) {
        if (!outcome(index).exists || entry(index).lists == none)
            continue;
        outcome(index).children = order.merged(listed(index, Base), listed(index, Ours), listed(index, Theirs));
    }
}

// What the folder lists there, as far as it is in that folder at the end.
std::vector<int> Merge::listed(int folder, Side side)
{
    std::vector<int> list = _matching.listsOf(entry(folder))[side];
    std::erase_if(list, [&](int index) { return !outcome(index).exists || outcome(index).parent != folder; });
    return list;
}

// --- What it is -----------------------------------------------------------------------------------------------------

// From the leaves upwards.
void Merge::build()
{
    std::vector<int> entries = {root};
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::vector<int> &children = outcome(entries[i]).children;
        entries.insert(entries.end(), children.begin(), children.end());
    }
    std::for_each(entries.rbegin(), entries.rend(), [this](int index) { buildEntry(index); });
    for (int index = 0; index < count(); ++index)
        _report.removed += !outcome(index).exists && entry(index).value[Ours];
}

void Merge::buildEntry(int index)
{
    const QVariant *const fields = fieldsOf(index);
    count(index, fields);
    outcome(index).value = withChildren(index, fields);
}

// The very value of one side where it is that, without looking at the children.
const QVariant *Merge::fieldsOf(int index)
{
    const Entry &item = entry(index);
    const QVariant *const ours = item.value[Ours];
    const QVariant *const theirs = item.value[Theirs];
    if (!ours || !theirs)
        return ours ? ours : theirs;
    if (EntryValues::isSameButChildren(*ours, *theirs))
        return ours;
    const QVariant *const base = item.value[Base];
    if (base && EntryValues::isSameButChildren(*base, *theirs))
        return ours;
    if (base && EntryValues::isSameButChildren(*base, *ours))
        return theirs;
    FieldMerge merge(FieldMerge::Theirs);
    const QVariant *const fields = keep(mergedFields(item, merge));
    noteOverruled(item, *fields);
    if (!merge.hasConflict() || EntryValues::kind(*ours) == EntryValues::folderKind)
        return fields;
    FieldMerge oursFirst(FieldMerge::Ours);
    outcome(index).second = keep(secondOf(mergedFields(item, oursFirst)));
    return fields;
}

QVariant Merge::mergedFields(const Entry &item, FieldMerge &merge) const
{
    std::array<QVariant, 3> fields;
    for (const Side side : {Base, Ours, Theirs}) {
        if (item.value[side] && item.value[side]->typeId() == QMetaType::QVariantMap)
            fields[side] = EntryValues::withoutChildren(item.value[side]->toMap());
        else if (item.value[side])
            fields[side] = *item.value[side];
    }
    return merge.merged(item.value[Base] ? &fields[Base] : nullptr, &fields[Ours], &fields[Theirs]);
}

// Made from the contents alone, so that the same merge has the same result wherever it is done.
QVariant Merge::secondOf(QVariant ours)
{
    if (ours.typeId() != QMetaType::QVariantMap)
        return ours;
    QVariantMap item = ours.toMap();
    const QString title = _titleOfSecond(EntryValues::title(ours));
    EntryValues::setTitle(item, title);
    const QString identifier = EntryValues::identifier(ours);
    if (!identifier.isEmpty()) {
        const QString text = ItemDictionary::string(item, ItemDictionary::noteKey) +
                             ItemDictionary::string(item, ItemDictionary::urlStringKey);
        const QString name = identifier + QChar::Null + title + QChar::Null + text;
        item.insert(ItemDictionary::uuidKey,
                    QUuid::createUuidV5(QUuid(), name).toString(QUuid::WithoutBraces).toUpper());
    }
    _report.seconds.append(title);
    return item;
}

// What of ours is not even in a second item.
void Merge::noteOverruled(const Entry &item, const QVariant &merged)
{
    const QVariantMap fields = item.value[Ours]->toMap();
    const QVariantMap result = merged.toMap();
    const QVariantMap known = item.value[Base] ? item.value[Base]->toMap() : QVariantMap();
    const bool isFolder = EntryValues::kind(*item.value[Ours]) == EntryValues::folderKind;
    for (const auto &[key, value] : fields.asKeyValueRange()) {
        const bool counts = (isFolder && key != ItemDictionary::childrenKey) || key == ItemDictionary::uuidKey;
        if (counts && !EntryValues::isSame(value, result.value(key)) && !EntryValues::isSame(value, known.value(key)))
            _report.overruled.append(value);
    }
}

// Nothing is made anew that one of the sides has: then whoever looks for differences sees at once that there are none.
const QVariant *Merge::withChildren(int index, const QVariant *fields)
{
    const Entry &item = entry(index);
    for (const Side side : {Ours, Theirs}) {
        if (fields == item.value[side] && (item.lists == none || isListOf(index, side)))
            return fields;
    }
    if (fields->typeId() != QMetaType::QVariantMap)
        return fields;
    QVariantMap folder = fields->toMap();
    QVariantList list;
    if (item.lists == none) {
        const QVariantList *const untouched = EntryValues::children(*item.value[Ours]);
        if (!untouched)
            return fields;
        list = *untouched;
    }
    for (const int child : outcome(index).children) {
        list.append(*outcome(child).value);
        if (outcome(child).second)
            list.append(*outcome(child).second);
    }
    if (list.isEmpty() && !EntryValues::children(*fields))
        return fields;
    folder.insert(ItemDictionary::childrenKey, list);
    return keep(folder);
}

bool Merge::isListOf(int index, Side side)
{
    const QVariantList *const list = EntryValues::children(*entry(index).value[side]);
    const std::vector<int> &children = outcome(index).children;
    if (!list || std::size_t(list->size()) != children.size())
        return !list && children.empty();
    return std::equal(children.begin(), children.end(), list->begin(), [this](int child, const QVariant &value) {
        return outcome(child).value == &value && !outcome(child).second;
    });
}

void Merge::count(int index, const QVariant *fields)
{
    const Entry &item = entry(index);
    const QVariant *const ours = item.value[Ours];
    if (!ours) {
        ++_report.added;
        return;
    }
    _report.changed += !EntryValues::isSameButChildren(*ours, *fields);
    _report.moved += outcome(index).parent != item.parent[Ours];
}
} // namespace

ItemMerge::ItemMerge(const QVariantMap &base, const QVariantMap &ours, const QVariantMap &theirs,
                     const TitleOfSecond &titleOfSecond)
    : _base(base)
    , _ours(EntryValues::sharing(ours, base).toMap())
    , _theirs(EntryValues::sharing(theirs, base).toMap())
    , _titleOfSecond(titleOfSecond)
{
    const QVariant values[] = {_base, _ours, _theirs};
    _merged = Merge(values[0], values[1], values[2], _titleOfSecond, _report).run().toMap();
}

bool ItemMerge::holdsAll() const
{
    return MergeCheck::holdsAll(_base, _ours, _theirs, _merged, _titleOfSecond, _report);
}

QString ItemMerge::titleWithOrigin(const QString &title, const QString &computer, const QDateTime &time)
{
    return WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("%1 (from %2, %3)")))
        .arg(title, computer, QLocale().toString(time, QLocale::ShortFormat));
}
