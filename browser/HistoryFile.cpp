#include "browser/HistoryFile.h"

#include "platform/base/Log.h"
#include "platform/files/FileReplacement.h"
#include "platform/files/KeptCopy.h"
#include "platform/files/Paths.h"
#include "platform/files/PropertyList.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <utility>

namespace
{
const QString addressKey = QStringLiteral("");
const QString titleKey = QStringLiteral("title");
const QString dateKey = QStringLiteral("lastVisitedDate");
const QString countKey = QStringLiteral("visitCount");
const QString entriesKey = QStringLiteral("WebHistoryDates");
const QString versionKey = QStringLiteral("WebHistoryFileVersion");

// In milliseconds: long enough for a page to tell its title, and short enough for the drawer, which looks every second,
// to show a visit within two.
constexpr int writeDelay = 200;

const QDateTime referenceDate(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);

QString storedDate(const QDateTime &time)
{
    return QString::number(referenceDate.msecsTo(time) / 1000.0, 'f', 1);
}

QDateTime readDate(const QVariantMap &entry)
{
    const double seconds = entry.value(dateKey).toString().toDouble();
    return referenceDate.addMSecs(qRound64(seconds * 1000)).toLocalTime();
}
} // namespace

QString HistoryFile::defaultPath()
{
    return Paths::expandingTilde(QStringLiteral("~/Library/Safari/History.plist"));
}

HistoryFile::HistoryFile(const QString &path, QObject *parent) : QObject(parent), _path(path)
{
    _writeTimer.setSingleShot(true);
    connect(&_writeTimer, &QTimer::timeout, this, &HistoryFile::startWriting);
}

HistoryFile::~HistoryFile()
{
    flush();
}

void HistoryFile::addVisit(const QString &address, const QString &title, const QDateTime &time)
{
    if (!address.isEmpty())
        note({address, title.isEmpty() ? address : title, time});
}

void HistoryFile::setTitle(const QString &address, const QString &title)
{
    ensureRead();
    const auto found = _byAddress.constFind(address);
    if (found != _byAddress.constEnd() && !title.isEmpty() && (*found)->toMap().value(titleKey) != title)
        note({address, title, std::nullopt});
}

QList<HistoryFile::Entry> HistoryFile::latest(int count)
{
    ensureRead();
    QList<Entry> result;
    for (const QVariant &value : _entries) {
        if (result.size() >= count)
            break;
        const QVariantMap entry = value.toMap();
        const QString address = entry.value(addressKey).toString();
        if (!address.isEmpty())
            result.append({address, entry.value(titleKey).toString(), readDate(entry), entry.value(countKey).toInt()});
    }
    return result;
}

int HistoryFile::count()
{
    ensureRead();
    return static_cast<int>(_entries.size());
}

void HistoryFile::clear()
{
    ensureRead();
    _entries.clear();
    _byAddress.clear();
    _unwritten.clear();
    if (_writing)
        _writing->changes.clear(); // should it fail, they are not to come back
    _wasCleared = true;
    writeLater();
}

bool HistoryFile::flush()
{
    finishWriting();
    startWriting();
    finishWriting();
    return _unwritten.isEmpty() && !_wasCleared;
}

void HistoryFile::startWriting()
{
    _writeTimer.stop();
    if (_writing || (_unwritten.isEmpty() && !_wasCleared))
        return;
    if (FileStamp::ofFile(_path) != _stamp)
        read();
    if (_mustKeepCopy && keepCopyOfFile(_path).isNull())
        return;
    _mustKeepCopy = false;
    QDir().mkpath(QFileInfo(_path).path());

    _writing = std::make_unique<Writing>();
    _writing->changes = std::exchange(_unwritten, {});
    _writing->clears = std::exchange(_wasCleared, false);
    // The thread has this to itself until it has finished.
    Writing *const writing = _writing.get();
    writing->thread.reset(QThread::create([writing, path = _path, contents = contents()] {
        QElapsedTimer timer;
        timer.start();
        writing->succeeded = PropertyList::writeFile(contents, path);
        writing->stamp = FileStamp::ofFile(path);
        writing->duration = timer.elapsed();
    }));
    connect(writing->thread.get(), &QThread::finished, this, &HistoryFile::finishWriting);
    writing->thread->start();
}

// Waits for the thread, if there is one.
void HistoryFile::finishWriting()
{
    if (!_writing)
        return;
    _writing->thread->wait();
    const std::unique_ptr<Writing> finished = std::move(_writing);
    finished->thread->disconnect(this);
    if (finished->succeeded) {
        _stamp = finished->stamp;
        _lastWriteDuration = finished->duration;
        _sinceWrite.start();
    } else {
        _unwritten = finished->changes + _unwritten;
        _wasCleared = _wasCleared || finished->clears;
    }
    // What failed is tried again with the next visit.
    if (finished->succeeded && (!_unwritten.isEmpty() || _wasCleared))
        writeLater();
}

void HistoryFile::ensureRead()
{
    if (_isRead)
        return;
    removeAbandonedSaves(_path);
    read();
}

// Reads the file and repeats on it what has not been written yet.
void HistoryFile::read()
{
    _isRead = true;
    _entries.clear();
    _byAddress.clear();
    _stamp = FileStamp::ofFile(_path);
    PropertyList::Reading reading;
    _otherKeys = PropertyList::readDictionaryFile(_path, &reading);
    const QVariant entries = _otherKeys.take(entriesKey);
    const bool hasEntries = entries.typeId() == QMetaType::QVariantList;
    _mustKeepCopy = _stamp && (!reading.isWhole || (entries.isValid() && !hasEntries));
    const QVariantList list = hasEntries && !_wasCleared ? entries.toList() : QVariantList();
    _byAddress.reserve(list.size());
    for (const QVariant &value : list) {
        const auto position = _entries.insert(_entries.end(), value);
        const QString address = value.toMap().value(addressKey).toString();
        if (!address.isEmpty() && !_byAddress.contains(address))
            _byAddress.insert(address, position);
    }
    for (const Change &change : std::as_const(_unwritten))
        apply(change);
}

void HistoryFile::note(const Change &change)
{
    ensureRead();
    _unwritten.append(change);
    apply(change);
    writeLater();
}

void HistoryFile::apply(const Change &change)
{
    const auto found = _byAddress.constFind(change.address);
    const bool isKnown = found != _byAddress.constEnd();
    if (!isKnown && !change.visited)
        return;
    QVariantMap entry = isKnown ? (*found)->toMap() : QVariantMap{{addressKey, change.address}};
    entry.insert(titleKey, change.title);
    if (!change.visited) {
        **found = entry;
        return;
    }
    entry.insert(dateKey, storedDate(*change.visited));
    entry.insert(countKey, entry.value(countKey).toLongLong() + 1);
    if (isKnown) {
        **found = entry;
        _entries.splice(_entries.begin(), _entries, *found);
    } else {
        _byAddress.insert(change.address, _entries.insert(_entries.begin(), entry));
    }
}

QVariantMap HistoryFile::contents() const
{
    QVariantMap result = _otherKeys;
    result.insert(entriesKey, QVariantList(_entries.cbegin(), _entries.cend()));
    if (!result.contains(versionKey))
        result.insert(versionKey, qlonglong(1));
    return result;
}

// However large the file is, it is written half of the time at most.
void HistoryFile::writeLater()
{
    if (_writeTimer.isActive())
        return;
    const qint64 rest = _sinceWrite.isValid() ? _lastWriteDuration - _sinceWrite.elapsed() : 0;
    _writeTimer.start(static_cast<int>(qMax<qint64>(writeDelay, rest)));
}
