#include "model/LazyChildren.h"
#include "model/TextSearch.h"
#include "model/UUIDSearch.h"
#include "model/WayfoldAutoFolder.h"
#include "tests/model/ModelTestSupport.h"

#include <QtTest>
#include <numeric>

namespace
{
// Children as a test describes them: a title for a leaf, whose identifier is "id of <title>"; "title/" for a folder
// that holds the leaves "title 1" and "title 2" in the same lazy way.
class SpelledChildren : public LazyChildren
{
public:
    explicit SpelledChildren(const QStringList &titles) : made(titles.size(), 0), _titles(titles) {}

    std::vector<int> made; // how often each was asked for

    unsigned count() override { return unsigned(_titles.size()); }
    bool isFolder(unsigned index) override { return _titles[index].endsWith('/'); }
    KDRBookmarkPtr makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder) override
    {
        ++made[index];
        const KDRBookmarkPtr child = makeAlone(index);
        child->setParent(folder);
        return child;
    }
    std::vector<unsigned> indexesOfMatches(const TextSearch &search) override
    {
        return indexesOf([&](unsigned i) { return search.isFoundIn(_titles[i]); });
    }
    std::vector<unsigned> indexesOfWanted(const UUIDSearch &search) override
    {
        return indexesOf([&](unsigned i) {
            const QString name = title(i);
            return isFolder(i) ? search.isWanted("id of " + name + " 1") || search.isWanted("id of " + name + " 2")
                               : search.isWanted("id of " + name);
        });
    }

private:
    QString title(unsigned index) const { return QString(_titles[index]).remove('/'); }
    KDRBookmarkPtr makeAlone(unsigned index)
    {
        if (!isFolder(index)) {
            const auto leaf = makeLink(title(index));
            leaf->setUUID("id of " + title(index));
            return leaf;
        }
        const auto folder = makeFolder(title(index));
        folder->setLazyChildren(
            std::make_shared<SpelledChildren>(QStringList{title(index) + " 1", title(index) + " 2"}));
        return folder;
    }
    template <class Predicate>
    std::vector<unsigned> indexesOf(Predicate isOne)
    {
        std::vector<unsigned> indexes;
        for (unsigned i = 0; i < count(); ++i) {
            if (isOne(i))
                indexes.push_back(i);
        }
        return indexes;
    }

    QStringList _titles;
};

// The same, of which copies need not be made one by one.
class CopyableChildren : public SpelledChildren
{
public:
    using SpelledChildren::SpelledChildren;

    std::shared_ptr<LazyChildren> copies() override { return std::make_shared<CopyableChildren>(QStringList{"copy"}); }
};

const QStringList usual = {"b", "F/", "a", "G/", "c"};

QStringList outline(const WayfoldBookmarkFolder &folder)
{
    QStringList titles;
    for (const KDRBookmarkPtr &child : folder.children()) {
        const auto sub = WayfoldBookmarkFolder::fromItem(child);
        titles.append(sub ? sub->title() + "(" + outline(*sub).join(' ') + ")" : child->title());
    }
    return titles;
}
} // namespace

class LazyChildrenTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;
    std::shared_ptr<SpelledChildren> _children;
    WayfoldBookmarkFolderPtr _folder;

    int madeInAll() const { return std::accumulate(_children->made.begin(), _children->made.end(), 0); }
    WayfoldBookmarkFolderPtr subfolder(unsigned index) const
    {
        return WayfoldBookmarkFolder::fromItem(_folder->childAtIndex(index));
    }

private Q_SLOTS:
    void init();
    void cleanup();

    void countingMakesNone();
    void eachIsMadeOnceAndOnDemand();
    void childrenMakesTheRest();
    void indexPastTheEnd();
    void madeChildren();
    void isFolderAtIndex();
    void indexOfChild();
    void childWithTitle();
    void additions();
    void insertion();
    void insertionPastTheEnd();
    void removal();
    void removalOfAnEqualOne();
    void removalOfOneThatIsNotThere();
    void removeAllChildren();
    void otherLazyChildrenReplaceTheFormer();
    void sorting();
    void leavesGo();
    void leavesAndUnknownFoldersGo();
    void emptySubfoldersGo();
    void counts();
    void search();
    void searchUsesThoseThatAreMade();
    void findByUUID();
    void findByUUIDGoesThroughFoldersInOrder();
    void foldersWithIdentifiers();
    void itemsWithUUIDs();
    void copy();
    void copyOfCopyableOnes();
    void copyOfASmartFolder();
    void equality();
    void dictionary();
    void writingMakesNoneInSmartFolders();
    void refreshMakesNone();
    void archive();
    void goneFolderLeavesItsItems();
};

