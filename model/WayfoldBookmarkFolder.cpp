#include "model/WayfoldBookmarkFolder.h"

#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "model/ItemDialogs.h"
#include "model/ItemDictionary.h"
#include "model/ItemImages.h"
#include "model/ItemKinds.h"
#include "model/TextSearch.h"
#include "model/UUIDSearch.h"
#include "platform/base/Log.h"
#include "platform/base/StringRules.h"
#include "platform/files/PropertyList.h"

#include <algorithm>
#include <numeric>

namespace
{
// Children that come or go in more pieces than this are brought together first, or the time would grow with the square
// of their number.
constexpr int mostRuns = 16;

const QString filterStringCoderKey = QStringLiteral("_filterString");
const QString childrenCoderKey = QStringLiteral("_children");
const QString unknownEntriesCoderKey = QStringLiteral("_unknownEntries");

// Most lists are sorted again and again and have little to move.
template <class Item, class Compare>
void sort(std::vector<Item> &items, Compare isLess)
{
    if (!std::is_sorted(items.begin(), items.end(), isLess))
        std::stable_sort(items.begin(), items.end(), isLess);
}

// As titleComparator() does, with the form that it compares made once of each title.
std::vector<int> orderByTitle(const std::vector<KDRBookmarkPtr> &items)
{
    std::vector<std::pair<QString, int>> entries;
    entries.reserve(items.size());
    for (const KDRBookmarkPtr &item : items)
        entries.emplace_back(StringRules::comparisonForm(item->title()), int(entries.size()));
    sort(entries, [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<int> order;
    order.reserve(entries.size());
    for (const auto &entry : entries)
        order.push_back(entry.second);
    return order;
}

std::vector<KDRBookmarkPtr> inOrder(const std::vector<KDRBookmarkPtr> &items, const std::vector<int> &order)
{
    std::vector<KDRBookmarkPtr> ordered;
    ordered.reserve(items.size());
    for (const int index : order)
        ordered.push_back(items[std::size_t(index)]);
    return ordered;
}

using Places = QHash<const KDRBookmark *, int>;

int countRuns(const std::vector<KDRBookmarkPtr> &items, const std::function<bool(const KDRBookmarkPtr &)> &isOne)
{
    int runs = 0;
    bool isWithin = false;
    for (const KDRBookmarkPtr &item : items) {
        const bool wasWithin = std::exchange(isWithin, isOne(item));
        runs += int(isWithin && !wasWithin);
    }
    return runs;
}

Places placesOf(const std::vector<KDRBookmarkPtr> &items)
{
    Places places;
    places.reserve(qsizetype(items.size()));
    for (const KDRBookmarkPtr &item : items)
        places.insert(item.get(), int(places.size()));
    return places;
}

// A list in which each place is one.
QVariantList archivedPlaces(const UnknownEntries::Places &places)
{
    QVariantList archived;
    for (const QVariantList &place : places)
        archived.append(QVariant(place));
    return archived;
}

UnknownEntries::Places placesFromArchive(const QVariantList &archived)
{
    UnknownEntries::Places places;
    for (const QVariant &place : archived)
        places.push_back(place.toList());
    return places;
}
} // namespace

WayfoldBookmarkFolder::~WayfoldBookmarkFolder()
{
    // Folders that nobody else holds are emptied before they go, so that a deep tree is not released by recursion.
    TreeTelling::countListeners(-int(_listeners.size()));
    std::vector<KDRBookmarkPtr> released;
    takeChildren(released);
    while (!released.empty()) {
        const KDRBookmarkPtr item = std::move(released.back());
        released.pop_back();
        if (!item || item.use_count() > 1 || !item->isFolder())
            continue;
        static_cast<WayfoldBookmarkFolder &>(*item).takeChildren(released);
    }
}

void WayfoldBookmarkFolder::takeChildren(std::vector<KDRBookmarkPtr> &taken)
{
    for (KDRBookmarkPtr &item : _children) {
        if (item)
            letGo(item);
        taken.push_back(std::move(item));
    }
    _children.clear();
}

WayfoldBookmarkFolderPtr WayfoldBookmarkFolder::bookmarkWithTitle(const QString &title)
{
    auto folder = std::make_shared<WayfoldBookmarkFolder>();
    folder->setTitle(title);
    return folder;
}

WayfoldBookmarkFolderPtr WayfoldBookmarkFolder::bookmarkFromDictionary(const QVariantMap &dictionary)
{
    auto folder = std::make_shared<WayfoldBookmarkFolder>(Blank());
    folder->loadFromDictionary(dictionary);
    return folder;
}

WayfoldBookmarkFolderPtr WayfoldBookmarkFolder::bookmarkFromDictionaryFile(const QString &path)
{
    return readDictionaryFile(path, nullptr);
}

WayfoldBookmarkFolderPtr WayfoldBookmarkFolder::readDictionaryFile(const QString &path, ItemFileReading *reading)
{
    PropertyList::Reading file;
    const QVariantMap dictionary = PropertyList::readDictionaryFile(path, &file);
    if (reading)
        *reading = {file.ok, file.isWhole};
    return bookmarkFromDictionary(dictionary);
}

WayfoldBookmarkFolderPtr WayfoldBookmarkFolder::newViaDialog()
{
    WayfoldBookmarkFolderPtr folder =
        bookmarkWithTitle(WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("Untitled Folder"))));
    ItemDialogs *const dialogs = ItemDialogs::current();
    return dialogs && dialogs->newFolder(folder) ? folder : nullptr;
}

