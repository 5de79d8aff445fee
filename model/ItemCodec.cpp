#include "model/ItemCodec.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/ItemDictionary.h"
#include "model/WayfoldABEntry.h"
#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "model/WayfoldBookmarkAutoFolder.h"
#include "model/WayfoldBookmarkEmail.h"
#include "model/WayfoldBookmarkFile.h"
#include "model/WayfoldBookmarkNote.h"
#include "model/WayfoldHistoryAutoFolder.h"
#include "model/WayfoldHistoryURL.h"

#include <QHash>

namespace
{
// What a word stands for.
struct Kind
{
    KDRBookmarkPtr (*make)(const QVariantMap &) = nullptr; // null: unknown
    QString (*title)(const QVariantMap &) = nullptr;       // null: it always has one
};

template <class Item>
KDRBookmarkPtr make(const QVariantMap &dictionary)
{
    return Item::bookmarkFromDictionary(dictionary);
}

QString folderTitle(const QVariantMap &dictionary)
{
    return ItemDictionary::string(dictionary, ItemDictionary::titleKey);
}

QString leafTitle(const QVariantMap &dictionary)
{
    return ItemDictionary::string(ItemDictionary::dictionary(dictionary, ItemDictionary::uriDictionaryKey),
                                  ItemDictionary::uriTitleKey);
}

Kind kindOf(const QVariantMap &dictionary)
{
    static const Kind folder{make<WayfoldBookmarkFolder>, folderTitle};
    static const QHash<QString, Kind> kinds{
        {ItemDictionary::listType, folder},
        {QStringLiteral("BookmarksBar"), folder}, // so the browser names two of its own
        {QStringLiteral("BookmarksMenu"), folder},
        {ItemDictionary::leafType, {make<WayfoldBookmarkURL>, leafTitle}},
        {ItemDictionary::noteType, {make<WayfoldBookmarkNote>, leafTitle}},
        {ItemDictionary::personType, {make<WayfoldBookmarkABPerson>}},
        {ItemDictionary::groupType, {make<WayfoldBookmarkABGroup>}},
    };
    return kinds.value(ItemDictionary::string(dictionary, ItemDictionary::typeKey));
}

template <class... Items>
void registerClasses()
{
    (KeyedUnarchiver::registerClass(Items().classNameForCoder(), [] { return std::make_shared<Items>(); }), ...);
}
} // namespace

void ItemCodec::install()
{
    static const ItemCodec codec;
    setCurrent(&codec);
    registerClasses<KDRBookmark, WayfoldBookmarkFolder, WayfoldBookmarkURL, WayfoldBookmarkFile, WayfoldBookmarkEmail,
                    WayfoldBookmarkNote, WayfoldHistoryURL, WayfoldAutoFolder, WayfoldBookmarkAutoFolder,
                    WayfoldHistoryAutoFolder, WayfoldABEntry, WayfoldBookmarkABPerson, WayfoldBookmarkABGroup>();
}

bool ItemCodec::isFolder(const QVariantMap &dictionary) const
{
    return kindOf(dictionary).make == make<WayfoldBookmarkFolder>;
}

bool ItemCodec::isItem(const QVariantMap &dictionary) const
{
    const Kind kind = kindOf(dictionary);
    return kind.make && (!kind.title || !kind.title(dictionary).isEmpty());
}

KDRBookmarkPtr ItemCodec::itemFromDictionary(const QVariantMap &dictionary) const
{
    return isItem(dictionary) ? kindOf(dictionary).make(dictionary) : nullptr;
}

KDRBookmarkPtr ItemCodec::itemFromHistoryDictionary(const QVariantMap &dictionary) const
{
    WayfoldHistoryURLPtr entry = WayfoldHistoryURL::bookmarkFromDictionary(dictionary);
    return entry->title().isEmpty() ? nullptr : entry;
}

WayfoldBookmarkURLPtr ItemCodec::linkForURL(const Url &url) const
{
    if (url.isFileURL())
        return std::make_shared<WayfoldBookmarkFile>();
    if (url.scheme() == QLatin1String("mailto"))
        return std::make_shared<WayfoldBookmarkEmail>();
    return std::make_shared<WayfoldBookmarkURL>();
}

std::vector<WayfoldBookmarkFolderPtr> ItemCodec::autoFolders() const
{
    return {WayfoldBookmarkAutoFolder::bookmarkWithTitle(
                WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("Related Bookmarks")))),
            WayfoldHistoryAutoFolder::bookmarkWithTitle(
                WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("Related History"))))};
}