void LazyChildrenTest::init()
{
    _home = std::make_unique<FreshHome>();
    _children = std::make_shared<SpelledChildren>(usual);
    _folder = makeFolder("Top");
    _folder->setLazyChildren(_children);
}

void LazyChildrenTest::cleanup()
{
    _folder.reset();
    _children.reset();
    _home.reset();
}

void LazyChildrenTest::countingMakesNone()
{
    QCOMPARE(_folder->childCount(), 5U);
    QVERIFY(!_folder->isEmpty());
    QVERIFY(_folder->isFolderAtIndex(1));
    QVERIFY(_folder->madeChildren().empty());
    QCOMPARE(_folder->lazyChildren(), _children);
    QCOMPARE(madeInAll(), 0);
    QVERIFY(!makeFolder("F", {makeLink("a")})->lazyChildren());
}

void LazyChildrenTest::eachIsMadeOnceAndOnDemand()
{
    const KDRBookmarkPtr third = _folder->childAtIndex(2);
    QCOMPARE(third->title(), QString("a"));
    QCOMPARE(third->parent(), _folder);
    QCOMPARE(_folder->childAtIndex(2), third);
    QCOMPARE(_children->made, (std::vector<int>{0, 0, 1, 0, 0}));
    QCOMPARE(_folder->lastChild()->title(), QString("c"));
    QCOMPARE(_children->made, (std::vector<int>{0, 0, 1, 0, 1}));
}

void LazyChildrenTest::childrenMakesTheRest()
{
    const KDRBookmarkPtr third = _folder->childAtIndex(2);
    QCOMPARE(childTitles(*_folder), (QStringList{"b", "F", "a", "G", "c"}));
    QCOMPARE(_folder->children()[2], third);
    QCOMPARE(_children->made, (std::vector<int>{1, 1, 1, 1, 1}));
    for (const KDRBookmarkPtr &child : _folder->children())
        QCOMPARE(child->parent(), _folder);
    _folder->children();
    QCOMPARE(madeInAll(), 5);
}

void LazyChildrenTest::indexPastTheEnd()
{
    QCOMPARE(_folder->childAtIndex(5), _folder->lastChild());
    QCOMPARE(_folder->childAtIndex(unsigned(-1)), _folder->lastChild());
    QCOMPARE(madeInAll(), 1);
    const auto empty = makeFolder("Empty");
    empty->setLazyChildren(std::make_shared<SpelledChildren>(QStringList()));
    QVERIFY(empty->isEmpty());
    QVERIFY(!empty->childAtIndex(0));
    QVERIFY(!empty->lastChild());
    QVERIFY(empty->children().empty());
}

void LazyChildrenTest::madeChildren()
{
    const KDRBookmarkPtr last = _folder->lastChild();
    const KDRBookmarkPtr first = _folder->childAtIndex(0);
    QCOMPARE(_folder->madeChildren(), (std::vector<KDRBookmarkPtr>{first, last}));
    QCOMPARE(_folder->indexOfMadeChild(*last), 4);
    QCOMPARE(_folder->indexOfMadeChild(*makeLink("c")), -1);
    QCOMPARE(madeInAll(), 2);
}

void LazyChildrenTest::isFolderAtIndex()
{
    for (const bool areMade : {false, true}) {
        for (unsigned i = 0; i < 5; ++i)
            QCOMPARE(_folder->isFolderAtIndex(i), i == 1 || i == 3);
        if (!areMade)
            _folder->addChild(makeLink("more"));
    }
    QVERIFY(!_folder->isFolderAtIndex(5));
}