WayfoldBookmarkFolderPtr WayfoldBookmarkFolder::fromItem(const KDRBookmarkPtr &item)
{
    return item ? item->asFolder() : nullptr;
}

WayfoldBookmarkFolderPtr WayfoldBookmarkFolder::asFolder()
{
    return std::static_pointer_cast<WayfoldBookmarkFolder>(shared_from_this());
}

void WayfoldBookmarkFolder::init()
{
    KDRBookmark::init();
    removeAllChildren();
    _lastIconCellSize = QSizeF(0, 0);
    WayfoldBookmarkFolder::setFilterString(QString());
    _unknownEntries.reset();
}

void WayfoldBookmarkFolder::initFromDictionary(const QVariantMap &dictionary)
{
    init();
    loadFromDictionary(dictionary);
}

QString WayfoldBookmarkFolder::filterString() const
{
    return _filterString.isEmpty() ? title() : _filterString;
}

void WayfoldBookmarkFolder::setFilterString(const QString &filterString)
{
    if (!ItemDictionary::isSameText(filterString, _filterString))
        changeField(TreeObserver::Field::SearchString, [this, filterString] { _filterString = filterString; });
}

// --- Changing what is held ------------------------------------------------------------------------------------------

void WayfoldBookmarkFolder::addChild(const KDRBookmarkPtr &child)
{
    addChildAtIndex(child, std::numeric_limits<int>::max());
}

void WayfoldBookmarkFolder::addChildAtIndex(const KDRBookmarkPtr &child, int index)
{
    const KDRBookmarkPtr added = child; // the argument may be one of the references that move
    if (added)
        insert({&added, 1}, index, Parent::ThisFolder);
}

void WayfoldBookmarkFolder::addChildrenAtIndex(const std::vector<KDRBookmarkPtr> &children, int index)
{
    const std::vector<KDRBookmarkPtr> added = children;
    if (!added.empty())
        insert(added, index, Parent::ThisFolder);
}

void WayfoldBookmarkFolder::appendWithoutParent(const KDRBookmarkPtr &child)
{
    insert({&child, 1}, std::numeric_limits<int>::max(), Parent::Same);
}

bool WayfoldBookmarkFolder::removeChild(const KDRBookmarkPtr &child)
{
    if (!child)
        return false;
    const KDRBookmarkPtr removed = child; // the argument may be one of the references that go
    return removeWhere([&](const KDRBookmarkPtr &item) { return item == removed; }) ||
           removeWhere([&](const KDRBookmarkPtr &item) { return removed->isEqual(item); });
}

void WayfoldBookmarkFolder::removeChildren(const std::vector<KDRBookmarkPtr> &children)
{
    const Places removed = placesOf(children);
    removeWhere([&](const KDRBookmarkPtr &item) { return removed.contains(item.get()); });
}

void WayfoldBookmarkFolder::removeAllChildren()
{
    settle();
    if (_lazy)
        replace({}, nullptr, Parent::Same);
    else if (!_children.empty())
        removeRun({0, int(_children.size())});
}

void WayfoldBookmarkFolder::removeAllLeafChildren()
{
    forEachFolder([](WayfoldBookmarkFolder &folder) {
        for (unsigned i = 0; folder._lazy && i < folder._lazy->count(); ++i) {
            if (folder._lazy->isFolder(i))
                folder.madeChild(i);
        }
        folder.keepMadeFolders();
    });
}

void WayfoldBookmarkFolder::removeAllButKnownFolders()
{
    forEachFolder([](WayfoldBookmarkFolder &folder) { folder.keepMadeFolders(); });
}

