#pragma once

#include <QString>
#include <QVariant>
#include <array>
#include <vector>

// Finds out what belongs together in three states of one tree of the item file: what two sides had in common (the
// base), and what each has made of it. Every entry is listed once, with its version in each of the states.
//
// What has an identifier of its own goes by it, wherever it lies. Several entries may share one, and some have none:
// those go by their contents, then by their title and by what stands before them, within their folder first. Where
// that leaves a choice, nothing is lost by either, since each entry belongs to one of the list at most.
//
// Folders whose list is one and the same piece of memory in all three states are not looked into.
class ItemMatching
{
public:
    enum Side { Base, Ours, Theirs };
    static constexpr int none = -1;

    struct Entry
    {
        // By side; null: it is not there. They point into what the matching was made from.
        std::array<const QVariant *, 3> value{};
        // The entry that lists it, by side; none for the root, and where it is not there.
        std::array<int, 3> parent{none, none, none};
        // In `lists`; none: it lists nothing, or was not looked into.
        int lists = none;
    };
    // What a folder lists, by side.
    using Lists = std::array<std::vector<int>, 3>;

    // The three must stay as long as this.
    ItemMatching(const QVariant &base, const QVariant &ours, const QVariant &theirs);

    static constexpr int root = 0;
    // Some are none any more: they have no version, and nothing refers to them.
    const std::vector<Entry> &entries() const { return _entries; }
    const Lists &listsOf(const Entry &entry) const { return _lists[std::size_t(entry.lists)]; }

private:
    struct Candidate
    {
        int entry;
        QString identifier;
        QString kind;
        QString title;
        std::size_t contents;
        int before = none;
    };
    using Candidates = std::vector<Candidate>;
    enum class Likeness {
        IdentifierAndContents,
        IdentifierAndTitle,
        IdentifierAndPlace,
        Identifier,
        Contents,
        Title,
        Place,
        SiteTitle,
    };
    // Of which of the two only those without an identifier take part.
    enum class Nameless { Neither, First, Second };

    void open(int entry);
    void openSide(int entry, Side side, const QVariantList &list);
    void linkInStep(int entry, Side side, const QVariantList &list);
    int addEntry(Side side, int parent, const QVariant &value);
    Lists &listsFor(int entry) { return _lists[std::size_t(_entries[std::size_t(entry)].lists)]; }

    void pairWithBase(int folder, Side side);
    void pairMoved(Side side);
    void pairByPlace(Side side);
    void pairAdded();
    void pairAddedIn(int folder);
    void pairInPairedFolders(Side side);
    Candidates candidatesIn(int folder, Side of, Side lacking) const;
    Candidates allCandidates(Side of, Side lacking) const;
    Candidate candidate(int entry, Side side) const;
    void noteNeighbours(int folder, Side of, Side other, Candidates &candidates) const;
    static std::size_t keyOf(const Candidate &candidate, Likeness likeness, bool mustBeNameless);
    bool isAlike(const Candidate &first, const Candidate &second, Side firstSide, Side secondSide,
                 Likeness likeness) const;
    void pairAlike(Candidates &first, Candidates &second, Side firstSide, Side secondSide, Likeness likeness,
                   Nameless nameless = Nameless::Neither);
    void unite(int entry, int other, Side side);
    int resolved(int entry) const;
    void resolveAll();

    std::vector<Entry> _entries;
    std::vector<Lists> _lists;
    std::vector<int> _unitedWith; // by entry; none: it stands for itself
    std::vector<int> _pending;    // entries that are still to be opened
    std::vector<int> _paired;     // folders whose lists are still to be paired
};
