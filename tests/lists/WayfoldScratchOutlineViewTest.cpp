#include "lists/WayfoldScratchOutlineView.h"

#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"
#include "tests/lists/ListStage.h"

#include <QDragEnterEvent>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>

Q_DECLARE_METATYPE(std::vector<KDRBookmarkPtr>)

namespace
{
QAction *addItem(QMenu &menu, const char *action)
{
    QAction *item = menu.addAction(QString::fromLatin1(action));
    MenuItem::setAction(item, QString::fromLatin1(action));
    return item;
}

const QString sites = QStringLiteral("Sites");
} // namespace

class WayfoldScratchOutlineViewTest : public QObject
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

    void popupEntries();
    void popupIsRebuiltAsItOpens();
    void popupKeepsTheFirstEntryForNoTitle();
    void popupTitles();
    void popupWithoutTheSelectedSite();
    void pickingASite();
    void pickingASiteByItsLetters();
    void dragOverThePopupShowsTheWholeTree();

    void emptySiteSaysHowToBegin();
    void emptyTreeSaysHowToBegin();
    void emptySiteSaysSoBelowItsSmartFolders();

    void keysEdit_data();
    void keysEdit();
    void keysDelete_data();
    void keysDelete();
    void keysWithoutASelection();

    void newItemPlaces_data();
    void newItemPlaces();
    void newItemIsSelectedAndSaved();
    void cancelledNewItem();
    void severalNewPeople();
    void newPeopleOfASite();
    void newFolderInTheRootGetsSmartFolders();
    void newItemOfASiteThatIsLeftMeanwhile();
    void cancelledNewItemOfASiteThatIsLeftMeanwhile();
    void newItemBesideAnOpenSmartFolder();
    void noRoomForNewItems();
    void nothingIsPutIntoASmartFolder();

    void mailAddress_data();
    void mailAddress();
    void mailToPeople_data();
    void mailToPeople();
    void mailToAGroupThatNobodyHasSeen();
    void mailIsHandedToTheDesktop();
    void mailIsHandedOverWhole();

    void editItem_data();
    void editItem();
    void deleteItem_data();
    void deleteItem();
    void newItems_data();
    void newItems();
    void sendEmailItem();
    void inheritedItems();
    void menuItemsAct();

private:
    static KDRDrawerBundle &store() { return ListStage::store(); }

    std::optional<ListStage> _stage;
    std::optional<Scratchpad> _pad;
};

// --- Site pop-up ----------------------------------------------------------------------------------------------------

void WayfoldScratchOutlineViewTest::popupEntries()
{
    _pad->showItems({ListStage::folder("b.org"), ListStage::note("A note"), ListStage::folder("a.org")});
    _pad->show(QStringLiteral("new.org"));
    _pad->view.refreshSitePopup();
    QCOMPARE(_pad->popup.itemTitles(),
             QStringList({sites, QStringLiteral("b.org"), QStringLiteral("a.org"), QStringLiteral("new.org")}));
    QCOMPARE(_pad->popup.title(), QStringLiteral("new.org"));
}

void WayfoldScratchOutlineViewTest::popupIsRebuiltAsItOpens()
{
    store().bookmarkRoot()->addChild(ListStage::folder("a.org"));
    QCOMPARE(_pad->popup.itemTitles(), QStringList{sites});
    _pad->popup.show();
    _pad->popup.showPopup();
    QCOMPARE(_pad->popup.itemTitles(), QStringList({sites, QStringLiteral("a.org")}));
    _pad->popup.hidePopup();
    // Another pop-up that opens is none of this list's business.
    store().bookmarkRoot()->addChild(ListStage::folder("b.org"));
    WayfoldSitePopupButton other;
    other.show();
    other.showPopup();
    other.hidePopup();
    QCOMPARE(_pad->popup.count(), 2);
}

void WayfoldScratchOutlineViewTest::popupKeepsTheFirstEntryForNoTitle()
{
    _pad->popup.setCurrentIndex(-1);
    QVERIFY(_pad->view.currentSitePopupTitle().isNull());
    _pad->view.refreshSitePopup();
    QCOMPARE(_pad->popup.title(), sites);
}

void WayfoldScratchOutlineViewTest::popupTitles()
{
    _pad->view.setSitePopupTitle(QStringLiteral("x.org"));
    QCOMPARE(_pad->view.currentSitePopupTitle(), QStringLiteral("x.org"));
    _pad->view.setSitePopupTitle(QStringLiteral(""));
    QCOMPARE(_pad->view.currentSitePopupTitle(), sites);
    _pad->view.setSitePopupTitle(QStringLiteral("x.org"));
    _pad->view.setSitePopupTitle(QString());
    QCOMPARE(_pad->view.currentSitePopupTitle(), sites);
    QCOMPARE(_pad->popup.count(), 2);
}

void WayfoldScratchOutlineViewTest::popupWithoutTheSelectedSite()
{
    const auto site = ListStage::folder("a.org", {ListStage::note("Of a")});
    _pad->showItems({site});
    _pad->show(QStringLiteral("a.org"));
    site->setTitle(QStringLiteral("b.org"));
    _pad->view.refreshSitePopup();
    QCOMPARE(_pad->popup.itemTitles(), QStringList({sites, QStringLiteral("b.org")}));
    QVERIFY(_pad->popup.title().isNull());
    // Without a title there is no site to show.
    _pad->source->handleSiteChange(&_pad->popup);
    QCOMPARE(ListStage::rows(_pad->view), QStringList{QStringLiteral("Of a")});
}

