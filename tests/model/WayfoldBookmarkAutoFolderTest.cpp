#include "tests/model/ModelTestSupport.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "model/WayfoldBookmarkAutoFolder.h"
#include "tests/support/MemoryContacts.h"

#include <QtTest>

class WayfoldBookmarkAutoFolderTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

private Q_SLOTS:
    void init();
    void cleanup();

    void collectsForASite();
    void foldersAreNotShownButTheirContents();
    void contacts();
    void groupsOfContactsAreLeftOut();
    void sortedByTitle();
    void contentsAreReplaced();
    void searchStringChanges();
    void refreshLeavesItAsLoadedAsItWas();
    void imageFollowsTheMatches();
    void givenRoot();
    void withoutSources();

    // ---- Of bookmarks that never change: what has changed is another tree.
    void matchesAreKept();
    void otherTreeIsSearched();
    void treeThatHasGoneIsNotShown();
    void replacedTreeIsNotHeld();
    void otherTextIsSearched();

    // ---- Of contacts, of which is known when they change.
    void changedContactsAreSearched();
    void otherContactsAreSearched();
    void unchangedContactsAreKept();
    void whoWasFoundKeepsThePicture();
};

void WayfoldBookmarkAutoFolderTest::init()
{
    _home = std::make_unique<FreshHome>();
}

void WayfoldBookmarkAutoFolderTest::cleanup()
{
    _home.reset();
}

void WayfoldBookmarkAutoFolderTest::collectsForASite()
{
    FakeSmartFolderSources sources;
    sources.bookmarks->addChild(makeLink("Zebra at EXAMPLE.com"));
    sources.bookmarks->addChild(makeFolder("Inner", {makeLink("Ant", "http://www.example.com/"), makeLink("Other")}));
    const auto site = makeFolder("example.com");
    site->addAutoFolders();
    const KDRBookmarkPtr related = site->childAtIndex(0);
    const auto smart = WayfoldBookmarkFolder::fromItem(related);
    QCOMPARE(smart->childCount(), 0u);
    smart->ensureUpToDate();
    QCOMPARE(childTitles(*smart), (QStringList{"Ant", "Zebra at EXAMPLE.com"}));
    QCOMPARE(smart->childAtIndex(1)->uuid(), sources.bookmarks->childAtIndex(0)->uuid());
    QVERIFY(smart->childAtIndex(1) != sources.bookmarks->childAtIndex(0));
    QVERIFY(!smart->childAtIndex(0)->acceptsDroppedItems());
    QCOMPARE(sources.bookmarks->deepChildCount(), 4u);
}

void WayfoldBookmarkAutoFolderTest::foldersAreNotShownButTheirContents()
{
    FakeSmartFolderSources sources;
    sources.bookmarks->addChild(makeFolder("News", {makeLink("news here"), makeLink("nothing")}));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    QVERIFY(smart->refresh());
    QCOMPARE(childTitles(*smart), QStringList{"news here"});
}

void WayfoldBookmarkAutoFolderTest::contacts()
{
    FakeSmartFolderSources sources;
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("z", "Zoe", QString(), {"zoe@NEWS.example"}));
    contacts.set(MemoryContacts::person("a", "Ann", QString(), {"ann@news.example"}));
    contacts.set(MemoryContacts::company("k", "Kettle News"));
    contacts.set(MemoryContacts::person("o", "Other", QString()));
    sources.bookmarks->addChild(makeLink("m news"));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    smart->refresh();
    QCOMPARE(childTitles(*smart), (QStringList{"Ann", "Kettle News", "m news", "Zoe"}));
    const KDRBookmarkPtr ann = smart->childAtIndex(0);
    QCOMPARE(ann->type(), KDRBookmark::PersonType);
    QCOMPARE(ann->uuid(), QStringLiteral("a"));
    QCOMPARE(ann->parent(), smart);
    QVERIFY(!ann->canBePersistent());
    QCOMPARE(smart->childAtIndex(1)->typeDescription(), QStringLiteral("Organization"));
}

void WayfoldBookmarkAutoFolderTest::groupsOfContactsAreLeftOut()
{
    FakeSmartFolderSources sources;
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("p", "Newsboy", QString()));
    contacts.set(MemoryContacts::group("g", "News", {"p"}));
    ContactRecord unknown = MemoryContacts::person("u", "News of no kind", QString());
    unknown.flags = 2;
    contacts.set(unknown);
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    smart->refresh();
    QCOMPARE(childTitles(*smart), QStringList{"Newsboy"});
}

void WayfoldBookmarkAutoFolderTest::sortedByTitle()
{
    FakeSmartFolderSources sources;
    for (const char *title : {"x C", "x a", "x B", "X b"})
        sources.bookmarks->addChild(makeLink(title));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("x ");
    smart->refresh();
    QCOMPARE(childTitles(*smart), (QStringList{"x a", "x B", "X b", "x C"}));
}

