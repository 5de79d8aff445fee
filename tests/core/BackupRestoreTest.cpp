#include "core/BackupRestore.h"

#include "core/FolderInUse.h"
#include "model/WayfoldBookmarkURL.h"
#include "tests/core/StoreInTemporaryHome.h"

#include <QRandomGenerator>

namespace
{
// Titles, those within a folder in brackets behind it: "a.org (Milk, Eggs), Bread".
QString outline(const WayfoldBookmarkFolder &folder)
{
    QStringList parts;
    for (const KDRBookmarkPtr &child : folder.children()) {
        if (!child->canBePersistent())
            continue;
        const WayfoldBookmarkFolderPtr below = WayfoldBookmarkFolder::fromItem(child);
        parts.append(below ? QStringLiteral("%1 (%2)").arg(child->title(), outline(*below)) : child->title());
    }
    return parts.join(QStringLiteral(", "));
}
} // namespace

// A day passes between the backup and now, in which the test changes the tree.
class BackupRestoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _fresh.emplace(); }
    void cleanup() { _fresh.reset(); }

    // Replace
    void replaceMakesTheTreeAsItWas_data();
    void replaceMakesTheTreeAsItWas();
    void replaceLeavesAloneWhatIsTheSame();
    void replaceTakesFieldsOfFoldersBack();
    void replaceLeavesSmartFoldersWhereTheyAre();
    void replaceEmptiesTheFolderOfAnotherSite();
    void replaceFillsAFolderThatIsOnlyShown();
    void replaceTakesASiteByItsTitle();
    void replaceAddsSmartFoldersToSites();
    void replaceOfWhatIsTheSameChangesNothing();
    void replaceSavesAndRefreshes();

    // Add
    void addBringsBackWhatIsMissing_data();
    void addBringsBackWhatIsMissing();
    void addOfWhatIsTheSameAddsNothing();
    void addBringsEarlierVersionsAsSecondItems();
    void addLeavesAloneWhatWasMoved();
    void addFillsAFolderThatIsOnlyShown();
    void addSavesAndRefreshes();
    void itemsWithoutIdentifiersAreToldApartByWhatTheyHold();
    void twinsComeBackAsTwins();

    void randomTreesAreRestored();

private:
    static KDRDrawerBundle &store() { return StoreInTemporaryHome::store(); }
    static const WayfoldBookmarkFolderPtr &root() { return store().bookmarkRoot(); }

    static WayfoldBookmarkFolderPtr folder(const QString &title, const WayfoldBookmarkFolderPtr &parent = root())
    {
        return StoreInTemporaryHome::addFolder(parent, title);
    }
    static KDRBookmarkPtr note(const QString &title, const WayfoldBookmarkFolderPtr &parent = root())
    {
        return StoreInTemporaryHome::addNote(parent, title);
    }
    static QString now() { return outline(*root()); }
    // What a backup of this moment will hold.
    static WayfoldBookmarkFolderPtr backup()
    {
        return WayfoldBookmarkFolder::bookmarkFromDictionary(root()->createDictionary(true));
    }
    static WayfoldBookmarkFolderPtr site(const QString &title)
    {
        return WayfoldBookmarkFolder::fromItem(root()->childWithTitle(title));
    }
    // Sites begin with their two smart folders.
    void fill()
    {
        const WayfoldBookmarkFolderPtr a = folder(QStringLiteral("a.org"));
        a->addAutoFolders();
        note(QStringLiteral("Milk"), a);
        note(QStringLiteral("Eggs"), folder(QStringLiteral("Shop"), a));
        note(QStringLiteral("Bread"));
        const WayfoldBookmarkFolderPtr b = folder(QStringLiteral("b.org"));
        b->addAutoFolders();
        note(QStringLiteral("Salt"), b);
    }
    const QString _filled = QStringLiteral("a.org (Milk, Shop (Eggs)), Bread, b.org (Salt)");

    using Change = std::function<void()>;
    void changes();

    std::optional<StoreInTemporaryHome> _fresh;
};

Q_DECLARE_METATYPE(std::function<void()>)