void WayfoldBookmarkFolder::keepMadeFolders()
{
    const auto isLeaf = [](const KDRBookmarkPtr &item) { return !item->isFolder(); };
    if (!_lazy) {
        removeWhere(isLeaf);
        return;
    }
    settle();
    std::vector<KDRBookmarkPtr> made = madeChildren();
    std::erase_if(made, isLeaf);
    replace(std::move(made), nullptr, Parent::Same);
}

void WayfoldBookmarkFolder::removeEmptySubfolders()
{
    const auto isEmptyFolder = [](const KDRBookmarkPtr &item) {
        return item && item->isFolder() && static_cast<const WayfoldBookmarkFolder &>(*item).isEmpty();
    };
    forEachFolder([&](WayfoldBookmarkFolder &folder) {
        if (std::any_of(folder._children.begin(), folder._children.end(), isEmptyFolder))
            folder.removeWhere(isEmptyFolder);
    });
}

// Without recursion, since a tree may be deep; folders that are not made yet are left out. Each folder is visited
// before the folders that it holds by then.
void WayfoldBookmarkFolder::forEachFolder(const std::function<void(WayfoldBookmarkFolder &)> &visit)
{
    visit(*this);
    std::vector<KDRBookmarkPtr> pending = madeFolders();
    while (!pending.empty()) {
        const KDRBookmarkPtr item = std::move(pending.back());
        pending.pop_back();
        auto &folder = static_cast<WayfoldBookmarkFolder &>(*item);
        visit(folder);
        const std::vector<KDRBookmarkPtr> folders = folder.madeFolders();
        pending.insert(pending.end(), folders.begin(), folders.end());
    }
}

std::vector<KDRBookmarkPtr> WayfoldBookmarkFolder::madeFolders() const
{
    std::vector<KDRBookmarkPtr> folders;
    std::copy_if(_children.begin(), _children.end(), std::back_inserter(folders),
                 [](const KDRBookmarkPtr &item) { return item && item->isFolder(); });
    return folders;
}

void WayfoldBookmarkFolder::sortChildrenByTitle()
{
    settle();
    reorder(orderByTitle(ownChildren()));
}

std::vector<KDRBookmarkPtr> WayfoldBookmarkFolder::sortedByTitle(const std::vector<KDRBookmarkPtr> &items)
{
    return inOrder(items, orderByTitle(items));
}

void WayfoldBookmarkFolder::sortChildrenByTimestampDescending()
{
    settle();
    std::vector<int> order(ownChildren().size());
    std::iota(order.begin(), order.end(), 0);
    sort(order, [this](int a, int b) {
        return _children[std::size_t(a)]->timestampDescendingComparator(*_children[std::size_t(b)]) < 0;
    });
    reorder(order);
}

void WayfoldBookmarkFolder::hold(const KDRBookmarkPtr &item, Parent parent)
{
    if (parent == Parent::ThisFolder)
        item->setParent(weak_from_this().lock());
    setHolder(*item, this);
}

void WayfoldBookmarkFolder::letGo(const KDRBookmarkPtr &item)
{
    if (item->holder() == this)
        setHolder(*item, nullptr);
}

void WayfoldBookmarkFolder::insert(std::span<const KDRBookmarkPtr> items, int index, Parent parent)
{
    settle();
    const int first = std::clamp(index, 0, int(ownChildren().size()));
    const auto apply = [this, first, parent](std::span<const KDRBookmarkPtr> added) {
        for (const KDRBookmarkPtr &item : added)
            hold(item, parent);
        _children.insert(_children.begin() + first, added.begin(), added.end());
    };
    if (!hasListeners()) {
        apply(items);
        return;
    }
    const std::vector<KDRBookmarkPtr> added(items.begin(), items.end());
    TreeTelling::Change change;
    change.kind = TreeTelling::Kind::Add;
    change.first = first;
    change.items = added;
    tellWhile(std::move(change), [=] { apply(added); });
}

// Whether there was any. From the last to the first, so that the others keep their places, and so that this ends even
// when somebody puts back what he sees going.
bool WayfoldBookmarkFolder::removeWhere(const IsOne &isOne)
{
    settle();
    const std::vector<KDRBookmarkPtr> &children = ownChildren();
    if (!hasListeners()) {
        return std::erase_if(_children, [&](const KDRBookmarkPtr &item) {
                   const bool goes = isOne(item);
                   if (goes)
                       letGo(item);
                   return goes;
               }) > 0;
    }
    if (countRuns(children, isOne) > mostRuns)
        gatherAtEnd(isOne);
    Run run = lastRunBefore(int(_children.size()), isOne);
    const bool isAny = run.count > 0;
    for (; run.count > 0; run = lastRunBefore(run.first, isOne))
        removeRun(run);
    return isAny;
}

