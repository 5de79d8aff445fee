#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QMultiHash>
#include <QString>
#include <QStringList>
#include <vector>

// One property of a card, decoded: EMAIL with its parameters and its value.
class CardProperty
{
public:
    QByteArray name;                            // in capitals
    QByteArray group;                           // in small letters: "item1" of "item1.EMAIL"
    QMultiHash<QByteArray, QString> parameters; // by their names in capitals
    QByteArrayList parts;                       // what semicolons part in the value

    // The properties of these lines, in order. Each is a line by itself, unfolded and in UTF-8; what is no property is
    // left out.
    static std::vector<CardProperty> fromLines(const QByteArrayList &lines);

    // The value, where semicolons have no meaning.
    QByteArray value() const { return parts.join(';'); }
    // The value, and a part of it, as text; without white space around it, null when that leaves nothing.
    QString text() const;
    QString part(qsizetype index) const;
    // The TYPE parameters, in small letters.
    QStringList types() const;
};
