#include "model/WayfoldBookmarkABGroup.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "platform/files/PropertyList.h"
#include "platform/widgets/Workspace.h"
#include "tests/model/ModelTestSupport.h"
#include "tests/support/MemoryContacts.h"

#include <QtTest>
#include <atomic>
#include <thread>

class WayfoldBookmarkABGroupTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;
    std::unique_ptr<MemoryContacts> _contacts;

    void setPerson(const QString &id, const QStringList &emails = {})
    {
        _contacts->set(MemoryContacts::person(id, id, {}, emails));
    }
    WayfoldBookmarkABGroupPtr group(const QString &id, const QStringList &members)
    {
        _contacts->set(MemoryContacts::group(id, id, members));
        return WayfoldBookmarkABGroup::bookmarkWithID(id);
    }
    static WayfoldBookmarkABGroupPtr groupAt(const WayfoldBookmarkFolder &folder, unsigned index)
    {
        return std::dynamic_pointer_cast<WayfoldBookmarkABGroup>(folder.childAtIndex(index));
    }
    // Titles, with those of a group's members behind it: "g(a b h(c))".
    static QString treeOf(const WayfoldBookmarkFolder &folder)
    {
        QStringList rows;
        for (const KDRBookmarkPtr &item : folder.children())
            rows.append(item->isFolder() ? treeOf(static_cast<const WayfoldBookmarkFolder &>(*item)) : item->title());
        return QStringLiteral("%1(%2)").arg(folder.title(), rows.join(u' '));
    }

private Q_SLOTS:
    void init();
    void cleanup();

    void madeFromIdentifier();
    void madeFromEntry();
    void withoutAnEntry();
    void madeFromATitle();
    void kinds();
    void value();
    void titleIsLookedUpAtEachCall();
    void policies();

    void membersAreSortedByTitle();
    void membersOfEveryKind();
    void membersHaveNoParent();
    void subgroupsAreFilled();
    void filledWhenLookedInto();
    void refreshIsNoLoading();
    void membersFollowTheContacts();
    void membersStayWhileTheContactsDo();
    void membersStayTheSameItems();
    void cardThatComesLater();
    void deletedCard();
    void refreshedWithItsFolder();
    void oneRefreshAtATime();

    void groupsWithinThemselves_data();
    void groupsWithinThemselves();
    void groupsThatUnfoldWithoutEnd();
    void groupsInLongChains();
    void manyGroupsInManyGroups_data();
    void manyGroupsInManyGroups();
    void roomForManySubgroups();

    void emailAddresses();
    void emailAddressesOfSubgroups();
    void emailAddressesOfManyMembers();

    void search();
    void equality();
    void copies();
    void archive();
    void dictionary();
    void readDictionary();
    void image();
    void removedWithSmartFolders();
    void editOpensTheCard();
};

void WayfoldBookmarkABGroupTest::init()
{
    _home = std::make_unique<FreshHome>();
    _contacts = std::make_unique<MemoryContacts>();
}

void WayfoldBookmarkABGroupTest::cleanup()
{
    Workspace::setURLHandler({});
    _contacts.reset();
    _home.reset();
}

void WayfoldBookmarkABGroupTest::madeFromIdentifier()
{
    const WayfoldBookmarkABGroupPtr friends = group("friends", {});
    QCOMPARE(friends->uuid(), QStringLiteral("friends"));
    QCOMPARE(friends->title(), QStringLiteral("friends"));
    QCOMPARE(friends->valueAsString(), QStringLiteral("friends"));
    QCOMPARE(friends->addressBookEntry()->entryType(), WayfoldABEntry::Group);
    QVERIFY(!friends->isLoaded());
    QVERIFY(friends->timestamp().isValid());
    QCOMPARE(WayfoldBookmarkABGroup::bookmarkWithID("nobody")->title(), QStringLiteral("Invalid"));
}

void WayfoldBookmarkABGroupTest::madeFromEntry()
{
    const WayfoldABEntryPtr entry = group("friends", {})->addressBookEntry();
    const WayfoldBookmarkABGroupPtr friends = WayfoldBookmarkABGroup::bookmarkWithRecord(entry);
    QVERIFY(friends->addressBookEntry() == entry);
    QCOMPARE(friends->uuid(), QStringLiteral("friends"));
}

