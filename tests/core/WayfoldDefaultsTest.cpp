#include "core/settings/WayfoldDefaults.h"

#include "platform/base/NotificationCenter.h"
#include "platform/files/PropertyList.h"
#include "platform/files/UserDefaults.h"
#include "platform/widgets/MenuItem.h"
#include "tests/support/FakeHost.h"
#include "tests/support/OtherProcess.h"
#include "tests/support/TemporaryHome.h"

#include <QFontDatabase>
#include <QtTest>
#include <optional>

namespace
{
struct BoolSetting
{
    const char *key;
    bool (WayfoldDefaults::*get)() const;
    void (WayfoldDefaults::*set)(bool);
};

const BoolSetting boolSettings[] = {
    {"WayfoldAutoFocusOnSiteChange", &WayfoldDefaults::autoFocusOnSiteChange,
     &WayfoldDefaults::setAutoFocusOnSiteChange},
    {"WayfoldShowBookmarkIcons", &WayfoldDefaults::showBookmarkIcons, &WayfoldDefaults::setShowBookmarkIcons},
    {"WayfoldOpenDrawerForKnownSite", &WayfoldDefaults::openDrawerForKnownSite,
     &WayfoldDefaults::setOpenDrawerForKnownSite},
    {"WayfoldOpenDrawerOnNewWindow", &WayfoldDefaults::openDrawerOnNewWindow,
     &WayfoldDefaults::setOpenDrawerOnNewWindow},
    {"WayfoldCloseDrawerForUnknownSite", &WayfoldDefaults::closeDrawerForUnknownSite,
     &WayfoldDefaults::setCloseDrawerForUnknownSite},
    {"WayfoldConfirmItemDelete", &WayfoldDefaults::confirmItemDelete, &WayfoldDefaults::setConfirmItemDelete},
    {"WayfoldCreateAutoFolders", &WayfoldDefaults::createAutoFolders, &WayfoldDefaults::setCreateAutoFolders},
    {"WayfoldShowFavIcons", &WayfoldDefaults::showFavicons, &WayfoldDefaults::setShowFavicons},
};

struct FloatSetting
{
    const char *key;
    float (WayfoldDefaults::*get)() const;
    void (WayfoldDefaults::*set)(float);
};

const FloatSetting floatSettings[] = {
    {"WayfoldDefaultDrawerContentWidth", &WayfoldDefaults::defaultDrawerContentWidth,
     &WayfoldDefaults::setDefaultDrawerContentWidth},
    {"WayfoldListViewFontSize", &WayfoldDefaults::listViewFontSize, &WayfoldDefaults::setListViewFontSize},
};

struct StringSetting
{
    const char *key;
    QString (WayfoldDefaults::*get)() const;
    void (WayfoldDefaults::*set)(const QString &);
};

const StringSetting stringSettings[] = {
    {"WayfoldHistoryGroupingKey", &WayfoldDefaults::historyGroupingStyle, &WayfoldDefaults::setHistoryGroupingStyle},
    {"WayfoldListViewFontName", &WayfoldDefaults::listViewFontName, &WayfoldDefaults::setListViewFontName},
    {"WayfoldDefaultFirstTab", &WayfoldDefaults::defaultFirstTabIdentifier,
     &WayfoldDefaults::setDefaultFirstTabIdentifier},
    {"WayfoldContactSource", &WayfoldDefaults::contactSource, &WayfoldDefaults::setContactSource},
    {"WayfoldContactFolder", &WayfoldDefaults::contactFolder, &WayfoldDefaults::setContactFolder},
};

const QString shortcutsKey = QStringLiteral("WayfoldMenuItemShortcuts");

WayfoldDefaults &defaults()
{
    return WayfoldDefaults::sharedInstance();
}

QVariantMap domain()
{
    return UserDefaults::standardUserDefaults().persistentDomainForName(QStringLiteral("org.wayfold.Wayfold"));
}

// As after a restart of the browser.
void startAgain()
{
    QVERIFY(UserDefaults::standardUserDefaults().synchronize());
    UserDefaults::standardUserDefaults().reset();
    defaults().loadDefaults();
}

// As a user who has these settings stored starts.
void startWith(const QVariantMap &stored)
{
    UserDefaults::standardUserDefaults().setPersistentDomainForName(stored, QStringLiteral("org.wayfold.Wayfold"));
    defaults().loadDefaults();
}

// A value that no setting of that name should have, and what it counts as.
struct ForeignValue
{
    QVariant value;
    bool isOn;
    float number;
    QString text;
    unsigned modifierMask;
};

QList<ForeignValue> foreignValues()
{
    return {{QVariantMap{{QStringLiteral("a"), 1}}, false, 0, QString(), 0},
            {QVariantList{1, 2}, false, 0, QString(), 0},
            {QByteArray("\x01\xff"), false, 0, QStringLiteral("\x01\uFFFD"), 0},
            {QDateTime::fromSecsSinceEpoch(1, Qt::UTC), false, 0, QStringLiteral("1970-01-01T00:00:01.000Z"), 0},
            {true, true, 1, QStringLiteral("true"), 1},
            {4.5, false, 4.5F, QStringLiteral("4.5"), 4},
            {qlonglong(-7), false, -7, QStringLiteral("-7"), 4294967289U},
            {QStringLiteral("text"), false, 0, QStringLiteral("text"), 0}};
}
} // namespace

class WayfoldDefaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void freshUserHasDefault_data();
    void freshUserHasDefault();
    void freshUserHasFourteenKeys();
    void defaultsReachTheDisk();
    void loadingAlwaysWrites();
    void storedValuesStay();
    void siteIconsFollowIconsWhenTheyWereNeverSet();
    void boolIsOnOnlyForOne_data();
    void boolIsOnOnlyForOne();
    void boolSetterStoresZeroOrOne();
    void floatGetterReadsNumbersAndText_data();
    void floatGetterReadsNumbersAndText();
    void floatSetterStoresNumber();
    void stringSetterStoresText();
    void nullStringTakesTheValueAway();
    void foreignValuesAreNoError();

    void defaultShortcut_data();
    void defaultShortcut();
    void defaultTableHasNothingElse();
    void shortcutWithoutKeyIsFilledIn();
    void shortcutWithEmptyKeyStays();
    void shortcutWithKeyAloneKeepsNoModifier();
    void shortcutTableOfForeignTypeIsReplaced();
    void shortcutSettersWriteToTheHost();
    void shortcutReachesTheDomainWithTheNextSetter();
    void shortcutsFromTheDiskCanBeChanged();
    void shortcutSettersWorkWithoutHost();
    void foreignShortcutEntriesAreNoError();
    void keyOutlivesARestart_data();
    void keyOutlivesARestart();
    void storedFormsOfKeys_data();
    void storedFormsOfKeys();

    void emptyFontNameGivesSmallSystemFont_data();
    void emptyFontNameGivesSmallSystemFont();
    void unknownFontNameGivesNone();
    void knownFontNameGivesFontOfThatSize();
    void fontNameMayHoldAStyle();
    void fontNameOfFontIsFoundAgain();
    void fontWithoutStyleNameIsFoundAgain();

    void hostBoolean_data();
    void hostBoolean();
    void hostObject();
    void noHostHasNoSettings();

    void changeByAnotherProcessCounts();
    void changeByAnotherProcessIsTold();
    void changeByAnotherProcessIsNotWrittenOver();
    void settingThatAnotherProcessTookAwayHasItsDefault();
    void shortcutOfAnotherProcessCounts();
    void shortcutThatOnlyTheHostHasStays();

private:
    std::optional<TemporaryHome> _home;
};

void WayfoldDefaultsTest::init()
{
    _home.emplace();
    defaults().loadDefaults();
}

void WayfoldDefaultsTest::cleanup()
{
    UserDefaults::standardUserDefaults().reset();
    _home.reset();
}

void WayfoldDefaultsTest::freshUserHasDefault_data()
{
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("WayfoldDefaultDrawerContentWidth") << QVariant(250.0);
    QTest::newRow("WayfoldAutoFocusOnSiteChange") << QVariant(qlonglong(0));
    QTest::newRow("WayfoldShowBookmarkIcons") << QVariant(qlonglong(1));
    QTest::newRow("WayfoldOpenDrawerForKnownSite") << QVariant(qlonglong(0));
    QTest::newRow("WayfoldOpenDrawerOnNewWindow") << QVariant(qlonglong(0));
    QTest::newRow("WayfoldCloseDrawerForUnknownSite") << QVariant(qlonglong(0));
    QTest::newRow("WayfoldHistoryGroupingKey") << QVariant(QStringLiteral("4"));
    QTest::newRow("WayfoldListViewFontName") << QVariant(QStringLiteral("LucidaGrande"));
    QTest::newRow("WayfoldListViewFontSize") << QVariant(12.0);
    QTest::newRow("WayfoldConfirmItemDelete") << QVariant(qlonglong(1));
    QTest::newRow("WayfoldMenuItemShortcuts") << QVariant(WayfoldDefaults::defaultMenuItemShortcuts());
    QTest::newRow("WayfoldDefaultFirstTab") << QVariant(QStringLiteral("0"));
    QTest::newRow("WayfoldCreateAutoFolders") << QVariant(qlonglong(1));
    QTest::newRow("WayfoldShowFavIcons") << QVariant(qlonglong(1));
}

void WayfoldDefaultsTest::freshUserHasDefault()
{
    QFETCH(QVariant, expected);
    QCOMPARE(domain().value(QString::fromLatin1(QTest::currentDataTag())), expected);
}

void WayfoldDefaultsTest::freshUserHasFourteenKeys()
{
    QCOMPARE(domain().size(), 14);
}

void WayfoldDefaultsTest::defaultsReachTheDisk()
{
    const QVariantMap inMemory = domain();
    QVERIFY(UserDefaults::standardUserDefaults().synchronize());
    const QString file = _home->path(QStringLiteral("Library/Preferences/org.wayfold.Wayfold.plist"));
    QCOMPARE(PropertyList::readDictionaryFile(file), inMemory);

    // Read back from the disk, everything means the same.
    UserDefaults::standardUserDefaults().reset();
    defaults().loadDefaults();
    QCOMPARE(domain(), inMemory);
    QVERIFY(defaults().showBookmarkIcons());
    QVERIFY(!defaults().autoFocusOnSiteChange());
    QCOMPARE(defaults().defaultDrawerContentWidth(), 250.0F);
    QCOMPARE(defaults().shortcutModifierMaskForItem(7), 1179648U);
}

