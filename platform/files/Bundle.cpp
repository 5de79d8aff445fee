#include "platform/files/Bundle.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <dlfcn.h>

namespace
{
// The folder "<something>.plugin" that holds the library or program which this code is part of.
QString findPath()
{
    static const char anchor = 0;
    Dl_info info;
    if (!dladdr(&anchor, &info) || !info.dli_fname)
        return {};
    QFileInfo place(QFileInfo(QFile::decodeName(info.dli_fname)).absoluteFilePath());
    while (!place.isRoot() && place.filePath() != place.path()) {
        if (place.fileName().endsWith(QLatin1String(".plugin")) && place.isDir())
            return place.filePath();
        place = QFileInfo(place.path());
    }
    return {};
}

bool isPlainFile(const QString &path)
{
    return QFileInfo(path).isFile();
}
} // namespace

QString Bundle::path()
{
    const QByteArray given = qgetenv("WAYFOLD_BUNDLE");
    if (!given.isEmpty())
        return QDir::cleanPath(QFile::decodeName(given));
    static const QString found = findPath();
    return found;
}

QString Bundle::pathForResource(const QString &name)
{
    const QString bundle = path();
    if (bundle.isNull() || name.isEmpty())
        return {};
    const QString resource = bundle + QLatin1String("/Contents/Resources/") + name;
    return isPlainFile(resource) ? resource : QString();
}

QString Bundle::pathForImageResource(const QString &name)
{
    static const char *const endings[] = {".svg", ".png", ".jpg", ".gif"};
    for (const char *ending : endings) {
        if (name.endsWith(QLatin1String(ending)))
            return pathForResource(name);
    }
    for (const char *ending : endings) {
        QString resource = name.isEmpty() ? QString() : pathForResource(name + QLatin1String(ending));
        if (!resource.isNull())
            return resource;
    }
    return {};
}

QString Bundle::localizedString(const QString &key)
{
    if (key.isEmpty())
        return key;
    const QString text = QCoreApplication::translate("Wayfold", key.toUtf8().constData());
    return text.isEmpty() ? key : text;
}