void LazyChildrenTest::indexOfChild()
{
    const KDRBookmarkPtr third = _folder->childAtIndex(2);
    QCOMPARE(_folder->indexOfChild(*third), 2);
    QCOMPARE(third->childIsAtIndex(), 2);
    QCOMPARE(madeInAll(), 1);
    const KDRBookmarkPtr equal = _folder->childAtIndex(4)->copy();
    QCOMPARE(_folder->indexOfChild(*equal), 4);
    QCOMPARE(_folder->indexOfChild(*makeLink("other")), -1);
}

void LazyChildrenTest::childWithTitle()
{
    QCOMPARE(_folder->childWithTitle("G"), _folder->childAtIndex(3));
    QVERIFY(!_folder->childWithTitle("g"));
    QVERIFY(!_folder->childWithTitle("F 1")); // not in the folders
}

void LazyChildrenTest::additions()
{
    const KDRBookmarkPtr third = _folder->childAtIndex(2);
    _folder->addChild(nullptr);
    QVERIFY(_folder->lazyChildren());
    const KDRBookmarkPtr added = makeLink("d");
    _folder->addChild(added);
    QVERIFY(!_folder->lazyChildren());
    QCOMPARE(childTitles(*_folder), (QStringList{"b", "F", "a", "G", "c", "d"}));
    QCOMPARE(_folder->childCount(), 6U);
    QCOMPARE(_folder->childAtIndex(2), third);
    QCOMPARE(added->parent(), _folder);
    QCOMPARE(_children->made, (std::vector<int>{1, 1, 1, 1, 1}));
    QCOMPARE(outline(*_folder).at(1), QString("F(F 1 F 2)"));
}

void LazyChildrenTest::insertion()
{
    _folder->addChildAtIndex(makeLink("x"), 2);
    _folder->addChildAtIndex(makeLink("y"), -5);
    QCOMPARE(childTitles(*_folder), (QStringList{"y", "b", "F", "x", "a", "G", "c"}));
}

void LazyChildrenTest::insertionPastTheEnd()
{
    _folder->addChildAtIndex(makeLink("x"), 100);
    QCOMPARE(childTitles(*_folder), (QStringList{"b", "F", "a", "G", "c", "x"}));
}

void LazyChildrenTest::removal()
{
    const KDRBookmarkPtr third = _folder->childAtIndex(2);
    QVERIFY(_folder->removeChild(third));
    QCOMPARE(childTitles(*_folder), (QStringList{"b", "F", "G", "c"}));
    QCOMPARE(third->parent(), _folder); // as with any folder
    QVERIFY(!_folder->removeChild(third));
    QVERIFY(!_folder->removeChild(nullptr));
}

void LazyChildrenTest::removalOfAnEqualOne()
{
    QVERIFY(_folder->removeChild(_folder->lastChild()->copy()));
    QCOMPARE(childTitles(*_folder), (QStringList{"b", "F", "a", "G"}));
}

void LazyChildrenTest::removalOfOneThatIsNotThere()
{
    QVERIFY(!_folder->removeChild(makeLink("a")));
    QCOMPARE(childTitles(*_folder), (QStringList{"b", "F", "a", "G", "c"}));
}

void LazyChildrenTest::removeAllChildren()
{
    const KDRBookmarkPtr first = _folder->childAtIndex(0);
    _folder->removeAllChildren();
    QCOMPARE(_folder->childCount(), 0U);
    QVERIFY(_folder->children().empty());
    QVERIFY(!_folder->lazyChildren());
    QCOMPARE(first->parent(), _folder);
    QCOMPARE(madeInAll(), 1);
    _folder->addChild(first);
    QCOMPARE(childTitles(*_folder), QStringList{"b"});
}

void LazyChildrenTest::otherLazyChildrenReplaceTheFormer()
{
    _folder->childAtIndex(0);
    _folder->setLazyChildren(std::make_shared<SpelledChildren>(QStringList{"x"}));
    QCOMPARE(childTitles(*_folder), QStringList{"x"});
}

