#include "browser/BrowserHostFrame.h"
#include "browser/BrowserHostWebView.h"
#include "platform/host/HostWindow.h"

#include <QStringList>
#include <QTest>

// Frames and web views as the plug-in sees them.
class BrowserHostFrameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void nothingAtFirst();
    void provisionalThenCommitted();
    void stoppedLoadKeepsThePage();
    void loadRequest();
    void detachedAnswersNone();
    void viewThatHasGone();
    void webView();

private:
    std::shared_ptr<BrowserHostWebView> _view;
    std::shared_ptr<BrowserHostFrame> _frame;
    QStringList _loaded;
};

namespace
{
Url url(const char *text)
{
    return Url::URLWithString(QString::fromLatin1(text));
}
} // namespace

void BrowserHostFrameTest::init()
{
    _loaded.clear();
    _view = std::make_shared<BrowserHostWebView>();
    _frame = std::make_shared<BrowserHostFrame>(_view, [this](const Url &url) { _loaded << url.absoluteString(); });
    _view->setMainFrame(_frame);
}

void BrowserHostFrameTest::nothingAtFirst()
{
    QVERIFY(!_frame->dataSource());
    QVERIFY(!_frame->provisionalDataSource());
    QCOMPARE(_frame->webView(), std::shared_ptr<HostWebView>(_view));
}

void BrowserHostFrameTest::provisionalThenCommitted()
{
    _frame->startProvisionalLoad(url("http://a.example/"));
    QVERIFY(!_frame->dataSource());
    QCOMPARE(_frame->provisionalDataSource()->requestUrl, url("http://a.example/"));
    _frame->commit(url("http://b.example/"));
    QVERIFY(!_frame->provisionalDataSource());
    QCOMPARE(_frame->dataSource()->requestUrl, url("http://b.example/"));
    _frame->startProvisionalLoad(url("http://c.example/"));
    QCOMPARE(_frame->dataSource()->requestUrl, url("http://b.example/"));
}

void BrowserHostFrameTest::stoppedLoadKeepsThePage()
{
    _frame->commit(url("http://a.example/"));
    _frame->startProvisionalLoad(url("http://b.example/"));
    _frame->stopProvisionalLoad();
    QVERIFY(!_frame->provisionalDataSource());
    QCOMPARE(_frame->dataSource()->requestUrl, url("http://a.example/"));
}

void BrowserHostFrameTest::loadRequest()
{
    _frame->loadRequest(url("http://a.example/"));
    _frame->loadRequest(Url());
    QCOMPARE(_loaded, QStringList("http://a.example/"));
}

void BrowserHostFrameTest::detachedAnswersNone()
{
    _frame->commit(url("http://a.example/"));
    _frame->detach();
    QVERIFY(!_frame->webView());
    QVERIFY(!_frame->dataSource());
    _frame->loadRequest(url("http://a.example/"));
    QVERIFY(_loaded.isEmpty());
}

void BrowserHostFrameTest::viewThatHasGone()
{
    _view.reset();
    QVERIFY(!_frame->webView());
}

void BrowserHostFrameTest::webView()
{
    QCOMPARE(_view->mainFrame(), std::shared_ptr<HostFrame>(_frame));
    QVERIFY(!_view->hostWindow());
    _view->setMainFrame(nullptr);
    QVERIFY(!_view->mainFrame());
}

QTEST_GUILESS_MAIN(BrowserHostFrameTest)
#include "BrowserHostFrameTest.moc"
