#include "lists/WayfoldScratchDataSource.h"

#include "core/ContactSource.h"
#include "core/Notifications.h"
#include "core/settings/WayfoldToolkit.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/NotificationQueue.h"
#include "platform/files/PropertyList.h"
#include "platform/widgets/Image.h"
#include "tests/lists/ListStage.h"
#include "tests/support/PythonScript.h"

#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>

namespace
{
const QString sites = QStringLiteral("Sites");
const QString siteA = QStringLiteral("a.org");
const QString siteB = QStringLiteral("b.org");

QAbstractButton *buttonNamed(const QMessageBox &box, const QString &text)
{
    for (QAbstractButton *button : box.buttons()) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
}

// What the user is asked, and does then.
struct Question
{
    QString message;
    QString information;
    QStringList buttons;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    int asked = 0;

    void answer(const QString &button)
    {
        QTimer::singleShot(0, [this, button] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            ++asked;
            message = box->text();
            information = box->informativeText();
            icon = box->icon();
            for (const QAbstractButton *offered : box->buttons())
                buttons.append(offered->text());
            if (button.isNull())
                QTest::keyClick(box, Qt::Key_Escape);
            else
                QTest::mouseClick(buttonNamed(*box, button), Qt::LeftButton);
        });
    }
};

// Until all notifications that wait have been delivered.
void settleNotifications()
{
    const QString name = QStringLiteral("WayfoldScratchDataSourceTestNotification");
    bool isDone = false;
    NotificationCenter::defaultCenter().addObserver(
        &isDone, [&isDone](const Notification &) { isDone = true; }, name);
    NotificationQueue::defaultQueue().enqueueNotification({name, &isDone}, NotificationQueue::NSPostWhenIdle);
    QTRY_VERIFY(isDone);
    NotificationCenter::defaultCenter().removeObserver(&isDone);
}

void postFileChange(const QString &name)
{
    NotificationCenter::defaultCenter().postNotificationName(name, nullptr);
}
} // namespace

class WayfoldScratchDataSourceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        _stage.emplace();
        _pad.emplace(*_stage);
    }
    void cleanup()
    {
        _pad.reset();
        _stage.reset();
    }

    void startsWithTheWholeTree();
    void buttonsHaveImagesAndToolTips();

    void switchToAKnownSite();
    void switchToAnUnknownSite();
    void leavingAnEmptySiteLeavesNothing();
    void anotherDrawerKeepsTheProvisionalFolder();
    void sameLabelChangesOnlyTheFrame_data();
    void sameLabelChangesOnlyTheFrame();
    void nullLabelChangesOnlyTheFrame();
    void sitesStandsForTheWholeTree();
    void pagesWithoutASiteDrawnAgainAndAgain();
    void noteWithTheTitleOfASite();
    void previousLabel();
    void switchingSavesAndAdopts();
    void switchback();
    void switchbackWithoutAPreviousSite();
    void labelEqualsThePopupsTitle();
    void anotherSitesListStartsAtItsTop();
    void whatStaysSelectedIsSeen();

    void saveCurrentPage();
    void saveCurrentPageMakesTheSiteKnown();
    void savedPageTitle_data();
    void savedPageTitle();
    void nothingToSave_data();
    void nothingToSave();

    void newItemsNeedAnOpenDrawer();

    void deleteOneAsks();
    void deleteSeveralAsks();
    void declinedDelete_data();
    void declinedDelete();
    void deleteWithoutQuestion();
    void deleteMany();
    void deletedSiteFolder();
    void deletedSiteFolderDoesNotComeBack();

    void editRenamesSmartFolders();
    void editOfSeveralItems();
    void editIsSeenInOtherDrawers();

    void buttonStates();

    void outsideChanges_data();
    void outsideChanges();
    void closedSmartFoldersWaitForOutsideChanges();
    void listOutOfSightFollowsOnceWhenItIsSeen();
    void siteThatIsLeftOutOfSightFollows();
    void outsideChangesSelectNoTwins();
    void peopleShowTheirNewNames();
    void unseenGroupsAreUpToDateWhenOpened();
    void siteThatWasNotShownFollowsTheContacts();
    void peopleWhoComeLate();
    void relatedBookmarksFollowTheContacts();
    void editOfAPersonOpensTheCard();
    void editOfAGroupOpensTheCard();
    void groupShownAsASiteFollowsTheContacts();
    void groupWithinAGroupIsEdited();
    void groupShownAsASiteTakesNothing();
    void contactsThatComeAndGo();
    void contactsThatAreSwitchedOff();
    void buttonsForPeopleAndGroups();
    void keyOpensUnseenSmartFolders();
    void noChangesAfterDestruction();
    void destructionReleasesTheProvisionalFolder();

private:
    static KDRDrawerBundle &store() { return ListStage::store(); }
    WayfoldBookmarkFolderPtr savedFolder(const QString &title)
    {
        return WayfoldBookmarkFolder::fromItem(store().bookmarkRoot()->childWithTitle(title));
    }
    WayfoldBookmarkFolderPtr provisionalFolder(const QString &title)
    {
        return WayfoldBookmarkFolder::fromItem(store().provisionalBookmarkRoot()->childWithTitle(title));
    }

    std::optional<ListStage> _stage;
    std::optional<Scratchpad> _pad;
};

void WayfoldScratchDataSourceTest::startsWithTheWholeTree()
{
    QVERIFY(_pad->source->localRootFolder() == store().bookmarkRoot());
    QCOMPARE(_pad->source->myOutlineView(), &_pad->view);
    QCOMPARE(_pad->source->currentDrawerLabel(), sites);
    QVERIFY(_pad->source->previousDrawerLabel().isNull());
    QVERIFY(_pad->view.acceptDrops());
    QVERIFY(!_pad->switchbackButton.isEnabled());
    QVERIFY(!_pad->source->anyItemSelected());
}

void WayfoldScratchDataSourceTest::buttonsHaveImagesAndToolTips()
{
    QCOMPARE(_pad->newSubfolderButton.toolTip(), QStringLiteral("New Subfolder"));
    QCOMPARE(_pad->newNoteButton.toolTip(), QStringLiteral("New Note"));
    QCOMPARE(_pad->newEmailButton.toolTip(), QStringLiteral("New Email Link"));
    QCOMPARE(_pad->newPersonButton.toolTip(), QStringLiteral("New Person Link"));
    QCOMPARE(_pad->deleteItemButton.toolTip(), QStringLiteral("Delete Item"));
    QCOMPARE(_pad->editItemButton.toolTip(), QStringLiteral("Edit Item"));
    QCOMPARE(_pad->switchbackButton.toolTip(), QStringLiteral("Show Previous Site List"));
    for (const QToolButton *button :
         {&_pad->newSubfolderButton, &_pad->newNoteButton, &_pad->newEmailButton, &_pad->newPersonButton,
          &_pad->deleteItemButton, &_pad->editItemButton, &_pad->switchbackButton}) {
        QVERIFY2(!button->icon().isNull(), qPrintable(button->toolTip()));
        QCOMPARE(button->iconSize(), QSize(16, 16));
    }
    const auto drawn = [](const QIcon &icon) { return icon.pixmap(QSize(16, 16), 1.0).toImage(); };
    const auto image = [&drawn](const char *name) {
        return drawn(WayfoldToolkit::loadImageNamedScaledTo(QString::fromLatin1(name), QSizeF(16, 16))->icon());
    };
    QCOMPARE(drawn(_pad->newNoteButton.icon()), image("WayfoldBookmarkImageNote"));
    QCOMPARE(drawn(_pad->newEmailButton.icon()), image("WayfoldBookmarkImageMail"));
    QVERIFY(image("WayfoldBookmarkImageNote") != image("WayfoldBookmarkImageMail"));
}

