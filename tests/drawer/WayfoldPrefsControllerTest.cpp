#include "drawer/WayfoldPrefsController.h"

#include "core/ContactSource.h"
#include "core/Notifications.h"
#include "core/settings/WayfoldToolkit.h"
#include "drawer/FontPanel.h"
#include "drawer/WayfoldShortcutPanel.h"
#include "lists/WayfoldBookmarkOutlineView.h"
#include "lists/WayfoldHistoryOutlineView.h"
#include "platform/base/StringRules.h"
#include "platform/widgets/MenuItem.h"
#include "tests/drawer/DrawerStage.h"
#include "tests/support/MemoryContacts.h"
#include "tests/support/OtherProcess.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabBar>
#include <QTextDocument>
#include <QToolTip>
#include <QTreeView>

namespace
{
using Settings = WayfoldDefaults;

// A check box that shows a setting and stores it.
struct CheckBox
{
    const char *name;
    bool (Settings::*value)() const;
    void (Settings::*setValue)(bool);
};

const CheckBox checkBoxes[] = {
    {"autoFocusField", &Settings::autoFocusOnSiteChange, &Settings::setAutoFocusOnSiteChange},
    {"showIconsField", &Settings::showBookmarkIcons, &Settings::setShowBookmarkIcons},
    {"closeOnUnknownField", &Settings::closeDrawerForUnknownSite, &Settings::setCloseDrawerForUnknownSite},
    {"confirmDeletesField", &Settings::confirmItemDelete, &Settings::setConfirmItemDelete},
    {"createAutoFoldersField", &Settings::createAutoFolders, &Settings::setCreateAutoFolders},
    {"showFavIconsField", &Settings::showFavicons, &Settings::setShowFavicons},
};

constexpr auto autoOpening = "autoOpenDrawerActions";
constexpr auto grouping = "historyGroupingOptions";
constexpr auto firstTab = "defaultTabView";

// The notifications of one name, as they arrive.
class Arrivals
{
public:
    explicit Arrivals(const QString &name)
    {
        NotificationCenter::defaultCenter().addObserver(
            this, [this](const Notification &notification) { objects.append(notification.object); }, name);
    }
    ~Arrivals() { NotificationCenter::defaultCenter().removeObserver(this); }

    QList<const void *> objects;
};

// Counts how often a widget is painted.
class Paintings : public QObject
{
public:
    explicit Paintings(QWidget *widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }

    int count = 0;
};
} // namespace

// The preferences as their user has them: opened by the menu's command, worked by clicks and keys.
class WayfoldPrefsControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    // What is shown, and what a click stores
    void checkBoxShowsItsSetting_data();
    void checkBoxShowsItsSetting();
    void checkBoxStoresItsSetting_data();
    void checkBoxStoresItsSetting();
    void autoOpeningIsShown_data();
    void autoOpeningIsShown();
    void autoOpeningIsStored_data();
    void autoOpeningIsStored();
    void groupingIsShown_data();
    void groupingIsShown();
    void groupingIsStored_data();
    void groupingIsStored();
    void groupingThatIsWrittenOtherwiseIsReplaced();
    void groupingIsWrittenInEveryCase();
    void firstTabIsShown_data();
    void firstTabIsShown();
    void firstTabIsStored_data();
    void firstTabIsStored();
    void helpTexts_data();
    void helpTexts();

    // Rules between controls
    void closingIsEnabledWithOpeningOnKnownSites_data();
    void closingIsEnabledWithOpeningOnKnownSites();
    void closingGoesWithOpeningOnKnownSites_data();
    void closingGoesWithOpeningOnKnownSites();
    void closingStaysWithOpeningOnKnownSites();
    void siteIconsAreEnabledWithIcons();
    void siteIconsGoWithIcons();
    void iconsChangeOpenDrawers_data();
    void iconsChangeOpenDrawers();
    void smartFoldersComeAndGo();

    // Contacts
    void contactSourceIsShown_data();
    void contactSourceIsShown();
    void contactSourceIsStoredAndUsed_data();
    void contactSourceIsStoredAndUsed();
    void contactFolderIsStoredAndUsed();
    void contactFolderOfBlanksIsTheUsualOne();
    void contactFolderIsChosen();
    void contactFolderThatIsNotChosenStays();
    void contactsInUse_data();
    void contactsInUse();
    void contactsInUseFollowTheStore();
    void contactsWithoutSource();

    // Font
    void fontPanelShowsTheFont();
    void fontPanelProposesWhatIsShownForAnUnknownFont();
    void chosenFontIsStoredAndTold();
    void fontThatCannotBeNamedChangesNothing();
    void fontPanelComesToTheFrontAgain();
    void fontPanelOpensTheClosedDrawer();
    void openDrawerStaysOpen();
    void drawerThatWasClosedIsClosedAgain();
    void drawerThatWasClosingIsClosedAgain();
    void fontPanelWithoutDrawer();

    // Shortcuts
    void tableHasARowForEachItem();
    void otherColumnsAreEmpty();
    void titlesAreClean();
    void tableFollowsTheItems();
    void itemsAreThoseOfTheOpening();
    void itemThatHasGoneIsAnEmptyRow();
    void doubleClickEdits();
    void keysEdit_data();
    void keysEdit();
    void separatorIsNotEdited();
    void noRowIsNotEdited();
    void acceptedShortcutIsShown();
    void cancelledShortcutIsNotShown();

    // The window
    void storeKnowsThatItShows();
    void opensInTheMiddleWithTheKeyboard();
    void closesWhenAnotherWindowComesToTheFront();
    void staysForItsOwnWindows();
    void staysForTheFrontDrawer();
    void staysWhenNoWindowHasTheKeyboard();
    void closesAnEarlierOne();
    void closesByKey_data();
    void closesByKey();
    void closingCancelsTheSheet();
    void closingClosesTheFontPanel();
    void windowOfTheDrawerMayGo();
    void missingInterfaceFile();

    void settingsOfAnotherProcessAreShown();

    // For everybody
    void controlsAreNamed();
    void pagesAreWorkedByKeyboard_data();
    void pagesAreWorkedByKeyboard();
    void shortcutLettersAreUnique_data();
    void shortcutLettersAreUnique();
    void nothingIsCutOff_data();
    void nothingIsCutOff();
    void longToolTipsAreWrapped();

private:
    static Settings &settings() { return DrawerStage::settings(); }
    static KDRDrawerBundle &store() { return DrawerStage::store(); }
    static QAction *commandItem(const QString &action);
    static QList<QWidget *> preferences();
    // Chooses the menu's command; the new window.
    static QWidget *open();
    void close();

    template <class Widget>
    Widget *control(const char *name) const
    {
        return _window->findChild<Widget *>(QString::fromLatin1(name));
    }
    QAbstractButton *button(const char *name) const { return control<QAbstractButton>(name); }
    QAbstractButton *cell(const char *matrix, int tag) const { return control<QButtonGroup>(matrix)->button(tag); }
    int selectedTag(const char *matrix) const { return control<QButtonGroup>(matrix)->checkedId(); }
    // Brings the control's page to the front.
    void show(QWidget *control) const;
    void click(QAbstractButton *button) const;
    void click(const char *name) const { click(button(name)); }

    QTreeView *table() const { return control<QTreeView>("menuItemTableView"); }
    QModelIndex tableIndex(int row, int column) const { return table()->model()->index(row, column); }
    QString tableText(int row, int column) const { return tableIndex(row, column).data().toString(); }
    static int rowOf(const QAction *item) { return int(store().wayfoldMenu()->actions().indexOf(item)); }
    void doubleClick(int row) const;
    // Presses it in the row that the keyboard is made to stand in.
    void pressInRow(const QModelIndex &row, Qt::Key key) const;
    WayfoldShortcutPanel *sheet() const { return _window->findChild<WayfoldShortcutPanel *>(); }
    FontPanel *openFontPanel() const;
    // Chooses the entry of one of the panel's lists.
    static void choose(FontPanel *panel, int list, const QString &entry);

    // Contacts that lie nowhere: every store that is made is one of these.
    class Contacts : public ContactStore
    {
    public:
        explicit Contacts(const QString &place, State state) : place(place), _state(state) {}
        State state() const override { return _state; }
        void add(int people)
        {
            std::vector<ContactRecordPtr> records;
            for (int i = 0; i < people; ++i)
                records.push_back(
                    std::make_shared<ContactRecord>(MemoryContacts::person(QString::number(i), "A", "B")));
            put(records);
        }
        const QString place;

    private:
        State _state;
    };
    void startContacts();
    static Contacts *contacts() { return dynamic_cast<Contacts *>(&ContactStore::sharedAddressBook()); }
    QComboBox *sourceField() const { return control<QComboBox>("contactSourceField"); }
    QLineEdit *folderField() const { return control<QLineEdit>("contactFolderField"); }
    QString contactsText() const { return control<QLabel>("contactsInUseField")->text(); }

    std::optional<DrawerStage> _stage;
    std::shared_ptr<FakeHostWindow> _browser;
    QPointer<QWidget> _window;
    std::optional<ContactSource> _source;
    ContactStore::State _stateOfContacts = ContactStore::Ready;
    int _people = 0;
    std::function<void(bool)> _answerSearch;
};

