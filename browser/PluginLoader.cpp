#include "browser/PluginLoader.h"

#include "platform/base/Log.h"
#include "platform/host/HostPlugin.h"

#include <QDir>
#include <QFileInfo>
#include <QPluginLoader>

namespace
{
const QString libraryInBundle = QStringLiteral("Wayfold.plugin/Contents/Plugin/libwayfold.so");
} // namespace

QStringList PluginLoader::candidates(const QString &programFolder)
{
    const QString chosen = qEnvironmentVariable("WAYFOLD_PLUGIN");
    if (!chosen.isEmpty())
        return {chosen};
    const QDir folder(programFolder);
    return {QDir::cleanPath(folder.filePath(QStringLiteral("../") + libraryInBundle)),
            QDir::cleanPath(folder.filePath(QStringLiteral("../lib/wayfold/") + libraryInBundle))};
}

PluginLoader::Started PluginLoader::load(const QStringList &candidates, HostApplication *host)
{
    for (const QString &path : candidates) {
        if (!QFileInfo::exists(path))
            continue;
        QPluginLoader loader(path);
        auto *plugin = qobject_cast<HostPlugin *>(loader.instance());
        if (!plugin) {
            qCWarning(logWayfold) << "The plug-in" << path << "could not be loaded:" << loader.errorString();
            return {};
        }
        HostObserver *observer = plugin->load(host);
        if (!observer) {
            qCWarning(logWayfold) << "The plug-in" << path << "did not start";
            return {};
        }
        qCInfo(logWayfold) << "Loaded the plug-in" << path;
        return {plugin, observer};
    }
    qCInfo(logWayfold) << "No plug-in found; looked for" << candidates;
    return {};
}
