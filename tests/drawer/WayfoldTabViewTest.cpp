#include "drawer/WayfoldTabView.h"

#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QMimeData>
#include <QTabBar>
#include <QTreeView>
#include <QtTest>

class WayfoldTabViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _view = std::make_unique<WayfoldTabView>();
        const QStringList labels = {QStringLiteral("Scratchpad"), QStringLiteral("Bookmarks"),
                                    QStringLiteral("History")};
        for (int i = 0; i < 3; ++i) {
            auto *page = new QWidget;
            page->setProperty("identifier", QString::number(i));
            page->setProperty("label", labels[i]);
            page->setProperty("initialFirstResponder", QStringLiteral("list"));
            auto *list = new QTreeView(page);
            list->setObjectName(QStringLiteral("list"));
            _view->addTab(page, QStringLiteral("&") + labels[i]);
        }
        _view->awakeFromNib();
        _view->resize(400, 300);
        _view->show();
    }
    void cleanup() { _view.reset(); }

    void acceptableTypesInOrder();
    void identifiersAndLabels();
    void selectsByIdentifier();
    void tellsOfEverySelection();
    void responders();
    void dragsSwitchTabs_data();
    void dragsSwitchTabs();
    void dragsBesideTheHeaders();

private:
    // Answers whether a drop there would be accepted.
    bool dragTo(const QPoint &point, const QMimeData &data)
    {
        QDragEnterEvent enter(point, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(_view.get(), &enter);
        QDragMoveEvent move(point, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(_view.get(), &move);
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(_view.get(), &leave);
        return enter.isAccepted() && move.isAccepted();
    }
    QPoint header(int index) const
    {
        return _view->tabBar()->mapTo(_view.get(), _view->tabBar()->tabRect(index).center());
    }

    std::unique_ptr<WayfoldTabView> _view;
};

void WayfoldTabViewTest::acceptableTypesInOrder()
{
    const QStringList expected = {QStringLiteral("NSURLPboardType"),
                                  QStringLiteral("WebURLsWithTitlesPboardType"),
                                  QStringLiteral("BookmarkDictionaryListPboardType"),
                                  QStringLiteral("NSFilenamesPboardType"),
                                  QStringLiteral("KDRBookmark"),
                                  QStringLiteral("KDRBookmarkList")};
    QCOMPARE(WayfoldTabView::acceptableDragTypes(), expected);
    QVERIFY(_view->acceptDrops());
}

void WayfoldTabViewTest::identifiersAndLabels()
{
    QCOMPARE(_view->identifierOfTab(1), QStringLiteral("1"));
    QCOMPARE(_view->labelOfTab(1), QStringLiteral("Bookmarks"));
    QCOMPARE(_view->currentLabel(), QStringLiteral("Scratchpad"));
    QVERIFY(_view->identifierOfTab(3).isNull());
    QVERIFY(_view->labelOfTab(-1).isNull());
}

void WayfoldTabViewTest::selectsByIdentifier()
{
    _view->selectTabWithIdentifier(QStringLiteral("2"));
    QCOMPARE(_view->currentIndex(), 2);
    _view->selectTabWithIdentifier(QStringLiteral("History")); // that is its label
    _view->selectTabWithIdentifier(QStringLiteral("3"));
    QCOMPARE(_view->currentIndex(), 2);
}

void WayfoldTabViewTest::tellsOfEverySelection()
{
    QStringList told;
    _view->willSelectTab = [&told](const QString &identifier) { told.append(identifier); };
    _view->selectTabWithIdentifier(QStringLiteral("1"));
    QTest::mouseClick(_view->tabBar(), Qt::LeftButton, {}, _view->tabBar()->tabRect(2).center());
    QCOMPARE(_view->currentIndex(), 2);
    _view->selectTabWithIdentifier(QStringLiteral("2")); // it is shown already
    QCOMPARE(told, QStringList({QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("2")}));
}

void WayfoldTabViewTest::responders()
{
    QCOMPARE(_view->initialFirstResponderOfTab(1), _view->widget(1)->findChild<QTreeView *>());
    QVERIFY(!_view->initialFirstResponderOfTab(5));
    _view->widget(0)->setProperty("initialFirstResponder", QVariant());
    QVERIFY(!_view->initialFirstResponderOfTab(0));
}

void WayfoldTabViewTest::dragsSwitchTabs_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("switches");
    QTest::newRow("own") << QStringLiteral("KDRBookmark") << true;
    QTest::newRow("addresses of another application") << QStringLiteral("text/uri-list") << true;
    QTest::newRow("text") << QStringLiteral("NSStringPboardType") << false;
    QTest::newRow("something else") << QStringLiteral("image/png") << false;
}

void WayfoldTabViewTest::dragsSwitchTabs()
{
    QFETCH(QString, type);
    QFETCH(bool, switches);
    QMimeData data;
    data.setData(type, "http://a.org/");
    QVERIFY(!dragTo(header(2), data)); // a header takes no drop
    QCOMPARE(_view->currentIndex(), switches ? 2 : 0);
}

void WayfoldTabViewTest::dragsBesideTheHeaders()
{
    QMimeData data;
    data.setData(QStringLiteral("KDRBookmark"), "uuid");
    QVERIFY(!dragTo(QPoint(200, 200), data));
    QCOMPARE(_view->currentIndex(), 0);
}

QTEST_MAIN(WayfoldTabViewTest)
#include "WayfoldTabViewTest.moc"
