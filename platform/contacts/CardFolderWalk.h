#pragma once

#include "platform/files/FileStamp.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <dirent.h>
#include <memory>
#include <optional>
#include <vector>

// One walk through a folder of cards, and two levels of the folders in it, a step at a time. Nothing is opened but
// folders, and nothing hidden is looked at. Paths are relative to the folder, its own is empty.
class CardFolderWalk
{
public:
    struct File
    {
        QString path; // ends in ".vcf"
        FileStamp stamp;
    };
    // What a folder is on the disk.
    struct Identity
    {
        quint64 device = 0;
        quint64 inode = 0;
    };
    using Folders = QHash<QString, Identity>;

    static constexpr int mostLevels = 2;
    static constexpr int mostFolders = 1000;
    static constexpr int mostFiles = 200'000;

    // `before`: the folders that the walk before this one went through.
    explicit CardFolderWalk(const QString &folder, const Folders &before = {});

    // Looks at the next thing, which takes no time worth mentioning.
    void step();
    bool isOver() const { return _waiting.empty() && !_open; }
    // The card file that the last step came upon; none when it was something else.
    const std::optional<File> &file() const { return _file; }

    // When it is over: the folders that it went through.
    const Folders &folders() const { return _folders; }
    // Whether a file that the walk did not come upon may be there all the same: a folder above it could not be read, or
    // is empty because what was mounted there is not any more.
    bool mayHaveMissed(const QString &path) const;

private:
    struct Closing
    {
        void operator()(DIR *directory) const { ::closedir(directory); }
    };
    struct Folder
    {
        QString path;
        int level = 0;
    };

    void openNext();
    void close(bool isWhole);
    void look(const QString &name);
    void waitForFolder(const QString &path, const struct stat &status);
    QString absolute(const QString &path) const;

    const QString _root;
    const Folders _before;
    std::vector<Folder> _waiting;
    std::unique_ptr<DIR, Closing> _open;
    Folder _current; // is open
    bool _isCurrentEmpty = true;
    std::optional<File> _file;
    int _files = 0;
    Folders _folders;
    QSet<QPair<quint64, quint64>> _known; // devices and inodes, since a link may lead back
    QSet<QString> _unsure;
};
