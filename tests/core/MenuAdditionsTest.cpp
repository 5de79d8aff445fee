#include "core/KDRDrawerBundle.h"

#include "core/PreferencesWindow.h"
#include "core/RestorePanel.h"
#include "core/WayfoldAboutController.h"
#include "tests/core/StoreInTemporaryHome.h"

#include <QMenu>
#include <optional>

namespace
{
struct ItemOfMenu
{
    const char *action;
    const char *key;
    int tag;
    unsigned modifierMask;
};

// Tag and shortcut of every command, as a fresh user finds them.
const ItemOfMenu itemsOfMenu[] = {
    {"handleToggleKDRDrawer:", "0", 0, 1048576},
    {"handleShowScratchpadTabView:", "*", 10, 1179648},
    {"handleShowBookmarkTabView:", "-", 11, 1179648},
    {"handleShowHistoryTabView:", "+", 12, 1179648},
    {"handleFocusOnCurrentSiteRequest:", "o", 4, 1179648},
    {"handleSwitchbackRequest:", "e", 5, 1179648},
    {"handleSaveCurrentURLRequest:", "", 6, 0},
    {"handleNewSubFolderRequest:", "j", 7, 1179648},
    {"handleNewNoteRequest:", "k", 8, 1179648},
    {"handleNewEmailRequest:", "l", 9, 1179648},
    {"handleNewPersonRequest:", "", 13, 0},
    {"handleRestoreFromBackupRequest:", "", 14, 0},
    {"handleCheckForNewReleaseRequest:", "", 1, 0},
    {"handleShowPrefsWindow:", "", 2, 0},
    {"handleShowAboutWindow:", "", 3, 0},
};

// A plug-in folder of the test's own, with the given interface file.
class OtherBundle
{
public:
    OtherBundle() : _old(qgetenv("WAYFOLD_BUNDLE")) { qputenv("WAYFOLD_BUNDLE", _home.path().toUtf8()); }
    ~OtherBundle() { qputenv("WAYFOLD_BUNDLE", _old); }

    void writeMenu(const QByteArray &contents)
    {
        _home.write(QStringLiteral("Contents/Resources/KDRDrawerMenu.ui"), contents);
    }

private:
    TemporaryHome _home;
    QByteArray _old;
};

// A menu whose items have these tags, and Ctrl+F<tag> as their shortcuts.
QByteArray menuWithTags(const QList<int> &tags)
{
    QByteArray references;
    QByteArray actions;
    for (int tag : tags) {
        const QByteArray number = QByteArray::number(tag);
        references += "<addaction name=\"item" + number + "\"/>";
        actions += "<action name=\"item" + number + "\"><property name=\"text\"><string>Item</string></property>" +
                   "<property name=\"shortcut\"><string>Ctrl+F" + QByteArray::number(tag + 1) +
                   "</string></property><property name=\"tag\" stdset=\"0\"><number>" + number +
                   "</number></property></action>";
    }
    return "<ui version=\"4.0\"><class>M</class><widget class=\"QWidget\" name=\"M\">"
           "<widget class=\"QMenu\" name=\"mainMenu\"><widget class=\"QMenu\" name=\"ours\">" +
           references +
           "</widget><widget class=\"QMenu\" name=\"another\"/><addaction name=\"ours\"/><addaction name=\"another\"/>"
           "</widget>" +
           actions + "</widget></ui>";
}
} // namespace

class MenuAdditionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _fresh.emplace(); }
    void cleanup()
    {
        QLocale::setDefault(QLocale::c());
        _fresh.reset();
    }

    // Loading
    void menusAreLoaded();
    void menuHasALetterOfItsOwn_data();
    void menuHasALetterOfItsOwn();
    void menuGoesToTheEndOfTheHostsMenuBar();
    void itemsAreComplete();
    void everyItemHasTitleAndTag();
    void contextualMenuHasTheListsCommands();
    void storedShortcutIsApplied_data();
    void storedShortcutIsApplied();
    void emptyShortcutLeavesTheInterfaceFiles_data();
    void emptyShortcutLeavesTheInterfaceFiles();
    void clearedShortcutStaysCleared();
    void shortcutsStopAtTheFirstMissingTag();
    void everyContainerItemMovesInOrder();
    void missingInterfaceFileIsNoError();

    // Enabling and titles
    void viewItemsWithoutDrawerKeepTheirTitles();
    void toggleItem_data();
    void toggleItem();
    void tabItem_data();
    void tabItem();
    void focusItem_data();
    void focusItem();
    void saveItem_data();
    void saveItem();
    void switchbackItem_data();
    void switchbackItem();
    void titlesAreInTheUsersLanguage();
    void ampersandInTitleIsShown();
    void namesFitIntoTheMenu_data();
    void namesFitIntoTheMenu();
    void longHostNameFitsIntoTheMenu();
    void restoreItem();
    void releaseItem();
    void preferencesItem();
    void aboutItem();
    void otherItemsAskTheList();
    void menuIsValidatedWhenItShows();

    // Commands
    void commandsWithoutDrawerDoNothing();
    void toggleOpensAndCloses();
    void tabCommandOnClosedDrawer_data();
    void tabCommandOnClosedDrawer();
    void tabCommandOnOtherTabSwitches_data();
    void tabCommandOnOtherTabSwitches();
    void tabCommandOnCurrentTabCloses_data();
    void tabCommandOnCurrentTabCloses();
    void focusCommand();
    void focusCommandOnOpenDrawerAndPageWithoutHost();
    void requestsArePassedOn_data();
    void requestsArePassedOn();
    void releaseCommand();
    void preferencesCommand();
    void aboutCommand();
    void unknownActionDoesNothing();

private:
    KDRDrawerBundle &store() { return StoreInTemporaryHome::store(); }
    // The item of the menu with that action.
    QAction *item(const QString &action)
    {
        const QList<QAction *> items = store().wayfoldMenu()->actions();
        for (QAction *candidate : items) {
            if (MenuItem::action(candidate) == action)
                return candidate;
        }
        return nullptr;
    }
    FakeDrawerController &controller() { return _fresh->controller(); }
    // What a user sees when the menu opens.
    bool validate(const QString &action) { return store().validateMenuItem(item(action)); }
    QString title(const QString &action) { return item(action)->text(); }

    std::optional<StoreInTemporaryHome> _fresh;
};

// ---- Loading

void MenuAdditionsTest::menusAreLoaded()
{
    QVERIFY(store().wayfoldMenu());
    QVERIFY(store().menu());
    QVERIFY(store().menu() != store().wayfoldMenu());
    QCOMPARE(store().wayfoldMenu()->title(), QStringLiteral("Wa&yfold"));
}

void MenuAdditionsTest::menuHasALetterOfItsOwn_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("English") << QLocale::c();
    QTest::newRow("German") << QLocale(QStringLiteral("de_DE"));
}

void MenuAdditionsTest::menuHasALetterOfItsOwn()
{
    QFETCH(QLocale, locale);
    QLocale::setDefault(locale);
    const QKeySequence letter = QKeySequence::mnemonic(store().wayfoldMenu()->title());
    QVERIFY(!letter.isEmpty());
    // The bundled browser's.
    for (const char *title : {"&File", "&Edit", "&View", "Hi&story", "&Bookmarks", "&Window"})
        QVERIFY2(letter != QKeySequence::mnemonic(QString::fromLatin1(title)), title);
}

void MenuAdditionsTest::menuGoesToTheEndOfTheHostsMenuBar()
{
    QMenu hostsOwn;
    _fresh->host.menuBar.appendMenu(&hostsOwn);
    store();
    QCOMPARE(_fresh->host.menuBar.menus, (QList<QMenu *>{&hostsOwn, store().wayfoldMenu()}));
}

void MenuAdditionsTest::itemsAreComplete()
{
    for (const ItemOfMenu &expected : itemsOfMenu) {
        QAction *found = item(QString::fromLatin1(expected.action));
        QVERIFY2(found, expected.action);
        QCOMPARE(MenuItem::tag(found), expected.tag);
        QCOMPARE(MenuItem::itemWithTag(store().wayfoldMenu(), expected.tag), found);
        QCOMPARE(MenuItem::keyEquivalent(found).toLower(), QString::fromLatin1(expected.key));
        QCOMPARE(MenuItem::keyEquivalentModifierMask(found), expected.modifierMask);
        QCOMPARE(MenuItem::target(found), &store());
        // It is what the settings say.
        QCOMPARE(_fresh->settings().shortcutKeyForItem(unsigned(expected.tag)).toLower(),
                 QString::fromLatin1(expected.key));
        QCOMPARE(_fresh->settings().shortcutModifierMaskForItem(unsigned(expected.tag)), expected.modifierMask);
    }
}

