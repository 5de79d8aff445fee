#include "platform/files/DiskFlush.h"

#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QTest>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
int failure = 0;     // what flushing answers, none: 0
QByteArrayList done; // the paths of what was flushed

int openDescriptors()
{
    return int(QDir(QStringLiteral("/proc/self/fd")).count());
}
} // namespace

// In place of the system's, for the whole program.
extern "C" int fsync(int descriptor)
{
    char target[4096];
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(descriptor);
    const ssize_t length = ::readlink(link.constData(), target, sizeof target);
    done.append(QByteArray(target, qMax<ssize_t>(length, 0)));
    errno = failure;
    return failure == 0 ? 0 : -1;
}

class DiskFlushTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void flushes_data();
    void flushes();
    void failures_data();
    void failures();
    void missingFile();
    void doesNotWaitForAPipe();
};

void DiskFlushTest::init()
{
    failure = 0;
    done.clear();
}

void DiskFlushTest::flushes_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("file") << "file";
    QTest::newRow("folder") << "";
    QTest::newRow("beyond ASCII") << QStringLiteral("caf\u00e9");
}

void DiskFlushTest::flushes()
{
    QFETCH(QString, name);
    const TemporaryHome home;
    home.write("file", "a");
    home.write(QStringLiteral("caf\u00e9"), "a");
    const QString path = QDir::cleanPath(home.path(name));
    const int before = openDescriptors();
    QVERIFY(flushToDisk(path).isNull());
    QCOMPARE(done, QByteArrayList{QFile::encodeName(path)});
    QCOMPARE(openDescriptors(), before);
}

void DiskFlushTest::failures_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("reason");
    QTest::newRow("disk") << EIO << "Input/output error";
    QTest::newRow("full") << ENOSPC << "No space left on device";
    // As file systems say that need no flushing.
    QTest::newRow("needless") << EINVAL << QString();
    QTest::newRow("unsupported") << ENOTSUP << QString();
}

void DiskFlushTest::failures()
{
    QFETCH(int, error);
    QFETCH(QString, reason);
    const TemporaryHome home;
    const int before = openDescriptors();
    failure = error;
    const QString answer = flushToDisk(home.path());
    QCOMPARE(answer, reason);
    QCOMPARE(answer.isNull(), reason.isNull());
    QCOMPARE(openDescriptors(), before);
}

void DiskFlushTest::missingFile()
{
    const TemporaryHome home;
    QCOMPARE(flushToDisk(home.path("nothing")), QString("No such file or directory"));
    QVERIFY(done.isEmpty());
}

void DiskFlushTest::doesNotWaitForAPipe()
{
    const TemporaryHome home;
    QCOMPARE(::mkfifo(qPrintable(home.path("pipe")), 0600), 0);
    flushToDisk(home.path("pipe")); // comes back, above all
    QCOMPARE(done, QByteArrayList{QFile::encodeName(home.path("pipe"))});
}

QTEST_APPLESS_MAIN(DiskFlushTest)
#include "DiskFlushTest.moc"