void WayfoldPrefsControllerTest::init()
{
    _stage.emplace();
    _browser = _stage->openWindow();
}

void WayfoldPrefsControllerTest::cleanup()
{
    for (QWidget *window : preferences())
        window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    _browser.reset();
    _source.reset();
    _stateOfContacts = ContactStore::Ready;
    _people = 0;
    _stage.reset();
    QLocale::setDefault(QLocale::c());
}

QAction *WayfoldPrefsControllerTest::commandItem(const QString &action)
{
    for (QAction *item : store().wayfoldMenu()->actions()) {
        if (MenuItem::action(item) == action)
            return item;
    }
    return nullptr;
}

QList<QWidget *> WayfoldPrefsControllerTest::preferences()
{
    QList<QWidget *> windows;
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->objectName() == u"prefsWindow")
            windows.append(window);
    }
    return windows;
}

QWidget *WayfoldPrefsControllerTest::open()
{
    const QList<QWidget *> before = preferences();
    WayfoldPrefsController::displayPrefsWindow();
    for (QWidget *window : preferences()) {
        if (!before.contains(window))
            return window;
    }
    return nullptr;
}

void WayfoldPrefsControllerTest::close()
{
    _window->close();
    QTRY_VERIFY(!_window);
}

void WayfoldPrefsControllerTest::show(QWidget *control) const
{
    auto *pages = _window->findChild<QTabWidget *>();
    for (int page = 0; page < pages->count(); ++page) {
        if (pages->widget(page)->isAncestorOf(control))
            pages->setCurrentIndex(page);
    }
    QTRY_VERIFY(control->isVisible());
}

void WayfoldPrefsControllerTest::click(QAbstractButton *button) const
{
    show(button);
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(10, button->height() / 2));
}

void WayfoldPrefsControllerTest::doubleClick(int row) const
{
    show(table());
    table()->scrollTo(tableIndex(row, 0));
    const QPoint place = table()->visualRect(tableIndex(row, 0)).center();
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, place);
}

void WayfoldPrefsControllerTest::pressInRow(const QModelIndex &row, Qt::Key key) const
{
    QTRY_VERIFY(_window->isActiveWindow());
    show(table());
    table()->setFocus();
    table()->selectionModel()->setCurrentIndex(row, QItemSelectionModel::NoUpdate);
    QTest::keyClick(table(), key);
}

FontPanel *WayfoldPrefsControllerTest::openFontPanel() const
{
    click("setDrawerFontButton");
    return _window->findChild<FontPanel *>();
}

void WayfoldPrefsControllerTest::choose(FontPanel *panel, int list, const QString &entry)
{
    QListView *view = panel->findChildren<QListView *>().value(list);
    const QModelIndexList found =
        view->model()->match(view->model()->index(0, 0), Qt::DisplayRole, entry, 1, Qt::MatchExactly | Qt::MatchWrap);
    QVERIFY2(!found.isEmpty(), qPrintable(entry));
    view->setCurrentIndex(found.constFirst());
}

// ---- What is shown, and what a click stores

void WayfoldPrefsControllerTest::checkBoxShowsItsSetting_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<bool>("on");
    for (int i = 0; i < int(std::size(checkBoxes)); ++i) {
        QTest::addRow("%s on", checkBoxes[i].name) << i << true;
        QTest::addRow("%s off", checkBoxes[i].name) << i << false;
    }
}

void WayfoldPrefsControllerTest::checkBoxShowsItsSetting()
{
    QFETCH(int, which);
    QFETCH(bool, on);
    const CheckBox &chosen = checkBoxes[which];
    // All others the other way round.
    for (const CheckBox &box : checkBoxes)
        (settings().*box.setValue)(!on);
    (settings().*chosen.setValue)(on);
    _window = open();
    QCOMPARE(button(chosen.name)->isChecked(), on);
    for (const CheckBox &box : checkBoxes)
        QCOMPARE((settings().*box.value)(), on == (box.name == chosen.name)); // opening changes nothing
}

void WayfoldPrefsControllerTest::checkBoxStoresItsSetting_data()
{
    checkBoxShowsItsSetting_data();
}

void WayfoldPrefsControllerTest::checkBoxStoresItsSetting()
{
    QFETCH(int, which);
    QFETCH(bool, on);
    const CheckBox &box = checkBoxes[which];
    settings().setOpenDrawerForKnownSite(true); // or closing could not be clicked
    (settings().*box.setValue)(!on);
    _window = open();
    click(box.name);
    QCOMPARE((settings().*box.value)(), on);
    // Written at once.
    settings().loadDefaults();
    QCOMPARE((settings().*box.value)(), on);
    click(box.name);
    QCOMPARE((settings().*box.value)(), !on);
}

void WayfoldPrefsControllerTest::autoOpeningIsShown_data()
{
    QTest::addColumn<bool>("onNewWindow");
    QTest::addColumn<bool>("forKnownSite");
    QTest::addColumn<int>("tag");
    QTest::newRow("never") << false << false << 0;
    QTest::newRow("new windows") << true << false << 1;
    QTest::newRow("known sites") << false << true << 2;
    QTest::newRow("both") << true << true << 1;
}

void WayfoldPrefsControllerTest::autoOpeningIsShown()
{
    QFETCH(bool, onNewWindow);
    QFETCH(bool, forKnownSite);
    QFETCH(int, tag);
    settings().setOpenDrawerOnNewWindow(onNewWindow);
    settings().setOpenDrawerForKnownSite(forKnownSite);
    _window = open();
    QCOMPARE(selectedTag(autoOpening), tag);
    QCOMPARE(control<QButtonGroup>(autoOpening)->buttons().size(), 3);
}

void WayfoldPrefsControllerTest::autoOpeningIsStored_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("tag");
    for (int before = 0; before < 3; ++before) {
        for (int tag = 0; tag < 3; ++tag)
            QTest::addRow("%d after %d", tag, before) << before << tag;
    }
}

void WayfoldPrefsControllerTest::autoOpeningIsStored()
{
    QFETCH(int, before);
    QFETCH(int, tag);
    _window = open();
    click(cell(autoOpening, before));
    click(cell(autoOpening, tag));
    QCOMPARE(settings().openDrawerOnNewWindow(), tag == 1);
    QCOMPARE(settings().openDrawerForKnownSite(), tag == 2);
    QCOMPARE(selectedTag(autoOpening), tag);
}

void WayfoldPrefsControllerTest::groupingIsShown_data()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<int>("tag");
    for (int tag = 0; tag < 5; ++tag)
        QTest::addRow("%d", tag) << QString::number(tag) << tag;
    QTest::newRow("with a blank") << " 3" << 3;
    QTest::newRow("with a letter") << "2x" << 2;
    QTest::newRow("no number") << "x" << 0;
    QTest::newRow("unknown") << "5" << -1;
}

void WayfoldPrefsControllerTest::groupingIsShown()
{
    QFETCH(QString, style);
    QFETCH(int, tag);
    settings().setHistoryGroupingStyle(style);
    _window = open();
    QCOMPARE(selectedTag(grouping), tag);
    QCOMPARE(settings().historyGroupingStyle(), style);
}

void WayfoldPrefsControllerTest::groupingIsStored_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("tag");
    for (int before = 0; before < 5; ++before) {
        for (int tag = 0; tag < 5; ++tag)
            QTest::addRow("%d after %d", tag, before) << before << tag;
    }
}

