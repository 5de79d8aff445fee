#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <random>

// The cards of somebody who knows many people, made up: the same at every run and on every machine.
class LifelikeContacts
{
public:
    // One card a file, named after its identifier. False when they could not be written.
    bool write(const QString &folder, int count);

    // The name of the file of one of them, and what stands in it after so many changes.
    static QString fileName(int number);
    QByteArray card(int number, int changes = 0);

private:
    // Below the limit. Not a distribution of the library's, whose results differ from one to the next.
    int below(int limit) { return int(_random() % std::uint64_t(limit)); }
    bool oneIn(int number) { return below(number) == 0; }
    QByteArray word(int syllables);

    std::mt19937_64 _random;
};