void MenuAdditionsTest::everyItemHasTitleAndTag()
{
    QList<int> tags;
    const QList<QAction *> items = store().wayfoldMenu()->actions();
    for (QAction *menuItem : items) {
        if (menuItem->isSeparator())
            continue;
        QVERIFY(!menuItem->text().isEmpty());
        tags.append(MenuItem::tag(menuItem));
    }
    std::sort(tags.begin(), tags.end());
    QCOMPARE(tags, (QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14})); // no gap: it would end the list
}

void MenuAdditionsTest::contextualMenuHasTheListsCommands()
{
    QStringList actions;
    const QList<QAction *> items = store().menu()->actions();
    for (QAction *menuItem : items) {
        if (menuItem->isSeparator())
            continue;
        actions.append(MenuItem::action(menuItem));
        QVERIFY(!menuItem->text().isEmpty());
        QVERIFY(MenuItem::target(menuItem) != &store());
    }
    QCOMPARE(actions, (QStringList{"handleResolveBookmarkRequest:", "handleOpenBookmarksInTabsRequest:",
                                   "handleSendEmailRequest:", "handleItemEditRequest:", "handleDeleteItemRequest:",
                                   "handleNewSubFolderRequest:", "handleNewNoteRequest:", "handleNewEmailRequest:",
                                   "handleNewPersonRequest:"}));
}

void MenuAdditionsTest::storedShortcutIsApplied_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("tag");
    for (const ItemOfMenu &command : itemsOfMenu)
        QTest::newRow(command.action) << QString::fromLatin1(command.action) << command.tag;
}

void MenuAdditionsTest::storedShortcutIsApplied()
{
    QFETCH(QString, action);
    QFETCH(int, tag);
    _fresh->settings().setShortcutKeyForItem(QStringLiteral("P"), unsigned(tag));
    _fresh->settings().setShortcutModifierMaskForItemForItem(MenuItem::NSAlternateKeyMask, unsigned(tag));
    QAction *command = item(action);
    QCOMPARE(MenuItem::keyEquivalent(command), QStringLiteral("P"));
    QCOMPARE(MenuItem::keyEquivalentModifierMask(command), unsigned(MenuItem::NSAlternateKeyMask));
    QCOMPARE(command->shortcut(), QKeySequence(QStringLiteral("Alt+P")));
}

void MenuAdditionsTest::emptyShortcutLeavesTheInterfaceFiles_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<unsigned>("modifierMask");
    QTest::newRow("empty key") << "" << 1048576U;
    QTest::newRow("no modifiers") << "P" << 0U;
    QTest::newRow("neither") << "" << 0U;
}

void MenuAdditionsTest::emptyShortcutLeavesTheInterfaceFiles()
{
    QFETCH(QString, key);
    QFETCH(unsigned, modifierMask);
    OtherBundle bundle;
    bundle.writeMenu(menuWithTags({0}));
    _fresh->settings().setShortcutKeyForItem(key, 0);
    _fresh->settings().setShortcutModifierMaskForItemForItem(modifierMask, 0);
    QCOMPARE(MenuItem::itemWithTag(store().wayfoldMenu(), 0)->shortcut(), QKeySequence(QStringLiteral("Ctrl+F1")));
}

void MenuAdditionsTest::clearedShortcutStaysCleared()
{
    for (const ItemOfMenu &command : itemsOfMenu) {
        _fresh->settings().setShortcutKeyForItem(QStringLiteral(""), unsigned(command.tag));
        _fresh->settings().setShortcutModifierMaskForItemForItem(0, unsigned(command.tag));
    }
    for (const ItemOfMenu &command : itemsOfMenu) {
        const QAction *found = item(QString::fromLatin1(command.action));
        QVERIFY(found->shortcuts().isEmpty());
        QVERIFY(MenuItem::keyEquivalent(found).isEmpty());
    }
}

void MenuAdditionsTest::shortcutsStopAtTheFirstMissingTag()
{
    OtherBundle bundle;
    bundle.writeMenu(menuWithTags({2, 0, 1, 4, 5}));
    for (unsigned tag = 0; tag < 6; ++tag) {
        _fresh->settings().setShortcutKeyForItem(QStringLiteral("P"), tag);
        _fresh->settings().setShortcutModifierMaskForItemForItem(MenuItem::NSCommandKeyMask, tag);
    }
    const auto shortcut = [this](int tag) {
        return MenuItem::itemWithTag(store().wayfoldMenu(), tag)->shortcut().toString(QKeySequence::PortableText);
    };
    for (int tag : {0, 1, 2})
        QCOMPARE(shortcut(tag), QStringLiteral("Ctrl+P"));
    QCOMPARE(shortcut(4), QStringLiteral("Ctrl+F5"));
    QCOMPARE(shortcut(5), QStringLiteral("Ctrl+F6"));
}