void WayfoldScratchOutlineViewTest::pickingASite()
{
    _pad->showItems({ListStage::folder("a.org", {ListStage::note("Of a")})});
    _pad->controller->setCurrentWebFrame(_pad->web->frame);
    _pad->popup.show();
    const auto pick = [this](const QString &title) {
        _pad->popup.showPopup();
        _pad->popup.setCurrentIndex(_pad->popup.findText(title));
        Q_EMIT _pad->popup.activated(_pad->popup.currentIndex());
        _pad->popup.hidePopup();
    };
    pick(QStringLiteral("a.org"));
    QCOMPARE(ListStage::rows(_pad->view), QStringList{QStringLiteral("Of a")});
    QCOMPARE(_pad->controller->currentWebFrame(), _pad->web->frame);
    pick(sites);
    QCOMPARE(ListStage::rows(_pad->view), QStringList{QStringLiteral("a.org")});
}

// The closed pop-up holds what was there when it was open last.
void WayfoldScratchOutlineViewTest::pickingASiteByItsLetters()
{
    _pad->showItems({ListStage::folder("a.org")});
    _pad->popup.show();
    _pad->popup.showPopup();
    _pad->popup.hidePopup();
    _pad->showItems({ListStage::folder("c.org"), ListStage::folder("b.org", {ListStage::note("Of b")})});
    QVERIFY(!_pad->popup.itemTitles().contains(QStringLiteral("b.org")));
    const QSignalSpy requested(&_pad->popup, &WayfoldSitePopupButton::siteChangeRequested);
    QTest::keyClick(&_pad->popup, Qt::Key_B);
    QCOMPARE(requested.count(), 1);
    QCOMPARE(_pad->view.currentSitePopupTitle(), QStringLiteral("b.org"));
    QCOMPARE(ListStage::rows(_pad->view), QStringList{QStringLiteral("Of b")});
}

void WayfoldScratchOutlineViewTest::dragOverThePopupShowsTheWholeTree()
{
    _pad->showItems({ListStage::folder("a.org", {ListStage::note("Of a")})});
    _pad->show(QStringLiteral("a.org"));
    QVERIFY(_pad->popup.acceptDrops());
    QMimeData data;
    data.setUrls({QUrl(QStringLiteral("http://a.org/"))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&_pad->popup, &enter);
    QVERIFY(!enter.isAccepted());
    QCOMPARE(_pad->view.currentSitePopupTitle(), sites);
    QCOMPARE(ListStage::rows(_pad->view), QStringList{QStringLiteral("a.org")});
}

// --- Keys -----------------------------------------------------------------------------------------------------------

namespace
{
QAction *mainMenuItem(const char *action)
{
    for (QAction *item : ListStage::store().wayfoldMenu()->actions()) {
        if (MenuItem::action(item) == QLatin1String(action))
            return item;
    }
    return nullptr;
}
} // namespace

// With the shortcut as it is set now.
void WayfoldScratchOutlineViewTest::emptySiteSaysHowToBegin()
{
    const auto text = [](const char *way) {
        return QStringLiteral(
                   "Nothing is kept for this site yet.\n\nKeep the page with %1, write a note with the button "
                   "below, or drop links, texts and files here.")
            .arg(QString::fromLatin1(way));
    };
    QAction *item = mainMenuItem("handleSaveCurrentURLRequest:");
    QVERIFY(item);
    item->setShortcut(QKeySequence(QStringLiteral("Ctrl+Alt+K")));
    _pad->show(QStringLiteral("new.org"));
    QCOMPARE(_pad->view.emptyListText(), text("Ctrl+Alt+K"));
    item->setShortcut(QKeySequence());
    QCOMPARE(_pad->view.emptyListText(), text("Wayfold > Save Current Page"));

    _pad->source->localRootFolder()->addChild(ListStage::note("Kept"));
    _pad->view.reloadData();
    QVERIFY(_pad->view.emptyListText().isNull());
    _pad->source->localRootFolder()->removeAllChildren();
    _pad->view.reloadData();
    QVERIFY(!_pad->view.emptyListText().isNull());
    _pad->view.setDelegate(nullptr);
    QVERIFY(_pad->view.emptyListText().isNull());
}

void WayfoldScratchOutlineViewTest::emptyTreeSaysHowToBegin()
{
    QAction *item = mainMenuItem("handleFocusOnCurrentSiteRequest:");
    QVERIFY(item);
    item->setShortcut(QKeySequence(QStringLiteral("Ctrl+Alt+K")));
    QCOMPARE(_pad->view.emptyListText(),
             QStringLiteral("Nothing is kept yet.\n\nLinks, notes and files stand here, each site's in a folder of its "
                            "own.\n\nTo begin, visit a site and go to its list with Ctrl+Alt+K."));
    store().bookmarkRoot()->addChild(ListStage::folder("a.org"));
    QVERIFY(_pad->view.emptyListText().isNull());
}

void WayfoldScratchOutlineViewTest::emptySiteSaysSoBelowItsSmartFolders()
{
    _pad->show(QStringLiteral("new.org"));
    QCOMPARE(_pad->view.numberOfRows(), 2);
    _pad->view.resize(250, 400);
    const int bottom = _pad->view.rectOfRow(1).bottom() + 1;
    const QRect below(0, bottom, _pad->view.viewport()->width(), _pad->view.viewport()->height() - bottom);
    const auto isBlank = [&] {
        const QImage shot = _pad->view.viewport()->grab(below).toImage();
        QImage blank(shot.size(), shot.format());
        blank.fill(_pad->view.palette().color(QPalette::Base));
        blank.setDevicePixelRatio(shot.devicePixelRatio());
        return shot == blank;
    };
    QVERIFY(!isBlank());
    _pad->source->localRootFolder()->addChildAtIndex(ListStage::note(QString()), 0);
    _pad->view.reloadItem(nullptr, true);
    QVERIFY(_pad->view.emptyListText().isNull());
}

void WayfoldScratchOutlineViewTest::keysEdit_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Return") << int(Qt::Key_Return) << int(Qt::NoModifier);
    QTest::newRow("Enter") << int(Qt::Key_Enter) << int(Qt::KeypadModifier);
    QTest::newRow("Shift and Return") << int(Qt::Key_Return) << int(Qt::ShiftModifier);
    QTest::newRow("Control and Return") << int(Qt::Key_Return) << int(Qt::ControlModifier);
}

