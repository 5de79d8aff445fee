#include "core/TreeUpdate.h"

#include "core/EntryValues.h"
#include "core/ItemMatching.h"
#include "model/ItemDictionary.h"
#include "model/ItemKinds.h"
#include "model/WayfoldBookmarkFolder.h"

#include <QSet>
#include <algorithm>

using namespace ItemDictionary;

namespace
{
constexpr int none = ItemMatching::none;
constexpr int rootEntry = ItemMatching::root;
// What the tree is, and what it is to be.
constexpr ItemMatching::Side Now = ItemMatching::Base;
constexpr ItemMatching::Side Then = ItemMatching::Theirs;

class Update
{
public:
    Update(const WayfoldBookmarkFolderPtr &root, const QVariant &ours, const QVariant &merged)
        : _matching(ours, ours, merged)
        , _items(_matching.entries().size())
        , _isNew(_items.size())
    {
        _items[rootEntry] = root;
    }

    void run();

private:
    using Entry = ItemMatching::Entry;

    const Entry &entry(int index) const { return _matching.entries()[std::size_t(index)]; }
    KDRBookmarkPtr &item(int index) { return _items[std::size_t(index)]; }
    QVariantMap then(int index) const { return entry(index).value[Then]->toMap(); }
    WayfoldBookmarkFolderPtr openFolder(int index);
    bool isNew(int index) const { return _isNew[std::size_t(index)]; }

    void findItems();
    void findItemsIn(int index);
    void makeItems();
    void makeItem(int index);
    void setFields(int index);
    void setFolderFields(WayfoldBookmarkFolder &folder, const QVariantMap &was, const QVariantMap &is);
    bool setLeafFields(KDRBookmark &leaf, const QVariantMap &was, const QVariantMap &is);
    std::vector<KDRBookmarkPtr> wantedChildren(int index);
    void takeOutWhatGoes();
    void putChildrenIn(int index);
    void keepUnknown(int index);

    ItemMatching _matching;
    std::vector<KDRBookmarkPtr> _items; // by entry; none: it has no item, at least not yet
    std::vector<char> _isNew;           // by entry: made by this
    std::vector<int> _folders;          // those of the tree as it is to be that were looked into, downwards
};

void Update::run()
{
    findItems();
    makeItems();
    takeOutWhatGoes();
    // New folders from below, so that they come in full. All others from above: who is put somewhere then has his place
    // already, and no two folders ever take each other for their parent.
    std::for_each(_folders.rbegin(), _folders.rend(), [this](int index) {
        if (isNew(index))
            putChildrenIn(index);
    });
    std::for_each(_folders.begin(), _folders.end(), [this](int index) {
        if (!isNew(index))
            putChildrenIn(index);
    });
}

// The folder whose list was looked into; none for all else.
WayfoldBookmarkFolderPtr Update::openFolder(int index)
{
    const KDRBookmarkPtr &found = item(index);
    const bool isOpen = found && entry(index).lists != none && found->type() == KDRBookmark::FolderType;
    return isOpen ? WayfoldBookmarkFolder::fromItem(found) : nullptr;
}

void Update::findItems()
{
    std::vector<int> pending = {rootEntry};
    while (!pending.empty()) {
        const int index = pending.back();
        pending.pop_back();
        if (!openFolder(index))
            continue;
        findItemsIn(index);
        const std::vector<int> &listed = _matching.listsOf(entry(index))[Now];
        pending.insert(pending.end(), listed.begin(), listed.end());
    }
}

// A folder's dictionary lists its children in order, and between them what makes no item.
void Update::findItemsIn(int index)
{
    const std::vector<KDRBookmarkPtr> &children = openFolder(index)->children();
    auto child = children.begin();
    for (const int listed : _matching.listsOf(entry(index))[Now]) {
        child = std::find_if(child, children.end(), [](const KDRBookmarkPtr &item) { return item->canBePersistent(); });
        if (child == children.end())
            return;
        const QVariant &value = *entry(listed).value[Now];
        // An item whose title was taken away is one nevertheless.
        const bool isItem =
            ItemKinds::current().isItem(value.toMap()) ||
            (!EntryValues::identifier(value).isEmpty() && EntryValues::identifier(value) == (*child)->uuid());
        if (isItem)
            item(listed) = *child++;
    }
}

// Downwards, since what lies in something unknown is no item.
void Update::makeItems()
{
    std::vector<int> pending = {rootEntry};
    while (!pending.empty()) {
        const int index = pending.back();
        pending.pop_back();
        makeItem(index);
        if (!openFolder(index))
            continue;
        _folders.push_back(index);
        const std::vector<int> &listed = _matching.listsOf(entry(index))[Then];
        pending.insert(pending.end(), listed.begin(), listed.end());
    }
}

void Update::makeItem(int index)
{
    const Entry &made = entry(index);
    if (item(index) && made.value[Now]) {
        setFields(index);
        return;
    }
    item(index) = ItemKinds::current().itemFromDictionary(
        made.lists == none ? then(index) : EntryValues::withoutChildren(then(index)));
    _isNew[std::size_t(index)] = true;
}

void Update::setFields(int index)
{
    const Entry &changed = entry(index);
    if (EntryValues::isSameButChildren(*changed.value[Now], *changed.value[Then]))
        return;
    const QVariantMap was = changed.value[Now]->toMap();
    const QVariantMap is = then(index);
    if (const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(item(index));
        folder && folder->type() == KDRBookmark::FolderType) {
        setFolderFields(*folder, was, is);
        if (changed.lists == none)
            keepUnknown(index);
    } else if (!setLeafFields(*item(index), was, is)) {
        item(index) = ItemKinds::current().itemFromDictionary(is); // of another kind now, or none
    }
}

void Update::setFolderFields(WayfoldBookmarkFolder &folder, const QVariantMap &was, const QVariantMap &is)
{
    const auto isOther = [&](const QString &key) { return string(was, key) != string(is, key); };
    if (isOther(titleKey))
        folder.setTitle(string(is, titleKey));
    if (isOther(searchStringKey))
        folder.setFilterString(string(is, searchStringKey));
    if (isOther(uuidKey) && !string(is, uuidKey).isEmpty())
        folder.setUUID(string(is, uuidKey));
}

// False when it takes another object.
bool Update::setLeafFields(KDRBookmark &leaf, const QVariantMap &was, const QVariantMap &is)
{
    const KDRBookmarkPtr made = ItemKinds::current().itemFromDictionary(is);
    if (!made || made->type() != leaf.type())
        return false;
    const auto isOther = [&](const QString &key) { return was.value(key) != is.value(key); };
    if (isOther(uriDictionaryKey) && made->title() != leaf.title())
        leaf.setTitle(made->title());
    if (isOther(urlStringKey) || isOther(noteKey) || isOther(addressBookIDKey))
        leaf.setValue(made->value());
    if (isOther(uuidKey) && !string(is, uuidKey).isEmpty())
        leaf.setUUID(string(is, uuidKey));
    leaf.keepUnknown(is);
    return true;
}

// What is not written to files stands before what it stood before, at the end or at the beginning.
std::vector<KDRBookmarkPtr> Update::wantedChildren(int index)
{
    std::vector<KDRBookmarkPtr> wanted;
    QSet<const KDRBookmark *> written;
    for (const int listed : _matching.listsOf(entry(index))[Then]) {
        if (item(listed)) {
            wanted.push_back(item(listed));
            written.insert(item(listed).get());
        }
    }
    const std::vector<KDRBookmarkPtr> &children = openFolder(index)->children();
    const KDRBookmark *behind = nullptr;
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if ((*child)->canBePersistent()) {
            behind = written.contains(child->get()) ? child->get() : behind;
            continue;
        }
        const bool isFirst = std::all_of(std::next(child), children.rend(),
                                         [](const KDRBookmarkPtr &other) { return !other->canBePersistent(); });
        const auto place = isFirst && behind
                               ? wanted.begin()
                               : std::find_if(wanted.begin(), wanted.end(),
                                              [&](const KDRBookmarkPtr &other) { return other.get() == behind; });
        wanted.insert(place, *child);
        behind = child->get();
    }
    return wanted;
}

