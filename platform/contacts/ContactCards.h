#pragma once

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

// Every card in the text, in order. What is damaged is left out; what is endless is cut.
std::vector<Card> read(const QByteArray &text);
// The picture that the card holds (PNG, JPEG, ...); empty when it has none, or one that only lies elsewhere.
QByteArray picture(const QByteArray &card);
} // namespace ContactCards
