#pragma once

#include "tests/support/BundleWithInfo.h"

#include <QString>

class PageServer;

// For as long as this lives, the plug-in is of that version, and asks a page of the server which release is the current
// one. Made when the plug-in has been loaded.
class PlayedRelease
{
public:
    PlayedRelease(PageServer &web, const QString &localVersion);

    static inline const QString host = QStringLiteral("127.0.0.1");
    static inline const QString path = QStringLiteral("/version");
    // From now on this is the current release.
    void publish(const QString &version, int number) const;

private:
    PageServer &_web;
    BundleWithInfo _bundle;
};