// --- Site lists -----------------------------------------------------------------------------------------------------

void WayfoldScratchDataSourceTest::switchToAKnownSite()
{
    const auto site = ListStage::folder(siteA, {ListStage::note("Of a")});
    _pad->showItems({site, ListStage::folder(siteB)});
    _pad->show(siteA);
    QVERIFY(_pad->source->localRootFolder() == site);
    QCOMPARE(ListStage::rows(_pad->view), QStringList{QStringLiteral("Of a")});
    QCOMPARE(_pad->controller->currentWebFrame(), _pad->web->frame);
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 0U);
}

void WayfoldScratchDataSourceTest::switchToAnUnknownSite()
{
    _pad->show(siteA);
    QVERIFY(!savedFolder(siteA));
    QVERIFY(_pad->source->localRootFolder() == provisionalFolder(siteA));
    QCOMPARE(ListStage::rows(_pad->view),
             QStringList({QStringLiteral("Related Bookmarks"), QStringLiteral("Related History")}));
    _pad->view.refreshSitePopup();
    QVERIFY(_pad->popup.itemTitles().contains(siteA));
}

void WayfoldScratchDataSourceTest::leavingAnEmptySiteLeavesNothing()
{
    _pad->show(siteA);
    _pad->view.grab(); // rows are drawn, and held
    _pad->show(siteB);
    QVERIFY(!provisionalFolder(siteA));
    QVERIFY(!savedFolder(siteA));
    QVERIFY(!_stage->savedFile().contains("a.org"));
    _pad->view.refreshSitePopup();
    QCOMPARE(_pad->popup.itemTitles(), QStringList({sites, siteB}));
}

void WayfoldScratchDataSourceTest::anotherDrawerKeepsTheProvisionalFolder()
{
    Scratchpad other(*_stage);
    _pad->show(siteA);
    other.show(siteA);
    QVERIFY(other.source->localRootFolder() == _pad->source->localRootFolder());
    _pad->show(siteB);
    QVERIFY(provisionalFolder(siteA));
    other.show(siteB);
    QVERIFY(!provisionalFolder(siteA));
}

void WayfoldScratchDataSourceTest::sameLabelChangesOnlyTheFrame_data()
{
    QTest::addColumn<QString>("label");
    QTest::newRow("the same") << siteA;
    QTest::newRow("none") << QString();
}

void WayfoldScratchDataSourceTest::sameLabelChangesOnlyTheFrame()
{
    QFETCH(QString, label);
    _pad->show(siteB);
    _pad->show(siteA);
    _stage->removeSavedFile();
    provisionalFolder(siteA)->addChildAtIndex(ListStage::note("A note", "What it says"), 0);
    _pad->view.reloadData();
    _pad->view.grab();
    const auto other = FakeHostWebView::makeSubFrame(_pad->web);
    _pad->source->setDrawerLabelUsingFrame(label, other);
    QCOMPARE(_pad->controller->currentWebFrame(), other);
    QCOMPARE(_pad->source->previousDrawerLabel(), siteB);
    QVERIFY(_stage->savedFile().isEmpty());
    // Rows that are loaded anew have no tips before they are drawn.
    QCOMPARE(_pad->view.toolTipAtPoint(_pad->view.rectOfRow(0).center()), QStringLiteral("What it says"));
}

void WayfoldScratchDataSourceTest::nullLabelChangesOnlyTheFrame()
{
    _pad->show(siteA);
    _pad->source->setDrawerLabelUsingFrame(QString(), nullptr);
    QVERIFY(!_pad->controller->currentWebFrame());
    QCOMPARE(_pad->source->currentDrawerLabel(), siteA);
    QVERIFY(_pad->source->previousDrawerLabel().isNull());
}

void WayfoldScratchDataSourceTest::sitesStandsForTheWholeTree()
{
    _pad->show(siteA);
    _pad->show(sites);
    QVERIFY(_pad->source->localRootFolder() == store().bookmarkRoot());
    QCOMPARE(_pad->source->currentDrawerLabel(), sites);
    _pad->show(siteA);
    _pad->show(QStringLiteral(""));
    QVERIFY(_pad->source->localRootFolder() == store().bookmarkRoot());
    QCOMPARE(_pad->source->currentDrawerLabel(), sites);
}

void WayfoldScratchDataSourceTest::pagesWithoutASiteDrawnAgainAndAgain()
{
    store().bookmarkRoot()->setTitle(QStringLiteral("Of another program"));
    for (const QString &site : {siteA, sites}) {
        _pad->show(site);
        _pad->show(QStringLiteral(""));
        _stage->removeSavedFile();
        _pad->show(QStringLiteral(""));
        QVERIFY(_stage->savedFile().isEmpty());
    }
    QCOMPARE(_pad->source->previousDrawerLabel(), siteA);
}

void WayfoldScratchDataSourceTest::noteWithTheTitleOfASite()
{
    _pad->showItems({ListStage::note(siteA), ListStage::folder(siteA, {ListStage::note("Of a")})});
    _pad->show(siteA);
    QCOMPARE(ListStage::rows(_pad->view), QStringList{QStringLiteral("Of a")});
    _pad->showItems({ListStage::note(siteB)});
    _pad->show(siteB);
    QVERIFY(_pad->source->localRootFolder() == provisionalFolder(siteB));
}

void WayfoldScratchDataSourceTest::previousLabel()
{
    _pad->show(siteA);
    QVERIFY(_pad->source->previousDrawerLabel().isNull());
    QVERIFY(!_pad->switchbackButton.isEnabled());
    _pad->show(sites);
    QCOMPARE(_pad->source->previousDrawerLabel(), siteA);
    QVERIFY(_pad->switchbackButton.isEnabled());
    // The whole tree is never remembered.
    _pad->show(siteB);
    QCOMPARE(_pad->source->previousDrawerLabel(), siteA);
    _pad->source->handleSwitchbackRequest(nullptr);
    QCOMPARE(_pad->source->currentDrawerLabel(), siteA);
}

void WayfoldScratchDataSourceTest::switchingSavesAndAdopts()
{
    _pad->show(siteA);
    provisionalFolder(siteA)->addChild(ListStage::note("Kept note"));
    _pad->show(siteB);
    QVERIFY(savedFolder(siteA));
    QVERIFY(!provisionalFolder(siteA));
    QVERIFY(_stage->savedFile().contains("Kept note"));
    QVERIFY(!_stage->savedFile().contains("Related"));
}

