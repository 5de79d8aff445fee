#include "model/KDRBookmark.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/ItemDictionary.h"
#include "model/WayfoldBookmarkFolder.h"
#include "platform/base/StringRules.h"
#include "platform/widgets/Image.h"
#include "platform/widgets/Workspace.h"

#include <QUuid>

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
    _title = QString();
    _parent.reset();
    _timestamp = CalendarDate::currentDateTime();
    createUUID();
}

void KDRBookmark::initWithTitle(const QString &title)
{
    init();
    _title = title;
}

KDRBookmarkPtr KDRBookmark::initializeFromDictionary(const QVariantMap &dictionary)
{
    Q_UNUSED(dictionary)
    return nullptr;
}

QString KDRBookmark::createUUID()
{
    _uuid = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    return _uuid;
}

void KDRBookmark::setParent(const KDRBookmarkPtr &parent)
{
    if (const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(parent))
        _parent = folder;
}

void KDRBookmark::setValue(const QVariant &value)
{
    Q_UNUSED(value)
}

KDRBookmarkPtr KDRBookmark::findByUUID(const QString &uuid)
{
    return !uuid.isNull() && ItemDictionary::isSameText(_uuid, uuid) ? shared_from_this() : nullptr;
}

bool KDRBookmark::isChildOf(const KDRBookmarkPtr &item) const
{
    if (!item)
        return false;
    for (WayfoldBookmarkFolderPtr folder = parent(); folder; folder = folder->parent()) {
        if (folder == item)
            return true;
    }
    return false;
}

int KDRBookmark::childIsAtIndex() const
{
    const WayfoldBookmarkFolderPtr folder = parent();
    return folder ? folder->indexOfChild(*this) : -1;
}

bool KDRBookmark::acceptsDroppedItems() const
{
    const WayfoldBookmarkFolderPtr folder = parent();
    return !folder || folder->acceptsDroppedItems();
}

bool KDRBookmark::canBePersistent() const
{
    const WayfoldBookmarkFolderPtr folder = parent();
    return !folder || folder->canBePersistent();
}

bool KDRBookmark::matchesSubstring(const QString &substring) const
{
    return WayfoldToolkit::stringContainsString(title(), substring);
}

std::vector<KDRBookmarkPtr> KDRBookmark::bookmarksWithSubstring(const QString &substring)
{
    std::vector<KDRBookmarkPtr> found;
    appendBookmarksWithSubstring(substring, found);
    return found;
}

void KDRBookmark::appendBookmarksWithSubstring(const QString &substring, std::vector<KDRBookmarkPtr> &found)
{
    if (matchesSubstring(substring))
        found.push_back(shared_from_this());
}

int KDRBookmark::titleComparator(const KDRBookmark &other) const
{
    return StringRules::compareIgnoringCase(title(), other.title());
}

int KDRBookmark::timestampAscendingComparator(const KDRBookmark &other) const
{
    if (!_timestamp.isValid() || !other._timestamp.isValid())
        return int(_timestamp.isValid()) - int(other._timestamp.isValid());
    if (_timestamp == other._timestamp)
        return 0;
    return _timestamp < other._timestamp ? -1 : 1;
}

int KDRBookmark::timestampDescendingComparator(const KDRBookmark &other) const
{
    return -timestampAscendingComparator(other);
}

void KDRBookmark::loadFromDictionary(const QVariantMap &dictionary)
{
    Q_UNUSED(dictionary)
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
           ItemDictionary::isSameText(_uuid, other._uuid);
}

std::shared_ptr<Image> KDRBookmark::imageForCellSize(const QSizeF &size)
{
    Q_UNUSED(size)
    return nullptr;
}

std::shared_ptr<Image> KDRBookmark::loadIconForFileScaledTo(const QString &path, const QSizeF &size)
{
    std::shared_ptr<Image> icon = Workspace::iconForFile(path);
    if (icon && !size.isNull()) {
        icon->setScalesWhenResized(true);
        icon->setSize(size);
    }
    return icon;
}

void KDRBookmark::encodeWithCoder(KeyedArchiver &coder) const
{
    coder.encodeValueForKey(title(), QStringLiteral("_title"));
    coder.encodeValueForKey(_uuid, QStringLiteral("_uuid"));
}

void KDRBookmark::initWithCoder(const KeyedUnarchiver &coder)
{
    init();
    _title = coder.decodeStringForKey(QStringLiteral("_title"));
    _uuid = coder.decodeStringForKey(QStringLiteral("_uuid"));
    _timestamp = CalendarDate();
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
    copy._title = title();
    copy._uuid = _uuid;
    copy._timestamp = _timestamp;
}
