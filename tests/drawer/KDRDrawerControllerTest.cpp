#include "drawer/KDRDrawerController.h"

#include "core/Notifications.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/files/Bundle.h"
#include "tests/drawer/DrawerStage.h"
#include "tests/support/MemoryContacts.h"
#include "tests/support/ModelChecks.h"

#include <QAbstractButton>
#include <QAction>
#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTextEdit>

namespace
{
const QRectF screen(0, 0, 1400, 1000);
} // namespace

class KDRDrawerControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _stage.emplace(); }
    void cleanup() { _stage.reset(); }

    void tabs();
    void contentWidth_data();
    void contentWidth();
    void widthOfTheForm_data();
    void widthOfTheForm();
    void firstTab_data();
    void firstTab();
    void makingItTracksTheWindow();

    void roomOnTheScreen_data();
    void roomOnTheScreen();
    void roomOnAnotherScreen_data();
    void roomOnAnotherScreen();
    void roomForAWiderDrawer();
    void drawerOfItsOwnNeedsNoRoom();
    void narrowedWindowIsPutBack();
    void windowThatStayedWiderIsPutBack_data();
    void windowThatStayedWiderIsPutBack();
    void changedWindowStaysAsItIs_data();
    void changedWindowStaysAsItIs();
    void resizeForgetsTheLastOne();

    void locationOpens();
    void locationCloses();
    void otherDrawersRequestsAreIgnored();
    void frameIsHeldWeakly();

    void closingStoresTheWidth();
    void closingOnANarrowScreenKeepsTheWidth_data();
    void closingOnANarrowScreenKeepsTheWidth();
    void closingDeselectsAndClearsTheFlag();
    void closingWithoutTabs();

    void closingTheWindow();
    void closingTheWindowOfAnOpeningDrawer();
    void closingTheWindowOfAClosingDrawer();
    void closingTheWindowOfAClosedDrawer();
    void closingTheWindowDuringAnAlert();
    void closingTheWindowDuringADialogKeepsWhatWasTyped();
    void closingTheWindowWhilePeopleAreChosen();
    void endOfTheQuestionAboutStrangers_data();
    void endOfTheQuestionAboutStrangers();
    void windowVanishes();
    void missingInterfaceFile();

    void scratchLabels();
    void globalRoot();
    void menuItemsAskTheCurrentList();
    void commandsShowTheScratchpad();
    void commandsMakeNewItems_data();
    void commandsMakeNewItems();
    void buttonsMakeNewItems_data();
    void buttonsMakeNewItems();
    void buttonEdits();
    void buttonDeletes();
    void buttonAndPopupShowAnotherSite();
    void keyboardGoesToTheList();
    void contentFitsIntoTheDrawer();
    void closeCommandOfTheDrawer();

private:
    KDRDrawerController *controller() { return DrawerStage::controller(*_window); }
    KDRDrawer *drawer() { return DrawerStage::drawer(*_window); }
    WayfoldScratchOutlineView &list() { return *controller()->scratchOutlineView(); }
    void openWindow(const QRectF &frame = QRectF(100, 100, 800, 600), bool widget = false)
    {
        _window = _stage->openWindow(frame, widget);
        _window->screenFrame = screen;
    }
    void post(const QString &name)
    {
        NotificationCenter::defaultCenter().postNotificationName(name, static_cast<const Drawer *>(drawer()));
    }

    // As a user does: only a button that is enabled.
    void press(const char *button)
    {
        QTest::mouseClick(drawer()->findChild<QAbstractButton *>(QLatin1String(button)), Qt::LeftButton);
    }
    // Types a title into the dialog that opens next, and accepts it.
    void acceptNextDialog()
    {
        DrawerStage::whenDialogOpens<QDialog>(this, [](QDialog *dialog) {
            dialog->findChild<QLineEdit *>(QStringLiteral("titleField"))->setText(QStringLiteral("Typed"));
            QTest::keyClick(dialog, Qt::Key_Return);
        });
    }

    std::optional<DrawerStage> _stage;
    std::shared_ptr<FakeHostWindow> _window;
};

// --- Creation -------------------------------------------------------------------------------------------------------

void KDRDrawerControllerTest::tabs()
{
    openWindow();
    const WayfoldTabView *tabs = controller()->tabView();
    QCOMPARE(tabs->count(), 3);
    const QStringList labels = {QStringLiteral("Scratchpad"), QStringLiteral("Bookmarks"), QStringLiteral("History")};
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(tabs->identifierOfTab(i), QString::number(i));
        QCOMPARE(tabs->labelOfTab(i), labels[i]);
        QCOMPARE(tabs->tabText(i), labels[i]);
    }
    QVERIFY(controller()->isScratchPadTabViewCurrent());
    controller()->showBookmarkTabView();
    QVERIFY(controller()->isBookmarkTabViewCurrent());
    QVERIFY(!controller()->isScratchPadTabViewCurrent());
    controller()->showHistoryTabView();
    QVERIFY(controller()->isHistoryTabViewCurrent());
    QCOMPARE(controller()->currentTabViewLabel(), QStringLiteral("History"));
    QCOMPARE(controller()->currentTabViewItem(), tabs->widget(2));
    controller()->showScratchPadTabView();
    QVERIFY(controller()->isScratchPadTabViewCurrent());
    QVERIFY(!controller()->isHistoryTabViewCurrent());
}

