#pragma once

#include "platform/files/FileStamp.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QStringList>
#include <QThread>
#include <QTimer>
#include <QVariantMap>
#include <list>
#include <memory>
#include <optional>

// The browser's history file: one entry per address, the latest visit first. Read when it is first needed and then kept
// in memory. Visits are written together, about a second after the first of them; longer after it when the file is so
// large that writing it takes long. A thread does the writing, so that a long history stops nobody. A file that someone
// else has changed meanwhile is read again first, and the visits are added to it; keys and entries that are not ours
// stay in it.
class HistoryFile : public QObject
{
    Q_OBJECT

public:
    struct Entry
    {
        QString address;
        QString title;
        QDateTime lastVisited;
        int visitCount = 0;
    };

    static QString defaultPath();

    explicit HistoryFile(const QString &path, QObject *parent = nullptr);
    // Writes what is not written yet.
    ~HistoryFile() override;

    // Puts the address in front, whether it is known or new. An entry without title is titled with its address.
    void addVisit(const QString &address, const QString &title, const QDateTime &time = QDateTime::currentDateTime());
    // Gives a known address another title; its place and its time stay.
    void setTitle(const QString &address, const QString &title);
    // The latest visits, newest first.
    QList<Entry> latest(int count);
    int count();
    // Forgets every visit. Not to be taken back.
    void clear();
    // Writes now what is not written yet, and waits for it. False, with the reason in the log, when it could not be
    // written; it is then tried again with the next visit.
    bool flush();

private:
    struct Change
    {
        QString address;
        QString title;
        std::optional<QDateTime> visited; // none for a new title
    };
    using Entries = std::list<QVariant>; // entries of a kind that is not ours stay in it as they are

    void ensureRead();
    void read();
    void note(const Change &change);
    void apply(const Change &change);
    QVariantMap contents() const;
    void writeLater();
    void startWriting();
    void finishWriting();

    QString _path;
    bool _isRead = false;
    bool _mustKeepCopy = false; // what is on the disk could not be read
    std::optional<FileStamp> _stamp;
    QVariantMap _otherKeys;
    Entries _entries;
    QHash<QString, Entries::iterator> _byAddress;
    QList<Change> _unwritten;
    bool _wasCleared = false;
    // What the thread is about to write, and how that went; null while there is none.
    struct Writing
    {
        std::unique_ptr<QThread> thread;
        QList<Change> changes;
        bool clears = false;
        bool succeeded = false;
        std::optional<FileStamp> stamp;
        qint64 duration = 0; // milliseconds
    };
    std::unique_ptr<Writing> _writing;
    qint64 _lastWriteDuration = 0; // milliseconds
    QElapsedTimer _sinceWrite;     // invalid before the first
    QTimer _writeTimer;
};