// What may happen to what fill() makes, and what it gives when the backup is added to that.
void BackupRestoreTest::changes()
{
    QTest::addColumn<std::function<void()>>("change");
    QTest::addColumn<QString>("added");
    const auto child = [](const char *site, unsigned index) {
        return BackupRestoreTest::site(QString::fromLatin1(site))->childAtIndex(index);
    };
    QTest::newRow("nothing") << Change([] {}) << _filled;
    QTest::newRow("note deleted") << Change([child] { site(QStringLiteral("a.org"))->removeChild(child("a.org", 2)); })
                                  << "a.org (Shop (Eggs), Milk), Bread, b.org (Salt)";
    QTest::newRow("folder deleted") << Change([child] {
        site(QStringLiteral("a.org"))->removeChild(child("a.org", 3));
    }) << _filled;
    QTest::newRow("site deleted") << Change([] { store().deleteBookmark(site(QStringLiteral("a.org"))); })
                                  << "Bread, b.org (Salt), a.org (Milk, Shop (Eggs))";
    QTest::newRow("all deleted") << Change([] { root()->removeAllChildren(); }) << _filled;
    QTest::newRow("note added") << Change([] { note(QStringLiteral("Beer"), site(QStringLiteral("a.org"))); })
                                << "a.org (Milk, Shop (Eggs), Beer), Bread, b.org (Salt)";
    QTest::newRow("site added") << Change([] { note(QStringLiteral("Oil"), folder(QStringLiteral("c.org"))); })
                                << "a.org (Milk, Shop (Eggs)), Bread, b.org (Salt), c.org (Oil)";
    QTest::newRow("folder added") << Change([] {
        note(QStringLiteral("Rice"), folder(QStringLiteral("More"), site(QStringLiteral("b.org"))));
    }) << "a.org (Milk, Shop (Eggs)), Bread, b.org (Salt, More (Rice))";
    QTest::newRow("note renamed") << Change([child] { child("a.org", 2)->setTitle(QStringLiteral("Cream")); })
                                  << "a.org (Cream, Shop (Eggs), Milk), Bread, b.org (Salt)";
    QTest::newRow("sorted") << Change([] { root()->sortChildrenByTitle(); })
                            << "a.org (Milk, Shop (Eggs)), b.org (Salt), Bread";
    QTest::newRow("turned round") << Change([] {
        const std::vector<KDRBookmarkPtr> items = root()->children();
        root()->removeAllChildren();
        for (auto item = items.crbegin(); item != items.crend(); ++item)
            root()->addChild(*item);
    }) << "b.org (Salt), Bread, a.org (Milk, Shop (Eggs))";
    QTest::newRow("moved") << Change([child] {
        const KDRBookmarkPtr milk = child("a.org", 2);
        site(QStringLiteral("a.org"))->removeChild(milk);
        site(QStringLiteral("b.org"))->addChild(milk);
    }) << "a.org (Shop (Eggs)), Bread, b.org (Salt, Milk)";
}

// --- Replace --------------------------------------------------------------------------------------------------------

void BackupRestoreTest::replaceMakesTheTreeAsItWas_data()
{
    changes();
}

void BackupRestoreTest::replaceMakesTheTreeAsItWas()
{
    QFETCH(Change, change);
    fill();
    QCOMPARE(now(), _filled);
    const QVariantMap before = root()->createDictionary(true);
    const WayfoldBookmarkFolderPtr then = backup();
    change();
    BackupRestore(store()).replaceWith(*then);
    QCOMPARE(now(), _filled);
    QCOMPARE(backup()->createDictionary(true),
             WayfoldBookmarkFolder::bookmarkFromDictionary(before)->createDictionary(true));
}

void BackupRestoreTest::replaceLeavesAloneWhatIsTheSame()
{
    fill();
    const WayfoldBookmarkFolderPtr then = backup();
    const std::vector<KDRBookmarkPtr> items = root()->children();
    const KDRBookmarkPtr milk = site(QStringLiteral("a.org"))->childAtIndex(2);
    note(QStringLiteral("Beer"), site(QStringLiteral("a.org")));
    root()->sortChildrenByTitle();
    BackupRestore(store()).replaceWith(*then);
    QCOMPARE(root()->children(), items);
    QCOMPARE(site(QStringLiteral("a.org"))->childAtIndex(2), milk);
    QCOMPARE(milk->parent(), site(QStringLiteral("a.org")));
}