void WayfoldBookmarkABGroupTest::withoutAnEntry()
{
    const WayfoldBookmarkABGroupPtr none = WayfoldBookmarkABGroup::bookmarkWithRecord(nullptr);
    QVERIFY(none->title().isNull());
    QVERIFY(none->uuid().isNull());
    QVERIFY(none->refresh());
    QVERIFY(none->isEmpty());
    QVERIFY(none->primaryEmailAddressList().isEmpty());
    const QVariantMap expected{{"WebBookmarkType", "ABGroup"}, {"AddressBookID", ""}, {"WebBookmarkUUID", ""}};
    QCOMPARE(none->createDictionary(true), expected);
}

// It stands for no card, so it has no title to show.
void WayfoldBookmarkABGroupTest::madeFromATitle()
{
    const WayfoldBookmarkABGroupPtr friends = WayfoldBookmarkABGroup::bookmarkWithTitle("Friends");
    QVERIFY(!friends->addressBookEntry());
    QVERIFY(friends->title().isNull());
    QCOMPARE(friends->uuid().size(), 36);
}

void WayfoldBookmarkABGroupTest::kinds()
{
    const WayfoldBookmarkABGroupPtr friends = group("friends", {});
    QCOMPARE(int(friends->type()), 8);
    QCOMPARE(friends->typeDescription(), QStringLiteral("Group"));
    QVERIFY(friends->isFolder());
    QVERIFY(friends->tooltipText().isNull());
}

void WayfoldBookmarkABGroupTest::value()
{
    const WayfoldBookmarkABGroupPtr friends = group("friends", {});
    QVERIFY(friends->value().value<WayfoldABEntryPtr>() == friends->addressBookEntry());
    const WayfoldABEntryPtr other = group("other", {})->addressBookEntry();
    friends->setValue(QVariant::fromValue(other));
    QVERIFY(friends->addressBookEntry() == other);
    QCOMPARE(friends->uuid(), QStringLiteral("friends"));
    friends->setValue(QStringLiteral("friends")); // of another type
    QVERIFY(friends->addressBookEntry() == other);
    friends->setValueFromID("friends");
    QCOMPARE(friends->title(), QStringLiteral("friends"));
    friends->setValue(QVariant());
    QVERIFY(!friends->addressBookEntry());
}

void WayfoldBookmarkABGroupTest::titleIsLookedUpAtEachCall()
{
    const WayfoldBookmarkABGroupPtr friends = group("friends", {});
    QCOMPARE(friends->title(), QStringLiteral("friends"));
    _contacts->set(MemoryContacts::group("friends", "Good friends", {}));
    QCOMPARE(friends->title(), QStringLiteral("Good friends"));
    QCOMPARE(friends->filterString(), QStringLiteral("Good friends"));
    _contacts->take("friends");
    QCOMPARE(friends->title(), QStringLiteral("Invalid"));
}

void WayfoldBookmarkABGroupTest::policies()
{
    const WayfoldBookmarkABGroupPtr friends = group("friends", {});
    QVERIFY(friends->canBePersistent());
    QVERIFY(!friends->acceptsDroppedItems());
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("Smart");
    smart->addChild(friends);
    QVERIFY(friends->canBePersistent());
}

// --- Members --------------------------------------------------------------------------------------------------------

void WayfoldBookmarkABGroupTest::membersAreSortedByTitle()
{
    for (const char *id : {"zoe", "Bob", "ann"})
        setPerson(id);
    _contacts->set(MemoryContacts::group("club", "club", {}));
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"zoe", "club", "Bob", "ann"});
    QVERIFY(friends->refresh());
    QCOMPARE(childTitles(*friends), QStringList({"ann", "Bob", "club", "zoe"}));
}

void WayfoldBookmarkABGroupTest::membersOfEveryKind()
{
    setPerson("ann");
    _contacts->set(MemoryContacts::company("kettle", "kettle"));
    ContactRecord unknown = MemoryContacts::person("unknown", "unknown", {});
    unknown.flags = 3;
    _contacts->set(unknown);
    _contacts->set(MemoryContacts::group("sub", "sub", {}));
    const WayfoldBookmarkABGroupPtr friends =
        group("friends", {"ann", "kettle", "unknown", "nobody", "sub", "mailto:bob@a.example"});
    friends->refresh();
    QCOMPARE(childTitles(*friends), QStringList({"ann", "bob@a.example", "kettle", "sub"}));
    QCOMPARE(int(friends->childAtIndex(0)->type()), 7);
    QCOMPARE(friends->childAtIndex(2)->typeDescription(), QStringLiteral("Organization"));
    QCOMPARE(int(friends->childAtIndex(3)->type()), 8);
    QCOMPARE(friends->childAtIndex(0)->uuid(), QStringLiteral("ann"));
    QCOMPARE(groupAt(*friends, 3)->addressBookEntry()->addressBookID(), QStringLiteral("sub"));
}

