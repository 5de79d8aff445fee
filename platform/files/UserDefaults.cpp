#include "platform/files/UserDefaults.h"

#include "platform/base/Log.h"
#include "platform/files/DictionaryMerge.h"
#include "platform/files/FileLock.h"
#include "platform/files/FileReplacement.h"
#include "platform/files/KeptCopy.h"
#include "platform/files/Paths.h"
#include "platform/files/PropertyList.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace std::chrono_literals;

namespace
{
constexpr auto writeDelay = 500ms;
constexpr auto delayAfterBusyLock = 250ms;
constexpr auto delayAfterFailure = 30s;
constexpr auto betweenLooks = 1s;
constexpr auto patienceAtTheEnd = 500ms; // with others' locks

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
    connect(&_lookTimer, &QTimer::timeout, this, &UserDefaults::lookForChanges);
}

UserDefaults::~UserDefaults()
{
    writeBeforeTheEnd();
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
    QStringList changedElsewhere;
    const WriteResult result = writeChanges(&changedElsewhere, std::nullopt);
    if (result != Written && QCoreApplication::instance() && !QCoreApplication::closingDown())
        _writeTimer.start(result == Busy ? delayAfterBusyLock : delayAfterFailure);
    tell(changedElsewhere);
    return result == Written;
}

// Of the results of several domains, the one counts that is to be tried again the soonest.
UserDefaults::WriteResult UserDefaults::writeChanges(QStringList *changedElsewhere,
                                                     std::optional<QDeadlineTimer> lastMoment)
{
    _writeTimer.stop();
    WriteResult result = Written;
    for (auto domain = _domains.begin(); domain != _domains.end(); ++domain) {
        if (!domain->isChanged)
            continue;
        const QVariantMap before = domain->values;
        const WriteResult written = writeDomain(*domain, domain.key(), lastMoment);
        if (written != Written && result != Busy)
            result = written;
        if (domain->values != before)
            changedElsewhere->append(domain->name);
    }
    return result;
}

// Nobody is told any more. A lock that is still held then is passed over: the file is replaced whole, and what its
// holder is about to write is a smaller loss than what the user has set here.
void UserDefaults::writeBeforeTheEnd()
{
    QStringList changedElsewhere;
    writeChanges(&changedElsewhere, QDeadlineTimer(patienceAtTheEnd));
}

void UserDefaults::lookForChanges()
{
    QStringList changed;
    for (auto domain = _domains.begin(); domain != _domains.end(); ++domain) {
        if (readAgain(*domain, domain.key()))
            changed.append(domain->name);
    }
    tell(changed);
}

void UserDefaults::tell(const QStringList &changedElsewhere)
{
    for (const QString &name : changedElsewhere)
        Q_EMIT domainChangedElsewhere(name);
    const QStringList copies = std::exchange(_untoldCopies, {});
    for (const QString &copy : copies)
        Q_EMIT copyKept(copy);
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
    domain.name = name;
    readAgain(domain, path);
    if (QCoreApplication::instance() && !_lookTimer.isActive())
        _lookTimer.start(betweenLooks);
    return *_domains.insert(path, domain);
}

bool UserDefaults::readAgain(Domain &domain, const QString &path)
{
    const std::optional<FileStamp> stamp = FileStamp::ofFile(path);
    if (stamp && domain.stamp && stamp->hasContentsOf(*domain.stamp))
        return false;
    domain.stamp = stamp;
    domain.mustKeepFile = false;
    if (!stamp)
        return false;
    PropertyList::Reading reading;
    const QVariantMap theirs = PropertyList::readDictionaryFile(path, &reading);
    domain.mustKeepFile = !reading.isWhole;
    if (reading.isPassing)
        domain.stamp.reset(); // to be read at the next look
    if (!reading.ok)
        return false;
    const QVariantMap before = domain.values;
    domain.values = mergedDictionary(domain.known, domain.values, theirs);
    domain.known = theirs;
    domain.exists = domain.isChanged ? domain.exists || !domain.values.isEmpty() : true;
    return domain.values != before;
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
    connect(application, &QCoreApplication::aboutToQuit, this, &UserDefaults::writeBeforeTheEnd, Qt::UniqueConnection);
    if (!_writeTimer.isActive() || _writeTimer.remainingTimeAsDuration() > writeDelay)
        _writeTimer.start(writeDelay);
}

UserDefaults::WriteResult UserDefaults::writeDomain(Domain &domain, const QString &path,
                                                    std::optional<QDeadlineTimer> lastMoment)
{
    if (domain.exists && !QDir().mkpath(QFileInfo(path).path())) {
        qCWarning(logFiles).noquote() << "Could not make the folder of" << path;
        return Failed;
    }
    FileLock lock(path);
    const auto patience = lastMoment ? std::chrono::milliseconds(lastMoment->remainingTime()) : 0ms;
    if (lock.lockWithin(patience) == FileLock::Busy) {
        if (!lastMoment)
            return Busy;
        qCWarning(logFiles).noquote() << "Writing" << path << "although another process has it locked";
    }
    readAgain(domain, path);
    if (!replaceFileOf(domain, path))
        return Failed;
    domain.isChanged = false;
    domain.known = domain.values;
    domain.stamp = FileStamp::ofFile(path);
    return Written;
}

bool UserDefaults::replaceFileOf(Domain &domain, const QString &path)
{
    const QString copy = domain.mustKeepFile ? keepCopyOfFile(path) : QString();
    if (domain.mustKeepFile && copy.isNull())
        return false;
    if (domain.mustKeepFile)
        _untoldCopies.append(copy);
    domain.mustKeepFile = false;
    if (domain.exists)
        return PropertyList::writeFile(domain.values, path);
    QFile file(path);
    if (!file.exists() || file.remove())
        return true;
    qCWarning(logFiles).noquote() << "Could not remove" << path << "-" << file.errorString();
    return false;
}