void WayfoldScratchOutlineViewTest::keysEdit()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    const auto folder = ListStage::folder("Folder");
    _pad->showItems({folder});
    _pad->select({folder});
    _stage->dialogs.answer = [](KDRBookmark &item) {
        item.setTitle(QStringLiteral("Renamed"));
        return true;
    };
    QTest::keyClick(&_pad->view, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(ListStage::rows(_pad->view), QStringList{QStringLiteral("Renamed")});
}

void WayfoldScratchOutlineViewTest::keysDelete_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Delete") << int(Qt::Key_Delete) << int(Qt::NoModifier);
    QTest::newRow("Backspace") << int(Qt::Key_Backspace) << int(Qt::NoModifier);
    QTest::newRow("Control and Backspace") << int(Qt::Key_Backspace) << int(Qt::ControlModifier);
}

void WayfoldScratchOutlineViewTest::keysDelete()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    const auto note = ListStage::note("Note");
    _pad->showItems({note});
    _pad->select({note});
    bool asked = false;
    QTimer::singleShot(0, this, [&asked] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        asked = box != nullptr;
        if (box)
            QTest::keyClick(box, Qt::Key_Return);
    });
    QTest::keyClick(&_pad->view, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QVERIFY(asked);
    QCOMPARE(_pad->view.numberOfRows(), 0);
}

void WayfoldScratchOutlineViewTest::keysWithoutASelection()
{
    _pad->showItems({ListStage::note("Note")});
    QTest::keyClick(&_pad->view, Qt::Key_Return);
    QTest::keyClick(&_pad->view, Qt::Key_Delete);
    QCOMPARE(_stage->dialogs.opened, 0);
    QCOMPARE(_pad->view.numberOfRows(), 1);
}

// --- New items ------------------------------------------------------------------------------------------------------

void WayfoldScratchOutlineViewTest::newItemPlaces_data()
{
    QTest::addColumn<QString>("selected"); // the title; none: nothing is selected
    QTest::addColumn<bool>("open");        // whether the folder is
    QTest::addColumn<QStringList>("rows");
    const QString outer = QStringLiteral("Folder");
    const QString inner = QStringLiteral("-Inside");
    const QString after = QStringLiteral("After");
    const QString made = QStringLiteral("New");
    QTest::newRow("nothing selected") << QString() << false << QStringList{outer, after, made};
    QTest::newRow("closed folder") << QStringLiteral("Folder") << false << QStringList{outer, made, after};
    QTest::newRow("open folder") << QStringLiteral("Folder") << true
                                 << QStringList{outer, QStringLiteral("-New"), inner, after};
    QTest::newRow("open folder without contents")
        << QStringLiteral("After") << true << QStringList{outer, inner, after, QStringLiteral("-New")};
    QTest::newRow("item in a folder") << QStringLiteral("Inside") << true
                                      << QStringList{outer, inner, QStringLiteral("-New"), after};
    QTest::newRow("closed folder at the end") << QStringLiteral("After") << false << QStringList{outer, after, made};
}

void WayfoldScratchOutlineViewTest::newItemPlaces()
{
    QFETCH(QString, selected);
    QFETCH(bool, open);
    QFETCH(QStringList, rows);
    const auto inside = ListStage::note("Inside");
    const auto folder = ListStage::folder("Folder", {inside});
    const auto after = ListStage::folder("After");
    _stage->dialogs.answer = [](KDRBookmark &item) {
        item.setTitle(QStringLiteral("New"));
        return true;
    };
    _stage->dialogs.chosen = [] { return std::vector<KDRBookmarkPtr>{ListStage::person("New")}; };
    using Request = void (WayfoldScratchOutlineView::*)(QObject *);
    for (const Request request :
         {&WayfoldScratchOutlineView::handleNewNoteRequest, &WayfoldScratchOutlineView::handleNewEmailRequest,
          &WayfoldScratchOutlineView::handleNewPersonRequest}) {
        folder->removeAllChildren();
        folder->addChild(inside);
        after->removeAllChildren();
        _pad->showItems({folder, after});
        for (const WayfoldBookmarkFolderPtr &each : {folder, after}) {
            if (open)
                _pad->view.expandItem(each);
            else
                _pad->view.collapseItem(each);
        }
        _pad->view.deselectAll();
        for (const KDRBookmarkPtr &item : {KDRBookmarkPtr(inside), KDRBookmarkPtr(folder), KDRBookmarkPtr(after)}) {
            if (item->title() == selected)
                _pad->view.selectItem(item);
        }
        (_pad->view.*request)(nullptr);
        QCOMPARE(ListStage::rows(_pad->view), rows);
        QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList{QStringLiteral("New")});
    }
}

