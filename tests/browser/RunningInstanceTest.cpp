#include "browser/RunningInstance.h"

#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QLocalSocket>
#include <QProcess>
#include <QTest>
#include <csignal>
#include <unistd.h>

namespace
{
constexpr auto longPatience = "60000"; // milliseconds
constexpr auto shortPatience = "300";

// Prints what it turned out to be, and then, when it is the first, each list of addresses that it is given:
//
//     RunningInstanceTest browser PATIENCE TAKES|REFUSES|DIES [ADDRESS...]
int playBrowser(const QStringList &arguments)
{
    const QString whenAsked = arguments.value(1);
    RunningInstance instance;
    instance.setReceiver([&](const QStringList &addresses) {
        if (whenAsked == u"dies")
            ::kill(::getpid(), SIGKILL);
        std::printf("opened %s\n", qPrintable(addresses.join(u' ')));
        std::fflush(stdout);
        return whenAsked == u"takes";
    });
    const auto outcome = instance.settle(arguments.mid(2), std::chrono::milliseconds(arguments.value(0).toInt()));
    static constexpr const char *names[] = {"first", "handed over", "no answer"};
    std::printf("%s\n", names[outcome]);
    std::fflush(stdout);
    return outcome == RunningInstance::First ? QCoreApplication::exec() : 0;
}

// Another process of this program that plays a browser.
class OtherBrowser
{
public:
    explicit OtherBrowser(const QStringList &addresses = {}, const QString &patience = longPatience,
                          const QString &whenAsked = "takes", const QProcessEnvironment &environment = own())
    {
        _process.setProcessEnvironment(environment);
        _process.start(QCoreApplication::applicationFilePath(),
                       QStringList{"browser", patience, whenAsked} + addresses);
    }
    ~OtherBrowser()
    {
        _process.kill();
        _process.waitForFinished();
    }

    // What the process has printed so far, line by line.
    QStringList lines()
    {
        _printed += _process.readAllStandardOutput();
        return QString::fromUtf8(_printed).split('\n', Qt::SkipEmptyParts);
    }
    void send(int signal) const { ::kill(pid_t(_process.processId()), signal); }
    // Stopped for certain, and not only told to.
    bool stop() const
    {
        send(SIGSTOP);
        const QString state = QStringLiteral("/proc/%1/stat").arg(_process.processId());
        return QTest::qWaitFor([&] {
            QFile file(state);
            return file.open(QIODevice::ReadOnly) && file.readAll().contains(") T ");
        });
    }

    static QProcessEnvironment own() { return QProcessEnvironment::systemEnvironment(); }
    static QProcessEnvironment ownWith(const QString &name, const QString &value)
    {
        QProcessEnvironment environment = own();
        environment.insert(name, value);
        return environment;
    }
    static QProcessEnvironment ownWithout(const QString &name)
    {
        QProcessEnvironment environment = own();
        environment.remove(name);
        return environment;
    }

private:
    QProcess _process;
    QByteArray _printed;
};
} // namespace

#define TRY_LINES(browser, ...) QTRY_COMPARE_WITH_TIMEOUT((browser).lines(), QStringList(__VA_ARGS__), 60000)

// Every browser here is a process of its own.
class RunningInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { _home.reset(); }
    void handsOver_data();
    void handsOver();
    void wherever_data();
    void wherever();
    void foundFromAnotherEnvironment();
    void homesOfTheirOwn();
    void afterTheFirstHasEnded();
    void afterTheFirstWasKilled();
    void hungFirst();
    void firstKilledWhileTheSecondWaits();
    void firstEndsWithTheAddresses_data();
    void firstEndsWithTheAddresses();
    void startsTogether();
    void nonsenseFromOutside();
    void nowhereToLock();

private:
    QString socketPath() const { return QString::fromUtf8(_home->read(".local/share/RunningInstanceTest/lock")); }

    std::unique_ptr<TemporaryHome> _home;
};

void RunningInstanceTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    const QString runtime = _home->path("run");
    QVERIFY(QDir().mkpath(runtime));
    QVERIFY(QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    qputenv("XDG_RUNTIME_DIR", runtime.toUtf8());
    qunsetenv("XDG_DATA_HOME");
}