void WayfoldDefaultsTest::loadingAlwaysWrites()
{
    const QString file = _home->path(QStringLiteral("Library/Preferences/org.wayfold.Wayfold.plist"));
    QVERIFY(UserDefaults::standardUserDefaults().synchronize());
    QVERIFY(QFile::remove(file));
    const QVariantMap before = domain();
    defaults().loadDefaults(); // adds nothing
    QCOMPARE(domain(), before);
    QVERIFY(UserDefaults::standardUserDefaults().synchronize());
    QCOMPARE(PropertyList::readDictionaryFile(file), before);
}

void WayfoldDefaultsTest::storedValuesStay()
{
    const QVariantMap stored = {{QStringLiteral("WayfoldDefaultDrawerContentWidth"), 0.0},
                                {QStringLiteral("WayfoldHistoryGroupingKey"), QStringLiteral("")},
                                {QStringLiteral("WayfoldConfirmItemDelete"), qlonglong(0)},
                                {QStringLiteral("SomethingOfAnotherVersion"), QStringLiteral("kept")}};
    startWith(stored);
    const QVariantMap now = domain();
    for (auto entry = stored.cbegin(); entry != stored.cend(); ++entry)
        QCOMPARE(now.value(entry.key()), entry.value());
    QCOMPARE(now.size(), 15);
}

void WayfoldDefaultsTest::siteIconsFollowIconsWhenTheyWereNeverSet()
{
    startWith({{QStringLiteral("WayfoldShowBookmarkIcons"), qlonglong(0)}});
    QCOMPARE(domain().value(QStringLiteral("WayfoldShowFavIcons")), QVariant(qlonglong(0)));
    QVERIFY(!defaults().showFavicons());

    startWith({{QStringLiteral("WayfoldShowBookmarkIcons"), qlonglong(0)},
               {QStringLiteral("WayfoldShowFavIcons"), qlonglong(1)}});
    QVERIFY(defaults().showFavicons());
}

void WayfoldDefaultsTest::boolIsOnOnlyForOne_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<bool>("on");

    QTest::newRow("number 1") << QVariant(qlonglong(1)) << true;
    QTest::newRow("real 1") << QVariant(1.0) << true;
    QTest::newRow("boolean true") << QVariant(true) << true;
    QTest::newRow("text 1") << QVariant(QStringLiteral("1")) << true;
    QTest::newRow("text 1.0") << QVariant(QStringLiteral("1.0")) << true;
    QTest::newRow("number 0") << QVariant(qlonglong(0)) << false;
    QTest::newRow("number 2") << QVariant(qlonglong(2)) << false;
    QTest::newRow("number -1") << QVariant(qlonglong(-1)) << false;
    QTest::newRow("real 0.5") << QVariant(0.5) << false;
    QTest::newRow("boolean false") << QVariant(false) << false;
    QTest::newRow("text yes") << QVariant(QStringLiteral("yes")) << false;
    QTest::newRow("empty text") << QVariant(QStringLiteral("")) << false;
    QTest::newRow("dictionary") << QVariant(QVariantMap{{QStringLiteral("a"), 1}}) << false;
    QTest::newRow("array") << QVariant(QVariantList{1}) << false;
    QTest::newRow("data") << QVariant(QByteArray("1")) << false;
    QTest::newRow("date") << QVariant(QDateTime::fromSecsSinceEpoch(1)) << false;
}

void WayfoldDefaultsTest::boolIsOnOnlyForOne()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, on);
    for (const BoolSetting &setting : boolSettings) {
        startWith({{QString::fromLatin1(setting.key), stored}});
        QVERIFY2((defaults().*setting.get)() == on, setting.key);
    }
}

void WayfoldDefaultsTest::boolSetterStoresZeroOrOne()
{
    for (const BoolSetting &setting : boolSettings) {
        const QString key = QString::fromLatin1(setting.key);
        const QVariantMap before = domain();
        for (bool on : {true, false, true}) {
            (defaults().*setting.set)(on);
            QCOMPARE((defaults().*setting.get)(), on);
            QVariantMap expected = before;
            expected.insert(key, qlonglong(on ? 1 : 0));
            QCOMPARE(domain(), expected); // at once, and nothing else
        }
    }
}

void WayfoldDefaultsTest::floatGetterReadsNumbersAndText_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<float>("expected");

    QTest::newRow("real") << QVariant(312.5) << 312.5F;
    QTest::newRow("integer") << QVariant(qlonglong(14)) << 14.0F;
    QTest::newRow("negative") << QVariant(qlonglong(-3)) << -3.0F;
    QTest::newRow("text") << QVariant(QStringLiteral("18.25")) << 18.25F;
    QTest::newRow("text with more") << QVariant(QStringLiteral(" 18 points")) << 18.0F;
    QTest::newRow("no number") << QVariant(QStringLiteral("wide")) << 0.0F;
    QTest::newRow("boolean") << QVariant(true) << 1.0F;
    QTest::newRow("array") << QVariant(QVariantList{3}) << 0.0F;
    QTest::newRow("data") << QVariant(QByteArray("3")) << 0.0F;
}

void WayfoldDefaultsTest::floatGetterReadsNumbersAndText()
{
    QFETCH(QVariant, stored);
    QFETCH(float, expected);
    for (const FloatSetting &setting : floatSettings) {
        startWith({{QString::fromLatin1(setting.key), stored}});
        QCOMPARE((defaults().*setting.get)(), expected);
    }
}