void WayfoldScratchDataSourceTest::switchback()
{
    _pad->show(siteA);
    _pad->show(siteB);
    _pad->controller->setCurrentWebFrame(_pad->web->frame);
    _pad->drawer.close();
    _pad->source->handleSwitchbackRequest(nullptr);
    QCOMPARE(_pad->source->currentDrawerLabel(), siteA);
    QCOMPARE(_pad->source->previousDrawerLabel(), siteB);
    QCOMPARE(_pad->drawer.state(), Drawer::Open);
    QCOMPARE(_pad->controller->currentWebFrame(), _pad->web->frame);
    _pad->source->handleSwitchbackRequest(nullptr);
    QCOMPARE(_pad->source->currentDrawerLabel(), siteB);
    _pad->source->handleSwitchbackRequest(nullptr);
    QCOMPARE(_pad->source->currentDrawerLabel(), siteA);
}

void WayfoldScratchDataSourceTest::switchbackWithoutAPreviousSite()
{
    _pad->drawer.close();
    _pad->source->handleSwitchbackRequest(nullptr);
    QCOMPARE(_pad->source->currentDrawerLabel(), sites);
    QCOMPARE(_pad->drawer.state(), Drawer::Closed);
}

void WayfoldScratchDataSourceTest::labelEqualsThePopupsTitle()
{
    for (const QString &label : {siteA, sites, siteB, QStringLiteral("")}) {
        _pad->show(label);
        QCOMPARE(_pad->source->currentDrawerLabel(), _pad->popup.currentText());
    }
}

// --- Saving pages ---------------------------------------------------------------------------------------------------

void WayfoldScratchDataSourceTest::anotherSitesListStartsAtItsTop()
{
    const auto longSite = [](const QString &title) {
        std::vector<KDRBookmarkPtr> notes;
        for (int i = 0; i < 100; ++i)
            notes.push_back(ListStage::note(QString::number(i)));
        return ListStage::folder(title, notes);
    };
    _pad->showItems({longSite(siteA), longSite(siteB)});
    _pad->show(siteA);
    QScrollBar &bar = *_pad->view.verticalScrollBar();
    QTRY_VERIFY(bar.maximum() > 0);
    _pad->view.selectIndividualRow(60);
    bar.setValue(bar.maximum());
    _pad->show(siteB);
    QCOMPARE(bar.value(), 0);
    QCOMPARE(_pad->view.currentRow(), 0);
    QCOMPARE(_pad->view.selectedRow(), -1);
    bar.setValue(bar.maximum());
    _pad->source->handleSwitchbackRequest(nullptr);
    QCOMPARE(bar.value(), 0);
}

// What was selected in the list of all sites, in the list of its own.
void WayfoldScratchDataSourceTest::whatStaysSelectedIsSeen()
{
    std::vector<KDRBookmarkPtr> notes;
    for (int i = 0; i < 100; ++i)
        notes.push_back(ListStage::note(QString::number(i)));
    const auto site = ListStage::folder(siteA, notes);
    _pad->showItems({site});
    _pad->view.expandItem(site);
    QTRY_VERIFY(_pad->view.verticalScrollBar()->maximum() > 0);
    _pad->view.selectIndividualItem(notes[80]);
    _pad->show(siteA);
    QCOMPARE(_pad->view.selectedRow(), 80);
    QCOMPARE(_pad->view.currentRow(), 80);
    QVERIFY(_pad->view.viewport()->rect().contains(_pad->view.rectOfRow(80)));
}

void WayfoldScratchDataSourceTest::saveCurrentPage()
{
    Scratchpad other(*_stage);
    const auto note = ListStage::note("First");
    _pad->showItems({note});
    _pad->select({note});
    _pad->controller->setCurrentWebFrame(_pad->web->frame);
    _pad->window->pageTitle = QStringLiteral("A story");
    _pad->drawer.close();
    _pad->source->handleSaveCurrentURLRequest(nullptr);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({QStringLiteral("First"), QStringLiteral("A story")}));
    QCOMPARE(ListStage::rows(other.view), ListStage::rows(_pad->view));
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{QStringLiteral("A story")});
    QCOMPARE(_pad->view.selectedItem()->type(), KDRBookmark::WebLinkType);
    QCOMPARE(_pad->view.selectedItem()->valueAsString(), QStringLiteral("http://news.example.com/story"));
    QCOMPARE(_pad->drawer.state(), Drawer::Open);
    QVERIFY(_stage->savedFile().contains("A story"));
}

void WayfoldScratchDataSourceTest::saveCurrentPageMakesTheSiteKnown()
{
    _pad->show(siteA);
    QVERIFY(!store().isKnownSite(siteA));
    _pad->window->pageTitle = QStringLiteral("A story");
    _pad->source->handleSaveCurrentURLRequest(nullptr);
    QVERIFY(savedFolder(siteA));
    QVERIFY(!provisionalFolder(siteA));
    QVERIFY(_stage->savedFile().contains("A story"));
}

void WayfoldScratchDataSourceTest::savedPageTitle_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("pageTitle");
    QTest::addColumn<QString>("title");
    const QString page = QStringLiteral("http://x.org/a%20b");
    QTest::newRow("page title") << page << QStringLiteral("Title") << QStringLiteral("Title");
    QTest::newRow("none") << page << QString() << QStringLiteral("/a b");
    QTest::newRow("empty") << page << QStringLiteral("") << QStringLiteral("/a b");
    // An item without a title would not be read back.
    QTest::newRow("no path either") << QStringLiteral("http://x.org") << QString() << QStringLiteral("http://x.org");
}

void WayfoldScratchDataSourceTest::savedPageTitle()
{
    QFETCH(QString, address);
    QFETCH(QString, pageTitle);
    QFETCH(QString, title);
    _pad->web->frame->commit(address);
    _pad->controller->setCurrentWebFrame(_pad->web->frame);
    _pad->window->pageTitle = pageTitle;
    _pad->source->handleSaveCurrentURLRequest(nullptr);
    QCOMPARE(_pad->view.selectedItem()->title(), title);
}

void WayfoldScratchDataSourceTest::nothingToSave_data()
{
    QTest::addColumn<QString>("missing");
    for (const char *missing : {"frame", "page", "address"})
        QTest::newRow(missing) << QString::fromLatin1(missing);
}

void WayfoldScratchDataSourceTest::nothingToSave()
{
    QFETCH(QString, missing);
    _pad->controller->setCurrentWebFrame(_pad->web->frame);
    if (missing == u"frame")
        _pad->controller->setCurrentWebFrame(nullptr);
    else if (missing == u"page")
        _pad->web->frame->committed.reset();
    else
        _pad->web->frame->committed = HostDataSource{};
    _stage->removeSavedFile();
    _pad->source->handleSaveCurrentURLRequest(nullptr);
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);
    QVERIFY(_stage->savedFile().isEmpty());
}

