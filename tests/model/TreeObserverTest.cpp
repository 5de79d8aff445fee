#include "model/TreeObserver.h"

#include "model/LazyChildren.h"
#include "model/LazyCopies.h"
#include "model/TreeTelling.h"
#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "model/WayfoldBookmarkAutoFolder.h"
#include "model/WayfoldHistoryAutoFolder.h"
#include "tests/model/ModelTestSupport.h"
#include "tests/support/MemoryContacts.h"

#include <QRandomGenerator>
#include <QtTest>
#include <numeric>

using Field = TreeObserver::Field;

namespace
{
const char *nameOf(Field field)
{
    switch (field) {
    case Field::Title:
        return "title";
    case Field::Value:
        return "value";
    case Field::SearchString:
        return "search string";
    case Field::Identifier:
        return "identifier";
    case Field::Timestamp:
        return "time stamp";
    case Field::Appearance:
        return "appearance";
    }
    return "";
}

// What an item shows of a field.
QString textOf(const KDRBookmark &item, Field field)
{
    switch (field) {
    case Field::Title:
        return item.title();
    case Field::Value:
        return item.valueAsString();
    case Field::SearchString:
        return static_cast<const WayfoldBookmarkFolder &>(item).filterString();
    case Field::Identifier:
        return item.uuid();
    case Field::Timestamp:
        return QString::number(item.timestampInMilliseconds());
    case Field::Appearance:
        break;
    }
    return {};
}

// Notes down what it is told: "added root 1 a b", "moved root 1 0", "changed a title".
class Recorder : public TreeObserver
{
public:
    QStringList told;
    // Called at each event, behind noting it.
    std::function<void(const QString &)> react;

    void willAdd(const Children &children) override { note("willAdd", children); }
    void added(const Children &children) override { note("added", children); }
    void willRemove(const Children &children) override { note("willRemove", children); }
    void removed(const Children &children) override { note("removed", children); }
    void moved(WayfoldBookmarkFolder &folder, const std::vector<int> &from) override
    {
        QString text = QStringLiteral("moved ") + folder.title();
        for (const int index : from)
            text += u' ' + QString::number(index);
        note(text);
    }
    void replaced(WayfoldBookmarkFolder &folder) override { note(QStringLiteral("replaced ") + folder.title()); }
    void willChange(KDRBookmark &item, Field field) override { note("willChange", item, field); }
    void changed(KDRBookmark &item, Field field) override { note("changed", item, field); }

    QStringList take() { return std::exchange(told, {}); }

private:
    void note(const char *event, const Children &children)
    {
        note(QString::fromLatin1("%1 %2 %3 %4")
                 .arg(QLatin1String(event), children.folder.title(), QString::number(children.first),
                      titlesOf(children.items).join(u' ')));
    }
    void note(const char *event, const KDRBookmark &item, Field field)
    {
        note(QString::fromLatin1("%1 %2=%3")
                 .arg(QLatin1String(event), QLatin1String(nameOf(field)), textOf(item, field)));
    }
    void note(const QString &event)
    {
        told.append(event);
        if (react)
            react(event);
    }
};

// Knows the tree by what it was told alone; it reads no more of it than the items that come in, and what they hold.
class Mirror : public TreeObserver
{
public:
    explicit Mirror(WayfoldBookmarkFolder &root)
    {
        read(root);
        root.addObserver(this);
    }

    int events = 0;
    QStringList faults;

    void willAdd(const Children &children) override { announced(children); }
    void added(const Children &children) override
    {
        std::vector<KDRBookmark *> &items = known(children.folder);
        if (children.first < 0 || children.first > int(items.size()))
            return fault("added beyond the end");
        for (std::size_t i = 0; i < children.items.size(); ++i)
            items.insert(items.begin() + children.first + int(i), children.items[i].get());
        for (const KDRBookmarkPtr &item : children.items)
            read(*item);
        told();
    }
    void willRemove(const Children &children) override { announced(children); }
    void removed(const Children &children) override
    {
        std::vector<KDRBookmark *> &items = known(children.folder);
        const int last = children.first + int(children.items.size());
        if (children.first < 0 || last > int(items.size()))
            return fault("removed beyond the end");
        for (int i = children.first; i < last; ++i) {
            if (items[std::size_t(i)] != children.items[std::size_t(i - children.first)].get())
                fault("removed another one");
        }
        items.erase(items.begin() + children.first, items.begin() + last);
        told();
    }
    void moved(WayfoldBookmarkFolder &folder, const std::vector<int> &from) override
    {
        std::vector<KDRBookmark *> &items = known(folder);
        std::vector<int> sorted = from;
        std::sort(sorted.begin(), sorted.end());
        std::vector<int> all(items.size());
        std::iota(all.begin(), all.end(), 0);
        if (sorted != all)
            return fault("not an order of all");
        std::vector<KDRBookmark *> ordered;
        for (const int index : from)
            ordered.push_back(items[std::size_t(index)]);
        items = ordered;
        told();
    }
    void replaced(WayfoldBookmarkFolder &folder) override
    {
        known(folder);
        read(folder);
        told();
    }
    void willChange(KDRBookmark &item, Field field) override
    {
        if (_texts[&item].value(field) != textOf(item, field))
            fault("announced when it has changed");
        told();
    }
    void changed(KDRBookmark &item, Field field) override
    {
        if (!_texts.contains(&item))
            fault("a field of an unknown item");
        _texts[&item][field] = textOf(item, field);
        if (field == Field::Title && item.isFolder())
            readFolderTexts(item);
        told();
    }

    // In what it differs from the tree; empty: in nothing.
    QString differenceTo(const WayfoldBookmarkFolder &folder)
    {
        std::vector<KDRBookmark *> real;
        for (const KDRBookmarkPtr &item : folder.children())
            real.push_back(item.get());
        if (!_children.contains(&folder) || _children[&folder] != real)
            return QStringLiteral("the children of ") + folder.title();
        for (KDRBookmark *item : real) {
            for (auto text = _texts[item].cbegin(); text != _texts[item].cend(); ++text) {
                if (text.value() != textOf(*item, text.key()))
                    return QStringLiteral("%1 of %2").arg(QLatin1String(nameOf(text.key())), item->title());
            }
            if (item->isFolder()) {
                if (const QString below = differenceTo(static_cast<WayfoldBookmarkFolder &>(*item)); !below.isEmpty())
                    return below;
            }
        }
        return {};
    }

private:
    void fault(const char *what) { faults.append(QString::fromLatin1(what)); }
    void told() { ++events; }
    std::vector<KDRBookmark *> &known(const WayfoldBookmarkFolder &folder)
    {
        if (!_children.contains(&folder))
            fault("a folder that it does not know");
        return _children[&folder];
    }
    void announced(const Children &children)
    {

        std::vector<KDRBookmark *> now;
        for (const KDRBookmarkPtr &item : children.folder.children())
            now.push_back(item.get());
        if (now != known(children.folder))
            fault("announced when it is done");
        told();
    }
    void read(KDRBookmark &item)
    {
        _texts[&item].clear(); // of another one that was at the same place in memory
        for (const Field field : {Field::Title, Field::Value, Field::Identifier, Field::Timestamp})
            _texts[&item][field] = textOf(item, field);
        if (!item.isFolder())
            return;
        auto &folder = static_cast<WayfoldBookmarkFolder &>(item);
        readFolderTexts(folder);
        std::vector<KDRBookmark *> items;
        for (const KDRBookmarkPtr &child : folder.children()) {
            items.push_back(child.get());
            read(*child);
        }
        _children[&folder] = items;
    }

