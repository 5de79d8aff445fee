#include "tests/e2e/support/Desk.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/PageServer.h"
#include "tests/e2e/support/Process.h"
#include "tests/e2e/support/Tool.h"
#include "tests/support/TemporaryHome.h"

#include <QtTest>
#include <csignal>

#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, 60000)
#define TRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, 60000)

// The browser started more than once, as by clicks on links in other programs. Each is a process of its own.
class OneProcessTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { _home = std::make_unique<TemporaryHome>(); }
    void cleanup() { _home.reset(); }
    void secondHandsOver();
    void secondWaitsForOneThatHangs();

private:
    static std::unique_ptr<Process> start(const QString &host)
    {
        return std::make_unique<Process>(WAYFOLD_BROWSER_PROGRAM, QStringList("http://" + host + ".localhost/"));
    }
    bool wasAskedFor(const QString &host) const { return _web.requests(host + ".localhost", "/") > 0; }
    // The windows of the process that the window manager knows.
    static QList<WId> windowsOf(const Process &process);
    // When each file of the browser and the plug-in was changed last.
    QMap<QString, QDateTime> files() const;

    PageServer _web;
    std::unique_ptr<TemporaryHome> _home;
};

void OneProcessTest::initTestCase()
{
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", _web.browserFlags());
}

QList<WId> OneProcessTest::windowsOf(const Process &process)
{
    QList<WId> windows;
    const QByteArray list = Tool::run("wmctrl", {"-l", "-p"}).value_or(QByteArray());
    for (const QByteArray &line : list.split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.value(2).toLongLong() == process.id())
            windows.append(WId(fields.first().toULongLong(nullptr, 16)));
    }
    return windows;
}

QMap<QString, QDateTime> OneProcessTest::files() const
{
    QMap<QString, QDateTime> found;
    QDirIterator walk(_home->path("Library"), QDir::Files, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QFileInfo file(walk.next());
        found.insert(file.filePath(), file.lastModified());
    }
    return found;
}

void OneProcessTest::secondHandsOver()
{
    const auto first = start("one");
    TRY_VERIFY(wasAskedFor("one"));
    const auto second = start("two");
    TRY_COMPARE(second->exitCode(), 0);
    TRY_VERIFY(wasAskedFor("two"));
    TRY_COMPARE(windowsOf(*first).size(), 2);
}

// It says so and leaves the files alone; asked to try again when the first one has gone, it opens the page itself.
void OneProcessTest::secondWaitsForOneThatHangs()
{
    const auto first = start("three");
    TRY_VERIFY(wasAskedFor("three"));
    first->send(SIGSTOP);
    const auto before = files();
    QVERIFY(!before.isEmpty());
    const auto second = start("four");
    TRY_COMPARE(windowsOf(*second).size(), 1);
    QVERIFY(!wasAskedFor("four"));
    QCOMPARE(files(), before);

    first->send(SIGKILL);
    TRY_VERIFY(Desk::activate(windowsOf(*second).value(0)) && Hands::press("Return") && wasAskedFor("four"));
    QCOMPARE(second->exitCode(), -1);
}

QTEST_GUILESS_MAIN(OneProcessTest)
#include "OneProcessTest.moc"
