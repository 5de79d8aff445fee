#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

namespace
{
// Settings are written once more when the program ends, after the homes they belong to. This is made before they are,
// and so goes after them.
class LateRemoval
{
public:
    ~LateRemoval()
    {
        for (const QString &folder : std::as_const(folders))
            QDir(folder).removeRecursively();
    }

    QStringList folders;
};
} // namespace

TemporaryHome::TemporaryHome() : _oldHome(qgetenv("HOME"))
{
    static LateRemoval removal;
    removal.folders.append(_directory.path());
    qputenv("HOME", _directory.path().toUtf8());
}

TemporaryHome::~TemporaryHome()
{
    qputenv("HOME", _oldHome);
}

QString TemporaryHome::path(const QString &relative) const
{
    return relative.isEmpty() ? _directory.path() : _directory.filePath(relative);
}

void TemporaryHome::write(const QString &relative, const QByteArray &contents) const
{
    const QString file = path(relative);
    QDir().mkpath(QFileInfo(file).path());
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(contents) != contents.size())
        qFatal("cannot write %s", qPrintable(file));
}

QByteArray TemporaryHome::read(const QString &relative) const
{
    QFile in(path(relative));
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}