void WayfoldBookmarkFolder::gatherAtEnd(const IsOne &isOne)
{
    std::vector<int> order(_children.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_partition(order.begin(), order.end(), [&](int index) { return !isOne(_children[std::size_t(index)]); });
    reorder(order);
}

// None when the children have become lazy meanwhile.
WayfoldBookmarkFolder::Run WayfoldBookmarkFolder::lastRunBefore(int end, const IsOne &isOne) const
{
    if (_lazy)
        return {};
    int last = std::min(end, int(_children.size()));
    while (last > 0 && !isOne(_children[std::size_t(last - 1)]))
        --last;
    int first = last;
    while (first > 0 && isOne(_children[std::size_t(first - 1)]))
        --first;
    return {first, last - first};
}

void WayfoldBookmarkFolder::removeRun(Run run)
{
    const auto apply = [this, run] {
        const auto first = _children.begin() + run.first;
        for (auto item = first; item != first + run.count; ++item)
            letGo(*item);
        _children.erase(first, first + run.count);
    };
    if (!hasListeners()) {
        apply();
        return;
    }
    TreeTelling::Change change;
    change.kind = TreeTelling::Kind::Remove;
    change.first = run.first;
    change.items.assign(_children.begin() + run.first, _children.begin() + run.first + run.count);
    tellWhile(std::move(change), apply);
}

// The child at place i is the one that was at `from[i]`.
void WayfoldBookmarkFolder::reorder(const std::vector<int> &from)
{
    if (std::is_sorted(from.begin(), from.end()))
        return;
    const auto apply = [this, from] { _children = inOrder(_children, from); };
    if (!hasListeners()) {
        apply();
        return;
    }
    TreeTelling::Change change;
    change.kind = TreeTelling::Kind::Move;
    change.from = from;
    tellWhile(std::move(change), apply);
}

void WayfoldBookmarkFolder::replace(const std::vector<KDRBookmarkPtr> &children,
                                    const std::shared_ptr<LazyChildren> &lazy, Parent parent)
{
    const auto apply = [this, children, lazy, parent] {
        std::vector<KDRBookmarkPtr> former;
        takeChildren(former);
        _lazy = lazy;
        for (const KDRBookmarkPtr &item : children)
            hold(item, parent);
        _children = children;
    };
    const bool isNothing = isEmpty() && children.empty() && (!lazy || lazy->isEmpty());
    if (isNothing || !hasListeners()) {
        apply();
        return;
    }
    tellWhile({}, apply);
}

void WayfoldBookmarkFolder::setChildren(const std::vector<KDRBookmarkPtr> &children, Parent parent)
{
    settle();
    const Places places = placesOf(children);
    const auto stays = [&](const KDRBookmarkPtr &item) { return item && places.contains(item.get()); };
    const bool hasTwins = places.size() < qsizetype(children.size());
    if (_lazy || hasTwins || !hasListeners() || std::none_of(_children.begin(), _children.end(), stays)) {
        replace(children, nullptr, parent);
        return;
    }
    removeWhere([&](const KDRBookmarkPtr &item) { return !stays(item); });
    addMissing(children, parent);
}

void WayfoldBookmarkFolder::addMissing(const std::vector<KDRBookmarkPtr> &children, Parent parent)
{
    const Places held = placesOf(_children);
    const IsOne isMissing = [&](const KDRBookmarkPtr &item) { return !held.contains(item.get()); };
    if (countRuns(children, isMissing) > mostRuns) {
        std::vector<KDRBookmarkPtr> missing;
        std::copy_if(children.begin(), children.end(), std::back_inserter(missing), isMissing);
        insert(missing, std::numeric_limits<int>::max(), parent);
        orderAs(children);
        return;
    }
    orderAs(children);
    for (auto first = children.begin(); first != children.end();) {
        first = std::find_if(first, children.end(), isMissing);
        const auto end = std::find_if_not(first, children.end(), isMissing);
        if (first != end)
            insert({first, end}, int(first - children.begin()), parent);
        first = end;
    }
}

// What is not among these comes last.
void WayfoldBookmarkFolder::orderAs(const std::vector<KDRBookmarkPtr> &children)
{
    settle();
    const Places places = placesOf(children);
    std::vector<int> order(ownChildren().size());
    std::iota(order.begin(), order.end(), 0);
    const auto place = [&](int index) { return places.value(_children[std::size_t(index)].get(), int(places.size())); };
    sort(order, [&](int a, int b) { return place(a) < place(b); });
    reorder(order);
}

// --- Telling --------------------------------------------------------------------------------------------------------

void WayfoldBookmarkFolder::addObserver(TreeObserver *observer)
{
    const auto isThere = [observer](const auto &listener) { return listener->observer == observer; };
    if (!observer || std::any_of(_listeners.begin(), _listeners.end(), isThere))
        return;
    _listeners.push_back(std::make_shared<TreeTelling::Listener>(TreeTelling::Listener{observer}));
    TreeTelling::countListeners(1);
}

void WayfoldBookmarkFolder::removeObserver(TreeObserver *observer)
{
    const auto found = std::find_if(_listeners.begin(), _listeners.end(),
                                    [observer](const auto &listener) { return listener->observer == observer; });
    if (found == _listeners.end())
        return;
    (*found)->observer = nullptr; // it may still stand among those that are to be told
    _listeners.erase(found);
    TreeTelling::countListeners(-1);
}

// Before it looks where it is going to change. What nobody hears of can go on at any time: reading lazy children, say.
void WayfoldBookmarkFolder::settle() const
{
    if (hasListeners())
        TreeTelling::settle();
}

void WayfoldBookmarkFolder::tellWhile(TreeTelling::Change change, const std::function<void()> &apply)
{
    change.folder = fromItem(shared_from_this());
    change.listeners = listeners();
    TreeTelling::make(std::move(change), apply);
}

// --- Counting -------------------------------------------------------------------------------------------------------

unsigned WayfoldBookmarkFolder::deepChildCount() const
{
    unsigned count = childCount();
    for (const KDRBookmarkPtr &item : children()) {
        if (item->isFolder())
            count += static_cast<const WayfoldBookmarkFolder &>(*item).deepChildCount();
    }
    return count;
}

unsigned WayfoldBookmarkFolder::persistentChildCount() const
{
    unsigned count = 0;
    for (const KDRBookmarkPtr &item : children()) {
        if (!item->canBePersistent())
            continue;
        ++count;
        if (const WayfoldBookmarkFolderPtr folder = fromItem(item))
            count += folder->deepChildCount();
    }
    return count;
}

KDRBookmarkPtr WayfoldBookmarkFolder::childAtIndex(unsigned index) const
{
    return index < childCount() ? madeChild(index) : lastChild();
}

KDRBookmarkPtr WayfoldBookmarkFolder::lastChild() const
{
    return isEmpty() ? nullptr : madeChild(childCount() - 1);
}

// --- Lazy children --------------------------------------------------------------------------------------------------

void WayfoldBookmarkFolder::setLazyChildren(const std::shared_ptr<LazyChildren> &children)
{
    settle();
    replace({}, children, Parent::Same);
}

WayfoldBookmarkFolderPtr WayfoldBookmarkFolder::copyWithoutChildren() const
{
    const KDRBookmarkPtr copy = makeNew();
    copyFieldsTo(*copy);
    return copy->asFolder();
}

const std::vector<KDRBookmarkPtr> &WayfoldBookmarkFolder::children() const
{
    for (unsigned i = 0; _lazy && i < _lazy->count(); ++i)
        madeChild(i);
    return _children;
}

// For a change: they become ordinary children.
std::vector<KDRBookmarkPtr> &WayfoldBookmarkFolder::ownChildren()
{
    children();
    _lazy.reset();
    return _children;
}

const KDRBookmarkPtr &WayfoldBookmarkFolder::madeChild(unsigned index) const
{
    if (_children.empty())
        _children.resize(_lazy->count());
    KDRBookmarkPtr &child = _children[index];
    if (!child) {
        child = _lazy->makeChild(index, std::static_pointer_cast<WayfoldBookmarkFolder>(
                                            std::const_pointer_cast<KDRBookmark>(weak_from_this().lock())));
        setHolder(*child, const_cast<WayfoldBookmarkFolder *>(this)); // it was as good as there before
    }
    return child;
}

std::vector<KDRBookmarkPtr> WayfoldBookmarkFolder::madeChildren() const
{
    std::vector<KDRBookmarkPtr> made;
    std::copy_if(_children.begin(), _children.end(), std::back_inserter(made),
                 [](const KDRBookmarkPtr &item) { return item != nullptr; });
    return made;
}

std::vector<std::pair<unsigned, KDRBookmarkPtr>> WayfoldBookmarkFolder::madeChildrenWithIndexes() const
{
    std::vector<std::pair<unsigned, KDRBookmarkPtr>> made;
    for (unsigned index = 0; index < _children.size(); ++index) {
        if (_children[index])
            made.emplace_back(index, _children[index]);
    }
    return made;
}

int WayfoldBookmarkFolder::indexOfMadeChild(const KDRBookmark &child) const
{
    const auto found = std::find_if(_children.begin(), _children.end(),
                                    [&](const KDRBookmarkPtr &item) { return item.get() == &child; });
    return found == _children.end() ? -1 : int(found - _children.begin());
}

bool WayfoldBookmarkFolder::isFolderAtIndex(unsigned index) const
{
    return _lazy ? _lazy->isFolder(index) : _children[index]->isFolder();
}

// --- Looking for children -------------------------------------------------------------------------------------------

int WayfoldBookmarkFolder::indexOfChild(const KDRBookmark &child) const
{
    const int index = indexOfMadeChild(child);
    if (index >= 0)
        return index;
    const std::vector<KDRBookmarkPtr> &items = children();
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const KDRBookmarkPtr &item) { return child.isEqual(*item); });
    return found == items.end() ? -1 : int(found - items.begin());
}

