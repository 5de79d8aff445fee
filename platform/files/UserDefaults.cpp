#include "platform/files/UserDefaults.h"

#include "platform/base/Log.h"
#include "platform/files/FileReplacement.h"
#include "platform/files/KeptCopy.h"
#include "platform/files/Paths.h"
#include "platform/files/PropertyList.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace
{
constexpr int writeDelay = 500;       // milliseconds
constexpr int retryDelay = 30 * 1000; // after a write that failed

QString pathOfDomain(const QString &name)
{
    return Paths::homeDirectory() + QLatin1String("/Library/Preferences/") + name + QLatin1String(".plist");
}
} // namespace

UserDefaults &UserDefaults::standardUserDefaults()
{
    static UserDefaults defaults;
    return defaults;
}

UserDefaults::UserDefaults()
{
    _writeTimer.setSingleShot(true);
    connect(&_writeTimer, &QTimer::timeout, this, &UserDefaults::synchronize);
}

UserDefaults::~UserDefaults()
{
    synchronize();
}

QVariantMap UserDefaults::persistentDomainForName(const QString &name)
{
    return domainNamed(name).values;
}

void UserDefaults::setPersistentDomainForName(const QVariantMap &domain, const QString &name)
{
    setDomain(domain, true, name);
}

void UserDefaults::removePersistentDomainForName(const QString &name)
{
    setDomain({}, false, name);
}

bool UserDefaults::hasPersistentDomainForName(const QString &name)
{
    return domainNamed(name).exists;
}

bool UserDefaults::synchronize()
{
    _writeTimer.stop();
    bool isAllWritten = true;
    for (auto domain = _domains.begin(); domain != _domains.end(); ++domain) {
        if (!domain->isChanged)
            continue;
        domain->isChanged = !writeDomain(*domain, domain.key());
        isAllWritten = isAllWritten && !domain->isChanged;
    }
    if (!isAllWritten && QCoreApplication::instance() && !QCoreApplication::closingDown())
        _writeTimer.start(retryDelay);
    return isAllWritten;
}

void UserDefaults::reset()
{
    _writeTimer.stop();
    _domains.clear();
}

UserDefaults::Domain &UserDefaults::domainNamed(const QString &name)
{
    const QString path = pathOfDomain(name);
    const auto known = _domains.find(path);
    if (known != _domains.end())
        return *known;
    removeAbandonedSaves(path);
    Domain domain;
    PropertyList::Reading reading;
    domain.values = PropertyList::readDictionaryFile(path, &reading);
    domain.exists = reading.ok;
    domain.mustKeepFile = !reading.isWhole && QFileInfo::exists(path);
    return *_domains.insert(path, domain);
}

void UserDefaults::setDomain(const QVariantMap &values, bool exists, const QString &name)
{
    Domain &domain = domainNamed(name);
    domain.values = values;
    domain.exists = exists;
    domain.isChanged = true;
    QCoreApplication *application = QCoreApplication::instance();
    if (!application)
        return; // written when this goes
    connect(application, &QCoreApplication::aboutToQuit, this, &UserDefaults::synchronize, Qt::UniqueConnection);
    if (!_writeTimer.isActive() || _writeTimer.remainingTime() > writeDelay)
        _writeTimer.start(writeDelay);
}

bool UserDefaults::writeDomain(Domain &domain, const QString &path)
{
    if (domain.mustKeepFile && keepCopyOfFile(path).isNull())
        return false;
    domain.mustKeepFile = false;
    if (!domain.exists) {
        QFile file(path);
        if (!file.exists() || file.remove())
            return true;
        qCWarning(logFiles).noquote() << "Could not remove" << path << "-" << file.errorString();
        return false;
    }
    if (!QDir().mkpath(QFileInfo(path).path())) {
        qCWarning(logFiles).noquote() << "Could not make the folder of" << path;
        return false;
    }
    return PropertyList::writeFile(domain.values, path);
}