void WayfoldDefaultsTest::floatSetterStoresNumber()
{
    for (const FloatSetting &setting : floatSettings) {
        (defaults().*setting.set)(317.5F);
        QCOMPARE((defaults().*setting.get)(), 317.5F);
        QCOMPARE(domain().value(QString::fromLatin1(setting.key)), QVariant(317.5));
    }
}

void WayfoldDefaultsTest::stringSetterStoresText()
{
    for (const StringSetting &setting : stringSettings) {
        for (const QString &text : {QStringLiteral("2"), QStringLiteral(""), QStringLiteral("Größe")}) {
            (defaults().*setting.set)(text);
            QCOMPARE((defaults().*setting.get)(), text);
            QCOMPARE(domain().value(QString::fromLatin1(setting.key)), QVariant(text));
        }
    }
}

void WayfoldDefaultsTest::nullStringTakesTheValueAway()
{
    for (const StringSetting &setting : stringSettings) {
        (defaults().*setting.set)(QString());
        QVERIFY((defaults().*setting.get)().isNull());
        QVERIFY(!domain().contains(QString::fromLatin1(setting.key)));
    }
    QVERIFY(UserDefaults::standardUserDefaults().synchronize());
}

void WayfoldDefaultsTest::foreignValuesAreNoError()
{
    const QVariantMap fresh = domain();
    for (const ForeignValue &foreign : foreignValues()) {
        QVariantMap stored;
        for (const QString &key : fresh.keys())
            stored.insert(key, foreign.value);
        for (const StringSetting &setting : stringSettings)
            stored.insert(QString::fromLatin1(setting.key), foreign.value);
        startWith(stored);
        for (const BoolSetting &setting : boolSettings)
            QCOMPARE((defaults().*setting.get)(), foreign.isOn);
        for (const FloatSetting &setting : floatSettings)
            QCOMPARE((defaults().*setting.get)(), foreign.number);
        for (const StringSetting &setting : stringSettings) {
            QCOMPARE((defaults().*setting.get)(), foreign.text);
            QCOMPARE((defaults().*setting.get)().isNull(), foreign.text.isNull());
        }
        // No name is the small font of the system; no font has one of these names.
        QCOMPARE(defaults().listViewFont().has_value(), foreign.text.isNull());
        // What is no table is replaced, and a table without the command is filled in.
        QCOMPARE(defaults().shortcutKeyForItem(0), QStringLiteral("0"));
        QCOMPARE(defaults().shortcutModifierMaskForItem(0), 1048576U);
    }
}

void WayfoldDefaultsTest::defaultShortcut_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<unsigned>("modifierMask");

    const QString none = QStringLiteral("");
    QTest::newRow("0") << QStringLiteral("0") << 1048576U;
    QTest::newRow("10") << QStringLiteral("*") << 1179648U;
    QTest::newRow("11") << QStringLiteral("-") << 1179648U;
    QTest::newRow("12") << QStringLiteral("+") << 1179648U;
    QTest::newRow("1") << none << 0U;
    QTest::newRow("2") << none << 0U;
    QTest::newRow("3") << none << 0U;
    QTest::newRow("4") << QStringLiteral("O") << 1179648U;
    QTest::newRow("5") << QStringLiteral("E") << 1179648U;
    QTest::newRow("6") << none << 0U;
    QTest::newRow("13") << none << 0U;
    QTest::newRow("14") << none << 0U;
    QTest::newRow("7") << QStringLiteral("J") << 1179648U;
    QTest::newRow("8") << QStringLiteral("K") << 1179648U;
    QTest::newRow("9") << QStringLiteral("L") << 1179648U;
}

void WayfoldDefaultsTest::defaultShortcut()
{
    QFETCH(QString, key);
    QFETCH(unsigned, modifierMask);
    const QString item = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(defaults().shortcutKeyForItem(item.toUInt()), key);
    QVERIFY(!defaults().shortcutKeyForItem(item.toUInt()).isNull());
    QCOMPARE(defaults().shortcutModifierMaskForItem(item.toUInt()), modifierMask);
    const QVariantMap table = domain().value(shortcutsKey).toMap();
    QCOMPARE(table.value(item + QStringLiteral("_KEY")), QVariant(key));
    QCOMPARE(table.value(item + QStringLiteral("_MODIFIER")), QVariant(qlonglong(modifierMask)));
}

void WayfoldDefaultsTest::defaultTableHasNothingElse()
{
    QCOMPARE(WayfoldDefaults::defaultMenuItemShortcuts().size(), 30);
    QVERIFY(defaults().shortcutKeyForItem(15).isNull());
    QCOMPARE(defaults().shortcutModifierMaskForItem(15), 0U);
}

void WayfoldDefaultsTest::shortcutWithoutKeyIsFilledIn()
{
    startWith({{shortcutsKey, QVariantMap{{QStringLiteral("7_MODIFIER"), qlonglong(0)}}}});
    QCOMPARE(defaults().shortcutKeyForItem(7), QStringLiteral("J"));
    QCOMPARE(defaults().shortcutModifierMaskForItem(7), 1179648U);
    QCOMPARE(domain().value(shortcutsKey).toMap(), WayfoldDefaults::defaultMenuItemShortcuts());
}