void WayfoldScratchDataSourceTest::newItemsNeedAnOpenDrawer()
{
    const auto requestAll = [this] {
        _pad->source->handleNewSubFolderRequest(nullptr);
        _pad->source->handleNewNoteRequest(nullptr);
        _pad->source->handleNewEmailRequest(nullptr);
        _pad->source->handleNewPersonRequest(nullptr);
    };
    requestAll();
    QCOMPARE(_stage->dialogs.opened, 4);
    _pad->drawer.close();
    requestAll();
    QCOMPARE(_stage->dialogs.opened, 4);
    _pad->drawer.setSlideDuration(60000);
    _pad->drawer.open();
    QCOMPARE(_pad->drawer.state(), Drawer::Opening);
    requestAll();
    QCOMPARE(_stage->dialogs.opened, 4);
    _pad->drawer.setSlideDuration(0);
    _pad->drawer.close();
    _pad->drawer.open();
    QCOMPARE(_pad->drawer.state(), Drawer::Open);
    _pad->drawer.setSlideDuration(60000);
    _pad->drawer.close();
    QCOMPARE(_pad->drawer.state(), Drawer::Closing);
    requestAll();
    QCOMPARE(_stage->dialogs.opened, 4);
}

// --- Deleting -------------------------------------------------------------------------------------------------------

void WayfoldScratchDataSourceTest::deleteOneAsks()
{
    const auto note = ListStage::note("Foo");
    _pad->showItems({note, ListStage::note("Bar")});
    _pad->select({note});
    Question question;
    question.answer(QStringLiteral("OK"));
    _pad->source->handleDeleteItemRequest(nullptr);
    QCOMPARE(question.asked, 1);
    QCOMPARE(question.message, QStringLiteral("Confirm"));
    QCOMPARE(question.information, QStringLiteral("Are you sure you want to delete \"Foo\"?"));
    QCOMPARE(question.icon, QMessageBox::Critical);
    question.buttons.sort();
    QCOMPARE(question.buttons, QStringList({QStringLiteral("Cancel"), QStringLiteral("OK")}));
    QCOMPARE(ListStage::rows(_pad->view), QStringList{QStringLiteral("Bar")});
    QVERIFY(!_pad->source->anyItemSelected());
    QVERIFY(_stage->savedFile().contains("Bar"));
    QVERIFY(!_stage->savedFile().contains("Foo"));
}

void WayfoldScratchDataSourceTest::deleteSeveralAsks()
{
    const std::vector<KDRBookmarkPtr> items = {ListStage::note("a"), ListStage::note("b"), ListStage::note("c")};
    _pad->showItems(items);
    _pad->select(items);
    Question question;
    question.answer(QStringLiteral("OK"));
    _pad->source->handleDeleteItemRequest(nullptr);
    QCOMPARE(question.information, QStringLiteral("Are you sure you want to delete these 3 items ?"));
    QCOMPARE(_pad->view.numberOfRows(), 0);
}

void WayfoldScratchDataSourceTest::declinedDelete_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("Cancel") << QStringLiteral("Cancel");
    QTest::newRow("Escape") << QString();
}

void WayfoldScratchDataSourceTest::declinedDelete()
{
    QFETCH(QString, button);
    const auto note = ListStage::note("Foo");
    _pad->showItems({note});
    _pad->select({note});
    _stage->removeSavedFile();
    Question question;
    question.answer(button);
    _pad->source->handleDeleteItemRequest(nullptr);
    QCOMPARE(question.asked, 1);
    QCOMPARE(_pad->view.numberOfRows(), 1);
    QCOMPARE(_pad->view.selectedItemCount(), 1);
    QVERIFY(_stage->savedFile().isEmpty());
}

void WayfoldScratchDataSourceTest::deleteWithoutQuestion()
{
    ListStage::settings().setConfirmItemDelete(false);
    const auto note = ListStage::note("Foo");
    _pad->showItems({note});
    _pad->source->handleDeleteItemRequest(nullptr);
    QCOMPARE(_pad->view.numberOfRows(), 1); // nothing was selected
    _pad->select({note});
    Question question;
    question.answer(QStringLiteral("Cancel"));
    _pad->source->handleDeleteItemRequest(nullptr);
    QCoreApplication::processEvents();
    QCOMPARE(question.asked, 0);
    QCOMPARE(_pad->view.numberOfRows(), 0);
}

// The list is loaded anew for none of them.
void WayfoldScratchDataSourceTest::deleteMany()
{
    ListStage::settings().setConfirmItemDelete(false);
    std::vector<KDRBookmarkPtr> notes;
    for (int i = 0; i < 50; ++i)
        notes.push_back(ListStage::note(QString::number(i)));
    const auto kept = ListStage::note("Kept");
    notes.push_back(kept);
    _pad->showItems(notes);
    notes.pop_back();
    _pad->select(notes);
    _pad->drawer.reloadCount = 0;
    _pad->source->handleDeleteItemRequest(nullptr);
    QCOMPARE(ListStage::rows(_pad->view), QStringList{QStringLiteral("Kept")});
    QCOMPARE(_pad->drawer.reloadCount, 0);
    QVERIFY(_stage->savedFile().contains("Kept"));
    QVERIFY(!_stage->savedFile().contains(">49<"));
}

void WayfoldScratchDataSourceTest::deletedSiteFolder()
{
    ListStage::settings().setConfirmItemDelete(false);
    const auto site = ListStage::folder(siteA, {ListStage::note("Of a")});
    _pad->showItems({site});
    Scratchpad other(*_stage);
    other.show(siteA);
    _pad->select({site});
    _pad->source->handleDeleteItemRequest(nullptr);
    // The other window goes on showing it, as a site without a folder of its own.
    QVERIFY(provisionalFolder(siteA) == site);
    QCOMPARE(ListStage::rows(other.view), QStringList{QStringLiteral("Of a")});
    QVERIFY(!_stage->savedFile().contains("Of a"));
}

// Nobody showed it; who goes to the site finds nothing, and saves nothing.
void WayfoldScratchDataSourceTest::deletedSiteFolderDoesNotComeBack()
{
    ListStage::settings().setConfirmItemDelete(false);
    const auto site = ListStage::folder(siteA, {ListStage::note("Of a")});
    _pad->showItems({site});
    _pad->select({site});
    _pad->source->handleDeleteItemRequest(nullptr);
    QVERIFY(!provisionalFolder(siteA));
    _pad->show(siteA);
    QVERIFY(!ListStage::rows(_pad->view).contains(QStringLiteral("Of a")));
    _pad->show(siteB);
    QTest::qWait(0);
    QVERIFY(!_stage->savedFile().contains("Of a"));
    QVERIFY(!store().isKnownSite(siteA));
}

// --- Editing --------------------------------------------------------------------------------------------------------

void WayfoldScratchDataSourceTest::editRenamesSmartFolders()
{
    const auto site = ListStage::folder(siteA, {ListStage::note("Of a")});
    site->addAutoFolders();
    const auto smart = std::dynamic_pointer_cast<WayfoldAutoFolder>(site->childAtIndex(1));
    QCOMPARE(smart->filterString(), siteA);
    _pad->showItems({site});
    _pad->select({site});
    const auto rename = [](KDRBookmark &item) {
        item.setTitle(siteB);
        return true;
    };
    // Not accepted: nothing follows.
    _stage->dialogs.answer = [rename](KDRBookmark &item) {
        rename(item);
        return false;
    };
    _pad->source->handleItemEditRequest(nullptr);
    QCOMPARE(smart->filterString(), siteA);
    _stage->dialogs.answer = rename;
    _pad->source->handleItemEditRequest(nullptr);
    QCOMPARE(smart->filterString(), siteB);
    QCOMPARE(ListStage::rows(_pad->view), QStringList{siteB});
    QVERIFY(_pad->view.selectedItem() == site);
}

