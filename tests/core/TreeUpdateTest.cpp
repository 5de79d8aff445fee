#include "core/TreeUpdate.h"

#include "core/ItemMerge.h"
#include "model/ItemDictionary.h"
#include "model/TreeObserver.h"
#include "model/WayfoldBookmarkAutoFolder.h"
#include "model/WayfoldBookmarkNote.h"
#include "model/WayfoldBookmarkURL.h"
#include "model/WayfoldHistoryAutoFolder.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/TemporaryHome.h"

#include <QtTest>

using namespace ItemDictionary;

namespace
{
QStringList titlesOf(const std::vector<KDRBookmarkPtr> &items)
{
    QStringList titles;
    for (const KDRBookmarkPtr &item : items)
        titles.append(item->title());
    return titles;
}

QStringList childTitles(const WayfoldBookmarkFolder &folder)
{
    return titlesOf(folder.children());
}

KDRBookmarkPtr makeLink(const QString &title, const QString &address = QStringLiteral("http://a.example/"))
{
    return WayfoldBookmarkURL::bookmarkWithTitleAndURL(title, Url::URLWithString(address));
}

WayfoldBookmarkFolderPtr makeFolder(const QString &title, const std::vector<KDRBookmarkPtr> &children = {})
{
    WayfoldBookmarkFolderPtr made = WayfoldBookmarkFolder::bookmarkWithTitle(title);
    made->addChildrenAtIndex(children, 0);
    return made;
}

// "added F a b", "removed F a", "moved F 1 0", "title a", in the order in which they are told.
class Recorder : public TreeObserver
{
public:
    void added(const Children &children) override { note("added", children); }
    void removed(const Children &children) override { note("removed", children); }
    void moved(WayfoldBookmarkFolder &folder, const std::vector<int> &from) override
    {
        QString text = "moved " + folder.title();
        for (const int index : from)
            text += ' ' + QString::number(index);
        told.append(text);
    }
    void replaced(WayfoldBookmarkFolder &folder) override { told.append("replaced " + folder.title()); }
    void changed(KDRBookmark &item, Field field) override
    {
        told.append((field == Field::Title ? "title " : field == Field::Value ? "value " : "other ") + item.title());
    }

    QStringList told;

private:
    void note(const char *event, const Children &children)
    {
        told.append(QString::fromLatin1(event) + ' ' + children.folder.title() + ' ' +
                    titlesOf(children.items).join(' '));
    }
};

QString unchanged(const QString &title)
{
    return title;
}
} // namespace

class TreeUpdateTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TemporaryHome> _home;
    WayfoldBookmarkFolderPtr _root;
    WayfoldBookmarkFolderPtr _folder; // in the root, behind a and b; holds c
    WayfoldBookmarkFolderPtr _other;  // behind that; empty
    KDRBookmarkPtr _a;
    KDRBookmarkPtr _b;
    KDRBookmarkPtr _c;
    QVariantMap _before;
    std::unique_ptr<Recorder> _recorder;

    // What others have made of the tree comes in.
    void update(const WayfoldBookmarkFolderPtr &theirs) { updateTo(theirs->createDictionary(true)); }
    void updateTo(const QVariantMap &theirs)
    {
        const ItemMerge merge(_before, _root->createDictionary(true), theirs, unchanged);
        TreeUpdate::update(_root, merge.ours(), merge.merged());
        QCOMPARE(_root->createDictionary(true), merge.merged());
    }
    WayfoldBookmarkFolderPtr copy() const { return WayfoldBookmarkFolder::fromItem(_root->copy()); }

private Q_SLOTS:
    void init();
    void cleanup();

    void nothingIsToldOfNothing();
    void fieldsThatDifferAreSet();
    void itemsComeAndGo();
    void movedItemsAreTheSameObjects();
    void orderIsToldAsOne();
    void itemOfEachFolderMovesIntoANewFolder();
    void folderMovesIntoOneThatItHeld();
    void linkThatBecomesAMailIsAnotherItem();
    void smartFoldersStayWhereTheyAre();
    void unknownThingsComeInAndGo();
    void foldersThatAreNotTouchedAreNotAsked();
};

void TreeUpdateTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    _a = WayfoldBookmarkNote::bookmarkWithTitleAndNote("a", "text");
    _b = makeLink("b", "http://b.example/");
    _c = makeLink("c", "http://c.example/");
    _folder = makeFolder("F", {_c});
    _other = makeFolder("G");
    _root = makeFolder("R", {_a, _b, _folder, _other});
    for (const WayfoldBookmarkFolderPtr &folder : {_folder, _other, _root})
        folder->setFilterString(folder->title());
    _before = _root->createDictionary(true);
    _recorder = std::make_unique<Recorder>();
    _root->addObserver(_recorder.get());
}

void TreeUpdateTest::cleanup()
{
    _root->removeObserver(_recorder.get());
    _root = _folder = _other = nullptr;
    _a = _b = _c = nullptr;
    _home.reset();
}

void TreeUpdateTest::nothingIsToldOfNothing()
{
    update(copy());
    QCOMPARE(_recorder->told, QStringList());
}

void TreeUpdateTest::fieldsThatDifferAreSet()
{
    const WayfoldBookmarkFolderPtr theirs = copy();
    theirs->childAtIndex(0)->setValue("new text");
    theirs->childAtIndex(1)->setTitle("new b");
    theirs->childAtIndex(2)->setTitle("new F");
    update(theirs);
    QCOMPARE(_recorder->told, (QStringList{"title new F", "title new b", "value a"}));
    QCOMPARE(_a->valueAsString(), "new text");
    QCOMPARE(_folder->filterString(), "F");
}

void TreeUpdateTest::itemsComeAndGo()
{
    const WayfoldBookmarkFolderPtr theirs = copy();
    theirs->removeChild(theirs->childAtIndex(0));
    theirs->addChildAtIndex(makeLink("d"), 1);
    WayfoldBookmarkFolder::fromItem(theirs->childWithTitle("G"))->addChild(makeLink("e"));
    update(theirs);
    QCOMPARE(_recorder->told, (QStringList{"removed R a", "added R d", "added G e"}));
    QCOMPARE(childTitles(*_root), (QStringList{"b", "d", "F", "G"}));
}

void TreeUpdateTest::movedItemsAreTheSameObjects()
{
    const WayfoldBookmarkFolderPtr theirs = copy();
    const KDRBookmarkPtr moved = theirs->childAtIndex(2);
    theirs->removeChild(moved);
    WayfoldBookmarkFolder::fromItem(theirs->childWithTitle("G"))->addChild(moved);
    update(theirs);
    QCOMPARE(_other->childAtIndex(0), _folder);
    QCOMPARE(_folder->parent(), _other);
    QCOMPARE(_folder->childAtIndex(0), _c);
    QCOMPARE(_recorder->told, (QStringList{"removed R F", "added G F"}));
}

void TreeUpdateTest::orderIsToldAsOne()
{
    const WayfoldBookmarkFolderPtr theirs = copy();
    const KDRBookmarkPtr moved = theirs->childAtIndex(0);
    theirs->removeChild(moved);
    theirs->addChildAtIndex(moved, 2);
    update(theirs);
    QCOMPARE(_recorder->told, QStringList{"moved R 1 2 0 3"});
    QCOMPARE(_root->childAtIndex(2), _a);
}

// Whoever sees the new folder come finds it full.
void TreeUpdateTest::itemOfEachFolderMovesIntoANewFolder()
{
    const WayfoldBookmarkFolderPtr theirs = copy();
    const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(theirs->childWithTitle("F"));
    const KDRBookmarkPtr c = folder->childAtIndex(0);
    const KDRBookmarkPtr a = theirs->childAtIndex(0);
    folder->removeChild(c);
    theirs->removeChild(a);
    const WayfoldBookmarkFolderPtr made = makeFolder("N", {c, a});
    made->setFilterString("N");
    theirs->addChild(made);
    update(theirs);
    QCOMPARE(_recorder->told, (QStringList{"removed R a", "removed F c", "added R N"}));
    const WayfoldBookmarkFolderPtr added = WayfoldBookmarkFolder::fromItem(_root->lastChild());
    QCOMPARE(added->childAtIndex(0), _c);
    QCOMPARE(added->childAtIndex(1), _a);
    QCOMPARE(_a->parent(), added);
}