    // Which are the title, where they are nothing else.
    void readFolderTexts(KDRBookmark &folder)
    {
        for (const Field field : {Field::Value, Field::SearchString})
            _texts[&folder][field] = textOf(folder, field);
    }

    QHash<const WayfoldBookmarkFolder *, std::vector<KDRBookmark *>> _children;
    QHash<const KDRBookmark *, QHash<Field, QString>> _texts;
};

// So many links, and how many of them were made.
class CountedLinks : public LazyChildren
{
public:
    explicit CountedLinks(unsigned count) : _count(count) {}

    unsigned made = 0;

    unsigned count() override { return _count; }
    bool isFolder(unsigned /*index*/) override { return false; }
    bool hasFolders() override { return false; }
    KDRBookmarkPtr makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder) override
    {
        ++made;
        KDRBookmarkPtr link = makeLink(QString::number(index));
        link->setParent(folder);
        return link;
    }
    std::vector<unsigned> indexesOfMatches(const TextSearch & /*search*/) override { return {}; }
    std::vector<unsigned> indexesOfWanted(const UUIDSearch & /*search*/) override { return {}; }

private:
    unsigned _count;
};

WayfoldBookmarkNotePtr note(const QString &title)
{
    return WayfoldBookmarkNote::bookmarkWithTitle(title);
}

// "both" for each half of a change: "willAdd root 0 a" and "added root 0 a".
QStringList halves(const char *will, const char *did, const QString &rest)
{
    return {QLatin1String(will) + u' ' + rest, QLatin1String(did) + u' ' + rest};
}
QStringList adds(const QString &rest)
{
    return halves("willAdd", "added", rest);
}
QStringList removes(const QString &rest)
{
    return halves("willRemove", "removed", rest);
}
} // namespace

class TreeObserverTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;
    WayfoldBookmarkFolderPtr _root;
    std::unique_ptr<Recorder> _recorder;

    WayfoldBookmarkFolderPtr rootWith(const QStringList &titles)
    {
        for (const QString &title : titles)
            _root->addChild(note(title));
        _recorder->take();
        return _root;
    }

private Q_SLOTS:
    void init();
    void cleanup();

    void adding();
    void addingWithinTheTree();
    void addingSeveral();
    void addingNothing();
    void beforeAndAfter();
    void removing();
    void removingWhatIsEqual();
    void removingWhatIsThereSeveralTimes();
    void removingNeighbours();
    void removingSeveral();
    void removingManyTakesFewSteps();
    void removingAll();
    void removingLeaves();
    void removingLeavesKeepsLazyOnesUnmade();
    void removingEmptySubfolders();
    void sortingByTitle();
    void sortingByTimestamp();
    void lazyChildren();
    void lazyChildrenStayUnmade();
    void changingALazyFolder();
    void readingADictionary();
    void archive();
    void autoFolders();

    void smartFolderCollects();
    void smartFolderOfBookmarks();
    void smartFolderKeepsPeopleFresh();
    void smartFolderOfHistory();
    void groupMembers();
    void groupOfManyNewMembers();
    void groupsOwnCard();

    void fields_data();
    void fields();
    void fieldsOfAFolder();
    void fieldsOfPeople();
    void nothingChanges();
    void cardThatIsAnother();
    void pictureThatMayCome();

    void upToTheRoot();
    void whatIsBelowAnotherFolder();
    void itemInSeveralFolders();
    void itemsThatCannotBeToldApart();
    void itemThatWasRemoved();
    void itemThatIsInitialisedAgain();
    void folderThatGoes();

    void addedTwice();
    void nobodyListens();
    void observerCeasesWhileTold();
    void observerRemovesOthers();
    void observerIsAddedWhileTold();
    void observersGoWhileTold();
    void lastReferenceGoesWhileTold();
    void folderGoesWhileTold();
    void changeWithinAChange();
    void changeWithinAnAnnouncement();
    void everybodyHearsTheSameOrder();
    void changeBelowWhatCameJustNow();
    void changeBelowWhatWasReplacedJustNow();
    void puttingBackWhatGoes();

    void mirrorOfRandomChanges_data();
    void mirrorOfRandomChanges();
};

void TreeObserverTest::init()
{
    _home = std::make_unique<FreshHome>();
    _root = WayfoldBookmarkFolder::bookmarkWithTitle("root");
    _recorder = std::make_unique<Recorder>();
    _root->addObserver(_recorder.get());
}

void TreeObserverTest::cleanup()
{
    _root.reset();
    _recorder.reset();
    _home.reset();
    QVERIFY(!TreeTelling::isAnybodyListening());
}

// --- Children -------------------------------------------------------------------------------------------------------

void TreeObserverTest::adding()
{
    _root->addChild(note("a"));
    QCOMPARE(_recorder->take(), adds("root 0 a"));
    _root->addChild(note("b"));
    QCOMPARE(_recorder->take(), adds("root 1 b"));
    _root->addChildAtIndex(note("c"), 1);
    QCOMPARE(_recorder->take(), adds("root 1 c"));
    _root->addChildAtIndex(note("front"), -3);
    QCOMPARE(_recorder->take(), adds("root 0 front"));
    _root->addChildAtIndex(note("end"), 99);
    QCOMPARE(_recorder->take(), adds("root 4 end"));
    QCOMPARE(childTitles(*_root), (QStringList{"front", "a", "c", "b", "end"}));
}

void TreeObserverTest::addingWithinTheTree()
{
    const auto folder = makeFolder("folder");
    _root->addChild(folder);
    folder->addChild(note("a"));
    QCOMPARE(_recorder->take(), adds("root 0 folder") + adds("folder 0 a"));
}

void TreeObserverTest::addingSeveral()
{
    rootWith({"a", "d"});
    const std::vector<KDRBookmarkPtr> items = {note("b"), note("c")};
    _root->addChildrenAtIndex(items, 1);
    QCOMPARE(_recorder->take(), adds("root 1 b c"));
    QCOMPARE(childTitles(*_root), (QStringList{"a", "b", "c", "d"}));
    QCOMPARE(items[1]->parent(), _root);
}

void TreeObserverTest::addingNothing()
{
    _root->addChild(nullptr);
    _root->addChildAtIndex(nullptr, 0);
    _root->addChildrenAtIndex({}, 0);
    QCOMPARE(_recorder->take(), QStringList());
}

void TreeObserverTest::beforeAndAfter()
{
    QStringList seen;
    _recorder->react = [&](const QString &event) {
        seen.append(event.section(u' ', 0, 0) + u' ' + childTitles(*_root).join(u' '));
    };
    const auto a = note("a");
    _root->addChild(a);
    a->setTitle("b");
    _root->removeChild(a);
    QCOMPARE(seen, (QStringList{"willAdd ", "added a", "willChange a", "changed b", "willRemove b", "removed "}));
}

