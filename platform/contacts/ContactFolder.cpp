#include "platform/contacts/ContactFolder.h"

#include "platform/base/Log.h"
#include "platform/contacts/ContactCards.h"
#include "platform/files/FileReplacement.h"
#include "platform/files/Paths.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QUuid>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// In milliseconds.
constexpr int sliceLength = 4;
constexpr int settlingTime = 100; // a program that changes something mostly changes more
constexpr int checkInterval = 3000;
constexpr int longestCheckInterval = 30'000;
constexpr int checksShare = 200; // of all time about one part in so many is spent on checks that nobody asked for

constexpr qsizetype bytesAtOnce = 32'768; // of a file in which no card ends

const QString ownCardFile = QStringLiteral("me.vcf");
constexpr qsizetype longestName = 100; // of a file that is made here
constexpr int mostLooks = 10'000;      // for a first card, at names and folders

// Null when the file cannot be read. What is no plain file is not waited for; `errno` tells why.
QByteArray contentsOf(const QString &path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return {};
    QFile file;
    struct stat status;
    if (!file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle) ||
        ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > ContactFolder::largestFile) {
        errno = EFBIG;
        return {};
    }
    const QByteArray contents = file.read(ContactFolder::largestFile);
    return contents.isNull() ? QByteArray("") : contents;
}

QString dataFolder()
{
    const QString folder = QFile::decodeName(qgetenv("XDG_DATA_HOME"));
    return folder.startsWith(u'/') ? folder : Paths::homeDirectory() + QLatin1String("/.local/share");
}

bool holdsACard(const QString &folder)
{
    CardFolderWalk walk(folder);
    for (int looks = 0; !walk.isOver() && looks < mostLooks; ++looks) {
        walk.step();
        if (walk.file())
            return true;
    }
    return false;
}

// The name under which a card with this identifier is saved, without its ending.
QString fileNameFor(const QString &uniqueId)
{
    QString name = uniqueId.left(longestName);
    for (QChar &sign : name) {
        const bool isPlain =
            sign.unicode() < 0x80 && (sign.isLetterOrNumber() || QStringLiteral("-_.@").contains(sign));
        if (!isPlain)
            sign = u'_';
    }
    return name.startsWith(u'.') ? u'_' + name : name;
}

// With a line that names the identifier, before the last one.
QByteArray withIdentifier(const QByteArray &card, const QString &uniqueId)
{
    const QByteArray text = card.trimmed();
    const qsizetype lastLine = std::max(text.lastIndexOf('\n'), text.lastIndexOf('\r')) + 1;
    const QByteArray lineEnd = text.contains("\r\n") ? "\r\n" : "\n";
    return text.first(lastLine) + "UID:" + uniqueId.toUtf8() + lineEnd + text.sliced(lastLine) + lineEnd;
}

// The identifier of the `number`th card without one in the file.
QString identifierByFile(const QString &path, int number)
{
    return number == 1 ? path : path + u'#' + QString::number(number);
}

// Whether the system tells what changes. Otherwise Qt would list the folders again and again.
bool canWatch()
{
    const int descriptor = ::inotify_init1(IN_CLOEXEC);
    if (descriptor >= 0)
        ::close(descriptor);
    return descriptor >= 0;
}

bool isNamedByFile(const ContactRecord &record, const QString &path)
{
    return record.uniqueId == path || record.uniqueId.startsWith(path + u'#');
}
} // namespace

ContactFolder::ContactFolder(const QString &folder) : _folder(Paths::standardized(folder))
{
    const auto onTimeout = [](QTimer &timer, int interval, const auto &handler) {
        timer.setSingleShot(true);
        timer.setInterval(interval);
        QObject::connect(&timer, &QTimer::timeout, &timer, handler);
    };
    onTimeout(_slice, 0, [this] { work(); });
    onTimeout(_closing, 0, [this] { _opened.reset(); });
    onTimeout(_soon, settlingTime, [this] { check(); });
    onTimeout(_later, checkInterval, [this] { check(); });
    if (canWatch()) {
        _watcher = std::make_unique<QFileSystemWatcher>();
        QObject::connect(_watcher.get(), &QFileSystemWatcher::directoryChanged, _watcher.get(),
                         [this] { checkSoon(); });
    }
    check();
}

QString ContactFolder::defaultFolder()
{
    for (const QString &folder :
         {Paths::homeDirectory() + QLatin1String("/.contacts"), dataFolder() + QLatin1String("/contacts")}) {
        if (holdsACard(folder))
            return folder;
    }
    return {};
}

