#pragma once

#include <QString>
#include <QStringList>

class HostApplication;
class HostObserver;
class HostPlugin;

// Finds the plug-in's library and starts it. Nothing here is fatal: the browser works without it.
namespace PluginLoader
{
// Where the library may lie, in the order in which the places are tried: $WAYFOLD_PLUGIN (alone, when it is set), the
// build tree's place and the installed one, both seen from the folder that the program lies in.
QStringList candidates(const QString &programFolder);
// A plug-in that was started; both are null when there is none.
struct Started
{
    HostPlugin *plugin = nullptr;
    HostObserver *observer = nullptr;
};
// Starts the first library that is there. Null, with the reason in the log, when there is none or it does not work.
// The library stays loaded for good.
Started load(const QStringList &candidates, HostApplication *host);
} // namespace PluginLoader
