#include "lists/DroppedData.h"

#include "lists/ItemMimeData.h"
#include "lists/PasteboardTypes.h"
#include "platform/files/PropertyList.h"

#include <QMimeData>
#include <QUrl>
#include <algorithm>

namespace
{
bool isFileAddress(const QString &address)
{
    return Url::URLWithString(address).isFileURL();
}

// Lines of address and title in turn, in UTF-16 with or without a closing zero.
QStringList mozillaLines(const QByteArray &data)
{
    QString text(reinterpret_cast<const QChar *>(data.constData()), data.size() / qsizetype(sizeof(char16_t)));
    while (text.endsWith(QChar::Null))
        text.chop(1);
    return text.split(QLatin1Char('\n'));
}
} // namespace

Url DroppedData::urlFromText(const QString &text)
{
    const Url url = Url::URLWithString(text);
    return url.isNull() ? Url::URLWithString(QString::fromLatin1(QUrl(text).toEncoded())) : url;
}

bool DroppedData::isForeign() const
{
    const QStringList &types = PasteboardTypes::acceptableDragTypes();
    return std::none_of(types.cbegin(), types.cend(), [this](const QString &type) { return _data.hasFormat(type); });
}

bool DroppedData::offers(const QString &type) const
{
    return _data.hasFormat(type) || (isForeign() && foreignDataOffers(type));
}

bool DroppedData::offersAnyOf(const QStringList &types) const
{
    return std::any_of(types.cbegin(), types.cend(), [this](const QString &type) { return offers(type); });
}

QString DroppedData::stringForType(const QString &type) const
{
    if (!offers(type))
        return {};
    if (_data.hasFormat(type))
        return QString::fromUtf8(_data.data(type));
    return type == PasteboardTypes::NSURLPboardType ? addresses().constFirst() : _data.text();
}

QVariantList DroppedData::propertyListForType(const QString &type) const
{
    if (!offers(type))
        return {};
    return _data.hasFormat(type) ? PropertyList::fromData(_data.data(type)).toList() : foreignPropertyList(type);
}

QVariantList DroppedData::itemDictionaries() const
{
    if (!_data.hasFormat(PasteboardTypes::dictionariesWithVisits))
        return propertyListForType(PasteboardTypes::BookmarkDictionaryList);
    return PropertyList::fromData(_data.data(PasteboardTypes::dictionariesWithVisits)).toList();
}

KDRBookmarkPtr DroppedData::draggedItem(std::size_t place) const
{
    const auto *own = qobject_cast<const ItemMimeData *>(&_data);
    return own && place < own->items().size() ? own->items()[place].lock() : nullptr;
}

QVariantList DroppedData::links() const
{
    QStringList titles;
    const QStringList urls = addresses(&titles);
    return {QVariant(QVariantList(urls.cbegin(), urls.cend())), QVariant(QVariantList(titles.cbegin(), titles.cend()))};
}

QStringList DroppedData::addresses(QStringList *titles) const
{
    QStringList found;
    if (_data.hasFormat(PasteboardTypes::uriList)) {
        const QString text = QString::fromUtf8(_data.data(PasteboardTypes::uriList));
        const QStringList lines = text.split(QLatin1Char('\n'));
        for (const QString &line : lines) {
            const QString address = line.trimmed();
            if (!address.isEmpty() && !address.startsWith(QLatin1Char('#')))
                found.append(urlFromText(address).absoluteString());
        }
        if (titles && found.size() == 1)
            *titles = titleBeside(found.first());
    }
    if (_data.hasFormat(PasteboardTypes::mozillaUrl)) {
        const QStringList lines = mozillaLines(_data.data(PasteboardTypes::mozillaUrl));
        QStringList urls;
        QStringList names;
        for (qsizetype i = 0; i < lines.size(); i += 2) {
            const QString address = lines.at(i).trimmed();
            const Url url = urlFromText(address);
            if (url.isNull())
                continue;
            urls.append(url.absoluteString());
            names.append(lines.value(i + 1).trimmed());
        }
        found = urls;
        if (titles)
            *titles = names;
    }
    found.removeAll(QString());
    return found;
}

// A link that is dragged out of a page brings its text along; from elsewhere, and from a picture, comes an address once
// more. Empty for none.
QStringList DroppedData::titleBeside(const QString &address) const
{
    const QString text = QString::fromUtf8(_data.data(PasteboardTypes::plainText)).simplified();
    const bool isAddress = text.contains(QLatin1String("://")) || urlFromText(text).absoluteString() == address;
    return text.isEmpty() || isAddress ? QStringList() : QStringList(text);
}

bool DroppedData::areAllFiles(const QStringList &addresses) const
{
    return !addresses.isEmpty() && std::all_of(addresses.cbegin(), addresses.cend(), isFileAddress);
}

// Files come as file names, one address as an address (with its title when it has one), several with their titles.
bool DroppedData::foreignDataOffers(const QString &type) const
{
    QStringList titles;
    const QStringList urls = addresses(&titles);
    if (type == PasteboardTypes::NSStringPboardType)
        return _data.hasText();
    if (type == PasteboardTypes::NSFilenamesPboardType)
        return areAllFiles(urls);
    if (urls.isEmpty() || areAllFiles(urls))
        return false;
    const bool withTitles = urls.size() > 1 || !titles.isEmpty();
    return type == (withTitles ? PasteboardTypes::WebURLsWithTitles : PasteboardTypes::NSURLPboardType);
}

QVariantList DroppedData::foreignPropertyList(const QString &type) const
{
    QVariantList list;
    if (type == PasteboardTypes::WebURLsWithTitles)
        return links();
    if (type == PasteboardTypes::NSFilenamesPboardType) {
        const QStringList urls = addresses();
        for (const QString &address : urls)
            list.append(Url::URLWithString(address).path());
    }
    return list;
}