void WayfoldScratchDataSourceTest::editOfSeveralItems()
{
    const std::vector<KDRBookmarkPtr> items = {ListStage::note("a"), ListStage::note("b")};
    _pad->showItems(items);
    _pad->source->handleItemEditRequest(nullptr);
    _pad->select(items);
    _pad->source->handleItemEditRequest(nullptr);
    QCOMPARE(_stage->dialogs.opened, 0);
}

void WayfoldScratchDataSourceTest::editIsSeenInOtherDrawers()
{
    const auto note = ListStage::note("Before");
    _pad->showItems({note});
    Scratchpad other(*_stage);
    QCOMPARE(ListStage::rows(other.view), QStringList{QStringLiteral("Before")});
    _pad->select({note});
    _stage->dialogs.answer = [](KDRBookmark &item) {
        item.setTitle(QStringLiteral("After"));
        return true;
    };
    other.drawer.reloadCount = 0;
    _stage->removeSavedFile();
    _pad->source->handleItemEditRequest(nullptr);
    QCOMPARE(ListStage::rows(other.view), QStringList{QStringLiteral("After")});
    QVERIFY(_stage->savedFile().isEmpty()); // what was changed is saved by the dialogs
    _stage->dialogs.answer = {};
    _pad->source->handleItemEditRequest(nullptr); // cancelled
    QCOMPARE(ListStage::rows(other.view), QStringList{QStringLiteral("After")});
    QCOMPARE(other.drawer.reloadCount, 0);
}

// --- Observing ------------------------------------------------------------------------------------------------------

void WayfoldScratchDataSourceTest::buttonStates()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle(QStringLiteral("Smart"));
    smart->ensureUpToDate();
    const auto found = ListStage::link("Found");
    smart->addChild(found);
    const auto note = ListStage::note("Note");
    const auto person = ListStage::person("Person");
    _pad->showItems({note, smart, person});
    _pad->view.expandItem(smart);
    const auto states = [this](const std::vector<KDRBookmarkPtr> &selection) {
        _pad->select(selection);
        if (_pad->newSubfolderButton.isEnabled() != _pad->newNoteButton.isEnabled() ||
            _pad->newNoteButton.isEnabled() != _pad->newEmailButton.isEnabled() ||
            _pad->newNoteButton.isEnabled() != _pad->newPersonButton.isEnabled())
            return QStringLiteral("the four differ");
        return QStringLiteral("%1%2%3").arg(_pad->deleteItemButton.isEnabled() ? QStringLiteral("D") : QString(),
                                            _pad->editItemButton.isEnabled() ? QStringLiteral("E") : QString(),
                                            _pad->newNoteButton.isEnabled() ? QStringLiteral("N") : QString());
    };
    QCOMPARE(states({note}), QStringLiteral("DEN"));
    QCOMPARE(states({}), QStringLiteral("N"));
    QCOMPARE(states({note, person}), QStringLiteral("D"));
    QCOMPARE(states({found}), QString());
    QCOMPARE(states({smart}), QStringLiteral("N"));
    QCOMPARE(states({note, found}), QString());
    QVERIFY(!_pad->switchbackButton.isEnabled());
}

void WayfoldScratchDataSourceTest::outsideChanges_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"SafariBookmarkFileModNotification", "SafariHistoryFileModNotification",
                             "kABDatabaseChangedNotification", "kABDatabaseChangedExternallyNotification"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

namespace
{
// Collects new copies at each refresh, as smart folders do.
class RefreshedFolder : public WayfoldAutoFolder
{
public:
    int refreshed = 0;
    KDRBookmarkPtr found;

    bool refresh() override
    {
        ++refreshed;
        removeAllChildren();
        addChild(found->copy());
        return true;
    }
};

// Looks itself up again at each refresh, as contacts do.
class RefreshedPerson : public WayfoldBookmarkABPerson
{
public:
    int refreshed = 0;

    bool refresh() override { return ++refreshed; }
};
} // namespace

void WayfoldScratchDataSourceTest::outsideChanges()
{
    QFETCH(QString, name);
    const auto smart = std::make_shared<RefreshedFolder>();
    smart->initWithTitle(QStringLiteral("Smart"));
    smart->found = ListStage::link("Found");
    const auto note = ListStage::note("Note");
    const auto person = std::make_shared<RefreshedPerson>();
    person->initWithRecord(ListStage::person("Person")->addressBookEntry());
    _pad->showItems({note, smart, person});
    _pad->view.grab();
    _pad->view.expandItem(smart);
    const KDRBookmarkPtr before = smart->childAtIndex(0);
    _pad->select({note, before});
    QCOMPARE(_pad->view.selectedItemCount(), 2);
    const int refreshed = smart->refreshed;
    postFileChange(name);
    QCOMPARE(smart->refreshed, refreshed + 1);
    QCOMPARE(person->refreshed, 1);
    QVERIFY(smart->childAtIndex(0) != before);
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()),
             QStringList({QStringLiteral("Note"), QStringLiteral("Found")}));
    QVERIFY(_pad->view.selectedItemList()[1] == smart->childAtIndex(0));
    // The buttons are those of what is selected then: what was found could not be deleted.
    QVERIFY(!_pad->deleteItemButton.isEnabled());
    smart->found = ListStage::link("Another");
    postFileChange(name);
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{QStringLiteral("Note")});
    QVERIFY(_pad->deleteItemButton.isEnabled());
}

// What came from the browser's bookmarks has the same identifier as its copy in a smart folder.
void WayfoldScratchDataSourceTest::outsideChangesSelectNoTwins()
{
    const auto own = ListStage::link("Own");
    const auto smart = std::make_shared<RefreshedFolder>();
    smart->initWithTitle(QStringLiteral("Smart"));
    smart->found = own;
    _pad->showItems({smart, own});
    smart->ensureUpToDate();
    _pad->view.expandItem(smart);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"Smart", "-Own", "Own"}));
    _pad->view.selectIndividualItem(own);
    _pad->source->safariFileUpdated({});
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({2}));

    _pad->view.selectIndividualItem(smart->childAtIndex(0));
    _pad->source->safariFileUpdated({}); // collects a new copy
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({1}));
}

namespace
{
void rename(const KDRBookmarkPtr &person, const QString &name, const QStringList &emails = {})
{
    ListStage::contacts().set(MemoryContacts::person(person->uuid(), name, QString(), emails));
}
} // namespace

