#pragma once

#include "model/KDRBookmark.h"
#include "platform/contacts/ContactCards.h"

// Somebody whose card was dropped, and who is not among the contacts. What the card says stands in the list as an
// e-mail link or, without an address, as a note.
struct Stranger
{
    ContactCards::Card card;
    KDRBookmarkPtr standIn;

    // An item for what the card says.
    static KDRBookmarkPtr standInFor(const ContactCards::Card &card);
    // The person, or the group, that is meant by the card; none: not among the contacts.
    static KDRBookmarkPtr contactMeantBy(const ContactCards::Card &card);
    // The card's own name, else whatever else it is known by.
    static QString nameOn(const ContactRecord &record);
};