KDRBookmarkPtr WayfoldBookmarkFolder::childWithTitle(const QString &title) const
{
    if (title.isNull())
        return nullptr;
    const std::vector<KDRBookmarkPtr> &items = children();
    const auto found = std::find_if(items.begin(), items.end(), [&](const KDRBookmarkPtr &item) {
        return ItemDictionary::isSameText(item->title(), title);
    });
    return found == items.end() ? nullptr : *found;
}

void WayfoldBookmarkFolder::addAutoFolders()
{
    if (!WayfoldDefaults::sharedInstance().createAutoFolders())
        return;
    const std::vector<WayfoldBookmarkFolderPtr> folders = ItemKinds::current().autoFolders();
    for (const WayfoldBookmarkFolderPtr &folder : folders)
        folder->setFilterString(filterString());
    addChildrenAtIndex({folders.begin(), folders.end()}, std::numeric_limits<int>::max());
}

void WayfoldBookmarkFolder::removeAutoFolders()
{
    removeWhere([](const KDRBookmarkPtr &item) {
        return item->isFolder() && static_cast<const WayfoldBookmarkFolder &>(*item).isAutoFolder();
    });
}

void WayfoldBookmarkFolder::parseBookmarkDictionaryInsert(const QVariantMap &dictionary, bool insert)
{
    if (!insert && ItemKinds::current().isFolder(dictionary))
        loadFromDictionary(dictionary);
    else
        addChild(ItemKinds::current().itemFromDictionary(dictionary));
}

