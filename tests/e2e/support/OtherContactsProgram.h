#pragma once

#include <QByteArray>
#include <QString>

// Another program with the user's contacts: the desktop's where there is a message bus, else the cards in ~/.contacts,
// one in each file, named after its identifier. For the user's thread: each call returns when it is done, false when it
// could not be. Whoever else has the contacts sees it later.
class OtherContactsProgram
{
public:
    bool isOfDesktop() const;
    // A card has its identifier in it.
    bool add(const QByteArray &card) const;
    bool change(const QByteArray &card) const;
    // The card; empty when there is none.
    QByteArray show(const QString &identifier) const;
    // Kills the desktop's service, as a crash would; it starts again when somebody asks for it.
    bool killService() const;
};