void KDRDrawerControllerTest::contentWidth_data()
{
    QTest::addColumn<float>("stored");
    QTest::addColumn<double>("width");
    QTest::newRow("none") << 0.0F << 280.0;
    QTest::newRow("negative") << -5.0F << 280.0;
    QTest::newRow("a fresh user's") << 250.0F << 280.0;
    QTest::newRow("too narrow") << 100.0F << 280.0;
    QTest::newRow("wider") << 400.0F << 400.0;
}

void KDRDrawerControllerTest::contentWidth()
{
    QFETCH(float, stored);
    QFETCH(double, width);
    DrawerStage::settings().setDefaultDrawerContentWidth(stored);
    openWindow();
    QCOMPARE(drawer()->minContentSize().width(), 280.0);
    QCOMPARE(drawer()->contentSize().width(), width);
    QCOMPARE(drawer()->preferredEdge(), Drawer::NSMaxXEdge);
    QCOMPARE(drawer()->state(), Drawer::Closed);
}

void KDRDrawerControllerTest::widthOfTheForm_data()
{
    QTest::addColumn<int>("form");
    QTest::addColumn<float>("stored");
    QTest::addColumn<double>("smallest");
    QTest::addColumn<double>("width");
    QTest::newRow("narrow") << 250 << 0.0F << 280.0 << 280.0;
    QTest::newRow("narrow, stored") << 250 << 400.0F << 280.0 << 400.0;
    QTest::newRow("wide") << 330 << 0.0F << 330.0 << 330.0;
    QTest::newRow("wide, less stored") << 330 << 300.0F << 330.0 << 330.0;
}

void KDRDrawerControllerTest::widthOfTheForm()
{
    QFETCH(int, form);
    QFETCH(float, stored);
    QFETCH(double, smallest);
    QFETCH(double, width);
    QFile original(Bundle::pathForResource(QStringLiteral("KDRDrawer.ui")));
    QVERIFY(original.open(QIODevice::ReadOnly));
    QByteArray text = original.readAll();
    QVERIFY(text.contains("<width>280</width>"));
    text.replace("<width>280</width>", "<width>" + QByteArray::number(form) + "</width>");
    _stage->home.write(QStringLiteral("Other.plugin/Contents/Resources/KDRDrawer.ui"), text);
    DrawerStage::settings().setDefaultDrawerContentWidth(stored);

    const QByteArray bundle = qgetenv("WAYFOLD_BUNDLE");
    qputenv("WAYFOLD_BUNDLE", _stage->home.path(QStringLiteral("Other.plugin")).toUtf8());
    openWindow();
    qputenv("WAYFOLD_BUNDLE", bundle);
    QCOMPARE(drawer()->minContentSize(), QSizeF(smallest, 400));
    QCOMPARE(drawer()->contentSize(), QSizeF(width, 400));
}

void KDRDrawerControllerTest::firstTab_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("label");
    QTest::newRow("0") << QStringLiteral("0") << QStringLiteral("Scratchpad");
    QTest::newRow("1") << QStringLiteral("1") << QStringLiteral("Bookmarks");
    QTest::newRow("2") << QStringLiteral("2") << QStringLiteral("History");
    QTest::newRow("unknown") << QStringLiteral("7") << QStringLiteral("Scratchpad");
}

void KDRDrawerControllerTest::firstTab()
{
    QFETCH(QString, identifier);
    QFETCH(QString, label);
    DrawerStage::settings().setDefaultFirstTabIdentifier(identifier);
    openWindow();
    QCOMPARE(controller()->currentTabViewLabel(), label);
}

void KDRDrawerControllerTest::makingItTracksTheWindow()
{
    openWindow();
    QVERIFY(DrawerStage::store().isWindowTracked(_window.get()));
    QCOMPARE(drawer()->parentWindow(), _window);
    QCOMPARE(drawer()->className(), QStringLiteral("KDRDrawer"));
    QVERIFY(!controller()->drawerOpenedManually());
    QVERIFY(!controller()->currentWebFrame());
    QCOMPARE(controller()->currentScratchDrawerLabel(), QStringLiteral("Sites"));
}

// --- Room on the screen ---------------------------------------------------------------------------------------------