void WayfoldBookmarkABGroupTest::membersHaveNoParent()
{
    setPerson("ann");
    group("sub", {"ann"});
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann", "sub"});
    friends->refresh();
    for (const KDRBookmarkPtr &member : friends->children())
        QVERIFY(!member->parent());
    const KDRBookmarkPtr ann = friends->childAtIndex(0);
    QVERIFY(ann->canBePersistent());
    QVERIFY(ann->acceptsDroppedItems());
    QCOMPARE(ann->childIsAtIndex(), -1);
    QVERIFY(!ann->isChildOf(friends));
    QVERIFY(!groupAt(*friends, 1)->childAtIndex(0)->parent());
}

void WayfoldBookmarkABGroupTest::subgroupsAreFilled()
{
    for (const char *id : {"ann", "bob", "cy"})
        setPerson(id);
    group("inmost", {"cy"});
    group("inner", {"inmost", "bob"});
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"inner", "ann"});
    friends->refresh();
    QCOMPARE(treeOf(*friends), QStringLiteral("friends(ann inner(bob inmost(cy)))"));
}

void WayfoldBookmarkABGroupTest::filledWhenLookedInto()
{
    setPerson("ann");
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann"});
    QVERIFY(friends->isEmpty());
    friends->ensureUpToDate();
    QVERIFY(friends->isLoaded());
    QCOMPARE(childTitles(*friends), QStringList{"ann"});
    const KDRBookmarkPtr ann = friends->childAtIndex(0);
    friends->ensureUpToDate();
    QVERIFY(friends->childAtIndex(0) == ann); // only the first time
}

void WayfoldBookmarkABGroupTest::refreshIsNoLoading()
{
    setPerson("ann");
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann"});
    QVERIFY(friends->refresh());
    QVERIFY(!friends->isLoaded());
    friends->setFilterString("text"); // of no meaning here, but it is kept
    QCOMPARE(friends->filterString(), QStringLiteral("text"));
    QCOMPARE(childTitles(*friends), QStringList{"ann"});
}

void WayfoldBookmarkABGroupTest::membersFollowTheContacts()
{
    setPerson("ann");
    setPerson("bob");
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann"});
    friends->ensureUpToDate();
    group("friends", {"bob"});
    QCOMPARE(childTitles(*friends), QStringList{"ann"});
    friends->refresh();
    QCOMPARE(childTitles(*friends), QStringList{"bob"});
    _contacts->take("bob");
    friends->refresh();
    QVERIFY(friends->isEmpty());
}

// Every visited page refreshes the lists.
void WayfoldBookmarkABGroupTest::membersStayWhileTheContactsDo()
{
    setPerson("ann");
    setPerson("bob");
    group("inner", {"bob"});
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann", "inner"});
    friends->refresh();
    const std::vector<KDRBookmarkPtr> members = friends->children();
    const KDRBookmarkPtr bob = groupAt(*friends, 1)->childAtIndex(0);
    friends->refresh();
    friends->ensureUpToDate();
    groupAt(*friends, 1)->ensureUpToDate();
    QVERIFY(friends->children() == members);
    QVERIFY(groupAt(*friends, 1)->childAtIndex(0) == bob);
    // Nor when it stands for another card, or is looked up elsewhere.
    friends->setValueFromID("inner");
    friends->refresh();
    QCOMPARE(treeOf(*friends), QStringLiteral("inner(bob)"));
    friends->setValue(group("none", {})->value());
    friends->refresh();
    QVERIFY(friends->isEmpty());
    friends->setValueFromID("inner");
    friends->refresh();
    MemoryContacts others;
    friends->refresh();
    QCOMPARE(treeOf(*friends), QStringLiteral("Invalid()"));
}

