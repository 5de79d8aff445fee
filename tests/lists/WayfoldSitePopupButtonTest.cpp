#include "lists/WayfoldSitePopupButton.h"

#include "lists/PasteboardTypes.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"

#include <QAbstractItemView>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QtTest>

namespace
{
QStringList sites()
{
    return {QStringLiteral("Sites"), QStringLiteral("a.org"), QStringLiteral("b.org")};
}
} // namespace

class WayfoldSitePopupButtonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void titleOfTheSelectedEntry();
    void titleOfARenamedEntry();
    void setTitleAddsWhatIsMissing();
    void entriesAreReplacedQuietly();
    void longTitlesDoNotMakeItWider();
    void tellsBeforeItOpens();
    void keysOpenItInsteadOfChangingTheSite();
    void wheelChangesNothing();
    void pickingTellsOnce();
    void dragSwitchesToTheFirstEntry_data();
    void dragSwitchesToTheFirstEntry();
    void dragOverTheFirstEntry();
};

void WayfoldSitePopupButtonTest::titleOfTheSelectedEntry()
{
    WayfoldSitePopupButton popup;
    QVERIFY(popup.title().isNull());
    popup.addItems(sites());
    QCOMPARE(popup.title(), QStringLiteral("Sites"));
    popup.setCurrentIndex(2);
    QCOMPARE(popup.title(), QStringLiteral("b.org"));
}

// As when an interface file's entries are translated.
void WayfoldSitePopupButtonTest::titleOfARenamedEntry()
{
    WayfoldSitePopupButton popup;
    popup.addItems(sites());
    popup.setItemText(0, QStringLiteral("Websites"));
    QCOMPARE(popup.title(), QStringLiteral("Websites"));
    popup.setItemText(1, QStringLiteral("other.org"));
    QCOMPARE(popup.title(), QStringLiteral("Websites"));
    popup.clear();
    QVERIFY(popup.title().isNull());
}

void WayfoldSitePopupButtonTest::setTitleAddsWhatIsMissing()
{
    WayfoldSitePopupButton popup;
    popup.addItems(sites());
    popup.setTitle(QStringLiteral("a.org"));
    QCOMPARE(popup.currentIndex(), 1);
    popup.setTitle(QStringLiteral("A.org")); // letter case tells sites apart
    QCOMPARE(popup.count(), 4);
    QCOMPARE(popup.title(), QStringLiteral("A.org"));
}

void WayfoldSitePopupButtonTest::entriesAreReplacedQuietly()
{
    WayfoldSitePopupButton popup;
    popup.addItems(sites());
    QSignalSpy requested(&popup, &WayfoldSitePopupButton::siteChangeRequested);
    popup.setEntries({QStringLiteral("Sites"), QStringLiteral("c.org"), QStringLiteral("c.org")},
                     QStringLiteral("c.org"));
    QCOMPARE(popup.itemTitles(), QStringList({QStringLiteral("Sites"), QStringLiteral("c.org")}));
    QCOMPARE(popup.title(), QStringLiteral("c.org"));
    popup.setEntries(sites(), QStringLiteral("gone.org"));
    QVERIFY(popup.title().isNull());
    QCOMPARE(requested.count(), 0);
}

void WayfoldSitePopupButtonTest::longTitlesDoNotMakeItWider()
{
    WayfoldSitePopupButton popup;
    popup.setTitle(QStringLiteral("Sites"));
    const int narrow = popup.minimumSizeHint().width();
    WayfoldSitePopupButton other;
    other.setTitle(QString(100, u'x'));
    QCOMPARE(other.minimumSizeHint().width(), narrow);
}

