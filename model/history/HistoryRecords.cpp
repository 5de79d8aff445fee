#include "model/history/HistoryRecords.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/TextSearch.h"
#include "model/UUIDSearch.h"
#include "platform/base/StringRules.h"
#include "platform/base/Url.h"

#include <cmath>

namespace
{
// Between title and address in the search form; no text in UTF-8 holds it.
constexpr char separator = '\xff';

// 1 January 2001, 00:00:00 GMT, in seconds of the system's clock.
constexpr double referenceDate = 978307200.0;
// Some eight thousand years either way; no calendar shows what lies beyond.
constexpr double furthestDate = 2.5e11;

// The host of an address; none when it has none. `isAddress`: whether it is an address at all.
QByteArrayView hostOf(QByteArrayView address, bool *isAddress, QByteArray &memory)
{
    Url::Host host;
    *isAddress = Url::isPlainAddress(address, &host);
    if (*isAddress)
        return address.sliced(host.start, host.length);
    const Url url = Url::URLWithString(QString::fromUtf8(address));
    *isAddress = !url.isNull();
    memory = url.hostView().toUtf8();
    return memory;
}
} // namespace

qint64 HistoryRecords::timestampFromSeconds(double seconds)
{
    if (!(std::abs(seconds) <= furthestDate))
        return noDate;
    return qint64(std::floor((seconds + referenceDate) * 1000.0));
}

HistoryRecords::HistoryRecords() : _texts(std::make_shared<Texts>()) {}

HistoryRecords::HistoryRecords(const HistoryRecords &former, std::size_t expected) : _texts(former._texts)
{
    _records.reserve(expected);
}

bool HistoryRecords::append(QByteArrayView title, QByteArrayView address, QByteArrayView secondsText)
{
    if (title.isEmpty() || address.isEmpty())
        return false;
    bool isAddress = false;
    QByteArray memory;
    const QByteArrayView host = hostOf(address, &isAddress, memory);

    _scratch.resize(0);
    _scratch.append(title).append(address);
    const qsizetype formStart = _scratch.size();
    StringRules::appendSearchForm(title, _scratch);
    _scratch.append(separator);
    // What is no address is kept as an identifier, but there is no address to be searched.
    if (isAddress)
        StringRules::appendSearchForm(address, _scratch);

    Record record;
    record.text = _texts->blocks.add(_scratch);
    record.visited = timestampFromSeconds(StringRules::doubleValue(secondsText));
    record.titleLength = quint32(title.size());
    record.addressLength = quint32(address.size());
    record.formLength = quint32(_scratch.size() - formStart);
    record.site = _texts->siteNumber(host);
    record.serialNumber = _texts->nextSerialNumber++;
    _records.push_back(record);
    _textSize += std::size_t(_scratch.size());
    return true;
}

bool HistoryRecords::appendIfSame(const HistoryRecords &former, unsigned number, QByteArrayView title,
                                  QByteArrayView address, QByteArrayView secondsText)
{
    const Record &record = former._records[number];
    const bool isSame = QByteArrayView(record.text, qsizetype(record.titleLength)) == title &&
                        QByteArrayView(record.text + record.titleLength, qsizetype(record.addressLength)) == address &&
                        record.visited == timestampFromSeconds(StringRules::doubleValue(secondsText));
    if (isSame)
        appendFrom(former, number, number + 1);
    return isSame;
}

void HistoryRecords::appendFrom(const HistoryRecords &former, unsigned first, unsigned last)
{
    const auto begin = former._records.begin() + first;
    const auto end = former._records.begin() + last;
    _records.insert(_records.end(), begin, end);
    for (auto record = begin; record != end; ++record)
        _textSize += record->titleLength + record->addressLength + record->formLength;
}

void HistoryRecords::appendCopy(const HistoryRecords &other, unsigned number)
{
    Record record = other._records[number];
    const qsizetype size = qsizetype(record.titleLength) + record.addressLength + record.formLength;
    record.text = _texts->blocks.add({record.text, size});
    record.site = _texts->siteNumberOfName(other.siteName(record.site));
    record.serialNumber = _texts->nextSerialNumber++;
    _records.push_back(record);
    _textSize += std::size_t(size);
}

std::shared_ptr<HistoryRecords> HistoryRecords::withoutWaste() const
{
    auto copy = std::make_shared<HistoryRecords>();
    copy->_records.reserve(_records.size());
    for (unsigned number = 0; number < count(); ++number)
        copy->appendCopy(*this, number);
    return copy;
}

QString HistoryRecords::title(unsigned index) const
{
    const Record &record = _records[index];
    return StringRules::fromUtf8({record.text, qsizetype(record.titleLength)});
}

QString HistoryRecords::address(unsigned index) const
{
    const Record &record = _records[index];
    return StringRules::fromUtf8({record.text + record.titleLength, qsizetype(record.addressLength)});
}

bool HistoryRecords::matches(unsigned index, const TextSearch &search) const
{
    const Record &record = _records[index];
    return search.isFoundInSearchForm(
        {record.text + record.titleLength + record.addressLength, qsizetype(record.formLength)});
}

bool HistoryRecords::isWanted(unsigned index, const UUIDSearch &search) const
{
    const Record &record = _records[index];
    return search.isWanted(QByteArrayView(record.text + record.titleLength, qsizetype(record.addressLength)));
}

double HistoryRecords::wasted() const
{
    return _texts->blocks.total() ? 1.0 - double(_textSize) / double(_texts->blocks.total()) : 0.0;
}

unsigned HistoryRecords::Texts::siteNumber(QByteArrayView host)
{
    if (host.isEmpty())
        return noSite;
    if (lastNumber != noSite && host == lastHost)
        return lastNumber;
    lastHost = host.toByteArray();
    const auto known = siteNumbers.constFind(lastHost);
    if (known != siteNumbers.constEnd())
        return lastNumber = *known;
    // Several hosts may be one site.
    lastNumber = siteNumberOfName(WayfoldToolkit::hostNameToTrackFromHostName(QString::fromUtf8(host)));
    siteNumbers.insert(lastHost, lastNumber);
    return lastNumber;
}

unsigned HistoryRecords::Texts::siteNumberOfName(const QString &name)
{
    if (name.isNull())
        return noSite;
    const auto known = siteNumbersByName.constFind(name);
    if (known != siteNumbersByName.constEnd())
        return *known;
    const auto number = unsigned(siteNames.size());
    siteNames.push_back(name);
    siteNumbersByName.insert(name, number);
    return number;
}