void KDRDrawerControllerTest::roomOnTheScreen_data()
{
    QTest::addColumn<QRectF>("frame");
    QTest::addColumn<int>("edge");
    QTest::addColumn<QRectF>("narrowed"); // null: the window stays as it is
    // The drawer takes 300, the screen is 1400 wide.
    const auto right = int(Drawer::NSMaxXEdge);
    const auto left = int(Drawer::NSMinXEdge);
    QTest::newRow("room on both sides") << QRectF(400, 50, 600, 500) << right << QRectF();
    QTest::newRow("ends exactly at the right edge") << QRectF(300, 50, 800, 500) << right << QRectF();
    QTest::newRow("only on the right") << QRectF(299, 50, 600, 500) << right << QRectF();
    QTest::newRow("only on the left") << QRectF(300, 50, 801, 500) << left << QRectF();
    QTest::newRow("50 over on the right, 30 on the left")
        << QRectF(270, 50, 880, 500) << left << QRectF(300, 50, 850, 500);
    QTest::newRow("30 over on the right, 50 on the left")
        << QRectF(250, 50, 880, 500) << right << QRectF(250, 50, 850, 500);
    QTest::newRow("the same on both sides") << QRectF(260, 50, 880, 500) << left << QRectF(300, 50, 840, 500);
    QTest::newRow("exactly on the left") << QRectF(300, 50, 1000, 500) << left << QRectF();
    QTest::newRow("taller than the screen") << QRectF(400, -50, 600, 1500) << right << QRectF();
}

void KDRDrawerControllerTest::roomOnTheScreen()
{
    QFETCH(QRectF, frame);
    QFETCH(int, edge);
    QFETCH(QRectF, narrowed);
    openWindow(frame);
    drawer()->open();
    QCOMPARE(int(drawer()->edge()), edge);
    QCOMPARE(int(drawer()->preferredEdge()), edge);
    QCOMPARE(_window->frame(), narrowed.isNull() ? frame : narrowed);
    QCOMPARE(_window->frameRequests.size(), narrowed.isNull() ? 0U : 1U);
    if (!narrowed.isNull())
        QVERIFY(_window->frameRequests.front().animate);
}

void KDRDrawerControllerTest::drawerOfItsOwnNeedsNoRoom()
{
    openWindow(QRectF(270, 50, 880, 500));
    drawer()->setStandsAlone(true);
    drawer()->open();
    QCOMPARE(drawer()->state(), Drawer::Open);
    drawer()->close();
    QVERIFY(_window->frameRequests.empty());
}

// The same places on a screen that stands elsewhere: only the window's own screen counts.
void KDRDrawerControllerTest::roomOnAnotherScreen_data()
{
    roomOnTheScreen_data();
}

void KDRDrawerControllerTest::roomOnAnotherScreen()
{
    QFETCH(QRectF, frame);
    QFETCH(int, edge);
    QFETCH(QRectF, narrowed);
    const QPointF origin(-1400, 70);
    openWindow(frame.translated(origin));
    _window->screenFrame = screen.translated(origin);
    drawer()->open();
    QCOMPARE(int(drawer()->edge()), edge);
    QCOMPARE(_window->frame(), (narrowed.isNull() ? frame : narrowed).translated(origin));
}

void KDRDrawerControllerTest::roomForAWiderDrawer()
{
    DrawerStage::settings().setDefaultDrawerContentWidth(400);
    openWindow(QRectF(419, 50, 562, 500)); // the drawer takes 420
    drawer()->open();
    QCOMPARE(drawer()->edge(), Drawer::NSMinXEdge);
    QCOMPARE(_window->frame(), QRectF(420, 50, 561, 500));
}

void KDRDrawerControllerTest::narrowedWindowIsPutBack()
{
    const QRectF frame(260, 50, 880, 500);
    openWindow(frame);
    drawer()->open();
    QVERIFY(_window->frame() != frame);
    drawer()->close();
    QCOMPARE(_window->frame(), frame);
    QVERIFY(_window->frameRequests.back().animate);
}

void KDRDrawerControllerTest::windowThatStayedWiderIsPutBack_data()
{
    QTest::addColumn<QRectF>("frame");
    QTest::addColumn<QRectF>("narrowed");
    QTest::newRow("drawer on the left") << QRectF(270, 50, 880, 500) << QRectF(300, 50, 870, 500);
    QTest::newRow("drawer on the right") << QRectF(250, 50, 880, 500) << QRectF(250, 50, 870, 500);
}

void KDRDrawerControllerTest::windowThatStayedWiderIsPutBack()
{
    QFETCH(QRectF, frame);
    QFETCH(QRectF, narrowed);
    openWindow(frame);
    _window->leastWidth = 870;
    drawer()->open();
    QCOMPARE(_window->frame(), narrowed);
    drawer()->close();
    QCOMPARE(_window->frame(), frame);
}

void KDRDrawerControllerTest::changedWindowStaysAsItIs_data()
{
    QTest::addColumn<QRectF>("change");
    QTest::newRow("moved") << QRectF(0, 10, 0, 0);
    QTest::newRow("moved sideways") << QRectF(-1, 0, 0, 0);
    QTest::newRow("wider") << QRectF(0, 0, 1, 0);
    QTest::newRow("lower") << QRectF(0, 0, 0, -20);
}

void KDRDrawerControllerTest::changedWindowStaysAsItIs()
{
    QFETCH(QRectF, change);
    openWindow(QRectF(260, 50, 880, 500));
    drawer()->open();
    const QRectF narrowed = _window->frame();
    const QRectF changed(narrowed.topLeft() + change.topLeft(), narrowed.size() + change.size());
    _window->windowFrame = changed;
    _window->frameDidChange();
    drawer()->close();
    QCOMPARE(_window->frame(), changed);
    QCOMPARE(_window->frameRequests.size(), 1U);
}

