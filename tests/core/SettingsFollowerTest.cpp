#include "core/SettingsFollower.h"

#include "core/ContactSource.h"
#include "core/Notifications.h"
#include "tests/core/StoreInTemporaryHome.h"
#include "tests/support/OtherProcess.h"

#include <QMenu>
#include <optional>

// What another process changes in the settings is done here as if the user had done it here.
class SettingsFollowerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void reaction_data();
    void reaction();
    void smartFoldersComeAndGo();
    void iconsReloadTheLists();
    void shortcutsOfTheMenuFollow();
    void contactsFollow();
    void nothingIsDoneWhenItHasGone();

private:
    void changeElsewhere(const QString &key, const QVariant &value) const
    {
        OtherProcess::changeSetting(key, value);
        UserDefaults::standardUserDefaults().lookForChanges();
        NotificationLog::deliverPending();
    }
    QAction *itemWithTag(int tag) const { return MenuItem::itemWithTag(_fresh->store().wayfoldMenu(), tag); }

    std::optional<StoreInTemporaryHome> _fresh;
};

void SettingsFollowerTest::init()
{
    _fresh.emplace();
    QVERIFY(UserDefaults::standardUserDefaults().synchronize());
    _fresh->settings().takeKeysChangedElsewhere();
}

void SettingsFollowerTest::cleanup()
{
    NotificationLog::deliverPending();
    _fresh.reset();
}

void SettingsFollowerTest::reaction_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("reactions");

    const auto row = [](const char *key, const QVariant &value, const QStringList &reactions) {
        QTest::newRow(key) << QString::fromLatin1(key) << value << reactions;
    };
    row("WayfoldShowBookmarkIcons", 0, {"reload"});
    row("WayfoldShowFavIcons", 0, {"reload"});
    row("WayfoldHistoryGroupingKey", "1", {"regroup"});
    row("WayfoldCreateAutoFolders", 0, {"remove"});
    row("WayfoldListViewFontName", "Serif", {"font"});
    row("WayfoldListViewFontSize", 20.0, {"font"});
    row("WayfoldMenuItemShortcuts", QVariantMap{{"4_KEY", ""}, {"4_MODIFIER", 0}}, {"shortcuts"});
    row("WayfoldAutoFocusOnSiteChange", 1, {});
    row("WayfoldOpenDrawerForKnownSite", 1, {});
    row("WayfoldConfirmItemDelete", 0, {});
    row("SomethingOfAnotherVersion", 1, {});
}

void SettingsFollowerTest::reaction()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QStringList, reactions);
    QStringList done;
    const auto note = [&done](const char *reaction) { return [&done, reaction] { done.append(reaction); }; };
    const SettingsFollower follower({.reloadLists = note("reload"),
                                     .regroupHistory = note("regroup"),
                                     .addSmartFolders = note("add"),
                                     .removeSmartFolders = note("remove"),
                                     .showShortcuts = note("shortcuts")});
    NotificationCenter::defaultCenter().addObserver(
        &done, [&done](const Notification & /*notification*/) { done.append("font"); },
        Notifications::ListViewFontChangeNotification);
    changeElsewhere(key, value);
    changeElsewhere(key, value); // nothing new
    NotificationCenter::defaultCenter().removeObserver(&done);
    QCOMPARE(done, reactions);
}

void SettingsFollowerTest::smartFoldersComeAndGo()
{
    const auto folder = StoreInTemporaryHome::addFolder(_fresh->store().bookmarkRoot(), "example.com");
    changeElsewhere("WayfoldCreateAutoFolders", 0);
    QVERIFY(folder->isEmpty());
    changeElsewhere("WayfoldCreateAutoFolders", 1);
    QCOMPARE(StoreInTemporaryHome::titles(folder), (QStringList{"Related Bookmarks", "Related History"}));
    changeElsewhere("WayfoldCreateAutoFolders", 0);
    QVERIFY(folder->isEmpty());
}

void SettingsFollowerTest::iconsReloadTheLists()
{
    const auto window = _fresh->openWindow();
    const int before = _fresh->controller().drawer.reloadCount;
    changeElsewhere("WayfoldShowBookmarkIcons", 0);
    QCOMPARE(_fresh->controller().drawer.reloadCount, before + 1);
}

void SettingsFollowerTest::shortcutsOfTheMenuFollow()
{
    QVERIFY(_fresh->store().wayfoldMenu());
    QVariantMap shortcuts = WayfoldDefaults::defaultMenuItemShortcuts();
    shortcuts.insert("1_KEY", "R");
    shortcuts.insert("1_MODIFIER", qlonglong(1179648));
    shortcuts.insert("4_KEY", "");
    shortcuts.insert("4_MODIFIER", 0);
    changeElsewhere("WayfoldMenuItemShortcuts", shortcuts);
    QCOMPARE(itemWithTag(1)->shortcut(), QKeySequence("Ctrl+Shift+R"));
    QVERIFY(itemWithTag(4)->shortcut().isEmpty());
    QCOMPARE(itemWithTag(5)->shortcut(), QKeySequence("Ctrl+Shift+E"));
}

void SettingsFollowerTest::contactsFollow()
{
    ContactSource::Makers makers;
    makers.lookForDesktop = [](const std::function<void(bool)> &answer) { answer(false); };
    makers.desktop = [] { return std::make_unique<ContactStore>(); };
    makers.folder = [](const QString &) { return std::make_unique<ContactStore>(); };
    const ContactSource source(makers);
    _fresh->store();
    QCOMPARE(source.place(), ContactSource::Folder);
    changeElsewhere("WayfoldContactSource", "none");
    QCOMPARE(source.place(), ContactSource::Nowhere);
    changeElsewhere("WayfoldContactSource", "folder");
    changeElsewhere("WayfoldContactFolder", "/somewhere");
    QCOMPARE(source.folder(), QStringLiteral("/somewhere"));
}

void SettingsFollowerTest::nothingIsDoneWhenItHasGone()
{
    bool isDone = false;
    {
        SettingsFollower::Reactions reactions;
        reactions.reloadLists = [&isDone] { isDone = true; };
        const SettingsFollower follower(reactions);
    }
    changeElsewhere("WayfoldShowBookmarkIcons", 0);
    QVERIFY(!isDone);
}

QTEST_MAIN(SettingsFollowerTest)
#include "SettingsFollowerTest.moc"