void TreeObserverTest::removing()
{
    rootWith({"a", "b", "c"});
    QVERIFY(_root->removeChild(_root->childAtIndex(1)));
    QCOMPARE(_recorder->take(), removes("root 1 b"));
    QVERIFY(!_root->removeChild(note("a")));
    QVERIFY(!_root->removeChild(nullptr));
    QCOMPARE(_recorder->take(), QStringList());
}

void TreeObserverTest::removingWhatIsEqual()
{
    rootWith({"a", "b"});
    const KDRBookmarkPtr twin = _root->childAtIndex(1)->copy();
    QVERIFY(_root->removeChild(twin));
    QCOMPARE(_recorder->take(), removes("root 1 b"));
}

void TreeObserverTest::removingWhatIsThereSeveralTimes()
{
    const auto twice = note("twice");
    for (const KDRBookmarkPtr &item : std::vector<KDRBookmarkPtr>{twice, note("a"), twice})
        _root->addChild(item);
    _recorder->take();
    QVERIFY(_root->removeChild(twice));
    QCOMPARE(_recorder->take(), removes("root 2 twice") + removes("root 0 twice"));
    QCOMPARE(childTitles(*_root), QStringList("a"));
}

void TreeObserverTest::removingNeighbours()
{
    rootWith({"a", "b", "c", "d"});
    _root->removeChildren({_root->childAtIndex(2), _root->childAtIndex(1)});
    QCOMPARE(_recorder->take(), removes("root 1 b c"));
}

void TreeObserverTest::removingSeveral()
{
    rootWith({"a", "b", "c", "d", "e"});
    // Who is equal stays, other than where one is removed: there may be many.
    const KDRBookmarkPtr twin = _root->childAtIndex(4)->copy();
    _root->removeChildren({_root->childAtIndex(0), _root->childAtIndex(2), _root->childAtIndex(3), twin, nullptr});
    QCOMPARE(_recorder->take(), removes("root 2 c d") + removes("root 0 a"));
    QCOMPARE(childTitles(*_root), (QStringList{"b", "e"}));
    _root->removeChildren({});
    QCOMPARE(_recorder->take(), QStringList());
}

void TreeObserverTest::removingManyTakesFewSteps()
{
    std::vector<KDRBookmarkPtr> all;
    for (int i = 0; i < 20000; ++i)
        all.push_back(note(QString::number(i)));
    _root->addChildrenAtIndex(all, 0);
    Mirror mirror(*_root);
    std::vector<KDRBookmarkPtr> some;
    for (std::size_t i = 0; i < all.size(); i += 20)
        some.push_back(all[i]);
    _root->removeChildren(some);
    QCOMPARE(mirror.faults, QStringList());
    QCOMPARE(mirror.differenceTo(*_root), QString());
    QCOMPARE(mirror.events, 3); // brought together, about to go, gone
    QCOMPARE(_root->childCount(), 19000U);
    QCOMPARE(_root->childAtIndex(0), all[1]);
    _root->removeObserver(&mirror);
}

void TreeObserverTest::removingAll()
{
    rootWith({"a", "b"});
    _root->removeAllChildren();
    QCOMPARE(_recorder->take(), removes("root 0 a b"));
    _root->removeAllChildren();
    QCOMPARE(_recorder->take(), QStringList());
}

void TreeObserverTest::removingLeaves()
{
    for (const KDRBookmarkPtr &item : std::vector<KDRBookmarkPtr>{note("a"), note("b"), makeFolder("f", {note("c")})})
        _root->addChild(item);
    _recorder->take();
    _root->removeAllLeafChildren();
    QCOMPARE(_recorder->take(), removes("root 0 a b") + removes("f 0 c"));
    _root->addChild(note("d"));
    _recorder->take();
    _root->removeAllButKnownFolders();
    QCOMPARE(_recorder->take(), removes("root 1 d"));
}

void TreeObserverTest::removingLeavesKeepsLazyOnesUnmade()
{
    const auto folder = makeFolder("f");
    _root->addChild(folder);
    const auto links = std::make_shared<CountedLinks>(100000);
    folder->setLazyChildren(links);
    _recorder->take();
    _root->removeAllLeafChildren();
    QCOMPARE(_recorder->take(), QStringList("replaced f"));
    QCOMPARE(links->made, 0U);
    QCOMPARE(folder->childCount(), 0U);
    // A folder among them that somebody knows stays.
    folder->setLazyChildren(std::make_shared<LazyCopies>(std::vector<KDRBookmarkPtr>{note("a"), makeFolder("g")}));
    const KDRBookmarkPtr kept = folder->childAtIndex(1);
    _recorder->take();
    _root->removeAllButKnownFolders();
    QCOMPARE(_recorder->take(), QStringList("replaced f"));
    QCOMPARE(folder->children(), std::vector<KDRBookmarkPtr>{kept});
    kept->setTitle("h");
    QCOMPARE(_recorder->take(), (QStringList{"willChange title=g", "changed title=h"}));
}

void TreeObserverTest::removingEmptySubfolders()
{
    _root->addChildrenAtIndex({makeFolder("e"), note("a"), makeFolder("f", {makeFolder("g")})}, 0);
    _recorder->take();
    _root->removeEmptySubfolders();
    QCOMPARE(_recorder->take(), removes("root 0 e") + removes("f 0 g"));
    _root->removeEmptySubfolders();
    QCOMPARE(_recorder->take(), removes("root 1 f"));
    _root->removeEmptySubfolders();
    QCOMPARE(_recorder->take(), QStringList());
}

void TreeObserverTest::sortingByTitle()
{
    rootWith({"c", "A", "b"});
    _root->sortChildrenByTitle();
    QCOMPARE(_recorder->take(), QStringList("moved root 1 2 0"));
    QCOMPARE(childTitles(*_root), (QStringList{"A", "b", "c"}));
    _root->sortChildrenByTitle();
    QCOMPARE(_recorder->take(), QStringList());
}

void TreeObserverTest::sortingByTimestamp()
{
    rootWith({"a", "b", "c"});
    for (unsigned i = 0; i < 3; ++i)
        _root->childAtIndex(i)->setTimestampInMilliseconds(i == 1 ? 9 : 5);
    _recorder->take();
    _root->sortChildrenByTimestampDescending();
    QCOMPARE(_recorder->take(), QStringList("moved root 1 0 2"));
    _root->sortChildrenByTimestampDescending();
    QCOMPARE(_recorder->take(), QStringList());
}

void TreeObserverTest::lazyChildren()
{
    _root->setLazyChildren(std::make_shared<CountedLinks>(3));
    QCOMPARE(_recorder->take(), QStringList("replaced root"));
    // To make one is no change; what it is called then, is.
    const KDRBookmarkPtr link = _root->childAtIndex(1);
    QCOMPARE(_recorder->take(), QStringList());
    link->setTitle("b");
    QCOMPARE(_recorder->take(), (QStringList{"willChange title=1", "changed title=b"}));
    _root->setLazyChildren(nullptr);
    QCOMPARE(_recorder->take(), QStringList("replaced root"));
    _root->setLazyChildren(std::make_shared<CountedLinks>(0));
    _root->setLazyChildren(nullptr);
    QCOMPARE(_recorder->take(), QStringList());
    link->setTitle("nobody holds it any more");
    QCOMPARE(_recorder->take(), QStringList());
}