// What a row knows, its picture above all, is not fetched again whenever some card changes.
void WayfoldBookmarkABGroupTest::membersStayTheSameItems()
{
    setPerson("ann");
    setPerson("bob");
    group("inner", {"bob"});
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann", "inner"});
    friends->refresh();
    const KDRBookmarkPtr ann = friends->childAtIndex(0);
    const WayfoldBookmarkABGroupPtr inner = groupAt(*friends, 1);
    const KDRBookmarkPtr bob = inner->childAtIndex(0);
    inner->ensureUpToDate();
    QByteArray picture;
    QBuffer buffer(&picture);
    buffer.open(QIODevice::WriteOnly);
    QVERIFY(QImage(8, 8, QImage::Format_RGB32).save(&buffer, "PNG"));
    _contacts->pictures = {{"ann", picture}, {"bob", picture}};
    ann->imageForCellSize({16, 16});
    bob->imageForCellSize({16, 16});
    QCOMPARE(_contacts->picturesAsked, QStringList({"ann", "bob"}));

    _contacts->set(MemoryContacts::person("bob", "Zoe", {}));
    group("friends", {"cy", "inner", "ann"});
    group("inner", {"bob", "cy"});
    setPerson("cy");
    friends->refresh();
    QCOMPARE(treeOf(*friends), QStringLiteral("friends(ann cy inner(cy Zoe))"));
    QVERIFY(friends->childAtIndex(0) == ann);
    QVERIFY(friends->childAtIndex(2) == inner);
    QVERIFY(inner->childAtIndex(1) == bob);
    QVERIFY(!ann->parent() && !inner->parent() && !bob->parent());
    QVERIFY(friends->childAtIndex(1) != inner->childAtIndex(0)); // two rows
    ann->imageForCellSize({16, 16});
    bob->imageForCellSize({16, 16});
    QCOMPARE(_contacts->picturesAsked, QStringList({"ann", "bob", "bob"})); // whose card is another one

    // Not where another item is needed.
    group("ann", {"cy"});
    setPerson("inner");
    friends->refresh();
    QCOMPARE(treeOf(*friends), QStringLiteral("friends(ann(cy) cy inner)"));
    QCOMPARE(friends->childAtIndex(2)->type(), KDRBookmark::PersonType);
}

void WayfoldBookmarkABGroupTest::cardThatComesLater()
{
    const WayfoldBookmarkABGroupPtr friends = WayfoldBookmarkABGroup::bookmarkWithID("friends");
    friends->ensureUpToDate();
    QCOMPARE(treeOf(*friends), QStringLiteral("Invalid()"));
    setPerson("ann");
    group("friends", {"ann"});
    friends->refresh();
    QCOMPARE(treeOf(*friends), QStringLiteral("friends(ann)"));
}

void WayfoldBookmarkABGroupTest::deletedCard()
{
    setPerson("ann");
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann"});
    friends->ensureUpToDate();
    _contacts->take("friends");
    friends->refresh();
    QCOMPARE(treeOf(*friends), QStringLiteral("Invalid()"));
    QCOMPARE(friends->typeDescription(), QStringLiteral("Group"));
    QVERIFY(friends->imageForCellSize({16, 16}));
    QVERIFY(friends->canBePersistent());
    QCOMPARE(friends->createDictionary(true).value("AddressBookID"), QVariant("friends"));
}

void WayfoldBookmarkABGroupTest::refreshedWithItsFolder()
{
    setPerson("ann");
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann"});
    const auto site = makeFolder("a.example", {makeFolder("Inner", {friends})});
    site->refresh();
    QCOMPARE(childTitles(*friends), QStringList{"ann"});
}

namespace
{
// Contacts that note down who asks: whether a card without a name is known depends on their state.
class WatchedContacts : public MemoryContacts
{
public:
    std::function<void()> whenAsked;
    State state() const override
    {
        if (whenAsked)
            whenAsked();
        return Ready;
    }
};
} // namespace

