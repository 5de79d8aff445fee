#include "platform/files/XmlPropertyListWriter.h"

#include "platform/files/PropertyList.h"

#include <QDateTime>
#include <QLocale>

namespace
{
bool isXmlCharacter(char32_t c)
{
    return c == '\t' || c == '\n' || c == '\r' || (c >= 0x20 && c < 0xd800) || (c >= 0xe000 && c < 0xfffe) ||
           c >= 0x10000;
}

// The text with U+FFFD for whatever XML cannot hold, even as a character reference.
QString writable(const QString &text)
{
    QString result = text;
    for (qsizetype i = 0; i < text.size(); i++) {
        const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair)
            i++;
        else if (!isXmlCharacter(text[i].unicode()))
            result[i] = QChar(QChar::ReplacementCharacter);
    }
    return result;
}
} // namespace

QByteArray XmlPropertyListWriter::write(const QVariant &value)
{
    QByteArray xml;
    XmlPropertyListWriter writer(&xml);
    if (!writer.writeValue(value, 0))
        return {};
    writer._xml.writeCharacters(QStringLiteral("\n"));
    writer._xml.writeEndDocument();
    return xml;
}

XmlPropertyListWriter::XmlPropertyListWriter(QByteArray *xml) : _xml(xml)
{
    _xml.writeStartDocument();
    _xml.writeCharacters(QStringLiteral("\n"));
    _xml.writeDTD(QStringLiteral("<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                 "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"));
    _xml.writeStartElement(QStringLiteral("plist"));
    _xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
}

bool XmlPropertyListWriter::writeValue(const QVariant &value, int depth)
{
    startLine(depth);
    switch (value.metaType().id()) {
    case QMetaType::QVariantMap:
        return writeDictionary(value.toMap(), depth);
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return writeArray(value.toList(), depth);
    case QMetaType::QString:
        writeText(QStringLiteral("string"), value.toString());
        return true;
    case QMetaType::Bool:
        _xml.writeEmptyElement(value.toBool() ? QStringLiteral("true") : QStringLiteral("false"));
        return true;
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
        _xml.writeTextElement(QStringLiteral("integer"), QString::number(value.toLongLong()));
        return true;
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        _xml.writeTextElement(QStringLiteral("integer"), QString::number(value.toULongLong()));
        return true;
    case QMetaType::Float:
    case QMetaType::Double:
        // As many digits as it takes to read exactly this number again.
        _xml.writeTextElement(QStringLiteral("real"),
                              QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest));
        return true;
    case QMetaType::QDateTime:
        return writeDate(value.toDateTime());
    case QMetaType::QByteArray:
        _xml.writeTextElement(QStringLiteral("data"), QString::fromLatin1(value.toByteArray().toBase64()));
        return true;
    default:
        return false;
    }
}

bool XmlPropertyListWriter::writeDictionary(const QVariantMap &dictionary, int depth)
{
    if (depth >= PropertyList::maximumDepth)
        return false;
    if (dictionary.isEmpty()) {
        _xml.writeEmptyElement(QStringLiteral("dict"));
        return true;
    }
    _xml.writeStartElement(QStringLiteral("dict"));
    for (auto entry = dictionary.begin(); entry != dictionary.end(); ++entry) {
        startLine(depth + 1);
        writeText(QStringLiteral("key"), entry.key());
        if (!writeValue(entry.value(), depth + 1))
            return false;
    }
    startLine(depth);
    _xml.writeEndElement();
    return true;
}

bool XmlPropertyListWriter::writeArray(const QVariantList &array, int depth)
{
    if (depth >= PropertyList::maximumDepth)
        return false;
    if (array.isEmpty()) {
        _xml.writeEmptyElement(QStringLiteral("array"));
        return true;
    }
    _xml.writeStartElement(QStringLiteral("array"));
    for (const QVariant &value : array) {
        if (!writeValue(value, depth + 1))
            return false;
    }
    startLine(depth);
    _xml.writeEndElement();
    return true;
}

bool XmlPropertyListWriter::writeDate(const QDateTime &date)
{
    const QDateTime utc = date.toUTC();
    if (!utc.isValid() || utc.date().year() < 1 || utc.date().year() > 9999)
        return false;
    _xml.writeTextElement(QStringLiteral("date"), utc.toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'")));
    return true;
}

// Readers of XML turn a carriage return into a line end, so it is written as a reference.
void XmlPropertyListWriter::writeText(const QString &element, const QString &text)
{
    const QString clean = writable(text);
    _xml.writeStartElement(element);
    qsizetype start = 0;
    for (qsizetype end = clean.indexOf(u'\r'); end >= 0; end = clean.indexOf(u'\r', start)) {
        _xml.writeCharacters(clean.mid(start, end - start));
        _xml.writeEntityReference(QStringLiteral("#13"));
        start = end + 1;
    }
    _xml.writeCharacters(clean.mid(start));
    _xml.writeEndElement();
}

void XmlPropertyListWriter::startLine(int depth)
{
    _xml.writeCharacters(u'\n' + QString(depth, u'\t'));
}