void WayfoldDefaultsTest::shortcutWithEmptyKeyStays()
{
    startWith({{shortcutsKey, QVariantMap{{QStringLiteral("4_KEY"), QStringLiteral("")},
                                          {QStringLiteral("4_MODIFIER"), qlonglong(0)}}}});
    QCOMPARE(defaults().shortcutKeyForItem(4), QStringLiteral(""));
    QCOMPARE(defaults().shortcutModifierMaskForItem(4), 0U);
    QCOMPARE(defaults().shortcutKeyForItem(5), QStringLiteral("E"));
}

void WayfoldDefaultsTest::shortcutWithKeyAloneKeepsNoModifier()
{
    startWith({{shortcutsKey, QVariantMap{{QStringLiteral("4_KEY"), QStringLiteral("P")}}}});
    QCOMPARE(defaults().shortcutKeyForItem(4), QStringLiteral("P"));
    QCOMPARE(defaults().shortcutModifierMaskForItem(4), 0U);
    QVERIFY(!domain().value(shortcutsKey).toMap().contains(QStringLiteral("4_MODIFIER")));
}

void WayfoldDefaultsTest::shortcutTableOfForeignTypeIsReplaced()
{
    startWith({{shortcutsKey, QStringLiteral("no table")}});
    QCOMPARE(defaults().shortcutKeyForItem(0), QStringLiteral("0"));
    QCOMPARE(domain().value(shortcutsKey).toMap(), WayfoldDefaults::defaultMenuItemShortcuts());
}

void WayfoldDefaultsTest::shortcutSettersWriteToTheHost()
{
    FakeHostApplication host;
    const QVariantMap before = domain();

    defaults().setShortcutKeyForItem(QStringLiteral("P"), 6);
    QVariantMap expected = WayfoldDefaults::defaultMenuItemShortcuts();
    expected.insert(QStringLiteral("6_KEY"), QStringLiteral("P"));
    QCOMPARE(host.hostSettings.values.value(shortcutsKey).toMap(), expected);

    defaults().setShortcutModifierMaskForItemForItem(MenuItem::NSCommandKeyMask | MenuItem::NSAlternateKeyMask, 6);
    expected.insert(QStringLiteral("6_MODIFIER"), qlonglong(1048576 + 524288));
    QCOMPARE(host.hostSettings.values.value(shortcutsKey).toMap(), expected);
    QCOMPARE(host.hostSettings.values.size(), 1);

    QCOMPARE(defaults().shortcutKeyForItem(6), QStringLiteral("P"));
    QCOMPARE(defaults().shortcutModifierMaskForItem(6), 1572864U);
    QCOMPARE(domain(), before);
}

void WayfoldDefaultsTest::shortcutReachesTheDomainWithTheNextSetter()
{
    FakeHostApplication host;
    defaults().setShortcutKeyForItem(QStringLiteral("P"), 6);
    QCOMPARE(domain().value(shortcutsKey).toMap().value(QStringLiteral("6_KEY")), QVariant(QStringLiteral("")));
    defaults().setConfirmItemDelete(false);
    QCOMPARE(domain().value(shortcutsKey).toMap().value(QStringLiteral("6_KEY")), QVariant(QStringLiteral("P")));
}

void WayfoldDefaultsTest::shortcutsFromTheDiskCanBeChanged()
{
    startAgain();
    defaults().setShortcutKeyForItem(QStringLiteral("P"), 7);
    defaults().setShortcutModifierMaskForItemForItem(MenuItem::NSControlKeyMask, 7);
    QCOMPARE(defaults().shortcutKeyForItem(7), QStringLiteral("P"));
    QCOMPARE(defaults().shortcutModifierMaskForItem(7), unsigned(MenuItem::NSControlKeyMask));
    QCOMPARE(defaults().shortcutKeyForItem(8), QStringLiteral("K")); // the others stay
    defaults().setConfirmItemDelete(false);
    startAgain();
    QCOMPARE(defaults().shortcutKeyForItem(7), QStringLiteral("P"));
    QCOMPARE(defaults().shortcutModifierMaskForItem(7), unsigned(MenuItem::NSControlKeyMask));
    QCOMPARE(defaults().shortcutKeyForItem(8), QStringLiteral("K"));
}

void WayfoldDefaultsTest::shortcutSettersWorkWithoutHost()
{
    defaults().setShortcutKeyForItem(QStringLiteral("P"), 20);
    defaults().setShortcutModifierMaskForItemForItem(MenuItem::NSControlKeyMask, 20);
    QCOMPARE(defaults().shortcutKeyForItem(20), QStringLiteral("P"));
    QCOMPARE(defaults().shortcutModifierMaskForItem(20), 262144U);
    defaults().setShortcutKeyForItem(QString(), 20);
    QVERIFY(defaults().shortcutKeyForItem(20).isNull());
}

void WayfoldDefaultsTest::foreignShortcutEntriesAreNoError()
{
    for (const ForeignValue &foreign : foreignValues()) {
        startWith({{shortcutsKey, QVariantMap{{QStringLiteral("3_KEY"), foreign.value},
                                              {QStringLiteral("3_MODIFIER"), foreign.value}}}});
        QCOMPARE(defaults().shortcutKeyForItem(3), foreign.text);
        QCOMPARE(defaults().shortcutModifierMaskForItem(3), foreign.modifierMask);
    }
    startWith({{shortcutsKey, QVariantMap{{QStringLiteral("3_KEY"), QStringLiteral("X")},
                                          {QStringLiteral("3_MODIFIER"), QStringLiteral("1048576")}}}});
    QCOMPARE(defaults().shortcutModifierMaskForItem(3), 1048576U);
    startWith({{shortcutsKey,
                QVariantMap{{QStringLiteral("3_KEY"), QStringLiteral("X")}, {QStringLiteral("3_MODIFIER"), 1e300}}}});
    QCOMPARE(defaults().shortcutModifierMaskForItem(3), 0U);
}

