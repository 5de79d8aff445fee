#include "browser/TabBar.h"

#include <QAbstractButton>
#include <QDropEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocumentFragment>

class TabBarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void middleClickCloses();
    void middleClickThatMovesAway();
    void doubleClickBesideTheTabs();
    void titles();
    void closeButtonHasAName();
    void droppedLinks();
    void canBeMoved();

private:
    std::unique_ptr<TabBar> _bar;
};

void TabBarTest::init()
{
    _bar = std::make_unique<TabBar>();
    _bar->addTab("one");
    _bar->addTab("two");
    _bar->resize(800, _bar->sizeHint().height());
    _bar->show();
    QVERIFY(QTest::qWaitForWindowExposed(_bar.get()));
}

void TabBarTest::cleanup()
{
    _bar.reset();
}

void TabBarTest::middleClickCloses()
{
    const QSignalSpy closed(_bar.get(), &QTabBar::tabCloseRequested);
    QTest::mouseClick(_bar.get(), Qt::MiddleButton, {}, _bar->tabRect(1).center());
    QCOMPARE(closed.count(), 1);
    QCOMPARE(closed.first().first().toInt(), 1);
    QCOMPARE(_bar->currentIndex(), 0); // it does not come to the front first
}

void TabBarTest::middleClickThatMovesAway()
{
    const QSignalSpy closed(_bar.get(), &QTabBar::tabCloseRequested);
    QTest::mousePress(_bar.get(), Qt::MiddleButton, {}, _bar->tabRect(1).center());
    QTest::mouseRelease(_bar.get(), Qt::MiddleButton, {}, _bar->tabRect(0).center());
    QTest::mouseClick(_bar.get(), Qt::MiddleButton, {}, QPoint(790, 5));
    QCOMPARE(closed.count(), 0);
}

void TabBarTest::doubleClickBesideTheTabs()
{
    const QSignalSpy wanted(_bar.get(), &TabBar::newTabWanted);
    QTest::mouseDClick(_bar.get(), Qt::LeftButton, {}, _bar->tabRect(0).center());
    QCOMPARE(wanted.count(), 0);
    QTest::mouseDClick(_bar.get(), Qt::LeftButton, {}, QPoint(790, 5));
    QCOMPARE(wanted.count(), 1);
}

void TabBarTest::titles()
{
    _bar->setTab(0, "Tom & Jerry\n<b>", QIcon());
    QCOMPARE(_bar->tabText(0), QString("Tom && Jerry <b>"));
    // The tip is as Qt shows it: as markup when it looks like some.
    const QString tip = _bar->tabToolTip(0);
    QVERIFY(Qt::mightBeRichText(tip));
    QCOMPARE(QTextDocumentFragment::fromHtml(tip).toPlainText(), QString("Tom & Jerry\n<b>"));
}

void TabBarTest::closeButtonHasAName()
{
    const auto buttons = _bar->findChildren<QAbstractButton *>("closeTabButton");
    QCOMPARE(buttons.size(), 2);
    QVERIFY(!buttons.first()->accessibleName().isEmpty());
    QVERIFY(!buttons.first()->toolTip().isEmpty());
}

void TabBarTest::droppedLinks()
{
    const QSignalSpy dropped(_bar.get(), &TabBar::linkDropped);
    QMimeData links;
    links.setUrls({QUrl("http://a.example/"), QUrl("http://b.example/")});
    QDragEnterEvent enterWithLinks(QPoint(5, 5), Qt::CopyAction, &links, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(_bar.get(), &enterWithLinks);
    QVERIFY(enterWithLinks.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &links, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(_bar.get(), &drop);
    QCOMPARE(dropped.count(), 2);
    QCOMPARE(dropped.at(1).first().toUrl(), QUrl("http://b.example/"));

    QMimeData text;
    text.setText("words");
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QCoreApplication::sendEvent(_bar.get(), &enter);
    QVERIFY(!enter.isAccepted());
}

void TabBarTest::canBeMoved()
{
    QVERIFY(_bar->isMovable());
    QVERIFY(_bar->tabsClosable());
}

QTEST_MAIN(TabBarTest)
#include "TabBarTest.moc"