void MenuAdditionsTest::everyContainerItemMovesInOrder()
{
    OtherBundle bundle;
    bundle.writeMenu(menuWithTags({0}));
    QVERIFY(store().wayfoldMenu());
    QVERIFY(!store().menu()); // this interface file has none
    QCOMPARE(_fresh->host.menuBar.menus.size(), 2);
    QCOMPARE(_fresh->host.menuBar.menus.value(0), store().wayfoldMenu());
    QCOMPARE(_fresh->host.menuBar.menus.value(1)->objectName(), QStringLiteral("another"));
}

void MenuAdditionsTest::missingInterfaceFileIsNoError()
{
    OtherBundle bundle;
    QVERIFY(!store().wayfoldMenu());
    QVERIFY(!store().menu());
    QVERIFY(_fresh->host.menuBar.menus.isEmpty());
    _fresh->openWindow();
    QCOMPARE(_fresh->room.controllers.size(), size_t(1)); // the rest works
}

// ---- Enabling and titles

void MenuAdditionsTest::viewItemsWithoutDrawerKeepTheirTitles()
{
    _fresh->openWindow();
    controller().drawer.open();
    const QStringList actions = {"handleToggleKDRDrawer:", "handleShowScratchpadTabView:", "handleShowBookmarkTabView:",
                                 "handleShowHistoryTabView:", "handleFocusOnCurrentSiteRequest:"};
    QStringList titles;
    for (const QString &action : actions) {
        validate(action);
        titles.append(title(action));
    }
    _fresh->host.key.reset(); // the downloads window, say
    for (int i = 0; i < actions.size(); ++i) {
        QVERIFY(!validate(actions[i]));
        QCOMPARE(title(actions[i]), titles[i]);
    }
    QVERIFY(!validate(QStringLiteral("handleSaveCurrentURLRequest:")));
    QVERIFY(!validate(QStringLiteral("handleSwitchbackRequest:")));
    QVERIFY(!validate(QStringLiteral("handleNewNoteRequest:")));
}

void MenuAdditionsTest::toggleItem_data()
{
    QTest::addColumn<Drawer::State>("state");
    QTest::addColumn<QString>("title");
    QTest::newRow("closed") << Drawer::Closed << "Open Drawer";
    QTest::newRow("opening") << Drawer::Opening << "Close Drawer";
    QTest::newRow("open") << Drawer::Open << "Close Drawer";
    QTest::newRow("closing") << Drawer::Closing << "Open Drawer";
}

namespace
{
void bringInto(Drawer &drawer, Drawer::State state)
{
    constexpr int foreverInMilliseconds = 1000000;
    drawer.setSlideDuration(state == Drawer::Opening ? foreverInMilliseconds : 0);
    if (state != Drawer::Closed)
        drawer.open();
    drawer.setSlideDuration(foreverInMilliseconds);
    if (state == Drawer::Closing)
        drawer.close();
    drawer.setSlideDuration(0);
    QCOMPARE(drawer.state(), state);
}
} // namespace

void MenuAdditionsTest::toggleItem()
{
    QFETCH(Drawer::State, state);
    QFETCH(QString, title);
    _fresh->openWindow();
    bringInto(controller().drawer, state);
    QVERIFY(validate(QStringLiteral("handleToggleKDRDrawer:")));
    QCOMPARE(this->title(QStringLiteral("handleToggleKDRDrawer:")), title);
}

void MenuAdditionsTest::tabItem_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("tab");
    QTest::addColumn<QString>("name");
    QTest::newRow("Scratchpad") << "handleShowScratchpadTabView:"
                                << "Scratchpad"
                                << "Scratchpad";
    QTest::newRow("Bookmarks") << "handleShowBookmarkTabView:"
                               << "Bookmarks"
                               << "Bookmark";
    QTest::newRow("History") << "handleShowHistoryTabView:"
                             << "History"
                             << "History";
}

