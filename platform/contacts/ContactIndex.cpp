#include "platform/contacts/ContactIndex.h"

#include "platform/base/StringRules.h"

#include <algorithm>

namespace
{
// A text that is searched for has no line end, so none is found across two fields.
QString searchedText(const ContactRecord &record)
{
    QStringList texts = {record.firstName, record.lastName, record.organization, record.homePage};
    for (const ContactValue &email : record.emails)
        texts.append(email.value);
    return texts.join(u'\n');
}
} // namespace

void ContactIndex::put(const ContactRecordPtr &record)
{
    const QByteArray form = record->isGroup ? QByteArray() : StringRules::searchForm(searchedText(*record));
    const auto known = _places.constFind(record->uniqueId);
    if (known != _places.cend()) {
        _entries[*known] = {record, form};
    } else if (!_free.empty()) {
        _places.insert(record->uniqueId, _free.back());
        _entries[_free.back()] = {record, form};
        _free.pop_back();
    } else {
        _places.insert(record->uniqueId, _entries.size());
        _entries.push_back({record, form});
    }
}

void ContactIndex::remove(const QString &uniqueId)
{
    const auto known = _places.constFind(uniqueId);
    if (known == _places.cend())
        return;
    _entries[*known] = {};
    _free.push_back(*known);
    _places.erase(known);
}

void ContactIndex::clear()
{
    *this = ContactIndex();
}

ContactRecordPtr ContactIndex::record(const QString &uniqueId) const
{
    const auto known = _places.constFind(uniqueId);
    return known == _places.cend() ? nullptr : _entries[*known].record;
}

std::vector<ContactRecordPtr> ContactIndex::people() const
{
    std::vector<ContactRecordPtr> found;
    for (const Entry &entry : _entries) {
        if (entry.record && !entry.record->isGroup)
            found.push_back(entry.record);
    }
    return found;
}

std::vector<ContactRecordPtr> ContactIndex::groups() const
{
    std::vector<ContactRecordPtr> found;
    for (const Entry &entry : _entries) {
        if (entry.record && entry.record->isGroup)
            found.push_back(entry.record);
    }
    return found;
}

std::vector<ContactRecordPtr> ContactIndex::peopleContaining(const QString &text) const
{
    std::vector<ContactRecordPtr> found;
    const QByteArray part = StringRules::searchForm(text);
    if (part.isEmpty())
        return found;
    for (const Entry &entry : _entries) {
        if (entry.record && !entry.record->isGroup && StringRules::searchFormContains(entry.searchForm, part))
            found.push_back(entry.record);
    }
    return found;
}

bool ContactIndex::contains(const ContactRecord &record, const QString &text)
{
    const auto has = [&text](const QString &field) { return StringRules::containsIgnoringCase(field, text); };
    return !record.isGroup &&
           (has(record.firstName) || has(record.lastName) || has(record.organization) || has(record.homePage) ||
            std::any_of(record.emails.cbegin(), record.emails.cend(),
                        [&has](const ContactValue &email) { return has(email.value); }));
}