void WayfoldDefaultsTest::keyOutlivesARestart_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("stored");
    const auto row = [](char16_t key, const QString &stored) {
        QTest::addRow("U+%04X", key) << QString(QChar(key)) << stored;
    };
    for (const auto &[key, stored] : {std::pair(u'\x03', "U+0003"),
                                      {u'\t', "U+0009"},
                                      {u'\n', "U+000A"},
                                      {u'\r', "U+000D"},
                                      {u'\x19', "U+0019"},
                                      {u'\x1B', "U+001B"},
                                      {u'\x7F', "U+007F"},
                                      {u'\x85', "U+0085"}})
        row(key, QString::fromLatin1(stored));
    for (char16_t key : {u' ', u'U', u'+', u'<', u'&', u'"', u'\u00E4', u'\u241B', u'\uF704', u'\uF72D'})
        row(key, QString(QChar(key)));
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("several") << "U+"
                             << "U+";
}

void WayfoldDefaultsTest::keyOutlivesARestart()
{
    QFETCH(QString, key);
    QFETCH(QString, stored);
    FakeHostApplication host;
    startWith({});
    defaults().setShortcutKeyForItem(key, 7);
    QCOMPARE(defaults().shortcutKeyForItem(7), key);
    const auto entry = [](const QVariant &table) { return table.toMap().value(QStringLiteral("7_KEY")); };
    QCOMPARE(entry(host.hostSettings.values.value(shortcutsKey)), QVariant(stored));

    defaults().writeDefaults();
    startAgain();
    QCOMPARE(defaults().shortcutKeyForItem(7), key);
    QCOMPARE(entry(domain().value(shortcutsKey)), QVariant(stored));

    // As another program reads it.
    QProcess python;
    python.start(QStringLiteral("python3"),
                 {QStringLiteral("-c"),
                  QStringLiteral("import plistlib, sys; table = plistlib.load(open(sys.argv[1], 'rb'))[sys.argv[2]]; "
                                 "sys.stdout.buffer.write(table['7_KEY'].encode())"),
                  _home->path(QStringLiteral("Library/Preferences/org.wayfold.Wayfold.plist")), shortcutsKey});
    QVERIFY(python.waitForFinished());
    QCOMPARE(python.exitCode(), 0);
    QCOMPARE(QString::fromUtf8(python.readAllStandardOutput()), stored);
}

void WayfoldDefaultsTest::storedFormsOfKeys_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("key");
    QTest::newRow("Escape") << "U+001B"
                            << "\x1B";
    QTest::newRow("Escape itself") << "\x1B"
                                   << "\x1B"; // as a binary property list may hold it
    // None of these is written.
    for (const char *other :
         {"U+", "U+1B", "U+001b", "U+0041", "U+001B ", "u+001B", "U+F704", "U+00G1", "U+-01B", "U+ 01B"})
        QTest::newRow(other) << QString::fromLatin1(other) << QString::fromLatin1(other);
}

void WayfoldDefaultsTest::storedFormsOfKeys()
{
    QFETCH(QString, stored);
    QFETCH(QString, key);
    startWith({{shortcutsKey, QVariantMap{{QStringLiteral("3_KEY"), stored}}}});
    QCOMPARE(defaults().shortcutKeyForItem(3), key);
}

void WayfoldDefaultsTest::emptyFontNameGivesSmallSystemFont_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("none") << QString();
}

void WayfoldDefaultsTest::emptyFontNameGivesSmallSystemFont()
{
    QFETCH(QString, name);
    defaults().setListViewFontName(name);
    defaults().setListViewFontSize(77);
    const std::optional<QFont> font = defaults().listViewFont();
    QVERIFY(font);
    const QFont normal = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    QCOMPARE(font->family(), normal.family());
    QVERIFY(font->pointSizeF() < QFontInfo(normal).pointSizeF());
    QVERIFY(font->pointSizeF() > QFontInfo(normal).pointSizeF() * 2 / 3); // still to be read
}

void WayfoldDefaultsTest::unknownFontNameGivesNone()
{
    for (const char *name : {"No Such Family", "No Such Family-Bold", "-", "-Bold"}) {
        defaults().setListViewFontName(QString::fromLatin1(name));
        QVERIFY2(!defaults().listViewFont(), name);
    }
    const QString family = QFontDatabase::families().constFirst();
    QVERIFY(!WayfoldDefaults::fontWithNameSize(family + QStringLiteral("-No Such Style"), 12));
}

void WayfoldDefaultsTest::knownFontNameGivesFontOfThatSize()
{
    const QStringList families = QFontDatabase::families();
    QVERIFY(!families.isEmpty());
    for (const QString &family : families) {
        defaults().setListViewFontName(family);
        defaults().setListViewFontSize(15.5);
        const std::optional<QFont> font = defaults().listViewFont();
        QVERIFY2(font, qPrintable(family));
        QCOMPARE(font->family(), family);
        QCOMPARE(font->pointSizeF(), 15.5);
    }
    QVERIFY(WayfoldDefaults::fontWithNameSize(families.constFirst(), 0)->pointSizeF() > 0);
    QVERIFY(WayfoldDefaults::fontWithNameSize(families.constFirst(), -4)->pointSizeF() > 0);
}