// From all folders first, so that nothing is in two of them.
void Update::takeOutWhatGoes()
{
    for (const int index : _folders) {
        const WayfoldBookmarkFolderPtr folder = openFolder(index);
        const std::vector<KDRBookmarkPtr> wanted = wantedChildren(index);
        QSet<const KDRBookmark *> staying;
        for (const KDRBookmarkPtr &child : wanted)
            staying.insert(child.get());
        std::vector<KDRBookmarkPtr> going = folder->children();
        std::erase_if(going, [&](const KDRBookmarkPtr &child) { return staying.contains(child.get()); });
        if (!going.empty())
            folder->removeChildren(going);
    }
}

void Update::putChildrenIn(int index)
{
    const WayfoldBookmarkFolderPtr folder = openFolder(index);
    const std::vector<KDRBookmarkPtr> wanted = wantedChildren(index);
    if (folder->isEmpty())
        folder->addChildrenAtIndex(wanted, 0);
    else if (wanted != folder->children())
        folder->setChildren(wanted, WayfoldBookmarkFolder::Parent::ThisFolder);
    keepUnknown(index);
}

void Update::keepUnknown(int index)
{
    QVariantMap dictionary = then(index);
    if (entry(index).lists != none) {
        // What has an item in spite of what its dictionary says is to be counted as one.
        static const QVariantMap anyItem{{typeKey, personType}};
        QVariantList list;
        for (const int listed : _matching.listsOf(entry(index))[Then])
            list.append(item(listed) ? QVariant(anyItem) : *entry(listed).value[Then]);
        if (!list.isEmpty())
            dictionary.insert(childrenKey, list);
    }
    item(index)->keepUnknown(dictionary);
}
} // namespace

void TreeUpdate::update(const WayfoldBookmarkFolderPtr &root, const QVariantMap &ours, const QVariantMap &merged)
{
    const QVariant now = ours;
    const QVariant then = merged;
    Update(root, now, then).run();
}
