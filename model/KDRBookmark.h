#pragma once

#include "model/TreeTelling.h"
#include "model/UnknownKeys.h"
#include "platform/base/CalendarDate.h"
#include "platform/files/KeyedArchiver.h"
#include "platform/widgets/OutlineItem.h"

#include <QSizeF>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

class Image;
class KDRBookmark;
class TextSearch;
class WayfoldBookmarkFolder;

using KDRBookmarkPtr = std::shared_ptr<KDRBookmark>;
using WayfoldBookmarkFolderPtr = std::shared_ptr<WayfoldBookmarkFolder>;

// A row of a list: the base of links, notes, folders and all other items. It holds what every item has and gives the
// default answer to whatever a list, a dialog or the store asks an item without knowing its kind.
//
// Items are always held by shared pointers; a folder owns its children, an item only points back to its folder.
class KDRBookmark : public OutlineItem, public KeyedCoding, public std::enable_shared_from_this<KDRBookmark>
{
protected:
    struct Blank
    {};

public:
    // The numbers are fixed: tables of the lists go by them.
    enum Type {
        NoType = 0,
        FolderType = 1, // smart folders too
        WebLinkType = 2,
        FileLinkType = 3,
        NoteType = 4,
        EmailLinkType = 5,
        HistoryEntryType = 6,
        PersonType = 7,
        GroupType = 8,
    };

    // As init() leaves it.
    KDRBookmark();
    // For a new item that is given all its fields at once: without identifier and time stamp, which take time to make.
    explicit KDRBookmark(Blank) {}
    KDRBookmark(const KDRBookmark &) = delete;
    KDRBookmark &operator=(const KDRBookmark &) = delete;
    ~KDRBookmark() override;

    static KDRBookmarkPtr bookmarkWithTitle(const QString &title);

    // No title, no parent, the present time and a fresh identifier.
    virtual void init();
    void initWithTitle(const QString &title);
    // None: each kind has its own way to be made from a dictionary.
    static KDRBookmarkPtr initializeFromDictionary(const QVariantMap &dictionary);
    // Takes a fresh identifier and returns it.
    QString createUUID();

    // Null: no title, which is not the same as an empty one.
    virtual QString title() const { return _title; }
    void setTitle(const QString &title);
    // Copies share the identifier of their source.
    QString uuid() const;
    void setUUID(const QString &uuid);
    // Whether anybody may know the identifier: a new item's is made when it is first asked for.
    bool isUUIDMade() const { return !_isUUIDDue; }
    // When the item was made, or last visited, in the local time zone; invalid: none.
    CalendarDate timestamp() const;
    void setTimestamp(const CalendarDate &timestamp);
    // The same in milliseconds since 1970, GMT, which takes no calendar.
    static constexpr qint64 noTimestamp = std::numeric_limits<qint64>::min();
    qint64 timestampInMilliseconds() const { return _timestamp; }
    void setTimestampInMilliseconds(qint64 timestamp);
    // The folder that adopted this item last, whether or not it still holds it. None once that folder is gone.
    WayfoldBookmarkFolderPtr parent() const;
    // Anything but a folder, none included, is ignored: only another folder takes an item away from its parent.
    void setParent(const KDRBookmarkPtr &parent);
    // Of the folders that hold this item the one that took it in last: through it the item tells what changes. Null
    // when that one has given it away again.
    const KDRBookmark *holder() const { return _holder; }

    virtual Type type() const { return NoType; }
    // The kind's English word; null when it has none.
    virtual QString typeDescription() const { return {}; }
    virtual bool isFolder() const { return false; }
    // This item as a folder; none when it is not.
    virtual WayfoldBookmarkFolderPtr asFolder() { return nullptr; }
    // What the item holds: a Url for links, a QString for notes and folders; invalid when the kind holds nothing.
    virtual QVariant value() const { return {}; }
    virtual QString valueAsString() const { return {}; }
    // A value of another type than the kind's is ignored; an invalid one stands for none.
    virtual void setValue(const QVariant &value);
    virtual QString tooltipText() const { return {}; }

    // This item or the first of its descendants, depth first, that has the identifier. None for the empty one: items
    // without an identifier cannot be told apart by it.
    virtual KDRBookmarkPtr findByUUID(const QString &uuid);
    // Whether this item lies anywhere below `item`.
    bool isChildOf(const KDRBookmarkPtr &item) const;
    // The position in the parent; -1 without a parent, or when the parent no longer holds the item.
    int childIsAtIndex() const;
    // The position among a folder's children of that very item, else of the first equal to it; -1 when there is
    // neither.
    virtual int indexOfChild(const KDRBookmark & /*child*/) const { return -1; }