ContactStore::State ContactFolder::state() const
{
    if (_isRead)
        return Ready;
    return _wasThere || hasFolder() ? Loading : Absent;
}

ContactRecordPtr ContactFolder::me() const
{
    const auto file = _files.constFind(ownCardFile);
    return file == _files.cend() || file->cards.empty() ? nullptr : index().record(file->cards.front().uniqueId);
}

QByteArray ContactFolder::imageData(const ContactRecord &record) const
{
    return ContactCards::picture(textOf(record));
}

QByteArray ContactFolder::vCardRepresentation(const ContactRecord &record) const
{
    return textOf(record);
}

ContactStore::Opening ContactFolder::opening(const ContactRecord &record, Purpose /*purpose*/) const
{
    const QString path = _paths.value(record.uniqueId);
    return path.isNull() ? Opening() : Opening{{}, absolute(path)};
}

bool ContactFolder::canAdd() const
{
    const QByteArray place = QFile::encodeName(absolute(_folderForNewCards));
    return _isRead && hasFolder() && ::faccessat(AT_FDCWD, place.constData(), W_OK, AT_EACCESS) == 0;
}

void ContactFolder::add(const QByteArray &vCard, const std::function<void(const QString &uniqueId)> &done)
{
    const std::vector<ContactCards::Card> cards = ContactCards::read(vCard);
    if (cards.empty() || !canAdd()) {
        done(QString());
        return;
    }
    auto record = std::make_shared<ContactRecord>(cards.front().record);
    QByteArray text = cards.front().text;
    if (record->uniqueId.isEmpty()) {
        record->uniqueId = QUuid::createUuid().toString(QUuid::WithoutBraces);
        text = withIdentifier(text, record->uniqueId);
    }
    if (const QString file = _paths.value(record->uniqueId); !file.isNull() && QFileInfo::exists(absolute(file))) {
        done(record->uniqueId);
        return;
    }
    const QString path = pathForNewCard(record->uniqueId);
    const QString problem = replaceFile(absolute(path), text);
    const std::optional<FileStamp> stamp = FileStamp::ofFile(absolute(path));
    if (!problem.isNull())
        qCWarning(logFiles).noquote() << "Could not write" << absolute(path) << "-" << problem;
    if (!stamp) {
        done(QString());
        return;
    }
    const File before = _files.take(path); // was removed a moment ago
    for (const Card &card : before.cards)
        leave(path, card.uniqueId);
    tellWhatWasRead();
    _files.insert(path, {*stamp, {{record->uniqueId, 0}}, _walks});
    _paths.insert(record->uniqueId, path);
    put({record}, true);
    done(record->uniqueId);
}

// Begins a walk, when none is on its way.
void ContactFolder::check()
{
    _soon.stop();
    _later.stop();
    if (_walk) {
        _mustCheckAgain = true;
        return;
    }
    _walk = std::make_unique<CardFolderWalk>(_folder, _folders);
    ++_walks;
    _walkingTime = 0;
    _slice.start();
}

void ContactFolder::checkSoon() const
{
    if (!_soon.isActive())
        _soon.start();
}

void ContactFolder::work()
{
    QElapsedTimer time;
    time.start();
    bool isOver = false;
    while (!isOver && time.elapsed() < sliceLength)
        isOver = !workABit();
    tellWhatWasRead();
    if (!_walk->isOver())
        _walkingTime += time.elapsed();
    if (isOver)
        finishCheck();
    else
        _slice.start();
}

// False when there is nothing left to do.
bool ContactFolder::workABit()
{
    if (_reading) {
        readNextCard();
    } else if (!_walk->isOver()) {
        _walk->step();
        if (_walk->file())
            foundFile(*_walk->file());
        if (_walk->isOver())
            finishWalk();
    } else if (!_changedFiles.empty()) {
        const CardFolderWalk::File file = std::move(_changedFiles.back());
        _changedFiles.pop_back();
        startReading(file);
    } else if (!_goneFiles.isEmpty()) {
        leaveFile(_goneFiles.takeLast());
    } else {
        return false;
    }
    return true;
}

void ContactFolder::foundFile(const CardFolderWalk::File &found)
{
    const auto file = _files.find(found.path);
    if (file != _files.end())
        file->walk = _walks;
    if (file == _files.end() || !(file->stamp == found.stamp))
        _changedFiles.push_back(found);
}

