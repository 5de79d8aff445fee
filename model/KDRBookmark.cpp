#include "model/KDRBookmark.h"

#include "model/ItemDictionary.h"
#include "model/ItemImages.h"
#include "model/TextSearch.h"
#include "platform/base/StringRules.h"

#include <QUuid>
#include <utility>

namespace
{
const QString unknownKeysCoderKey = QStringLiteral("_unknownKeys");

QString freshUUID()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}
} // namespace

KDRBookmark::KDRBookmark()
{
    KDRBookmark::init();
}

KDRBookmark::~KDRBookmark() = default;

KDRBookmarkPtr KDRBookmark::bookmarkWithTitle(const QString &title)
{
    auto item = std::make_shared<KDRBookmark>();
    item->setTitle(title);
    return item;
}

void KDRBookmark::init()
{
    setTitle(QString());
    _parent.reset();
    setTimestampInMilliseconds(QDateTime::currentMSecsSinceEpoch());
    changeField(TreeObserver::Field::Identifier, [this] { _isUUIDDue = true; });
    _unknownKeys = {};
}

void KDRBookmark::initWithTitle(const QString &title)
{
    init();
    setTitle(title);
}

void KDRBookmark::setTitle(const QString &title)
{
    if (ItemDictionary::isSameText(title, _title))
        return;
    changeField(TreeObserver::Field::Title, [this, title] {
        _title = title;
        searchedTextChanged();
    });
}

KDRBookmarkPtr KDRBookmark::initializeFromDictionary(const QVariantMap &dictionary)
{
    Q_UNUSED(dictionary)
    return nullptr;
}

QString KDRBookmark::createUUID()
{
    setUUID(freshUUID());
    return _uuid;
}

QString KDRBookmark::uuid() const
{
    if (std::exchange(_isUUIDDue, false))
        _uuid = freshUUID();
    return _uuid;
}

void KDRBookmark::setUUID(const QString &uuid)
{
    if (!_isUUIDDue && ItemDictionary::isSameText(uuid, _uuid))
        return;
    changeField(TreeObserver::Field::Identifier, [this, uuid] {
        _uuid = uuid;
        _isUUIDDue = false;
    });
}

CalendarDate KDRBookmark::timestamp() const
{
    return _timestamp == noTimestamp ? CalendarDate() : CalendarDate::fromMSecsSinceEpoch(_timestamp);
}

void KDRBookmark::setTimestamp(const CalendarDate &timestamp)
{
    setTimestampInMilliseconds(timestamp.isValid() ? timestamp.toMSecsSinceEpoch() : noTimestamp);
}

void KDRBookmark::setTimestampInMilliseconds(qint64 timestamp)
{
    if (timestamp != _timestamp)
        changeField(TreeObserver::Field::Timestamp, [this, timestamp] { _timestamp = timestamp; });
}

WayfoldBookmarkFolderPtr KDRBookmark::parent() const
{
    const KDRBookmarkPtr parent = _parent.lock();
    return parent ? parent->asFolder() : nullptr;
}

void KDRBookmark::setParent(const KDRBookmarkPtr &parent)
{
    if (parent && parent->isFolder())
        _parent = parent;
}

bool KDRBookmark::hasListeners() const
{
    if (!TreeTelling::isAnybodyListening())
        return false;
    const KDRBookmark *each = this;
    while (each && each->ownListeners().empty())
        each = each->_holder;
    return each;
}

TreeTelling::Listeners KDRBookmark::listeners() const
{
    TreeTelling::Listeners all;
    for (const KDRBookmark *each = this; each; each = each->_holder)
        all.insert(all.end(), each->ownListeners().begin(), each->ownListeners().end());
    return all;
}

void KDRBookmark::tellWhile(TreeObserver::Field field, const std::function<void()> &apply)
{
    TreeTelling::settle(); // which may take the item out of its folder
    TreeTelling::Change change;
    change.kind = TreeTelling::Kind::Field;
    change.field = field;
    change.items = {shared_from_this()};
    change.listeners = listeners();
    TreeTelling::make(std::move(change), apply);
}

const TreeTelling::Listeners &KDRBookmark::ownListeners() const
{
    static const TreeTelling::Listeners none;
    return none;
}

void KDRBookmark::tellAppearanceChanged()
{
    changeField(TreeObserver::Field::Appearance, [] {});
}

void KDRBookmark::setValue(const QVariant &value)
{
    Q_UNUSED(value)
}

KDRBookmarkPtr KDRBookmark::findByUUID(const QString &uuid)
{
    return !uuid.isEmpty() && this->uuid() == uuid ? shared_from_this() : nullptr;
}

bool KDRBookmark::isChildOf(const KDRBookmarkPtr &item) const
{
    if (!item)
        return false;
    for (KDRBookmarkPtr folder = _parent.lock(); folder; folder = folder->_parent.lock()) {
        if (folder == item)
            return true;
    }
    return false;
}

