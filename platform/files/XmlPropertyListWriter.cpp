#include "platform/files/XmlPropertyListWriter.h"

#include "platform/files/PropertyListDepth.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <cmath>

namespace
{
constexpr char header[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                          "<plist version=\"1.0\">\n";

bool isPlain(QChar character)
{
    const char16_t c = character.unicode();
    return c >= 0x20 && c != '&' && c != '<' && c != '>' && !character.isSurrogate() && c < 0xfffe;
}

// What stands in the file for a character that is not plain and not half of a pair. Of control characters nobody sees
// more than the line that some of them begin.
QString escaped(QChar character)
{
    switch (character.unicode()) {
    case '&':
        return QStringLiteral("&amp;");
    case '<':
        return QStringLiteral("&lt;");
    case '>':
        return QStringLiteral("&gt;");
    case '\r': // readers of XML turn a bare one into a line end
        return QStringLiteral("&#13;");
    case '\t':
    case '\n':
        return character;
    case '\v':
    case '\f':
        return QStringLiteral("\n");
    default:
        return character.unicode() < 0x20 ? QString() : QString(QChar::ReplacementCharacter);
    }
}

QByteArray escaped(const QString &text)
{
    if (std::all_of(text.begin(), text.end(), isPlain))
        return text.toUtf8();
    QString result;
    result.reserve(text.size() + text.size() / 8);
    for (qsizetype i = 0; i < text.size(); i++) {
        if (isPlain(text[i])) {
            result.append(text[i]);
        } else if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            result.append(text[i]);
            result.append(text[++i]);
        } else {
            result.append(escaped(text[i]));
        }
    }
    // Never the empty text: an item whose title became that would not be read again.
    return result.isEmpty() ? QString(QChar::ReplacementCharacter).toUtf8() : result.toUtf8();
}

// As many digits as it takes to read exactly this number again.
QByteArray realText(double value)
{
    if (value == 0 && std::signbit(value))
        return "-0.0";
    return QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
}
} // namespace

QByteArray XmlPropertyListWriter::write(const QVariant &value)
{
    XmlPropertyListWriter writer;
    writer._xml = header;
    if (!writer.writeValue(value, 0))
        return {};
    return writer._xml + "</plist>\n";
}

bool XmlPropertyListWriter::isUnwritable(QChar character)
{
    const char16_t c = character.unicode();
    return (c < 0x20 && c != '\t' && c != '\n' && c != '\r') || c >= 0xfffe;
}

bool XmlPropertyListWriter::canHold(const QString &text)
{
    return text.isValidUtf16() && std::none_of(text.begin(), text.end(), isUnwritable);
}

bool XmlPropertyListWriter::writeValue(const QVariant &value, int depth)
{
    switch (value.metaType().id()) {
    case QMetaType::QVariantMap:
        return writeDictionary(value.toMap(), depth);
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return writeArray(value.toList(), depth);
    case QMetaType::QString:
        writeText("string", value.toString(), depth);
        return true;
    case QMetaType::Bool:
        writeTag(value.toBool() ? "true/" : "false/", depth);
        return true;
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
        writeElement("integer", QByteArray::number(value.toLongLong()), depth);
        return true;
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        writeElement("integer", QByteArray::number(value.toULongLong()), depth);
        return true;
    case QMetaType::Float:
    case QMetaType::Double:
        writeElement("real", realText(value.toDouble()), depth);
        return true;
    case QMetaType::QDateTime:
        return writeDate(value.toDateTime(), depth);
    case QMetaType::QByteArray:
        writeElement("data", value.toByteArray().toBase64(), depth);
        return true;
    default:
        return false;
    }
}

bool XmlPropertyListWriter::writeDictionary(const QVariantMap &dictionary, int depth)
{
    if (depth >= PropertyList::maximumDepth)
        return false;
    writeTag(dictionary.isEmpty() ? "dict/" : "dict", depth);
    if (dictionary.isEmpty())
        return true;
    for (auto entry = dictionary.begin(); entry != dictionary.end(); ++entry) {
        writeText("key", entry.key(), depth + 1);
        if (!writeValue(entry.value(), depth + 1))
            return false;
    }
    writeTag("/dict", depth);
    return true;
}

bool XmlPropertyListWriter::writeArray(const QVariantList &array, int depth)
{
    if (depth >= PropertyList::maximumDepth)
        return false;
    writeTag(array.isEmpty() ? "array/" : "array", depth);
    if (array.isEmpty())
        return true;
    for (const QVariant &value : array) {
        if (!writeValue(value, depth + 1))
            return false;
    }
    writeTag("/array", depth);
    return true;
}

bool XmlPropertyListWriter::writeDate(const QDateTime &date, int depth)
{
    const QDateTime utc = date.toUTC();
    if (!utc.isValid() || utc.date().year() < 1 || utc.date().year() > 9999)
        return false;
    writeElement("date", utc.toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'")).toLatin1(), depth);
    return true;
}

void XmlPropertyListWriter::writeText(const char *element, const QString &text, int depth)
{
    writeElement(element, escaped(text), depth);
}

void XmlPropertyListWriter::writeElement(const char *element, const QByteArray &escapedText, int depth)
{
    _xml.append(depth, '\t');
    _xml.append('<').append(element).append('>');
    _xml.append(escapedText);
    _xml.append("</").append(element).append(">\n");
}

void XmlPropertyListWriter::writeTag(const char *tag, int depth)
{
    _xml.append(depth, '\t');
    _xml.append('<').append(tag).append(">\n");
}