void RunningInstanceTest::handsOver_data()
{
    QTest::addColumn<QStringList>("addresses");
    QTest::addColumn<QString>("opened");

    QTest::newRow("addresses") << QStringList{"http://a.example/", "b.example"} << "opened http://a.example/ b.example";
    QTest::newRow("none") << QStringList() << "opened ";
    QTest::newRow("strange") << QStringList{"\"a\nb\"", QString::fromUtf8("ä€😀")}
                             << QString::fromUtf8("opened \"a\nb\" ä€😀");
    QTest::newRow("long") << QStringList{QString(100000, 'x')} << "opened " + QString(100000, 'x');
}

void RunningInstanceTest::handsOver()
{
    QFETCH(QStringList, addresses);
    QFETCH(QString, opened);
    OtherBrowser first;
    TRY_LINES(first, {"first"});
    OtherBrowser second(addresses);
    TRY_LINES(second, {"handed over"});
    const QStringList expected = QStringList("first") + opened.split('\n');
    TRY_LINES(first, expected);
}

// The name of a socket may have no more than some hundred characters.
void RunningInstanceTest::wherever_data()
{
    QTest::addColumn<QString>("home");
    QTest::addColumn<QString>("runtime");

    const QString longName(120, 'x');
    QTest::newRow("long home") << longName << "run";
    QTest::newRow("long home, no runtime folder") << longName << QString();
    QTest::newRow("long home and runtime folder") << longName << longName;
    QTest::newRow("runtime folder that others can write to") << "home"
                                                             << "open";
    QTest::newRow("runtime folder that is not there") << "home"
                                                      << "missing/folder";
}

void RunningInstanceTest::wherever()
{
    QFETCH(QString, home);
    QFETCH(QString, runtime);
    const QString homeFolder = _home->path(home);
    QVERIFY(QDir().mkpath(homeFolder));
    QVERIFY(QDir().mkpath(_home->path("open")));
    QVERIFY(QFile::setPermissions(_home->path("open"), QFile::Permissions(0x7777)));
    QProcessEnvironment environment = OtherBrowser::ownWith("HOME", homeFolder);
    if (runtime.isEmpty())
        environment.remove("XDG_RUNTIME_DIR");
    else
        environment.insert("XDG_RUNTIME_DIR", _home->path(runtime));

    OtherBrowser first({}, longPatience, "takes", environment);
    TRY_LINES(first, {"first"});
    OtherBrowser second({"http://a.example/"}, longPatience, "takes", environment);
    TRY_LINES(second, {"handed over"});
    TRY_LINES(first, {"first", "opened http://a.example/"});

    const QString socket = QString::fromUtf8(_home->read(home + "/.local/share/RunningInstanceTest/lock"));
    const QFileInfo folder(QFileInfo(socket).path());
    QVERIFY(QFileInfo::exists(socket));
    QCOMPARE(folder.ownerId(), uint(::getuid()));
    QCOMPARE(folder.permissions() & QFile::Permissions(0x0077), QFile::Permissions());
}

// A program that is started by another one need not have the desktop's environment.
void RunningInstanceTest::foundFromAnotherEnvironment()
{
    OtherBrowser first;
    TRY_LINES(first, {"first"});
    OtherBrowser second({"http://a.example/"}, longPatience, "takes", OtherBrowser::ownWithout("XDG_RUNTIME_DIR"));
    TRY_LINES(second, {"handed over"});
}

void RunningInstanceTest::homesOfTheirOwn()
{
    OtherBrowser one;
    TRY_LINES(one, {"first"});
    OtherBrowser other({}, longPatience, "takes", OtherBrowser::ownWith("HOME", _home->path("other")));
    TRY_LINES(other, {"first"});
    OtherBrowser third({"http://a.example/"});
    TRY_LINES(third, {"handed over"});
    TRY_LINES(one, {"first", "opened http://a.example/"});
}

void RunningInstanceTest::afterTheFirstHasEnded()
{
    {
        RunningInstance first;
        QCOMPARE(first.settle({}), RunningInstance::First);
    }
    RunningInstance next;
    QCOMPARE(next.settle({}), RunningInstance::First);
}

