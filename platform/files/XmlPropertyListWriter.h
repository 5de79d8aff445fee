#pragma once

#include <QByteArray>
#include <QVariant>
#include <QXmlStreamWriter>

// Writes the XML form of a property list, with tabs and line ends for people who look into the file.
class XmlPropertyListWriter
{
public:
    // Empty when the value holds something that a property list cannot, or is nested too deep.
    static QByteArray write(const QVariant &value);

private:
    explicit XmlPropertyListWriter(QByteArray *xml);

    bool writeValue(const QVariant &value, int depth);
    bool writeDictionary(const QVariantMap &dictionary, int depth);
    bool writeArray(const QVariantList &array, int depth);
    bool writeDate(const QDateTime &date);
    void writeText(const QString &element, const QString &text);
    void startLine(int depth);

    QXmlStreamWriter _xml;
};
