#include "platform/files/Paths.h"
#include "tests/support/TemporaryHome.h"

#include <QTest>

class PathsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void homeIsReadWhenAskedFor();
    void expandingTilde_data();
    void expandingTilde();
    void standardized_data();
    void standardized();
    void linksAreNotFollowed();
};

void PathsTest::homeIsReadWhenAskedFor()
{
    const QString before = Paths::homeDirectory();
    {
        const TemporaryHome home;
        QCOMPARE(Paths::homeDirectory(), home.path());
        QCOMPARE(Paths::expandingTilde("~/a"), home.path() + "/a");
    }
    QCOMPARE(Paths::homeDirectory(), before);
}

void PathsTest::expandingTilde_data()
{
    QTest::addColumn<QString>("home");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("answer");
    QTest::newRow("alone") << "/home/ann"
                           << "~"
                           << "/home/ann";
    QTest::newRow("below") << "/home/ann"
                           << "~/Library/Wayfold"
                           << "/home/ann/Library/Wayfold";
    QTest::newRow("home with a slash") << "/home/ann/"
                                       << "~/a"
                                       << "/home/ann/a";
    QTest::newRow("home beyond ASCII") << QStringLiteral("/home/ren\u00e9") << "~/a"
                                       << QStringLiteral("/home/ren\u00e9/a");
    QTest::newRow("of somebody else") << "/home/ann"
                                      << "~bob/a"
                                      << "~bob/a";
    QTest::newRow("inside") << "/home/ann"
                            << "/a/~/b"
                            << "/a/~/b";
    QTest::newRow("absolute") << "/home/ann"
                              << "/a"
                              << "/a";
    QTest::newRow("empty") << "/home/ann"
                           << ""
                           << "";
    QTest::newRow("left as it is") << "/home/ann"
                                   << "~/a/../b//c"
                                   << "/home/ann/a/../b//c";
}

void PathsTest::expandingTilde()
{
    QFETCH(QString, home);
    QFETCH(QString, path);
    QFETCH(QString, answer);
    const TemporaryHome restoresTheHome;
    qputenv("HOME", home.toUtf8());
    QCOMPARE(Paths::expandingTilde(path), answer);
}

void PathsTest::standardized_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("answer");
    QTest::newRow("as it is") << "/a/b"
                              << "/a/b";
    QTest::newRow("tilde") << "~/a/./b"
                           << "/home/ann/a/b";
    QTest::newRow("dots") << "/a/./b/../c"
                          << "/a/c";
    QTest::newRow("slashes") << "//a///b/"
                             << "/a/b";
    QTest::newRow("above the root") << "/../../a"
                                    << "/a";
    QTest::newRow("the root from above") << "/a/../.."
                                         << "/";
    QTest::newRow("root") << "/"
                          << "/";
    QTest::newRow("relative") << "a/../b"
                              << "b";
    QTest::newRow("relative from above") << "../a"
                                         << "../a";
    QTest::newRow("name with dots") << "/a/..b/c."
                                    << "/a/..b/c.";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("bundle") << "/x/Wayfold.plugin/Contents//Info.plist"
                            << "/x/Wayfold.plugin/Contents/Info.plist";
}

void PathsTest::standardized()
{
    QFETCH(QString, path);
    QFETCH(QString, answer);
    const TemporaryHome restoresTheHome;
    qputenv("HOME", "/home/ann");
    QCOMPARE(Paths::standardized(path), answer);
}

void PathsTest::linksAreNotFollowed()
{
    const TemporaryHome home;
    home.write("elsewhere/below/file", "");
    QVERIFY(QFile::link(home.path("elsewhere/below"), home.path("link")));
    QCOMPARE(Paths::standardized("~/link/../file"), home.path("file"));
}

QTEST_GUILESS_MAIN(PathsTest)
#include "PathsTest.moc"
