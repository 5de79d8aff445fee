#pragma once

#include <QString>
#include <QVariantMap>

// The browser's files as every bench reads them, in a folder of the caller's.
class GeneratedFiles
{
public:
    // `entries`: how many visits the history holds; the bookmarks are a fifth as many.
    GeneratedFiles(const QString &folder, int entries);

    // Makes the contents and writes them; needed once a folder. False when that fails.
    bool write();

    int entries() const { return _entries; }
    const QString &folder() const { return _folder; }
    QString history() const { return fileNamed("History.plist"); }
    QString bookmarks() const { return fileNamed("Bookmarks.plist"); }
    // The history in the binary form, and with line ends of two characters.
    QString binaryHistory() const { return fileNamed("Binary.plist"); }
    QString crlfHistory() const { return fileNamed("LineEnds.plist"); }
    QString noFile() const { return fileNamed("Missing.plist"); }

    // Writes one of the three files of the history again, with one visit more in front.
    bool addVisitTo(const QString &file);
    // Writes the bookmarks again, with one more at the end.
    bool addBookmark();

private:
    QString fileNamed(const char *name) const;
    bool writeHistory(const QString &file) const;
    bool writeBinaryHistory() const;

    QString _folder;
    int _entries;
    int _added = 0;
    QVariantMap _history;
    QVariantMap _bookmarks;
};