void WayfoldPrefsControllerTest::groupingIsStored()
{
    QFETCH(int, before);
    QFETCH(int, tag);
    settings().setHistoryGroupingStyle(QString::number(before));
    _window = open();
    const Arrivals arrivals(Notifications::SafariHistoryFileModNotification);
    click(cell(grouping, tag));
    QCOMPARE(settings().historyGroupingStyle(), QString::number(tag));
    // Told when there is nothing else to do: after what is told as soon as possible, before what comes to wait later.
    const QString marker = Notifications::ListViewFontChangeNotification;
    const Arrivals markers(marker);
    qsizetype early = -1;
    NotificationCenter::defaultCenter().addObserver(
        &early,
        [&](const Notification &) {
            if (early < 0)
                early = arrivals.objects.size();
        },
        marker);
    WayfoldToolkit::postNotificationNameObject(marker, this);
    QTRY_COMPARE(markers.objects.size(), 1);
    NotificationCenter::defaultCenter().removeObserver(&early);
    QCOMPARE(early, 0);
    WayfoldToolkit::postDelayedNotificationNameObject(marker, this);
    QTRY_COMPARE(markers.objects.size(), 2);
    QCOMPARE(arrivals.objects.size(), tag == before ? 0 : 1);
    if (tag != before)
        QVERIFY(arrivals.objects.constFirst() && arrivals.objects.constFirst() != &store());
}

void WayfoldPrefsControllerTest::groupingThatIsWrittenOtherwiseIsReplaced()
{
    settings().setHistoryGroupingStyle(QStringLiteral("03"));
    _window = open();
    const Arrivals arrivals(Notifications::SafariHistoryFileModNotification);
    click(cell(grouping, 3)); // shown already
    QCOMPARE(settings().historyGroupingStyle(), QStringLiteral("3"));
    QTRY_COMPARE(arrivals.objects.size(), 1);
}

void WayfoldPrefsControllerTest::groupingIsWrittenInEveryCase()
{
    settings().setHistoryGroupingStyle(QStringLiteral("3"));
    _window = open();
    settings().setShortcutKeyForItem(QStringLiteral("Y"), 3); // waits for the next writing
    click(cell(grouping, 3));
    settings().loadDefaults();
    QCOMPARE(settings().shortcutKeyForItem(3), QStringLiteral("Y"));
}

void WayfoldPrefsControllerTest::firstTabIsShown_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<int>("tag");
    QTest::newRow("Scratchpad") << "0" << 0;
    QTest::newRow("Bookmarks") << "1" << 1;
    QTest::newRow("History") << "2" << 2;
    QTest::newRow("unknown") << "3" << -1;
}

void WayfoldPrefsControllerTest::firstTabIsShown()
{
    QFETCH(QString, identifier);
    QFETCH(int, tag);
    settings().setDefaultFirstTabIdentifier(identifier);
    _window = open();
    QCOMPARE(selectedTag(firstTab), tag);
}

void WayfoldPrefsControllerTest::firstTabIsStored_data()
{
    QTest::addColumn<int>("tag");
    QTest::addColumn<QString>("label");
    QTest::newRow("Scratchpad") << 0 << "Scratchpad";
    QTest::newRow("Bookmarks") << 1 << "Bookmarks";
    QTest::newRow("History") << 2 << "History";
}

void WayfoldPrefsControllerTest::firstTabIsStored()
{
    QFETCH(int, tag);
    QFETCH(QString, label);
    settings().setDefaultFirstTabIdentifier(QStringLiteral("7"));
    _window = open();
    click(cell(firstTab, tag));
    QCOMPARE(settings().defaultFirstTabIdentifier(), QString::number(tag));
    // The tab that bears the cell's name is the one that a new drawer shows.
    QCOMPARE(cell(firstTab, tag)->text().remove(u'&'), label);
    const auto other = _stage->openWindow();
    QCOMPARE(DrawerStage::controller(*other)->currentTabViewLabel(), label);
}

void WayfoldPrefsControllerTest::helpTexts_data()
{
    QTest::addColumn<QStringList>("controls");
    QTest::addColumn<QString>("help");
    const auto row = [](const QStringList &controls, const char *help) {
        QTest::newRow(qPrintable(controls.constFirst())) << controls << QString::fromLatin1(help);
    };
    row({"openOnRequestCell", "openInNewWindowsCell", "openOnKnownSitesCell"},
        "Determines when Wayfold should automatically open the drawer.");
    row({"autoFocusField"}, "If checked, Wayfold will automatically focus the Scratchpad tab to the current site.");
    row({"showIconsField"}, "If checked, icons for items in the drawer are displayed.");
    row({"closeOnUnknownField"},
        "If checked, Wayfold will automatically close the drawer if the Scratchpad is showing and you navigate to a "
        "site that has no bookmarks in the Scratchpad.");
    row({"noGroupingCell", "dayCell", "dayAndSiteCell", "siteCell", "siteAndDayCell"},
        "Determines how items in the History tab are grouped.");
    row({"confirmDeletesField"},
        "If unchecked, Wayfold will not ask you to confirm deleting items.  They'll just disappear.");
    row({"setDrawerFontButton"}, "Allows you to choose the font to be used in all bookmark lists within Wayfold.");
    row({"menuItemTableView"}, "Allows you to change the keyboard shortcuts for Wayfold menu items.\n\n"
                               "To change a shortcut, double-click on the menu item's row.");
    row({"createAutoFoldersField"}, "If checked, Wayfold will create Smart Folders within top-level subfolders.");
    row({"showFavIconsField"}, "If checked, the site's custom icon is displayed.  Available only if the Show Bookmark "
                               "Icons option is checked.");
    row({"scratchpadCell", "bookmarksCell", "historyCell"},
        "Determines which of the three Wayfold views is displayed when you simply open the drawer.");
}

void WayfoldPrefsControllerTest::helpTexts()
{
    QFETCH(QStringList, controls);
    QFETCH(QString, help);
    _window = open();
    for (const QString &name : controls) {
        auto *found = _window->findChild<QWidget *>(name);
        QVERIFY2(found, qPrintable(name));
        QCOMPARE(found->toolTip(), help);
        QCOMPARE(found->whatsThis(), help);
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(found);
        QCOMPARE(accessible->text(QAccessible::Description), help);
    }
}

// ---- Rules between controls

void WayfoldPrefsControllerTest::closingIsEnabledWithOpeningOnKnownSites_data()
{
    QTest::addColumn<bool>("forKnownSite");
    QTest::newRow("on") << true;
    QTest::newRow("off") << false;
}

void WayfoldPrefsControllerTest::closingIsEnabledWithOpeningOnKnownSites()
{
    QFETCH(bool, forKnownSite);
    settings().setOpenDrawerForKnownSite(forKnownSite);
    settings().setCloseDrawerForUnknownSite(true);
    _window = open();
    QCOMPARE(button("closeOnUnknownField")->isEnabled(), forKnownSite);
    QVERIFY(button("closeOnUnknownField")->isChecked()); // as it is stored
    click(cell(autoOpening, 2));
    QVERIFY(button("closeOnUnknownField")->isEnabled());
    for (int tag : {0, 2, 1}) {
        click(cell(autoOpening, tag));
        QCOMPARE(button("closeOnUnknownField")->isEnabled(), tag == 2);
    }
}

void WayfoldPrefsControllerTest::closingGoesWithOpeningOnKnownSites_data()
{
    QTest::addColumn<int>("tag");
    QTest::newRow("never") << 0;
    QTest::newRow("new windows") << 1;
}

void WayfoldPrefsControllerTest::closingGoesWithOpeningOnKnownSites()
{
    QFETCH(int, tag);
    _window = open();
    click(cell(autoOpening, 2));
    click("closeOnUnknownField");
    QVERIFY(settings().closeDrawerForUnknownSite());
    click(cell(autoOpening, tag));
    QVERIFY(!settings().closeDrawerForUnknownSite());
    QVERIFY(!button("closeOnUnknownField")->isChecked());
    QVERIFY(!button("closeOnUnknownField")->isEnabled());
    click(cell(autoOpening, 2)); // does not bring it back
    QVERIFY(!settings().closeDrawerForUnknownSite());
    QVERIFY(!button("closeOnUnknownField")->isChecked());
    QVERIFY(button("closeOnUnknownField")->isEnabled());
}

