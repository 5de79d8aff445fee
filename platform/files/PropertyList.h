#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantMap>

// Property lists: the XML form, which is read and written, and the binary form, which is read through libplist. Values
// are variants:
//
//     dictionary QVariantMap    array QVariantList    string QString    integer qlonglong (quint64 beyond its range)
//     real double               boolean bool          date QDateTime (UTC)                 data QByteArray
//
// Reading takes files up to 1 GiB and values nested up to `maximumDepth` deep; what is larger, deeper, damaged, or
// would unfold to more than the file could hold (entities, objects referred to over and over) is refused. Each refusal
// goes to the log with its reason. Text in the binary form ends at its first NUL, which no text of ours holds.
namespace PropertyList
{
constexpr qint64 maximumFileSize = qint64(1) << 30;
constexpr int maximumDepth = 1024;

// An invalid variant when the file is missing, unreadable, not a plain file or refused. A missing file is not logged.
QVariant readFile(const QString &path);
// The same for a file whose top level is a dictionary; `ok` (may be null) tells an empty dictionary from none.
QVariantMap readDictionaryFile(const QString &path, bool *ok = nullptr);
QVariant fromData(const QByteArray &data);

// The XML form, ending in a line end; empty when the value holds something that a property list cannot, or is nested
// deeper than can be read back. Characters that XML cannot hold (control characters, lone surrogates) are written as
// U+FFFD, so that the file stays readable for everyone.
QByteArray toXml(const QVariant &value);
// Writes the XML form to a temporary file beside `path`, flushes it to the disk, puts it in place of the old file and
// flushes the directory. False, with the reason in the log and the old file whole, when any of this fails.
bool writeFile(const QVariant &value, const QString &path);
} // namespace PropertyList
