#pragma once

#include <QString>
#include <QTemporaryDir>

// A home directory of a test's own: `$HOME` (and the desktop's directories below it) until this goes.
//
//     TemporaryHome home;
//     home.path("Library/Wayfold/Bookmarks.plist")
class TemporaryHome
{
public:
    TemporaryHome();
    ~TemporaryHome();

    QString path(const QString &relative = QString()) const;
    // Writes a file, making the folders on the way to it.
    void write(const QString &relative, const QByteArray &contents) const;
    QByteArray read(const QString &relative) const;

private:
    QTemporaryDir _directory;
    QByteArray _oldHome;
};
