#pragma once

#include "platform/contacts/ContactStore.h"

// A store on contacts that hold nothing yet, and what another program does with these contacts. Nothing here waits for
// the store to see it. Cards are given as they would be exported, in UTF-8 with CR LF, and may be without identifier.
class ContactsElsewhere
{
public:
    virtual ~ContactsElsewhere() = default;

    // On its way to being ready, or there.
    virtual ContactStore &store() = 0;

    // Adds the card: the identifier under which the store is going to have it.
    virtual QString write(const QByteArray &vCard) = 0;
    // Puts the card in place of that one; it has the identifier in it.
    virtual void change(const QString &uniqueId, const QByteArray &vCard) = 0;
    virtual void remove(const QString &uniqueId) = 0;
    // Makes it the user's own.
    virtual void makeMe(const QString &uniqueId) = 0;
    // The card as the other program has it; empty when there is none.
    virtual QByteArray card(const QString &uniqueId) = 0;
};
