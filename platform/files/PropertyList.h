#pragma once

#include "platform/files/PropertyListDepth.h"

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantMap>

class QFile;

// Property lists: the XML form, which is read and written, and the binary form, which is read through libplist. Values
// are variants:
//
//     dictionary QVariantMap    array QVariantList    string QString    integer qlonglong (quint64 beyond its range)
//     real double               boolean bool          date QDateTime (UTC)                 data QByteArray
//
// Reading takes files up to 1 GiB and values nested up to `maximumDepth` deep; what is larger, deeper, damaged, or
// would unfold to more than the file could hold (entities, objects referred to over and over) is refused. Each refusal
// goes to the log with its reason.
//
// Less than the whole is read where a dictionary has a key twice (the later value counts), where a value is none of the
// above (an archive's identifier, a date of the year 0; it is left out, and its key with it), where text is damaged
// (bytes that are not UTF-8, and characters that XML cannot hold, are read as U+FFFD), and where text in the binary
// form holds a NUL, at which it ends. `isWhole` tells: true when everything was read, and can be written again just so.
// Who is going to write over a file that was not read whole keeps a copy of it first. The log says so too.
namespace PropertyList
{
// How the reading of a file went.
struct Reading
{
    bool ok = false;        // there is a value
    bool isWhole = false;   // see above
    bool isPassing = false; // there is none, but for a reason that may soon be over: too many open files, a busy disk
};

// How the XML form is read: the quick way first, or the general way at once, for who has tried PlainXml in vain.
enum class Xml { QuickFirst, General };

constexpr qint64 maximumFileSize = qint64(1) << 30;

// Opens a file for a reader that knows more about its contents; false when it is missing, unreadable, larger than what
// is read here or not a plain file (a pipe would keep us waiting). Nothing is logged: `readFile` says why.
bool openFile(const QString &path, QFile *file);
// An invalid variant when the file is missing, unreadable, not a plain file or refused. A missing file is not logged.
// `reading` may be null, here and below.
QVariant readFile(const QString &path, Reading *reading = nullptr, Xml xml = Xml::QuickFirst);
// The same for a file whose top level is a dictionary.
QVariantMap readDictionaryFile(const QString &path, Reading *reading = nullptr, Xml xml = Xml::QuickFirst);
QVariant fromData(const QByteArray &data, bool *isWhole = nullptr);

// The XML form, ending in a line end; empty when the value holds something that a property list cannot, or is nested
// deeper than can be read back. Characters that XML cannot hold are written as what a reader sees of them, so that the
// file stays readable for everyone: a vertical tab and a form feed as a line end, other control characters not at all,
// lone surrogates, what is no character and a text of nothing but control characters as U+FFFD.
QByteArray toXml(const QVariant &value);
// Writes the XML form, see replaceFile. False, with the reason in the log, when that failed or there is no such form.
bool writeFile(const QVariant &value, const QString &path);
} // namespace PropertyList
