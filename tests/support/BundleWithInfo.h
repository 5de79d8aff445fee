#pragma once

#include <QString>
#include <QTemporaryDir>
#include <QVariantMap>

// For as long as this lives, a plug-in folder with the resources of another one, and an Info.plist of the test's own,
// is taken for the plug-in's.
class BundleWithInfo
{
public:
    explicit BundleWithInfo(const QString &original);
    ~BundleWithInfo();
    BundleWithInfo(const BundleWithInfo &) = delete;
    BundleWithInfo &operator=(const BundleWithInfo &) = delete;

    QString path(const QString &relative) const { return _folder.filePath(relative); }
    // Invalid values are left out.
    void setInfo(QVariantMap info) const;

private:
    QTemporaryDir _folder;
    QByteArray _old;
};
