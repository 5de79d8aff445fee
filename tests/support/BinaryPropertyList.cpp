#include "tests/support/BinaryPropertyList.h"

#include <QVariantMap>
#include <QtEndian>
#include <algorithm>
#include <bit>
#include <vector>

namespace
{
template <class T>
QByteArray bigEndian(T number)
{
    QByteArray bytes(sizeof(T), 0);
    qToBigEndian(number, bytes.data());
    return bytes;
}

QByteArray head(int kind, qsizetype size)
{
    if (size < 15)
        return QByteArray(1, char(kind << 4 | int(size)));
    return QByteArray(1, char(kind << 4 | 15)) + '\x12' + bigEndian(quint32(size));
}

QByteArray textObject(const QString &text)
{
    if (std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; }))
        return head(5, text.size()) + text.toLatin1();
    QByteArray object = head(6, text.size());
    for (const QChar c : text)
        object += bigEndian(c.unicode());
    return object;
}

// References and offsets take four bytes.
class Writer
{
public:
    quint32 add(const QVariant &value)
    {
        const std::size_t number = _objects.size();
        _objects.emplace_back();
        const QByteArray object = objectOf(value);
        _objects[number] = object;
        return quint32(number);
    }

    QByteArray file() const
    {
        QByteArray bytes = "bplist00";
        QByteArray offsets;
        for (const QByteArray &object : _objects) {
            offsets += bigEndian(quint32(bytes.size()));
            bytes += object;
        }
        const quint64 table = quint64(bytes.size());
        return bytes + offsets + QByteArray(6, 0) + "\x04\x04" + bigEndian(quint64(_objects.size())) +
               bigEndian(quint64(0)) + bigEndian(table);
    }

private:
    QByteArray objectOf(const QVariant &value)
    {
        switch (value.typeId()) {
        case QMetaType::QVariantMap:
            return dictionaryObject(value.toMap());
        case QMetaType::QVariantList:
            return arrayObject(value.toList());
        case QMetaType::QString:
            return textObject(value.toString());
        case QMetaType::QByteArray:
            return head(4, value.toByteArray().size()) + value.toByteArray();
        case QMetaType::Bool:
            return value.toBool() ? "\x09" : "\x08";
        case QMetaType::Double:
            return '\x23' + bigEndian(std::bit_cast<quint64>(value.toDouble()));
        case QMetaType::QDateTime:
            return '\x33' +
                   bigEndian(std::bit_cast<quint64>(double(value.toDateTime().toSecsSinceEpoch()) - 978307200));
        default:
            return '\x13' + bigEndian(value.toLongLong());
        }
    }

    QByteArray dictionaryObject(const QVariantMap &dictionary)
    {
        QByteArray references;
        for (const QString &key : dictionary.keys())
            references += bigEndian(add(key));
        for (const QVariant &value : dictionary)
            references += bigEndian(add(value));
        return head(13, dictionary.size()) + references;
    }

    QByteArray arrayObject(const QVariantList &array)
    {
        QByteArray references;
        for (const QVariant &value : array)
            references += bigEndian(add(value));
        return head(10, array.size()) + references;
    }

    std::vector<QByteArray> _objects;
};
} // namespace

QByteArray binaryPropertyList(const QVariant &value)
{
    Writer writer;
    writer.add(value);
    return writer.file();
}