void TreeObserverTest::lazyChildrenStayUnmade()
{
    const auto links = std::make_shared<CountedLinks>(100000);
    const auto folder = makeFolder("f");
    folder->setLazyChildren(links);
    _root->addChild(folder);
    folder->setTitle("g");
    _root->sortChildrenByTitle();
    folder->setLazyChildren(links);
    folder->removeAllChildren();
    folder->setLazyChildren(links);
    _root->removeChild(folder);
    QCOMPARE(links->made, 0U);
    QCOMPARE(_recorder->take(), adds("root 0 f") + (QStringList{"willChange title=f", "changed title=g"}) +
                                    (QStringList{"replaced g", "replaced g", "replaced g"}) + removes("root 0 g"));
}

void TreeObserverTest::changingALazyFolder()
{
    _root->setLazyChildren(std::make_shared<CountedLinks>(3));
    _recorder->take();
    _root->removeChild(_root->childAtIndex(1));
    QCOMPARE(_recorder->take(), removes("root 1 1"));
    QCOMPARE(childTitles(*_root), (QStringList{"0", "2"}));
}

void TreeObserverTest::readingADictionary()
{
    const QVariantMap dictionary =
        makeFolder("other", {note("a"), makeFolder("f", {note("b")})})->createDictionary(true);
    _root->parseBookmarkDictionaryInsert(dictionary, true);
    QCOMPARE(_recorder->take(), adds("root 0 other"));
    Mirror mirror(*_root);
    _root->parseBookmarkDictionaryInsert(dictionary, false);
    QCOMPARE(mirror.faults, QStringList());
    QCOMPARE(mirror.differenceTo(*_root), QString());
    QCOMPARE(_root->title(), QStringLiteral("other"));
    QVERIFY(mirror.events > 4);
    _root->removeObserver(&mirror);
}

void TreeObserverTest::archive()
{
    rootWith({"a"});
    Mirror mirror(*_root);
    const auto source = makeFolder("source", {note("b"), note("c")});
    const QByteArray data = KeyedArchiver::archivedDataWithRootObject(*source);
    const auto read = std::dynamic_pointer_cast<WayfoldBookmarkFolder>(KeyedUnarchiver::unarchiveObjectWithData(data));
    _root->addChild(read);
    QCOMPARE(mirror.differenceTo(*_root), QString());
    QCOMPARE(mirror.faults, QStringList());
    // Without a parent, but of the tree.
    QVERIFY(!read->childAtIndex(0)->parent());
    _recorder->take();
    read->childAtIndex(0)->setTitle("d");
    QCOMPARE(_recorder->take(), (QStringList{"willChange title=b", "changed title=d"}));
    _root->removeObserver(&mirror);
}

void TreeObserverTest::autoFolders()
{
    rootWith({"a"});
    _root->addAutoFolders();
    QCOMPARE(_recorder->take(), adds("root 1 Related Bookmarks Related History"));
    _root->addChild(note("b"));
    _recorder->take();
    _root->removeAutoFolders();
    QCOMPARE(_recorder->take(), removes("root 1 Related Bookmarks Related History"));
}

// --- Smart folders and groups ---------------------------------------------------------------------------------------

void TreeObserverTest::smartFolderCollects()
{
    const auto source = makeFolder("source", {makeLink("a1"), makeLink("a2"), makeLink("x")});
    const auto smart = WayfoldAutoFolder::bookmarkWithTitle("a");
    _root->addChild(smart);
    _recorder->take();
    smart->refreshFromBookmarkRoot(source);
    QCOMPARE(_recorder->take(), QStringList("replaced a"));
    const KDRBookmarkPtr first = smart->childAtIndex(0);
    smart->refreshFromBookmarkRoot(source);
    QCOMPARE(_recorder->take(), QStringList());
    source->addChildAtIndex(makeLink("a0"), 0);
    source->removeChild(source->childAtIndex(2));
    smart->refreshFromBookmarkRoot(source);
    QCOMPARE(_recorder->take(), removes("a 1 a2") + adds("a 0 a0"));
    QCOMPARE(smart->childAtIndex(1), first);
    source->childAtIndex(1)->setTitle("a9");
    smart->refreshFromBookmarkRoot(source);
    QCOMPARE(_recorder->take(), removes("a 1 a1") + adds("a 1 a9"));
    smart->refreshFromBookmarkRoot(nullptr);
    QCOMPARE(_recorder->take(), QStringList("replaced a"));
}

void TreeObserverTest::smartFolderOfBookmarks()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("p", "ab", {}));
    const FakeSmartFolderSources sources;
    sources.bookmarks->addChild(makeLink("aa"));
    sources.bookmarks->addChild(makeLink("az"));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("a");
    _root->addChild(smart);
    smart->ensureUpToDate();
    QCOMPARE(childTitles(*smart), (QStringList{"aa", "ab", "az"}));
    _recorder->take();
    smart->refresh();
    QCOMPARE(_recorder->take(), QStringList());
    sources.bookmarks->addChild(makeLink("ac"));
    smart->refresh();
    QCOMPARE(_recorder->take(), adds("a 2 ac"));
    contacts.take("p");
    smart->refresh();
    QCOMPARE(_recorder->take(), removes("a 1 Invalid"));
}

void TreeObserverTest::smartFolderKeepsPeopleFresh()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("p", "ab", {}));
    const FakeSmartFolderSources sources;
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("a");
    _root->addChild(smart);
    smart->ensureUpToDate();
    const KDRBookmarkPtr person = smart->childAtIndex(0);
    person->setTimestampInMilliseconds(5); // the item was made some time ago
    _recorder->take();
    contacts.set(MemoryContacts::person("p", "ab", {}, {"ab@a.example"}));
    smart->refresh();
    QCOMPARE(_recorder->take(), QStringList("changed appearance="));
    QCOMPARE(smart->children(), std::vector<KDRBookmarkPtr>{person});
}

void TreeObserverTest::smartFolderOfHistory()
{
    const FakeSmartFolderSources sources;
    sources.history->addChild(WayfoldHistoryURL::bookmarkWithTitleAndURL("a", Url::URLWithString("http://a.example/")));
    const auto smart = WayfoldHistoryAutoFolder::bookmarkWithTitle("a");
    _root->addChild(smart);
    Mirror mirror(*_root);
    smart->ensureUpToDate();
    QVERIFY(mirror.events > 0);
    sources.history->addChild(
        WayfoldHistoryURL::bookmarkWithTitleAndURL("ab", Url::URLWithString("http://ab.example/")));
    smart->refresh();
    QCOMPARE(smart->deepChildCount(), 3U);
    QCOMPARE(mirror.faults, QStringList());
    QCOMPARE(mirror.differenceTo(*_root), QString());
    _root->removeObserver(&mirror);
}

void TreeObserverTest::groupMembers()
{
    MemoryContacts contacts;
    for (const char *id : {"a", "b", "c"})
        contacts.set(MemoryContacts::person(id, id, {}));
    contacts.set(MemoryContacts::group("g", "g", {"a", "c"}));
    const auto group = WayfoldBookmarkABGroup::bookmarkWithID("g");
    _root->addChild(group);
    _recorder->take();
    group->ensureUpToDate();
    QCOMPARE(_recorder->take(), QStringList("replaced g"));
    group->refresh();
    QCOMPARE(_recorder->take(), QStringList());
    contacts.set(MemoryContacts::group("g", "g", {"b", "c"}));
    group->refresh();
    QCOMPARE(_recorder->take(), QStringList("changed appearance=") + removes("g 0 a") + adds("g 0 b"));
    // The name of a member, who has no parent, and its new place.
    contacts.set(MemoryContacts::person("b", "z", {}));
    group->refresh();
    QCOMPARE(_recorder->take(), (QStringList{"changed appearance=", "moved g 1 0"}));
}