void BackupRestoreTest::replaceTakesFieldsOfFoldersBack()
{
    fill();
    const WayfoldBookmarkFolderPtr shop =
        WayfoldBookmarkFolder::fromItem(site(QStringLiteral("a.org"))->childWithTitle(QStringLiteral("Shop")));
    const WayfoldBookmarkFolderPtr then = backup();
    shop->setTitle(QStringLiteral("Store"));
    shop->setFilterString(QStringLiteral("food"));
    BackupRestore(store()).replaceWith(*then);
    QCOMPARE(shop->title(), QStringLiteral("Shop"));
    QCOMPARE(shop->filterString(), QStringLiteral("Shop"));
    QCOMPARE(now(), _filled);
}

void BackupRestoreTest::replaceLeavesSmartFoldersWhereTheyAre()
{
    fill();
    const WayfoldBookmarkFolderPtr then = backup();
    const WayfoldBookmarkFolderPtr a = site(QStringLiteral("a.org"));
    const std::vector<KDRBookmarkPtr> before = a->children();
    QCOMPARE(before.size(), 4U);
    a->addChildAtIndex(WayfoldBookmarkNote::bookmarkWithTitleAndNote(QStringLiteral("Beer"), QStringLiteral("text")),
                       0);
    BackupRestore(store()).replaceWith(*then);
    QCOMPARE(a->children(), before);
}

// A drawer may be showing it; what is put into it later makes it part of the tree again.
void BackupRestoreTest::replaceEmptiesTheFolderOfAnotherSite()
{
    fill();
    const WayfoldBookmarkFolderPtr then = backup();
    const WayfoldBookmarkFolderPtr shown = folder(QStringLiteral("c.org"));
    note(QStringLiteral("Oil"), shown);
    note(QStringLiteral("Rice"), folder(QStringLiteral("d.org"))); // which nobody shows
    const FolderInUse inUse(shown);
    BackupRestore(store()).replaceWith(*then);
    QCOMPARE(now(), _filled);
    QVERIFY(store().isProvisionalBookmark(shown.get()));
    QCOMPARE(store().provisionalBookmarkRoot()->childCount(), 1U);
    QCOMPARE(shown->persistentChildCount(), 0U);
    QVERIFY(!store().isKnownSite(QStringLiteral("c.org")));
}

void BackupRestoreTest::replaceFillsAFolderThatIsOnlyShown()
{
    fill();
    const WayfoldBookmarkFolderPtr then = backup();
    root()->removeChild(site(QStringLiteral("b.org")));
    const WayfoldBookmarkFolderPtr shown = store().newProvisionalBookmarkWithTitle(QStringLiteral("b.org"));
    BackupRestore(store()).replaceWith(*then);
    QCOMPARE(now(), _filled);
    QCOMPARE(site(QStringLiteral("b.org")), shown);
    QVERIFY(store().provisionalBookmarkRoot()->isEmpty());
}

// Of another identifier, as when the site was deleted and visited again.
void BackupRestoreTest::replaceTakesASiteByItsTitle()
{
    fill();
    const WayfoldBookmarkFolderPtr then = backup();
    root()->removeChild(site(QStringLiteral("b.org")));
    const WayfoldBookmarkFolderPtr other = folder(QStringLiteral("b.org"));
    note(QStringLiteral("Pepper"), other);
    BackupRestore(store()).replaceWith(*then);
    QCOMPARE(now(), _filled);
    QCOMPARE(site(QStringLiteral("b.org")), other);
}

void BackupRestoreTest::replaceAddsSmartFoldersToSites()
{
    fill();
    const WayfoldBookmarkFolderPtr then = backup();
    root()->removeAllChildren();
    BackupRestore(store()).replaceWith(*then);
    QCOMPARE(now(), _filled);
    QCOMPARE(site(QStringLiteral("b.org"))->childCount(), 3U); // with two smart folders
    QCOMPARE(site(QStringLiteral("a.org"))->childCount(), 4U);
}

void BackupRestoreTest::replaceOfWhatIsTheSameChangesNothing()
{
    fill();
    const std::vector<KDRBookmarkPtr> items = root()->children();
    BackupRestore(store()).replaceWith(*backup());
    QCOMPARE(root()->children(), items);
}

