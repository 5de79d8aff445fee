#include "core/KDRWebView.h"

#include "tests/core/StoreInTemporaryHome.h"

#include <optional>

class KDRWebViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _fresh.emplace(); }
    void cleanup() { _fresh.reset(); }

    void drawerGoesFirst();
    void passesTheView();
    void viewBeingTornDownIsDrawn();
    void everyLaterInstanceIsReplaced();
    void switchOfTabsReachesTheDrawer();

private:
    std::optional<StoreInTemporaryHome> _fresh;
};

namespace
{
class RecordingDrawing : public HostWebViewDrawing
{
public:
    explicit RecordingDrawing(const HostWebView *&record) : _record(record) {}
    void lockFocus(HostWebView &view) override { _record = &view; }

private:
    const HostWebView *&_record;
};
} // namespace

void KDRWebViewTest::drawerGoesFirst()
{
    const auto window = _fresh->openWindow();
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    _fresh->controller().onFrameCheck = [this] { _fresh->host.order += QLatin1Char('U'); };
    _fresh->host.draw(*view);
    QCOMPARE(_fresh->host.order, QStringLiteral("UD"));
}

void KDRWebViewTest::passesTheView()
{
    const auto view = FakeHostWebView::make();
    const HostWebView *record = nullptr;
    KDRWebView drawing(std::make_unique<RecordingDrawing>(record));
    drawing.lockFocus(*view);
    QCOMPARE(record, view.get());
}

void KDRWebViewTest::viewBeingTornDownIsDrawn()
{
    const auto window = _fresh->openWindow();
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    view->frame.reset();
    _fresh->host.draw(*view);
    QCOMPARE(_fresh->host.baseDrawCount, 1);
    QVERIFY(!_fresh->controller().currentWebFrame());
}

void KDRWebViewTest::everyLaterInstanceIsReplaced()
{
    const auto before = _fresh->host.makeWebViewDrawing();
    QVERIFY(!dynamic_cast<KDRWebView *>(before.get()));
    StoreInTemporaryHome::store();
    for (int i = 0; i < 3; ++i) {
        const auto drawing = _fresh->host.makeWebViewDrawing();
        QVERIFY(dynamic_cast<KDRWebView *>(drawing.get()));
    }
}

void KDRWebViewTest::switchOfTabsReachesTheDrawer()
{
    _fresh->settings().setAutoFocusOnSiteChange(true);
    const auto window = _fresh->openWindow();
    const auto first = window->addTab(QStringLiteral("http://www.example.com/"));
    _fresh->host.draw(*first);
    const auto second = window->addTab(QStringLiteral("http://www.example.org/"));
    _fresh->host.draw(*second);
    QCOMPARE(_fresh->controller().label, QStringLiteral("example.org"));
    window->frontWebView = first; // loads nothing
    _fresh->host.draw(*first);
    QCOMPARE(_fresh->controller().label, QStringLiteral("example.com"));
    QCOMPARE(_fresh->controller().currentWebFrame(), first->frame);
}

QTEST_MAIN(KDRWebViewTest)
#include "KDRWebViewTest.moc"