void WayfoldBookmarkFolder::parseHistoryDictionary(const QVariantMap &dictionary)
{
    addChild(ItemKinds::current().itemFromHistoryDictionary(dictionary));
}

bool WayfoldBookmarkFolder::writeDictionaryFile(const QString &path) const
{
    if (isTooDeepToBeSaved()) {
        qCWarning(logFiles) << "Not written, since its folders are nested too deep to be read again:" << path;
        return false;
    }
    return PropertyList::writeFile(createDictionary(true), path);
}

QByteArray WayfoldBookmarkFolder::dictionaryFileContents() const
{
    return isTooDeepToBeSaved() ? QByteArray() : PropertyList::toXml(createDictionary(true));
}

// Of each folder the file holds a dictionary and a list, one inside the other. What is not saved may be as deep as it
// likes, and is not looked at: that would make all the entries of "Related History".
bool WayfoldBookmarkFolder::isTooDeepToBeSaved() const
{
    std::vector<const WayfoldBookmarkFolder *> level = {this};
    for (int depth = 0; depth < PropertyList::maximumDepth / 2; ++depth) {
        std::vector<const WayfoldBookmarkFolder *> nextLevel;
        for (const WayfoldBookmarkFolder *folder : level) {
            for (const KDRBookmarkPtr &item : folder->children()) {
                if (item->type() == FolderType && item->canBePersistent()) // groups are saved without what they hold
                    nextLevel.push_back(static_cast<const WayfoldBookmarkFolder *>(item.get()));
            }
        }
        if (nextLevel.empty())
            return false;
        level = std::move(nextLevel);
    }
    return true;
}

KDRBookmarkPtr WayfoldBookmarkFolder::findByUUID(const QString &uuid)
{
    return itemsWithUUIDs({uuid}).value(uuid);
}

QHash<QString, KDRBookmarkPtr> WayfoldBookmarkFolder::itemsWithUUIDs(const QStringList &uuids)
{
    UUIDSearch search(uuids);
    search.offer(shared_from_this());
    walkFor(search);
    return search.found();
}

