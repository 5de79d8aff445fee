#include "platform/files/PropertyList.h"
#include "tests/e2e/support/PageServer.h"
#include "tests/e2e/support/Process.h"
#include "tests/e2e/support/Tool.h"
#include "tests/support/TemporaryHome.h"

#include <QtTest>

#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, 60000)

// The browser in Wayland sessions: each a compositor of its own, in a window on the test's display.
class WaylandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void goesThroughX();
    void withoutXServer();
    void whenAskedForWayland();

private:
    void startSession(bool withX);
    void startBrowser(const QStringList &arguments = {});
    // The names and classes of the windows on the session's X server.
    QByteArray windowsOnX() const
    {
        return Tool::run("xwininfo", {"-display", _environment.value("DISPLAY"), "-root", "-tree"})
            .value_or(QByteArray());
    }
    // Whether a Wayland client has shown a window that belongs to another one, as the drawer does.
    bool drawerIsOnWayland() { return _browser->output().contains(".set_parent(xdg_toplevel"); }

    PageServer _web;
    std::unique_ptr<TemporaryHome> _home;
    QProcessEnvironment _environment;
    std::unique_ptr<Process> _session;
    std::unique_ptr<Process> _browser;
};

namespace
{
constexpr auto remark = "the drawer is a window of its own";
constexpr auto drawerOnX = "\"Wayfold — Wayfold Browser\"";
} // namespace

void WaylandTest::initTestCase()
{
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", _web.browserFlags());
}

void WaylandTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    const QString settings = _home->path("Library/Preferences/org.wayfold.Wayfold.plist");
    QVERIFY(QDir().mkpath(QFileInfo(settings).path()));
    QVERIFY(PropertyList::writeFile(QVariantMap{{"WayfoldOpenDrawerOnNewWindow", 1}}, settings));
}

void WaylandTest::cleanup()
{
    _browser.reset();
    _session.reset();
    _home.reset();
}

void WaylandTest::startSession(bool withX)
{
    const QString socket = QStringLiteral("wayfold-test-%1").arg(QCoreApplication::applicationPid());
    QStringList arguments{"--backend=x11-backend.so", "--use-pixman", "--no-config", "--idle-time=0",
                          "--socket=" + socket};
    if (withX)
        arguments.append("--xwayland");
    _session = std::make_unique<Process>("weston", arguments);
    TRY_VERIFY(QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + '/' + socket));
    _environment = QProcessEnvironment::systemEnvironment();
    _environment.remove("QT_QPA_PLATFORM");
    _environment.remove("DISPLAY");
    _environment.insert("WAYLAND_DISPLAY", socket);
    _environment.insert("WAYLAND_DEBUG", "client");
    if (!withX)
        return;
    static const QRegularExpression listening("listening on display (:\\d+)");
    TRY_VERIFY(listening.match(QString::fromUtf8(_session->output())).hasMatch());
    _environment.insert("DISPLAY", listening.match(QString::fromUtf8(_session->output())).captured(1));
}

void WaylandTest::startBrowser(const QStringList &arguments)
{
    const int before = _web.requests("a.localhost", "/");
    _browser = std::make_unique<Process>(WAYFOLD_BROWSER_PROGRAM, arguments + QStringList("http://a.localhost/"),
                                         _environment);
    TRY_VERIFY(_web.requests("a.localhost", "/") > before);
}

// Where a drawer can be put beside its window.
void WaylandTest::goesThroughX()
{
    startSession(true);
    startBrowser();
    TRY_VERIFY(windowsOnX().contains(drawerOnX));
    QVERIFY(!_browser->output().contains(remark));
    QVERIFY(!_browser->output().contains("xdg_toplevel"));
}

void WaylandTest::withoutXServer()
{
    startSession(false);
    startBrowser();
    TRY_VERIFY(drawerIsOnWayland());
    QCOMPARE(_browser->output().count(remark), 1);
}

void WaylandTest::whenAskedForWayland()
{
    startSession(true);
    startBrowser({"-platform", "wayland"});
    TRY_VERIFY(drawerIsOnWayland());
    QVERIFY(!windowsOnX().contains("Wayfold"));
    QCOMPARE(_browser->output().count(remark), 1);
}

QTEST_GUILESS_MAIN(WaylandTest)
#include "WaylandTest.moc"