void WayfoldBookmarkABGroupTest::oneRefreshAtATime()
{
    auto watched = std::make_unique<WatchedContacts>();
    WatchedContacts &contacts = *watched;
    _contacts = std::move(watched);
    QStringList members;
    for (int i = 0; i < 2000; ++i)
        members.append(QStringLiteral("mailto:%1@a.example").arg(i));
    const WayfoldBookmarkABGroupPtr friends = group("friends", members);
    const std::thread::id here = std::this_thread::get_id();
    std::atomic<int> askedThere = 0;
    int askedThereMeanwhile = 0;
    std::atomic<bool> startedThere = false;
    bool isChanged = false;
    std::thread there;
    contacts.whenAsked = [&] {
        if (std::this_thread::get_id() != here) {
            ++askedThere;
        } else if (!std::exchange(isChanged, true)) {
            setPerson("ann"); // so that there is something to look up anew
        } else if (!there.joinable()) {
            there = std::thread([&] {
                startedThere = true;
                friends->refresh();
            });
            while (!startedThere)
                std::this_thread::yield();
        } else {
            std::this_thread::yield();
            askedThereMeanwhile = askedThere;
        }
    };
    friends->refresh();
    there.join();
    contacts.whenAsked = nullptr;
    QVERIFY(askedThere > 0);
    QCOMPARE(askedThereMeanwhile, 0);
    QCOMPARE(friends->childCount(), 2000u);
}

// --- Groups that hold each other ------------------------------------------------------------------------------------

void WayfoldBookmarkABGroupTest::groupsWithinThemselves_data()
{
    using Groups = QList<QPair<QString, QStringList>>;
    QTest::addColumn<Groups>("groups");
    QTest::addColumn<QString>("tree"); // of the first
    QTest::newRow("itself") << Groups{{"a", {"a", "ann"}}} << "a(a() ann)";
    QTest::newRow("each other") << Groups{{"a", {"b", "ann"}}, {"b", {"a", "bob"}}} << "a(ann b(a() bob))";
    QTest::newRow("three") << Groups{{"a", {"b"}}, {"b", {"c"}}, {"c", {"a", "b"}}} << "a(b(c(a() b())))";
    QTest::newRow("twice, but not within itself")
        << Groups{{"a", {"b", "c"}}, {"b", {"d"}}, {"c", {"d"}}, {"d", {"ann"}}} << "a(b(d(ann)) c(d(ann)))";
}

void WayfoldBookmarkABGroupTest::groupsWithinThemselves()
{
    using Groups = QList<QPair<QString, QStringList>>;
    QFETCH(Groups, groups);
    QFETCH(QString, tree);
    setPerson("ann", {"ann@a.example"});
    setPerson("bob", {"bob@a.example"});
    for (const auto &[id, members] : groups)
        group(id, members);
    const WayfoldBookmarkABGroupPtr first = WayfoldBookmarkABGroup::bookmarkWithID(groups.first().first);
    first->ensureUpToDate();
    QCOMPARE(treeOf(*first), tree);
    // Looking into what is within goes no further.
    const std::function<void(const WayfoldBookmarkFolder &)> open = [&](const WayfoldBookmarkFolder &folder) {
        for (const KDRBookmarkPtr &item : folder.children()) {
            item->ensureUpToDate();
            if (item->isFolder())
                open(static_cast<const WayfoldBookmarkFolder &>(*item));
        }
    };
    open(*first);
    QCOMPARE(treeOf(*first), tree);
    QVERIFY(first->primaryEmailAddressList().size() <= 2);
}

// Two groups on each level, both with the two of the next: 2 to the power of 40 in all.
void WayfoldBookmarkABGroupTest::groupsThatUnfoldWithoutEnd()
{
    setPerson("ann", {"ann@a.example"});
    for (int level = 0; level < 40; ++level) {
        const QStringList next = {QStringLiteral("l%1").arg(level + 1), QStringLiteral("r%1").arg(level + 1), "ann"};
        group(QStringLiteral("l%1").arg(level), next);
        group(QStringLiteral("r%1").arg(level), next);
    }
    const WayfoldBookmarkABGroupPtr root = WayfoldBookmarkABGroup::bookmarkWithID("l0");
    root->refresh();
    const unsigned count = root->deepChildCount();
    QVERIFY2(count > 1000 && count < 5000, qPrintable(QString::number(count)));
    QCOMPARE(root->primaryEmailAddressList(), QStringList{"ann@a.example"});
    // What is not filled then is filled when somebody looks into it.
    WayfoldBookmarkABGroupPtr lowest = root;
    for (int level = 1; level < 40; ++level) {
        QCOMPARE(lowest->childCount(), 3u);
        lowest = groupAt(*lowest, 2); // "r", the later of the two
        QCOMPARE(lowest->title(), QStringLiteral("r%1").arg(level));
        lowest->ensureUpToDate();
    }
    QCOMPARE(childTitles(*lowest), QStringList{"ann"});
}