void LazyChildrenTest::sorting()
{
    const KDRBookmarkPtr third = _folder->childAtIndex(2);
    _folder->sortChildrenByTitle();
    QCOMPARE(childTitles(*_folder), (QStringList{"a", "b", "c", "F", "G"}));
    QCOMPARE(_folder->childAtIndex(0), third);
    QCOMPARE(madeInAll(), 5);

    const auto dated = makeFolder("Dated");
    dated->setLazyChildren(std::make_shared<SpelledChildren>(QStringList{"old", "none", "new"}));
    dated->childAtIndex(0)->setTimestamp(QDateTime::fromSecsSinceEpoch(1));
    dated->childAtIndex(1)->setTimestamp(CalendarDate());
    dated->childAtIndex(2)->setTimestamp(QDateTime::fromSecsSinceEpoch(2));
    dated->sortChildrenByTimestampDescending();
    QCOMPARE(childTitles(*dated), (QStringList{"new", "old", "none"}));
}

void LazyChildrenTest::leavesGo()
{
    const KDRBookmarkPtr known = _folder->childAtIndex(3);
    _folder->removeAllLeafChildren();
    QCOMPARE(outline(*_folder), (QStringList{"F()", "G()"}));
    QCOMPARE(_folder->childAtIndex(1), known);
    QCOMPARE(_folder->childAtIndex(0)->parent(), _folder);
    QCOMPARE(_children->made, (std::vector<int>{0, 1, 0, 1, 0})); // no leaf for nothing
    QVERIFY(!_folder->lazyChildren());
}

void LazyChildrenTest::leavesAndUnknownFoldersGo()
{
    const KDRBookmarkPtr known = _folder->childAtIndex(3);
    _folder->childAtIndex(0);
    _folder->removeAllButKnownFolders();
    QCOMPARE(outline(*_folder), QStringList{"G()"});
    QCOMPARE(_folder->childAtIndex(0), known);
    QCOMPARE(madeInAll(), 2);

    _folder->setLazyChildren(std::make_shared<SpelledChildren>(usual));
    _folder->removeAllButKnownFolders();
    QVERIFY(_folder->isEmpty());
    // Ordinary folders are known, whoever looked at them.
    const auto ordinary = makeFolder("O", {makeLink("x"), makeFolder("P", {makeLink("y")})});
    ordinary->removeAllButKnownFolders();
    QCOMPARE(outline(*ordinary), QStringList{"P()"});
}

void LazyChildrenTest::emptySubfoldersGo()
{
    _folder->removeEmptySubfolders();
    QCOMPARE(madeInAll(), 0); // a lazy folder is not empty
    subfolder(1)->removeAllChildren();
    subfolder(3)->setLazyChildren(std::make_shared<SpelledChildren>(QStringList{"E/"}));
    WayfoldBookmarkFolder::fromItem(subfolder(3)->childAtIndex(0))->removeAllChildren();
    _folder->removeEmptySubfolders();
    QCOMPARE(outline(*_folder), (QStringList{"b", "a", "G()", "c"}));
    _folder->removeEmptySubfolders(); // one level a call
    QCOMPARE(outline(*_folder), (QStringList{"b", "a", "c"}));
}

void LazyChildrenTest::counts()
{
    QCOMPARE(_folder->deepChildCount(), 9U);
    QCOMPARE(_folder->persistentChildCount(), 9U);
}

void LazyChildrenTest::search()
{
    QCOMPARE(titlesOf(_folder->bookmarksWithSubstring("f")), (QStringList{"F", "F 1", "F 2"}));
    QCOMPARE(_children->made, (std::vector<int>{0, 1, 0, 0, 0}));
    QCOMPARE(titlesOf(_folder->bookmarksWithSubstring("A")), QStringList{"a"});
    // The folder itself comes before what it holds.
    _folder->setTitle("a top");
    QCOMPARE(titlesOf(_folder->bookmarksWithSubstring("a")), (QStringList{"a top", "a"}));
    QVERIFY(_folder->bookmarksWithSubstring("").empty());
    QVERIFY(_folder->bookmarksWithSubstring("nothing").empty());
    // The same again when they have become ordinary ones.
    const std::vector<KDRBookmarkPtr> before = _folder->bookmarksWithSubstring("f");
    _folder->addChild(makeLink("z"));
    QCOMPARE(_folder->bookmarksWithSubstring("f"), before);
}

