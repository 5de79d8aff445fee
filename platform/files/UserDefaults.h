#pragma once

#include "platform/files/FileStamp.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariantMap>
#include <optional>

// The user-defaults store: persistent domains, each a property list `~/Library/Preferences/<name>.plist`. A change is
// seen by every reader in the process at once, is written within a second, and at the latest when the application
// quits.
//
// A file may have many writers. It is read again before it is written, under a lock, and what was changed here is put
// into what lies there, key by key (see mergedDictionary). What another process has written counts here within a second
// or two. A file that has vanished tells nothing: the domain stays as it is, and is written whole with the next change.
class UserDefaults : public QObject
{
    Q_OBJECT

public:
    static UserDefaults &standardUserDefaults();

    UserDefaults();
    ~UserDefaults() override;

    // The domain as it is now; empty when it does not exist. A file that is there but cannot be read is kept aside
    // under another name before the domain is first written.
    QVariantMap persistentDomainForName(const QString &name);
    void setPersistentDomainForName(const QVariantMap &domain, const QString &name);
    void removePersistentDomainForName(const QString &name);
    // Whether the domain exists, in memory or on disk.
    bool hasPersistentDomainForName(const QString &name);

    // Writes every change that is not on disk yet. False when one of them could not be written, or another process has
    // the lock just now; it stays pending. Never waits.
    bool synchronize();
    // Reads again what other processes have changed, as happens once a second.
    void lookForChanges();
    // Forgets what was read, for tests that change their home directory.
    void reset();

Q_SIGNALS:
    // Another process has changed the domain, whose values are there already.
    void domainChangedElsewhere(const QString &name);
    // A file that could not be read whole was copied aside before it was written over.
    void copyKept(const QString &copy);

private:
    struct Domain
    {
        QString name;
        QVariantMap values;
        QVariantMap known;              // as it was read or written last
        std::optional<FileStamp> stamp; // of the file that `known` comes from
        bool exists = false;
        bool isChanged = false;    // not on the disk yet
        bool mustKeepFile = false; // it was not read whole, and is kept aside before anything is written over it
    };
    enum WriteResult { Written, Busy, Failed };

    Domain &domainNamed(const QString &name);
    void setDomain(const QVariantMap &values, bool exists, const QString &name);
    // Whether that changes the values.
    bool readAgain(Domain &domain, const QString &path);
    WriteResult writeChanges(QStringList *changedElsewhere, std::optional<QDeadlineTimer> lastMoment);
    WriteResult writeDomain(Domain &domain, const QString &path, std::optional<QDeadlineTimer> lastMoment);
    bool replaceFileOf(Domain &domain, const QString &path);
    void writeBeforeTheEnd();
    void tell(const QStringList &changedElsewhere);

    QHash<QString, Domain> _domains; // by the path of the file
    QStringList _untoldCopies;
    QTimer _writeTimer;
    QTimer _lookTimer;
};