void TreeObserverTest::groupOfManyNewMembers()
{
    MemoryContacts contacts;
    QStringList ids;
    for (int i = 0; i < 100; ++i) {
        ids.append(QStringLiteral("p%1").arg(i, 3, 10, QChar(u'0')));
        contacts.set(MemoryContacts::person(ids.last(), ids.last(), {}));
    }
    QStringList every2nd;
    for (int i = 0; i < 100; i += 2)
        every2nd.append(ids[i]);
    contacts.set(MemoryContacts::group("g", "g", every2nd));
    const auto group = WayfoldBookmarkABGroup::bookmarkWithID("g");
    _root->addChild(group);
    group->ensureUpToDate();
    Mirror mirror(*_root);
    contacts.set(MemoryContacts::group("g", "g", ids));
    group->refresh();
    QCOMPARE(childTitles(*group), ids);
    QCOMPARE(mirror.faults, QStringList());
    QCOMPARE(mirror.differenceTo(*_root), QString());
    QCOMPARE(mirror.events, 4); // the group's card, two halves of what came, and its places
    _root->removeObserver(&mirror);
}

void TreeObserverTest::groupsOwnCard()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::group("g", "g", {}));
    const auto group = WayfoldBookmarkABGroup::bookmarkWithID("g");
    _root->addChild(group);
    _recorder->take();
    contacts.set(MemoryContacts::group("g", "h", {}));
    group->refresh();
    QCOMPARE(_recorder->take(), QStringList("changed appearance="));
    contacts.take("g");
    group->refresh();
    QCOMPARE(_recorder->take(), QStringList("changed appearance="));
}

// --- Fields ---------------------------------------------------------------------------------------------------------

void TreeObserverTest::fields_data()
{
    QTest::addColumn<std::shared_ptr<KDRBookmark>>("item");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("shown");
    const auto url = [](const char *text) { return QVariant::fromValue(Url::URLWithString(QLatin1String(text))); };
    QTest::newRow("note") << KDRBookmarkPtr(note("a")) << QVariant("text") << "text";
    QTest::newRow("link") << KDRBookmarkPtr(makeLink("a")) << url("http://b.example/") << "http://b.example/";
    QTest::newRow("file") << KDRBookmarkPtr(WayfoldBookmarkFile::bookmarkWithTitle("a")) << url("file:///b")
                          << "file:///b";
    QTest::newRow("mail") << KDRBookmarkPtr(WayfoldBookmarkEmail::bookmarkWithTitle("a")) << url("mailto:b@b.example")
                          << "mailto:b@b.example";
    QTest::newRow("visit") << KDRBookmarkPtr(WayfoldHistoryURL::bookmarkWithTitle("a")) << url("http://b.example/")
                           << "http://b.example/";
}

void TreeObserverTest::fields()
{
    QFETCH(std::shared_ptr<KDRBookmark>, item);
    QFETCH(QVariant, value);
    QFETCH(QString, shown);
    item->setUUID("id");
    item->setTimestampInMilliseconds(5);
    _root->addChild(item);
    const QString before = item->valueAsString();
    _recorder->take();

    item->setTitle("b");
    QCOMPARE(_recorder->take(), (QStringList{"willChange title=a", "changed title=b"}));
    item->setValue(value);
    QCOMPARE(_recorder->take(), (QStringList{"willChange value=" + before, "changed value=" + shown}));
    item->setUUID("other");
    QCOMPARE(_recorder->take(), (QStringList{"willChange identifier=id", "changed identifier=other"}));
    const QString made = item->createUUID();
    QCOMPARE(_recorder->take(), (QStringList{"willChange identifier=other", "changed identifier=" + made}));
    item->setTimestamp(CalendarDate::fromMSecsSinceEpoch(7));
    QCOMPARE(_recorder->take(), (QStringList{"willChange time stamp=5", "changed time stamp=7"}));

    item->setTitle("b");
    item->setValue(value);
    item->setValue(QVariant(5)); // of another type
    item->setUUID(made);
    item->setTimestampInMilliseconds(7);
    item->refresh();
    QCOMPARE(_recorder->take(), QStringList());
}

void TreeObserverTest::fieldsOfAFolder()
{
    const auto folder = makeFolder("f");
    _root->addChild(folder);
    _recorder->take();
    folder->setFilterString("s");
    QCOMPARE(_recorder->take(), (QStringList{"willChange search string=f", "changed search string=s"}));
    folder->setFilterString("s");
    QCOMPARE(_recorder->take(), QStringList());
    folder->setTitle("g");
    QCOMPARE(_recorder->take(), (QStringList{"willChange title=f", "changed title=g"}));
    // The root's own, too.
    _root->setTitle("top");
    _root->setFilterString("t");
    QCOMPARE(_recorder->take(), (QStringList{"willChange title=root", "changed title=top",
                                             "willChange search string=top", "changed search string=t"}));
}

void TreeObserverTest::fieldsOfPeople()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("p", "p", {}));
    contacts.set(MemoryContacts::person("q", "q", {}));
    contacts.set(MemoryContacts::group("g", "g", {}));
    contacts.set(MemoryContacts::group("h", "h", {}));
    const auto person = WayfoldBookmarkABPerson::bookmarkWithID("p");
    const auto group = WayfoldBookmarkABGroup::bookmarkWithID("g");
    _root->addChild(person);
    _root->addChild(group);
    _recorder->take();
    person->setValueFromID("q");
    QCOMPARE(_recorder->take(), (QStringList{"willChange value=p", "changed value=q"}));
    group->setValueFromID("h");
    QCOMPARE(_recorder->take(), (QStringList{"willChange value=g", "changed value=h"}));
    person->setValue(person->value());
    group->setValue(group->value());
    QCOMPARE(_recorder->take(), QStringList());
    person->setValue({});
    QCOMPARE(_recorder->take(), (QStringList{"willChange value=q", "changed value="}));
}

void TreeObserverTest::nothingChanges()
{
    const auto link = WayfoldBookmarkURL::bookmarkWithTitleAndURL(QString(), Url());
    _root->addChild(link);
    _recorder->take();
    link->setTitle(QString());
    link->setURL(Url());
    QCOMPARE(_recorder->take(), QStringList());
    link->setTitle(QStringLiteral("")); // none and empty are two things
    QCOMPARE(_recorder->take().size(), 2);
}

void TreeObserverTest::cardThatIsAnother()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("p", "p", {}));
    const auto person = WayfoldBookmarkABPerson::bookmarkWithID("p");
    const auto copy = std::static_pointer_cast<WayfoldBookmarkABPerson>(person->copy()); // shares the entry
    _root->addChild(person);
    _root->addChild(copy);
    _recorder->take();
    person->refresh();
    QCOMPARE(_recorder->take(), QStringList());
    contacts.set(MemoryContacts::person("p", "q", {}));
    person->refresh();
    QCOMPARE(_recorder->take(), QStringList("changed appearance="));
    copy->refresh();
    QCOMPARE(_recorder->take(), QStringList("changed appearance="));
    person->refresh();
    QCOMPARE(_recorder->take(), QStringList());
    contacts.take("p");
    person->refresh();
    QCOMPARE(_recorder->take(), QStringList("changed appearance="));
}