void WayfoldBookmarkABGroupTest::groupsInLongChains()
{
    constexpr int length = 3000;
    for (int i = 0; i < length; ++i)
        group(QString::number(i), {QString::number(i + 1)});
    const WayfoldBookmarkABGroupPtr first = WayfoldBookmarkABGroup::bookmarkWithID("0");
    first->refresh();
    QVERIFY(first->deepChildCount() > 900);
    QVERIFY(first->primaryEmailAddressList().isEmpty());
    // They are no reason not to save: what they hold is not written.
    const QString path = _home->path("items.plist");
    QVERIFY(makeFolder("Root", {first})->writeDictionaryFile(path));
    QCOMPARE(WayfoldBookmarkFolder::bookmarkFromDictionaryFile(path)->childCount(), 1u);
}

void WayfoldBookmarkABGroupTest::manyGroupsInManyGroups_data()
{
    QTest::addColumn<bool>("inEachOther");
    QTest::newRow("each in all others") << true;
    QTest::newRow("each in all before it") << false;
}

// More than memory holds when many of them are filled.
void WayfoldBookmarkABGroupTest::manyGroupsInManyGroups()
{
    QFETCH(bool, inEachOther);
    constexpr int count = 2000;
    QStringList ids;
    for (int i = 0; i < count; ++i)
        ids.append(QStringLiteral("%1").arg(i, 4, 10, QLatin1Char('0')));
    for (int i = 0; i < count; ++i)
        _contacts->set(MemoryContacts::group(ids[i], ids[i], inEachOther ? ids : ids.mid(i + 1)));
    const WayfoldBookmarkABGroupPtr first = WayfoldBookmarkABGroup::bookmarkWithID(ids[0]);
    first->refresh();
    const unsigned members = unsigned(inEachOther ? count : count - 1);
    QCOMPARE(first->childCount(), members);
    QVERIFY2(first->deepChildCount() < 30000, qPrintable(QString::number(first->deepChildCount())));
    // What had no room is filled when somebody looks into it.
    const WayfoldBookmarkABGroupPtr later = groupAt(*first, 1500);
    QVERIFY(later->isEmpty());
    later->ensureUpToDate();
    QCOMPARE(later->childCount(), unsigned(inEachOther ? count : count - 1502));
}

// As a company may have them.
void WayfoldBookmarkABGroupTest::roomForManySubgroups()
{
    QStringList subgroups;
    for (int i = 0; i < 200; ++i) {
        QStringList members;
        for (int j = 0; j < 50; ++j) {
            members.append(QStringLiteral("p%1").arg(i * 50 + j));
            setPerson(members.last(), {members.last() + "@a.example"});
        }
        subgroups.append(QStringLiteral("sub%1").arg(i));
        group(subgroups.last(), members);
    }
    const WayfoldBookmarkABGroupPtr all = group("all", subgroups);
    all->refresh();
    QCOMPARE(all->deepChildCount(), 200u + 200u * 50u);
    QCOMPARE(all->primaryEmailAddressList().size(), 200 * 50);
}

// --- E-mail addresses -----------------------------------------------------------------------------------------------

void WayfoldBookmarkABGroupTest::emailAddresses()
{
    setPerson("ann", {"shared@a.example"});
    setPerson("bob", {"bob@a.example", "second@a.example"});
    setPerson("cy");
    setPerson("di", {"shared@a.example"});
    setPerson("ed", {""});
    _contacts->set(MemoryContacts::company("kettle", "kettle", {"tea@a.example"}));
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"kettle", "di", "ed", "cy", "bob", "ann"});
    QVERIFY(friends->primaryEmailAddressList().isEmpty()); // nobody has looked into it
    friends->refresh();
    QCOMPARE(friends->primaryEmailAddressList(), QStringList({"shared@a.example", "bob@a.example", "tea@a.example"}));
}

void WayfoldBookmarkABGroupTest::emailAddressesOfSubgroups()
{
    setPerson("ann", {"ann@a.example"});
    setPerson("bob", {"bob@a.example"});
    setPerson("zoe", {"zoe@a.example"});
    group("more", {"bob", "zoe"});
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"zoe", "ann", "more"});
    friends->refresh();
    QCOMPARE(treeOf(*friends), QStringLiteral("friends(ann more(bob zoe) zoe)"));
    QCOMPARE(friends->primaryEmailAddressList(), QStringList({"ann@a.example", "bob@a.example", "zoe@a.example"}));
}