void MenuAdditionsTest::tabItem()
{
    QFETCH(QString, action);
    QFETCH(QString, tab);
    QFETCH(QString, name);
    _fresh->openWindow();
    const QString show = QStringLiteral("Show %1 View").arg(name);
    const QString close = QStringLiteral("Close %1 View").arg(name);

    for (const char *current : {"Scratchpad", "Bookmarks", "History"}) {
        controller().currentTab = QString::fromLatin1(current);
        for (Drawer::State state : {Drawer::Closed, Drawer::Open}) {
            state == Drawer::Open ? controller().drawer.open() : controller().drawer.close();
            QCOMPARE(controller().drawer.state(), state);
            QVERIFY(validate(action));
            QCOMPARE(title(action), state == Drawer::Open && tab == QLatin1String(current) ? close : show);
        }
    }
    controller().currentTab = tab;
    controller().drawer.close();
    bringInto(controller().drawer, Drawer::Opening);
    QVERIFY(validate(action));
    QCOMPARE(title(action), close);
}

void MenuAdditionsTest::focusItem_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("title");
    // The whole host name, though the command goes by the site key.
    QTest::newRow("site") << "http://news.example.com/" << true << "Focus on news.example.com";
    QTest::newRow("file") << "file:///home/ann/a.html" << false << "Focus on Current Site";
    QTest::newRow("no page") << QString() << false << "Focus on Current Site";
}

void MenuAdditionsTest::focusItem()
{
    QFETCH(QString, address);
    QFETCH(bool, enabled);
    QFETCH(QString, title);
    const QString action = QStringLiteral("handleFocusOnCurrentSiteRequest:");
    const auto window = _fresh->openWindow();
    QVERIFY(!validate(action)); // no frame yet
    QCOMPARE(this->title(action), QStringLiteral("Focus on Current Site"));
    const auto view = window->addTab(address);
    controller().frame = view->frame;
    item(action)->setText(QStringLiteral("another"));
    QCOMPARE(validate(action), enabled);
    QCOMPARE(this->title(action), title);
}

void MenuAdditionsTest::saveItem_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("site") << "http://news.example.com/" << true;
    QTest::newRow("file") << "file:///home/ann/a.html" << false;
    QTest::newRow("no page") << QString() << false;
}

void MenuAdditionsTest::saveItem()
{
    QFETCH(QString, address);
    QFETCH(bool, enabled);
    const QString action = QStringLiteral("handleSaveCurrentURLRequest:");
    const auto window = _fresh->openWindow();
    const QString before = title(action);
    QVERIFY(!validate(action));
    const auto view = window->addTab(address);
    controller().frame = view->frame;
    QCOMPARE(validate(action), enabled);
    QCOMPARE(title(action), before);
}

void MenuAdditionsTest::switchbackItem_data()
{
    QTest::addColumn<QString>("tab");
    QTest::addColumn<QString>("previousLabel");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("title");
    QTest::newRow("label") << "Scratchpad"
                           << "example.com" << true << "Show Site List for example.com";
    QTest::newRow("empty label") << "Scratchpad"
                                 << "" << false << "Show Previous Site List";
    QTest::newRow("no label") << "Scratchpad" << QString() << false << "Show Previous Site List";
    QTest::newRow("Bookmarks") << "Bookmarks"
                               << "example.com" << false << "Show Previous Site List";
    QTest::newRow("History") << "History"
                             << "example.com" << false << "Show Previous Site List";
}

void MenuAdditionsTest::switchbackItem()
{
    QFETCH(QString, tab);
    QFETCH(QString, previousLabel);
    QFETCH(bool, enabled);
    QFETCH(QString, title);
    const QString action = QStringLiteral("handleSwitchbackRequest:");
    _fresh->openWindow();
    controller().currentTab = tab;
    controller().previousLabel = previousLabel;
    item(action)->setText(QStringLiteral("another"));
    QCOMPARE(validate(action), enabled);
    QCOMPARE(this->title(action), title);

    // Without a drawer the title is the plain one as well.
    item(action)->setText(QStringLiteral("another"));
    _fresh->host.key.reset();
    QVERIFY(!validate(action));
    QCOMPARE(this->title(action), QStringLiteral("Show Previous Site List"));
}