void WayfoldScratchOutlineViewTest::newItemIsSelectedAndSaved()
{
    Scratchpad other(*_stage);
    _stage->removeSavedFile();
    other.drawer.reloadCount = 0;
    _stage->dialogs.answer = [](KDRBookmark &item) {
        item.setTitle(QStringLiteral("Unforgettable"));
        item.setValue(QStringLiteral("words"));
        return true;
    };
    _pad->view.handleNewNoteRequest(nullptr);
    QCOMPARE(_pad->view.selectedItem()->title(), QStringLiteral("Unforgettable"));
    QVERIFY(_stage->savedFile().contains("Unforgettable"));
    QCOMPARE(other.drawer.reloadCount, 0);
    QCOMPARE(ListStage::rows(other.view), QStringList{QStringLiteral("Unforgettable")});
}

void WayfoldScratchOutlineViewTest::cancelledNewItem()
{
    _stage->removeSavedFile();
    _pad->view.handleNewSubFolderRequest(nullptr);
    _pad->view.handleNewNoteRequest(nullptr);
    _pad->view.handleNewEmailRequest(nullptr);
    _pad->view.handleNewPersonRequest(nullptr);
    QCOMPARE(_stage->dialogs.opened, 4);
    QCOMPARE(store().bookmarkRoot()->childCount(), 0U);
    QVERIFY(_stage->savedFile().isEmpty());
}

// In the order in which they were chosen, with one saving.
void WayfoldScratchOutlineViewTest::severalNewPeople()
{
    Scratchpad other(*_stage);
    const auto before = ListStage::note("Before");
    const auto after = ListStage::note("After");
    _pad->showItems({before, after});
    _pad->select({before});
    _stage->removeSavedFile();
    other.drawer.reloadCount = 0;
    _stage->dialogs.chosen = [] {
        return std::vector<KDRBookmarkPtr>{ListStage::person("Zoe"), ListStage::group("Friends"),
                                           ListStage::person("Ann")};
    };
    _pad->view.handleNewPersonRequest(nullptr);
    QCOMPARE(ListStage::rows(_pad->view), QStringList({"Before", "Zoe", "Friends", "Ann", "After"}));
    QCOMPARE(ListStage::titles(_pad->view.selectedItemList()), QStringList({"Zoe", "Friends", "Ann"}));
    QCOMPARE(ListStage::rows(other.view), QStringList({"Before", "Zoe", "Friends", "Ann", "After"}));
    QCOMPARE(other.drawer.reloadCount, 0);
    QVERIFY(!_stage->savedFile().isEmpty());
}

// What was chosen for a site that is only shown makes it one of the user's.
void WayfoldScratchOutlineViewTest::newPeopleOfASite()
{
    _pad->show(QStringLiteral("first.org"));
    _stage->dialogs.chosen = [] {
        return std::vector<KDRBookmarkPtr>{ListStage::person("Zoe"), ListStage::person("Ann")};
    };
    _pad->view.handleNewPersonRequest(nullptr);
    const auto site = WayfoldBookmarkFolder::fromItem(store().bookmarkRoot()->childWithTitle("first.org"));
    QVERIFY(site);
    QVERIFY(site->childWithTitle(QStringLiteral("Zoe")) && site->childWithTitle(QStringLiteral("Ann")));
}

void WayfoldScratchOutlineViewTest::newFolderInTheRootGetsSmartFolders()
{
    _stage->dialogs.answer = [](KDRBookmark &item) {
        item.setTitle(QStringLiteral("x.org"));
        return true;
    };
    _pad->view.handleNewSubFolderRequest(nullptr);
    const auto made = WayfoldBookmarkFolder::fromItem(_pad->view.selectedItem());
    QCOMPARE(ListStage::titles(made),
             QStringList({QStringLiteral("Related Bookmarks"), QStringLiteral("Related History")}));
    // A folder deeper down gets none.
    _pad->view.expandItem(made);
    _pad->view.handleNewSubFolderRequest(nullptr);
    const auto deeper = WayfoldBookmarkFolder::fromItem(_pad->view.selectedItem());
    QVERIFY(deeper->parent() == made);
    QCOMPARE(deeper->childCount(), 0U);
    // The root of a site's list is the site's own folder.
    _pad->show(QStringLiteral("y.org"));
    _pad->view.handleNewSubFolderRequest(nullptr);
    const auto inSite = WayfoldBookmarkFolder::fromItem(_pad->view.selectedItem());
    QVERIFY(inSite->parent() == _pad->source->localRootFolder());
    QCOMPARE(inSite->childCount(), 2U);
}

