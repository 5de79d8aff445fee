#pragma once

#include <QDate>
#include <QString>
#include <vector>

// The dated backups of the item file, in the folder beside it: `Backups/Bookmarks-2026-11-22.plist`. The newest
// fourteen stay, one a day, and of the months before the newest one's the last of each, for twelve of them. Those from
// the time to come, of a clock that was wrong, are counted apart. Other files there are left alone.
class Backups
{
public:
    struct Backup
    {
        QDate day;
        QString path;
    };

    explicit Backups(const QString &itemFilePath);

    QString folder() const { return _folder; }
    // The newest first; what each holds is told by ItemCount.
    std::vector<Backup> list() const;
    bool hasBackupOf(const QDate &day) const;
    // Copies the item file as it is, unless there is a backup of that day. It is a copy and no second name, since there
    // are programs that write a file in place. Null when there is one now, else the reason why not.
    QString make(const QDate &today) const;

private:
    QString pathOf(const QDate &day) const;
    void removeSurplus(const QDate &today) const;

    QString _itemFilePath;
    QString _folder;
    QString _name;   // before the date
    QString _suffix; // behind it, with its dot
};