// The folder has been gone through.
void ContactFolder::finishWalk()
{
    _folders = _walk->folders();
    _wasThere = _wasThere || !_folders.isEmpty();
    // In the order of their names, whatever the order on the disk.
    std::sort(_changedFiles.begin(), _changedFiles.end(),
              [](const CardFolderWalk::File &a, const CardFolderWalk::File &b) { return a.path > b.path; });
    for (auto file = _files.cbegin(); file != _files.cend(); ++file) {
        if (isGone(file.key()))
            _goneFiles.append(file.key());
    }
}

void ContactFolder::startReading(const CardFolderWalk::File &file)
{
    const QByteArray contents = contentsOf(absolute(file.path));
    if (!contents.isNull()) {
        _reading = std::make_unique<Reading>(Reading{file, CardText(contents), {}, {}, 0});
        return;
    }
    // What may be over soon is tried again by the next walk, without a word.
    if (errno != EACCES && errno != EFBIG)
        return;
    qCWarning(logFiles).noquote() << "Could not read" << absolute(file.path) << "-"
                                  << (errno == EFBIG ? QStringLiteral("too large") : qt_error_string(errno));
    File &known = _files[file.path];
    known.stamp = file.stamp;
    known.walk = _walks;
}

void ContactFolder::readNextCard()
{
    const QString &path = _reading->file.path;
    const std::optional<CardText::Card> text = _reading->text.next(bytesAtOnce);
    if (!text) {
        if (_reading->text.isAtEnd())
            finishReading();
        return;
    }
    std::optional<ContactCards::Card> card = ContactCards::read(*text);
    if (!card)
        return;
    const auto record = std::make_shared<ContactRecord>(std::move(card->record));
    if (record->uniqueId.isEmpty())
        record->uniqueId = identifierByFile(path, ++_reading->unnamed);
    if (_reading->identifiers.contains(record->uniqueId))
        return;
    _reading->identifiers.insert(record->uniqueId);
    _reading->cards.push_back({record->uniqueId, text->start});
    enter(path, record);
}

void ContactFolder::finishReading()
{
    const std::unique_ptr<Reading> reading = std::move(_reading);
    const QString &path = reading->file.path;
    File &file = _files[path];
    file.stamp = reading->file.stamp;
    file.walk = _walks;
    if (reading->cards.empty())
        return; // it keeps what it had
    std::swap(file.cards, reading->cards);
    for (const Card &before : reading->cards) {
        if (!reading->identifiers.contains(before.uniqueId))
            leave(path, before.uniqueId);
    }
}

// What has been read of a file is shown, unless a file that is there shows its own.
void ContactFolder::enter(const QString &path, const ContactRecordPtr &record)
{
    const QString shown = _paths.value(record->uniqueId);
    if (!shown.isNull() && shown != path && !isGone(shown)) {
        _doubles.emplace(record->uniqueId, path);
        return;
    }
    _doubles.erase({record->uniqueId, path});
    _paths.insert(record->uniqueId, path);
    _entered.push_back(record);
}

// The card is not in this file any more. Another that has it is read again, and shown meanwhile as this one was.
void ContactFolder::leave(const QString &path, const QString &uniqueId)
{
    _doubles.erase({uniqueId, path});
    if (_paths.value(uniqueId) != path)
        return;
    const auto other = _doubles.lower_bound({uniqueId, QString()});
    if (other == _doubles.end() || other->first != uniqueId) {
        _paths.remove(uniqueId);
        _left.append(uniqueId);
        return;
    }
    _paths.insert(uniqueId, other->second);
    _files[other->second].stamp = {};
    _doubles.erase(other);
    _mustCheckAgain = true;
}

// Whether the walk should have come upon the file, and has not. Known only when it is over.
bool ContactFolder::isGone(const QString &path) const
{
    const auto file = _files.constFind(path);
    return file == _files.cend() || (file->walk != _walks && !_walk->mayHaveMissed(path));
}

void ContactFolder::leaveFile(const QString &path)
{
    if (!isGone(path))
        return; // it has been made again meanwhile
    const File file = _files.take(path);
    for (const Card &card : file.cards)
        leave(path, card.uniqueId);
}

void ContactFolder::tellWhatWasRead()
{
    _hasChanged = _hasChanged || !_entered.empty() || !_left.isEmpty();
    if (!_entered.empty())
        put(std::exchange(_entered, {}));
    if (!_left.isEmpty())
        remove(std::exchange(_left, {}));
}