void KDRDrawerControllerTest::resizeForgetsTheLastOne()
{
    openWindow(QRectF(260, 50, 880, 500));
    drawer()->open();
    const QRectF narrowed = _window->frame();
    drawer()->close();
    // There is room this time; that the window happens to be where it was narrowed to means nothing any more.
    _window->screenFrame = QRectF(0, 0, 3000, 1000);
    drawer()->open();
    _window->windowFrame = narrowed;
    drawer()->close();
    QCOMPARE(_window->frame(), narrowed);
}

// --- Pages ----------------------------------------------------------------------------------------------------------

void KDRDrawerControllerTest::locationOpens()
{
    openWindow();
    controller()->showHistoryTabView();
    controller()->markDrawerAsOpenedManually(true);
    post(Notifications::DrawerShouldOpenForLocationChange);
    QCOMPARE(drawer()->state(), Drawer::Open);
    QVERIFY(controller()->isScratchPadTabViewCurrent());
    QVERIFY(controller()->drawerOpenedManually()); // left as it is
}

void KDRDrawerControllerTest::locationCloses()
{
    openWindow();
    drawer()->open();
    controller()->markDrawerAsOpenedManually(true);
    post(Notifications::DrawerShouldCloseForLocationChange);
    QCOMPARE(drawer()->state(), Drawer::Open);
    drawer()->close(); // by whatever means: the user's wish is forgotten
    QVERIFY(!controller()->drawerOpenedManually());
    drawer()->open();
    post(Notifications::DrawerShouldCloseForLocationChange);
    QCOMPARE(drawer()->state(), Drawer::Closed);
}

void KDRDrawerControllerTest::otherDrawersRequestsAreIgnored()
{
    openWindow();
    const auto other = _stage->openWindow();
    NotificationCenter::defaultCenter().postNotificationName(Notifications::DrawerShouldOpenForLocationChange,
                                                             static_cast<const Drawer *>(DrawerStage::drawer(*other)));
    QCOMPARE(drawer()->state(), Drawer::Closed);
    QCOMPARE(DrawerStage::drawer(*other)->state(), Drawer::Open);
}

void KDRDrawerControllerTest::frameIsHeldWeakly()
{
    openWindow();
    std::shared_ptr<FakeHostFrame> frame = FakeHostWebView::makeSubFrame(_window->frontWebView);
    controller()->setCurrentWebFrame(frame);
    QCOMPARE(controller()->currentWebFrame(), frame);
    frame.reset();
    QVERIFY(!controller()->currentWebFrame());
}

// --- Closing --------------------------------------------------------------------------------------------------------

void KDRDrawerControllerTest::closingStoresTheWidth()
{
    openWindow();
    drawer()->open();
    drawer()->setContentSize(QSizeF(333, 400));
    drawer()->close();
    QCOMPARE(DrawerStage::settings().defaultDrawerContentWidth(), 333.0F);
}

void KDRDrawerControllerTest::closingOnANarrowScreenKeepsTheWidth_data()
{
    QTest::addColumn<bool>("closesTheDrawer");
    QTest::newRow("the drawer") << true;
    QTest::newRow("the window") << false;
}

// The width that was chosen on a wide screen, not the one that there is room for here.
void KDRDrawerControllerTest::closingOnANarrowScreenKeepsTheWidth()
{
    QFETCH(bool, closesTheDrawer);
    DrawerStage::settings().setDefaultDrawerContentWidth(900);
    openWindow(QRectF(100, 100, 600, 500));
    _window->screenFrame = QRectF(0, 0, 1024, 768);
    drawer()->open();
    QCOMPARE(drawer()->contentSize().width(), 748.0);
    if (closesTheDrawer)
        drawer()->close();
    else
        _window->close();
    QCOMPARE(DrawerStage::settings().defaultDrawerContentWidth(), 900.0F);
}

void KDRDrawerControllerTest::closingDeselectsAndClearsTheFlag()
{
    openWindow();
    DrawerStage::store().bookmarkRoot()->addChild(DrawerStage::note(QStringLiteral("Note")));
    drawer()->reloadBookmarks();
    drawer()->open();
    drawer()->grab();
    const QPoint row = list().rectOfRow(0).center();
    QCOMPARE(list().toolTipAtPoint(row), QStringLiteral("text"));
    list().selectRow(0);
    controller()->markDrawerAsOpenedManually(true);
    drawer()->close();
    QCOMPARE(list().selectedRow(), -1);
    QVERIFY(list().toolTipAtPoint(row).isNull());
    QVERIFY(!controller()->drawerOpenedManually());

    // Another tab in front: the Scratchpad keeps its selection.
    drawer()->open();
    list().selectRow(0);
    controller()->showHistoryTabView();
    drawer()->close();
    QCOMPARE(list().selectedRow(), 0);
}

