#include "tests/platform/contacts/DesktopSession.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTest>
#include <csignal>
#include <gio/gio.h>
#include <sys/prctl.h>

namespace
{
void write(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        qFatal("cannot write %s", qPrintable(path));
}

// What the bus answers, null when it refuses. On a connection of its own, so that nothing is shared with what is
// tested.
GVariant *ask(const QByteArray &address, const char *method, GVariant *argument)
{
    constexpr auto flags = GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GDBusConnection *bus =
        g_dbus_connection_new_for_address_sync(address.constData(), flags, nullptr, nullptr, nullptr);
    if (!bus)
        return nullptr;
    GVariant *answer =
        g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                    method, argument, nullptr, G_DBUS_CALL_FLAGS_NONE, 60'000, nullptr, nullptr);
    g_dbus_connection_close_sync(bus, nullptr, nullptr);
    g_object_unref(bus);
    return answer;
}

// The description by which a bus starts the service.
QString installed(const char *service)
{
    return QString("/usr/share/dbus-1/services/") + service + ".service";
}

const char busConfiguration[] = R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=%1/bus</listen>
  <auth>EXTERNAL</auth>
  <servicedir>%1/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";
} // namespace

bool DesktopSession::isInstalled()
{
    return !QStandardPaths::findExecutable("dbus-daemon").isEmpty() && QFile::exists(installed(sources)) &&
           QFile::exists(installed(books));
}

DesktopSession::DesktopSession()
{
    for (const char *folder : {"services", "home", "run"})
        QDir().mkpath(path(folder));
    QFile::setPermissions(path("run"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("HOME", path("home").toUtf8());
    qputenv("XDG_RUNTIME_DIR", path("run").toUtf8());
    for (const char *name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
        qputenv(name, path("home/").toUtf8() + name);
    qputenv("GSETTINGS_BACKEND", "memory");
    write(path("bus.conf"), QString(busConfiguration).arg(_folder.path()).toUtf8());
    _bus.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    _bus.setStandardErrorFile(QProcess::nullDevice());
    _bus.start("dbus-daemon", {"--nofork", "--print-address", "--config-file=" + path("bus.conf")});
    while (!_address.endsWith('\n') && _bus.waitForReadyRead(30'000))
        _address += _bus.readAll();
    _address = _address.trimmed();
    if (_address.isEmpty())
        qFatal("no bus: %s", qPrintable(_bus.errorString()));
    qputenv("DBUS_SESSION_BUS_ADDRESS", _address);
    offerService(true);
}

DesktopSession::~DesktopSession()
{
    reset();
    endBus();
}

void DesktopSession::endServices()
{
    endService(books);
    endService(sources);
}

void DesktopSession::reset()
{
    offerService(true);
    endServices();
    QDir(path("home")).removeRecursively();
    QDir().mkpath(path("home"));
}

void DesktopSession::offerService(bool isOffered)
{
    for (const char *name : {sources, books}) {
        const QString file = path("services/") + name + ".service";
        QFile::remove(file);
        if (isOffered && !QFile::copy(installed(name), file))
            qFatal("%s is not installed", name);
    }
    if (GVariant *answer = ask(_address, "ReloadConfig", nullptr))
        g_variant_unref(answer);
}

void DesktopSession::startService(const char *name)
{
    if (GVariant *answer = ask(_address, "StartServiceByName", g_variant_new("(su)", name, 0)))
        g_variant_unref(answer);
    else
        qWarning("%s cannot be started", name);
}

qint64 DesktopSession::processOf(const QByteArray &name) const
{
    GVariant *answer = ask(_address, "GetConnectionUnixProcessID", g_variant_new("(s)", name.constData()));
    guint32 process = 0;
    if (answer) {
        g_variant_get(answer, "(u)", &process);
        g_variant_unref(answer);
    }
    return process;
}

void DesktopSession::signalService(const QByteArray &name, int signal)
{
    if (const qint64 process = processOf(name))
        kill(pid_t(process), signal);
}

bool DesktopSession::isServiceGone(const char *name) const
{
    return QTest::qWaitFor([&] { return processOf(name) == 0; }, 30'000);
}

void DesktopSession::endService(const char *name)
{
    signalService(name, SIGKILL);
    if (!isServiceGone(name))
        qWarning("%s does not end", name);
}

void DesktopSession::endBus()
{
    _bus.kill();
    _bus.waitForFinished();
}
