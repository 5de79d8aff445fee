#include "platform/files/Paths.h"

#include <QDir>
#include <QFileInfo>

QString Paths::homeDirectory()
{
    const QByteArray home = qgetenv("HOME");
    return home.isEmpty() ? QDir::homePath() : QFile::decodeName(home);
}

QString Paths::expandingTilde(const QString &path)
{
    if (path == QLatin1String("~"))
        return homeDirectory();
    if (!path.startsWith(QLatin1String("~/")))
        return path;
    QString home = homeDirectory();
    while (home.endsWith(u'/'))
        home.chop(1);
    return home + path.mid(1);
}

QString Paths::standardized(const QString &path)
{
    QString clean = QDir::cleanPath(expandingTilde(path));
    // There is nothing above the root, so ".." stays there.
    while (clean.startsWith(QLatin1String("/../")))
        clean.remove(0, 3);
    return clean == QLatin1String("/..") ? QStringLiteral("/") : clean;
}

QString Paths::behindLinks(const QString &path)
{
    constexpr int mostLinks = 40; // the system follows no more; they may go round in a ring
    QFileInfo file(path);
    for (int links = 0; links < mostLinks && file.isSymLink(); ++links)
        file = QFileInfo(file.symLinkTarget());
    return file.filePath();
}