void MenuAdditionsTest::titlesAreInTheUsersLanguage()
{
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    const auto titleNow = [this](const QString &action) {
        validate(action);
        return title(action);
    };
    QCOMPARE(titleNow("handleNewNoteRequest:"), QStringLiteral("Neue Notiz..."));
    QCOMPARE(titleNow("handleSwitchbackRequest:"), QStringLiteral("Vorherige Liste zeigen"));
    const auto window = _fresh->openWindow();
    QCOMPARE(titleNow("handleToggleKDRDrawer:"), QStringLiteral("Schublade \u00f6ffnen"));
    QCOMPARE(titleNow("handleShowScratchpadTabView:"), QStringLiteral("Scratchpad zeigen"));
    QCOMPARE(titleNow("handleShowBookmarkTabView:"), QStringLiteral("Bookmarks zeigen"));
    QCOMPARE(titleNow("handleShowHistoryTabView:"), QStringLiteral("History zeigen"));
    QCOMPARE(titleNow("handleFocusOnCurrentSiteRequest:"), QStringLiteral("Aktuelle Website zeigen"));
    controller().drawer.open();
    controller().frame = window->addTab(QStringLiteral("http://news.example.com/"))->frame;
    controller().previousLabel = QStringLiteral("example.com");
    QCOMPARE(titleNow("handleToggleKDRDrawer:"), QStringLiteral("Schublade schlie\u00dfen"));
    QCOMPARE(titleNow("handleFocusOnCurrentSiteRequest:"), QStringLiteral("news.example.com zeigen"));
    controller().currentTab = QStringLiteral("Bookmarks");
    QCOMPARE(titleNow("handleShowBookmarkTabView:"), QStringLiteral("Bookmarks schlie\u00dfen"));
    controller().currentTab = QStringLiteral("History");
    QCOMPARE(titleNow("handleShowHistoryTabView:"), QStringLiteral("History schlie\u00dfen"));
    controller().currentTab = QStringLiteral("Scratchpad");
    QCOMPARE(titleNow("handleShowScratchpadTabView:"), QStringLiteral("Scratchpad schlie\u00dfen"));
    // In English, whatever the language.
    QCOMPARE(titleNow("handleSwitchbackRequest:"), QStringLiteral("Show Site List for example.com"));
}

void MenuAdditionsTest::ampersandInTitleIsShown()
{
    _fresh->openWindow();
    controller().previousLabel = QStringLiteral("Bed & Breakfast %@");
    QVERIFY(validate(QStringLiteral("handleSwitchbackRequest:")));
    QCOMPARE(title(QStringLiteral("handleSwitchbackRequest:")),
             QStringLiteral("Show Site List for Bed && Breakfast %@"));
}

void MenuAdditionsTest::namesFitIntoTheMenu_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown"); // a pattern
    QTest::newRow("plain") << "A site"
                           << "A site";
    QTest::newRow("tab") << "A\tsite"
                         << "A site"; // a key would stand behind it
    QTest::newRow("line end") << "A\nsite"
                              << "A site";
    QTest::newRow("long") << "begin" + QString(10000, u'-') + "end"
                          << "begin-{3,200}\u2026-{3,200}end";
}

void MenuAdditionsTest::namesFitIntoTheMenu()
{
    QFETCH(QString, name);
    QFETCH(QString, shown);
    _fresh->openWindow();
    controller().previousLabel = name;
    QVERIFY(validate(QStringLiteral("handleSwitchbackRequest:")));
    const QString text = title(QStringLiteral("handleSwitchbackRequest:"));
    const QRegularExpression pattern(QRegularExpression::anchoredPattern("Show Site List for " + shown));
    QVERIFY2(pattern.match(text).hasMatch(), qPrintable(text.left(300)));
}

void MenuAdditionsTest::longHostNameFitsIntoTheMenu()
{
    const auto window = _fresh->openWindow();
    controller().frame = window->addTab("http://begin" + QString(5000, u'-') + ".end/")->frame;
    QVERIFY(validate(QStringLiteral("handleFocusOnCurrentSiteRequest:")));
    const QString text = title(QStringLiteral("handleFocusOnCurrentSiteRequest:"));
    const QRegularExpression pattern(QStringLiteral("^Focus on begin-{3,200}\u2026-{3,200}\\.end$"));
    QVERIFY2(pattern.match(text).hasMatch(), qPrintable(text.left(300)));
}

void MenuAdditionsTest::restoreItem()
{
    int shown = 0;
    RestorePanel::setOpener([&shown] { ++shown; });
    QAction *item = MenuItem::itemWithTag(store().wayfoldMenu(), 14);
    QVERIFY(!store().validateMenuItem(item)); // without a drawer
    _fresh->openWindow();
    QVERIFY(store().validateMenuItem(item));
    QCOMPARE(item->text(), QStringLiteral("Restore from Backup..."));
    store().performMenuItem(item);
    QCOMPARE(shown, 1);
    RestorePanel::setOpener({});
    store().performMenuItem(item);
    QCOMPARE(shown, 1);
}

void MenuAdditionsTest::releaseItem()
{
    const QString action = QStringLiteral("handleCheckForNewReleaseRequest:");
    const QString before = title(action);
    QVERIFY(validate(action)); // even without a drawer
    _fresh->openWindow();
    QVERIFY(validate(action));
    QCOMPARE(title(action), before);
}