void WayfoldBookmarkAutoFolderTest::contentsAreReplaced()
{
    FakeSmartFolderSources sources;
    sources.bookmarks->addChild(makeLink("news 1"));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    smart->ensureUpToDate();
    sources.bookmarks = makeFolder("Bookmarks", {makeLink("news 2")});
    smart->ensureUpToDate();
    QCOMPARE(childTitles(*smart), QStringList{"news 1"});
    smart->refresh();
    QCOMPARE(childTitles(*smart), QStringList{"news 2"});
    sources.bookmarks = nullptr;
    smart->refresh();
    QCOMPARE(smart->childCount(), 0u);
}

void WayfoldBookmarkAutoFolderTest::searchStringChanges()
{
    FakeSmartFolderSources sources;
    sources.bookmarks->addChild(makeLink("cats"));
    sources.bookmarks->addChild(makeLink("dogs"));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("Related Bookmarks");
    smart->setFilterString("cats");
    QCOMPARE(smart->childCount(), 0u);
    smart->ensureUpToDate();
    QCOMPARE(childTitles(*smart), QStringList{"cats"});
    smart->setFilterString("dogs");
    QCOMPARE(childTitles(*smart), QStringList{"dogs"});
}

void WayfoldBookmarkAutoFolderTest::refreshLeavesItAsLoadedAsItWas()
{
    FakeSmartFolderSources sources;
    sources.bookmarks->addChild(makeLink("news 1"));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    QVERIFY(smart->refresh());
    QCOMPARE(childTitles(*smart), QStringList{"news 1"});
    QVERIFY(!smart->isLoaded());
    sources.bookmarks = makeFolder("Bookmarks", {makeLink("news 2")});
    smart->ensureUpToDate();
    QVERIFY(smart->isLoaded());
    QCOMPARE(childTitles(*smart), QStringList{"news 2"});
    QVERIFY(smart->refresh());
    QVERIFY(smart->isLoaded());
}

void WayfoldBookmarkAutoFolderTest::imageFollowsTheMatches()
{
    const auto imageNamed = [](const char *name) {
        return pictureOf(WayfoldToolkit::loadImageNamed(QString::fromLatin1(name)));
    };
    const QSizeF cell(16, 16);
    FakeSmartFolderSources sources;
    sources.bookmarks->addChild(makeLink("cats"));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("dogs");
    smart->ensureUpToDate();
    QCOMPARE(pictureOf(smart->imageForCellSize(cell)), imageNamed("WayfoldAutoFolderEmptyIcon16"));
    sources.bookmarks->addChild(makeLink("dogs"));
    smart->refresh();
    QCOMPARE(pictureOf(smart->imageForCellSize(cell)), imageNamed("WayfoldAutoFolderIcon16"));
    smart->setFilterString("mice");
    QCOMPARE(pictureOf(smart->imageForCellSize(cell)), imageNamed("WayfoldAutoFolderEmptyIcon16"));
}

void WayfoldBookmarkAutoFolderTest::givenRoot()
{
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("x");
    smart->refreshFromBookmarkRoot(makeFolder("Root", {makeLink("xb"), makeLink("xa")}));
    QCOMPARE(childTitles(*smart), (QStringList{"xa", "xb"}));
}

void WayfoldBookmarkAutoFolderTest::withoutSources()
{
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("x");
    smart->ensureUpToDate();
    QCOMPARE(smart->childCount(), 0u);
    QCOMPARE(int(WayfoldBookmarkAutoFolder::bookmarkFromDictionary({{"Title", "T"}})->type()), 1);
}

namespace
{
// As the store's: a reading of the file makes a new tree.
class FixedBookmarks : public FakeSmartFolderSources
{
public:
    bool bookmarksMayChange() const override { return false; }
};
} // namespace

void WayfoldBookmarkAutoFolderTest::matchesAreKept()
{
    FixedBookmarks sources;
    sources.bookmarks->addChild(makeFolder("News", {makeLink("news 1")}));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    smart->refresh();
    sources.bookmarks->addChild(makeLink("news 2")); // which such a tree does not do; so it shows whether one looked
    const KDRBookmarkPtr former = smart->childAtIndex(0);
    smart->refresh();
    QCOMPARE(childTitles(*smart), QStringList{"news 1"});
    QCOMPARE(smart->childAtIndex(0), former); // and its row stays
}

void WayfoldBookmarkAutoFolderTest::otherTreeIsSearched()
{
    FixedBookmarks sources;
    sources.bookmarks->addChild(makeLink("news 1"));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    smart->refresh();
    const WayfoldBookmarkFolderPtr former =
        std::exchange(sources.bookmarks, makeFolder("Bookmarks", {makeLink("news 2")}));
    smart->refresh();
    QCOMPARE(childTitles(*smart), QStringList{"news 2"});
    sources.bookmarks = nullptr;
    smart->refresh();
    QCOMPARE(smart->childCount(), 0u);
    sources.bookmarks = former;
    smart->refresh();
    QCOMPARE(childTitles(*smart), QStringList{"news 1"});
}

void WayfoldBookmarkAutoFolderTest::treeThatHasGoneIsNotShown()
{
    FixedBookmarks sources;
    const KDRBookmarkPtr link = makeLink("news"); // held elsewhere as well
    sources.bookmarks->addChild(link);
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    smart->refresh();
    QCOMPARE(childTitles(*smart), QStringList{"news"});
    sources.bookmarks = nullptr;
    smart->refresh();
    QCOMPARE(smart->childCount(), 0u);
    sources.bookmarks = makeFolder("Bookmarks", {makeLink("good news")});
    smart->refresh();
    QCOMPARE(childTitles(*smart), QStringList{"good news"});
}