    virtual bool acceptsDroppedItems() const;
    // Whether the item belongs into the item file.
    virtual bool canBePersistent() const;
    // Lets a smart folder fill itself before it is looked into.
    virtual void ensureUpToDate() {}
    virtual bool refresh() { return true; }

    // Whether the search finds this very item, its descendants left aside.
    virtual bool matches(const TextSearch &search) const;
    bool matchesSubstring(const QString &substring) const;
    // Every match of this item and its descendants, in the order of the rows.
    std::vector<KDRBookmarkPtr> bookmarksWithSubstring(const QString &substring);
    virtual void appendMatches(const TextSearch &search, std::vector<KDRBookmarkPtr> &found);

    // Negative, 0 or positive, as this item comes before, with or after the other. No title counts as an empty one, no
    // time stamp as the earliest.
    int titleComparator(const KDRBookmark &other) const;
    int timestampAscendingComparator(const KDRBookmark &other) const;
    int timestampDescendingComparator(const KDRBookmark &other) const;

    // (Re)initialises the item; what is missing or of another type counts as none.
    virtual void loadFromDictionary(const QVariantMap &dictionary);
    // Keeps what the dictionary, which the item was read from, or agrees with by now, says beyond what the item has of
    // it. It is written back, and goes with copies and archives.
    virtual void keepUnknown(const QVariantMap &dictionary);
    // How many dictionaries and lists of that lie one in another below the item's own dictionary.
    virtual int depthOfUnknown() const { return _unknownKeys.depth(); }
    // `forSaving`: for the item file, so folders leave out what does not belong there.
    virtual void writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const;
    QVariantMap createDictionary(bool forSaving) const;

    // Of the same class, with the same identifier and without a parent.
    KDRBookmarkPtr copy() const;
    // One-sided: the other may be of a derived class.
    virtual bool isEqual(const KDRBookmark &other) const;
    bool isEqual(const KDRBookmarkPtr &other) const { return other && isEqual(*other); }

    // None: the item is shown without an image.
    virtual std::shared_ptr<Image> imageForCellSize(const QSizeF &size);
    // The desktop's icon of a file, a new image each time (see FileIcons); the zero size keeps the icon's own.
    static std::shared_ptr<Image> loadIconForFileScaledTo(const QString &path, const QSizeF &size);
    // Whether the user accepted the kind's dialog; false when it has none.
    virtual bool editViaDialog() { return false; }

    QString classNameForCoder() const override { return QStringLiteral("KDRBookmark"); }
    void encodeWithCoder(KeyedArchiver &coder) const override;
    // The item has no time stamp and no parent then.
    void initWithCoder(const KeyedUnarchiver &coder) override;

protected:
    // A blank item of this item's class.
    virtual KDRBookmarkPtr makeNew() const;
    virtual bool isSameKindAs(const KDRBookmark &other) const;
    // `used`: what the item writes itself.
    void keepUnknownKeys(const QVariantMap &dictionary, const QVariantMap &used);
    // What a search looks at beside the title; none for most kinds. `searchedTextChanged` when it is another.
    virtual QString searchedText() const { return {}; }
    void searchedTextChanged() { _searchForm = QByteArray(); }
    // Those who are told of what changes in this item, from its own up to the root's.
    bool hasListeners() const;
    TreeTelling::Listeners listeners() const;
    virtual const TreeTelling::Listeners &ownListeners() const;
    // Said by the folder that holds the item: see holder().
    static void setHolder(KDRBookmark &item, KDRBookmark *holder) { item._holder = holder; }
    // Changes a field by `apply`, and tells of it. Who sets what the field has already is not to call this.
    template <class Apply>
    void changeField(TreeObserver::Field field, Apply apply)
    {
        if (hasListeners())
            tellWhile(field, apply);
        else
            apply();
    }
    // What is shown of the item, and kept elsewhere, is another.
    void tellAppearanceChanged();
    // Gives the fields of this item to a new one of the same class.
    virtual void copyTo(KDRBookmark &copy) const;

private:
    void tellWhile(TreeObserver::Field field, const std::function<void()> &apply);

    QString _title;
    // Made on demand: it takes time, and most items of a large list are never asked.
    mutable QString _uuid;
    mutable bool _isUUIDDue = false;
    // Of title and searched text; null until the item is searched for the first time.
    mutable QByteArray _searchForm;
    std::weak_ptr<KDRBookmark> _parent;
    KDRBookmark *_holder = nullptr;
    qint64 _timestamp = noTimestamp;
    UnknownKeys _unknownKeys;
};
