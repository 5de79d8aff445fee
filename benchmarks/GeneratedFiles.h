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
    // The history in the binary form.
    QString binaryHistory() const { return fileNamed("Binary.plist"); }
    QString noFile() const { return fileNamed("Missing.plist"); }

    // Writes the history again, with one visit more in front.
    bool addVisit();

private:
    QString fileNamed(const char *name) const;
    bool writeBinaryForm() const;

    QString _folder;
    int _entries;
    int _added = 0;
    QVariantMap _history;
};