// No label matches then: the rest of the closing is done all the same.
void KDRDrawerControllerTest::closingWithoutTabs()
{
    openWindow(QRectF(260, 50, 880, 500));
    DrawerStage::store().bookmarkRoot()->addChild(DrawerStage::note(QStringLiteral("Note")));
    drawer()->reloadBookmarks();
    drawer()->open();
    list().selectRow(0);
    drawer()->setContentSize(QSizeF(333, 400));
    controller()->markDrawerAsOpenedManually(true);
    controller()->tabView()->clear();
    QVERIFY(!controller()->currentTabViewItem());
    QVERIFY(controller()->currentTabViewLabel().isNull());
    drawer()->close();
    QCOMPARE(drawer()->state(), Drawer::Closed);
    QCOMPARE(list().selectedRow(), 0);
    QVERIFY(!controller()->drawerOpenedManually());
    QCOMPARE(DrawerStage::settings().defaultDrawerContentWidth(), 333.0F);
    QCOMPARE(_window->frame(), QRectF(260, 50, 880, 500));
}

void KDRDrawerControllerTest::closingTheWindow()
{
    const QRectF frame(260, 50, 880, 500);
    openWindow(frame, true);
    controller()->setScratchDrawerLabelUsingFrame(QStringLiteral("a.org"), _window->frontWebView->frame);
    drawer()->open();
    controller()->scratchDataSource()->localRootFolder()->addChild(DrawerStage::note(QStringLiteral("Last words")));
    drawer()->setContentSize(QSizeF(333, 400));
    _stage->removeSavedFile();
    const QPointer<KDRDrawerController> alive = controller();
    const QPointer<KDRDrawer> drawerAlive = drawer();
    _window->close();
    QCOMPARE(_window->frameRequests.back().frame, frame);
    QVERIFY(!_window->frameRequests.back().animate);
    QCOMPARE(DrawerStage::settings().defaultDrawerContentWidth(), 333.0F);
    QVERIFY(_stage->savedFile().contains("Last words"));
    QVERIFY(!DrawerStage::store().isWindowTracked(_window.get()));
    QTRY_VERIFY(!alive);
    QVERIFY(!drawerAlive);
    QVERIFY(!DrawerStage::store().provisionalBookmarkRoot()->childWithTitle(QStringLiteral("a.org")));
}

void KDRDrawerControllerTest::closingTheWindowOfAnOpeningDrawer()
{
    const QRectF frame(260, 50, 880, 500);
    openWindow(frame);
    drawer()->setSlideDuration(5000);
    drawer()->open();
    QCOMPARE(drawer()->state(), Drawer::Opening);
    QVERIFY(_window->frame() != frame);
    _window->close();
    QCOMPARE(_window->frameRequests.back().frame, frame);
    QVERIFY(!_window->frameRequests.back().animate);
}

// On its way in it is as good as closed: the window, which is gone anyway, is left as it is.
void KDRDrawerControllerTest::closingTheWindowOfAClosingDrawer()
{
    openWindow(QRectF(260, 50, 880, 500));
    drawer()->open();
    drawer()->setSlideDuration(5000);
    drawer()->close();
    QCOMPARE(drawer()->state(), Drawer::Closing);
    const std::size_t requests = _window->frameRequests.size();
    const QPointer<KDRDrawerController> alive = controller();
    _window->close();
    QCOMPARE(_window->frameRequests.size(), requests);
    QTRY_VERIFY(!alive);
    QCOMPARE(_window->frameRequests.size(), requests);
}

void KDRDrawerControllerTest::closingTheWindowOfAClosedDrawer()
{
    openWindow(QRectF(260, 50, 880, 500));
    controller()->setScratchDrawerLabelUsingFrame(QStringLiteral("a.org"), _window->frontWebView->frame);
    drawer()->open();
    drawer()->close();
    drawer()->setContentSize(QSizeF(333, 400));
    controller()->scratchDataSource()->localRootFolder()->addChild(DrawerStage::note(QStringLiteral("Last words")));
    _stage->removeSavedFile();
    const std::size_t requests = _window->frameRequests.size();
    const QPointer<KDRDrawerController> alive = controller();
    _window->close();
    QCOMPARE(_window->frameRequests.size(), requests);
    QCOMPARE(DrawerStage::settings().defaultDrawerContentWidth(), 333.0F);
    QVERIFY(_stage->savedFile().contains("Last words"));
    QTRY_VERIFY(!alive);
}

void KDRDrawerControllerTest::closingTheWindowDuringAnAlert()
{
    openWindow(QRectF(100, 100, 800, 600), true);
    DrawerStage::store().bookmarkRoot()->addChild(DrawerStage::note(QStringLiteral("Note")));
    drawer()->reloadBookmarks();
    drawer()->open();
    list().selectRow(0);
    const QPointer<KDRDrawerController> alive = controller();
    bool wasAlive = false;
    DrawerStage::whenDialogOpens<QMessageBox>(this, [&](QMessageBox *box) {
        _window->close();
        QCoreApplication::processEvents();
        wasAlive = alive;
        QTest::keyClick(box, Qt::Key_Return);
    });
    QTest::keyClick(&list(), Qt::Key_Delete);
    QVERIFY(wasAlive);
    QTRY_VERIFY(!alive);
    QCOMPARE(DrawerStage::store().bookmarkRoot()->childCount(), 0U);
}