void MenuAdditionsTest::preferencesItem()
{
    const QString action = QStringLiteral("handleShowPrefsWindow:");
    const QString before = title(action);
    QVERIFY(!validate(action)); // no drawer
    _fresh->openWindow();
    QVERIFY(validate(action));
    store().setPrefsWindowShown(true);
    QVERIFY(!validate(action));
    store().setPrefsWindowShown(false);
    QVERIFY(validate(action));
    _fresh->host.key.reset();
    QVERIFY(!validate(action));
    QCOMPARE(title(action), before);
}

void MenuAdditionsTest::aboutItem()
{
    const QString action = QStringLiteral("handleShowAboutWindow:");
    const QString before = title(action);
    QVERIFY(validate(action)); // even without a drawer
    _fresh->openWindow();
    QVERIFY(validate(action));
    QCOMPARE(title(action), before);
}

void MenuAdditionsTest::otherItemsAskTheList()
{
    const auto window = _fresh->openWindow();
    const QStringList actions = {
        "handleNewSubFolderRequest:", "handleNewNoteRequest:", "handleNewEmailRequest:", "handleNewPersonRequest:"};
    for (const QString &action : actions) {
        for (bool answer : {true, false}) {
            controller().calls.clear();
            controller().listAnswer = answer;
            const QString before = title(action);
            QCOMPARE(validate(action), answer);
            QCOMPARE(controller().calls, QStringList{"validate " + action});
            QCOMPARE(title(action), before);
        }
    }
    QAction unknown;
    MenuItem::setAction(&unknown, QStringLiteral("handleSomethingElse:"));
    controller().listAnswer = true;
    QVERIFY(store().validateMenuItem(&unknown));
    controller().drawer.setController(nullptr);
    QVERIFY(!store().validateMenuItem(&unknown));
}

void MenuAdditionsTest::menuIsValidatedWhenItShows()
{
    QAction *toggle = item(QStringLiteral("handleToggleKDRDrawer:"));
    Q_EMIT store().wayfoldMenu()->aboutToShow();
    QVERIFY(!toggle->isEnabled());
    Q_EMIT store().wayfoldMenu()->aboutToHide();
    _fresh->openWindow();
    controller().drawer.open();
    Q_EMIT store().wayfoldMenu()->aboutToShow();
    QVERIFY(toggle->isEnabled());
    QCOMPARE(toggle->text(), QStringLiteral("Close Drawer"));
    Q_EMIT store().wayfoldMenu()->aboutToHide();
}

// ---- Commands

void MenuAdditionsTest::commandsWithoutDrawerDoNothing()
{
    _fresh->openWindow();
    _fresh->host.key.reset();
    for (const ItemOfMenu &command : itemsOfMenu) {
        const QByteArray action = command.action;
        if (action != "handleShowAboutWindow:" && action != "handleCheckForNewReleaseRequest:")
            store().performMenuItem(item(QString::fromLatin1(command.action)));
    }
    QVERIFY(controller().calls.isEmpty());
    QCOMPARE(controller().drawer.state(), Drawer::Closed);
}

void MenuAdditionsTest::toggleOpensAndCloses()
{
    _fresh->openWindow();
    QAction *toggle = item(QStringLiteral("handleToggleKDRDrawer:"));
    toggle->trigger();
    QCOMPARE(controller().drawer.state(), Drawer::Open);
    QCOMPARE(controller().calls, (QStringList{"manually", "first responder"}));
    controller().calls.clear();
    toggle->trigger();
    QCOMPARE(controller().drawer.state(), Drawer::Closed);
    QCOMPARE(controller().calls, QStringList{"not manually"});
}

void MenuAdditionsTest::tabCommandOnClosedDrawer_data()
{
    tabItem_data();
}

void MenuAdditionsTest::tabCommandOnClosedDrawer()
{
    QFETCH(QString, action);
    QFETCH(QString, tab);
    _fresh->openWindow();
    controller().currentTab = tab; // current, but not showing
    item(action)->trigger();
    QCOMPARE(controller().drawer.state(), Drawer::Open);
    QCOMPARE(controller().calls, (QStringList{"show " + tab, "not manually", "manually", "first responder"}));
    QVERIFY(controller().openedManually);
}

void MenuAdditionsTest::tabCommandOnOtherTabSwitches_data()
{
    tabItem_data();
}