void LazyChildrenTest::searchUsesThoseThatAreMade()
{
    const KDRBookmarkPtr third = _folder->childAtIndex(2);
    QCOMPARE(_folder->bookmarksWithSubstring("a"), std::vector<KDRBookmarkPtr>{third});
    QCOMPARE(_folder->bookmarksWithSubstring("a").front()->parent(), _folder);
    QCOMPARE(madeInAll(), 1);
}

void LazyChildrenTest::findByUUID()
{
    QCOMPARE(_folder->findByUUID(_folder->uuid()), _folder);
    QCOMPARE(madeInAll(), 0);
    const KDRBookmarkPtr found = _folder->findByUUID("id of c");
    QVERIFY(found);
    QCOMPARE(found, _folder->childAtIndex(4));
    QCOMPARE(madeInAll(), 1);
    QVERIFY(!_folder->findByUUID("id of d"));
    QVERIFY(!_folder->findByUUID(QString()));
    QCOMPARE(madeInAll(), 1);
}

void LazyChildrenTest::findByUUIDGoesThroughFoldersInOrder()
{
    const KDRBookmarkPtr deep = _folder->findByUUID("id of G 2");
    QVERIFY(deep);
    QCOMPARE(deep->title(), QString("G 2"));
    QCOMPARE(deep->parent(), _folder->childAtIndex(3));
    QCOMPARE(_children->made, (std::vector<int>{0, 0, 0, 1, 0}));

    const auto twins = makeFolder("Twins");
    twins->setLazyChildren(std::make_shared<SpelledChildren>(QStringList{"F/", "F 2", "F/"}));
    QCOMPARE(twins->findByUUID("id of F 2")->parent(), twins->childAtIndex(0));
}

void LazyChildrenTest::foldersWithIdentifiers()
{
    const QString known = _folder->childAtIndex(1)->uuid();
    QCOMPARE(_folder->findByUUID(known), _folder->childAtIndex(1));
    QCOMPARE(madeInAll(), 1);
}

void LazyChildrenTest::itemsWithUUIDs()
{
    const QString known = _folder->childAtIndex(3)->uuid();
    const auto found = _folder->itemsWithUUIDs({"id of a", "id of F 1", "nowhere", known, QString()});
    QCOMPARE(found.size(), 3);
    QCOMPARE(found.value("id of a"), _folder->childAtIndex(2));
    QCOMPARE(found.value("id of F 1"), subfolder(1)->childAtIndex(0));
    QCOMPARE(found.value(known), _folder->childAtIndex(3));
    QCOMPARE(_children->made, (std::vector<int>{0, 1, 1, 1, 0}));
    QVERIFY(_folder->itemsWithUUIDs({}).isEmpty());
}

void LazyChildrenTest::copy()
{
    const auto copied = WayfoldBookmarkFolder::fromItem(_folder->copy());
    QCOMPARE(outline(*copied), outline(*_folder));
    QCOMPARE(copied->filterString(), QString("Top"));
    for (unsigned i = 0; i < 5; ++i) {
        QVERIFY(copied->childAtIndex(i) != _folder->childAtIndex(i));
        QCOMPARE(copied->childAtIndex(i)->uuid(), _folder->childAtIndex(i)->uuid());
        QCOMPARE(copied->childAtIndex(i)->parent(), copied);
        QCOMPARE(_folder->childAtIndex(i)->parent(), _folder);
    }
    QCOMPARE(madeInAll(), 5);
}

void LazyChildrenTest::copyOfCopyableOnes()
{
    const auto children = std::make_shared<CopyableChildren>(usual);
    _folder->setLazyChildren(children);
    const auto copied = WayfoldBookmarkFolder::fromItem(_folder->copy());
    QCOMPARE(childTitles(*copied), QStringList{"copy"});
    QCOMPARE(copied->childAtIndex(0)->parent(), copied);
    QCOMPARE(std::accumulate(children->made.begin(), children->made.end(), 0), 0);
    // What has been changed is copied as it is.
    _folder->removeChild(_folder->childAtIndex(0));
    QCOMPARE(childTitles(*WayfoldBookmarkFolder::fromItem(_folder->copy())), (QStringList{"F", "a", "G", "c"}));
}