void TreeObserverTest::pictureThatMayCome()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("p", "p", {}));
    const auto person = WayfoldBookmarkABPerson::bookmarkWithID("p");
    _root->addChild(person);
    person->imageForCellSize(QSizeF(16, 16));
    _recorder->take();
    person->refresh();
    QCOMPARE(_recorder->take(), QStringList()); // nothing has changed since it was asked for
    person->imageForCellSize(QSizeF(16, 16));
    contacts.set(MemoryContacts::person("another", "p", {}));
    person->refresh();
    QCOMPARE(_recorder->take(), QStringList("changed appearance="));
}

// --- Who is told ----------------------------------------------------------------------------------------------------

void TreeObserverTest::upToTheRoot()
{
    const auto inner = makeFolder("inner");
    const auto outer = makeFolder("outer", {inner});
    const auto beside = makeFolder("beside");
    _root->addChild(outer);
    _root->addChild(beside);
    Recorder innerRecorder;
    Recorder outerRecorder;
    Recorder besideRecorder;
    inner->addObserver(&innerRecorder);
    outer->addObserver(&outerRecorder);
    beside->addObserver(&besideRecorder);
    _recorder->take();
    const auto a = note("a");
    inner->addChild(a);
    a->setTitle("b");
    inner->setTitle("in");
    const QStringList all = adds("inner 0 a") + QStringList{"willChange title=a", "changed title=b",
                                                            "willChange title=inner", "changed title=in"};
    QCOMPARE(innerRecorder.take(), all);
    QCOMPARE(outerRecorder.take(), all);
    QCOMPARE(_recorder->take(), all);
    outer->setTitle("out");
    QCOMPARE(innerRecorder.take(), QStringList());
    QCOMPARE(outerRecorder.take().size(), 2);
    QCOMPARE(besideRecorder.take(), QStringList());
    inner->removeObserver(&innerRecorder);
    outer->removeObserver(&outerRecorder);
    beside->removeObserver(&besideRecorder);
    inner->removeChild(a);
    QCOMPARE(innerRecorder.take() + outerRecorder.take(), QStringList());
}

void TreeObserverTest::whatIsBelowAnotherFolder()
{
    // As a deleted site folder goes: another root adopts it, then its own lets go.
    const auto site = makeFolder("site", {note("a")});
    const auto other = makeFolder("other");
    Recorder otherRecorder;
    other->addObserver(&otherRecorder);
    _root->addChild(site);
    _recorder->take();
    other->addChild(site);
    QCOMPARE(_recorder->take(), QStringList());
    QCOMPARE(otherRecorder.take(), adds("other 0 site"));
    _root->removeChild(site);
    QCOMPARE(_recorder->take(), removes("root 0 site"));
    QCOMPARE(otherRecorder.take(), QStringList());
    site->addChild(note("b"));
    site->childAtIndex(0)->setTitle("c");
    QCOMPARE(_recorder->take(), QStringList());
    QCOMPARE(otherRecorder.take().size(), 4);
    other->removeObserver(&otherRecorder);
}

void TreeObserverTest::itemInSeveralFolders()
{
    const auto a = note("a");
    const auto first = makeFolder("first", {a});
    const auto second = makeFolder("second", {a}); // is its parent now
    _root->addChildrenAtIndex({first, second}, 0);
    _recorder->take();
    first->removeChild(a);
    QCOMPARE(_recorder->take(), removes("first 0 a"));
    a->setTitle("b");
    QCOMPARE(_recorder->take(), (QStringList{"willChange title=a", "changed title=b"}));
    first->addChild(a);
    second->removeChild(a);
    _recorder->take();
    a->setTitle("c");
    QCOMPARE(_recorder->take(), (QStringList{"willChange title=b", "changed title=c"}));
}

void TreeObserverTest::itemsThatCannotBeToldApart()
{
    const auto without = note("a");
    without->setUUID(QString());
    const auto twin = note("a");
    twin->setUUID(QString());
    const auto same = std::static_pointer_cast<WayfoldBookmarkNote>(twin->copy());
    _root->addChildrenAtIndex({without, twin, same}, 0);
    _recorder->take();
    twin->setTitle("b");
    _root->removeChild(twin);
    QCOMPARE(_recorder->take(), (QStringList{"willChange title=a", "changed title=b"}) + removes("root 1 b"));
    QCOMPARE(_root->children(), (std::vector<KDRBookmarkPtr>{without, same}));
}

void TreeObserverTest::itemThatWasRemoved()
{
    const auto a = note("a");
    const auto folder = makeFolder("f", {note("b")});
    _root->addChildrenAtIndex({a, folder}, 0);
    _root->removeChild(a);
    _root->removeChild(folder);
    _recorder->take();
    QCOMPARE(a->parent(), _root); // it keeps that
    a->setTitle("c");
    folder->setTitle("g");
    folder->addChild(note("d"));
    folder->childAtIndex(0)->setTitle("e");
    QCOMPARE(_recorder->take(), QStringList());
}

void TreeObserverTest::itemThatIsInitialisedAgain()
{
    const auto link = makeLink("a");
    _root->addChild(link);
    Mirror mirror(*_root);
    link->loadFromDictionary(makeLink("b", "http://b.example/")->createDictionary(true));
    QVERIFY(!link->parent());
    QCOMPARE(mirror.faults, QStringList());
    QCOMPARE(mirror.differenceTo(*_root), QString());
    _root->removeObserver(&mirror);
}

void TreeObserverTest::folderThatGoes()
{
    const auto a = note("a");
    _root->addChild(a);
    _recorder->take();
    _root.reset();
    a->setTitle("b");
    QCOMPARE(_recorder->take(), QStringList());
    QVERIFY(!TreeTelling::isAnybodyListening());
    // Also when it goes with the folder above it.
    const auto inner = makeFolder("inner", {a});
    auto outer = makeFolder("outer", {makeFolder("middle", {inner})});
    Recorder recorder;
    outer->addObserver(&recorder);
    outer.reset();
    inner->addChild(note("c"));
    a->setTitle("d");
    QCOMPARE(recorder.take(), QStringList());
}

// --- While being told -----------------------------------------------------------------------------------------------

void TreeObserverTest::addedTwice()
{
    _root->addObserver(_recorder.get());
    _root->addObserver(nullptr);
    _root->addChild(note("a"));
    QCOMPARE(_recorder->take(), adds("root 0 a"));
    _root->removeObserver(_recorder.get());
    _root->removeObserver(_recorder.get());
    _root->removeObserver(nullptr);
    _root->addChild(note("b"));
    QCOMPARE(_recorder->take(), QStringList());
}

void TreeObserverTest::nobodyListens()
{
    QVERIFY(TreeTelling::isAnybodyListening());
    _root->removeObserver(_recorder.get());
    QVERIFY(!TreeTelling::isAnybodyListening());
}

