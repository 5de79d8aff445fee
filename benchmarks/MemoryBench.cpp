#include "benchmarks/MemoryBench.h"

#include "benchmarks/Benches.h"
#include "benchmarks/ChildProcess.h"
#include "benchmarks/DrawerOnFiles.h"
#include "benchmarks/Figures.h"

#include <QFile>
#include <malloc.h>
#include <unistd.h>

double MemoryBench::residentSize()
{
    malloc_trim(0);
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * double(sysconf(_SC_PAGESIZE));
}

std::optional<double> MemoryBench::bytesPerEntry(const GeneratedFiles &files, bool filtered)
{
    DrawerOnFiles drawer(GeneratedFiles(files.folder() + QStringLiteral("/none"), 0));
    drawer.controller()->showHistoryTabView();
    DrawerOnFiles::layOut(drawer.history());
    const double before = residentSize();

    drawer.stage.host.historyPath = files.history();
    DrawerStage::store().tagSafariFiles();
    QCoreApplication::processEvents();
    DrawerOnFiles::layOut(drawer.history());
    if (filtered) {
        drawer.historyField().setText(QStringLiteral("http"));
        DrawerOnFiles::layOut(drawer.history());
    }
    if (drawer.history().numberOfRows() == 0 || before == 0)
        return {};
    return (residentSize() - before) / files.entries();
}

bool measureMemory(Figures &figures, GeneratedFiles &files, bool /*peers*/)
{
    const std::optional<double> grouped = ChildProcess::measure(QStringLiteral("grouped"), files);
    const std::optional<double> filtered = ChildProcess::measure(QStringLiteral("filtered"), files);
    if (!grouped || !filtered)
        return false;
    figures.add(QStringLiteral("items_grouped_bytes_per_entry"), *grouped, QStringLiteral("bytes"));
    figures.add(QStringLiteral("items_bytes_per_entry"), *filtered, QStringLiteral("bytes"));
    return true;
}