void ContactFolder::finishCheck()
{
    _walk.reset();
    const bool isFirst = !_isRead && _wasThere;
    _isRead = _wasThere;
    if (isFirst || _hasChanged)
        chooseFolderForNewCards();
    if (std::exchange(_hasChanged, false) || isFirst)
        tellChange(false);
    watchFolders();
    if (std::exchange(_mustCheckAgain, false))
        checkSoon();
    else
        _later.start(int(std::clamp<qint64>(_walkingTime * checksShare, checkInterval, longestCheckInterval)));
}

// New cards come to the others: into the folder itself, or where there are folders for them alone, into the first.
void ContactFolder::chooseFolderForNewCards()
{
    QString first;
    for (auto file = _files.cbegin(); file != _files.cend(); ++file) {
        const qsizetype end = file.key().lastIndexOf(u'/');
        const QString folder = end < 0 ? QString() : file.key().left(end + 1);
        if (file == _files.cbegin() || folder < first)
            first = folder;
    }
    _folderForNewCards = first;
}

QString ContactFolder::pathForNewCard(const QString &uniqueId) const
{
    const QString name = _folderForNewCards + fileNameFor(uniqueId);
    const auto isTaken = [this](const QString &path) {
        const QFileInfo file(absolute(path));
        return path == ownCardFile || file.exists() || file.isSymLink();
    };
    const QString path = name + QLatin1String(".vcf");
    return isTaken(path) ? name + u'-' + QUuid::createUuid().toString(QUuid::WithoutBraces) + QLatin1String(".vcf")
                         : path;
}

bool ContactFolder::hasFolder() const
{
    return QFileInfo(_folder).isDir();
}

// The card as it stands in its file now; empty when it is not there.
// Many cards may be asked for in a row, which may all lie in one file. One that is being read has the cards that came
// from it so far.
ContactFolder::OpenFile &ContactFolder::opened(const QString &path) const
{
    static const std::vector<Card> none;
    const bool isBeingRead = _reading && _reading->file.path == path;
    const auto known = _files.constFind(path);
    const std::vector<Card> &cards = isBeingRead ? _reading->cards : known == _files.cend() ? none : known->cards;
    const FileStamp stamp = FileStamp::ofFile(absolute(path)).value_or(FileStamp());
    if (!_opened || _opened->path != path || _opened->stamp != stamp ||
        _opened->starts.size() != qsizetype(cards.size())) {
        _opened = std::make_unique<OpenFile>(OpenFile{path, stamp, CardText(contentsOf(absolute(path))), {}});
        _opened->starts.reserve(qsizetype(cards.size()));
        for (const Card &card : cards)
            _opened->starts.insert(card.uniqueId, card.start);
    }
    _closing.start();
    return *_opened;
}

QByteArray ContactFolder::textOf(const ContactRecord &record) const
{
    const QString path = _paths.value(record.uniqueId);
    if (path.isNull())
        return {};
    OpenFile &file = opened(path);
    const auto start = file.starts.constFind(record.uniqueId);
    if (start == file.starts.cend())
        return {};
    file.text.setPosition(*start);
    const std::optional<CardText::Card> found = file.text.next();
    const std::optional<ContactCards::Card> now = found ? ContactCards::read(*found) : std::nullopt;
    const bool isThere = now && (now->record.uniqueId == record.uniqueId ||
                                 (now->record.uniqueId.isEmpty() && isNamedByFile(record, path)));
    if (!isThere)
        checkSoon(); // the file has changed, or gone
    return isThere ? now->text : QByteArray();
}

// Of a folder that is not there, the next one above it that is.
void ContactFolder::watchFolders()
{
    if (!_watcher)
        return;
    QHash<QString, quint64> wanted;
    for (auto folder = _folders.cbegin(); folder != _folders.cend(); ++folder)
        wanted.insert(folder.key().isEmpty() ? _folder : absolute(folder.key()), folder->inode);
    if (wanted.isEmpty()) {
        QString above = _folder;
        std::optional<FileStamp> stamp;
        while (!stamp && above.contains(u'/')) {
            above = above.left(above.lastIndexOf(u'/'));
            stamp = FileStamp::ofFile(above.isEmpty() ? QStringLiteral("/") : above);
        }
        wanted.insert(above.isEmpty() ? QStringLiteral("/") : above, stamp ? stamp->inode : 0);
    }
    QStringList present = _watcher->directories();
    for (const QString &path : std::as_const(present)) {
        if (!wanted.contains(path) || wanted.value(path) != _watched.value(path))
            _watcher->removePath(path);
    }
    _watched = wanted;
    present = _watcher->directories();
    for (const QString &path : std::as_const(present))
        wanted.remove(path);
    if (!wanted.isEmpty())
        _watcher->addPaths(wanted.keys());
}