void TreeObserverTest::observerCeasesWhileTold()
{
    _recorder->react = [&](const QString &) { _root->removeObserver(_recorder.get()); };
    _root->addChild(note("a"));
    QCOMPARE(_recorder->take(), QStringList("willAdd root 0 a"));
    QCOMPARE(_root->childCount(), 1U);
}

void TreeObserverTest::observerRemovesOthers()
{
    Recorder second;
    Recorder third;
    _root->addObserver(&second);
    _root->addObserver(&third);
    _recorder->react = [&](const QString &) { _root->removeObserver(&second); };
    _root->addChild(note("a"));
    QCOMPARE(_recorder->take(), adds("root 0 a"));
    QCOMPARE(second.take(), QStringList());
    QCOMPARE(third.take(), adds("root 0 a"));
    _root->removeObserver(&third);
}

void TreeObserverTest::observerIsAddedWhileTold()
{
    Recorder second;
    _recorder->react = [&](const QString &) { _root->addObserver(&second); };
    _root->addChild(note("a")); // it finds it there
    QCOMPARE(second.take(), QStringList());
    _root->addChild(note("b"));
    QCOMPARE(second.take(), adds("root 1 b"));
    _root->removeObserver(&second);
}

void TreeObserverTest::observersGoWhileTold()
{
    auto second = std::make_unique<Recorder>();
    _root->addObserver(second.get());
    const auto end = [&](const QString &event) {
        if (!event.startsWith("added"))
            return;
        _root->removeObserver(second.get());
        second.reset();
        _root->removeObserver(_recorder.get());
        QTimer::singleShot(0, [recorder = _recorder.release()] { delete recorder; });
    };
    _recorder->react = end;
    _root->addChild(note("a"));
    QCoreApplication::processEvents();
    _recorder = std::make_unique<Recorder>();
    QCOMPARE(_root->childCount(), 1U);
}

void TreeObserverTest::lastReferenceGoesWhileTold()
{
    auto a = note("a");
    _root->addChild(a);
    _recorder->take();
    const std::weak_ptr<KDRBookmark> watched = a;
    _recorder->react = [&](const QString &) { a.reset(); };
    _root->removeChild(a);
    QCOMPARE(_recorder->take(), removes("root 0 a"));
    QVERIFY(watched.expired());
    auto b = note("b");
    _root->addChild(b);
    KDRBookmark *const item = b.get();
    _recorder->take();
    _recorder->react = [&](const QString &event) {
        b.reset();
        if (event.startsWith("willChange"))
            _root->removeAllChildren();
    };
    item->setTitle("c");
    QCOMPARE(_recorder->take(), (QStringList{"willChange title=b", "changed title=c"}) + removes("root 0 c"));
}

void TreeObserverTest::folderGoesWhileTold()
{
    auto folder = makeFolder("f");
    _root->addChild(folder);
    WayfoldBookmarkFolder *const bare = folder.get();
    _recorder->take();
    _recorder->react = [&](const QString &event) {
        if (!event.startsWith("willAdd f"))
            return;
        _root->removeChild(folder);
        folder.reset();
    };
    bare->addChild(note("a"));
    QCOMPARE(_recorder->take(), adds("f 0 a") + removes("root 0 f"));
}

void TreeObserverTest::changeWithinAChange()
{
    _recorder->react = [&](const QString &event) {
        if (event == "added root 0 a")
            _root->addChild(note("b"));
        if (event == "added root 1 b")
            _root->childAtIndex(0)->setTitle("c");
    };
    Recorder second;
    _root->addObserver(&second);
    _root->addChild(note("a"));
    // Who makes a change is told of it when he is through with what he was told before, and it is made by then.
    const QStringList both = adds("root 0 a") + adds("root 1 b");
    QCOMPARE(_recorder->take(), both + QStringList({"willChange title=c", "changed title=c"}));
    QCOMPARE(second.take(), both + QStringList({"willChange title=a", "changed title=c"}));
    _root->removeObserver(&second);
}

void TreeObserverTest::changeWithinAnAnnouncement()
{
    rootWith({"a", "b"});
    QStringList seen;
    _recorder->react = [&](const QString &event) {
        if (event == "willAdd root 2 c") {
            _root->removeChild(_root->childAtIndex(0));
            seen = childTitles(*_root); // what was announced was done first
        }
    };
    Mirror mirror(*_root);
    _root->addChild(note("c"));
    QCOMPARE(seen, (QStringList{"b", "c"}));
    QCOMPARE(_recorder->take(), adds("root 2 c") + removes("root 0 a"));
    QCOMPARE(mirror.faults, QStringList());
    QCOMPARE(mirror.differenceTo(*_root), QString());
    _root->removeObserver(&mirror);
}

void TreeObserverTest::everybodyHearsTheSameOrder()
{
    const auto folder = makeFolder("f");
    Recorder above;
    _root->addChild(folder);
    _root->addObserver(&above);
    Recorder below;
    folder->addObserver(&below);
    below.react = [&](const QString &event) {
        if (event.startsWith("willAdd f 0"))
            _root->addChild(note("beside"));
        if (event.startsWith("added f 0"))
            folder->addChild(note("b"));
    };
    _recorder->take();
    folder->addChild(note("a"));
    QCOMPARE(below.take(), adds("f 0 a") + adds("f 1 b"));
    QCOMPARE(above.take(),
             QStringList("willAdd f 0 a") + QStringList("added f 0 a") + adds("root 1 beside") + adds("f 1 b"));
    folder->removeObserver(&below);
    _root->removeObserver(&above);
}

void TreeObserverTest::changeBelowWhatCameJustNow()
{
    const auto folder = makeFolder("f");
    // Who has heard of the first one makes a second one, and fills it.
    _recorder->react = [&](const QString &event) {
        if (event == "added root 0 a") {
            _root->addChild(folder);
            folder->addChild(note("b"));
        }
    };
    Mirror mirror(*_root);
    _root->addChild(note("a"));
    QCOMPARE(_recorder->take(), adds("root 0 a") + adds("root 1 f") + adds("f 0 b"));
    QCOMPARE(mirror.faults, QStringList());
    QCOMPARE(mirror.differenceTo(*_root), QString());
    // Who observes the folder itself hears of what came in.
    Recorder own;
    folder->addObserver(&own);
    _root->removeChild(folder);
    _recorder->react = [&](const QString &event) {
        if (event == "added root 1 c") {
            _root->addChild(folder);
            folder->addChild(note("d"));
        }
    };
    _root->addChild(note("c"));
    QCOMPARE(own.take(), adds("f 1 d"));
    QCOMPARE(mirror.differenceTo(*_root), QString());
    folder->removeObserver(&own);
    _root->removeObserver(&mirror);
}

void TreeObserverTest::changeBelowWhatWasReplacedJustNow()
{
    const auto folder = makeFolder("f", {note("a")});
    _root->addChild(folder);
    _recorder->take();
    _recorder->react = [&](const QString &event) {
        if (event == "added root 1 a") {
            folder->setLazyChildren(std::make_shared<CountedLinks>(2));
            folder->addChild(note("b"));
        }
    };
    Mirror mirror(*_root);
    _root->addChild(note("a"));
    QCOMPARE(_recorder->take(), adds("root 1 a") + QStringList("replaced f") + adds("f 2 b"));
    QCOMPARE(mirror.faults, QStringList());
    QCOMPARE(mirror.differenceTo(*_root), QString());
    _root->removeObserver(&mirror);
}

