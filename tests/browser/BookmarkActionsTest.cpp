#include "browser/BookmarkActions.h"

#include "browser/SiteIcons.h"
#include "tests/support/TemporaryHome.h"

#include <QMenu>
#include <QTest>

class BookmarkActionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fillMenu();
    void menuText();
};

void BookmarkActionsTest::fillMenu()
{
    const TemporaryHome home;
    SiteIcons icons(home.path("icons"));
    const BookmarkFile::Node link{false, "A & B", "http://a.example/", {}};
    const BookmarkFile::Node untitled{false, "", "http://b.example/", {}};
    const BookmarkFile::Node folder{true, "Folder", QString(), {link}};
    const BookmarkFile::Node empty{true, "Empty", QString(), {}};
    QMenu menu;
    QList<QUrl> opened;
    BookmarkActions::fillMenu(&menu, {link, folder, empty, untitled}, &icons,
                              [&](const QUrl &url) { opened.append(url); });

    const QList<QAction *> actions = menu.actions();
    QCOMPARE(actions.size(), 4);
    QCOMPARE(actions.at(0)->text(), QString("A && B"));
    QVERIFY(!actions.at(0)->icon().isNull());
    actions.at(0)->trigger();
    QCOMPARE(opened, QList<QUrl>({QUrl("http://a.example/")}));
    QCOMPARE(actions.at(1)->menu()->actions().size(), 1);
    actions.at(1)->menu()->actions().first()->trigger();
    QCOMPARE(opened.size(), 2);
    QVERIFY(!actions.at(2)->menu()->isEnabled());
    QCOMPARE(actions.at(3)->text(), QString("http://b.example/"));
}

void BookmarkActionsTest::menuText()
{
    QCOMPARE(BookmarkActions::menuText("a &b\n c"), QString("a &&b c"));
    QVERIFY(BookmarkActions::menuText(QString(1000, 'x')).size() < 200);
}

QTEST_MAIN(BookmarkActionsTest)
#include "BookmarkActionsTest.moc"
