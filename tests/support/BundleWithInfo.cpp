#include "tests/support/BundleWithInfo.h"

#include "platform/files/PropertyList.h"

#include <QDir>
#include <QFile>

BundleWithInfo::BundleWithInfo(const QString &original) : _old(qgetenv("WAYFOLD_BUNDLE"))
{
    const QString resources = QStringLiteral("Contents/Resources");
    if (!QDir().mkpath(path(QStringLiteral("Contents"))) ||
        !QFile::link(original + QLatin1Char('/') + resources, path(resources)))
        qFatal("cannot make a plug-in folder");
    qputenv("WAYFOLD_BUNDLE", QFile::encodeName(_folder.path()));
}

BundleWithInfo::~BundleWithInfo()
{
    qputenv("WAYFOLD_BUNDLE", _old); // an empty one counts as none
}

void BundleWithInfo::setInfo(QVariantMap info) const
{
    info.removeIf([](auto entry) { return !entry.value().isValid(); });
    if (!PropertyList::writeFile(info, path(QStringLiteral("Contents/Info.plist"))))
        qFatal("cannot write the plug-in's folder");
}
