#include "model/BookmarkRecords.h"

#include "model/TextSearch.h"
#include "model/UUIDSearch.h"
#include "platform/base/StringRules.h"
#include "platform/base/Url.h"

#include <algorithm>
#include <numeric>

namespace
{
// Between title and address in the search form; no text in UTF-8 holds it.
constexpr char separator = '\xff';

bool isAddress(QByteArrayView text)
{
    Url::Host host;
    return Url::isPlainAddress(text, &host) || !Url::URLWithString(QString::fromUtf8(text)).isNull();
}
} // namespace

BookmarkRecords::BookmarkRecords() : _texts(std::make_shared<TextBlocks>()) {}

BookmarkRecords::BookmarkRecords(const BookmarkRecords &former) : _texts(former._texts)
{
    _records.reserve(former.count());
}

unsigned BookmarkRecords::begin()
{
    _records.emplace_back();
    return count() - 1;
}

void BookmarkRecords::end(unsigned number, Kind kind, const Texts &texts)
{
    if (kind != Kind::Folder)
        _records.resize(number + 1);
    _scratch.resize(0);
    _scratch.append(texts.title).append(texts.value).append(texts.uuid);
    const qsizetype formStart = _scratch.size();
    StringRules::appendSearchForm(texts.title, _scratch);
    // What is no address is not searched.
    if (kind == Kind::Link && isAddress(texts.value)) {
        _scratch.append(separator);
        StringRules::appendSearchForm(texts.value, _scratch);
    }
    Record &record = _records[number];
    record.text = _texts->add(_scratch);
    record.titleLength = quint32(texts.title.size());
    record.valueLength = quint32(texts.value.size());
    record.uuidLength = quint32(texts.uuid.size());
    record.formLength = quint32(_scratch.size() - formStart);
    record.behind = count();
    record.kind = kind;
}

void BookmarkRecords::appendFrom(const BookmarkRecords &former, unsigned number)
{
    _records.push_back(former._records[number]);
    _records.back().behind = count();
}

std::shared_ptr<BookmarkRecords> BookmarkRecords::withoutWaste() const
{
    auto copy = std::make_shared<BookmarkRecords>();
    copy->_records = _records;
    for (Record &record : copy->_records)
        record.text = copy->_texts->add({record.text, record.length()});
    return copy;
}

QString BookmarkRecords::title(unsigned number) const
{
    return StringRules::fromUtf8(_records[number].title());
}

QString BookmarkRecords::value(unsigned number) const
{
    return StringRules::fromUtf8(_records[number].value());
}

QString BookmarkRecords::uuid(unsigned number) const
{
    const QByteArrayView uuid = _records[number].uuid();
    return uuid.isEmpty() ? QString() : StringRules::fromUtf8(uuid);
}

bool BookmarkRecords::isFoundWithin(unsigned number, const TextSearch &search) const
{
    const auto first = _records.begin() + number;
    return std::any_of(first, _records.begin() + first->behind, [&](const Record &record) {
        return record.kind == Kind::Person || record.kind == Kind::Group || search.isFoundInSearchForm(record.form());
    });
}

bool BookmarkRecords::isWantedWithin(unsigned number, const UUIDSearch &search) const
{
    const auto first = _records.begin() + number;
    return std::any_of(first, _records.begin() + first->behind,
                       [&](const Record &record) { return record.uuidLength > 0 && search.isWanted(record.uuid()); });
}

double BookmarkRecords::wasted() const
{
    const std::size_t used =
        std::accumulate(_records.begin(), _records.end(), std::size_t(0),
                        [](std::size_t sum, const Record &record) { return sum + std::size_t(record.length()); });
    return _texts->total() ? 1.0 - double(used) / double(_texts->total()) : 0.0;
}
