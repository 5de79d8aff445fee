#pragma once

#include "platform/contacts/CardText.h"
#include "platform/contacts/ContactRecord.h"

#include <QByteArray>
#include <vector>

// Reads cards in the vCard form, of version 2.1, 3 and 4, as address books, phones and mail programs write them.
namespace ContactCards
{
struct Card
{
    ContactRecord record; // its identifier is null when the card has none
    QByteArray text;      // the card by itself, in UTF-8
};

// A card that says more is read up to here. Texts in UTF-16 units: longer names are cut; longer addresses, numbers and
// identifiers left out, since their beginnings mean something else.
constexpr int maximumText = 2000;
// Telephone numbers, and e-mail addresses; a group's members.
constexpr int maximumValues = 100;
constexpr int maximumMembers = 10000;
// Bytes of a picture; a larger one is none.
constexpr qsizetype maximumPicture = qsizetype(5) * 1024 * 1024;

// Every card in the text, in order. What is damaged is left out; what is endless is cut.
std::vector<Card> read(const QByteArray &text);
// An identifier as the records have it; null when they have none for it.
QString identifier(const QString &text);
// The one in what CardText has cut out, for who takes a long text a card at a time. None when nothing is understood.
std::optional<Card> read(const CardText::Card &text);
// The picture that the card holds (PNG, JPEG, ...); empty when it has none, or one that only lies elsewhere.
QByteArray picture(const QByteArray &card);
} // namespace ContactCards
