#include "platform/contacts/CardText.h"
#include "platform/contacts/ContactCards.h"
#include "tests/fuzz/FuzzedFile.h"

#include <algorithm>

namespace
{
bool isEqual(const std::vector<ContactValue> &a, const std::vector<ContactValue> &b)
{
    return std::equal(a.cbegin(), a.cend(), b.cbegin(), b.cend(),
                      [](const ContactValue &one, const ContactValue &other) {
                          return one.label == other.label && one.value == other.value;
                      });
}

bool isEqual(const ContactRecord &a, const ContactRecord &b)
{
    return a.uniqueId == b.uniqueId && a.isGroup == b.isGroup && a.flags == b.flags && a.firstName == b.firstName &&
           a.lastName == b.lastName && a.suffix == b.suffix && a.organization == b.organization &&
           a.homePage == b.homePage && a.primaryPhone == b.primaryPhone && a.primaryEmail == b.primaryEmail &&
           a.groupName == b.groupName && a.members == b.members && isEqual(a.phones, b.phones) &&
           isEqual(a.emails, b.emails);
}

void checkText(const QString &text)
{
    require(text.isNull() || !text.isEmpty(), "what is empty is none");
    require(text.size() <= ContactCards::maximumText, "texts are cut");
    require(
        std::none_of(text.cbegin(), text.cend(), [](QChar sign) { return sign.category() == QChar::Other_Control; }),
        "texts hold no signs that control something");
}

void checkValues(const std::vector<ContactValue> &values, int primary)
{
    require(values.size() <= ContactCards::maximumValues, "values are cut");
    require(values.empty() ? primary == 0 : primary >= 0 && std::size_t(primary) < values.size(),
            "the primary value is one of them");
    for (const ContactValue &one : values) {
        require(!one.value.isEmpty(), "no value is empty");
        checkText(one.value);
        require(one.label.isEmpty() || !one.label.contains(u'\n'), "a label stands on one line");
    }
}

void checkRecord(const ContactRecord &record)
{
    for (const QString &text : {record.uniqueId, record.firstName, record.lastName, record.suffix, record.organization,
                                record.homePage, record.groupName})
        checkText(text);
    checkValues(record.phones, record.primaryPhone);
    checkValues(record.emails, record.primaryEmail);
    require(record.isGroup || record.members.isEmpty(), "groups alone have members");
    for (const QString &member : record.members) {
        require(!member.isEmpty(), "no member is empty");
        checkText(member);
    }
}
} // namespace

// Cards out of an address book, a file or the clipboard. Built so that the library's warnings end the program.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
    for (const ContactCards::Card &card : ContactCards::read(text)) {
        checkRecord(card.record);
        require(card.text.isValidUtf8(), "a card's text is in UTF-8");
        require(ContactCards::picture(card.text).size() <= ContactCards::maximumPicture, "pictures are bounded");
        const std::vector<ContactCards::Card> again = ContactCards::read(card.text);
        require(again.size() == 1, "a card's text is one card");
        require(isEqual(again.front().record, card.record), "a card's text says what the card says");
        require(again.front().text == card.text, "a card's text stays as it is");
    }
    ContactCards::picture(text);
    return 0;
}
