#include "drawer/PeopleRows.h"

#include "platform/base/StringRules.h"
#include "platform/contacts/ContactStore.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace
{
bool comesBefore(const PeopleRows::RowPtr &a, const PeopleRows::RowPtr &b)
{
    const int order = a->order.compare(b->order);
    return order != 0 ? order < 0 : a->record->uniqueId < b->record->uniqueId;
}

std::vector<QByteArray> wordsOf(const QString &search)
{
    std::vector<QByteArray> words;
    const QStringList texts = search.simplified().split(u' ', Qt::SkipEmptyParts);
    for (const QString &text : texts)
        words.push_back(StringRules::searchForm(text));
    return words;
}

bool isOfAWord(char byte)
{
    return byte < 0 || byte >= 0x7f || std::isalnum(static_cast<unsigned char>(byte));
}

bool hasWordThatBegins(QByteArrayView text, QByteArrayView beginning)
{
    for (qsizetype at = text.indexOf(beginning); at >= 0; at = text.indexOf(beginning, at + 1)) {
        if (at == 0 || !isOfAWord(text[at - 1]))
            return true;
    }
    return false;
}

bool hasAll(const PeopleRows::Row &row, const std::vector<QByteArray> &words)
{
    return std::all_of(words.cbegin(), words.cend(), [&row](const QByteArray &word) {
        return StringRules::searchFormContains(row.searchForm, word);
    });
}

bool isNamed(const PeopleRows::Row &row, const std::vector<QByteArray> &words)
{
    const QByteArrayView name = QByteArrayView(row.searchForm).first(row.nameLength);
    return std::all_of(words.cbegin(), words.cend(),
                       [name](const QByteArray &word) { return hasWordThatBegins(name, word); });
}
} // namespace

void PeopleRows::takeFrom(const ContactStore &store)
{
    _records = store.people();
    const std::vector<ContactRecordPtr> groups = store.groups();
    _records.insert(_records.end(), groups.cbegin(), groups.cend());
    _made.clear();
    _made.reserve(_records.size());
    _next = 0;
    _isSorted = false;
    _isMade = false;
}

PeopleRows::RowPtr PeopleRows::makeRow(const ContactRecordPtr &record)
{
    const auto made = std::make_shared<Row>();
    Row &row = *made;
    row.record = record;
    row.type = WayfoldABEntry::EntryTypeFromAddressRecord(record);
    row.name = WayfoldABEntry::nameOfRecord(*record, row.type);
    row.order = StringRules::comparisonForm(row.name);
    row.searchForm = StringRules::searchForm(row.name);
    row.nameLength = row.searchForm.size();
    QStringList texts = {QString(), record->firstName, record->lastName, record->organization};
    for (const ContactValue &email : record->emails)
        texts.append(email.value);
    row.searchForm += StringRules::searchForm(texts.join(u'\n'));
    return made;
}

bool PeopleRows::makeSome()
{
    const bool areMany = _records.size() > rowsOfASlice;
    if (_next < _records.size()) {
        makeSlice();
        if (areMany)
            return false;
    }
    if (!std::exchange(_isSorted, true)) {
        std::sort(_made.begin(), _made.end(), &comesBefore);
        if (areMany)
            return false;
    }
    return true;
}

void PeopleRows::makeSlice()
{
    const std::size_t end = std::min(_next + rowsOfASlice, _records.size());
    for (; _next < end; ++_next) {
        const ContactRecordPtr &record = _records[_next];
        const auto known = _known.constFind(record.get());
        RowPtr row = known == _known.cend() ? makeRow(record) : *known;
        if (row->type != WayfoldABEntry::Unknown)
            _made.push_back(std::move(row));
    }
}

void PeopleRows::takeOver()
{
    _rows.swap(_made);
    _made.clear();
    _records.clear();
    _known.clear();
    _known.reserve(qsizetype(_rows.size()));
    for (const RowPtr &row : _rows)
        _known.insert(row->record.get(), row);
    _isMade = true;
}

std::vector<int> PeopleRows::rowsMatching(const QString &search) const
{
    std::vector<int> found(_rows.size());
    std::iota(found.begin(), found.end(), 0);
    const std::vector<QByteArray> words = wordsOf(search);
    if (words.empty())
        return found;
    std::erase_if(found, [&](int row) { return !hasAll(*_rows[std::size_t(row)], words); });
    std::stable_partition(found.begin(), found.end(),
                          [&](int row) { return isNamed(*_rows[std::size_t(row)], words); });
    return found;
}