// A page may load, and another site be shown, while the dialog is open; what was typed goes where it was meant to go.
void WayfoldScratchOutlineViewTest::newItemOfASiteThatIsLeftMeanwhile()
{
    _pad->show(QStringLiteral("first.org"));
    _stage->dialogs.answer = [this](KDRBookmark &item) {
        item.setTitle(QStringLiteral("For the first"));
        _pad->show(QStringLiteral("second.org"));
        return true;
    };
    _pad->view.handleNewNoteRequest(nullptr);
    const auto first = WayfoldBookmarkFolder::fromItem(store().bookmarkRoot()->childWithTitle("first.org"));
    QVERIFY(first);
    QVERIFY(first->childWithTitle(QStringLiteral("For the first")));
    QVERIFY(_stage->savedFile().contains("For the first"));
    QCOMPARE(_pad->view.currentSitePopupTitle(), QStringLiteral("second.org"));
}

void WayfoldScratchOutlineViewTest::cancelledNewItemOfASiteThatIsLeftMeanwhile()
{
    _pad->show(QStringLiteral("first.org"));
    _stage->dialogs.answer = [this](KDRBookmark &) {
        _pad->show(QStringLiteral("second.org"));
        return false;
    };
    _pad->view.handleNewNoteRequest(nullptr);
    QCOMPARE(_stage->dialogs.opened, 1);
    _pad->view.refreshSitePopup();
    QCOMPARE(_pad->popup.itemTitles(), QStringList({sites, QStringLiteral("second.org")}));
    // One that is still shown stays.
    _stage->dialogs.answer = {};
    _pad->view.handleNewNoteRequest(nullptr);
    _pad->view.refreshSitePopup();
    QVERIFY(_pad->popup.itemTitles().contains(QStringLiteral("second.org")));
}

void WayfoldScratchOutlineViewTest::newItemBesideAnOpenSmartFolder()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle(QStringLiteral("Smart"));
    smart->ensureUpToDate();
    smart->addChild(ListStage::link("Found"));
    _pad->showItems({ListStage::note("First"), smart, ListStage::note("Last")});
    _pad->view.expandItem(smart);
    _pad->select({smart});
    _stage->dialogs.answer = [](KDRBookmark &item) {
        item.setTitle(QStringLiteral("New"));
        return true;
    };
    _pad->view.handleNewNoteRequest(nullptr);
    QCOMPARE(ListStage::titles(store().bookmarkRoot()), QStringList({QStringLiteral("First"), QStringLiteral("Smart"),
                                                                     QStringLiteral("New"), QStringLiteral("Last")}));
}

// An item that lies too deep would keep the tree from being saved.
void WayfoldScratchOutlineViewTest::noRoomForNewItems()
{
    const auto deepest = ListStage::folder("deepest");
    WayfoldBookmarkFolderPtr outermost = deepest;
    for (int i = 1; i < 511; ++i)
        outermost = ListStage::folder("f", {outermost});
    _pad->showItems({outermost});
    for (WayfoldBookmarkFolderPtr each = outermost; each; each = WayfoldBookmarkFolder::fromItem(each->lastChild()))
        _pad->view.expandItem(each);
    QMenu menu;
    QAction *item = addItem(menu, "handleNewNoteRequest:");
    _pad->select({deepest->parent()});
    QVERIFY(_pad->view.validateMenuItem(item));
    QVERIFY(_pad->newNoteButton.isEnabled());
    _pad->select({deepest});
    QVERIFY(!_pad->view.validateMenuItem(item));
    QVERIFY(!_pad->newNoteButton.isEnabled());
    _pad->view.handleNewNoteRequest(nullptr);
    QCOMPARE(_stage->dialogs.opened, 0);
}

void WayfoldScratchOutlineViewTest::nothingIsPutIntoASmartFolder()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle(QStringLiteral("Smart"));
    smart->ensureUpToDate();
    smart->addChild(ListStage::link("Found"));
    _pad->showItems({smart});
    _pad->view.expandItem(smart);
    _pad->select({smart->childAtIndex(0)});
    _stage->dialogs.answer = [](KDRBookmark &) { return true; };
    _pad->view.handleNewNoteRequest(nullptr);
    QCOMPARE(_stage->dialogs.opened, 0);
    QCOMPARE(smart->childCount(), 1U);
}

// --- Mail -----------------------------------------------------------------------------------------------------------

void WayfoldScratchOutlineViewTest::mailAddress_data()
{
    QTest::addColumn<QStringList>("links");
    QTest::addColumn<QString>("address");
    QTest::newRow("one") << QStringList{QStringLiteral("mailto:ann")} << QStringLiteral("mailto:ann");
    QTest::newRow("two") << QStringList{QStringLiteral("mailto:ann"), QStringLiteral("mailto:bob")}
                         << QStringLiteral("mailto:ann,bob");
    QTest::newRow("an address once") << QStringList{QStringLiteral("mailto:ann,bob?cc=ann"),
                                                    QStringLiteral("mailto:bob?bcc=cy,ann")}
                                     << QStringLiteral("mailto:ann,bob?bcc=cy");
    QTest::newRow("all parts") << QStringList{QStringLiteral("mailto:a?cc=b&bcc=c&subject=Hi%20there")}
                               << QStringLiteral("mailto:a?cc=b&bcc=c&subject=Hi%20there");
    QTest::newRow("first subject") << QStringList{QStringLiteral("mailto:a"), QStringLiteral("mailto:b?subject=One"),
                                                  QStringLiteral("mailto:c?subject=Two")}
                                   << QStringLiteral("mailto:a,b,c?subject=One");
    QTest::newRow("subject after copies")
        << QStringList{QStringLiteral("mailto:a?cc=b&subject=S"), QStringLiteral("mailto:c")}
        << QStringLiteral("mailto:a,c?cc=b&subject=S");
    QTest::newRow("blanks at the end") << QStringList{QStringLiteral("mailto:a?subject=Hi%20%0A")}
                                       << QStringLiteral("mailto:a?subject=Hi");
    QTest::newRow("signs of addresses") << QStringList{QStringLiteral("mailto:a?subject=%231%20%25")}
                                        << QStringLiteral("mailto:a?subject=%231%20%25");
    QTest::newRow("signs within the parts")
        << QStringList{QStringLiteral("mailto:Tom%20%26%20Jerry?subject=Tom%20%26%20Jerry%3D2%3F")}
        << QStringLiteral("mailto:Tom%20%26%20Jerry?subject=Tom%20%26%20Jerry%3D2%3F");
    QTest::newRow("a line each") << QStringList{QStringLiteral("mailto:a%0Ab%0D%0A?cc=c%0Aa%0Ad")}
                                 << QStringLiteral("mailto:a,b?cc=c,d");
    QTest::newRow("nobody") << QStringList{QStringLiteral("mailto:")} << QString();
    QTest::newRow("not only mails") << QStringList{QStringLiteral("http://a/"), QStringLiteral("mailto:a")}
                                    << QStringLiteral("mailto:a");
}