void BackupRestoreTest::replaceSavesAndRefreshes()
{
    _fresh->openWindow();
    fill();
    const WayfoldBookmarkFolderPtr then = backup();
    root()->removeAllChildren();
    const int reloads = _fresh->controller().drawer.reloadCount;
    BackupRestore(store()).replaceWith(*then);
    QVERIFY(_fresh->home.read(QStringLiteral("Library/Wayfold/Bookmarks.plist")).contains("Salt"));
    QVERIFY(_fresh->controller().drawer.reloadCount > reloads);
}

// --- Add ------------------------------------------------------------------------------------------------------------

void BackupRestoreTest::addBringsBackWhatIsMissing_data()
{
    changes();
}

void BackupRestoreTest::addBringsBackWhatIsMissing()
{
    QFETCH(Change, change);
    QFETCH(QString, added);
    fill();
    const WayfoldBookmarkFolderPtr then = backup();
    change();
    BackupRestore(store()).add(*then);
    QCOMPARE(now(), added);
}

void BackupRestoreTest::addOfWhatIsTheSameAddsNothing()
{
    fill();
    const QVariantMap before = root()->createDictionary(true);
    BackupRestore(store()).add(*backup());
    QCOMPARE(root()->createDictionary(true), before);
}

void BackupRestoreTest::addBringsEarlierVersionsAsSecondItems()
{
    const KDRBookmarkPtr milk = note(QStringLiteral("Milk"));
    const WayfoldBookmarkFolderPtr then = backup();
    milk->setValue(QStringLiteral("three bottles"));
    BackupRestore(store()).add(*then);
    QCOMPARE(root()->childCount(), 2U);
    QCOMPARE(root()->childAtIndex(0), milk);
    QCOMPARE(milk->value().toString(), QStringLiteral("three bottles"));
    QCOMPARE(root()->childAtIndex(1)->value().toString(), QStringLiteral("text"));
    QVERIFY(root()->childAtIndex(1)->uuid() != milk->uuid());
    QVERIFY(!root()->childAtIndex(1)->uuid().isEmpty());
}

void BackupRestoreTest::addLeavesAloneWhatWasMoved()
{
    fill();
    const WayfoldBookmarkFolderPtr then = backup();
    const KDRBookmarkPtr shop = site(QStringLiteral("a.org"))->childWithTitle(QStringLiteral("Shop"));
    site(QStringLiteral("a.org"))->removeChild(shop);
    site(QStringLiteral("b.org"))->addChild(shop);
    WayfoldBookmarkFolder::fromItem(shop)->removeAllChildren();
    BackupRestore(store()).add(*then);
    QCOMPARE(now(), QStringLiteral("a.org (Milk), Bread, b.org (Salt, Shop (Eggs))"));
}

void BackupRestoreTest::addFillsAFolderThatIsOnlyShown()
{
    fill();
    const WayfoldBookmarkFolderPtr then = backup();
    root()->removeChild(site(QStringLiteral("b.org")));
    const WayfoldBookmarkFolderPtr shown = store().newProvisionalBookmarkWithTitle(QStringLiteral("b.org"));
    BackupRestore(store()).add(*then);
    QCOMPARE(now(), _filled);
    QCOMPARE(site(QStringLiteral("b.org")), shown);
    QVERIFY(store().provisionalBookmarkRoot()->isEmpty());
}

void BackupRestoreTest::addSavesAndRefreshes()
{
    _fresh->openWindow();
    fill();
    const WayfoldBookmarkFolderPtr then = backup();
    root()->removeAllChildren();
    const int reloads = _fresh->controller().drawer.reloadCount;
    BackupRestore(store()).add(*then);
    QVERIFY(_fresh->home.read(QStringLiteral("Library/Wayfold/Bookmarks.plist")).contains("Salt"));
    QVERIFY(_fresh->controller().drawer.reloadCount > reloads);
}

void BackupRestoreTest::itemsWithoutIdentifiersAreToldApartByWhatTheyHold()
{
    note(QStringLiteral("Deep"), folder(QStringLiteral("Shop")))->setUUID(QString());
    root()->childAtIndex(0)->setUUID(QString());
    for (const char *title : {"One", "Two", "Two", "Three"})
        note(QString::fromLatin1(title))->setUUID(QString());
    const WayfoldBookmarkFolderPtr then = backup();
    root()->removeChild(root()->childAtIndex(4));
    root()->removeChild(root()->childAtIndex(1));
    BackupRestore(store()).add(*then);
    QCOMPARE(now(), QStringLiteral("Shop (Deep), Two, Two, One, Three"));
}

