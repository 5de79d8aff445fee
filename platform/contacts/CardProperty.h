#pragma once

#include "platform/contacts/CardLine.h"

#include <QByteArrayList>
#include <QStringList>

// One property of a card, decoded: EMAIL with its parameters and its value.
class CardProperty
{
public:
    struct Parameter
    {
        QByteArray name; // in capitals
        QString value;
    };

    QByteArray name;  // in capitals
    QByteArray group; // in small letters: "item1" of "item1.EMAIL"
    std::vector<Parameter> parameters;
    QByteArrayList parts; // of the value, which semicolons part

    // The properties of these lines, in order. What is no property is left out.
    static std::vector<CardProperty> fromLines(const std::vector<const CardLine *> &lines);

    // The value, where semicolons have no meaning.
    QByteArray value() const { return parts.join(';'); }
    // The value, and a part of it, as text on one line; null when there is nothing.
    QString text() const;
    QString part(qsizetype index) const;
    // The first parameter of the name, null when there is none.
    QString parameter(QByteArrayView parameterName) const;
    // The TYPE parameters, as they are written.
    QStringList types() const;
};