void WayfoldSitePopupButtonTest::tellsBeforeItOpens()
{
    WayfoldSitePopupButton popup;
    popup.addItems(sites());
    int told = 0;
    NotificationCenter::defaultCenter().addObserver(
        &told,
        [&](const Notification &) {
            ++told;
            QVERIFY(!popup.view()->isVisible());
        },
        PlatformNotifications::NSPopUpButtonWillPopUpNotification, &popup);
    popup.show();
    QTest::mouseClick(&popup, Qt::LeftButton);
    QCOMPARE(told, 1);
    QVERIFY(popup.view()->isVisible());
    popup.hidePopup();
    NotificationCenter::defaultCenter().removeObserver(&told);
}

void WayfoldSitePopupButtonTest::keysOpenItInsteadOfChangingTheSite()
{
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_PageDown, Qt::Key_PageUp, Qt::Key_Home, Qt::Key_End,
                              Qt::Key_Return, Qt::Key_Space}) {
        WayfoldSitePopupButton popup;
        popup.addItems(sites());
        popup.setCurrentIndex(1);
        QSignalSpy requested(&popup, &WayfoldSitePopupButton::siteChangeRequested);
        popup.show();
        QTest::keyClick(&popup, key);
        QVERIFY(popup.view()->isVisible());
        QCOMPARE(popup.currentIndex(), 1);
        QCOMPARE(requested.count(), 0);
        popup.hidePopup();
    }
}

void WayfoldSitePopupButtonTest::wheelChangesNothing()
{
    WayfoldSitePopupButton popup;
    popup.addItems(sites());
    popup.show();
    QWheelEvent wheel(QPointF(5, 5), popup.mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&popup, &wheel);
    QCOMPARE(popup.currentIndex(), 0);
}

void WayfoldSitePopupButtonTest::pickingTellsOnce()
{
    WayfoldSitePopupButton popup;
    popup.addItems(sites());
    popup.show();
    QSignalSpy requested(&popup, &WayfoldSitePopupButton::siteChangeRequested);
    popup.showPopup();
    QTest::keyClick(popup.view(), Qt::Key_Down);
    QTest::keyClick(popup.view(), Qt::Key_Return);
    QCOMPARE(popup.title(), QStringLiteral("a.org"));
    QCOMPARE(requested.count(), 1);
}

void WayfoldSitePopupButtonTest::dragSwitchesToTheFirstEntry_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("switches");
    QTest::newRow("own") << QStringLiteral("KDRBookmark") << true;
    QTest::newRow("addresses of another application") << QStringLiteral("text/uri-list") << true;
    QTest::newRow("cards of another application") << QStringLiteral("text/x-vcard") << true;
    QTest::newRow("something else") << QStringLiteral("image/png") << false;
}

void WayfoldSitePopupButtonTest::dragSwitchesToTheFirstEntry()
{
    QFETCH(QString, type);
    QFETCH(bool, switches);
    WayfoldSitePopupButton popup;
    popup.addItems(sites());
    popup.setCurrentIndex(2);
    popup.registerForDraggedTypes(PasteboardTypes::acceptableDragTypes());
    QVERIFY(popup.acceptDrops());
    QSignalSpy requested(&popup, &WayfoldSitePopupButton::siteChangeRequested);
    QMimeData data;
    data.setData(type, "http://a.org/x\r\n");
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&popup, &enter);
    QVERIFY(!enter.isAccepted()); // nothing is dropped on the pop-up itself
    QCOMPARE(popup.currentIndex(), switches ? 0 : 2);
    QCOMPARE(requested.count(), switches ? 1 : 0);
}

void WayfoldSitePopupButtonTest::dragOverTheFirstEntry()
{
    WayfoldSitePopupButton popup;
    popup.addItems(sites());
    popup.registerForDraggedTypes(PasteboardTypes::acceptableDragTypes());
    QSignalSpy requested(&popup, &WayfoldSitePopupButton::siteChangeRequested);
    QMimeData data;
    data.setData(QStringLiteral("KDRBookmark"), "uuid");
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&popup, &enter);
    QVERIFY(!enter.isAccepted());
    QCOMPARE(requested.count(), 0);
}

QTEST_MAIN(WayfoldSitePopupButtonTest)
#include "WayfoldSitePopupButtonTest.moc"
