#include "platform/contacts/ContactIndex.h"

#include "platform/base/StringRules.h"

#include <algorithm>

namespace
{
constexpr char fieldEnd = '\n';

QStringList searchedFields(const ContactRecord &record)
{
    QStringList fields = {record.firstName, record.lastName, record.organization, record.homePage};
    for (const ContactValue &email : record.emails)
        fields.append(email.value);
    return fields;
}

// The search forms of the fields, each with its end.
QByteArray searchFormOf(const ContactRecord &record)
{
    QByteArray form;
    for (const QString &field : searchedFields(record)) {
        form += StringRules::searchForm(field);
        form += fieldEnd;
    }
    form.squeeze();
    return form;
}

bool hasFieldWith(const ContactRecord &record, QByteArrayView part)
{
    const QStringList fields = searchedFields(record);
    return std::any_of(fields.cbegin(), fields.cend(), [part](const QString &field) {
        return StringRules::searchFormContains(StringRules::searchForm(field), part);
    });
}

bool haveSameName(const ContactRecord &a, const ContactRecord &b)
{
    return a.firstName == b.firstName && a.lastName == b.lastName && a.organization == b.organization;
}

bool hasAddress(const ContactRecord &record, const QString &address)
{
    return std::any_of(record.emails.cbegin(), record.emails.cend(), [&address](const ContactValue &email) {
        return StringRules::compareIgnoringCase(email.value, address) == 0;
    });
}

std::size_t hashOf(const ContactRecord &record, const QString &address)
{
    return qHashMulti(0, record.firstName, record.lastName, record.organization, StringRules::comparisonForm(address));
}
} // namespace

void ContactIndex::put(const ContactRecordPtr &record)
{
    if (record->uniqueId.isEmpty())
        return;
    const auto known = _places.constFind(record->uniqueId);
    const std::size_t place = known == _places.cend() ? _entries.size() : *known;
    if (known == _places.cend()) {
        _places.insert(record->uniqueId, place);
        _entries.emplace_back();
    } else {
        strikeOut(place);
    }
    _entries[place].record = record;
    if (record->isGroup)
        return;
    _entries[place].searchForm = searchFormOf(*record);
    enterAddresses(*record, place);
}

void ContactIndex::remove(const QString &uniqueId)
{
    const auto known = _places.constFind(uniqueId);
    if (known == _places.cend())
        return;
    strikeOut(*known);
    _places.erase(known);
    if (_entries.size() > 2 * size())
        closeGaps();
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
    found.reserve(size());
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
    const bool mayReachIntoTheNextField = part.contains(fieldEnd);
    for (const Entry &entry : _entries) { // gaps and groups have no form, and the empty text is in none
        if (StringRules::searchFormContains(entry.searchForm, part) &&
            (!mayReachIntoTheNextField || hasFieldWith(*entry.record, part)))
            found.push_back(entry.record);
    }
    return found;
}

bool ContactIndex::contains(const ContactRecord &record, const QString &text)
{
    return !record.isGroup && hasFieldWith(record, StringRules::searchForm(text));
}

ContactRecordPtr ContactIndex::personLike(const ContactRecord &card) const
{
    std::size_t first = _entries.size();
    for (const ContactValue &email : card.emails) {
        const std::size_t hash = hashOf(card, email.value);
        for (auto at = _addresses.lower_bound({hash, 0}); at != _addresses.end() && at->first == hash; ++at) {
            const ContactRecord &record = *_entries[at->second].record;
            if (!haveSameName(record, card) || !hasAddress(record, email.value))
                continue;
            first = std::min(first, at->second);
            break;
        }
    }
    return first == _entries.size() ? nullptr : _entries[first].record;
}

void ContactIndex::enterAddresses(const ContactRecord &record, std::size_t place)
{
    for (const ContactValue &email : record.emails)
        _addresses.emplace(hashOf(record, email.value), place);
}

// Leaves a gap.
void ContactIndex::strikeOut(std::size_t place)
{
    Entry &entry = _entries[place];
    for (const ContactValue &email : entry.record->emails)
        _addresses.erase({hashOf(*entry.record, email.value), place});
    entry = {};
}

void ContactIndex::closeGaps()
{
    std::vector<std::size_t> newPlaces(_entries.size());
    std::size_t next = 0;
    for (std::size_t place = 0; place < _entries.size(); ++place) {
        newPlaces[place] = next;
        next += _entries[place].record ? 1 : 0;
    }
    std::erase_if(_entries, [](const Entry &entry) { return !entry.record; });
    for (std::size_t &place : _places)
        place = newPlaces[place];
    // They stay in their order, so each is put in at the end.
    decltype(_addresses) addresses;
    for (const auto &[hash, place] : _addresses)
        addresses.emplace_hint(addresses.end(), hash, newPlaces[place]);
    std::swap(_addresses, addresses);
}