// Without recursion, since a tree may be deep.
void WayfoldBookmarkFolder::walkFor(UUIDSearch &search)
{
    struct Step
    {
        std::vector<KDRBookmarkPtr> items;
        std::size_t next = 0;
    };
    std::vector<Step> path;
    path.push_back({itemsThatMayBe(search)});
    while (!path.empty() && !search.isOver()) {
        Step &step = path.back();
        if (step.next == step.items.size()) {
            path.pop_back();
            continue;
        }
        const KDRBookmarkPtr item = step.items[step.next++];
        search.offer(item);
        if (item->isFolder())
            path.push_back({static_cast<WayfoldBookmarkFolder &>(*item).itemsThatMayBe(search)});
    }
}

// The children that the search has to look at, in order: of the lazy ones, those that somebody knows or that hold what
// is looked for.
std::vector<KDRBookmarkPtr> WayfoldBookmarkFolder::itemsThatMayBe(const UUIDSearch &search)
{
    if (!_lazy)
        return _children;
    for (const unsigned index : _lazy->indexesOfWanted(search))
        madeChild(index);
    return madeChildren();
}

void WayfoldBookmarkFolder::appendMatches(const TextSearch &search, std::vector<KDRBookmarkPtr> &found)
{
    KDRBookmark::appendMatches(search, found);
    if (_lazy) {
        for (const unsigned index : _lazy->indexesOfMatches(search))
            madeChild(index)->appendMatches(search, found);
        return;
    }
    for (const KDRBookmarkPtr &item : _children)
        item->appendMatches(search, found);
}

bool WayfoldBookmarkFolder::refresh()
{
    for (const KDRBookmarkPtr &folder : madeFolders())
        folder->refresh();
    return true;
}

void WayfoldBookmarkFolder::loadFromDictionary(const QVariantMap &dictionary)
{
    using namespace ItemDictionary;
    initWithTitle(string(dictionary, titleKey));
    const QString storedUUID = string(dictionary, uuidKey);
    if (!storedUUID.isEmpty())
        setUUID(storedUUID);
    const QString searchString = string(dictionary, searchStringKey);
    setFilterString(searchString.isEmpty() ? title() : searchString);
    const QVariantList entries = list(dictionary, childrenKey);
    for (const QVariant &entry : entries)
        parseBookmarkDictionaryInsert(entry.toMap(), true);
    keepUnknown(dictionary);
}

void WayfoldBookmarkFolder::keepUnknown(const QVariantMap &dictionary)
{
    QVariantMap used;
    writeFieldsTo(used);
    const QVariant entries = dictionary.value(ItemDictionary::childrenKey);
    // A list is looked at entry by entry; anything else stands where there are no children.
    used.insert(ItemDictionary::childrenKey,
                entries.typeId() == QMetaType::QVariantList ? entries : QVariant(QVariantList()));
    keepUnknownKeys(dictionary, used);
    keepUnknownEntries(ItemDictionary::list(dictionary, ItemDictionary::childrenKey));
}

void WayfoldBookmarkFolder::keepUnknownEntries(const QVariantList &entries)
{
    const ItemKinds &kinds = ItemKinds::current();
    UnknownEntries unknown;
    std::vector<KDRBookmarkPtr>::const_iterator child = children().begin();
    for (const QVariant &entry : entries) {
        if (!kinds.isItem(entry.toMap())) {
            unknown.addEntry(entry);
            continue;
        }
        child =
            std::find_if(child, _children.cend(), [](const KDRBookmarkPtr &item) { return item->canBePersistent(); });
        if (child != _children.cend())
            unknown.addItem(*child++);
    }
    _unknownEntries = unknown.isEmpty() ? nullptr : std::make_unique<UnknownEntries>(std::move(unknown));
}

int WayfoldBookmarkFolder::depthOfUnknown() const
{
    const int depthOfEntries = _unknownEntries ? _unknownEntries->depth() + 1 : 0;
    return std::max(KDRBookmark::depthOfUnknown(), depthOfEntries);
}

UnknownEntries::Places WayfoldBookmarkFolder::unknownPlaces() const
{
    return _unknownEntries ? _unknownEntries->placesAmong(children()) : UnknownEntries::Places(childCount() + 1);
}

void WayfoldBookmarkFolder::writeFieldsTo(QVariantMap &dictionary) const
{
    using namespace ItemDictionary;
    dictionary.insert(typeKey, listType);
    dictionary.insert(uuidKey, textOrEmpty(uuid()));
    dictionary.insert(titleKey, textOrEmpty(title()));
    dictionary.insert(searchStringKey, textOrEmpty(_filterString));
}