void KDRDrawerControllerTest::closingTheWindowDuringADialogKeepsWhatWasTyped()
{
    openWindow(QRectF(100, 100, 800, 600), true);
    controller()->setScratchDrawerLabelUsingFrame(QStringLiteral("a.org"), _window->frontWebView->frame);
    drawer()->open();
    const QPointer<KDRDrawerController> alive = controller();
    DrawerStage::whenDialogOpens<QDialog>(this, [&](QDialog *dialog) {
        dialog->findChild<QLineEdit *>(QStringLiteral("titleField"))->setText(QStringLiteral("Typed"));
        QTest::keyClicks(dialog->findChild<QTextEdit *>(), QStringLiteral("many words"));
        _window->close();
        QCoreApplication::processEvents();
        QTest::keyClick(dialog, Qt::Key_Return);
    });
    controller()->handleNewNoteRequest(nullptr);
    QTRY_VERIFY(!alive);
    QVERIFY(_stage->savedFile().contains("Typed"));
    QVERIFY(_stage->savedFile().contains("many words"));
    QVERIFY(DrawerStage::store().bookmarkRoot()->childWithTitle(QStringLiteral("a.org")));
}

void KDRDrawerControllerTest::closingTheWindowWhilePeopleAreChosen()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("ann", "Ann", "Miller"));
    openWindow(QRectF(100, 100, 800, 600), true);
    controller()->setScratchDrawerLabelUsingFrame(QStringLiteral("a.org"), _window->frontWebView->frame);
    drawer()->open();
    const QPointer<KDRDrawerController> alive = controller();
    DrawerStage::whenDialogOpens<QDialog>(this, [&](QDialog *panel) {
        QTest::keyClicks(panel->findChild<QLineEdit *>(), QStringLiteral("ann"));
        _window->close();
        QCoreApplication::processEvents();
        QTest::keyClick(panel, Qt::Key_Return);
    });
    controller()->handleNewPersonRequest(nullptr);
    QTRY_VERIFY(!alive);
    QVERIFY(_stage->savedFile().contains("<string>ann</string>"));
    QVERIFY(DrawerStage::store().bookmarkRoot()->childWithTitle(QStringLiteral("a.org")));
}

void KDRDrawerControllerTest::endOfTheQuestionAboutStrangers_data()
{
    QTest::addColumn<QString>("end");
    QTest::addColumn<bool>("isAdded");
    QTest::newRow("the window closes, then Add") << "window" << true;
    QTest::newRow("the browser quits") << "quit" << false;
    QTest::newRow("other contacts") << "contacts" << false;
}

void KDRDrawerControllerTest::endOfTheQuestionAboutStrangers()
{
    QFETCH(QString, end);
    QFETCH(bool, isAdded);
    const QByteArray card = "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Bob\r\nN:;Bob;;;\r\nEMAIL:bob@a.org\r\nEND:VCARD\r\n";
    MemoryContacts contacts;
    contacts.addedAs = {{QString::fromUtf8(card), QStringLiteral("added Bob")}};
    openWindow(QRectF(100, 100, 800, 600), true);
    drawer()->open();
    const QPointer<KDRDrawerController> alive = controller();
    bool isOver = false;
    DrawerStage::whenDialogOpens<QMessageBox>(this, [&](QMessageBox *box) {
        isOver = true;
        if (end == u"window") {
            _window->close();
        } else if (end == u"quit") {
            QApplication::closeAllWindows(); // as it does first
            return;
        } else {
            ContactStore::setSharedAddressBook(nullptr);
        }
        QCoreApplication::processEvents();
        QVERIFY(alive);
        if (end == u"contacts") // to which nothing can be added
            DrawerStage::whenDialogOpens<QMessageBox>(this, [](QMessageBox *told) { told->accept(); });
        QTest::keyClick(box, Qt::Key_Return);
    });
    QMimeData data;
    data.setData(QStringLiteral("text/vcard"), card);
    QVERIFY(list().outlineDataSource()->outlineViewAcceptDrop(list(), data, {nullptr, -1}));
    QTRY_VERIFY(isOver && !QApplication::activeModalWidget());
    QTRY_VERIFY(!alive || end != u"window");
    QCOMPARE(_stage->savedFile().contains("added Bob"), isAdded);
    QCOMPARE(_stage->savedFile().contains("mailto:bob@a.org"), !isAdded);
    QCOMPARE(contacts.added.size(), isAdded ? 1U : 0U);
}

// Without a word, which hosts should not do: nothing that is asked of the controller then may fail.
void KDRDrawerControllerTest::windowVanishes()
{
    openWindow(QRectF(100, 100, 800, 600), true);
    KDRDrawerController *orphan = controller();
    const std::shared_ptr<HostWindow> kept = _window; // only its widget goes, and takes the drawer with it
    delete _window->widget();
    QVERIFY(!orphan->drawer());
    orphan->showHistoryTabView();
    orphan->selectInitialFirstResponder();
    orphan->resizeParentWindowForDrawer();
    orphan->undoParentWindowResize();
    orphan->handleNewNoteRequest(nullptr);
    orphan->handleSaveCurrentURLRequest(nullptr);
    orphan->handleSwitchbackRequest(nullptr);
    orphan->setScratchDrawerLabelUsingFrame(QStringLiteral("a.org"), nullptr);
    QVERIFY(orphan->currentScratchDrawerLabel().isNull());
    QVERIFY(orphan->currentTabViewLabel().isNull());
    const QPointer<KDRDrawerController> alive = orphan;
    _window->close();
    QTRY_VERIFY(!alive);
}