void BackupRestoreTest::twinsComeBackAsTwins()
{
    const KDRBookmarkPtr one = note(QStringLiteral("Milk"));
    root()->addChild(one->copy());
    const WayfoldBookmarkFolderPtr then = backup();
    root()->removeChild(root()->childAtIndex(1));
    QCOMPARE(root()->childCount(), 1U);
    BackupRestore(store()).add(*then);
    QCOMPARE(now(), QStringLiteral("Milk, Milk"));
}

// Whatever has happened since: replacing gives the same file again, adding loses nothing of either.
void BackupRestoreTest::randomTreesAreRestored()
{
    QRandomGenerator random(20261122);
    const auto pick = [&random](int below) { return int(random.bounded(below)); };
    const auto edit = [&] {
        std::vector<WayfoldBookmarkFolderPtr> folders = {root()};
        for (std::size_t i = 0; i < folders.size(); ++i) {
            for (const KDRBookmarkPtr &child : folders[i]->children()) {
                if (child->type() == KDRBookmark::FolderType && child->canBePersistent())
                    folders.push_back(WayfoldBookmarkFolder::fromItem(child));
            }
        }
        const WayfoldBookmarkFolderPtr where = folders[std::size_t(pick(int(folders.size())))];
        const KDRBookmarkPtr some =
            where->isEmpty() ? nullptr : where->childAtIndex(unsigned(pick(int(where->childCount()))));
        switch (pick(7)) {
        case 0:
            folder(QStringLiteral("site %1").arg(pick(5)), where);
            return;
        case 1:
            if (some)
                where->removeChild(some);
            return;
        case 2:
            if (some)
                some->setTitle(QStringLiteral("title %1").arg(pick(100)));
            return;
        case 3:
            where->sortChildrenByTitle();
            return;
        case 4:
            if (some && some->canBePersistent())
                where->addChildAtIndex(some->copy(), pick(3));
            return;
        case 5:
            note(QStringLiteral("bare %1").arg(pick(4)), where)->setUUID(QString());
            return;
        default:
            note(QStringLiteral("note %1").arg(pick(100)), where);
        }
    };
    const std::function<void(const WayfoldBookmarkFolder &, QStringList &)> titles =
        [&titles](const WayfoldBookmarkFolder &in, QStringList &found) {
            for (const KDRBookmarkPtr &child : in.children()) {
                if (!child->canBePersistent())
                    continue;
                const WayfoldBookmarkFolderPtr below = WayfoldBookmarkFolder::fromItem(child);
                if (below)
                    titles(*below, found);
                else
                    found.append(child->title());
            }
        };
    for (int round = 0; round < 40; ++round) {
        for (int i = pick(20); i > 0; --i)
            edit();
        const QVariantMap then = root()->createDictionary(true);
        for (int i = pick(20); i > 0; --i)
            edit();
        const QVariantMap changed = root()->createDictionary(true);
        BackupRestore(store()).replaceWith(*WayfoldBookmarkFolder::bookmarkFromDictionary(then));
        const WayfoldBookmarkFolderPtr expected = WayfoldBookmarkFolder::bookmarkFromDictionary(then);
        QCOMPARE(now(), outline(*expected));

        BackupRestore(store()).add(*WayfoldBookmarkFolder::bookmarkFromDictionary(changed));
        QStringList found;
        QStringList wanted;
        titles(*root(), found);
        titles(*expected, wanted);
        titles(*WayfoldBookmarkFolder::bookmarkFromDictionary(changed), wanted);
        wanted.removeDuplicates();
        for (const QString &title : std::as_const(wanted))
            QVERIFY2(found.contains(title), qPrintable(title));
        BackupRestore(store()).add(*WayfoldBookmarkFolder::bookmarkFromDictionary(then));
        for (const QString &title : std::as_const(wanted))
            QVERIFY(now().contains(title));
        if (root()->deepChildCount() > 400)
            root()->removeAllChildren();
    }
}

QTEST_MAIN(BackupRestoreTest)
#include "BackupRestoreTest.moc"
