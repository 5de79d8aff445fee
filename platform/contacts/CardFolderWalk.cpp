#include "platform/contacts/CardFolderWalk.h"

#include <QFile>
#include <cerrno>
#include <sys/stat.h>

CardFolderWalk::CardFolderWalk(const QString &folder, const Folders &before) : _root(folder), _before(before)
{
    _waiting.push_back({QString(), 0});
}

void CardFolderWalk::step()
{
    _file.reset();
    if (!_open) {
        openNext();
        return;
    }
    errno = 0;
    const dirent *entry = ::readdir(_open.get());
    if (!entry) {
        close(errno == 0);
        return;
    }
    if (entry->d_name[0] == '.')
        return;
    const QString name = QFile::decodeName(entry->d_name);
    const bool mayBeFolder = entry->d_type == DT_DIR || entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN;
    if (mayBeFolder || name.endsWith(QLatin1String(".vcf"), Qt::CaseInsensitive))
        look(name);
}

bool CardFolderWalk::mayHaveMissed(const QString &path) const
{
    for (qsizetype end = path.lastIndexOf(u'/'); end > 0; end = path.lastIndexOf(u'/', end - 1)) {
        if (_unsure.contains(path.left(end)))
            return true;
    }
    return _unsure.contains(QString());
}

void CardFolderWalk::openNext()
{
    if (_waiting.empty())
        return;
    _current = _waiting.back();
    _waiting.pop_back();
    _isCurrentEmpty = true;
    _open.reset(::opendir(QFile::encodeName(absolute(_current.path)).constData()));
    struct stat status;
    if (_open && ::fstat(::dirfd(_open.get()), &status) == 0) {
        _folders.insert(_current.path, {status.st_dev, status.st_ino});
        _known.insert({status.st_dev, status.st_ino});
    } else {
        // What went while its own folder was read is gone; of the first of all, nobody knows whether it comes back.
        const bool isGone = errno == ENOENT && !_current.path.isEmpty();
        _open.reset();
        if (!isGone)
            _unsure.insert(_current.path);
    }
}

void CardFolderWalk::close(bool isWhole)
{
    _open.reset();
    const auto before = _before.constFind(_current.path);
    const bool isUnmounted =
        _isCurrentEmpty && before != _before.cend() && before->device != _folders.value(_current.path).device;
    if (isUnmounted)
        _folders[_current.path].device = before->device; // it is there that its cards are
    if (!isWhole || isUnmounted)
        _unsure.insert(_current.path);
}

void CardFolderWalk::look(const QString &name)
{
    const QString path = _current.path.isEmpty() ? name : _current.path + QLatin1Char('/') + name;
    struct stat status;
    if (::stat(QFile::encodeName(absolute(path)).constData(), &status) != 0) {
        if (errno != ENOENT && errno != ELOOP) // gone again, or a link that leads nowhere
            _unsure.insert(_current.path);
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        waitForFolder(path, status);
    } else if (S_ISREG(status.st_mode) && name.endsWith(QLatin1String(".vcf"), Qt::CaseInsensitive)) {
        _isCurrentEmpty = false;
        if (++_files > mostFiles)
            _unsure.insert(QString());
        else
            _file = File{path, FileStamp::ofStatus(status)};
    }
}

void CardFolderWalk::waitForFolder(const QString &path, const struct stat &status)
{
    _isCurrentEmpty = false;
    if (_current.level >= mostLevels || _known.contains({status.st_dev, status.st_ino}))
        return;
    if (_known.size() >= mostFolders) {
        _unsure.insert(QString());
        return;
    }
    _known.insert({status.st_dev, status.st_ino});
    _waiting.push_back({path, _current.level + 1});
}

QString CardFolderWalk::absolute(const QString &path) const
{
    return path.isEmpty() ? _root : _root + QLatin1Char('/') + path;
}
