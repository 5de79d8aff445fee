#include "benchmarks/AllocationCount.h"
#include "benchmarks/Benches.h"
#include "benchmarks/Figures.h"
#include "core/KDRDrawerBundle.h"
#include "core/SiteDrawer.h"
#include "core/settings/WayfoldDefaults.h"
#include "drawer/DrawerRoom.h"
#include "tests/support/FakeHost.h"

// A page is drawn again and again while nothing has changed: the reaction's early exit, with the real store, drawer
// and lists on a host that costs nothing.
bool measurePageLoad(Figures &figures)
{
    FakeHostApplication host;
    installDrawerRoom();
    KDRDrawerBundle &store = KDRDrawerBundle::sharedInstance();
    WayfoldDefaults::sharedInstance().setAutoFocusOnSiteChange(true);

    const auto window = host.openWindow(QRectF(50, 50, 800, 600));
    const auto view = window->addTab(QStringLiteral("http://news.example.com/a/page?with=a&query"));
    window->becomeKey();
    SiteDrawer *drawer = store.drawerForWindow(window.get());
    if (!drawer)
        return false;
    store.updateDrawerForFrame(view->frame);
    if (drawer->controller()->currentScratchDrawerLabel() != QLatin1String("example.com"))
        return false;

    constexpr int calls = 1'000'000;
    const std::shared_ptr<HostFrame> frame = view->frame;
    const std::uint64_t before = allocationCount();
    const double milliseconds = Figures::medianMilliseconds([&] {
        for (int call = 0; call < calls; ++call)
            store.updateDrawerForFrame(frame);
    });
    // The median's own list of times is all that may be counted beside the calls: a handful in eight million.
    const double allocations = double(allocationCount() - before) / calls;
    figures.add(QStringLiteral("page_load_early_exit_us"), milliseconds * 1000 / calls, QStringLiteral("us"));
    figures.add(QStringLiteral("page_load_early_exit_allocations"), allocations, QStringLiteral("each"));
    window->close();
    KDRDrawerBundle::releaseSharedInstance();
    return true;
}
