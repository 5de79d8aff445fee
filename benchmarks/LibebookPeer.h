#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <memory>

// The desktop's own address book as a program has it that asks libebook for cards whenever it needs them, and waits for
// the answer; and the other program that writes there.
class LibebookPeer
{
public:
    LibebookPeer();
    ~LibebookPeer();

    // Connects; false when the service is not there and cannot be started.
    bool open();
    bool add(const QByteArrayList &cards);
    bool change(const QByteArray &card);
    // How many cards there are, having had them all.
    int countOfAll() const;
    // How many have the text in their names, organization, home page or addresses, having had these.
    int countContaining(const QByteArray &text) const;
    bool hasCard(const QByteArray &uniqueId) const;

private:
    int count(const QByteArray &query) const;

    struct Objects; // of the library
    std::unique_ptr<Objects> _objects;
};