void WayfoldPrefsControllerTest::closingStaysWithOpeningOnKnownSites()
{
    settings().setOpenDrawerForKnownSite(true);
    settings().setCloseDrawerForUnknownSite(true);
    _window = open();
    click(cell(autoOpening, 2));
    QVERIFY(settings().closeDrawerForUnknownSite());
    QVERIFY(button("closeOnUnknownField")->isChecked());
}

void WayfoldPrefsControllerTest::siteIconsAreEnabledWithIcons()
{
    settings().setShowBookmarkIcons(false);
    settings().setShowFavicons(true);
    _window = open();
    QVERIFY(!button("showFavIconsField")->isEnabled());
    QVERIFY(button("showFavIconsField")->isChecked()); // as it is stored
    close();
    settings().setShowBookmarkIcons(true);
    _window = open();
    QVERIFY(button("showFavIconsField")->isEnabled());
}

void WayfoldPrefsControllerTest::siteIconsGoWithIcons()
{
    _window = open();
    QVERIFY(button("showFavIconsField")->isChecked());
    click("showIconsField");
    QVERIFY(!settings().showBookmarkIcons());
    QVERIFY(!settings().showFavicons());
    QVERIFY(!button("showFavIconsField")->isChecked());
    QVERIFY(!button("showFavIconsField")->isEnabled());
    click("showIconsField");
    QVERIFY(settings().showBookmarkIcons());
    QVERIFY(!settings().showFavicons());
    QVERIFY(!button("showFavIconsField")->isChecked());
    QVERIFY(button("showFavIconsField")->isEnabled());
}

void WayfoldPrefsControllerTest::iconsChangeOpenDrawers_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("tab");
    for (const char *field : {"showIconsField", "showFavIconsField"}) {
        for (int tab = 0; tab < 3; ++tab)
            QTest::addRow("%s, tab %d", field, tab) << QString::fromLatin1(field) << QString::number(tab);
    }
}

void WayfoldPrefsControllerTest::iconsChangeOpenDrawers()
{
    QFETCH(QString, field);
    QFETCH(QString, tab);
    std::vector<std::unique_ptr<Paintings>> paintings;
    for (const auto &browser : {_browser, _stage->openWindow()}) {
        KDRDrawerController *controller = DrawerStage::controller(*browser);
        controller->tabView()->selectTabWithIdentifier(tab);
        DrawerStage::drawer(*browser)->open();
        WayfoldOutlineView *const lists[] = {controller->scratchOutlineView(), controller->bookmarkOutlineView(),
                                             controller->historyOutlineView()};
        QWidget *list = lists[tab.toInt()]->viewport();
        QVERIFY(list->isVisible());
        paintings.push_back(std::make_unique<Paintings>(list));
    }
    _window = open();
    const auto wereAllPainted = [&] {
        return std::all_of(paintings.cbegin(), paintings.cend(), [](const auto &each) { return each->count > 0; });
    };
    show(button(qPrintable(field)));
    QTRY_VERIFY(wereAllPainted()); // as they were opened
    QTest::qWait(0);
    for (const auto &each : paintings)
        each->count = 0;
    click(qPrintable(field));
    QTRY_VERIFY(wereAllPainted());
}

void WayfoldPrefsControllerTest::smartFoldersComeAndGo()
{
    const auto folder = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("example.com"));
    settings().setCreateAutoFolders(false);
    store().bookmarkRoot()->addChild(folder);
    const auto provisional = store().newProvisionalBookmarkWithTitle(QStringLiteral("example.org"));
    QCOMPARE(provisional->childCount(), qsizetype(0));
    _window = open();
    click("createAutoFoldersField");
    QVERIFY(settings().createAutoFolders());
    QCOMPARE(folder->childCount(), qsizetype(2));
    QCOMPARE(provisional->childCount(), qsizetype(2));
    click("createAutoFoldersField");
    QVERIFY(!settings().createAutoFolders());
    QCOMPARE(folder->childCount(), qsizetype(0));
    QCOMPARE(provisional->childCount(), qsizetype(0));
}

// ---- Contacts

void WayfoldPrefsControllerTest::startContacts()
{
    const auto make = [this](const QString &place) {
        auto made = std::make_unique<Contacts>(place, _stateOfContacts);
        made->add(_people);
        return made;
    };
    ContactSource::Makers makers;
    makers.lookForDesktop = [this](const std::function<void(bool)> &answer) { _answerSearch = answer; };
    makers.desktop = [make] { return make(QStringLiteral("desktop")); };
    makers.folder = [make](const QString &folder) { return make(folder); };
    _source.emplace(makers);
}

void WayfoldPrefsControllerTest::contactSourceIsShown_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<bool>("folderIsEnabled");
    QTest::newRow("nothing chosen") << QString() << "Automatic" << false;
    QTest::newRow("desktop") << "desktop"
                             << "The desktop's contacts" << false;
    QTest::newRow("folder") << "folder"
                            << "A folder of cards" << true;
    QTest::newRow("none") << "none"
                          << "None" << false;
    QTest::newRow("unknown") << "other"
                             << "Automatic" << false;
}

void WayfoldPrefsControllerTest::contactSourceIsShown()
{
    QFETCH(QString, stored);
    QFETCH(bool, folderIsEnabled);
    settings().setContactSource(stored);
    settings().setContactFolder(QStringLiteral("~/cards"));
    _window = open();
    QTEST(sourceField()->currentText(), "shown");
    QCOMPARE(folderField()->text(), QStringLiteral("~/cards"));
    QCOMPARE(folderField()->isEnabled(), folderIsEnabled);
    QCOMPARE(button("chooseContactFolderButton")->isEnabled(), folderIsEnabled);
    QCOMPARE(settings().contactSource(), stored); // showing it stores nothing
}

void WayfoldPrefsControllerTest::contactSourceIsStoredAndUsed_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("used");
    QTest::newRow("desktop") << "none"
                             << "The desktop's contacts"
                             << "desktop"
                             << "desktop";
    QTest::newRow("folder") << "none"
                            << "A folder of cards"
                            << "folder"
                            << "/cards";
    QTest::newRow("none") << "desktop"
                          << "None"
                          << "none" << QString();
    QTest::newRow("automatic") << "none"
                               << "Automatic" << QString() << "desktop";
}

// By the keyboard.
void WayfoldPrefsControllerTest::contactSourceIsStoredAndUsed()
{
    QFETCH(QString, before);
    QFETCH(QString, chosen);
    QFETCH(QString, stored);
    settings().setContactSource(before);
    settings().setContactFolder(QStringLiteral("/cards"));
    startContacts();
    _window = open();
    show(sourceField());
    sourceField()->setFocus();
    for (int i = 0; i < 4 && sourceField()->currentText() != chosen; ++i)
        QTest::keyClick(sourceField(), Qt::Key_Down);
    for (int i = 0; i < 4 && sourceField()->currentText() != chosen; ++i)
        QTest::keyClick(sourceField(), Qt::Key_Up);
    QCOMPARE(sourceField()->currentText(), chosen);
    if (_answerSearch)
        _answerSearch(true);
    QCOMPARE(settings().contactSource(), stored);
    QCOMPARE(settings().contactSource().isNull(), stored.isNull());
    QTEST(contacts() ? contacts()->place : QString(), "used");
    QCOMPARE(folderField()->isEnabled(), stored == u"folder");
    QCOMPARE(button("chooseContactFolderButton")->isEnabled(), stored == u"folder");
}

void WayfoldPrefsControllerTest::contactFolderIsStoredAndUsed()
{
    settings().setContactSource(QStringLiteral("folder"));
    startContacts();
    _window = open();
    show(folderField());
    QTRY_VERIFY(_window->isActiveWindow());
    folderField()->setFocus();
    QTest::keyClicks(folderField(), " ~/my cards");
    QVERIFY(settings().contactFolder().isNull()); // not at every letter
    QTest::keyClick(folderField(), Qt::Key_Tab);
    QCOMPARE(settings().contactFolder(), QStringLiteral("~/my cards"));
    QCOMPARE(contacts()->place, _stage->home.path(QStringLiteral("my cards")));
    QCOMPARE(contactsText(), QStringLiteral("Nobody in ~/my cards yet."));
}