// The browser goes on, without a drawer.
void KDRDrawerControllerTest::missingInterfaceFile()
{
    const QByteArray bundle = qgetenv("WAYFOLD_BUNDLE");
    const auto restored = qScopeGuard([&] { qputenv("WAYFOLD_BUNDLE", bundle); });
    DrawerStage::settings().setAutoFocusOnSiteChange(true);
    DrawerStage::settings().setOpenDrawerOnNewWindow(true);
    DrawerStage::store();
    qputenv("WAYFOLD_BUNDLE", _stage->home.path(QStringLiteral("nowhere.plugin")).toUtf8());
    _window = _stage->host.openWindow();
    _window->addTab(QStringLiteral("http://news.example.com/"));
    _window->becomeKey();
    QVERIFY(DrawerStage::store().isWindowTracked(_window.get()));
    QVERIFY(!DrawerStage::store().drawerForWindow(_window.get()));

    _stage->host.finishLoad(*_window->frontWebView, _window->frontWebView->frame);
    _stage->host.draw(*_window->frontWebView);
    DrawerStage::store().handleToggleKDRDrawer(nullptr);
    DrawerStage::store().handleShowHistoryTabView(nullptr);
    DrawerStage::store().handleNewNoteRequest(nullptr);
    DrawerStage::store().handleSaveCurrentURLRequest(nullptr);
    QVERIFY(!DrawerStage::store().openKDRDrawer());
    DrawerStage::store().updateAllDrawerContentsExceptFor(nullptr);
    QCOMPARE(DrawerStage::store().bookmarkRoot()->childCount(), 0U);
    _window->close();
}

// --- Scratchpad -----------------------------------------------------------------------------------------------------

void KDRDrawerControllerTest::scratchLabels()
{
    openWindow();
    const auto frame = _window->frontWebView->frame;
    controller()->setScratchDrawerLabelUsingFrame(QStringLiteral("a.org"), frame);
    QCOMPARE(controller()->currentScratchDrawerLabel(), QStringLiteral("a.org"));
    QVERIFY(controller()->previousScratchDrawerLabel().isNull());
    QCOMPARE(controller()->currentWebFrame(), frame);
    controller()->setScratchDrawerLabelUsingFrame(QStringLiteral("b.org"), frame);
    QCOMPARE(controller()->previousScratchDrawerLabel(), QStringLiteral("a.org"));
}

void KDRDrawerControllerTest::globalRoot()
{
    openWindow();
    QVERIFY(controller()->isScratchDrawerShowingGlobalRoot());
    controller()->setScratchDrawerLabelUsingFrame(QStringLiteral("a.org"), nullptr);
    QVERIFY(!controller()->isScratchDrawerShowingGlobalRoot());
}

void KDRDrawerControllerTest::menuItemsAskTheCurrentList()
{
    openWindow();
    QAction item;
    MenuItem::setAction(&item, QStringLiteral("handleNewNoteRequest:"));
    QVERIFY(controller()->passValidateMenuItemToOutlineView(&item));
    controller()->showBookmarkTabView();
    QVERIFY(!controller()->passValidateMenuItemToOutlineView(&item));
    controller()->showHistoryTabView();
    QVERIFY(!controller()->passValidateMenuItemToOutlineView(&item));
    controller()->tabView()->clear();
    QVERIFY(controller()->passValidateMenuItemToOutlineView(&item));
}

void KDRDrawerControllerTest::commandsShowTheScratchpad()
{
    openWindow();
    _window->pageTitle = QStringLiteral("A story");
    controller()->setCurrentWebFrame(_window->frontWebView->frame);
    using Command = void (KDRDrawerController::*)(QObject *);
    for (const Command command :
         {&KDRDrawerController::handleNewSubFolderRequest, &KDRDrawerController::handleNewNoteRequest,
          &KDRDrawerController::handleNewEmailRequest, &KDRDrawerController::handleNewPersonRequest,
          &KDRDrawerController::handleSwitchbackRequest, &KDRDrawerController::handleSaveCurrentURLRequest}) {
        controller()->showHistoryTabView();
        (controller()->*command)(nullptr); // the drawer is closed, so no dialog opens
        QVERIFY(controller()->isScratchPadTabViewCurrent());
    }
    QCOMPARE(DrawerStage::rows(list()), QStringList{QStringLiteral("A story")});
    QCOMPARE(drawer()->state(), Drawer::Open);
}

void KDRDrawerControllerTest::commandsMakeNewItems_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("type");
    QTest::newRow("subfolder") << QByteArray("newSubfolderButton") << int(KDRBookmark::FolderType);
    QTest::newRow("note") << QByteArray("newNoteButton") << int(KDRBookmark::NoteType);
    QTest::newRow("mail") << QByteArray("newEmailButton") << int(KDRBookmark::EmailLinkType);
}