void WayfoldScratchOutlineViewTest::mailAddress()
{
    QFETCH(QStringList, links);
    QFETCH(QString, address);
    std::vector<KDRBookmarkPtr> items;
    for (const QString &link : links)
        items.push_back(ListStage::mail(QStringLiteral("Mail"), link));
    _pad->showItems(items);
    _pad->select(items);
    QCOMPARE(_pad->view.mailURL().absoluteString(), address);
}

namespace
{
using MailItems = std::vector<KDRBookmarkPtr>;

KDRBookmarkPtr groupWithAGroup(const QString &title, const WayfoldBookmarkABPersonPtr &member,
                               const WayfoldBookmarkABGroupPtr &subgroup)
{
    const QString id = QStringLiteral("group ") + title;
    ListStage::contacts().set(MemoryContacts::group(id, title, {subgroup->uuid(), member->uuid()}));
    return WayfoldBookmarkABGroup::bookmarkWithID(id);
}
} // namespace

void WayfoldScratchOutlineViewTest::mailToPeople_data()
{
    QTest::addColumn<MailItems>("items");
    QTest::addColumn<QString>("address");
    const auto ann = ListStage::person("Ann", {"ann@a.org", "ann@home.org"});
    const auto bob = ListStage::person("Bob", {"bob@a.org"});
    const auto twin = ListStage::person("Ann's twin", {"ann@a.org"});
    const auto silent = ListStage::person("Silent");
    const auto blank = ListStage::person("Blank", {""});
    const auto friends = ListStage::group("Friends", {bob, silent, ann});
    const auto link = ListStage::mail("Mail", "mailto:a?cc=b&subject=S");
    QTest::newRow("person") << MailItems{ann} << "mailto:ann@a.org";
    QTest::newRow("two people") << MailItems{bob, ann} << "mailto:bob@a.org,ann@a.org";
    QTest::newRow("with one address") << MailItems{ann, twin} << "mailto:ann@a.org";
    QTest::newRow("no address") << MailItems{silent, blank} << QString();
    QTest::newRow("one without") << MailItems{silent, bob} << "mailto:bob@a.org";
    QTest::newRow("organization") << MailItems{ListStage::organization("Kettles")} << QString();
    QTest::newRow("nobody's card") << MailItems{WayfoldBookmarkABPerson::bookmarkWithID("gone")} << QString();
    QTest::newRow("group") << MailItems{friends} << "mailto:ann@a.org,bob@a.org"; // by title
    QTest::newRow("group and its member") << MailItems{bob, friends} << "mailto:bob@a.org,ann@a.org";
    QTest::newRow("group in a group") << MailItems{groupWithAGroup("Outer", ListStage::person("Zoe", {"zoe@a.org"}),
                                                                   friends)}
                                      << "mailto:ann@a.org,bob@a.org,zoe@a.org";
    QTest::newRow("empty group") << MailItems{ListStage::group("Empty")} << QString();
    // As the first list has it, an address is in no other.
    QTest::newRow("link before person") << MailItems{link, ListStage::person("C", {"c"})}
                                        << "mailto:a,c?cc=b&subject=S";
    QTest::newRow("copy before person") << MailItems{link, ListStage::person("B", {"b"})} << "mailto:a?cc=b&subject=S";
    QTest::newRow("person before copy") << MailItems{ListStage::person("B", {"b"}), link} << "mailto:b,a?subject=S";
    QTest::newRow("not only people") << MailItems{ListStage::note("Note"), ann, ListStage::folder("Folder")}
                                     << "mailto:ann@a.org";
}

void WayfoldScratchOutlineViewTest::mailToPeople()
{
    QFETCH(MailItems, items);
    QFETCH(QString, address);
    _pad->showItems(items);
    _pad->select(items);
    QCOMPARE(_pad->view.mailURL().absoluteString(), address);
    _pad->view.handleSendEmailRequest(nullptr);
    QCOMPARE(_stage->openedURLs, address.isNull() ? QStringList() : QStringList{address});
}

