#include "platform/files/XmlPropertyListReader.h"

#include "platform/files/PropertyListDepth.h"
#include "platform/files/XmlPropertyListWriter.h"
#include "platform/files/XmlScalars.h"

#include <algorithm>

XmlPropertyListReader::XmlPropertyListReader(QIODevice *device)
    : _xml(device)
    , _device(device)
    , _beginning(device->pos())
{
    _xml.setNamespaceProcessing(false);
}

XmlPropertyListReader::XmlPropertyListReader(const QString &text) : _xml(text)
{
    _xml.setNamespaceProcessing(false);
}

QVariant XmlPropertyListReader::read()
{
    QVariant value = readDocument();
    if (value.isValid())
        return value;
    // A few damaged bytes, or characters that other programs let in, do not take the rest away.
    const QByteArray data = isInUtf8() && _device->seek(_beginning) ? _device->readAll() : QByteArray();
    QString text = QString::fromUtf8(data);
    const auto isMisplaced = [](QChar c) { return !c.isNull() && XmlPropertyListWriter::isUnwritable(c); };
    if (data.isValidUtf8() && std::none_of(text.cbegin(), text.cend(), isMisplaced))
        return {};
    std::replace_if(text.begin(), text.end(), isMisplaced, QChar(QChar::ReplacementCharacter));
    _isWhole = false;
    return XmlPropertyListReader(text).readDocument();
}

// Whether the document says so, or says nothing.
bool XmlPropertyListReader::isInUtf8() const
{
    const QStringView declared = _xml.documentEncoding();
    return declared.isEmpty() || declared.compare(QLatin1String("UTF-8"), Qt::CaseInsensitive) == 0;
}

QVariant XmlPropertyListReader::readDocument()
{
    // Behind an early end it would go on for ever, as long as the device says that there should be more.
    while (!_xml.atEnd() && !_xml.hasError()) {
        switch (_xml.readNext()) {
        case QXmlStreamReader::StartElement:
            startElement();
            break;
        case QXmlStreamReader::EndElement:
            endElement();
            break;
        case QXmlStreamReader::Characters:
            if (!_xml.isWhitespace())
                refused(QStringLiteral("text outside of a value"));
            break;
        case QXmlStreamReader::DTD:
            // Declarations of its own could make a small file unfold to any size.
            if (_xml.text().contains(u'['))
                refused(QStringLiteral("declarations of its own"));
            break;
        case QXmlStreamReader::EntityReference:
            refused(QStringLiteral("an unknown entity"));
            break;
        default:
            break;
        }
    }
    return _xml.hasError() ? QVariant() : _root;
}

QString XmlPropertyListReader::errorString() const
{
    return QStringLiteral("line %1, column %2: %3")
        .arg(_xml.lineNumber())
        .arg(_xml.columnNumber())
        .arg(_xml.errorString());
}

void XmlPropertyListReader::startElement()
{
    const QStringView name = _xml.name();
    if (!_isInside) {
        if (name != QLatin1String("plist"))
            refused(QStringLiteral("no property list"));
        _isInside = true;
    } else if (name == QLatin1String("key")) {
        readKey();
    } else if (name == QLatin1String("string")) {
        addValue(readText());
    } else if (name == QLatin1String("dict")) {
        openContainer(true);
    } else if (name == QLatin1String("array")) {
        openContainer(false);
    } else if (name == QLatin1String("integer")) {
        addOrLeaveOut(XmlScalars::integer(readText()), QStringLiteral("an integer that is none or is out of range"));
    } else if (name == QLatin1String("real")) {
        addOrLeaveOut(XmlScalars::real(readText()), QStringLiteral("a real that is none"));
    } else if (name == QLatin1String("true") || name == QLatin1String("false")) {
        const bool value = name == QLatin1String("true");
        addOrLeaveOut(readText().isEmpty() ? QVariant(value) : QVariant(), QStringLiteral("text in a boolean"));
    } else if (name == QLatin1String("date")) {
        addOrLeaveOut(XmlScalars::date(readText()), QStringLiteral("a date that is none"));
    } else if (name == QLatin1String("data")) {
        addOrLeaveOut(XmlScalars::data(readText()), QStringLiteral("data that is not in base 64"));
    } else {
        const QString reason = QStringLiteral("the unknown element \"%1\"").arg(name);
        _xml.skipCurrentElement();
        addOrLeaveOut({}, reason);
    }
}

void XmlPropertyListReader::endElement()
{
    if (_open.empty()) {
        if (!_root.isValid())
            refused(QStringLiteral("no value"));
        return;
    }
    const Container closed = std::move(_open.back());
    _open.pop_back();
    if (closed.hasKey)
        refused(QStringLiteral("a key without a value"));
    else if (closed.isDictionary)
        addValue(closed.dictionary);
    else
        addValue(closed.array);
}

void XmlPropertyListReader::openContainer(bool isDictionary)
{
    if (_open.size() >= PropertyList::maximumDepth) {
        refused(QStringLiteral("values nested more than %1 deep").arg(PropertyList::maximumDepth));
        return;
    }
    _open.emplace_back();
    _open.back().isDictionary = isDictionary;
}

void XmlPropertyListReader::readKey()
{
    if (_open.empty() || !_open.back().isDictionary || _open.back().hasKey) {
        refused(QStringLiteral("a key out of place"));
        return;
    }
    _open.back().key = readText();
    _open.back().hasKey = true;
}

void XmlPropertyListReader::addValue(const QVariant &value)
{
    if (_xml.hasError())
        return;
    if (_open.empty()) {
        if (_root.isValid())
            refused(QStringLiteral("more than one value"));
        _root = value;
        return;
    }
    Container &container = _open.back();
    if (!container.isDictionary) {
        container.array.append(value);
        return;
    }
    if (!container.hasKey)
        refused(QStringLiteral("a value without a key"));
    _isWhole = _isWhole && !container.dictionary.contains(container.key);
    container.dictionary.insert(container.key, value);
    container.hasKey = false;
}

// The text up to the end of the element; empty but never null.
QString XmlPropertyListReader::readText()
{
    QString text = QLatin1String("");
    while (!_xml.hasError()) {
        switch (_xml.readNext()) {
        case QXmlStreamReader::Characters:
            text.append(_xml.text());
            break;
        case QXmlStreamReader::EndElement:
            return text;
        case QXmlStreamReader::StartElement:
            refused(QStringLiteral("an element inside a value"));
            break;
        case QXmlStreamReader::EntityReference:
            refused(QStringLiteral("an unknown entity"));
            break;
        default:
            break;
        }
    }
    return text;
}

// What is no value of ours is left out, but there is nothing left without the only one.
void XmlPropertyListReader::addOrLeaveOut(const QVariant &value, const QString &reason)
{
    if (value.isValid()) {
        addValue(value);
    } else if (_open.empty()) {
        refused(reason);
    } else {
        Container &container = _open.back();
        if (container.isDictionary && !container.hasKey)
            refused(QStringLiteral("a value without a key"));
        container.hasKey = false;
        _isWhole = false;
    }
}

void XmlPropertyListReader::refused(const QString &reason)
{
    // The first reason counts.
    if (!_xml.hasError())
        _xml.raiseError(reason);
}