void LazyChildrenTest::copyOfASmartFolder()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("Related History");
    smart->ensureUpToDate();
    smart->addChild(_folder);
    QVERIFY(smart->isLoaded());
    const auto copied = std::dynamic_pointer_cast<WayfoldAutoFolder>(smart->copy());
    QVERIFY(copied);
    QVERIFY(!copied->isLoaded());
    QCOMPARE(outline(*copied), outline(*smart));
    const auto day = WayfoldBookmarkFolder::fromItem(copied->childAtIndex(0));
    QVERIFY(day != _folder);
    QCOMPARE(day->uuid(), _folder->uuid());
    QCOMPARE(day->parent(), copied);
    for (unsigned i = 0; i < 5; ++i) {
        QVERIFY(day->childAtIndex(i) != _folder->childAtIndex(i));
        QCOMPARE(day->childAtIndex(i)->uuid(), _folder->childAtIndex(i)->uuid());
        QCOMPARE(day->childAtIndex(i)->parent(), day);
    }
}

void LazyChildrenTest::equality()
{
    QVERIFY(!_folder->isEqual(_folder)); // no search string of its own
    _folder->setFilterString("Top");
    QVERIFY(!_folder->isEqual(_folder)); // nor have its folders
    subfolder(1)->setFilterString("F");
    subfolder(3)->setFilterString("G");
    QVERIFY(_folder->isEqual(_folder));
    QVERIFY(_folder->isEqual(_folder->copy()));
    QVERIFY(_folder->copy()->isEqual(_folder));

    const auto leaves = makeFolder("Leaves");
    leaves->setFilterString("x");
    leaves->setLazyChildren(std::make_shared<SpelledChildren>(QStringList{"a", "b"}));
    const auto other = WayfoldBookmarkFolder::fromItem(leaves->copy());
    QVERIFY(leaves->isEqual(*other));
    other->setLazyChildren(std::make_shared<SpelledChildren>(QStringList{"a", "c"}));
    QVERIFY(!leaves->isEqual(*other));
    other->setLazyChildren(std::make_shared<SpelledChildren>(QStringList{"a"}));
    QVERIFY(!leaves->isEqual(*other));
    QVERIFY(!other->isEqual(*leaves));
    other->setLazyChildren(std::make_shared<SpelledChildren>(QStringList{"a", "b"}));
    QVERIFY(leaves->isEqual(*other));
}

void LazyChildrenTest::dictionary()
{
    const QVariantList written = _folder->createDictionary(true).value("Children").toList();
    QCOMPARE(written.size(), 5);
    QCOMPARE(written.at(1).toMap().value("Children").toList().size(), 2);
    QCOMPARE(written.at(4).toMap().value("URIDictionary").toMap().value("title").toString(), QString("c"));
}

void LazyChildrenTest::writingMakesNoneInSmartFolders()
{
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("Related History");
    smart->addChild(_folder);
    const auto root = makeFolder("Root", {makeFolder("a.example", {makeLink("Page"), smart})});
    QVERIFY(root->writeDictionaryFile(_home->path("Bookmarks.plist")));
    QVERIFY(_home->read("Bookmarks.plist").contains("Page"));
    QCOMPARE(madeInAll(), 0);
}

void LazyChildrenTest::refreshMakesNone()
{
    QVERIFY(_folder->refresh());
    QCOMPARE(madeInAll(), 0);
    _folder->childAtIndex(1);
    QVERIFY(_folder->refresh());
    QCOMPARE(madeInAll(), 1);
}

void LazyChildrenTest::archive()
{
    const auto read = roundTripThroughArchive(_folder);
    QVERIFY(read);
    QCOMPARE(outline(*read), outline(*_folder));
    QVERIFY(!read->childAtIndex(0)->parent());
}

void LazyChildrenTest::goneFolderLeavesItsItems()
{
    const KDRBookmarkPtr third = _folder->childAtIndex(2);
    const WayfoldBookmarkFolderPtr sub = subfolder(1);
    const std::weak_ptr<KDRBookmark> other = _folder->childAtIndex(0);
    _folder.reset();
    QVERIFY(!third->parent());
    QVERIFY(other.expired());
    QCOMPARE(childTitles(*sub), (QStringList{"F 1", "F 2"}));
}

QTEST_MAIN(LazyChildrenTest)
#include "LazyChildrenTest.moc"
