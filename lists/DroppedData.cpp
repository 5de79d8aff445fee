#include "lists/DroppedData.h"

#include "lists/ItemMimeData.h"
#include "lists/PasteboardTypes.h"
#include "platform/files/PropertyList.h"

#include <QMimeData>
#include <QStringDecoder>
#include <QSysInfo>
#include <QUrl>
#include <algorithm>
#include <vector>

namespace
{
// What has no scheme is none.
Url addressFromText(const QString &text)
{
    const Url url = DroppedData::urlFromText(text.trimmed());
    return url.scheme().isEmpty() ? Url() : url;
}

bool isFileAddress(const QString &address)
{
    return Url::URLWithString(address).isFileURL();
}

QVariantList listOf(const QStringList &texts)
{
    return {texts.cbegin(), texts.cend()};
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
    return offersCards() ||
           std::any_of(types.cbegin(), types.cend(), [this](const QString &type) { return offers(type); });
}

QString DroppedData::stringForType(const QString &type) const
{
    if (!offers(type))
        return {};
    if (_data.hasFormat(type))
        return QString::fromUtf8(_data.data(type));
    return type == PasteboardTypes::NSURLPboardType ? foreignLinks().addresses.constFirst() : _data.text();
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

// Null when there is none. Some applications write a character set behind the type.
QString DroppedData::cardFormat() const
{
    if (!isForeign())
        return {};
    const QStringList formats = _data.formats();
    for (const QString &type : {PasteboardTypes::vCard, PasteboardTypes::oldVCard, PasteboardTypes::directory}) {
        const auto found = std::find_if(formats.cbegin(), formats.cend(), [&type](const QString &format) {
            return format.section(u';', 0, 0).trimmed().compare(type, Qt::CaseInsensitive) == 0;
        });
        if (found != formats.cend())
            return *found;
    }
    return {};
}

bool DroppedData::offersCards() const
{
    return !cardFormat().isNull();
}

QByteArray DroppedData::cards() const
{
    const QString format = cardFormat();
    return format.isNull() ? QByteArray() : _data.data(format);
}

bool DroppedData::isForeignFileHere(qsizetype place) const
{
    if (!isForeign() || !areAllFiles())
        return false;
    const QString host = Url::URLWithString(foreignLinks().addresses.value(place)).host();
    return host.isNull() || host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 ||
           host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

QVariantList DroppedData::links() const
{
    return {QVariant(listOf(foreignLinks().addresses)), QVariant(listOf(foreignLinks().titles))};
}

// --- Data of other applications
// ---------------------------------------------------------------------------------------

DroppedData::Links DroppedData::linksFromUriList(const QString &text)
{
    Links links;
    for (const QStringView line : QStringView(text).split(u'\n')) {
        if (line.startsWith(u'#'))
            continue;
        if (const Url url = addressFromText(line.toString()); !url.isNull())
            links.addresses.append(url.absoluteString());
    }
    links.titles.resize(links.addresses.size());
    return links;
}

// Lines of address and title in turn.
DroppedData::Links DroppedData::linksFromLines(const QString &text)
{
    Links links;
    const QStringList lines = text.split(u'\n');
    for (qsizetype i = 0; i < lines.size(); i += 2) {
        const Url url = addressFromText(lines.at(i));
        if (url.isNull())
            continue;
        links.addresses.append(url.absoluteString());
        links.titles.append(lines.value(i + 1).simplified());
    }
    return links;
}

QString DroppedData::textForType(const QString &type) const
{
    return QString::fromUtf8(_data.data(type));
}

// In UTF-16, with or without a closing zero.
QString DroppedData::wideTextForType(const QString &type) const
{
    QString text = QStringDecoder(QStringDecoder::Utf16)(_data.data(type));
    return text.remove(QChar::Null);
}

// Where no title is named as such, the text of a link may be the plain text; from elsewhere, and from a picture, that
// is an address once more.
QString DroppedData::titleBeside(const QString &address) const
{
    for (const QString &named : {textForType(PasteboardTypes::netscapeUrl).section(u'\n', 1, 1),
                                 wideTextForType(PasteboardTypes::mozillaUrlTitle)}) {
        if (QString title = named.simplified(); !title.isEmpty())
            return title;
    }
    const QString text = textForType(PasteboardTypes::plainText).simplified();
    const bool isAddress = text.contains(QLatin1String("://")) || urlFromText(text).absoluteString() == address;
    return isAddress ? QString() : text;
}

// The type that names the most addresses counts, of those that name as many the one with the better titles.
DroppedData::Links DroppedData::readLinks() const
{
    Links best;
    for (Links &links : std::vector<Links>{
             linksFromLines(wideTextForType(PasteboardTypes::mozillaUrl)),
             linksFromUriList(textForType(PasteboardTypes::uriList)),
             linksFromLines(textForType(PasteboardTypes::netscapeUrl).section(u'\n', 0, 1)),
             linksFromLines(wideTextForType(PasteboardTypes::mozillaTab)),
         }) {
        if (links.addresses.size() > best.addresses.size())
            best = std::move(links);
    }
    if (best.addresses.size() == 1 && best.titles.constFirst().isEmpty())
        best.titles.first() = titleBeside(best.addresses.constFirst());
    return best;
}

const DroppedData::Links &DroppedData::foreignLinks() const
{
    if (!_links)
        _links = readLinks();
    return *_links;
}

bool DroppedData::areAllFiles() const
{
    const QStringList &addresses = foreignLinks().addresses;
    return !addresses.isEmpty() && std::all_of(addresses.cbegin(), addresses.cend(), isFileAddress);
}

// Files come as file names, one address as an address (with its title when it has one), several with their titles.
bool DroppedData::foreignDataOffers(const QString &type) const
{
    if (type == PasteboardTypes::NSStringPboardType)
        return _data.hasText();
    if (type == PasteboardTypes::NSFilenamesPboardType)
        return areAllFiles();
    const Links &links = foreignLinks();
    if (links.addresses.isEmpty() || areAllFiles())
        return false;
    const bool withTitles = links.addresses.size() > 1 || !links.titles.constFirst().isEmpty();
    return type == (withTitles ? PasteboardTypes::WebURLsWithTitles : PasteboardTypes::NSURLPboardType);
}

QVariantList DroppedData::foreignPropertyList(const QString &type) const
{
    if (type == PasteboardTypes::WebURLsWithTitles)
        return links();
    QVariantList list;
    if (type == PasteboardTypes::NSFilenamesPboardType) {
        for (const QString &address : foreignLinks().addresses)
            list.append(Url::URLWithString(address).path());
    }
    return list;
}