void WayfoldDefaultsTest::fontNameMayHoldAStyle()
{
    int checked = 0;
    const QStringList families = QFontDatabase::families();
    for (const QString &family : families) {
        const QStringList styles = QFontDatabase::styles(family);
        for (const QString &style : styles) {
            const auto font = WayfoldDefaults::fontWithNameSize(family + QLatin1Char('-') + style, 9);
            QVERIFY2(font, qPrintable(family + style));
            QCOMPARE(font->family(), family);
            QCOMPARE(int(font->weight()), QFontDatabase::weight(family, style));
            QCOMPARE(font->pointSizeF(), 9.0);
            ++checked;
        }
    }
    QVERIFY(checked > 0);
}

void WayfoldDefaultsTest::fontNameOfFontIsFoundAgain()
{
    const QString family = QFontDatabase::families().constFirst();
    QCOMPARE(WayfoldDefaults::nameOfFont(QFont(family)), family);
    const QStringList styles = QFontDatabase::styles(family);
    for (const QString &style : styles) {
        const QFont font = QFontDatabase::font(family, style, 10);
        const auto again = WayfoldDefaults::fontWithNameSize(WayfoldDefaults::nameOfFont(font), 10);
        QVERIFY2(again, qPrintable(style));
        QCOMPARE(again->weight(), font.weight());
        QCOMPARE(again->italic(), font.italic());
    }
}

void WayfoldDefaultsTest::fontWithoutStyleNameIsFoundAgain()
{
    int checked = 0;
    const QStringList families = QFontDatabase::families();
    for (const QString &family : families) {
        const QStringList styles = QFontDatabase::styles(family);
        for (const QString &style : styles) {
            const QFont wanted = QFontDatabase::font(family, style, 10);
            // As a font panel gives it, by weight and slant.
            QFont font(family);
            font.setWeight(QFont::Weight(wanted.weight()));
            font.setItalic(wanted.italic());
            QVERIFY(font.styleName().isEmpty());
            const auto again = WayfoldDefaults::fontWithNameSize(WayfoldDefaults::nameOfFont(font), 10);
            QVERIFY2(again, qPrintable(family + style));
            QCOMPARE(again->weight(), wanted.weight());
            QCOMPARE(again->italic(), wanted.italic());
            checked += wanted.italic() ? 1 : 0;
        }
    }
    QVERIFY(checked > 0);
}

void WayfoldDefaultsTest::hostBoolean_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<bool>("expected");

    QTest::newRow("none") << QVariant() << false;
    QTest::newRow("true") << QVariant(true) << true;
    QTest::newRow("false") << QVariant(false) << false;
    QTest::newRow("1") << QVariant(qlonglong(1)) << true;
    QTest::newRow("2") << QVariant(qlonglong(2)) << true;
    QTest::newRow("0") << QVariant(qlonglong(0)) << false;
    QTest::newRow("text YES") << QVariant(QStringLiteral("YES")) << true;
    QTest::newRow("text true") << QVariant(QStringLiteral("true")) << true;
    QTest::newRow("text 1") << QVariant(QStringLiteral("1")) << true;
    QTest::newRow("text NO") << QVariant(QStringLiteral("NO")) << false;
    QTest::newRow("array") << QVariant(QVariantList{1}) << false;
}

void WayfoldDefaultsTest::hostBoolean()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, expected);
    FakeHostApplication host;
    if (stored.isValid())
        host.hostSettings.values = {{QStringLiteral("TabbedBrowsing"), stored}};
    QCOMPARE(WayfoldDefaults::fetchPrefBooleanForKey(QStringLiteral("TabbedBrowsing")), expected);
    QCOMPARE(WayfoldDefaults::tabbedBrowsingEnabled(), expected);
    QVERIFY(!WayfoldDefaults::fetchPrefBooleanForKey(QStringLiteral("Other")));
}

void WayfoldDefaultsTest::hostObject()
{
    FakeHostApplication host;
    host.hostSettings.values = {{QStringLiteral("HomePage"), QStringLiteral("http://example.com/")}};
    QCOMPARE(WayfoldDefaults::fetchPrefObjectForKey(QStringLiteral("HomePage")),
             QVariant(QStringLiteral("http://example.com/")));
    QVERIFY(!WayfoldDefaults::fetchPrefObjectForKey(QStringLiteral("WayfoldDefaultFirstTab")).isValid());
}

void WayfoldDefaultsTest::noHostHasNoSettings()
{
    QVERIFY(!WayfoldDefaults::fetchPrefObjectForKey(QStringLiteral("TabbedBrowsing")).isValid());
    QVERIFY(!WayfoldDefaults::tabbedBrowsingEnabled());
}

void WayfoldDefaultsTest::changeByAnotherProcessCounts()
{
    UserDefaults &store = UserDefaults::standardUserDefaults();
    QVERIFY(store.synchronize());
    OtherProcess::changeSetting(QStringLiteral("WayfoldConfirmItemDelete"), qlonglong(0));
    QVERIFY(defaults().confirmItemDelete());
    QTRY_VERIFY(!defaults().confirmItemDelete()); // by itself
    // Also what is found when something else is written.
    OtherProcess::changeSetting(QStringLiteral("WayfoldAutoFocusOnSiteChange"), qlonglong(1));
    defaults().setCreateAutoFolders(false);
    QVERIFY(store.synchronize());
    QVERIFY(defaults().autoFocusOnSiteChange());
}

