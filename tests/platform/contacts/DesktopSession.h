#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

// A desktop's session for this process alone: a bus, a home and the desktop's contacts service, with the settings kept
// in memory. Ends all that it has started when it goes, or when this process does. Make it before anything else.
class DesktopSession
{
public:
    // Whether all that it needs is on this machine.
    static bool isInstalled();

    DesktopSession();
    ~DesktopSession();
    DesktopSession(const DesktopSession &) = delete;
    DesktopSession &operator=(const DesktopSession &) = delete;

    static constexpr auto sources = "org.gnome.evolution.dataserver.Sources5";
    static constexpr auto books = "org.gnome.evolution.dataserver.AddressBook10";

    QString path(const QString &relative) const { return _folder.filePath(relative); }
    // As if nobody had used it: the service does not run, and holds nothing.
    void reset();
    // Whether the bus would start the service, or knows none. It does at first.
    void offerService(bool isOffered);
    void startService(const char *name);
    // Ends, stops or wakes the process that has the name, if one has.
    void signalService(const QByteArray &name, int signal);
    bool isServiceThere(const char *name) const { return processOf(name) != 0; }
    // Waits for it, with the event loop.
    bool isServiceGone(const char *name) const;
    void endServices();
    void endBus();

private:
    qint64 processOf(const QByteArray &name) const;
    void endService(const char *name);

    QTemporaryDir _folder;
    QProcess _bus;
    QByteArray _address;
};