void WayfoldBookmarkFolder::writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const
{
    const UnknownEntries::Places unknown = unknownPlaces();
    QVariantList entries = unknown[0];
    for (std::size_t i = 0; i < children().size(); ++i) {
        if (!forSaving || _children[i]->canBePersistent())
            entries.append(_children[i]->createDictionary(forSaving));
        entries.append(unknown[i + 1]);
    }
    writeFieldsTo(dictionary);
    dictionary.insert(ItemDictionary::childrenKey, entries);
}

bool WayfoldBookmarkFolder::isEqual(const KDRBookmark &other) const
{
    if (_filterString.isNull() || !KDRBookmark::isEqual(other))
        return false;
    const auto &folder = static_cast<const WayfoldBookmarkFolder &>(other);
    const std::vector<KDRBookmarkPtr> &items = children();
    const std::vector<KDRBookmarkPtr> &others = folder.children();
    return ItemDictionary::isSameText(_filterString, folder.filterString()) &&
           std::equal(items.begin(), items.end(), others.begin(), others.end(),
                      [](const KDRBookmarkPtr &a, const KDRBookmarkPtr &b) { return a->isEqual(b); });
}

std::shared_ptr<Image> WayfoldBookmarkFolder::imageForCellSize(const QSizeF &size)
{
    std::shared_ptr<Image> &image = ItemImages::shared().folder;
    if (WayfoldDefaults::sharedInstance().showBookmarkIcons())
        ensureIconLoaded(image, QStringLiteral("WayfoldFolderIcon"), size);
    return image;
}

void WayfoldBookmarkFolder::ensureIconLoaded(std::shared_ptr<Image> &image, const QString &name, const QSizeF &size)
{
    if (image && size == _lastIconCellSize)
        return;
    const bool isSmall = size.height() <= 32.0;
    image = ItemImages::neverCached(WayfoldToolkit::loadImageNamed(isSmall ? name + QStringLiteral("16") : name));
    _lastIconCellSize = size;
}

bool WayfoldBookmarkFolder::editViaDialog()
{
    ItemDialogs *const dialogs = ItemDialogs::current();
    return dialogs && dialogs->editFolder(fromItem(shared_from_this()));
}

void WayfoldBookmarkFolder::encodeWithCoder(KeyedArchiver &coder) const
{
    KDRBookmark::encodeWithCoder(coder);
    coder.encodeValueForKey(_filterString, filterStringCoderKey);
    coder.encodeObjectsForKey({children().begin(), children().end()}, childrenCoderKey);
    if (_unknownEntries)
        coder.encodeValueForKey(archivedPlaces(_unknownEntries->placesAmong(children())), unknownEntriesCoderKey);
}

void WayfoldBookmarkFolder::initWithCoder(const KeyedUnarchiver &coder)
{
    KDRBookmark::initWithCoder(coder);
    WayfoldBookmarkFolder::setFilterString(coder.decodeStringForKey(filterStringCoderKey));
    for (const std::shared_ptr<KeyedCoding> &object : coder.decodeObjectsForKey(childrenCoderKey)) {
        if (auto item = std::dynamic_pointer_cast<KDRBookmark>(object))
            appendWithoutParent(item);
    }
    const QVariantList places = coder.decodeValueForKey(unknownEntriesCoderKey).toList();
    if (!places.isEmpty())
        _unknownEntries = std::make_unique<UnknownEntries>(placesFromArchive(places), _children);
}

KDRBookmarkPtr WayfoldBookmarkFolder::makeNew() const
{
    return std::make_shared<WayfoldBookmarkFolder>(Blank());
}

bool WayfoldBookmarkFolder::isSameKindAs(const KDRBookmark &other) const
{
    return other.isFolder();
}

void WayfoldBookmarkFolder::copyFieldsTo(KDRBookmark &copy) const
{
    KDRBookmark::copyTo(copy);
    static_cast<WayfoldBookmarkFolder &>(copy).setFilterString(filterString());
}

void WayfoldBookmarkFolder::copyTo(KDRBookmark &copy) const
{
    copyFieldsTo(copy);
    auto &folder = static_cast<WayfoldBookmarkFolder &>(copy);
    if (_lazy && (folder._lazy = _lazy->copies()))
        return;
    folder._children.reserve(children().size());
    for (const KDRBookmarkPtr &item : children())
        folder.addChild(item->copy());
    if (_unknownEntries)
        folder._unknownEntries = std::make_unique<UnknownEntries>(unknownPlaces(), folder._children);
}