void WayfoldPrefsControllerTest::contactFolderOfBlanksIsTheUsualOne()
{
    settings().setContactSource(QStringLiteral("folder"));
    settings().setContactFolder(QStringLiteral("/cards"));
    startContacts();
    _window = open();
    folderField()->setText(QStringLiteral("  "));
    QTest::keyClick(folderField(), Qt::Key_Return);
    QVERIFY(settings().contactFolder().isNull());
    QCOMPARE(contacts()->place, _stage->home.path(QStringLiteral(".contacts")));
}

void WayfoldPrefsControllerTest::contactFolderIsChosen()
{
    QVERIFY(QDir().mkpath(_stage->home.path(QStringLiteral("cards/in"))));
    settings().setContactSource(QStringLiteral("folder"));
    settings().setContactFolder(QStringLiteral("~/cards"));
    startContacts();
    _window = open();
    click("chooseContactFolderButton");
    auto *panel = _window->findChild<QFileDialog *>();
    QVERIFY(panel && panel->isVisible());
    QVERIFY(panel->isModal());
    QCOMPARE(panel->fileMode(), QFileDialog::Directory);
    QCOMPARE(panel->directory().path(), _stage->home.path(QStringLiteral("cards")));
    QVERIFY(_window->isVisible()); // the sheet belongs to it
    panel->selectFile(_stage->home.path(QStringLiteral("cards/in")));
    static_cast<QDialog *>(panel)->accept();
    QCOMPARE(settings().contactFolder(), _stage->home.path(QStringLiteral("cards/in")));
    QCOMPARE(folderField()->text(), _stage->home.path(QStringLiteral("cards/in")));
    QCOMPARE(contacts()->place, _stage->home.path(QStringLiteral("cards/in")));
}

void WayfoldPrefsControllerTest::contactFolderThatIsNotChosenStays()
{
    settings().setContactSource(QStringLiteral("folder"));
    settings().setContactFolder(QStringLiteral("/cards"));
    startContacts();
    _window = open();
    click("chooseContactFolderButton");
    _window->findChild<QFileDialog *>()->reject();
    QCOMPARE(settings().contactFolder(), QStringLiteral("/cards"));
    QCOMPARE(contacts()->place, QStringLiteral("/cards"));
}

void WayfoldPrefsControllerTest::contactsInUse_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("people");
    QTest::addColumn<QString>("text");
    const int absent = ContactStore::Absent;
    const int ready = ContactStore::Ready;
    QTest::newRow("off") << "none" << ready << 5 << "No contacts are shown.";
    QTest::newRow("search") << "" << ready << 5 << "Looking for contacts...";
    QTest::newRow("desktop loading") << "desktop" << int(ContactStore::Loading) << 5 << "Looking for contacts...";
    QTest::newRow("desktop") << "desktop" << ready << 1204 << "1,204 people from the desktop's contacts";
    QTest::newRow("desktop, one") << "desktop" << ready << 1 << "1 person from the desktop's contacts";
    QTest::newRow("desktop, nobody") << "desktop" << ready << 0 << "Nobody in the desktop's contacts yet.";
    QTest::newRow("desktop absent") << "desktop" << absent << 0 << "The desktop has no contacts.";
    QTest::newRow("folder") << "folder" << ready << 1204 << "1,204 people from ~/.contacts";
    QTest::newRow("folder, one") << "folder" << ready << 1 << "1 person from ~/.contacts";
    QTest::newRow("folder, nobody") << "folder" << ready << 0 << "Nobody in ~/.contacts yet.";
    QTest::newRow("folder absent") << "folder" << absent << 0 << "There is no folder ~/.contacts.";
    QTest::newRow("found folder") << "found" << ready << 2 << "2 people from ~/.contacts";
    QTest::newRow("nothing found") << "found" << absent << 0 << "No contacts on this machine.";
}

void WayfoldPrefsControllerTest::contactsInUse()
{
    QFETCH(QString, source);
    QFETCH(int, state);
    QFETCH(int, people);
    QLocale::setDefault(QLocale(QStringLiteral("en_GB")));
    settings().setContactSource(source == u"found" ? QString() : source);
    _stateOfContacts = ContactStore::State(state);
    _people = people;
    startContacts();
    if (source == u"found")
        _answerSearch(false);
    _window = open();
    QTEST(contactsText(), "text");
}

void WayfoldPrefsControllerTest::contactsInUseFollowTheStore()
{
    settings().setContactSource(QStringLiteral("desktop"));
    startContacts();
    _window = open();
    QCOMPARE(contactsText(), QStringLiteral("Nobody in the desktop's contacts yet."));
    contacts()->add(3);
    QTRY_COMPARE(contactsText(), QStringLiteral("3 people from the desktop's contacts"));
    // The search that ends while the window is open.
    settings().setContactSource(QString());
    _source->followSettings();
    _answerSearch(false);
    QTRY_COMPARE(contactsText(), QStringLiteral("Nobody in ~/.contacts yet."));
}

void WayfoldPrefsControllerTest::contactsWithoutSource()
{
    _window = open();
    QCOMPARE(contactsText(), QStringLiteral("No contacts are shown."));
}

// ---- Font

namespace
{
const QString family = QStringLiteral("DejaVu Sans");
}

void WayfoldPrefsControllerTest::fontPanelShowsTheFont()
{
    settings().setListViewFontName(family + QStringLiteral("-Bold"));
    settings().setListViewFontSize(14);
    _window = open();
    QCOMPARE(control<QLabel>("fontField")->text(), QStringLiteral("DejaVu Sans Bold 14"));
    const Arrivals arrivals(Notifications::ListViewFontChangeNotification);
    FontPanel *panel = openFontPanel();
    QVERIFY(panel && panel->isVisible());
    QCOMPARE(panel->windowModality(), Qt::NonModal);
    QCOMPARE(QFontInfo(panel->currentFont()).family(), family);
    QCOMPARE(panel->currentFont().weight(), QFont::Bold);
    QCOMPARE(panel->currentFont().pointSize(), 14);
    // That it is shown changes nothing.
    panel->activateWindow();
    QTRY_VERIFY(panel->isActiveWindow());
    QCOMPARE(settings().listViewFontName(), family + QStringLiteral("-Bold"));
    QVERIFY(arrivals.objects.isEmpty());
}

void WayfoldPrefsControllerTest::fontPanelProposesWhatIsShownForAnUnknownFont()
{
    settings().setListViewFontName(QStringLiteral("No Such Font"));
    _window = open();
    FontPanel *panel = openFontPanel();
    QCOMPARE(QFontInfo(panel->currentFont()).family(), QFontInfo(QApplication::font()).family());
    QCOMPARE(settings().listViewFontName(), QStringLiteral("No Such Font"));
}

void WayfoldPrefsControllerTest::chosenFontIsStoredAndTold()
{
    settings().setListViewFontName(family);
    settings().setListViewFontSize(12);
    DrawerStage::drawer(*_browser)->open();
    const WayfoldOutlineView *list = DrawerStage::controller(*_browser)->scratchOutlineView();
    const qreal heightBefore = QFontMetricsF(list->currentListViewFont()).lineSpacing();
    _window = open();
    const Arrivals arrivals(Notifications::ListViewFontChangeNotification);
    FontPanel *panel = openFontPanel();
    choose(panel, 2, QStringLiteral("24"));
    QCOMPARE(settings().listViewFontSize(), 24.0F);
    QCOMPARE(settings().listViewFont()->family(), family);
    QCOMPARE(settings().listViewFont()->pointSizeF(), 24.0);
    QTRY_COMPARE(arrivals.objects, QList<const void *>{nullptr});
    QVERIFY(panel->isVisible());
    QVERIFY(QFontMetricsF(list->currentListViewFont()).lineSpacing() > heightBefore * 1.5);
    choose(panel, 0, QStringLiteral("DejaVu Serif"));
    choose(panel, 1, QStringLiteral("Bold"));
    QCOMPARE(settings().listViewFont()->family(), QStringLiteral("DejaVu Serif"));
    QCOMPARE(settings().listViewFont()->weight(), QFont::Bold);
    QCOMPARE(control<QLabel>("fontField")->text(), QStringLiteral("DejaVu Serif Bold 24"));
    QTRY_COMPARE(QFontInfo(list->currentListViewFont()).family(), QStringLiteral("DejaVu Serif"));
}

