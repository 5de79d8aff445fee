#include "benchmarks/GeneratedFiles.h"

#include "benchmarks/LifelikeBrowser.h"
#include "platform/files/PropertyList.h"

#include <QFile>
#include <cstdlib>
#include <plist/plist.h>

namespace
{
bool writeFile(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
}
} // namespace

GeneratedFiles::GeneratedFiles(const QString &folder, int entries) : _folder(folder), _entries(entries) {}

QString GeneratedFiles::fileNamed(const char *name) const
{
    return _folder + QLatin1Char('/') + QLatin1String(name);
}

bool GeneratedFiles::write()
{
    LifelikeBrowser browser;
    _history = browser.history(_entries);
    _bookmarks = browser.bookmarks(_entries / 5);
    return writeHistory(history()) && writeHistory(binaryHistory()) && writeHistory(crlfHistory()) &&
           PropertyList::writeFile(_bookmarks, bookmarks());
}

bool GeneratedFiles::writeHistory(const QString &file) const
{
    if (file == binaryHistory())
        return writeBinaryHistory();
    if (file == crlfHistory())
        return writeFile(file, PropertyList::toXml(_history).replace("\n", "\r\n"));
    return PropertyList::writeFile(_history, file);
}

// By a library of others: ours writes XML alone.
bool GeneratedFiles::writeBinaryHistory() const
{
    const QByteArray xml = PropertyList::toXml(_history);
    plist_t list = nullptr;
    plist_from_xml(xml.constData(), uint32_t(xml.size()), &list);
    char *binary = nullptr;
    uint32_t size = 0;
    if (list)
        plist_to_bin(list, &binary, &size);
    const bool isWritten = binary && writeFile(binaryHistory(), QByteArray::fromRawData(binary, size));
    std::free(binary);
    plist_free(list);
    return isWritten;
}

bool GeneratedFiles::addVisitTo(const QString &file)
{
    const QString key = QStringLiteral("WebHistoryDates");
    QVariantList entries = _history.take(key).toList();
    entries.prepend(LifelikeBrowser::visitNow(++_added));
    _history.insert(key, entries);
    return writeHistory(file);
}

bool GeneratedFiles::addBookmark()
{
    const QString key = QStringLiteral("Children");
    QVariantList children = _bookmarks.take(key).toList();
    children.append(LifelikeBrowser::bookmarkNow(++_added));
    _bookmarks.insert(key, children);
    return PropertyList::writeFile(_bookmarks, bookmarks());
}
