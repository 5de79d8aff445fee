#pragma once

#include <QByteArray>
#include <QVariant>

// Writes the XML form of a property list, with tabs and line ends for people who look into the file. It puts the bytes
// together itself: the user's file is written after every change, and QXmlStreamWriter takes several times as long.
class XmlPropertyListWriter
{
public:
    // Empty when the value holds something that a property list cannot, or is nested too deep.
    static QByteArray write(const QVariant &value);
    // Whether XML has no place for the character, not even as a reference.
    static bool isUnwritable(QChar character);
    // Whether the text can be read again just as it is.
    static bool canHold(const QString &text);

private:
    bool writeValue(const QVariant &value, int depth);
    bool writeDictionary(const QVariantMap &dictionary, int depth);
    bool writeArray(const QVariantList &array, int depth);
    bool writeDate(const QDateTime &date, int depth);
    void writeText(const char *element, const QString &text, int depth);
    void writeElement(const char *element, const QByteArray &escapedText, int depth);
    void writeTag(const char *tag, int depth);

    QByteArray _xml;
};