// Wherever they stand; nothing else about the list changes.
void WayfoldScratchDataSourceTest::peopleShowTheirNewNames()
{
    const auto ann = ListStage::person("Ann");
    const auto bob = ListStage::person("Bob");
    const auto cy = ListStage::person("Cy");
    const auto dee = ListStage::person("Dee");
    const auto inner = ListStage::group("Inner", {cy});
    ListStage::contacts().set(MemoryContacts::group("outer", "Outer", {inner->uuid(), bob->uuid()}));
    const auto outer = WayfoldBookmarkABGroup::bookmarkWithID("outer");
    const auto deep = ListStage::folder("deep", {ListStage::note("note"), ann});
    const auto folder = ListStage::folder("folder", {deep, outer});
    _pad->showItems({folder, dee});
    _pad->view.expandItem(folder);
    _pad->view.expandItem(deep);
    _pad->view.expandItem(outer);
    _pad->view.expandItem(outer->childAtIndex(1));
    QCOMPARE(ListStage::rows(_pad->view),
             QStringList({"folder", "-deep", "--note", "--Ann", "-Outer", "--Bob", "--Inner", "---Cy", "Dee"}));
    _pad->view.deselectAll();
    for (const int row : {3, 5, 7, 8})
        _pad->view.selectRow(row);
    _stage->removeSavedFile();

    for (const auto &[person, name] : {std::pair(ann, "Anna"), std::pair(bob, "Bobby"), std::pair(cy, "Cyril")})
        rename(person, QString::fromLatin1(name));
    QTRY_COMPARE(ListStage::rows(_pad->view), QStringList({"folder", "-deep", "--note", "--Anna", "-Outer", "--Bobby",
                                                           "--Inner", "---Cyril", "Dee"}));
    QCOMPARE(_pad->view.selectedRows(), std::vector<int>({3, 5, 7, 8}));
    QVERIFY(_stage->savedFile().isEmpty());

    // A group's own changes as well, and somebody who goes leaves the items of the user's.
    ListStage::contacts().set(MemoryContacts::group("outer", "Outermost", {ann->uuid(), dee->uuid()}));
    ListStage::contacts().take(dee->uuid());
    QTRY_COMPARE(ListStage::rows(_pad->view),
                 QStringList({"folder", "-deep", "--note", "--Anna", "-Outermost", "--Anna", "Invalid"}));
    QVERIFY(_pad->view.selectedItemList().back() == dee);
    ListStage::contacts().take("outer");
}

void WayfoldScratchDataSourceTest::unseenGroupsAreUpToDateWhenOpened()
{
    const ModelChecks::Pause unchecked;
    _pad.emplace(*_stage);
    const auto ann = ListStage::person("Ann");
    const auto friends = ListStage::group("Friends", {ann});
    const auto closed = ListStage::folder("closed", {friends});
    _pad->showItems({closed});
    rename(ann, "Anna");
    settleNotifications();
    QVERIFY(!friends->isLoaded());
    QVERIFY(friends->isEmpty());
    _pad->view.expandItem(closed);
    _pad->view.expandItem(friends);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"closed", "-Friends", "--Anna"}));
    // One that was closed again follows.
    _pad->view.collapseItem(friends);
    rename(ann, "Annette");
    settleNotifications();
    _pad->view.expandItem(friends);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"closed", "-Friends", "--Annette"}));
}

void WayfoldScratchDataSourceTest::siteThatWasNotShownFollowsTheContacts()
{
    const auto ann = ListStage::person("Ann");
    const auto bob = ListStage::person("Bob");
    const auto friends = ListStage::group("Friends", {bob});
    _pad->showItems({ListStage::folder(siteA, {ann, friends}), ListStage::folder(siteB)});
    _pad->show(siteA);
    _pad->view.expandItem(friends);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"Ann", "Friends", "-Bob"}));
    _pad->show(siteB);
    rename(ann, "Anna");
    rename(bob, "Bobby");
    settleNotifications();
    _pad->show(siteA);
    _pad->view.expandItem(friends);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"Anna", "Friends", "-Bobby"}));
    // Once is enough.
    const KDRBookmarkPtr member = friends->childAtIndex(0);
    _pad->show(siteB);
    _pad->show(siteA);
    QVERIFY(friends->childAtIndex(0) == member);
}

// Contacts come only after the items that stand for them.
void WayfoldScratchDataSourceTest::peopleWhoComeLate()
{
    ListStage::contacts().presentState = ContactStore::Loading;
    const auto person = WayfoldBookmarkABPerson::bookmarkWithID("late person");
    const auto group = WayfoldBookmarkABGroup::bookmarkWithID("late group");
    _pad->showItems({person, group});
    _pad->view.expandItem(group);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"Invalid", "Invalid"}));
    _pad->select({group});
    ListStage::contacts().presentState = ContactStore::Ready;
    ListStage::contacts().set(MemoryContacts::person("late person", "Late", "Comer"));
    ListStage::contacts().set(MemoryContacts::group("late group", "All", {"late person"}));
    settleNotifications();
    QCOMPARE(ListStage::rows(_pad->view).mid(0, 2), QStringList({"Late Comer", "All"}));
    QVERIFY(_pad->view.selectedItem() == group);
    _pad->view.expandItem(group);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"Late Comer", "All", "-Late Comer"}));
    ListStage::contacts().take("late person");
    ListStage::contacts().take("late group");
}

void WayfoldScratchDataSourceTest::relatedBookmarksFollowTheContacts()
{
    const auto ann = ListStage::person("Ann", {"ann@related.example"});
    const auto site = ListStage::folder("related.example");
    site->addAutoFolders();
    _pad->showItems({site});
    const KDRBookmarkPtr related = site->childAtIndex(0);
    _pad->view.expandItem(site);
    _pad->view.expandItem(related);
    QCOMPARE(ListStage::rows(_pad->view),
             QStringList({"related.example", "-Related Bookmarks", "--Ann", "-Related History"}));
    _pad->view.selectRow(2);
    rename(ann, "Anna", {"ann@related.example"});
    const auto bob = ListStage::person("Bob", {"bob@RELATED.example"});
    settleNotifications();
    QCOMPARE(ListStage::rows(_pad->view),
             QStringList({"related.example", "-Related Bookmarks", "--Anna", "--Bob", "-Related History"}));
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{"Anna"});
    rename(ann, "Anna", {"ann@elsewhere.example"});
    ListStage::contacts().take(bob->uuid());
    settleNotifications();
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"related.example", "-Related Bookmarks", "-Related History"}));
}

void WayfoldScratchDataSourceTest::editOfAPersonOpensTheCard()
{
    const auto ann = ListStage::person("Ann");
    _pad->showItems({ann});
    _pad->select({ann});
    QTest::keyClick(&_pad->view, Qt::Key_Return);
    QCOMPARE(ListStage::contacts().opened, QStringList{"edit " + ann->uuid()});
    QCOMPARE(_stage->openedURLs.size(), 1);
    QCOMPARE(_stage->dialogs.opened, 0);
}

void WayfoldScratchDataSourceTest::editOfAGroupOpensTheCard()
{
    const auto friends = ListStage::group("Friends", {ListStage::person("Ann")});
    _pad->showItems({friends});
    _pad->select({friends});
    QTest::keyClick(&_pad->view, Qt::Key_Return);
    QCOMPARE(ListStage::contacts().opened, QStringList{"edit " + friends->uuid()});
    QCOMPARE(_stage->openedURLs.size(), 1);
    QCOMPARE(_stage->dialogs.opened, 0);
}