// A group far down in the list was never painted, nor looked into.
void WayfoldScratchOutlineViewTest::mailToAGroupThatNobodyHasSeen()
{
    const auto friends = ListStage::group("Friends", {ListStage::person("Ann", {"ann@a.org"})});
    QVERIFY(!friends->isLoaded());
    _pad->view.hide();
    _pad->showItems({friends});
    _pad->select({friends});
    QCOMPARE(_pad->view.mailURL().absoluteString(), QStringLiteral("mailto:ann@a.org"));
}

void WayfoldScratchOutlineViewTest::mailIsHandedToTheDesktop()
{
    const auto mail = ListStage::mail("Mail", "mailto:ann?subject=Gr%C3%BC%C3%9Fe");
    _pad->showItems({mail});
    _pad->view.handleSendEmailRequest(nullptr);
    QVERIFY(_stage->openedURLs.isEmpty());
    _pad->select({mail});
    _pad->view.handleSendEmailRequest(nullptr);
    QCOMPARE(_stage->openedURLs, QStringList{QStringLiteral("mailto:ann?subject=Gr%C3%BC%C3%9Fe")});
}

// By the word of another parser.
void WayfoldScratchOutlineViewTest::mailIsHandedOverWhole()
{
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    QVERIFY(!python.isEmpty());
    const QString subject = QStringLiteral("Tom & Jerry? 100% = 50%+#1; \u00e9\U0001f600");
    const auto escaped = [](const QString &text) { return QString::fromLatin1(QUrl::toPercentEncoding(text)); };
    const QString name = QStringLiteral("\"Tom & Jerry = 2?\" <t+j@x.example>");
    const auto first = ListStage::mail(QStringLiteral("One"),
                                       QStringLiteral("mailto:") + escaped(name) +
                                           QStringLiteral("%0Abob@x.example?cc=cy%0Adan&subject=") + escaped(subject));
    const auto second = ListStage::mail(QStringLiteral("Two"), QStringLiteral("mailto:eve?bcc=fay,gus&subject=other"));
    _pad->showItems({first, second});
    _pad->select({first, second});
    _pad->view.handleSendEmailRequest(nullptr);
    QCOMPARE(_stage->openedURLs.size(), 1);
    QProcess process;
    process.start(python, {QStringLiteral("-c"),
                           QStringLiteral("import json, sys\n"
                                          "from urllib.parse import urlsplit, parse_qs, unquote\n"
                                          "mail = urlsplit(sys.argv[1])\n"
                                          "parts = {k: v for k, v in parse_qs(mail.query).items()}\n"
                                          "parts['to'] = [unquote(to) for to in mail.path.split(',')]\n"
                                          "print(json.dumps(parts))\n"),
                           _stage->openedURLs.constFirst()});
    QVERIFY(process.waitForFinished());
    QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());
    const QVariantMap parts = QJsonDocument::fromJson(process.readAllStandardOutput()).toVariant().toMap();
    QCOMPARE(parts.value(QStringLiteral("to")).toStringList(),
             QStringList({name, QStringLiteral("bob@x.example"), QStringLiteral("eve")}));
    QCOMPARE(parts.value(QStringLiteral("cc")).toStringList(), QStringList{QStringLiteral("cy,dan")});
    QCOMPARE(parts.value(QStringLiteral("bcc")).toStringList(), QStringList{QStringLiteral("fay,gus")});
    QCOMPARE(parts.value(QStringLiteral("subject")).toStringList(), QStringList{subject});
}

// --- Menu -----------------------------------------------------------------------------------------------------------

void WayfoldScratchOutlineViewTest::editItem_data()
{
    QTest::addColumn<std::vector<KDRBookmarkPtr>>("items");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("enabled");
    using Items = std::vector<KDRBookmarkPtr>;
    const QString edit = QStringLiteral("Edit Item...");
    QTest::newRow("nothing") << Items{} << edit << false;
    QTest::newRow("note") << Items{ListStage::note("a")} << edit << true;
    QTest::newRow("two notes") << Items{ListStage::note("a"), ListStage::note("b")} << edit << false;
    QTest::newRow("person") << Items{ListStage::person("a")} << QStringLiteral("Edit Item in Address Book") << true;
    QTest::newRow("group") << Items{ListStage::group("a")} << edit << true;
    QTest::newRow("two people") << Items{ListStage::person("a"), ListStage::person("b")} << edit << false;
    QTest::newRow("smart folder") << Items{WayfoldAutoFolder::bookmarkWithTitle("a")} << edit << false;
}

void WayfoldScratchOutlineViewTest::editItem()
{
    QFETCH(std::vector<KDRBookmarkPtr>, items);
    QFETCH(QString, title);
    QFETCH(bool, enabled);
    _pad->showItems(items);
    _pad->select(items);
    QMenu menu;
    QAction *item = addItem(menu, "handleItemEditRequest:");
    QCOMPARE(_pad->view.validateMenuItem(item), enabled);
    QCOMPARE(item->text(), title);
}

void WayfoldScratchOutlineViewTest::deleteItem_data()
{
    QTest::addColumn<std::vector<KDRBookmarkPtr>>("items");
    QTest::addColumn<bool>("confirm");
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("enabled");
    using Items = std::vector<KDRBookmarkPtr>;
    const Items one = {ListStage::note("a")};
    const Items two = {ListStage::note("a"), ListStage::note("b")};
    const KDRBookmarkPtr smart = WayfoldAutoFolder::bookmarkWithTitle("Smart");
    QTest::newRow("none") << Items() << false << QStringLiteral("Delete Item") << false;
    QTest::newRow("one") << one << false << QStringLiteral("Delete Item") << true;
    QTest::newRow("one with question") << one << true << QStringLiteral("Delete Item...") << true;
    QTest::newRow("two") << two << false << QStringLiteral("Delete Items") << true;
    QTest::newRow("two with question") << two << true << QStringLiteral("Delete Items...") << true;
    QTest::newRow("smart folder") << Items{smart} << false << QStringLiteral("Delete Item") << false;
    QTest::newRow("note and smart folder")
        << Items{one[0], smart} << true << QStringLiteral("Delete Items...") << false;
}

