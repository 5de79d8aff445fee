#include "benchmarks/ChildParts.h"

#include "benchmarks/ContactsBench.h"
#include "benchmarks/DesktopContactsBench.h"
#include "benchmarks/GeneratedFiles.h"
#include "benchmarks/MemoryBench.h"
#include "benchmarks/StartBench.h"

#include <cstdio>

namespace
{
using Values = std::vector<double>;

std::optional<Values> valuesOf(std::optional<double> value)
{
    return value ? std::optional<Values>(Values{*value}) : std::nullopt;
}
} // namespace

int ChildParts::run(const QString &name, const GeneratedFiles &files)
{
    std::optional<Values> answer;
    if (name == QLatin1String("grouped"))
        answer = valuesOf(MemoryBench::bytesPerEntry(files, false));
    else if (name == QLatin1String("filtered"))
        answer = valuesOf(MemoryBench::bytesPerEntry(files, true));
    else if (name == QLatin1String("contacts"))
        answer = valuesOf(ContactsBench::bytesPerCard(files.folder(), files.entries()));
    else if (name == QLatin1String("desktop contacts"))
        answer = DesktopContactsBench::measure(files.entries());
    else if (name == QLatin1String("desktop contacts' memory"))
        answer = valuesOf(DesktopContactsBench::bytesPerCard(files.entries()));
    else if (name == QLatin1String("start"))
        answer = valuesOf(StartBench::startMilliseconds(files));
    if (!answer)
        return 1;
    for (const double value : *answer)
        std::printf("%.6f\n", value);
    return 0;
}