// With the drawer open, and another tab in front.
void KDRDrawerControllerTest::commandsMakeNewItems()
{
    QFETCH(int, type);
    openWindow();
    drawer()->open();
    controller()->showHistoryTabView();
    acceptNextDialog();
    if (type == KDRBookmark::FolderType)
        controller()->handleNewSubFolderRequest(nullptr);
    else if (type == KDRBookmark::NoteType)
        controller()->handleNewNoteRequest(nullptr);
    else
        controller()->handleNewEmailRequest(nullptr);
    QVERIFY(controller()->isScratchPadTabViewCurrent());
    QCOMPARE(DrawerStage::rows(list()), QStringList{QStringLiteral("Typed")});
    QCOMPARE(int(DrawerStage::store().bookmarkRoot()->children().at(0)->type()), type);
}

void KDRDrawerControllerTest::buttonsMakeNewItems_data()
{
    commandsMakeNewItems_data();
}

void KDRDrawerControllerTest::buttonsMakeNewItems()
{
    QFETCH(QByteArray, button);
    QFETCH(int, type);
    openWindow();
    drawer()->open();
    acceptNextDialog();
    press(button.constData());
    QCOMPARE(DrawerStage::rows(list()), QStringList{QStringLiteral("Typed")});
    QCOMPARE(int(DrawerStage::store().bookmarkRoot()->children().at(0)->type()), type);
}

void KDRDrawerControllerTest::buttonEdits()
{
    openWindow();
    DrawerStage::store().bookmarkRoot()->addChild(DrawerStage::note("a"));
    DrawerStage::store().updateAllDrawerContentsExceptFor(nullptr);
    drawer()->open();
    press("editItemButton"); // nothing is selected
    list().selectRow(0);
    acceptNextDialog();
    press("editItemButton");
    QCOMPARE(DrawerStage::rows(list()), QStringList{QStringLiteral("Typed")});
}

void KDRDrawerControllerTest::buttonDeletes()
{
    DrawerStage::settings().setConfirmItemDelete(false);
    openWindow();
    for (const char *title : {"a", "b"})
        DrawerStage::store().bookmarkRoot()->addChild(DrawerStage::note(title));
    DrawerStage::store().updateAllDrawerContentsExceptFor(nullptr);
    drawer()->open();
    press("deleteItemButton"); // nothing is selected
    QCOMPARE(list().numberOfRows(), 2);
    list().selectRow(0);
    press("deleteItemButton");
    QCOMPARE(DrawerStage::rows(list()), QStringList{QStringLiteral("b")});
}

void KDRDrawerControllerTest::buttonAndPopupShowAnotherSite()
{
    openWindow();
    drawer()->open();
    press("switchbackButton"); // there is no other site yet
    QCOMPARE(controller()->currentScratchDrawerLabel(), QStringLiteral("Sites"));
    controller()->setScratchDrawerLabelUsingFrame(QStringLiteral("a.org"), nullptr);
    controller()->setScratchDrawerLabelUsingFrame(QStringLiteral("b.org"), nullptr);
    press("switchbackButton");
    QCOMPARE(controller()->currentScratchDrawerLabel(), QStringLiteral("a.org"));
    auto *popup = drawer()->findChild<WayfoldSitePopupButton *>();
    popup->setCurrentIndex(0);
    Q_EMIT popup->activated(0);
    QVERIFY(controller()->isScratchDrawerShowingGlobalRoot());
}

void KDRDrawerControllerTest::keyboardGoesToTheList()
{
    openWindow(QRectF(100, 100, 800, 600), true);
    drawer()->open();
    controller()->selectInitialFirstResponder();
    QTRY_COMPARE(QApplication::focusWidget(), &list());
    controller()->showBookmarkTabView();
    controller()->selectInitialFirstResponder();
    QTRY_COMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("bookmarkOutlineView"));
    controller()->showHistoryTabView();
    controller()->selectInitialFirstResponder();
    QTRY_COMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("historyOutlineView"));
}

// The content stays within the drawer, however long the names in it are.
void KDRDrawerControllerTest::contentFitsIntoTheDrawer()
{
    openWindow(QRectF(100, 100, 800, 600), true);
    controller()->setScratchDrawerLabelUsingFrame(QString(100, u'x') + QStringLiteral(".org"), nullptr);
    drawer()->open();
    QTRY_VERIFY(list().isVisible());
    const QRect content(list().window()->mapToGlobal(QPoint()), list().window()->size());
    for (const QWidget *widget : drawer()->findChildren<QWidget *>()) {
        const QRect place(widget->mapToGlobal(QPoint()), widget->size());
        if (widget->isVisible() && widget->window() == drawer())
            QVERIFY2(content.contains(place), qPrintable(widget->objectName()));
    }
    QVERIFY(controller()->tabView()->minimumSizeHint().width() <= 280);
}

void KDRDrawerControllerTest::closeCommandOfTheDrawer()
{
    openWindow();
    drawer()->open();
    drawer()->handleCloseKDRDrawer(nullptr);
    QCOMPARE(drawer()->state(), Drawer::Closed);
}

QTEST_MAIN(KDRDrawerControllerTest)
#include "KDRDrawerControllerTest.moc"