void WayfoldPrefsControllerTest::fontThatCannotBeNamedChangesNothing()
{
    settings().setListViewFontName(family);
    _window = open();
    const Arrivals arrivals(Notifications::ListViewFontChangeNotification);
    FontPanel *panel = openFontPanel();
    auto *sample = panel->findChild<QLineEdit *>(QStringLiteral("qt_fontDialog_sampleEdit"));
    sample->setFont(QFont(QStringLiteral("No Such Font"), 30));
    QCOMPARE(panel->currentFont().family(), QStringLiteral("No Such Font"));
    Q_EMIT panel->currentFontChanged(panel->currentFont());
    QCOMPARE(settings().listViewFontName(), family);
    QCOMPARE(settings().listViewFontSize(), 12.0F);
    sample->setFont(QFont(family, 13));
    Q_EMIT panel->currentFontChanged(panel->currentFont());
    QCOMPARE(settings().listViewFontSize(), 13.0F);
    QTRY_COMPARE(arrivals.objects.size(), 1); // the one that can be named
    QCOMPARE(settings().listViewFontName(), family);
}

void WayfoldPrefsControllerTest::fontPanelComesToTheFrontAgain()
{
    settings().setListViewFontName(family);
    _window = open();
    FontPanel *panel = openFontPanel();
    panel->close();
    settings().setListViewFontSize(18);
    QCOMPARE(openFontPanel(), panel);
    QVERIFY(panel->isVisible());
    QCOMPARE(panel->currentFont().pointSize(), 18);
    QCOMPARE(_window->findChildren<FontPanel *>().size(), 1);
}

void WayfoldPrefsControllerTest::fontPanelOpensTheClosedDrawer()
{
    KDRDrawer *drawer = DrawerStage::drawer(*_browser);
    _window = open();
    QCOMPARE(drawer->state(), Drawer::Closed);
    openFontPanel();
    QCOMPARE(drawer->state(), Drawer::Open);
    QVERIFY(!DrawerStage::controller(*_browser)->drawerOpenedManually());
    close();
    QCOMPARE(drawer->state(), Drawer::Closed);
}

void WayfoldPrefsControllerTest::openDrawerStaysOpen()
{
    KDRDrawer *drawer = DrawerStage::drawer(*_browser);
    drawer->open();
    _window = open();
    openFontPanel();
    QCOMPARE(drawer->state(), Drawer::Open);
    drawer->close();
    openFontPanel();
    QCOMPARE(drawer->state(), Drawer::Closed); // the user closed it
    drawer->open();
    close();
    QCOMPARE(drawer->state(), Drawer::Open);
}

void WayfoldPrefsControllerTest::drawerThatWasClosedIsClosedAgain()
{
    _window = open();
    DrawerStage::drawer(*_browser)->open(); // not by the font panel
    close();
    QCOMPARE(DrawerStage::drawer(*_browser)->state(), Drawer::Closed);
}

void WayfoldPrefsControllerTest::drawerThatWasClosingIsClosedAgain()
{
    KDRDrawer *drawer = DrawerStage::drawer(*_browser);
    drawer->open();
    drawer->setSlideDuration(1000000);
    drawer->close();
    QCOMPARE(drawer->state(), Drawer::Closing);
    _window = open();
    drawer->setSlideDuration(0);
    openFontPanel();
    QTRY_COMPARE(drawer->state(), Drawer::Open);
    close();
    QTRY_COMPARE(drawer->state(), Drawer::Closed);
}

void WayfoldPrefsControllerTest::fontPanelWithoutDrawer()
{
    _stage->host.key.reset();
    _window = open();
    QVERIFY(openFontPanel()->isVisible());
    QCOMPARE(DrawerStage::drawer(*_browser)->state(), Drawer::Closed);
    close();
}

// ---- Shortcuts

void WayfoldPrefsControllerTest::tableHasARowForEachItem()
{
    _window = open();
    const QList<QAction *> items = store().wayfoldMenu()->actions();
    QCOMPARE(table()->model()->rowCount(), int(items.size()));
    QCOMPARE(table()->model()->columnCount(), 2);
    int separators = 0;
    for (int row = 0; row < items.size(); ++row) {
        if (items[row]->isSeparator()) {
            ++separators;
            QCOMPARE(tableText(row, 0), QStringLiteral("----------"));
            QCOMPARE(tableText(row, 1), QString());
        } else {
            QCOMPARE(tableText(row, 0), items[row]->text());
        }
    }
    QCOMPARE(separators, 5);
    const auto key = [this](const char *action) { return tableText(rowOf(commandItem(QLatin1String(action))), 1); };
    QCOMPARE(key("handleToggleKDRDrawer:"), QStringLiteral("    \u23180"));
    QCOMPARE(key("handleNewNoteRequest:"), QStringLiteral("    \u21E7\u2318K"));
    QCOMPARE(key("handleShowPrefsWindow:"), QStringLiteral("---"));
}

void WayfoldPrefsControllerTest::otherColumnsAreEmpty()
{
    _window = open();
    QCOMPARE(table()->model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Command"));
    QCOMPARE(table()->model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Shortcut"));
    QVERIFY(!tableIndex(0, 2).isValid());
    QVERIFY(!tableIndex(table()->model()->rowCount(), 0).isValid());
    QCOMPARE(table()->model()->rowCount(tableIndex(0, 0)), 0);
}

void WayfoldPrefsControllerTest::titlesAreClean()
{
    commandItem(QStringLiteral("handleSwitchbackRequest:"))->setText(QStringLiteral("Show Bed && &Breakfast"));
    _window = open();
    QCOMPARE(tableText(rowOf(commandItem(QStringLiteral("handleSwitchbackRequest:"))), 0),
             QStringLiteral("Show Bed & Breakfast"));
}

void WayfoldPrefsControllerTest::tableFollowsTheItems()
{
    _window = open();
    show(table());
    QAction *toggle = commandItem(QStringLiteral("handleToggleKDRDrawer:"));
    const int row = rowOf(toggle);
    const QSignalSpy changes(table()->model(), &QAbstractItemModel::dataChanged);
    toggle->setText(QStringLiteral("Close Drawer"));
    QCOMPARE(tableText(row, 0), QStringLiteral("Close Drawer"));
    QCOMPARE(changes.constLast()[0].toModelIndex(), tableIndex(row, 0)); // so it is painted
    QCOMPARE(changes.constLast()[1].toModelIndex(), tableIndex(row, 1));
    const qsizetype before = changes.size();
    MenuItem::setKeyEquivalent(toggle, QStringLiteral("i"), MenuItem::NSCommandKeyMask);
    QCOMPARE(tableText(row, 1), QStringLiteral("    \u2318I"));
    QVERIFY(changes.size() > before);
    MenuItem::setKeyEquivalent(toggle, QStringLiteral(""), 0);
    QCOMPARE(tableText(row, 1), QStringLiteral("---"));
}

void WayfoldPrefsControllerTest::itemsAreThoseOfTheOpening()
{
    _window = open();
    const int rows = table()->model()->rowCount();
    QAction late(QStringLiteral("Late"));
    store().wayfoldMenu()->addAction(&late);
    QCOMPARE(table()->model()->rowCount(), rows);
    close();
    _window = open();
    QCOMPARE(table()->model()->rowCount(), rows + 1);
    QCOMPARE(tableText(rows, 0), QStringLiteral("Late"));
}

void WayfoldPrefsControllerTest::itemThatHasGoneIsAnEmptyRow()
{
    auto *item = new QAction(QStringLiteral("Short-lived"));
    store().wayfoldMenu()->addAction(item);
    const int row = rowOf(item);
    _window = open();
    delete item;
    QCOMPARE(tableText(row, 0), QString());
    QCOMPARE(tableText(row, 1), QString());
    pressInRow(tableIndex(row, 0), Qt::Key_Return);
    QVERIFY(!sheet()->isVisible());
}

void WayfoldPrefsControllerTest::doubleClickEdits()
{
    _window = open();
    doubleClick(rowOf(commandItem(QStringLiteral("handleNewNoteRequest:"))));
    QTRY_VERIFY(sheet()->isVisible());
    QCOMPARE(sheet()->parentWidget(), _window);
    bool isTitleShown = false;
    for (const QLabel *label : sheet()->findChildren<QLabel *>())
        isTitleShown |= label->text().startsWith(QLatin1String("New Note..."));
    QVERIFY(isTitleShown);
}

void WayfoldPrefsControllerTest::keysEdit_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Enter") << int(Qt::Key_Enter);
    QTest::newRow("space") << int(Qt::Key_Space);
}

void WayfoldPrefsControllerTest::keysEdit()
{
    QFETCH(int, key);
    _window = open();
    QTRY_VERIFY(_window->isActiveWindow());
    show(table());
    table()->setFocus();
    QTest::keyClick(table(), Qt::Key_Down); // over the separator
    QCOMPARE(table()->currentIndex().row(), rowOf(commandItem(QStringLiteral("handleShowScratchpadTabView:"))));
    QTest::simulateEvent(table(), true, key, Qt::NoModifier, QString(), true); // still held down from the sheet before
    QVERIFY(!sheet()->isVisible());
    QTest::keyClick(table(), Qt::Key(key));
    QTRY_VERIFY(sheet()->isVisible());
}

void WayfoldPrefsControllerTest::separatorIsNotEdited()
{
    _window = open();
    show(table());
    table()->setCurrentIndex(tableIndex(0, 0)); // a command that is not meant
    const int separator = 1;
    QCOMPARE(tableText(separator, 0), QStringLiteral("----------"));
    doubleClick(separator);
    QVERIFY(!sheet()->isVisible());
    pressInRow(tableIndex(separator, 0), Qt::Key_Return);
    QVERIFY(!sheet()->isVisible());
}

void WayfoldPrefsControllerTest::noRowIsNotEdited()
{
    _window = open();
    pressInRow({}, Qt::Key_Return);
    QVERIFY(!sheet()->isVisible());
    pressInRow(tableIndex(0, 0), Qt::Key_Return);
    QVERIFY(sheet()->isVisible());
}

void WayfoldPrefsControllerTest::acceptedShortcutIsShown()
{
    QAction *item = commandItem(QStringLiteral("handleShowPrefsWindow:"));
    _window = open();
    doubleClick(rowOf(item));
    QTRY_VERIFY(sheet()->isActiveWindow());
    QTest::keyClick(sheet(), Qt::Key_I, Qt::ControlModifier);
    QTest::mouseClick(sheet()->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok), Qt::LeftButton);
    QTRY_VERIFY(!sheet()->isVisible());
    QVERIFY(_window->isVisible());
    QCOMPARE(tableText(rowOf(item), 1), QStringLiteral("    \u2318I"));
    QCOMPARE(settings().shortcutKeyForItem(unsigned(MenuItem::tag(item))), QStringLiteral("i"));
}