void TreeUpdateTest::folderMovesIntoOneThatItHeld()
{
    const WayfoldBookmarkFolderPtr inner = makeFolder("I");
    inner->setFilterString("I");
    _folder->addChild(inner);
    _before = _root->createDictionary(true);
    _recorder->told.clear();
    const WayfoldBookmarkFolderPtr theirs = copy();
    const auto theirFolder = WayfoldBookmarkFolder::fromItem(theirs->childWithTitle("F"));
    const auto theirInner = WayfoldBookmarkFolder::fromItem(theirFolder->childWithTitle("I"));
    theirFolder->removeChild(theirInner);
    theirs->removeChild(theirFolder);
    theirInner->addChild(theirFolder);
    theirs->addChild(theirInner);
    update(theirs);
    QCOMPARE(_root->lastChild(), inner);
    QCOMPARE(inner->lastChild(), _folder);
    QCOMPARE(_folder->parent(), inner);
    QCOMPARE(inner->parent(), _root);
    QCOMPARE(_recorder->told, (QStringList{"removed R F", "added R I", "added I F"}));
}

void TreeUpdateTest::linkThatBecomesAMailIsAnotherItem()
{
    const WayfoldBookmarkFolderPtr theirs = copy();
    theirs->childAtIndex(1)->setValue(QVariant::fromValue(Url::URLWithString("mailto:ada@example.org")));
    update(theirs);
    QCOMPARE(_root->childAtIndex(1)->type(), KDRBookmark::EmailLinkType);
    QCOMPARE(_root->childAtIndex(1)->uuid(), _b->uuid());
}

void TreeUpdateTest::smartFoldersStayWhereTheyAre()
{
    const WayfoldBookmarkFolderPtr theirs = copy();
    const auto theirFolder = WayfoldBookmarkFolder::fromItem(theirs->childWithTitle("F"));
    theirFolder->addChild(makeLink("d"));
    theirFolder->addChildAtIndex(makeLink("e"), 0);
    const auto front = WayfoldBookmarkAutoFolder::bookmarkWithTitle("S");
    const auto end = WayfoldHistoryAutoFolder::bookmarkWithTitle("T");
    _folder->addChildAtIndex(front, 0);
    _folder->addChild(end);
    update(theirs);
    QCOMPARE(childTitles(*_folder), (QStringList{"S", "e", "c", "d", "T"}));
    QCOMPARE(_folder->childAtIndex(0), front);
    QCOMPARE(_folder->lastChild(), end);
}

void TreeUpdateTest::unknownThingsComeInAndGo()
{
    const QVariantMap gadget{{typeKey, "Gadget"}, {uuidKey, "X"}, {"Size", 3}};
    QVariantMap theirs = _before;
    QVariantList list = theirs.value(childrenKey).toList();
    QVariantMap a = list[0].toMap();
    a.insert("Colour", "red");
    list[0] = a;
    list.insert(1, gadget);
    list.insert(3, "text");
    theirs.insert(childrenKey, list);
    theirs.insert("Version", 7);
    updateTo(theirs);
    QCOMPARE(_root->createDictionary(true), theirs);
    QCOMPARE(_root->childCount(), 4U);
    // They go again.
    const QVariantMap with = theirs;
    const ItemMerge merge(with, _root->createDictionary(true), _before, unchanged);
    TreeUpdate::update(_root, merge.ours(), merge.merged());
    QCOMPARE(_root->createDictionary(true), _before);
}

void TreeUpdateTest::foldersThatAreNotTouchedAreNotAsked()
{
    const WayfoldBookmarkFolderPtr theirs = copy();
    theirs->childAtIndex(1)->setTitle("new b");
    const ItemMerge merge(_before, _root->createDictionary(true), theirs->createDictionary(true), unchanged);
    // Were it looked into, it would be put right.
    const KDRBookmarkPtr stranger = makeLink("x");
    _folder->addChild(stranger);
    TreeUpdate::update(_root, merge.ours(), merge.merged());
    QCOMPARE(_folder->lastChild(), stranger);
}

QTEST_MAIN(TreeUpdateTest)
#include "TreeUpdateTest.moc"