void MenuAdditionsTest::tabCommandOnOtherTabSwitches()
{
    QFETCH(QString, action);
    QFETCH(QString, tab);
    _fresh->openWindow();
    controller().currentTab = QStringLiteral("none");
    controller().drawer.open();
    item(action)->trigger();
    QCOMPARE(controller().drawer.state(), Drawer::Open);
    QCOMPARE(controller().calls, QStringList{"show " + tab}); // how it was opened is left alone
}

void MenuAdditionsTest::tabCommandOnCurrentTabCloses_data()
{
    tabItem_data();
}

void MenuAdditionsTest::tabCommandOnCurrentTabCloses()
{
    QFETCH(QString, action);
    QFETCH(QString, tab);
    _fresh->openWindow();
    controller().currentTab = tab;
    controller().drawer.open();
    item(action)->trigger();
    QCOMPARE(controller().drawer.state(), Drawer::Closed);
    QCOMPARE(controller().calls, QStringList{"not manually"});
}

void MenuAdditionsTest::focusCommand()
{
    const auto window = _fresh->openWindow();
    QVERIFY(!_fresh->settings().autoFocusOnSiteChange()); // works all the same
    const auto view = window->addTab(QStringLiteral("http://news.example.com/"));
    controller().frame = view->frame;
    item(QStringLiteral("handleFocusOnCurrentSiteRequest:"))->trigger();
    QCOMPARE(controller().drawer.state(), Drawer::Open);
    QCOMPARE(controller().calls, (QStringList{"label:example.com", "show Scratchpad"}));
    QVERIFY(!controller().openedManually);
}

void MenuAdditionsTest::focusCommandOnOpenDrawerAndPageWithoutHost()
{
    const auto window = _fresh->openWindow();
    controller().drawer.open();
    controller().frame = window->addTab(QStringLiteral("file:///a.html"))->frame;
    store().handleFocusOnCurrentSiteRequest(nullptr);
    QCOMPARE(controller().calls, (QStringList{"label:null", "show Scratchpad"}));
    QCOMPARE(controller().drawer.state(), Drawer::Open);
}

void MenuAdditionsTest::requestsArePassedOn_data()
{
    QTest::addColumn<QString>("action");
    for (const char *action : {"handleSaveCurrentURLRequest:", "handleSwitchbackRequest:", "handleNewSubFolderRequest:",
                               "handleNewNoteRequest:", "handleNewEmailRequest:", "handleNewPersonRequest:"})
        QTest::newRow(action) << QString::fromLatin1(action);
}

void MenuAdditionsTest::requestsArePassedOn()
{
    QFETCH(QString, action);
    _fresh->openWindow();
    QAction *sender = item(action);
    store().performMenuItem(sender);
    QCOMPARE(controller().calls, QStringList{action});
    QCOMPARE(controller().lastSender, sender);
}

void MenuAdditionsTest::releaseCommand()
{
    QAction *command = item(QStringLiteral("handleCheckForNewReleaseRequest:"));
    const OtherBundle bundle; // tells no address to ask
    bool hasAnswered = false;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &timer, [&hasAnswered] {
        if (QWidget *alert = QApplication::activeModalWidget())
            hasAnswered = alert->close();
    });
    timer.start();
    command->trigger();
    QVERIFY(hasAnswered);
}

void MenuAdditionsTest::preferencesCommand()
{
    const QString action = QStringLiteral("handleShowPrefsWindow:");
    _fresh->openWindow();
    store().performMenuItem(item(action)); // nobody has them yet
    int count = 0;
    PreferencesWindow::setOpener([&count] { ++count; });
    item(action)->trigger();
    PreferencesWindow::setOpener({});
    QCOMPARE(count, 1);
    QVERIFY(controller().calls.isEmpty());
}

void MenuAdditionsTest::aboutCommand()
{
    item(QStringLiteral("handleShowAboutWindow:"))->trigger();
    QVERIFY(WayfoldAboutController::window());
    QVERIFY(WayfoldAboutController::window()->isVisible());
    WayfoldAboutController::window()->close();
    QTRY_VERIFY(!WayfoldAboutController::window());
}

void MenuAdditionsTest::unknownActionDoesNothing()
{
    _fresh->openWindow();
    QAction unknown;
    store().performMenuItem(&unknown);
    MenuItem::setAction(&unknown, QStringLiteral("handleSomethingElse:"));
    store().performMenuItem(&unknown);
    QVERIFY(controller().calls.isEmpty());
}

QTEST_MAIN(MenuAdditionsTest)
#include "MenuAdditionsTest.moc"
