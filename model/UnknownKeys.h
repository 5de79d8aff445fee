#pragma once

#include <QVariantMap>

// What a dictionary says of an item beyond what this version can use: keys that it does not know, and values that the
// item could not take as they are. They go back into the dictionaries that the item writes; a value only where the item
// still has what it had in its place, since what the user sets counts.
//
// As large as a pointer.
class UnknownKeys
{
public:
    UnknownKeys() = default;
    // `used`: what the item that was made of the dictionary writes itself. Empty texts stand for none, and so does what
    // is missing.
    UnknownKeys(const QVariantMap &found, const QVariantMap &used);

    void addTo(QVariantMap &written) const;
    // How many dictionaries and lists lie one in another in what is kept; 0: nothing is, or nothing nested.
    int depth() const;

    // For archives; invalid when there is nothing.
    QVariant archived() const;
    static UnknownKeys fromArchive(const QVariant &archived);

    // The same of any value.
    static int depthOf(const QVariant &value);

private:
    QVariantMap _kept; // empty, or what was found and what was used in its place, by the same keys
};
