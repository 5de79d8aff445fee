#include "tests/e2e/support/PlayedRelease.h"

#include "platform/files/PropertyList.h"
#include "tests/e2e/support/PageServer.h"

#include <QDir>

namespace
{
// The folder that holds the library which the browser loads.
QString bundleOfThePlugin()
{
    return QDir::cleanPath(qEnvironmentVariable("WAYFOLD_PLUGIN") + QStringLiteral("/../../.."));
}
} // namespace

PlayedRelease::PlayedRelease(PageServer &web, const QString &localVersion) : _web(web), _bundle(bundleOfThePlugin())
{
    const QString address = QStringLiteral("http://%1:%2%3").arg(host).arg(web.port()).arg(path);
    _bundle.setInfo({{"CFBundleVersion", localVersion},
                     {"WayfoldVersionCheckAddress", address},
                     {"WayfoldWebPageAddress", "https://wayfold.example/"}});
}

void PlayedRelease::publish(const QString &version, int number) const
{
    const QVariantMap answer = {{"CurrentVersion", version}, {"CurrentVersionNumber", number}};
    _web.setFile(host, path, "application/xml", PropertyList::toXml(answer));
}