void WayfoldBookmarkABGroupTest::emailAddressesOfManyMembers()
{
    QStringList ids;
    for (int i = 0; i < 5000; ++i) {
        ids.append(QStringLiteral("p%1").arg(i, 4, 10, QLatin1Char('0')));
        setPerson(ids.last(), {ids.last() + "@a.example"});
    }
    const WayfoldBookmarkABGroupPtr all = group("all", ids);
    all->refresh();
    const QStringList addresses = all->primaryEmailAddressList();
    QCOMPARE(addresses.size(), 5000);
    QCOMPARE(addresses.last(), QStringLiteral("p4999@a.example"));
}

// --- As an item -----------------------------------------------------------------------------------------------------

void WayfoldBookmarkABGroupTest::search()
{
    setPerson("ann", {"ann@tea.example"});
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann"});
    friends->refresh();
    QCOMPARE(titlesOf(friends->bookmarksWithSubstring("FRIEND")), QStringList{"friends"});
    QCOMPARE(titlesOf(friends->bookmarksWithSubstring("tea")), QStringList{"ann"});
    QCOMPARE(titlesOf(friends->bookmarksWithSubstring("n")), QStringList({"friends", "ann"}));
    _contacts->set(MemoryContacts::group("friends", "renamed", {"ann"}));
    QVERIFY(friends->bookmarksWithSubstring("FRIEND").empty());
    QCOMPARE(titlesOf(friends->bookmarksWithSubstring("renam")), QStringList{"renamed"});
}

void WayfoldBookmarkABGroupTest::equality()
{
    setPerson("ann");
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann"});
    const WayfoldBookmarkABGroupPtr same = WayfoldBookmarkABGroup::bookmarkWithRecord(friends->addressBookEntry());
    QVERIFY(!friends->isEqual(friends)); // as any folder without a search string of its own
    friends->setFilterString("friends");
    same->setFilterString("friends");
    QVERIFY(friends->isEqual(friends));
    QVERIFY(friends->isEqual(same));
    same->setFilterString("others");
    QVERIFY(!friends->isEqual(same));
    same->setFilterString("friends");
    same->setValueFromID("friends"); // another entry for the same card
    QVERIFY(!friends->isEqual(same));
    same->setValue(friends->value());
    same->refresh();
    QVERIFY(!friends->isEqual(same)); // with a member
    QVERIFY(!friends->isEqual(WayfoldAutoFolder::bookmarkWithTitle("friends")));
    QVERIFY(!friends->isEqual(KDRBookmark::bookmarkWithTitle("friends")));
}

void WayfoldBookmarkABGroupTest::copies()
{
    setPerson("ann");
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann"});
    friends->ensureUpToDate();
    const auto copy = std::dynamic_pointer_cast<WayfoldBookmarkABGroup>(friends->copy());
    QVERIFY(copy);
    QVERIFY(!copy->addressBookEntry());
    QVERIFY(copy->title().isNull());
    QCOMPARE(copy->uuid(), QStringLiteral("friends"));
    QCOMPARE(copy->filterString(), QStringLiteral("friends"));
    QVERIFY(!copy->isLoaded());
    QCOMPARE(childTitles(*copy), QStringList{"ann"});
    QVERIFY(copy->childAtIndex(0) != friends->childAtIndex(0));
    QVERIFY(copy->childAtIndex(0)->isEqual(friends->childAtIndex(0)));
    const auto folder = WayfoldBookmarkFolder::fromItem(makeFolder("Folder", {friends})->copy());
    QCOMPARE(folder->childCount(), 1u);
    QCOMPARE(int(folder->childAtIndex(0)->type()), 8);
    QCOMPARE(childTitles(static_cast<const WayfoldBookmarkFolder &>(*folder->childAtIndex(0))), QStringList{"ann"});
}

void WayfoldBookmarkABGroupTest::archive()
{
    setPerson("ann");
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann"});
    friends->setFilterString("text");
    friends->ensureUpToDate();
    const QVariantMap archive = PropertyList::fromData(KeyedArchiver::archivedDataWithRootObject(*friends)).toMap();
    QCOMPARE(archive.value("_title"), QVariant("friends"));
    QCOMPARE(archive.value("_filterString"), QVariant("text"));
    QCOMPARE(archive.value("_children").toList().size(), 1);
    QCOMPARE(archive.value("_addressBookEntry").toMap().value("_addressBookID"), QVariant("friends"));
    const WayfoldBookmarkABGroupPtr read = roundTripThroughArchive(friends);
    QVERIFY(read);
    QCOMPARE(read->uuid(), QStringLiteral("friends"));
    QCOMPARE(treeOf(*read), QStringLiteral("friends(ann)"));
    QCOMPARE(read->filterString(), QStringLiteral("text"));
    QVERIFY(!read->isLoaded());
    QVERIFY(!read->childAtIndex(0)->parent());
    QVERIFY(!read->timestamp().isValid());
    read->refresh();
    QCOMPARE(treeOf(*read), QStringLiteral("friends(ann)"));
}