// The pop-up has every folder of the top level.
void WayfoldScratchDataSourceTest::groupShownAsASiteFollowsTheContacts()
{
    const auto ann = ListStage::person("Ann");
    const auto bob = ListStage::person("Bob");
    const auto friends = ListStage::group("Friends", {ann});
    _pad->showItems({friends});
    _pad->show("Friends");
    QCOMPARE(ListStage::rows(_pad->view), QStringList{"Ann"});
    rename(ann, "Anna");
    ListStage::contacts().set(MemoryContacts::group(friends->uuid(), "Friends", {ann->uuid(), bob->uuid()}));
    settleNotifications();
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"Anna", "Bob"}));
}

// The user may choose none in the preferences, and others again.
void WayfoldScratchDataSourceTest::groupWithinAGroupIsEdited()
{
    const auto inner = ListStage::group("Inner", {ListStage::person("Ann")});
    const auto outer = ListStage::group("Outer");
    ListStage::contacts().set(MemoryContacts::group(outer->uuid(), "Outer", {inner->uuid()}));
    _pad->showItems({outer});
    _pad->view.expandItem(outer);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"Outer", "-Inner"}));
    _pad->view.selectIndividualRow(1);
    QVERIFY(_pad->editItemButton.isEnabled());
    QVERIFY(!_pad->deleteItemButton.isEnabled());
}

// What would be put into it would be gone with its next change.
void WayfoldScratchDataSourceTest::groupShownAsASiteTakesNothing()
{
    const auto friends = ListStage::group("Friends", {ListStage::person("Ann")});
    _pad->showItems({friends});
    _pad->show("Friends");
    _pad->view.deselectAll();
    for (const QToolButton *button :
         {&_pad->newSubfolderButton, &_pad->newNoteButton, &_pad->newEmailButton, &_pad->newPersonButton})
        QVERIFY2(!button->isEnabled(), qPrintable(button->toolTip()));
    _pad->source->handleNewNoteRequest(nullptr);
    QCOMPARE(_stage->dialogs.opened, 0);

    // A page that is kept goes where it stays.
    _pad->controller->setCurrentWebFrame(_pad->web->frame);
    _pad->source->handleSaveCurrentURLRequest(nullptr);
    QCOMPARE(store().bookmarkRoot()->childCount(), 2U);
    const KDRBookmarkPtr page = store().bookmarkRoot()->childAtIndex(1);
    QCOMPARE(page->valueAsString(), QStringLiteral("http://news.example.com/story"));
    QCOMPARE(_pad->source->currentDrawerLabel(), sites);
    QVERIFY(_pad->view.selectedItem() == page);
    QVERIFY(_stage->savedFile().contains("http://news.example.com/story"));
    QCOMPARE(friends->childCount(), 1U);
}

void WayfoldScratchDataSourceTest::contactsThatComeAndGo()
{
    const auto ann = ListStage::person("Ann");
    const auto kettle = ListStage::organization("Kettle");
    const auto friends = ListStage::group("Friends", {ann});
    const auto inner = ListStage::folder("inner", {kettle});
    _pad->showItems({ann, inner, friends});
    _pad->view.expandItem(inner);
    _pad->view.expandItem(friends);
    const QStringList all = {"Ann", "inner", "-Kettle", "Friends", "-Ann"};
    QCOMPARE(ListStage::rows(_pad->view), all);
    const QString tip = ann->tooltipText();
    const std::shared_ptr<Image> picture = kettle->imageForCellSize({16, 16});
    QVERIFY(picture);

    ContactStore::setSharedAddressBook(nullptr);
    settleNotifications();
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"Invalid", "inner", "-Invalid", "Invalid"}));
    QVERIFY(ann->tooltipText().isNull());
    QVERIFY(!ann->matchesSubstring("ann"));
    QCOMPARE(ann->typeDescription(), QStringLiteral("Person"));
    QVERIFY(kettle->imageForCellSize({16, 16}) == picture);
    _pad->source->saveScratchBookmarkRoot();
    QVERIFY(_stage->savedFile().contains(ann->uuid().toUtf8()));
    QVERIFY(_stage->savedFile().contains(friends->uuid().toUtf8()));

    ContactStore::setSharedAddressBook(&ListStage::contacts());
    settleNotifications();
    _pad->view.expandItem(friends);
    QCOMPARE(ListStage::rows(_pad->view), all);
    QCOMPARE(ann->tooltipText(), tip);
    QVERIFY(ann->matchesSubstring("ann"));
}

// The people of an item file stay in it while no contacts are shown, also over a restart, and have their names again
// afterwards.
void WayfoldScratchDataSourceTest::contactsThatAreSwitchedOff()
{
    const TemporaryHome &home = _stage->home;
    home.write("cards/ann.vcf", ListStage::card("ann", "Ann", "Miller", "ann@a.org"));
    home.write("cards/kettle.vcf",
               "BEGIN:VCARD\nVERSION:4.0\nKIND:org\nUID:kettle\nFN:Kettle\nORG:Kettle\nEND:VCARD\n");
    home.write("cards/friends.vcf",
               "BEGIN:VCARD\nVERSION:4.0\nKIND:group\nUID:friends\nFN:Friends\nMEMBER:ann\nEND:VCARD\n");
    ListStage::settings().setContactFolder(home.path("cards"));
    ListStage::settings().setContactSource("folder");
    ContactSource source;
    QTRY_COMPARE(ContactStore::sharedAddressBook().state(), ContactStore::Ready);
    const QString problem = runPython(home, R"(
plistlib.dump({"WebBookmarkFileVersion": 1, "WebBookmarkType": "WebBookmarkTypeList", "WebBookmarkUUID": "root",
    "Title": "", "Children": [
        {"WebBookmarkType": "ABPerson", "WebBookmarkUUID": "one", "AddressBookID": "ann"},
        {"WebBookmarkType": "WebBookmarkTypeList", "WebBookmarkUUID": "in", "Title": "inner", "Children": [
            {"WebBookmarkType": "ABPerson", "WebBookmarkUUID": "kettle", "AddressBookID": "kettle"}]},
        {"WebBookmarkType": "ABGroup", "WebBookmarkUUID": "friends", "AddressBookID": "friends"},
        {"WebBookmarkType": "ABPerson", "WebBookmarkUUID": "x", "AddressBookID": "nobody"}]},
    open("Library/Wayfold/Bookmarks.plist", "wb"))
)");
    QVERIFY2(problem.isNull(), qPrintable(problem));
    const auto restart = [this] {
        _pad.reset();
        KDRDrawerBundle::releaseSharedInstance();
        _pad.emplace(*_stage);
    };
    const auto rows = [this] {
        for (const KDRBookmarkPtr &item : store().bookmarkRoot()->children())
            _pad->view.expandItem(item);
        return ListStage::rows(_pad->view).filter(QRegularExpression("^-?[A-Zi]\\w+( Miller)?$")); // no smart folders
    };
    const QString savedItems = R"(
def items(folder):
    return [(item["WebBookmarkType"], item["WebBookmarkUUID"], item.get("AddressBookID"), items(item))
            for item in folder.get("Children", [])]
found = items(plistlib.load(open("Library/Wayfold/Bookmarks.plist", "rb")))
assert found == [("ABPerson", "one", "ann", []),
                 ("WebBookmarkTypeList", "in", None, [("ABPerson", "kettle", "kettle", [])]),
                 ("ABGroup", "friends", "friends", []), ("ABPerson", "x", "nobody", [])], found
)";
    const QStringList named = {"Ann Miller", "inner", "-Kettle", "Friends", "-Ann Miller", "Invalid"};
    const QStringList nameless = {"Invalid", "inner", "-Invalid", "Invalid", "Invalid"};
    restart();
    QCOMPARE(rows(), named);

    ListStage::settings().setContactSource("none");
    source.followSettings();
    settleNotifications();
    QCOMPARE(rows(), nameless);
    const auto saves = [&] {
        _stage->removeSavedFile();
        _pad->source->saveScratchBookmarkRoot();
        return runPython(home, savedItems.toUtf8());
    };
    QCOMPARE(saves(), QString());
    restart();
    QCOMPARE(rows(), nameless);
    QCOMPARE(saves(), QString());

    ListStage::settings().setContactSource("folder");
    source.followSettings();
    QTRY_COMPARE(ContactStore::sharedAddressBook().state(), ContactStore::Ready);
    QTRY_COMPARE(rows(), named);
    QCOMPARE(saves(), QString());
    restart();
    QCOMPARE(rows(), named);
}