void WayfoldDefaultsTest::changeByAnotherProcessIsTold()
{
    UserDefaults &store = UserDefaults::standardUserDefaults();
    QVERIFY(store.synchronize());
    defaults().takeKeysChangedElsewhere();
    int told = 0;
    NotificationCenter::defaultCenter().addObserver(
        &told, [&told](const Notification &notification) { told += notification.object == &defaults() ? 1 : 0; },
        WayfoldDefaults::changedElsewhereNotification);
    defaults().setConfirmItemDelete(false);
    QVERIFY(store.synchronize());
    store.lookForChanges();
    QVERIFY(defaults().takeKeysChangedElsewhere().isEmpty());

    OtherProcess::changeSetting(QStringLiteral("WayfoldListViewFontSize"), 20.0);
    OtherProcess::changeSetting(QStringLiteral("WayfoldListViewFontName"), QStringLiteral("Serif"));
    OtherProcess::changeSetting(QStringLiteral("SomethingOfAnotherVersion"), 1);
    store.lookForChanges();
    QTRY_COMPARE(told, 1);
    NotificationCenter::defaultCenter().removeObserver(&told);
    QCOMPARE(defaults().takeKeysChangedElsewhere(),
             (QSet<QString>{QStringLiteral("WayfoldListViewFontSize"), QStringLiteral("WayfoldListViewFontName"),
                            QStringLiteral("SomethingOfAnotherVersion")}));
    QVERIFY(defaults().takeKeysChangedElsewhere().isEmpty());
    QCOMPARE(defaults().listViewFontSize(), 20.0F);
}

void WayfoldDefaultsTest::changeByAnotherProcessIsNotWrittenOver()
{
    UserDefaults &store = UserDefaults::standardUserDefaults();
    QVERIFY(store.synchronize());
    OtherProcess::changeSetting(QStringLiteral("WayfoldConfirmItemDelete"), qlonglong(0));
    defaults().setDefaultDrawerContentWidth(300); // before anybody has looked at the file
    QVERIFY(store.synchronize());
    defaults().setShowFavicons(false);
    QVERIFY(store.synchronize());
    UserDefaults later;
    const QVariantMap stored = later.persistentDomainForName(WayfoldDefaults::domainName);
    QCOMPARE(stored.value(QStringLiteral("WayfoldConfirmItemDelete")), QVariant(0));
    QCOMPARE(stored.value(QStringLiteral("WayfoldDefaultDrawerContentWidth")), QVariant(300.0));
    QCOMPARE(stored.value(QStringLiteral("WayfoldShowFavIcons")), QVariant(0));
}

void WayfoldDefaultsTest::settingThatAnotherProcessTookAwayHasItsDefault()
{
    defaults().setListViewFontSize(20);
    UserDefaults &store = UserDefaults::standardUserDefaults();
    QVERIFY(store.synchronize());
    OtherProcess::changeSetting(QStringLiteral("WayfoldListViewFontSize"), QVariant());
    store.lookForChanges();
    QCOMPARE(defaults().listViewFontSize(), 12.0F);
}

void WayfoldDefaultsTest::shortcutOfAnotherProcessCounts()
{
    UserDefaults &store = UserDefaults::standardUserDefaults();
    QVERIFY(store.synchronize());
    defaults().setShortcutKeyForItem(QStringLiteral("P"), 4);
    defaults().writeDefaults();
    QVariantMap theirs = WayfoldDefaults::defaultMenuItemShortcuts();
    theirs.insert(QStringLiteral("5_KEY"), QStringLiteral("F"));
    OtherProcess::changeSetting(shortcutsKey, theirs);
    QVERIFY(store.synchronize());
    QCOMPARE(defaults().shortcutKeyForItem(4), QStringLiteral("P"));
    QCOMPARE(defaults().shortcutKeyForItem(5), QStringLiteral("F"));
}

void WayfoldDefaultsTest::shortcutThatOnlyTheHostHasStays()
{
    UserDefaults &store = UserDefaults::standardUserDefaults();
    QVERIFY(store.synchronize());
    defaults().setShortcutKeyForItem(QStringLiteral("P"), 4); // leaves the domain alone
    QVariantMap theirs = WayfoldDefaults::defaultMenuItemShortcuts();
    theirs.insert(QStringLiteral("5_KEY"), QStringLiteral("F"));
    OtherProcess::changeSetting(shortcutsKey, theirs);
    store.lookForChanges();
    QCOMPARE(defaults().shortcutKeyForItem(4), QStringLiteral("P"));
    QCOMPARE(defaults().shortcutKeyForItem(5), QStringLiteral("F"));
    QCOMPARE(domain().value(shortcutsKey).toMap().value(QStringLiteral("4_KEY")).toString(), QStringLiteral("O"));
    defaults().setConfirmItemDelete(false);
    QCOMPARE(domain().value(shortcutsKey).toMap().value(QStringLiteral("4_KEY")).toString(), QStringLiteral("P"));
}

QTEST_MAIN(WayfoldDefaultsTest)
#include "WayfoldDefaultsTest.moc"