void WayfoldPrefsControllerTest::cancelledShortcutIsNotShown()
{
    QAction *item = commandItem(QStringLiteral("handleNewNoteRequest:"));
    _window = open();
    doubleClick(rowOf(item));
    QTRY_VERIFY(sheet()->isActiveWindow());
    QTest::keyClick(sheet(), Qt::Key_I, Qt::ControlModifier);
    QCOMPARE(tableText(rowOf(item), 1), QStringLiteral("    \u2318I"));
    QTest::mouseClick(sheet()->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Cancel), Qt::LeftButton);
    QCOMPARE(tableText(rowOf(item), 1), QStringLiteral("    \u21E7\u2318K"));
}

// ---- The window

void WayfoldPrefsControllerTest::storeKnowsThatItShows()
{
    QAction *item = commandItem(QStringLiteral("handleShowPrefsWindow:"));
    QVERIFY(store().validateMenuItem(item));
    item->trigger();
    QCOMPARE(preferences().size(), 1);
    _window = preferences().constFirst();
    QVERIFY(!store().validateMenuItem(item));
    item->trigger();
    QCOMPARE(preferences().size(), 1);
    close();
    QVERIFY(store().validateMenuItem(item));
    _stage->host.key.reset();
    QVERIFY(!store().validateMenuItem(item));
}

void WayfoldPrefsControllerTest::opensInTheMiddleWithTheKeyboard()
{
    _browser->screenFrame = QRectF(0, 0, 700, 800);
    _window = open();
    QTRY_VERIFY(_window->isActiveWindow());
    QCOMPARE(_window->windowTitle(), QStringLiteral("Wayfold Preferences"));
    QCOMPARE(_window->windowModality(), Qt::NonModal);
    QVERIFY(!_window->testAttribute(Qt::WA_QuitOnClose));
    const QPoint fromTheMiddle = _window->geometry().center() - QPoint(350, 400);
    QVERIFY2(fromTheMiddle.manhattanLength() < 40, qPrintable(QDebug::toString(_window->geometry())));
}

void WayfoldPrefsControllerTest::closesWhenAnotherWindowComesToTheFront()
{
    QWidget another;
    another.show();
    _window = open();
    QTRY_VERIFY(_window->isActiveWindow());
    another.activateWindow();
    QTRY_VERIFY(!_window);
}

void WayfoldPrefsControllerTest::staysForItsOwnWindows()
{
    _window = open();
    QTRY_VERIFY(_window->isActiveWindow());
    FontPanel *panel = openFontPanel();
    panel->activateWindow(); // the drawer came after it
    QTRY_VERIFY(panel->isActiveWindow());
    panel->close();
    _window->activateWindow();
    QTRY_VERIFY(_window->isActiveWindow());
    doubleClick(0);
    QTRY_VERIFY(sheet()->isActiveWindow());
    sheet()->reject();
    QTRY_VERIFY(!sheet()->isVisible());
    _window->activateWindow();
    QTRY_VERIFY(_window && _window->isActiveWindow());
}

void WayfoldPrefsControllerTest::staysForTheFrontDrawer()
{
    const auto other = _stage->openWindow();
    DrawerStage::drawer(*other)->open();
    _stage->host.key = _browser;
    DrawerStage::drawer(*_browser)->open();
    _window = open();
    QTRY_VERIFY(_window->isActiveWindow());
    DrawerStage::drawer(*_browser)->activateWindow();
    QTRY_VERIFY(DrawerStage::drawer(*_browser)->isActiveWindow());
    QVERIFY(_window && _window->isVisible());
    // That of another window is no part of what one sees here.
    DrawerStage::drawer(*other)->activateWindow();
    QTRY_VERIFY(!_window);
}

void WayfoldPrefsControllerTest::staysWhenNoWindowHasTheKeyboard()
{
    _window = open();
    QTRY_VERIFY(_window->isActiveWindow());
    Q_EMIT qGuiApp->focusWindowChanged(nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(_window && _window->isVisible());
}

void WayfoldPrefsControllerTest::closesAnEarlierOne()
{
    _window = open();
    QTRY_VERIFY(_window->isActiveWindow());
    QPointer<QWidget> second = open();
    QVERIFY(second);
    QTRY_VERIFY(!_window);
    QVERIFY(second->isVisible());
}

void WayfoldPrefsControllerTest::closesByKey_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Escape") << int(Qt::Key_Escape) << int(Qt::NoModifier);
    QTest::newRow("Control and W") << int(Qt::Key_W) << int(Qt::ControlModifier);
}

void WayfoldPrefsControllerTest::closesByKey()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    _window = open();
    QTRY_VERIFY(_window->isActiveWindow());
    QTest::keyClick(button("autoFocusField"), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QTRY_VERIFY(!_window);
}

void WayfoldPrefsControllerTest::closingCancelsTheSheet()
{
    QAction *item = commandItem(QStringLiteral("handleNewNoteRequest:"));
    QWidget another;
    another.show();
    _window = open();
    QTRY_VERIFY(_window->isActiveWindow());
    doubleClick(rowOf(item));
    QTRY_VERIFY(sheet()->isActiveWindow());
    QTest::keyClick(sheet(), Qt::Key_I, Qt::ControlModifier);
    QCOMPARE(MenuItem::keyEquivalent(item), QStringLiteral("i"));
    another.activateWindow();
    QTRY_VERIFY(!_window);
    QCOMPARE(MenuItem::keyEquivalent(item), QStringLiteral("K"));
}

void WayfoldPrefsControllerTest::closingClosesTheFontPanel()
{
    _window = open();
    const QPointer<FontPanel> panel = openFontPanel();
    QVERIFY(panel->isVisible());
    _window->close();
    QVERIFY(!panel || !panel->isVisible());
    QTRY_VERIFY(!panel);
}

void WayfoldPrefsControllerTest::windowOfTheDrawerMayGo()
{
    _window = open();
    _browser->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    openFontPanel();
    close();
}

