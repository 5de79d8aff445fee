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
using Maker = KDRBookmarkPtr (*)(const QVariantMap &);

template <class Item>
KDRBookmarkPtr anyItem(const QVariantMap &dictionary)
{
    return Item::bookmarkFromDictionary(dictionary);
}

// None when nothing names the item in a list.
template <class Item>
KDRBookmarkPtr titledItem(const QVariantMap &dictionary)
{
    KDRBookmarkPtr item = Item::bookmarkFromDictionary(dictionary);
    return item->title().isEmpty() ? nullptr : item;
}

// Null for an unknown kind.
Maker makerFor(const QVariantMap &dictionary)
{
    // The browser names two of its folders by words of their own. People and groups always have a title, and it is not
    // asked for yet: the contacts may still be coming.
    static const QHash<QString, Maker> makers{
        {ItemDictionary::listType, titledItem<WayfoldBookmarkFolder>},
        {QStringLiteral("BookmarksBar"), titledItem<WayfoldBookmarkFolder>},
        {QStringLiteral("BookmarksMenu"), titledItem<WayfoldBookmarkFolder>},
        {ItemDictionary::leafType, titledItem<WayfoldBookmarkURL>},
        {ItemDictionary::noteType, titledItem<WayfoldBookmarkNote>},
        {ItemDictionary::personType, anyItem<WayfoldBookmarkABPerson>},
        {ItemDictionary::groupType, anyItem<WayfoldBookmarkABGroup>},
    };
    return makers.value(ItemDictionary::string(dictionary, ItemDictionary::typeKey));
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
    return makerFor(dictionary) == Maker(titledItem<WayfoldBookmarkFolder>);
}

KDRBookmarkPtr ItemCodec::itemFromDictionary(const QVariantMap &dictionary) const
{
    const Maker make = makerFor(dictionary);
    return make ? make(dictionary) : nullptr;
}

KDRBookmarkPtr ItemCodec::itemFromHistoryDictionary(const QVariantMap &dictionary) const
{
    return titledItem<WayfoldHistoryURL>(dictionary);
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
                WayfoldToolkit::localizedString(QStringLiteral("Related Bookmarks"))),
            WayfoldHistoryAutoFolder::bookmarkWithTitle(
                WayfoldToolkit::localizedString(QStringLiteral("Related History")))};
}
