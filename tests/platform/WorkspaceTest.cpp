#include "platform/widgets/Workspace.h"

#include "platform/widgets/Image.h"
#include "tests/support/TemporaryHome.h"

#include <QDesktopServices>
#include <QPainter>
#include <QTest>
#include <QUrl>

// Stands in for the desktop behind QDesktopServices.
class DesktopStub : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }
};

class WorkspaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        Workspace::setURLHandler({});
        Workspace::setProgramHandler({});
    }

    void opensThroughTheDesktop_data();
    void opensThroughTheDesktop();
    void handsAddressesToTheTestsHandler();
    void doesNotOpenNone();
    void showsTheFolderOfAFile_data();
    void showsTheFolderOfAFile();
    void startsPrograms();
    void tellsOfProgramsThatCannotBeStarted();
    void handsProgramsToTheTestsHandler();
    void hasAnIconForEveryFile_data();
    void hasAnIconForEveryFile();
    void hasNoIconWithoutAPath();

private:
    TemporaryHome _home;
};

void WorkspaceTest::opensThroughTheDesktop_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("escapes") << "x-wayfold-test://example.com/a%20b?q=c%2Bd&e=[f]";
    QTest::newRow("no authority") << "x-wayfold-test:ann@example.com?subject=Hi%20there";
}

void WorkspaceTest::opensThroughTheDesktop()
{
    QFETCH(QString, address);
    DesktopStub desktop;
    QDesktopServices::setUrlHandler("x-wayfold-test", &desktop, "open");
    QVERIFY(Workspace::openURL(Url::URLWithString(address)));
    QDesktopServices::unsetUrlHandler("x-wayfold-test");
    QCOMPARE(desktop.opened.size(), 1);
    QCOMPARE(QString::fromLatin1(desktop.opened[0].toEncoded()), address);
}

void WorkspaceTest::handsAddressesToTheTestsHandler()
{
    QStringList opened;
    bool answer = true;
    Workspace::setURLHandler([&](const Url &url) {
        opened.append(url.absoluteString());
        return answer;
    });
    QVERIFY(Workspace::openURL(Url::URLWithString("HTTP://Example.COM/")));
    answer = false;
    QVERIFY(!Workspace::openURL(Url::URLWithString("mailto:ann@example.com")));
    QCOMPARE(opened, QStringList({"HTTP://Example.COM/", "mailto:ann@example.com"}));
}

void WorkspaceTest::doesNotOpenNone()
{
    int opened = 0;
    Workspace::setURLHandler([&](const Url &) { return ++opened > 0; });
    QVERIFY(!Workspace::openURL(Url()));
    QCOMPARE(opened, 0);
}

// Where it runs, with which arguments, and where it prints, is told by what it writes there.
void WorkspaceTest::showsTheFolderOfAFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("folder");
    QTest::newRow("file") << "a b/there"
                          << "a b";
    QTest::newRow("missing file") << "a b/missing"
                                  << "a b";
    QTest::newRow("folder") << "a b/folder"
                            << "a b";
    QTest::newRow("missing folder") << "a b/gone/away/missing"
                                    << "a b";
}

void WorkspaceTest::showsTheFolderOfAFile()
{
    QFETCH(QString, path);
    QFETCH(QString, folder);
    _home.write(QStringLiteral("a b/there"), "x");
    _home.write(QStringLiteral("a b/folder/x"), "x");
    QStringList opened;
    Workspace::setURLHandler([&opened](const Url &url) {
        opened.append(url.absoluteString());
        return true;
    });
    QVERIFY(Workspace::showFile(_home.path(path)));
    QCOMPARE(opened, QStringList{Url::fileURLWithPath(_home.path(folder)).absoluteString()});
    QVERIFY(opened.constFirst().contains(QStringLiteral("a%20b")));
}

void WorkspaceTest::startsPrograms()
{
    const QString script = QStringLiteral("set -- \"$@\" $(readlink /proc/$$/fd/1 /proc/$$/fd/2);"
                                          "printf '%s|' \"$@\" >told; mv told done");
    QVERIFY(Workspace::startProgram({"sh", "-c", script, "sh", "a b", "", "$HOME"}));
    QTRY_VERIFY(QFile::exists(_home.path("done")));
    QCOMPARE(_home.read("done"), QByteArray("a b||$HOME|/dev/null|/dev/null|"));
}

void WorkspaceTest::tellsOfProgramsThatCannotBeStarted()
{
    QVERIFY(!Workspace::startProgram({}));
    QVERIFY(!Workspace::startProgram({"wayfold-no-such-program", "argument"}));
    QVERIFY(!Workspace::startProgram({_home.path("missing")}));
}

void WorkspaceTest::handsProgramsToTheTestsHandler()
{
    std::vector<QStringList> started;
    bool answer = true;
    Workspace::setProgramHandler([&](const QStringList &command) {
        started.push_back(command);
        return answer;
    });
    QVERIFY(Workspace::startProgram({"contacts", "--show", "a b"}));
    answer = false;
    QVERIFY(!Workspace::startProgram({"other"}));
    QVERIFY(!Workspace::startProgram({}));
    const std::vector<QStringList> expected = {{"contacts", "--show", "a b"}, {"other"}};
    QCOMPARE(started, expected);
}

void WorkspaceTest::hasAnIconForEveryFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a file") << "report.txt";
    QTest::newRow("a folder") << "folder";
    QTest::newRow("a missing file") << "missing/report.pdf";
    QTest::newRow("a missing folder") << "missing/";
}

void WorkspaceTest::hasAnIconForEveryFile()
{
    QFETCH(QString, name);
    _home.write("report.txt", "text");
    _home.write("folder/inside.txt", "text");
    const auto image = Workspace::iconForFile(_home.path(name));
    QVERIFY(image);
    QCOMPARE(image->size(), QSizeF(32, 32));
    image->setScalesWhenResized(true);
    QImage canvas(32, 32, QImage::Format_ARGB32);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    image->drawInRect(painter, QRectF(0, 0, 32, 32));
    painter.end();
    QImage empty(32, 32, QImage::Format_ARGB32);
    empty.fill(Qt::transparent);
    QVERIFY(canvas != empty);
}

void WorkspaceTest::hasNoIconWithoutAPath()
{
    QVERIFY(!Workspace::iconForFile(QString()));
    QVERIFY(!Workspace::iconForFile(QString("")));
}

QTEST_MAIN(WorkspaceTest)
#include "WorkspaceTest.moc"