void WayfoldBookmarkABGroupTest::dictionary()
{
    setPerson("ann");
    const WayfoldBookmarkABGroupPtr friends = group("friends", {"ann"});
    friends->ensureUpToDate();
    friends->setUUID("own");
    const QVariantMap expected{
        {"WebBookmarkType", "ABGroup"}, {"AddressBookID", "friends"}, {"WebBookmarkUUID", "own"}};
    QCOMPARE(friends->createDictionary(true), expected);
    QCOMPARE(friends->createDictionary(false), expected);
}

void WayfoldBookmarkABGroupTest::readDictionary()
{
    setPerson("ann");
    group("friends", {"ann"});
    const auto read = WayfoldBookmarkABGroup::bookmarkFromDictionary(
        {{"AddressBookID", "friends"}, {"WebBookmarkUUID", "own"}, {"Children", QVariantList{QVariantMap()}}});
    QCOMPARE(read->uuid(), QStringLiteral("own"));
    QCOMPARE(read->title(), QStringLiteral("friends"));
    QVERIFY(read->isEmpty());
    read->ensureUpToDate();
    QCOMPARE(childTitles(*read), QStringList{"ann"});
    read->loadFromDictionary({{"AddressBookID", "other"}, {"WebBookmarkUUID", ""}}); // in place of all it was
    QCOMPARE(read->uuid(), QStringLiteral("other"));
    QVERIFY(read->isEmpty());
    QVERIFY(!read->isLoaded());
}

void WayfoldBookmarkABGroupTest::image()
{
    const WayfoldBookmarkABGroupPtr friends = group("friends", {});
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QVERIFY(!friends->imageForCellSize({16, 16})); // never loaded
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(true);
    const std::shared_ptr<Image> image = friends->imageForCellSize({16, 16});
    QCOMPARE(pictureOf(image), pictureOf(WayfoldToolkit::loadImageNamed("WayfoldBookmarkImageGroup")));
    QCOMPARE(image->cacheMode(), Image::NSImageCacheNever);
    WayfoldDefaults::sharedInstance().setShowBookmarkIcons(false);
    QVERIFY(group("others", {})->imageForCellSize({64, 64}) == image); // one for all, and it stays
}

void WayfoldBookmarkABGroupTest::removedWithSmartFolders()
{
    setPerson("ann");
    const auto folder =
        makeFolder("Folder", {makeLink("Link"), group("friends", {}), WayfoldBookmarkABPerson::bookmarkWithID("ann")});
    folder->removeAutoFolders();
    QCOMPARE(childTitles(*folder), QStringList({"Link", "ann"}));
}

// A folder's dialog could change nothing of it.
void WayfoldBookmarkABGroupTest::editOpensTheCard()
{
    RecordingDialogs dialogs;
    QStringList urls;
    Workspace::setURLHandler([&urls](const Url &url) {
        urls.append(url.absoluteString());
        return true;
    });
    const WayfoldBookmarkABGroupPtr friends = group("friends", {});
    QVERIFY(friends->editViaDialog());
    QCOMPARE(_contacts->opened, QStringList{"edit friends"});
    QCOMPARE(urls, QStringList{"file:///cards/friends.vcf"});
    QVERIFY(friends->copy()->editViaDialog()); // stands for no card
    QCOMPARE(urls.size(), 1);
    QVERIFY(dialogs.cardsNotShown.isEmpty());
    _contacts->take("friends");
    QVERIFY(friends->editViaDialog());
    QCOMPARE(urls.size(), 1);
    QCOMPARE(dialogs.cardsNotShown, QStringList{QString()});
    QVERIFY(dialogs.opened.isEmpty());
}

QTEST_MAIN(WayfoldBookmarkABGroupTest)
#include "WayfoldBookmarkABGroupTest.moc"