void WayfoldPrefsControllerTest::missingInterfaceFile()
{
    const QByteArray bundle = qgetenv("WAYFOLD_BUNDLE");
    qputenv("WAYFOLD_BUNDLE", "/nowhere");
    QVERIFY(!open());
    qputenv("WAYFOLD_BUNDLE", bundle);
    QVERIFY(store().validateMenuItem(commandItem(QStringLiteral("handleShowPrefsWindow:"))));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// ---- For everybody

void WayfoldPrefsControllerTest::settingsOfAnotherProcessAreShown()
{
    UserDefaults &store = UserDefaults::standardUserDefaults();
    QVERIFY(store.synchronize());
    _window = open();
    QVERIFY(button("confirmDeletesField")->isChecked());
    OtherProcess::changeSetting(QStringLiteral("WayfoldConfirmItemDelete"), qlonglong(0));
    OtherProcess::changeSetting(QStringLiteral("WayfoldHistoryGroupingKey"), QStringLiteral("2"));
    store.lookForChanges();
    QTRY_VERIFY(!button("confirmDeletesField")->isChecked());
    QCOMPARE(selectedTag("historyGroupingOptions"), 2);
    QVERIFY(!settings().confirmItemDelete()); // showing it stores nothing
    QVERIFY(settings().showBookmarkIcons());
}

void WayfoldPrefsControllerTest::controlsAreNamed()
{
    _window = open();
    int count = 0;
    auto *pages = _window->findChild<QTabWidget *>();
    QVERIFY(!pages->accessibleName().isEmpty());
    QList<QWidget *> widgets;
    for (int page = 0; page < pages->count(); ++page) {
        QVERIFY(!pages->tabToolTip(page).isEmpty());
        widgets += pages->widget(page)->findChildren<QWidget *>();
    }
    for (QWidget *widget : widgets) {
        const bool isOurs = !widget->objectName().isEmpty() && !widget->objectName().startsWith(u"qt_");
        if (!isOurs || widget->focusPolicy() == Qt::NoFocus)
            continue;
        ++count;
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(widget);
        QVERIFY2(!accessible->text(QAccessible::Name).isEmpty(), qPrintable(widget->objectName()));
        QVERIFY2(!widget->toolTip().isEmpty(), qPrintable(widget->objectName()));
    }
    QCOMPARE(count, 6 + 3 + 5 + 3 + 1 + 1 + 3);
}

void WayfoldPrefsControllerTest::pagesAreWorkedByKeyboard_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<QStringList>("order");
    // Within a group of cells the arrow keys go on.
    QTest::newRow("drawer") << 0 << QStringList{"openOnKnownSitesCell",     "closeOnUnknownField",
                                                "scratchpadCell",           "autoFocusField",
                                                "createAutoFoldersField",   "confirmDeletesField",
                                                "contactSourceField",       "contactFolderField",
                                                "chooseContactFolderButton"};
    QTest::newRow("lists") << 1
                           << QStringList{"showIconsField", "showFavIconsField", "setDrawerFontButton",
                                          "siteAndDayCell"};
    QTest::newRow("shortcuts") << 2 << QStringList{"menuItemTableView"};
}

void WayfoldPrefsControllerTest::pagesAreWorkedByKeyboard()
{
    QFETCH(int, page);
    QFETCH(QStringList, order);
    settings().setOpenDrawerForKnownSite(true);
    settings().setContactSource(QStringLiteral("folder"));
    _window = open();
    QTRY_VERIFY(_window->isActiveWindow());
    auto *pages = _window->findChild<QTabWidget *>();
    auto *tabs = pages->findChild<QTabBar *>();
    pages->setCurrentIndex(page);
    tabs->setFocus();
    for (const QString &name : order) {
        QTest::keyClick(_window->focusWidget(), Qt::Key_Tab);
        QCOMPARE(_window->focusWidget()->objectName(), name);
    }
    QTest::keyClick(_window->focusWidget(), Qt::Key_Tab);
    QCOMPARE(_window->focusWidget(), tabs);
    // The arrows choose in a group, and what they choose is stored.
    if (page == 0) {
        cell(autoOpening, 2)->setFocus();
        QTest::keyClick(cell(autoOpening, 2), Qt::Key_Up);
        QVERIFY(settings().openDrawerOnNewWindow());
        QVERIFY(!settings().openDrawerForKnownSite());
    }
}

namespace
{
void languages()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("English") << "en_GB";
    QTest::newRow("German") << "de_DE";
}

// The letter behind a lone "&"; null when there is none.
QChar shortcutLetter(const QString &text)
{
    const QKeySequence mnemonic = QKeySequence::mnemonic(text);
    return mnemonic.isEmpty() ? QChar() : QChar(char16_t(mnemonic[0].key()));
}
} // namespace

void WayfoldPrefsControllerTest::shortcutLettersAreUnique_data()
{
    languages();
}

void WayfoldPrefsControllerTest::shortcutLettersAreUnique()
{
    QFETCH(QString, language);
    QLocale::setDefault(QLocale(language));
    _window = open();
    const auto *pages = _window->findChild<QTabWidget *>();
    for (int page = 0; page < pages->count(); ++page) {
        QStringList texts;
        for (int tab = 0; tab < pages->count(); ++tab)
            texts.append(pages->tabText(tab));
        for (const QAbstractButton *each : pages->widget(page)->findChildren<QAbstractButton *>())
            texts.append(each->text());
        for (const QLabel *label : pages->widget(page)->findChildren<QLabel *>()) {
            if (label->buddy())
                texts.append(label->text());
        }
        QString letters;
        for (const QString &text : texts) {
            const QChar letter = shortcutLetter(text);
            QVERIFY2(!letter.isNull(), qPrintable(text));
            QVERIFY2(!letters.contains(letter), qPrintable(text));
            letters += letter;
        }
    }
}

void WayfoldPrefsControllerTest::nothingIsCutOff_data()
{
    languages();
}

void WayfoldPrefsControllerTest::nothingIsCutOff()
{
    QFETCH(QString, language);
    QLocale::setDefault(QLocale(language));
    settings().setContactSource(QStringLiteral("folder"));
    settings().setContactFolder(QStringLiteral("/a/folder/that/lies/deep/down/and/has/a/rather/long/name/like/this"));
    _people = 20'000;
    startContacts();
    _window = open();
    QVERIFY(contactsText().contains(u'\u2026'));
    auto *pages = _window->findChild<QTabWidget *>();
    QCOMPARE(pages->tabText(2).remove(u'&'),
             language == u"de_DE" ? QStringLiteral("Tastenk\u00fcrzel") : QStringLiteral("Shortcuts"));
    for (int page = 0; page < pages->count(); ++page) {
        pages->setCurrentIndex(page);
        QTRY_VERIFY(pages->widget(page)->isVisible());
        for (QWidget *widget : pages->widget(page)->findChildren<QWidget *>()) {
            if (!qobject_cast<QLabel *>(widget) && !qobject_cast<QAbstractButton *>(widget))
                continue;
            const QByteArray name = widget->objectName().toUtf8();
            QVERIFY2(widget->width() >= widget->sizeHint().width(), name);
            QVERIFY2(widget->height() >= widget->minimumSizeHint().height(), name);
            QVERIFY2(pages->widget(page)->rect().contains(widget->geometry()), name);
        }
    }
    // All commands are to be read, and no bar is needed for it.
    show(table());
    for (int row = 0; row < table()->model()->rowCount(); ++row) {
        const QFontMetrics metrics(table()->font());
        QVERIFY(metrics.horizontalAdvance(tableText(row, 0)) < table()->columnWidth(0));
        QVERIFY(metrics.horizontalAdvance(tableText(row, 1)) < table()->columnWidth(1));
    }
    QVERIFY(_window->width() < 700 && _window->height() < 600);
}

void WayfoldPrefsControllerTest::longToolTipsAreWrapped()
{
    _window = open();
    QAbstractButton *confirm = button("confirmDeletesField");
    show(confirm);
    QHelpEvent event(QEvent::ToolTip, QPoint(5, 5), confirm->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(confirm, &event);
    QVERIFY(Qt::mightBeRichText(QToolTip::text())); // which is what has lines
    QTextDocument shown;
    shown.setHtml(QToolTip::text());
    QCOMPARE(shown.toPlainText(), confirm->toolTip());
    QToolTip::hideText();
}

QTEST_MAIN(WayfoldPrefsControllerTest)
#include "WayfoldPrefsControllerTest.moc"
