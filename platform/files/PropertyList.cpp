#include "platform/files/PropertyList.h"

#include "platform/base/Log.h"
#include "platform/base/StringRules.h"
#include "platform/files/BinaryPropertyListCheck.h"
#include "platform/files/FileReplacement.h"
#include "platform/files/FileStamp.h"
#include "platform/files/PlainPropertyList.h"
#include "platform/files/XmlPropertyListReader.h"
#include "platform/files/XmlPropertyListWriter.h"

#include <QBuffer>
#include <QDateTime>
#include <QFile>
#include <QtEndian>
#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <iterator>
#include <memory>
#include <plist/plist.h>
#include <unistd.h>

namespace
{
struct Free
{
    void operator()(void *memory) const { ::free(memory); }
};
struct FreePropertyList
{
    void operator()(void *list) const { plist_free(list); }
};
template <class T>
using Allocated = std::unique_ptr<T, Free>;
using OwnedPropertyList = std::unique_ptr<void, FreePropertyList>;

constexpr qsizetype scalarMarker = 8; // where the only object of a binary property list begins

// A scalar in the binary form, which tells what libplist's own answers leave out: the sign of an integer, and dates
// more than some decades away.
QByteArray binaryForm(plist_t scalar)
{
    char *bytes = nullptr;
    uint32_t size = 0;
    plist_to_bin(scalar, &bytes, &size);
    const Allocated<char> owner(bytes);
    return bytes ? QByteArray(bytes, size) : QByteArray();
}

QVariant integerFrom(plist_t node)
{
    uint64_t bits = 0;
    plist_get_uint_val(node, &bits);
    constexpr char sixteenBytes = 0x14;
    const bool isTooLargeForSign = bits >> 63 && binaryForm(node).mid(scalarMarker).startsWith(sixteenBytes);
    return isTooLargeForSign ? QVariant(quint64(bits)) : QVariant(static_cast<qlonglong>(bits));
}

QVariant dateFrom(plist_t node)
{
    static const QDateTime epoch(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    const QByteArray bytes = binaryForm(node).mid(scalarMarker + 1);
    if (bytes.size() < qsizetype(sizeof(quint64)))
        return {};
    const double seconds = std::bit_cast<double>(qFromBigEndian<quint64>(bytes.constData()));
    if (!(std::abs(seconds) <= BinaryPropertyListCheck::furthestDate))
        return {};
    return epoch.addMSecs(qRound64(seconds * 1000));
}

QString stringFrom(plist_t node)
{
    uint64_t length = 0;
    const char *text = plist_get_string_ptr(node, &length);
    return length ? StringRules::fromUtf8({text, qsizetype(length)}) : QStringLiteral("");
}

QVariant valueFrom(plist_t node, bool *isWhole);

QVariant dictionaryFrom(plist_t node, bool *isWhole)
{
    QVariantMap dictionary;
    plist_dict_iter position = nullptr;
    plist_dict_new_iter(node, &position);
    const Allocated<void> owner(position);
    for (;;) {
        char *key = nullptr;
        plist_t child = nullptr;
        plist_dict_next_item(node, position, &key, &child);
        const Allocated<char> keyOwner(key);
        if (!child)
            return dictionary;
        const QVariant value = valueFrom(child, isWhole);
        const QString name = StringRules::fromUtf8(key);
        *isWhole = *isWhole && value.isValid() && !dictionary.contains(name);
        if (value.isValid())
            dictionary.insert(name, value);
    }
}

QVariant arrayFrom(plist_t node, bool *isWhole)
{
    QVariantList array;
    array.reserve(plist_array_get_size(node));
    plist_array_iter position = nullptr;
    plist_array_new_iter(node, &position);
    const Allocated<void> owner(position);
    for (;;) {
        plist_t child = nullptr;
        plist_array_next_item(node, position, &child);
        if (!child)
            return array;
        const QVariant value = valueFrom(child, isWhole);
        *isWhole = *isWhole && value.isValid();
        if (value.isValid())
            array.append(value);
    }
}

// An invalid variant for what has no place among our values. The depth has been looked at before.
QVariant valueFrom(plist_t node, bool *isWhole)
{
    switch (plist_get_node_type(node)) {
    case PLIST_DICT:
        return dictionaryFrom(node, isWhole);
    case PLIST_ARRAY:
        return arrayFrom(node, isWhole);
    case PLIST_STRING:
        return stringFrom(node);
    case PLIST_UINT:
        return integerFrom(node);
    case PLIST_DATE:
        return dateFrom(node);
    case PLIST_BOOLEAN: {
        uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return value != 0;
    }
    case PLIST_REAL: {
        double value = 0;
        plist_get_real_val(node, &value);
        return value;
    }
    case PLIST_DATA: {
        uint64_t length = 0;
        const char *bytes = plist_get_data_ptr(node, &length);
        return length ? QByteArray(bytes, qsizetype(length)) : QByteArray("");
    }
    default:
        return {};
    }
}

QVariant fromBinary(const QByteArray &data, QString *reason, bool *isWhole)
{
    BinaryPropertyListCheck check(data);
    *reason = check.reasonToRefuse();
    *isWhole = !check.hasDamagedText();
    if (!reason->isNull())
        return {};
    const QByteArray unfoldable = check.forLibrary();
    plist_t list = nullptr;
    plist_from_bin(unfoldable.constData(), static_cast<uint32_t>(unfoldable.size()), &list);
    const OwnedPropertyList owner(list);
    QVariant value = list ? valueFrom(list, isWhole) : QVariant();
    if (!value.isValid())
        *reason = QStringLiteral("damaged, or a value of an unknown kind");
    return value;
}

QVariant fromXml(QIODevice *device, PropertyList::Xml xml, QString *reason, bool *isWhole)
{
    const qint64 beginning = device->pos();
    if (xml == PropertyList::Xml::QuickFirst) {
        QVariant value = PlainPropertyList(*device).read();
        *isWhole = value.isValid();
        if (value.isValid() || !device->seek(beginning))
            return value;
    }
    XmlPropertyListReader reader(device);
    QVariant value = reader.read();
    *isWhole = reader.isWhole();
    if (!value.isValid())
        *reason = reader.errorString();
    return value;
}

QVariant fromDevice(QIODevice *device, PropertyList::Xml xml, QString *reason, bool *isWhole)
{
    *isWhole = false;
    const QByteArray start = device->peek(8);
    if (start.startsWith("bplist"))
        return fromBinary(device->readAll(), reason, isWhole);
    // Two or four bytes a character, which nobody writes property lists in.
    if (start.left(4).contains('\0') || start.startsWith("\xfe\xff") || start.startsWith("\xff\xfe")) {
        *reason = QStringLiteral("not in UTF-8");
        return {};
    }
    return fromXml(device, xml, reason, isWhole);
}

void logRefusal(const QString &path, const QString &reason)
{
    qCWarning(logFiles).noquote() << "Could not read the property list" << path << "-" << reason;
}

void logIfNotWhole(const QString &path, const QVariant &value, bool isWhole)
{
    if (value.isValid() && !isWhole)
        qCWarning(logFiles).noquote() << "Could not read the whole of the property list" << path
                                      << "- it has a key twice, damaged text, or a value of an unknown kind";
}

// Whether such an error may be over soon, without anything about the file changing.
bool mayPass(int error)
{
    constexpr int lasting[] = {ENOENT, ENOTDIR, EACCES, EPERM, ELOOP, ENAMETOOLONG, ENXIO};
    return std::find(std::begin(lasting), std::end(lasting), error) == std::end(lasting);
}

// Opens a plain file; anything else (a pipe would keep us waiting, a device might do anything) is not touched. Null
// when that worked, else the reason, empty when there is no such file.
QString openPlainFile(const QString &path, QFile *file, bool *isPassing)
{
    const std::optional<FileStamp> stamp = FileStamp::ofFile(path);
    *isPassing = !stamp && mayPass(errno);
    if (!stamp)
        return errno == ENOENT || errno == ENOTDIR ? QStringLiteral("") : qt_error_string(errno);
    if (!stamp->isPlainFile)
        return QStringLiteral("not a plain file");
    if (stamp->size > PropertyList::maximumFileSize)
        return QStringLiteral("larger than 1 GiB");
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    *isPassing = descriptor < 0 && mayPass(errno);
    if (descriptor < 0)
        return qt_error_string(errno);
    if (!file->open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return file->errorString();
    }
    return {};
}

// Remembers that a reading failed, whatever happens then.
class NotingFile : public QFile
{
public:
    bool hasFailed() const { return _hasFailed; }

protected:
    qint64 readData(char *data, qint64 most) override
    {
        const qint64 length = QFile::readData(data, most);
        _hasFailed = _hasFailed || length < 0;
        return length;
    }

private:
    bool _hasFailed = false;
};
} // namespace

bool PropertyList::openFile(const QString &path, QFile *file)
{
    bool isPassing = false;
    return openPlainFile(path, file, &isPassing).isNull();
}

QVariant PropertyList::readFile(const QString &path, Reading *reading, Xml xml)
{
    Reading result;
    NotingFile file;
    QString reason = openPlainFile(path, &file, &result.isPassing);
    QVariant value;
    if (reason.isNull())
        value = fromDevice(&file, xml, &reason, &result.isWhole);
    result.ok = value.isValid();
    result.isWhole = result.ok && result.isWhole;
    result.isPassing = result.isPassing || (!result.ok && file.hasFailed());
    if (!reason.isEmpty())
        logRefusal(path, file.hasFailed() ? QStringLiteral("the disk failed, ") + reason : reason);
    logIfNotWhole(path, value, result.isWhole);
    if (reading)
        *reading = result;
    return value;
}

QVariantMap PropertyList::readDictionaryFile(const QString &path, Reading *reading, Xml xml)
{
    Reading result;
    const QVariant value = readFile(path, &result, xml);
    const bool isDictionary = value.metaType().id() == QMetaType::QVariantMap;
    if (value.isValid() && !isDictionary)
        logRefusal(path, QStringLiteral("its top level is no dictionary"));
    result.ok = isDictionary;
    result.isWhole = result.isWhole && isDictionary;
    if (reading)
        *reading = result;
    return isDictionary ? value.toMap() : QVariantMap();
}

QVariant PropertyList::fromData(const QByteArray &data, bool *isWhole)
{
    const QString fromMemory = QStringLiteral("(from memory)");
    QString reason;
    QVariant value;
    bool whole = false;
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    if (data.size() > maximumFileSize)
        reason = QStringLiteral("larger than 1 GiB");
    else
        value = fromDevice(&buffer, Xml::QuickFirst, &reason, &whole);
    if (!reason.isNull())
        logRefusal(fromMemory, reason);
    logIfNotWhole(fromMemory, value, whole);
    if (isWhole)
        *isWhole = value.isValid() && whole;
    return value;
}

QByteArray PropertyList::toXml(const QVariant &value)
{
    return XmlPropertyListWriter::write(value);
}

bool PropertyList::writeFile(const QVariant &value, const QString &path)
{
    const QByteArray xml = toXml(value);
    const QString reason =
        xml.isEmpty() ? QStringLiteral("it holds something that a property list cannot") : replaceFile(path, xml);
    if (!reason.isNull())
        qCWarning(logFiles).noquote() << "Could not write the property list" << path << "-" << reason;
    return reason.isNull();
}