// The folder of a site that nobody looks at is not refreshed.
void WayfoldBookmarkAutoFolderTest::replacedTreeIsNotHeld()
{
    FixedBookmarks sources;
    sources.bookmarks->addChild(makeFolder("News", {makeLink("news")}));
    const std::weak_ptr<KDRBookmark> folder = sources.bookmarks->childAtIndex(0);
    const std::weak_ptr<KDRBookmark> link = WayfoldBookmarkFolder::fromItem(folder.lock())->childAtIndex(0);
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    smart->refresh();
    sources.bookmarks = makeFolder("Bookmarks");
    QVERIFY(folder.expired());
    QVERIFY(link.expired());
    QCOMPARE(childTitles(*smart), QStringList{"news"});
}

void WayfoldBookmarkAutoFolderTest::otherTextIsSearched()
{
    FixedBookmarks sources;
    sources.bookmarks->addChild(makeLink("cats"));
    sources.bookmarks->addChild(makeLink("dogs"));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("Related Bookmarks");
    for (const char *text : {"cats", "dogs", "mice", "cats"}) {
        smart->setFilterString(text);
        smart->refresh();
        QCOMPARE(childTitles(*smart), text == QByteArray("mice") ? QStringList() : QStringList{text});
    }
}

void WayfoldBookmarkAutoFolderTest::changedContactsAreSearched()
{
    FixedBookmarks sources;
    sources.bookmarks->addChild(makeLink("m news"));
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("a", "Ann", "News"));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    smart->refresh();
    QCOMPARE(childTitles(*smart), (QStringList{"Ann News", "m news"}));
    contacts.set(MemoryContacts::person("z", "Zoe", "News"));
    contacts.set(MemoryContacts::person("a", "Anna", "News"));
    smart->refresh();
    QCOMPARE(childTitles(*smart), (QStringList{"Anna News", "m news", "Zoe News"}));
    contacts.take("a");
    smart->refresh();
    QCOMPARE(childTitles(*smart), (QStringList{"m news", "Zoe News"}));
    smart->setFilterString("zoe");
    smart->refresh();
    QCOMPARE(childTitles(*smart), QStringList{"Zoe News"});
}

void WayfoldBookmarkAutoFolderTest::otherContactsAreSearched()
{
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    auto former = std::make_unique<MemoryContacts>();
    former->set(MemoryContacts::person("a", "Ann", "News"));
    smart->refresh();
    QCOMPARE(childTitles(*smart), QStringList{"Ann News"});
    former.reset();
    smart->refresh();
    QCOMPARE(childTitles(*smart), QStringList());
    MemoryContacts others; // with as many changes
    others.set(MemoryContacts::person("b", "Bob", "News"));
    smart->refresh();
    QCOMPARE(childTitles(*smart), QStringList{"Bob News"});
}

void WayfoldBookmarkAutoFolderTest::unchangedContactsAreKept()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("a", "Ann", "News"));
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    const auto annsEntry = [&smart] {
        smart->refresh();
        return std::static_pointer_cast<WayfoldBookmarkABPerson>(smart->childAtIndex(0))->addressBookEntry();
    };
    const WayfoldABEntryPtr entry = annsEntry();
    QVERIFY(annsEntry() == entry); // found at the first search, and shown again
}

void WayfoldBookmarkAutoFolderTest::whoWasFoundKeepsThePicture()
{
    MemoryContacts contacts;
    contacts.set(MemoryContacts::person("a", "Ann", "News"));
    contacts.set(MemoryContacts::person("b", "Bob", "News"));
    QByteArray picture;
    QBuffer buffer(&picture);
    buffer.open(QIODevice::WriteOnly);
    QVERIFY(QImage(8, 8, QImage::Format_RGB32).save(&buffer, "PNG"));
    contacts.pictures = {{"a", picture}, {"b", picture}};
    const auto smart = WayfoldBookmarkAutoFolder::bookmarkWithTitle("news");
    const auto show = [&smart] {
        smart->refresh();
        for (const KDRBookmarkPtr &item : smart->children())
            QVERIFY(item->imageForCellSize({16, 16}));
    };
    show();
    QCOMPARE(contacts.picturesAsked, QStringList({"a", "b"}));
    contacts.set(MemoryContacts::company("b", "Zebra News"));
    contacts.set(MemoryContacts::person("c", "Cy", QString()));
    show();
    QCOMPARE(contacts.picturesAsked, QStringList({"a", "b", "b"})); // whose card is another one
    QCOMPARE(childTitles(*smart), QStringList({"Ann News", "Zebra News"}));
    QCOMPARE(smart->childAtIndex(1)->typeDescription(), QStringLiteral("Organization"));
}

QTEST_MAIN(WayfoldBookmarkAutoFolderTest)
#include "WayfoldBookmarkAutoFolderTest.moc"