void WayfoldScratchDataSourceTest::buttonsForPeopleAndGroups()
{
    const auto ann = ListStage::person("Ann");
    const auto friends = ListStage::group("Friends", {ann});
    _pad->showItems({ann, friends});
    _pad->view.expandItem(friends);
    const auto states = [this](const std::vector<KDRBookmarkPtr> &selection) {
        _pad->select(selection);
        return QStringLiteral("%1%2%3").arg(_pad->deleteItemButton.isEnabled() ? QStringLiteral("D") : QString(),
                                            _pad->editItemButton.isEnabled() ? QStringLiteral("E") : QString(),
                                            _pad->newNoteButton.isEnabled() ? QStringLiteral("N") : QString());
    };
    QCOMPARE(states({ann}), QStringLiteral("DEN"));
    QCOMPARE(states({friends}), QStringLiteral("DEN"));
    // Who is in a group is the group's.
    QCOMPARE(states({friends->childAtIndex(0)}), QStringLiteral("E"));
    QCOMPARE(states({ann, friends}), QStringLiteral("D"));
    ListStage::settings().setConfirmItemDelete(false);
    _pad->select({friends});
    _pad->source->handleDeleteItemRequest(nullptr);
    QCOMPARE(ListStage::rows(_pad->view), QStringList{"Ann"});
}

// Opens all below a site at once, before any of it was painted.
void WayfoldScratchDataSourceTest::keyOpensUnseenSmartFolders()
{
    const auto smart = std::make_shared<RefreshedFolder>();
    smart->initWithTitle(QStringLiteral("Smart"));
    smart->found = ListStage::link("Found");
    const auto site = ListStage::folder(siteA, {smart});
    _pad->showItems({site});
    _pad->view.selectIndividualItem(site);
    QTest::keyClick(&_pad->view, Qt::Key_Asterisk);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({siteA, "-Smart", "--Found"}));
}

void WayfoldScratchDataSourceTest::closedSmartFoldersWaitForOutsideChanges()
{
    const ModelChecks::Pause unchecked;
    _pad.emplace(*_stage);
    const auto smart = std::make_shared<RefreshedFolder>();
    smart->initWithTitle(QStringLiteral("Smart"));
    smart->found = ListStage::link("Found");
    const auto site = ListStage::folder(siteA, {ListStage::note("Of a"), smart});
    _pad->showItems({site});
    postFileChange(Notifications::SafariHistoryFileModNotification);
    QCOMPARE(smart->refreshed, 0);
    smart->ensureUpToDate(); // somebody looks into it
    QCOMPARE(smart->refreshed, 1);
    postFileChange(Notifications::SafariHistoryFileModNotification);
    QCOMPARE(smart->refreshed, 2);
}

// In a tab behind another, or in a drawer that is closed.
void WayfoldScratchDataSourceTest::listOutOfSightFollowsOnceWhenItIsSeen()
{
    const auto smart = std::make_shared<RefreshedFolder>();
    smart->initWithTitle(QStringLiteral("Smart"));
    smart->found = ListStage::link("Found");
    _pad->showItems({smart});
    smart->ensureUpToDate();
    _pad->view.expandItem(smart);
    const int refreshed = smart->refreshed;
    _pad->view.hide();
    smart->found = ListStage::link("Another");
    postFileChange(Notifications::SafariHistoryFileModNotification);
    postFileChange(Notifications::SafariBookmarkFileModNotification);
    QCOMPARE(smart->refreshed, refreshed);
    _pad->view.show();
    QCOMPARE(smart->refreshed, refreshed + 1);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"Smart", "-Another"}));
    _pad->view.hide();
    _pad->view.show(); // nothing has changed
    QCOMPARE(smart->refreshed, refreshed + 1);
}

// Or it would be behind when it is shown again.
void WayfoldScratchDataSourceTest::siteThatIsLeftOutOfSightFollows()
{
    const auto smart = std::make_shared<RefreshedFolder>();
    smart->initWithTitle(QStringLiteral("Smart"));
    smart->found = ListStage::link("Found");
    _pad->showItems({ListStage::folder(siteA, {smart}), ListStage::folder(siteB)});
    _pad->show(siteA);
    smart->ensureUpToDate();
    _pad->view.hide();
    smart->found = ListStage::link("Another");
    postFileChange(Notifications::SafariHistoryFileModNotification);
    _pad->show(siteB);
    _pad->view.show();
    QCOMPARE(ListStage::titles(smart), QStringList{QStringLiteral("Another")});
}

void WayfoldScratchDataSourceTest::noChangesAfterDestruction()
{
    _pad->view.hide();
    postFileChange(Notifications::SafariBookmarkFileModNotification);
    _pad->source.reset();
    QVERIFY(!_pad->view.delegate());
    QVERIFY(!_pad->view.doubleAction);
    _pad->view.prepForReloadData();
    _pad->view.reloadData();
    postFileChange(Notifications::SafariBookmarkFileModNotification);
    _pad->view.show();
    QCOMPARE(_pad->view.numberOfRows(), 0);
}

void WayfoldScratchDataSourceTest::destructionReleasesTheProvisionalFolder()
{
    _pad->show(siteA);
    QVERIFY(provisionalFolder(siteA));
    _pad->source.reset();
    QVERIFY(!provisionalFolder(siteA));
}

QTEST_MAIN(WayfoldScratchDataSourceTest)
#include "WayfoldScratchDataSourceTest.moc"
