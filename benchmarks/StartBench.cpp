#include "benchmarks/StartBench.h"

#include "benchmarks/Benches.h"
#include "benchmarks/ChildProcess.h"
#include "benchmarks/Figures.h"
#include "benchmarks/GeneratedFiles.h"
#include "benchmarks/Stopwatch.h"
#include "platform/host/HostObserver.h"
#include "platform/host/HostPlugin.h"
#include "tests/support/FakeHost.h"

#include <QApplication>
#include <QPluginLoader>
#include <algorithm>

namespace
{
bool isAnyDrawerThere()
{
    const QWidgetList widgets = QApplication::allWidgets();
    return std::any_of(widgets.cbegin(), widgets.cend(),
                       [](const QWidget *widget) { return widget->inherits("SiteDrawer"); });
}
} // namespace

std::optional<double> StartBench::startMilliseconds(const GeneratedFiles &files)
{
    FakeHostApplication host;
    host.historyPath = files.history();
    host.bookmarkPath = files.bookmarks();
    const auto window = host.openWindow();
    window->makeWidget();
    window->addTab(QStringLiteral("https://www.example.com/"));
    QCoreApplication::processEvents();

    const Stopwatch watch;
    QPluginLoader loader(qEnvironmentVariable("WAYFOLD_BUNDLE") + QStringLiteral("/Contents/Plugin/libwayfold.so"));
    auto *plugin = qobject_cast<HostPlugin *>(loader.instance());
    if (!plugin)
        return {};
    HostObserver *observer = plugin->load(&host);
    observer->windowDidBecomeKey(window);
    QCoreApplication::processEvents();
    const double milliseconds = watch.milliseconds();
    const bool isReady = isAnyDrawerThere();
    observer->windowWillClose(window);
    observer->applicationWillTerminate();
    return isReady ? std::optional(milliseconds) : std::nullopt;
}

bool measureStart(Figures &figures, GeneratedFiles &files, bool /*peers*/)
{
    std::vector<double> times;
    for (int run = -1; run < 7; ++run) {
        const std::optional<double> time = ChildProcess::measure(QStringLiteral("start"), files);
        if (!time)
            return false;
        if (run >= 0)
            times.push_back(*time);
    }
    figures.add(QStringLiteral("start_ms"), Figures::median(times), QStringLiteral("ms"));
    return true;
}