void WayfoldScratchOutlineViewTest::deleteItem()
{
    QFETCH(std::vector<KDRBookmarkPtr>, items);
    QFETCH(bool, confirm);
    QFETCH(QString, title);
    QFETCH(bool, enabled);
    ListStage::settings().setConfirmItemDelete(confirm);
    _pad->showItems(items);
    _pad->select(items);
    QMenu menu;
    QAction *item = addItem(menu, "handleDeleteItemRequest:");
    QCOMPARE(_pad->view.validateMenuItem(item), enabled);
    QCOMPARE(item->text(), title);
}

void WayfoldScratchOutlineViewTest::newItems_data()
{
    QTest::addColumn<QString>("selection");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("nothing") << QString() << true;
    QTest::newRow("note") << QStringLiteral("Note") << true;
    QTest::newRow("closed smart folder") << QStringLiteral("Smart") << true; // beside it
    QTest::newRow("in a smart folder") << QStringLiteral("Found") << false;
    QTest::newRow("two") << QStringLiteral("Note,Smart") << false;
}

void WayfoldScratchOutlineViewTest::newItems()
{
    QFETCH(QString, selection);
    QFETCH(bool, enabled);
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle(QStringLiteral("Smart"));
    smart->ensureUpToDate();
    const auto found = ListStage::link("Found");
    smart->addChild(found);
    const auto note = ListStage::note("Note");
    _pad->showItems({note, smart});
    _pad->view.expandItem(smart);
    _pad->view.deselectAll();
    for (const KDRBookmarkPtr &item : std::vector<KDRBookmarkPtr>{note, smart, found}) {
        if (selection.split(u',').contains(item->title()))
            _pad->view.selectItem(item);
    }
    QMenu menu;
    for (const char *action :
         {"handleNewSubFolderRequest:", "handleNewNoteRequest:", "handleNewEmailRequest:", "handleNewPersonRequest:"}) {
        QAction *item = addItem(menu, action);
        QCOMPARE(_pad->view.validateMenuItem(item), enabled);
        QCOMPARE(item->text(), QString::fromLatin1(action)); // unchanged
    }
    QCOMPARE(_pad->newNoteButton.isEnabled(), enabled);
}

void WayfoldScratchOutlineViewTest::sendEmailItem()
{
    const auto mail = ListStage::mail("Mail");
    const auto person = ListStage::person("Person");
    const auto group = ListStage::group("Group");
    const auto note = ListStage::note("Note");
    _pad->showItems({mail, person, group, note});
    QMenu menu;
    QAction *item = addItem(menu, "handleSendEmailRequest:");
    QVERIFY(!_pad->view.validateMenuItem(item));
    _pad->select({mail, person, group});
    QVERIFY(_pad->view.validateMenuItem(item));
    _pad->select({mail, note});
    QVERIFY(!_pad->view.validateMenuItem(item));
}

void WayfoldScratchOutlineViewTest::inheritedItems()
{
    const auto note = ListStage::note("Note");
    _pad->showItems({note});
    _pad->select({note});
    QMenu menu;
    QAction *open = addItem(menu, "handleResolveBookmarkRequest:");
    QVERIFY(_pad->view.validateMenuItem(open));
    QCOMPARE(open->text(), QStringLiteral("Open Item"));
    QVERIFY(_pad->view.validateMenuItem(addItem(menu, "somethingElse:")));
}

void WayfoldScratchOutlineViewTest::menuItemsAct()
{
    ListStage::settings().setConfirmItemDelete(false);
    const auto note = ListStage::note("Note");
    _pad->showItems({note});
    _pad->select({note});
    QMenu menu;
    _pad->view.performMenuItem(addItem(menu, "handleItemEditRequest:"));
    QCOMPARE(_stage->dialogs.opened, 1);
    _pad->view.performMenuItem(addItem(menu, "handleDeleteItemRequest:"));
    QCOMPARE(_pad->view.numberOfRows(), 0);
    _stage->dialogs.answer = [](KDRBookmark &) { return true; };
    _pad->view.performMenuItem(addItem(menu, "handleNewSubFolderRequest:"));
    _pad->view.deselectAll();
    _pad->view.performMenuItem(addItem(menu, "handleNewNoteRequest:"));
    _pad->view.performMenuItem(addItem(menu, "handleNewEmailRequest:"));
    _stage->dialogs.chosen = [] { return std::vector<KDRBookmarkPtr>{ListStage::person("Zoe")}; };
    _pad->view.performMenuItem(addItem(menu, "handleNewPersonRequest:"));
    QCOMPARE(ListStage::rows(_pad->view),
             QStringList({QStringLiteral("Untitled Folder"), QStringLiteral("Untitled Note"),
                          QStringLiteral("New Email Link"), QStringLiteral("Zoe")}));
}

QTEST_MAIN(WayfoldScratchOutlineViewTest)
#include "WayfoldScratchOutlineViewTest.moc"
