#include "core/MergeCheck.h"

#include "core/EntryValues.h"
#include "model/ItemDictionary.h"
#include "platform/files/PropertyList.h"

#include <QSet>
#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

namespace
{
enum State { Base, Ours, Theirs, Merged };
constexpr std::array states = {Base, Ours, Theirs, Merged};

class Check
{
public:
    using Roots = std::array<const QVariant *, 4>; // by state

    Check(const Roots &roots, const ItemMerge::TitleOfSecond &titleOfSecond, const ItemMerge::Report &report)
        : _titleOfSecond(titleOfSecond)
    {
        for (const QVariant &value : report.overruled)
            noteOverruled(value);
        countEntries(roots);
    }

    bool holdsAll();

private:
    using Counts = std::array<int, 4>;
    struct Contents
    {
        const QVariant *entry = nullptr; // one of those that are equal
        Counts counts{};
    };

    void noteOverruled(const QVariant &value);
    void countEntries(const Roots &roots);
    void countEntry(const QVariant &entry, State state, std::vector<const QVariant *> &listed);
    void noteValues(const QVariant &value, std::size_t path, std::unordered_set<std::size_t> &values) const;
    bool holdsValues(const QVariant &value, std::size_t path, const std::unordered_set<std::size_t> &known,
                     const QString &key) const;
    bool holdsText(const QString &text, std::size_t path, const QString &key) const;
    bool holdsIdentifiers() const;
    bool holdsNewsOf(State side);
    bool holdsUntouched(const Counts &counts) const;

