#pragma once

#include "platform/contacts/ContactCards.h"

#include <QString>

// Cards in files: those that are dropped, and those that are dragged out for programs that take nothing but files.
namespace CardFiles
{
// What may be read in one drop, so that the list does not stand still.
constexpr qint64 maximumSize = qint64(2) * 1024 * 1024; // bytes
constexpr qsizetype maximumCards = 1000;
struct Allowance
{
    qint64 bytes = maximumSize;
    qsizetype cards = maximumCards;
};

// The cards in a file that is one of cards by its name. Empty when there are none, when it is no plain file, or on
// another machine, which may keep us waiting, and when that is more than what is left of the allowance.
std::vector<ContactCards::Card> read(const QString &path, Allowance &left);
// The cards in the text, in the same way.
std::vector<ContactCards::Card> fromData(const QByteArray &data, Allowance &left);
// Of a kind of file system, by the name that the system gives it ("ext4", "nfs4", "fuse.sshfs").
bool isOnAnotherMachine(const QByteArray &fileSystem);

// A file with the cards, for the user's eyes alone, in "~/Library/Caches/Wayfold/Cards". It has the name, as far as
// files can have it; a number behind that when there are other cards in a file of that name. Null, with the reason in
// the log, when it could not be written.
QString write(const QString &name, const QByteArray &cards);
// The name for a file with the cards of these people: that of the first, and how many there are beside.
QString nameForPeople(const QStringList &names);
// Removes what was written a day ago or earlier: nobody copies it any more.
void removeOld();
} // namespace CardFiles
