#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariantMap>

// The user-defaults store: persistent domains, each a property list `~/Library/Preferences/<name>.plist`. A change is
// seen by every reader in the process at once, is written within a second, and at the latest when the application
// quits.
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

    // Writes every change that is not on disk yet. False when one of them could not be written; it stays pending.
    bool synchronize();
    // Forgets what was read, for tests that change their home directory.
    void reset();

private:
    struct Domain
    {
        QVariantMap values;
        bool exists = false;
        bool isChanged = false;    // not on the disk yet
        bool mustKeepFile = false; // it was not read whole, and is kept aside before anything is written over it
    };

    Domain &domainNamed(const QString &name);
    void setDomain(const QVariantMap &values, bool exists, const QString &name);
    bool writeDomain(Domain &domain, const QString &path);

    QHash<QString, Domain> _domains; // by the path of the file
    QTimer _writeTimer;
};
