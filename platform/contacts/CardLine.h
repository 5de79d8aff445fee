#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <vector>

// One line of a card, "item1.EMAIL;TYPE=home:ann@example.com", taken apart at the signs that part it, with everything
// in it as it stands.
class CardLine
{
public:
    struct Parameter
    {
        QByteArray name;  // in capitals; empty where version 2.1 leaves it out
        QByteArray value; // one or more, with commas between and perhaps in quotes
    };
    // Encodings of a value that have their own way of going on in the next line.
    enum Encoding { Plain, QuotedPrintable, Base64 };
    // Signs in the head of a line, and semicolons in its value, that part something; a line with more is none.
    static constexpr int maximumParts = 50;

    // An unfolded line, without its line end. Its name is empty when it is none.
    static CardLine fromText(const QByteArray &line);
    // Bytes as text: they are UTF-8, or else in the named character set, or else in the one that programs wrote without
    // naming it. Damaged UTF-8 keeps what is right in it.
    static QString decoded(QByteArrayView bytes, const QByteArray &characterSet = {});
    static bool isBase64Sign(char sign);

    Encoding encoding() const;
    QByteArray characterSet() const; // as it is named; empty when it is not
    void removeCharacterSet();
    // The bytes that a value in base64 stands for.
    QByteArray decodedBase64() const;
    // The line in the form that the strictest reader understands alike.
    QByteArray strictText() const;

    QByteArray group; // in small letters, "item1"
    QByteArray name;  // in capitals, "EMAIL"
    std::vector<Parameter> parameters;
    QByteArray value;

private:
    QByteArray strictValue() const;
};
