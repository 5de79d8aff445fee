#include "tests/core/StoreInTemporaryHome.h"
#include "tests/support/AllocationCount.h"

#include <optional>

// The page-load reaction runs at every drawing of every page, so its early exits take nothing from the heap.
class PageLoadAllocationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _fresh.emplace(); }
    void cleanup() { _fresh.reset(); }

    void countingWorks();
    void samePageAllocatesNothing_data();
    void samePageAllocatesNothing();
    void otherFramesAllocateNothing();
    void drawingAllocatesNothing();

private:
    std::optional<StoreInTemporaryHome> _fresh;
};

void PageLoadAllocationTest::countingWorks()
{
    const std::size_t before = allocationCount;
    const QString text(100, QLatin1Char('a'));
    const auto number = std::make_unique<int>(text.size());
    QVERIFY(allocationCount >= before + 2);
    QCOMPARE(*number, 100);
}

void PageLoadAllocationTest::samePageAllocatesNothing_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("label");
    QTest::addColumn<bool>("autoFocus");
    const QString none;
    const QString allSites = QStringLiteral("Sites");

    QTest::newRow("site shown") << "http://news.some-rather-long-name.example.com:8080/index.html" << none << true;
    QTest::newRow("numeric address") << "http://192.168.100.100/" << none << true;
    QTest::newRow("no host, no label") << "file:///home/ann/a.html" << none << false;
    // Where the label follows no page, as for a new user, it differs from the site's at every drawing.
    QTest::newRow("another label") << "http://news.some-rather-long-name.example.com/" << allSites << false;
    QTest::newRow("another label, known site") << "http://www.some-rather-long-name.example.org/" << allSites << false;
    QTest::newRow("no host, another label") << "file:///home/ann/a.html" << allSites << false;
}

void PageLoadAllocationTest::samePageAllocatesNothing()
{
    QFETCH(QString, address);
    QFETCH(QString, label);
    QFETCH(bool, autoFocus);
    if (autoFocus)
        _fresh->settings().setAutoFocusOnSiteChange(true);
    const auto window = _fresh->openWindow();
    _fresh->controller().label = label;
    StoreInTemporaryHome::addFolder(StoreInTemporaryHome::store().bookmarkRoot(),
                                    QStringLiteral("some-rather-long-name.example.org"));
    const auto view = window->addTab(address);
    KDRDrawerBundle &store = StoreInTemporaryHome::store();
    store.updateDrawerForFrame(view->frame);
    const QStringList calls = _fresh->controller().calls;

    const std::shared_ptr<HostFrame> frame = view->frame;
    const std::size_t before = allocationCount;
    store.updateDrawerForFrame(frame);
    QCOMPARE(allocationCount, before);
    QCOMPARE(_fresh->controller().calls, calls);
}

void PageLoadAllocationTest::otherFramesAllocateNothing()
{
    const auto window = _fresh->openWindow();
    const auto background = window->addTab(QStringLiteral("http://www.example.com/"));
    const auto view = window->addTab(QStringLiteral("http://www.example.org/"));
    const std::shared_ptr<HostFrame> subFrame = FakeHostWebView::makeSubFrame(view);
    const std::shared_ptr<HostFrame> behind = background->frame;
    KDRDrawerBundle &store = StoreInTemporaryHome::store();
    const std::size_t before = allocationCount;
    store.updateDrawerForFrame(nullptr);
    store.updateDrawerForFrame(subFrame);
    store.updateDrawerForFrame(behind);
    QCOMPARE(allocationCount, before);
}

void PageLoadAllocationTest::drawingAllocatesNothing()
{
    _fresh->settings().setAutoFocusOnSiteChange(true);
    const auto window = _fresh->openWindow();
    const auto view = window->addTab(QStringLiteral("http://www.example.com/"));
    const auto drawing = _fresh->host.makeWebViewDrawing();
    drawing->lockFocus(*view);
    _fresh->host.order.reserve(100); // the fake's own record
    const std::size_t before = allocationCount;
    for (int i = 0; i < 10; ++i)
        drawing->lockFocus(*view);
    QCOMPARE(allocationCount, before);
    QCOMPARE(_fresh->host.baseDrawCount, 11);
}

QTEST_MAIN(PageLoadAllocationTest)
#include "PageLoadAllocationTest.moc"
