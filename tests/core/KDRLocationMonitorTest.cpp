#include "core/KDRLocationMonitor.h"

#include "tests/core/StoreInTemporaryHome.h"

#include <optional>

class KDRLocationMonitorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _fresh.emplace(); }
    void cleanup() { _fresh.reset(); }

    void hostGoesFirst();
    void passesTheSameArguments();
    void hostMayLetGoOfTheFrame();
    void everyFrameIsPassedOn();
    void everyLaterInstanceIsReplaced();
    void loadedPageReachesTheDrawer();

private:
    std::optional<StoreInTemporaryHome> _fresh;
};

namespace
{
class RecordingHandler : public HostLocationChangeHandler
{
public:
    explicit RecordingHandler(QList<const void *> &record) : _record(record) {}
    void webViewDidFinishLoadForFrame(HostWebView &view, const std::shared_ptr<HostFrame> &frame) override
    {
        _record = {&view, frame.get()};
    }

private:
    QList<const void *> &_record;
};

// A host's handling that lets go of the frame that it was given.
class LettingGoHandler : public HostLocationChangeHandler
{
public:
    explicit LettingGoHandler(std::shared_ptr<HostFrame> &frame) : _frame(frame) {}
    void webViewDidFinishLoadForFrame(HostWebView & /*view*/, const std::shared_ptr<HostFrame> & /*frame*/) override
    {
        _frame.reset();
    }

private:
    std::shared_ptr<HostFrame> &_frame;
};
} // namespace

void KDRLocationMonitorTest::hostGoesFirst()
{
    const auto window = _fresh->openWindow();
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    _fresh->controller().onFrameCheck = [this] { _fresh->host.order += QLatin1Char('U'); };
    _fresh->host.finishLoad(*view, view->frame);
    QCOMPARE(_fresh->host.order, QStringLiteral("LU"));
}

void KDRLocationMonitorTest::passesTheSameArguments()
{
    const auto view = FakeHostWebView::make();
    QList<const void *> record;
    KDRLocationMonitor monitor(std::make_unique<RecordingHandler>(record));
    monitor.webViewDidFinishLoadForFrame(*view, view->frame);
    const HostWebView *hostView = view.get();
    const HostFrame *hostFrame = view->frame.get();
    QCOMPARE(record, (QList<const void *>{hostView, hostFrame}));
}

void KDRLocationMonitorTest::hostMayLetGoOfTheFrame()
{
    const auto window = _fresh->openWindow();
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    std::shared_ptr<HostFrame> frame = view->frame;
    KDRLocationMonitor monitor(std::make_unique<LettingGoHandler>(frame));
    monitor.webViewDidFinishLoadForFrame(*view, frame);
    QVERIFY(!frame);
    QCOMPARE(_fresh->controller().currentWebFrame(), view->frame);
}

void KDRLocationMonitorTest::everyFrameIsPassedOn()
{
    const auto window = _fresh->openWindow();
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    const auto subFrame = FakeHostWebView::makeSubFrame(view);
    _fresh->controller().onFrameCheck = [this] { _fresh->host.order += QLatin1Char('U'); };
    _fresh->host.finishLoad(*view, subFrame);
    _fresh->host.finishLoad(*view, nullptr);
    QCOMPARE(_fresh->host.order, QStringLiteral("LL")); // the host's own handling is never left out
}

void KDRLocationMonitorTest::everyLaterInstanceIsReplaced()
{
    const auto before = _fresh->host.makeLocationChangeHandler();
    QVERIFY(!dynamic_cast<KDRLocationMonitor *>(before.get()));
    StoreInTemporaryHome::store();
    for (int i = 0; i < 3; ++i) {
        const auto handler = _fresh->host.makeLocationChangeHandler();
        QVERIFY(dynamic_cast<KDRLocationMonitor *>(handler.get()));
    }
}

void KDRLocationMonitorTest::loadedPageReachesTheDrawer()
{
    _fresh->settings().setAutoFocusOnSiteChange(true);
    const auto window = _fresh->openWindow();
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    _fresh->host.finishLoad(*view, view->frame);
    QCOMPARE(_fresh->controller().label, QStringLiteral("example.com"));
    QCOMPARE(_fresh->controller().currentWebFrame(), view->frame);
}

QTEST_MAIN(KDRLocationMonitorTest)
#include "KDRLocationMonitorTest.moc"
