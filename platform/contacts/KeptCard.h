#pragma once

#include "platform/contacts/ContactCards.h"

// A card as it is kept while its program runs: with its text, but in little room. Pictures and sounds are left out of
// that, and a text that is too large even so.
class KeptCard
{
public:
    KeptCard() = default;
    // `serviceIdentifier`: the card's as its own service has it, which may be written in another way.
    KeptCard(ContactCards::Card card, const QString &serviceIdentifier);

    const ContactRecordPtr &record() const { return _record; }
    const QString &serviceIdentifier() const { return _serviceIdentifier; }
    bool isSameAs(const KeptCard &other) const;
    // Whether there is more to the card than its text here: a picture or a sound, or the text itself.
    bool isCut() const { return _isCut; }
    // Whether it has a picture, in the card or in a file.
    bool hasPicture() const { return _hasPicture; }
    // Empty: it is too large.
    QByteArray text() const { return _packedText.isEmpty() ? QByteArray() : qUncompress(_packedText); }

    // The card with this picture in it, in place of what it has.
    static QByteArray withPicture(const QByteArray &card, const QByteArray &picture);

private:
    ContactRecordPtr _record;
    QString _serviceIdentifier;
    QByteArray _packedText;
    std::size_t _hash = 0; // of the whole
    bool _isCut = false;
    bool _hasPicture = false;
};
