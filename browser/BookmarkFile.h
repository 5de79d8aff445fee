#pragma once

#include "platform/files/FileStamp.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <optional>

// The browser's bookmark file: a tree of folders and links, of which a bar and a menu always exist. Reread whenever
// someone else has changed it; keys and entries that are not ours stay in it.
class BookmarkFile : public QObject
{
    Q_OBJECT

public:
    // A folder or a link as the file has it, in the order of the file.
    struct Node
    {
        bool isFolder = false;
        QString title;
        QString address; // null for folders
        QList<Node> children;
    };
    // A folder that a bookmark can be put into.
    struct Folder
    {
        QString title;
        int depth = 0; // 0 for those at the top
        QList<int> path;
    };

    static QString defaultPath();

    explicit BookmarkFile(const QString &path, QObject *parent = nullptr);

    // Writes a file with an empty bar and an empty menu when there is none. False, with the reason in the log, when it
    // could not be written.
    bool ensureExists();
    // The contents of the two folders.
    QList<Node> barNodes();
    QList<Node> menuNodes();
    // Every folder, the bar and the menu first; the place to choose when the user does not care is the menu.
    QList<Folder> folders();
    static QString barTitle();
    static QString menuTitle();
    // Appends a link to the folder, to the menu when the folder has gone meanwhile, and writes the file. False, with
    // the reason in the log and nothing changed, when it could not be written.
    bool addBookmark(const QString &title, const QString &address, const Folder &folder);

Q_SIGNALS:
    // Written here; not sent for changes that others make.
    void changed();

private:
    void ensureCurrent();
    void read();
    bool write();
    QList<Node> nodesOfTopFolder(const QString &title);

    QString _path;
    bool _isRead = false;
    bool _mustKeepCopy = false; // what is on the disk could not be read
    std::optional<FileStamp> _stamp;
    QVariantMap _root;
};
