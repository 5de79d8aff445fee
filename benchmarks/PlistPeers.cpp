#include "benchmarks/PlistPeers.h"

#include "benchmarks/Figures.h"

#include <QFile>
#include <QProcess>
#include <plist/plist.h>

namespace
{
double plistlibMilliseconds(const QString &work, const QString &path)
{
    static const char script[] = "import os, plistlib, statistics, sys, time\n"
                                 "cpu = os.environ.get('WAYFOLD_BENCH_CLOCK') == 'cpu'\n"
                                 "clock = time.process_time if cpu else time.perf_counter\n"
                                 "path, times = sys.argv[2], []\n"
                                 "data = open(path, 'rb').read()\n"
                                 "tree = plistlib.loads(data)\n"
                                 "for run in range(8):\n"
                                 "    start = clock()\n"
                                 "    if sys.argv[1] == 'read':\n"
                                 "        plistlib.loads(data)\n"
                                 "    elif sys.argv[1] == 'write':\n"
                                 "        plistlib.dump(tree, open(path + '.copy', 'wb'))\n"
                                 "    else:\n"
                                 "        with open(path + '.copy', 'wb') as copy:\n"
                                 "            plistlib.dump(tree, copy)\n"
                                 "            copy.flush()\n"
                                 "            os.fsync(copy.fileno())\n"
                                 "        os.replace(path + '.copy', path)\n"
                                 "    times.append(clock() - start)\n"
                                 "print(statistics.median(times[1:]) * 1000)\n";
    QProcess python;
    python.start(QStringLiteral("python3"), {QStringLiteral("-c"), QString::fromLatin1(script), work, path});
    if (!python.waitForFinished(600'000) || python.exitCode() != 0)
        return 0;
    return python.readAllStandardOutput().trimmed().toDouble();
}
} // namespace

double PlistPeers::plistlibReadMilliseconds(const QString &path)
{
    return plistlibMilliseconds(QStringLiteral("read"), path);
}

double PlistPeers::plistlibWriteMilliseconds(const QString &path)
{
    return plistlibMilliseconds(QStringLiteral("write"), path);
}

double PlistPeers::plistlibSaveMilliseconds(const QString &path)
{
    return plistlibMilliseconds(QStringLiteral("save"), path);
}

double PlistPeers::libplistReadMilliseconds(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray data = file.readAll();
    bool read = true;
    const double milliseconds = Figures::medianMilliseconds([&] {
        plist_t tree = nullptr;
        plist_from_xml(data.constData(), uint32_t(data.size()), &tree);
        read = read && tree;
        plist_free(tree);
    });
    return read ? milliseconds : 0;
}