    const ItemMerge::TitleOfSecond &_titleOfSecond;
    std::unordered_set<std::size_t> _overruled;          // hashes of values
    std::unordered_map<std::size_t, Contents> _contents; // by hash
    std::array<QSet<QString>, 4> _identifiers;
    std::unordered_set<std::size_t> _mergedValues;
    bool _isTooDeep = false;
};

bool Check::holdsAll()
{
    for (const auto &[hash, contents] : _contents) {
        if (contents.counts[Merged] > 0)
            noteValues(*contents.entry, 0, _mergedValues);
    }
    const bool holdsUntouchedEntries = std::all_of(_contents.begin(), _contents.end(), [this](const auto &element) {
        return holdsUntouched(element.second.counts);
    });
    return !_isTooDeep && holdsUntouchedEntries && holdsNewsOf(Ours) && holdsNewsOf(Theirs) && holdsIdentifiers();
}

void Check::noteOverruled(const QVariant &value)
{
    _overruled.insert(EntryValues::hashOf(value));
    if (value.typeId() != QMetaType::QVariantMap)
        return;
    const QVariantMap fields = value.toMap();
    for (const QVariant &element : fields)
        noteOverruled(element);
}

// Level by level. What all four share needs no look, nor what is in it.
void Check::countEntries(const Roots &roots)
{
    std::array<std::vector<const QVariant *>, 4> level;
    for (const State state : states)
        level[state] = {roots[state]};
    for (int depth = 1; !std::all_of(level.begin(), level.end(), [](const auto &list) { return list.empty(); });
         depth += 2) {
        std::unordered_map<const void *, Counts> pieces;
        for (const State state : states) {
            for (const QVariant *const entry : level[state])
                ++pieces[EntryValues::pieceOf(*entry)][state];
        }
        for (const State state : states) {
            std::vector<const QVariant *> next;
            for (const QVariant *const entry : level[state]) {
                const Counts &counts = pieces[EntryValues::pieceOf(*entry)];
                if (std::any_of(counts.begin(), counts.end(), [](int count) { return count != 1; }))
                    countEntry(*entry, state, next);
            }
            level[state] = std::move(next);
        }
        _isTooDeep = _isTooDeep || (!level[Merged].empty() && depth + 2 > PropertyList::maximumDepth);
    }
}

void Check::countEntry(const QVariant &entry, State state, std::vector<const QVariant *> &listed)
{
    const QString identifier = EntryValues::identifier(entry);
    if (!identifier.isEmpty())
        _identifiers[state].insert(identifier);
    Contents &contents = _contents[qHashMulti(0, identifier, EntryValues::hashWithoutChildrenAndIdentifier(entry))];
    contents.entry = &entry;
    ++contents.counts[state];
    if (const QVariantList *const list = EntryValues::children(entry)) {
        for (const QVariant &child : *list)
            listed.push_back(&child);
    }
}

// Each text and number in an entry, with the keys that lead to it.
void Check::noteValues(const QVariant &value, std::size_t path, std::unordered_set<std::size_t> &values) const
{
    if (value.typeId() != QMetaType::QVariantMap) {
        values.insert(qHashMulti(path, EntryValues::hashOf(value)));
        return;
    }
    const QVariantMap fields = EntryValues::withoutChildren(value.toMap());
    for (const auto &[key, element] : fields.asKeyValueRange())
        noteValues(element, qHashMulti(path, key), values);
}

bool Check::holdsValues(const QVariant &value, std::size_t path, const std::unordered_set<std::size_t> &known,
                        const QString &key) const
{
    if (value.typeId() == QMetaType::QVariantMap) {
        const QVariantMap fields = EntryValues::withoutChildren(value.toMap());
        return std::all_of(fields.keyValueBegin(), fields.keyValueEnd(), [&](const auto &field) {
            return field.first == ItemDictionary::uuidKey ||
                   holdsValues(field.second, qHashMulti(path, field.first), known, field.first);
        });
    }
    const std::size_t hash = qHashMulti(path, EntryValues::hashOf(value));
    if (known.contains(hash) || _mergedValues.contains(hash) || _overruled.contains(EntryValues::hashOf(value)))
        return true;
    return value.typeId() == QMetaType::QString && holdsText(value.toString(), path, key);
}

bool Check::holdsText(const QString &text, std::size_t path, const QString &key) const
{
    const bool isTitle = key == ItemDictionary::titleKey || key == ItemDictionary::uriTitleKey;
    return text.isEmpty() ||
           (isTitle && _mergedValues.contains(qHashMulti(path, EntryValues::hashOf(_titleOfSecond(text)))));
}

// What a side has more of than there was must be there so often, or else all that is new in it.
bool Check::holdsNewsOf(State side)
{
    std::unordered_set<std::size_t> old;
    for (const auto &[hash, contents] : _contents) {
        if (contents.counts[Base] > contents.counts[side])
            noteValues(*contents.entry, 0, old);
    }
    return std::all_of(_contents.begin(), _contents.end(), [&](const auto &element) {
        const Contents &contents = element.second;
        const int added = contents.counts[side] - contents.counts[Base];
        return added <= contents.counts[Merged] || holdsValues(*contents.entry, 0, old, QString());
    });
}

// One that each side has deleted may be another one.
bool Check::holdsUntouched(const Counts &counts) const
{
    const int keptByUs = std::min(counts[Ours], counts[Base]);
    const int keptByThem = std::min(counts[Theirs], counts[Base]);
    return counts[Merged] >= keptByUs + keptByThem - counts[Base];
}

bool Check::holdsIdentifiers() const
{
    const auto isHeld = [this](const QString &identifier) {
        return _identifiers[Base].contains(identifier) || _identifiers[Merged].contains(identifier) ||
               _overruled.contains(EntryValues::hashOf(identifier));
    };
    return std::all_of(_identifiers[Ours].begin(), _identifiers[Ours].end(), isHeld) &&
           std::all_of(_identifiers[Theirs].begin(), _identifiers[Theirs].end(), isHeld);
}
} // namespace

bool MergeCheck::holdsAll(const QVariantMap &base, const QVariantMap &ours, const QVariantMap &theirs,
                          const QVariantMap &merged, const ItemMerge::TitleOfSecond &titleOfSecond,
                          const ItemMerge::Report &report)
{
    const QVariant roots[] = {base, ours, theirs, merged};
    return Check({&roots[0], &roots[1], &roots[2], &roots[3]}, titleOfSecond, report).holdsAll();
}