void RunningInstanceTest::afterTheFirstWasKilled()
{
    {
        OtherBrowser first;
        TRY_LINES(first, {"first"});
        first.send(SIGKILL);
    }
    QVERIFY(QFileInfo::exists(socketPath())); // left behind
    OtherBrowser second({}, shortPatience);
    TRY_LINES(second, {"first"});
    OtherBrowser third({"http://a.example/"});
    TRY_LINES(third, {"handed over"});
}

void RunningInstanceTest::hungFirst()
{
    OtherBrowser first;
    TRY_LINES(first, {"first"});
    QVERIFY(first.stop());
    OtherBrowser second({"http://a.example/"}, shortPatience);
    TRY_LINES(second, {"no answer"});
    // What was not taken is not opened later, when nobody expects it any more.
    first.send(SIGCONT);
    OtherBrowser third({"http://b.example/"});
    TRY_LINES(third, {"handed over"});
    TRY_LINES(first, {"first", "opened http://b.example/"});
}

void RunningInstanceTest::firstKilledWhileTheSecondWaits()
{
    OtherBrowser first;
    TRY_LINES(first, {"first"});
    QVERIFY(first.stop());
    OtherBrowser second({"http://a.example/"});
    // Until it has connected to the socket, which the first one does not see.
    const auto connections = [&] {
        QFile table("/proc/net/unix");
        return table.open(QIODevice::ReadOnly) ? table.readAll().count(socketPath().toUtf8()) : 0;
    };
    QTRY_VERIFY_WITH_TIMEOUT(connections() > 1, 60000);
    first.send(SIGKILL);
    TRY_LINES(second, {"first"});
}

// One that is killed with the addresses in its hands, and one that cannot open them any more.
void RunningInstanceTest::firstEndsWithTheAddresses_data()
{
    QTest::addColumn<QString>("whenAsked");

    QTest::newRow("killed") << "dies";
    QTest::newRow("about to end") << "refuses";
}

void RunningInstanceTest::firstEndsWithTheAddresses()
{
    QFETCH(QString, whenAsked);
    OtherBrowser first({}, longPatience, whenAsked);
    TRY_LINES(first, {"first"});
    OtherBrowser second({"http://a.example/"});
    if (whenAsked == u"refuses") {
        QTRY_VERIFY(first.lines().contains("opened http://a.example/"));
        QCOMPARE(second.lines(), QStringList());
        first.send(SIGTERM);
    }
    TRY_LINES(second, {"first"});
}

void RunningInstanceTest::startsTogether()
{
    std::vector<std::unique_ptr<OtherBrowser>> browsers;
    for (int i = 0; i < 8; ++i)
        browsers.push_back(std::make_unique<OtherBrowser>(QStringList(QString::number(i))));
    const auto count = [&](const QString &outcome) {
        return std::count_if(browsers.cbegin(), browsers.cend(),
                             [&](const auto &browser) { return browser->lines().value(0) == outcome; });
    };
    QTRY_COMPARE_WITH_TIMEOUT(count("handed over"), 7, 60000);
    QCOMPARE(count("first"), 1);
}

void RunningInstanceTest::nonsenseFromOutside()
{
    OtherBrowser first;
    TRY_LINES(first, {"first"});
    for (const char *nonsense : {"no list\n", "{\"a\": 1}\n", "\n", "\xff\xfe\n", "[1, [2]"}) {
        QLocalSocket socket;
        socket.connectToServer(socketPath());
        QVERIFY(socket.waitForConnected());
        QTRY_VERIFY(socket.canReadLine());
        QCOMPARE(socket.readLine(), QByteArray("ready\n"));
        socket.write(nonsense);
        if (QByteArray(nonsense).endsWith('\n')) {
            QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
            QCOMPARE(socket.readAll(), QByteArray());
        }
    }
    OtherBrowser second({"http://a.example/"});
    TRY_LINES(second, {"handed over"});
    TRY_LINES(first, {"first", "opened http://a.example/"});
}

// Where nothing can be written at all, a browser starts all the same.
void RunningInstanceTest::nowhereToLock()
{
    _home->write("file", "");
    OtherBrowser only({}, longPatience, "takes", OtherBrowser::ownWith("XDG_DATA_HOME", _home->path("file/below")));
    TRY_LINES(only, {"first"});
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == u"browser")
        return playBrowser(arguments.mid(1));
    RunningInstanceTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "RunningInstanceTest.moc"