void TreeObserverTest::puttingBackWhatGoes()
{
    rootWith({"a", "b", "c"});
    const KDRBookmarkPtr a = _root->childAtIndex(0);
    const KDRBookmarkPtr c = _root->childAtIndex(2);
    _recorder->react = [&](const QString &event) {
        if (event == "removed root 2 c")
            _root->addChild(c);
    };
    _root->removeChildren({a, c});
    _recorder->react = {};
    QCOMPARE(childTitles(*_root), (QStringList{"b", "c"}));
}

// --- As a whole -----------------------------------------------------------------------------------------------------

namespace
{
// Does things to a tree at random.
class Hand
{
public:
    Hand(WayfoldBookmarkFolderPtr root, quint32 seed) : _root(std::move(root)), _random(seed) {}

    // Off: no item is in two folders, not even for a moment.
    bool addsBeforeRemoving = true;

    void doSomething()
    {
        const WayfoldBookmarkFolderPtr folder = anyFolder();
        switch (below(17)) {
        case 0:
        case 1:
        case 2:
            folder->addChildAtIndex(newItem(), below(6) - 1);
            break;
        case 3:
            folder->addChildrenAtIndex({newItem(), newItem(), newItem()}, below(5));
            break;
        case 4:
            if (folder->childCount() > 0)
                folder->removeChild(folder->childAtIndex(unsigned(below(int(folder->childCount())))));
            break;
        case 5:
            folder->removeChildren(someOf(*folder));
            break;
        case 6:
            below(4) == 0 ? folder->removeAllChildren() : folder->removeEmptySubfolders();
            break;
        case 7:
            below(4) == 0 ? folder->removeAllLeafChildren() : folder->removeAutoFolders();
            break;
        case 8:
            folder->sortChildrenByTitle();
            break;
        case 9:
            folder->sortChildrenByTimestampDescending();
            break;
        case 10:
            if (below(3) == 0)
                folder->setLazyChildren(
                    std::make_shared<LazyCopies>(std::vector<KDRBookmarkPtr>{note("x"), makeFolder("y", {note("z")})}));
            break;
        case 11:
            if (below(3) == 0)
                folder->loadFromDictionary(makeFolder("l", {note("m"), makeFolder("n")})->createDictionary(true));
            break;
        case 12:
            folder->addAutoFolders();
            break;
        case 13:
            move(folder);
            break;
        default:
            changeField(*folder);
        }
    }

    int below(int end) { return int(_random.bounded(quint32(end))); }

private:
    KDRBookmarkPtr newItem()
    {
        const QString title(1 + below(3), QChar('a' + below(26)));
        switch (below(5)) {
        case 0:
            return makeFolder(title);
        case 1:
            return makeFolder(title, {note("p"), makeFolder("q", {makeLink("r")})});
        case 2:
            return makeLink(title);
        default:
            return note(title);
        }
    }
    WayfoldBookmarkFolderPtr anyFolder()
    {
        WayfoldBookmarkFolderPtr folder = _root;
        while (below(3) > 0) {
            std::vector<WayfoldBookmarkFolderPtr> folders;
            for (const KDRBookmarkPtr &item : folder->children()) {
                if (item->isFolder())
                    folders.push_back(WayfoldBookmarkFolder::fromItem(item));
            }
            if (folders.empty())
                break;
            folder = folders[std::size_t(below(int(folders.size())))];
        }
        return folder;
    }
    std::vector<KDRBookmarkPtr> someOf(const WayfoldBookmarkFolder &folder)
    {
        std::vector<KDRBookmarkPtr> some;
        for (const KDRBookmarkPtr &item : folder.children()) {
            if (below(2) == 0)
                some.push_back(item);
        }
        return some;
    }
    // An item into the folder, before or behind its being taken out of its own.
    void move(const WayfoldBookmarkFolderPtr &folder)
    {
        TreeTelling::settle(); // what is being announced may be another move, or this one could close a circle
        const WayfoldBookmarkFolderPtr from = anyFolder();
        if (from->childCount() == 0 || from == folder)
            return;
        const KDRBookmarkPtr item = from->childAtIndex(unsigned(below(int(from->childCount()))));
        if (item == folder || isWithin(folder, item))
            return;
        if (addsBeforeRemoving && below(2) == 0) {
            folder->addChildAtIndex(item, below(4));
            from->removeChild(item);
        } else {
            from->removeChild(item);
            folder->addChild(item);
        }
    }
    static bool isWithin(const WayfoldBookmarkFolderPtr &folder, const KDRBookmarkPtr &item)
    {
        for (const KDRBookmark *each = folder->holder(); each; each = each->holder()) {
            if (each == item.get())
                return true;
        }
        return false;
    }
    void changeField(WayfoldBookmarkFolder &folder)
    {
        if (folder.childCount() == 0) {
            folder.setFilterString(QString::number(below(9)));
            return;
        }
        const KDRBookmarkPtr item = folder.childAtIndex(unsigned(below(int(folder.childCount()))));
        switch (below(4)) {
        case 0:
            item->setTitle(QString::number(below(99)));
            break;
        case 1:
            item->setValue(QString::number(below(99)));
            break;
        case 2:
            item->setTimestampInMilliseconds(below(99));
            break;
        default:
            below(2) == 0 ? item->setUUID(QString()) : void(item->createUUID());
        }
    }

    WayfoldBookmarkFolderPtr _root;
    QRandomGenerator _random;
};
} // namespace

void TreeObserverTest::mirrorOfRandomChanges_data()
{
    QTest::addColumn<bool>("withinOthers");
    QTest::newRow("one after the other") << false;
    QTest::newRow("one within the other") << true;
}

// The mirror knows the tree by its events alone, after each of thousands of changes; in the second row others change it
// while they are being told, before the mirror is or after it.
void TreeObserverTest::mirrorOfRandomChanges()
{
    QFETCH(bool, withinOthers);
    for (quint32 seed = 1; seed <= 20; ++seed) {
        const auto root = makeFolder("top");
        Hand hand(root, seed);
        hand.addsBeforeRemoving = !withinOthers; // between the two, others could take it out of the new folder again
        Recorder before;
        Recorder after;
        root->addObserver(&before);
        Mirror mirror(*root);
        root->addObserver(&after);
        int depth = 0;
        const auto react = [&] {
            if (depth > 0 || hand.below(6) > 0)
                return;
            ++depth;
            hand.doSomething();
            hand.doSomething();
            --depth;
        };
        if (withinOthers) {
            before.react = [&](const QString &) { react(); };
            after.react = before.react;
        }
        for (int i = 0; i < 1000; ++i) {
            hand.doSomething();
            const QString difference = mirror.differenceTo(*root);
            QVERIFY2(mirror.faults.isEmpty(), qPrintable(mirror.faults.join(u',')));
            QCOMPARE(difference, QString());
            QVERIFY(root->childCount() < 100000);
        }
        QVERIFY(mirror.events > 1000);
        QVERIFY(withinOthers || before.told == after.told);
        root->removeObserver(&before);
        root->removeObserver(&after);
        root->removeObserver(&mirror);
    }
}

QTEST_MAIN(TreeObserverTest)
#include "TreeObserverTest.moc"
