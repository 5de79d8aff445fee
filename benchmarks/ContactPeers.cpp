#include "benchmarks/ContactPeers.h"

#include "benchmarks/Figures.h"

#include <QDir>
#include <QFile>
#include <QProcess>

double ContactPeers::vobjectLoadMilliseconds(const QString &folder)
{
    static const char script[] = "import glob, os, sys, time, vobject\n"
                                 "cpu = os.environ.get('WAYFOLD_BENCH_CLOCK') == 'cpu'\n"
                                 "clock = time.process_time if cpu else time.perf_counter\n"
                                 "start = clock()\n"
                                 "cards = []\n"
                                 "for name in glob.glob(sys.argv[1] + '/*.vcf'):\n"
                                 "    with open(name, encoding='utf-8') as file:\n"
                                 "        cards.append(vobject.readOne(file.read()))\n"
                                 "print((clock() - start) * 1000)\n";
    QProcess python; // the system's, which has the library
    python.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral("-c"), QString::fromLatin1(script), folder});
    if (!python.waitForFinished(600'000) || python.exitCode() != 0)
        return 0;
    return python.readAllStandardOutput().trimmed().toDouble();
}

double ContactPeers::scanMilliseconds(const QString &folder, const QByteArray &text)
{
    const QStringList names = QDir(folder).entryList({QStringLiteral("*.vcf")});
    return Figures::medianMilliseconds([&] {
        int found = 0;
        for (const QString &name : names) {
            QFile file(folder + u'/' + name);
            if (file.open(QIODevice::ReadOnly) && file.readAll().toLower().contains(text))
                ++found;
        }
        return found;
    });
}
