#include "lists/ItemMimeData.h"

#include "lists/CardFiles.h"
#include "lists/PasteboardTypes.h"
#include "platform/base/Url.h"
#include "platform/files/PropertyList.h"

#include <utility>

namespace
{
QStringList strings(const QVariant &list)
{
    QStringList texts;
    const QVariantList values = list.toList();
    for (const QVariant &value : values)
        texts.append(value.toString());
    return texts;
}
} // namespace

ItemMimeData::ItemMimeData(const QStringList &types, Provider provider, const std::vector<KDRBookmarkPtr> &items)
    : _types(types)
    , _provider(std::move(provider))
    , _items(items.cbegin(), items.cend())
{}

QStringList ItemMimeData::formats() const
{
    QStringList formats = _types;
    if (declares(PasteboardTypes::NSStringPboardType) || hasNames())
        formats.append(PasteboardTypes::plainText);
    if (hasAddresses()) {
        formats.append(PasteboardTypes::uriList);
        formats.append(PasteboardTypes::mozillaUrl);
    }
    if (!cards().isEmpty())
        formats << PasteboardTypes::vCard << PasteboardTypes::oldVCard << PasteboardTypes::uriList;
    return formats;
}

bool ItemMimeData::hasFormat(const QString &mimeType) const
{
    return formats().contains(mimeType);
}

QVariant ItemMimeData::retrieveData(const QString &mimeType, QMetaType /*type*/) const
{
    if (mimeType == PasteboardTypes::plainText && hasFormat(mimeType))
        return hasNames() ? names().join(u'\n') : _provider(PasteboardTypes::NSStringPboardType);
    if (mimeType == PasteboardTypes::uriList && hasFormat(mimeType))
        return cards().isEmpty() ? uriListData(addresses()) : cardFileData();
    if (mimeType == PasteboardTypes::mozillaUrl && hasFormat(mimeType))
        return mozillaUrlData();
    if ((mimeType == PasteboardTypes::vCard || mimeType == PasteboardTypes::oldVCard) && hasFormat(mimeType))
        return cards();
    if (!declares(mimeType))
        return {};
    const QVariant value = _provider(mimeType);
    if (!value.isValid())
        return {};
    return value.metaType() == QMetaType::fromType<QString>() ? value.toString().toUtf8() : PropertyList::toXml(value);
}

bool ItemMimeData::hasAddresses() const
{
    if (!_hasAddresses)
        _hasAddresses = !addresses().isEmpty();
    return *_hasAddresses;
}

QStringList ItemMimeData::addresses() const
{
    return strings(_provider(PasteboardTypes::mozillaUrl).toList().value(0));
}

QStringList ItemMimeData::titles() const
{
    return strings(_provider(PasteboardTypes::mozillaUrl).toList().value(1));
}

bool ItemMimeData::hasNames() const
{
    return declares(PasteboardTypes::ABPeopleUIDs) || declares(PasteboardTypes::ABGroupsUIDs);
}

QStringList ItemMimeData::names() const
{
    return strings(_provider(PasteboardTypes::plainText));
}

const QByteArray &ItemMimeData::cards() const
{
    if (!_cards)
        _cards = declares(PasteboardTypes::NSVCardPboardType)
                     ? _provider(PasteboardTypes::NSVCardPboardType).toString().toUtf8()
                     : QByteArray();
    return *_cards;
}

// The address of a file with all the cards; nothing when it cannot be written.
QByteArray ItemMimeData::cardFileData() const
{
    const QString file = CardFiles::write(CardFiles::nameForPeople(names()), cards());
    return file.isNull() ? QByteArray() : uriListData({Url::fileURLWithPath(file).absoluteString()});
}

QByteArray ItemMimeData::uriListData(const QStringList &addresses)
{
    QByteArray data;
    for (const QString &address : addresses)
        data += address.toUtf8() + "\r\n";
    return data;
}

// Lines of address and title in turn, in UTF-16.
QByteArray ItemMimeData::mozillaUrlData() const
{
    const QStringList urls = addresses();
    const QStringList names = titles();
    QStringList lines;
    for (qsizetype i = 0; i < urls.size(); ++i)
        lines << urls.at(i) << names.value(i, urls.at(i)).simplified();
    const QString text = lines.join(QLatin1Char('\n'));
    return {reinterpret_cast<const char *>(text.utf16()), text.size() * qsizetype(sizeof(char16_t))};
}
