#include "core/UnsavedChanges.h"

#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkAutoFolder.h"
#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldBookmarkNote.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/MemoryContacts.h"
#include "tests/support/TemporaryHome.h"

#include <QtTest>

class UnsavedChangesTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TemporaryHome> _home;
    std::unique_ptr<MemoryContacts> _contacts;
    WayfoldBookmarkFolderPtr _root;
    WayfoldBookmarkFolderPtr _site;
    std::unique_ptr<UnsavedChanges> _changes;
    int _saves = 0;

    static KDRBookmarkPtr note(const char *title) { return WayfoldBookmarkNote::bookmarkWithTitle(title); }

private Q_SLOTS:
    void init();
    void cleanup();

    void whatIsWritten_data();
    void whatIsWritten();
    void manyAreSavedOnce();
    void savedByHand();
    void savingMayFail();
    void otherTree();
    void treeThatIsLeft();
};

void UnsavedChangesTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    _contacts = std::make_unique<MemoryContacts>();
    _contacts->set(MemoryContacts::person("p", "Ada", {}));
    _contacts->set(MemoryContacts::group("g", "Friends", {"p"}));
    _contacts->set(MemoryContacts::group("h", "Others", {}));
    _root = WayfoldBookmarkFolder::bookmarkWithTitle("");
    _site = WayfoldBookmarkFolder::bookmarkWithTitle("a.org");
    _site->addChild(WayfoldAutoFolder::bookmarkWithTitle("smart"));
    _site->addChild(WayfoldBookmarkABGroup::bookmarkWithID("g"));
    _site->addChild(note("b"));
    _site->addChild(note("a"));
    _root->addChild(_site);
    _saves = 0;
    _changes = std::make_unique<UnsavedChanges>([this] {
        ++_saves;
        _changes->forget();
    });
    _changes->observe(_root);
}

void UnsavedChangesTest::cleanup()
{
    _changes.reset();
    _root.reset();
    _contacts.reset();
    _home.reset();
}

void UnsavedChangesTest::whatIsWritten_data()
{
    using Change = std::function<void(WayfoldBookmarkFolder &)>;
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("isWritten");

    const auto row = [](const char *name, bool isWritten, Change change) {
        QTest::newRow(name) << std::move(change) << isWritten;
    };
    const auto smart = [](WayfoldBookmarkFolder &site) {
        return std::static_pointer_cast<WayfoldAutoFolder>(site.childAtIndex(0));
    };
    row("an item comes", true, [](auto &site) { site.addChild(note("c")); });
    row("an item goes", true, [](auto &site) { site.removeChild(site.lastChild()); });
    row("items are sorted", true, [](auto &site) { site.sortChildrenByTitle(); });
    row("all go", true, [](auto &site) { site.removeAllChildren(); });
    row("all are others", true, [](auto &site) { site.setLazyChildren(nullptr); });
    row("title", true, [](auto &site) { site.lastChild()->setTitle("c"); });
    row("text", true, [](auto &site) { site.lastChild()->setValue(QStringLiteral("text")); });
    row("identifier", true, [](auto &site) { site.lastChild()->createUUID(); });
    row("search string", true, [](auto &site) { site.setFilterString("s"); });
    row("time stamp", false, [](auto &site) { site.lastChild()->setTimestampInMilliseconds(5); });
    row("the root's title", true, [](auto &site) { site.parent()->setTitle("top"); });
    row("a group", true, [](auto &site) {
        std::static_pointer_cast<WayfoldBookmarkABGroup>(site.childAtIndex(1))->setValueFromID("h");
    });
    row("a smart folder comes", false, [](auto &site) { site.addChild(WayfoldAutoFolder::bookmarkWithTitle("n")); });
    row("a smart folder goes", false, [](auto &site) { site.removeChild(site.childAtIndex(0)); });
    row("a smart folder is called otherwise", false, [](auto &site) { site.childAtIndex(0)->setTitle("other"); });
    row("a smart folder collects", false, [smart](auto &site) {
        smart(site)->addChild(note("n"));
        smart(site)->lastChild()->setTitle("m");
        smart(site)->removeAllChildren();
    });
    row("a group is filled", false, [](auto &site) { site.childAtIndex(1)->refresh(); });
    row("a member's card changes", false, [](auto &site) {
        site.childAtIndex(1)->refresh();
        ContactStore &contacts = ContactStore::sharedAddressBook();
        static_cast<MemoryContacts &>(contacts).set(MemoryContacts::person("p", "Bea", {}));
        site.childAtIndex(1)->refresh();
    });
    row("nothing", false, [](auto &site) { site.setTitle(site.title()); });
}

void UnsavedChangesTest::whatIsWritten()
{
    QFETCH(std::function<void(WayfoldBookmarkFolder &)>, change);
    QFETCH(bool, isWritten);
    change(*_site);
    QCOMPARE(_changes->areAny(), isWritten);
    QCOMPARE(_saves, 0);
    QTest::qWait(0);
    QTRY_COMPARE(_saves, int(isWritten));
    QVERIFY(!_changes->areAny());
}

void UnsavedChangesTest::manyAreSavedOnce()
{
    for (int i = 0; i < 5; ++i)
        _site->addChild(note("n"));
    _root->removeChild(_site);
    QTRY_COMPARE(_saves, 1);
    QTest::qWait(0);
    QCOMPARE(_saves, 1);
    _site->addChild(note("no longer in the tree"));
    QVERIFY(!_changes->areAny());
}

void UnsavedChangesTest::savedByHand()
{
    _site->addChild(note("n"));
    _changes->forget();
    QTest::qWait(0);
    QCOMPARE(_saves, 0);
}

void UnsavedChangesTest::savingMayFail()
{
    int tries = 0;
    UnsavedChanges changes([&tries] { ++tries; });
    changes.observe(_root);
    _site->addChild(note("n"));
    QTRY_COMPARE(tries, 1);
    QVERIFY(changes.areAny());
    QTest::qWait(0);
    QCOMPARE(tries, 1); // who saves tries again
    _site->addChild(note("m"));
    QTRY_COMPARE(tries, 2);
}

void UnsavedChangesTest::otherTree()
{
    const auto other = WayfoldBookmarkFolder::bookmarkWithTitle("other");
    _site->addChild(note("n"));
    _changes->observe(other);
    QVERIFY(!_changes->areAny());
    _site->addChild(note("m"));
    QVERIFY(!_changes->areAny());
    other->addChild(note("n"));
    QVERIFY(_changes->areAny());
}

void UnsavedChangesTest::treeThatIsLeft()
{
    _changes.reset();
    _site->addChild(note("n"));
    QTest::qWait(0);
    QCOMPARE(_saves, 0);
}

QTEST_MAIN(UnsavedChangesTest)
#include "UnsavedChangesTest.moc"