int KDRBookmark::childIsAtIndex() const
{
    const KDRBookmarkPtr folder = _parent.lock();
    return folder ? folder->indexOfChild(*this) : -1;
}

bool KDRBookmark::acceptsDroppedItems() const
{
    const KDRBookmarkPtr folder = _parent.lock();
    return !folder || folder->acceptsDroppedItems();
}

bool KDRBookmark::canBePersistent() const
{
    const KDRBookmarkPtr folder = _parent.lock();
    return !folder || folder->canBePersistent();
}

bool KDRBookmark::matches(const TextSearch &search) const
{
    // No text that is searched for holds a NUL, so none is found across the two.
    if (_searchForm.isNull())
        _searchForm = StringRules::searchForm(title() + QChar::Null + searchedText());
    return search.isFoundInSearchForm(_searchForm);
}

bool KDRBookmark::matchesSubstring(const QString &substring) const
{
    return matches(TextSearch(substring));
}

std::vector<KDRBookmarkPtr> KDRBookmark::bookmarksWithSubstring(const QString &substring)
{
    std::vector<KDRBookmarkPtr> found;
    appendMatches(TextSearch(substring), found);
    return found;
}

void KDRBookmark::appendMatches(const TextSearch &search, std::vector<KDRBookmarkPtr> &found)
{
    if (matches(search))
        found.push_back(shared_from_this());
}

int KDRBookmark::titleComparator(const KDRBookmark &other) const
{
    return StringRules::compareIgnoringCase(title(), other.title());
}

int KDRBookmark::timestampAscendingComparator(const KDRBookmark &other) const
{
    // None is less than any other.
    return int(_timestamp > other._timestamp) - int(_timestamp < other._timestamp);
}

int KDRBookmark::timestampDescendingComparator(const KDRBookmark &other) const
{
    return -timestampAscendingComparator(other);
}

void KDRBookmark::loadFromDictionary(const QVariantMap &dictionary)
{
    Q_UNUSED(dictionary)
}

void KDRBookmark::keepUnknown(const QVariantMap &dictionary)
{
    QVariantMap used;
    writeToDictionaryForSaving(used, true);
    keepUnknownKeys(dictionary, used);
}

void KDRBookmark::keepUnknownKeys(const QVariantMap &dictionary, const QVariantMap &used)
{
    _unknownKeys = UnknownKeys(dictionary, used);
}

void KDRBookmark::writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const
{
    Q_UNUSED(dictionary)
    Q_UNUSED(forSaving)
}

QVariantMap KDRBookmark::createDictionary(bool forSaving) const
{
    QVariantMap dictionary;
    writeToDictionaryForSaving(dictionary, forSaving);
    _unknownKeys.addTo(dictionary);
    return dictionary;
}

KDRBookmarkPtr KDRBookmark::copy() const
{
    KDRBookmarkPtr copy = makeNew();
    copyTo(*copy);
    return copy;
}

bool KDRBookmark::isEqual(const KDRBookmark &other) const
{
    return isSameKindAs(other) && ItemDictionary::isSameText(title(), other.title()) &&
           ItemDictionary::isSameText(uuid(), other.uuid());
}

std::shared_ptr<Image> KDRBookmark::imageForCellSize(const QSizeF &size)
{
    Q_UNUSED(size)
    return nullptr;
}

std::shared_ptr<Image> KDRBookmark::loadIconForFileScaledTo(const QString &path, const QSizeF &size)
{
    std::shared_ptr<Image> icon = ItemImages::shared().files.iconForFile(path);
    if (icon && !size.isNull()) {
        icon->setScalesWhenResized(true);
        icon->setSize(size);
    }
    return icon;
}

void KDRBookmark::encodeWithCoder(KeyedArchiver &coder) const
{
    coder.encodeValueForKey(title(), QStringLiteral("_title"));
    coder.encodeValueForKey(uuid(), QStringLiteral("_uuid"));
    coder.encodeValueForKey(_unknownKeys.archived(), unknownKeysCoderKey);
}

void KDRBookmark::initWithCoder(const KeyedUnarchiver &coder)
{
    init();
    setTitle(coder.decodeStringForKey(QStringLiteral("_title")));
    setUUID(coder.decodeStringForKey(QStringLiteral("_uuid")));
    setTimestampInMilliseconds(noTimestamp);
    _unknownKeys = UnknownKeys::fromArchive(coder.decodeValueForKey(unknownKeysCoderKey));
}

KDRBookmarkPtr KDRBookmark::makeNew() const
{
    return std::make_shared<KDRBookmark>(Blank());
}

bool KDRBookmark::isSameKindAs(const KDRBookmark &other) const
{
    Q_UNUSED(other)
    return true; // every item is one
}

void KDRBookmark::copyTo(KDRBookmark &copy) const
{
    copy.setTitle(title());
    copy.setUUID(uuid());
    copy._timestamp = _timestamp;
    copy._unknownKeys = _unknownKeys;
}
