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

namespace
{
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
    std::vector<KDRBookmarkPtr> released = std::move(_children);
    while (!released.empty()) {
        const KDRBookmarkPtr item = std::move(released.back());
        released.pop_back();
        if (!item || item.use_count() > 1 || !item->isFolder())
            continue;
        auto &folder = static_cast<WayfoldBookmarkFolder &>(*item);
        std::move(folder._children.begin(), folder._children.end(), std::back_inserter(released));
        folder._children.clear();
    }
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
        bookmarkWithTitle(WayfoldToolkit::localizedString(QStringLiteral("Untitled Folder")));
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
    _filterString = QString();
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
    _filterString = filterString;
}

void WayfoldBookmarkFolder::addChild(const KDRBookmarkPtr &child)
{
    if (!child)
        return;
    child->setParent(weak_from_this().lock());
    ownChildren().push_back(child);
}

void WayfoldBookmarkFolder::addChildAtIndex(const KDRBookmarkPtr &child, int index)
{
    if (!child)
        return;
    child->setParent(weak_from_this().lock());
    std::vector<KDRBookmarkPtr> &children = ownChildren();
    children.insert(children.begin() + std::clamp(index, 0, int(children.size())), child);
}

bool WayfoldBookmarkFolder::removeChild(const KDRBookmarkPtr &child)
{
    if (!child)
        return false;
    const KDRBookmarkPtr removed = child; // the argument may be one of the references that go
    if (std::erase(ownChildren(), removed) > 0)
        return true;
    return std::erase_if(_children, [&](const KDRBookmarkPtr &item) { return removed->isEqual(item); }) > 0;
}

void WayfoldBookmarkFolder::removeAllChildren()
{
    _lazy.reset();
    _children.clear();
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
    std::erase_if(_children, [](const KDRBookmarkPtr &item) { return !item || !item->isFolder(); });
    _lazy.reset();
}

void WayfoldBookmarkFolder::removeEmptySubfolders()
{
    const auto isEmptyFolder = [](const KDRBookmarkPtr &item) {
        return item && item->isFolder() && static_cast<const WayfoldBookmarkFolder &>(*item).isEmpty();
    };
    forEachFolder([&](WayfoldBookmarkFolder &folder) {
        if (std::any_of(folder._children.begin(), folder._children.end(), isEmptyFolder))
            std::erase_if(folder.ownChildren(), isEmptyFolder);
    });
}

// Without recursion, since a tree may be deep; folders that are not made yet are left out. Each folder is visited
// before the folders that it holds by then.
void WayfoldBookmarkFolder::forEachFolder(const std::function<void(WayfoldBookmarkFolder &)> &visit)
{
    std::vector<WayfoldBookmarkFolder *> pending = {this};
    while (!pending.empty()) {
        WayfoldBookmarkFolder &folder = *pending.back();
        pending.pop_back();
        visit(folder);
        for (const KDRBookmarkPtr &item : folder._children) {
            if (item && item->isFolder())
                pending.push_back(static_cast<WayfoldBookmarkFolder *>(item.get()));
        }
    }
}

void WayfoldBookmarkFolder::sortChildrenByTitle()
{
    // As titleComparator() does, with the form that it compares made once of each title.
    using Entry = std::pair<QString, KDRBookmarkPtr>;
    std::vector<Entry> entries;
    entries.reserve(ownChildren().size());
    for (KDRBookmarkPtr &item : _children)
        entries.emplace_back(StringRules::comparisonForm(item->title()), std::move(item));
    sort(entries, [](const Entry &a, const Entry &b) { return a.first < b.first; });
    std::transform(entries.begin(), entries.end(), _children.begin(),
                   [](Entry &entry) { return std::move(entry.second); });
}

void WayfoldBookmarkFolder::sortChildrenByTimestampDescending()
{
    sort(ownChildren(),
         [](const KDRBookmarkPtr &a, const KDRBookmarkPtr &b) { return a->timestampDescendingComparator(*b) < 0; });
}

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
    removeAllChildren();
    _lazy = children;
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
    if (!child)
        child = _lazy->makeChild(index, std::static_pointer_cast<WayfoldBookmarkFolder>(
                                            std::const_pointer_cast<KDRBookmark>(weak_from_this().lock())));
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
    for (const WayfoldBookmarkFolderPtr &folder : ItemKinds::current().autoFolders()) {
        folder->setFilterString(filterString());
        addChild(folder);
    }
}

void WayfoldBookmarkFolder::removeAutoFolders()
{
    std::erase_if(ownChildren(), [](const KDRBookmarkPtr &item) {
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
    for (const KDRBookmarkPtr &item : _children) {
        if (item && item->isFolder())
            item->refresh();
    }
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
    _filterString = coder.decodeStringForKey(filterStringCoderKey);
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

void WayfoldBookmarkFolder::appendWithoutParent(const KDRBookmarkPtr &child)
{
    ownChildren().push_back(child);
}
