#include "core/ItemMerge.h"

#include "core/MergeCheck.h"
#include "model/ItemDictionary.h"
#include "platform/files/PropertyList.h"

#include <QDateTime>
#include <QtTest>

using namespace ItemDictionary;

namespace
{
QVariantMap note(const QString &identifier, const QString &title, const QString &text = QStringLiteral("text"))
{
    QVariantMap made{{typeKey, noteType},
                     {noteKey, text},
                     {uriDictionaryKey, QVariantMap{{uriTitleKey, title}, {uriAddressKey, ""}}}};
    if (!identifier.isNull())
        made.insert(uuidKey, identifier);
    return made;
}

QVariantMap link(const QString &identifier, const QString &title, const QString &address)
{
    return {{typeKey, leafType},
            {uuidKey, identifier},
            {urlStringKey, address},
            {uriDictionaryKey, QVariantMap{{uriTitleKey, title}, {uriAddressKey, address}}}};
}

QVariantMap folder(const QString &identifier, const QString &title, const QVariantList &children = {})
{
    return {{typeKey, listType},
            {uuidKey, identifier},
            {titleKey, title},
            {searchStringKey, title},
            {childrenKey, children}};
}

QVariantMap root(const QVariantList &children)
{
    return folder("ROOT", "", children);
}

QVariantMap with(QVariantMap item, const QString &key, const QVariant &value)
{
    item.insert(key, value);
    return item;
}

QString titleOfSecond(const QString &title)
{
    return title + QStringLiteral(" (mine)");
}

QString titleOf(const QVariantMap &item)
{
    return item.contains(titleKey) ? item.value(titleKey).toString()
                                   : item.value(uriDictionaryKey).toMap().value(uriTitleKey).toString();
}

// "a F(b c)": titles, and what folders list.
QString shape(const QVariantMap &listing)
{
    QStringList titles;
    for (const QVariant &child : listing.value(childrenKey).toList()) {
        const QVariantMap item = child.toMap();
        titles.append(item.contains(childrenKey) ? titleOf(item) + u'(' + shape(item) + u')' : titleOf(item));
    }
    return titles.join(u' ');
}

QVariantMap child(const QVariantMap &listing, int index)
{
    return listing.value(childrenKey).toList().value(index).toMap();
}

struct Merged
{
    Merged(const QVariantList &base, const QVariantList &ours, const QVariantList &theirs)
        : merge(root(base), root(ours), root(theirs), titleOfSecond)
    {}
    const QVariantMap &operator*() const { return merge.merged(); }
    ItemMerge merge;
};

QString shapeOf(const QVariantList &base, const QVariantList &ours, const QVariantList &theirs)
{
    const Merged merged(base, ours, theirs);
    return merged.merge.holdsAll() ? shape(*merged) : QStringLiteral("not all: ") + shape(*merged);
}

const QVariantMap a = note("A", "a");
const QVariantMap b = note("B", "b");
const QVariantMap c = note("C", "c");
const QVariantMap d = note("D", "d");
} // namespace

// One test for each thing that two sides may have done to the same file.
class ItemMergeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shapes_data();
    void shapes();
    void twoTextsOfANoteAreTwoNotes();
    void secondNoteIsTheSameWhereverItIsMade();
    void differentFieldsOfOneItemAreBothChanged();
    void twoAddressesAreTwoLinks();
    void twoTitlesAreTwoItems();
    void removedKeyLosesAgainstAChange();
    void numberOfAnotherTypeIsAChange();
    void foldersTitleIsTheFilesAndOursIsReported();
    void unknownKeysAreMergedOneByOne();
    void unknownKindsAreMerged();
    void entriesThatAreNoDictionariesStay();
    void itemsWithoutIdentifierArePairedByPlace();
    void identifierThatOneTookAwayLosesNoChange();
    void newFoldersOfOneSiteAreOne();
    void sameIdentifierWithOtherContentsIsKeptTwice();
    void copiesOfOneItemInTwoFoldersStayBoth();
    void manyEqualIdentifiers();
    void reportCountsWhatBecomesOfOurs();
    void deepestTree();
    void tooDeepIsNotHeld();
    void unchangedFoldersShareMemory();
    void checkMissesWhatIsGone();
    void titleWithOriginNamesComputerAndTime();
};

void ItemMergeTest::shapes_data()
{
    QTest::addColumn<QVariantList>("base");
    QTest::addColumn<QVariantList>("ours");
    QTest::addColumn<QVariantList>("theirs");
    QTest::addColumn<QString>("expected");
    using List = QVariantList;
    const auto f = [](const List &list) { return folder("F", "F", list); };
    const auto g = [](const List &list) { return folder("G", "G", list); };
    const QVariantMap changed = note("A", "a", "changed");

    QTest::newRow("nothing yet, on any side") << List{} << List{} << List{} << "";
    QTest::newRow("first time, both have items") << List{} << List{a, b} << List{b, c} << "a b c";
    QTest::newRow("each has added one") << List{a} << List{a, b} << List{a, c} << "a c b";
    QTest::newRow("both have added the same") << List{a} << List{a, b} << List{a, b} << "a b";
    QTest::newRow("deleted by us") << List{a, b} << List{b} << List{a, b} << "b";
    QTest::newRow("deleted by them") << List{a, b} << List{a, b} << List{b} << "b";
    QTest::newRow("deleted by both") << List{a, b} << List{b} << List{b} << "b";
    QTest::newRow("deleted by us, changed by them") << List{a, b} << List{b} << List{changed, b} << "a b";
    QTest::newRow("deleted by them, changed by us") << List{a, b} << List{changed, b} << List{b} << "a b";
    QTest::newRow("deleted by us, moved by them") << List{a, f({})} << List{f({})} << List{f({a})} << "F(a)";
    QTest::newRow("deleted by them, in another order here") << List{a, b, c} << List{c, a, b} << List{a, b} << "a b";
    QTest::newRow("folder deleted, item added in it") << List{f({a})} << List{f({a, b})} << List{} << "F(b)";
    QTest::newRow("folder deleted, item in it changed") << List{f({a, b})} << List{} << List{f({changed, b})} << "F(a)";
    QTest::newRow("folder deleted, item below it changed")
        << List{f({g({a, b}), c})} << List{} << List{f({g({changed, b}), c})} << "F(G(a))";
    QTest::newRow("folder deleted, itself renamed")
        << List{f({a})} << List{} << List{folder("F", "New", {a})} << "New(a)";
    QTest::newRow("folder deleted, itself moved")
        << List{f({a}), g({})} << List{g({})} << List{g({f({a})})} << "G(F(a))";
    QTest::newRow("item moved out of a folder that was deleted") << List{f({a, b})} << List{a, f({b})} << List{} << "a";
    QTest::newRow("item moved into a folder that was deleted")
        << List{a, f({b})} << List{f({b, a})} << List{a} << "F(a)";
    QTest::newRow("moved by us") << List{a, f({}), g({})} << List{f({a}), g({})} << List{a, f({}), g({})} << "F(a) G()";
    QTest::newRow("moved by them") << List{a, f({}), g({})} << List{a, f({}), g({})} << List{f({a}), g({})}
                                   << "F(a) G()";
    QTest::newRow("moved by both, to other folders")
        << List{a, f({}), g({})} << List{f({a}), g({})} << List{f({}), g({a})} << "F(a) G()";
    QTest::newRow("moved by us, changed by them")
        << List{a, f({})} << List{f({a})} << List{note("A", "new"), f({})} << "F(new)";
    QTest::newRow("each folder moved into the other")
        << List{f({a}), g({b})} << List{g({b, f({a})})} << List{f({a, g({b})})} << "G(b F(a))";
    QTest::newRow("three folders in a circle")
        << List{f({}), g({}), folder("H", "H")} << List{g({f({})}), folder("H", "H")}
        << List{folder("H", "H", {g({})}), f({folder("H2", "H2")})} << "H(G(F(H2())))";
    QTest::newRow("sorted by us, added by them") << List{c, b, a} << List{a, b, c} << List{c, b, a, d} << "a b c d";
    QTest::newRow("sorted by them, added by us") << List{c, b, a} << List{c, b, a, d} << List{a, b, c} << "a b c d";
    QTest::newRow("another item moved by each")
        << List{a, b, c, d} << List{b, a, c, d} << List{a, b, d, c} << "b a d c";
    QTest::newRow("the same item moved by both")
        << List{a, b, c, d} << List{b, c, d, a} << List{b, a, c, d} << "b c d a";
    QTest::newRow("added in the middle by both") << List{a, b} << List{a, c, b} << List{a, d, b} << "a d c b";
    QTest::newRow("added in front by both") << List{a} << List{c, a} << List{d, a} << "d c a";
}

void ItemMergeTest::shapes()
{
    QFETCH(QVariantList, base);
    QFETCH(QVariantList, ours);
    QFETCH(QVariantList, theirs);
    QTEST(shapeOf(base, ours, theirs), "expected");
}

void ItemMergeTest::twoTextsOfANoteAreTwoNotes()
{
    const Merged merged({note("A", "a", "old"), b}, {note("A", "a", "ours"), b}, {note("A", "a", "theirs"), b});
    QCOMPARE(shape(*merged), "a a (mine) b");
    QCOMPARE(child(*merged, 0), note("A", "a", "theirs"));
    QCOMPARE(child(*merged, 1).value(noteKey), "ours");
    const QString identifier = child(*merged, 1).value(uuidKey).toString();
    QVERIFY(QRegularExpression("^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$").match(identifier).hasMatch());
    QCOMPARE(merged.merge.report().seconds, QStringList{"a (mine)"});
    QVERIFY(merged.merge.holdsAll());
}

void ItemMergeTest::secondNoteIsTheSameWhereverItIsMade()
{
    const auto identifierOfSecond = [](const QString &text) {
        return child(*Merged({note("A", "a", "old")}, {note("A", "a", text)}, {note("A", "a", "theirs")}), 1)
            .value(uuidKey);
    };
    QCOMPARE(identifierOfSecond("ours"), identifierOfSecond("ours"));
    QVERIFY(identifierOfSecond("ours") != identifierOfSecond("other"));
}

void ItemMergeTest::differentFieldsOfOneItemAreBothChanged()
{
    const Merged merged({note("A", "a", "old")}, {note("A", "new title", "old")}, {note("A", "a", "new text")});
    QCOMPARE(*merged, root({note("A", "new title", "new text")}));
}

void ItemMergeTest::twoAddressesAreTwoLinks()
{
    const Merged merged({link("L", "l", "http://old/")}, {link("L", "l", "http://ours/")},
                        {link("L", "l", "http://theirs/")});
    QCOMPARE(shape(*merged), "l l (mine)");
    QCOMPARE(child(*merged, 0), link("L", "l", "http://theirs/"));
    QCOMPARE(child(*merged, 1), link(child(*merged, 1).value(uuidKey).toString(), "l (mine)", "http://ours/"));
}

void ItemMergeTest::twoTitlesAreTwoItems()
{
    QCOMPARE(shapeOf({a}, {note("A", "ours")}, {note("A", "theirs")}), "theirs ours (mine)");
}

void ItemMergeTest::removedKeyLosesAgainstAChange()
{
    const QVariantMap known = with(a, "Colour", "red");
    const QVariantMap changed = with(a, "Colour", "blue");
    QCOMPARE(*Merged({known}, {a}, {changed}), root({changed}));
    QCOMPARE(*Merged({known}, {changed}, {a}), root({changed}));
    QCOMPARE(*Merged({known}, {a}, {known}), root({a}));
}

void ItemMergeTest::numberOfAnotherTypeIsAChange()
{
    const QVariantMap number = with(a, "Value", qlonglong(1));
    const QVariantMap truth = with(a, "Value", true);
    QCOMPARE(child(*Merged({number}, {number}, {truth}), 0).value("Value").typeId(), int(QMetaType::Bool));
    const QVariantMap noNumber = with(a, "Value", std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(shapeOf({noNumber}, {noNumber}, {noNumber, b}), "a b");
}

void ItemMergeTest::foldersTitleIsTheFilesAndOursIsReported()
{
    const Merged merged({folder("F", "old", {a})}, {folder("F", "ours", {a})}, {folder("F", "theirs", {a})});
    QCOMPARE(shape(*merged), "theirs(a)");
    QVERIFY(merged.merge.report().overruled.contains("ours"));
    QVERIFY(merged.merge.holdsAll());
}

void ItemMergeTest::unknownKeysAreMergedOneByOne()
{
    const QVariantMap known = with(a, "Details", QVariantMap{{"x", "1"}, {"y", "1"}, {"z", "1"}});
    const QVariantMap ours = with(a, "Details", QVariantMap{{"x", "2"}, {"y", "1"}});
    const QVariantMap theirs = with(known, "Details", QVariantMap{{"x", "1"}, {"y", "2"}, {"z", "1"}, {"w", "1"}});
    QCOMPARE(*Merged({known}, {ours}, {theirs}),
             root({with(a, "Details", QVariantMap{{"x", "2"}, {"y", "2"}, {"w", "1"}})}));
}

void ItemMergeTest::unknownKindsAreMerged()
{
    const QVariantMap known{{typeKey, "Gadget"}, {uuidKey, "X"}, {"Size", 1}, {"Form", "round"}};
    QCOMPARE(*Merged({known}, {with(known, "Size", 2)}, {with(known, "Form", "square")}),
             root({with(with(known, "Size", 2), "Form", "square")}));
    QCOMPARE(*Merged({known}, {with(known, "Size", 2)}, {}), root({with(known, "Size", 2)}));
    QCOMPARE(*Merged({}, {a}, {known}), root({known, a}));
}

void ItemMergeTest::entriesThatAreNoDictionariesStay()
{
    QCOMPARE(*Merged({"text", 7}, {"text", 7, a}, {7, QVariantList{1, 2}}), root({7, QVariantList{1, 2}, a}));
    QCOMPARE(*Merged({"old"}, {"ours"}, {"theirs"}), root({"theirs", "ours"}));
}

void ItemMergeTest::itemsWithoutIdentifierArePairedByPlace()
{
    const auto nameless = [](const QString &title, const QString &text) { return note(QString(), title, text); };
    // By title.
    QCOMPARE(*Merged({nameless("n", "1"), a}, {nameless("n", "1"), b, a}, {a, nameless("n", "2")}),
             root({a, nameless("n", "2"), b}));
    // By what stands before it.
    QCOMPARE(*Merged({a, nameless("n", "1"), b}, {a, nameless("m", "1"), b}, {a, nameless("n", "2"), b}),
             root({a, nameless("m", "2"), b}));
    // Equal ones stay as many as they are.
    QCOMPARE(shapeOf({nameless("n", ""), nameless("n", "")}, {nameless("n", ""), nameless("n", ""), a},
                     {nameless("n", ""), nameless("n", ""), nameless("n", "")}),
             "n n n a");
}

void ItemMergeTest::identifierThatOneTookAwayLosesNoChange()
{
    const QVariantMap nameless = note(QString(), "a");
    QCOMPARE(*Merged({a}, {note("A", "a", "ours")}, {nameless}), root({note(QString(), "a", "ours")}));
    QCOMPARE(*Merged({nameless}, {note("MADE", "a")}, {note(QString(), "a", "theirs")}),
             root({note("MADE", "a", "theirs")}));
}

void ItemMergeTest::newFoldersOfOneSiteAreOne()
{
    const Merged merged({}, {folder("OURS", "site.example", {a})}, {folder("THEIRS", "site.example", {b})});
    QCOMPARE(shape(*merged), "site.example(b a)");
    QCOMPARE(child(*merged, 0).value(uuidKey), "THEIRS");
    QVERIFY(merged.merge.holdsAll());
    // Elsewhere two folders may have one title.
    QCOMPARE(shapeOf({folder("F", "F")}, {folder("F", "F", {folder("1", "x", {a})})},
                     {folder("F", "F", {folder("2", "x", {b})})}),
             "F(x(b) x(a))");
}

void ItemMergeTest::sameIdentifierWithOtherContentsIsKeptTwice()
{
    QCOMPARE(shapeOf({b}, {b, note("A", "a", "ours")}, {note("A", "a", "theirs"), b}), "b a a (mine)");
    QCOMPARE(shapeOf({b}, {b, note("A", "a")}, {b, link("A", "l", "http://x/")}), "b l a");
}

void ItemMergeTest::copiesOfOneItemInTwoFoldersStayBoth()
{
    QCOMPARE(shapeOf({a, folder("F", "F"), folder("G", "G")}, {a, folder("F", "F", {a}), folder("G", "G")},
                     {a, folder("F", "F"), folder("G", "G", {a})}),
             "a F(a) G(a)");
}

// Neither are they mixed up, nor does it take the square of the time.
void ItemMergeTest::manyEqualIdentifiers()
{
    const int count = 20000;
    QVariantList base;
    for (int i = 0; i < count; ++i)
        base.append(note("SAME", QString::number(i)));
    QVariantList ours = base;
    ours[7] = note("SAME", "ours");
    QVariantList theirs = base;
    std::reverse(theirs.begin(), theirs.end());
    theirs.removeLast();
    const Merged merged(base, ours, theirs);
    QCOMPARE(child(*merged, count - 8 - 1 + 1), note("SAME", "ours"));
    QCOMPARE((*merged).value(childrenKey).toList().size(), count - 1);
    QVERIFY(merged.merge.holdsAll());
}

void ItemMergeTest::reportCountsWhatBecomesOfOurs()
{
    const Merged merged({a, b, c, folder("F", "F")}, {a, b, c, folder("F", "F")},
                        {note("A", "new"), d, folder("F", "F", {c})});
    QCOMPARE(shape(*merged), "new d F(c)");
    QCOMPARE(merged.merge.report().added, 1);
    QCOMPARE(merged.merge.report().changed, 1);
    QCOMPARE(merged.merge.report().removed, 1);
    QCOMPARE(merged.merge.report().moved, 1);
}

void ItemMergeTest::deepestTree()
{
    const auto tree = [](const QVariantMap &innermost) {
        QVariantMap item = innermost;
        for (int depth = 1; depth < PropertyList::maximumDepth / 2 - 1; ++depth)
            item = folder(QString::number(depth), "f", {item});
        return QVariantList{item};
    };
    const Merged merged(tree(a), tree(note("A", "ours")), tree(note("A", "a", "theirs")));
    QCOMPARE(*merged, root(tree(note("A", "ours", "theirs"))));
    QVERIFY(merged.merge.holdsAll());
}

// What could not be read again is not to be written.
void ItemMergeTest::tooDeepIsNotHeld()
{
    const auto tree = [](const QString &name, const QVariantList &innermost) {
        QVariantList list = innermost;
        for (int depth = 0; depth < 300; ++depth)
            list = {folder(name + QString::number(depth), name, list)};
        return list;
    };
    const QVariantList one = tree("one", {});
    const QVariantList other = tree("other", {});
    const Merged merged(one + other, tree("other", one), tree("one", {}) + tree("other", {a}));
    QVERIFY(!merged.merge.holdsAll());
}

void ItemMergeTest::unchangedFoldersShareMemory()
{
    const QVariantMap ours = root({folder("F", "F", {a}), b});
    const ItemMerge merge(root({folder("F", "F", {a})}), ours, root({folder("F", "F", {a}), c}), titleOfSecond);
    QVERIFY(merge.ours() == ours);
    QVERIFY(child(merge.merged(), 0).isSharedWith(child(merge.ours(), 0)));
}

void ItemMergeTest::checkMissesWhatIsGone()
{
    const QVariantMap base = root({a, b});
    const auto holds = [&](const QVariantList &ours, const QVariantList &theirs, const QVariantList &merged) {
        return MergeCheck::holdsAll(base, root(ours), root(theirs), root(merged), titleOfSecond, {});
    };
    QVERIFY(holds({a, b}, {a, b}, {a, b}));
    QVERIFY2(!holds({a, b}, {a, b}, {a}), "what nobody has touched");
    QVERIFY2(!holds({a, b, c}, {a, b}, {a, b}), "what we have added");
    QVERIFY2(!holds({a, b}, {a, b, c}, {a, b}), "what they have added");
    QVERIFY2(!holds({note("A", "a", "new"), b}, {a, b}, {a, b}), "a text of ours");
    QVERIFY2(!holds({a, b}, {note("A", "new"), b}, {a, b}), "a title of theirs");
    QVERIFY2(!holds({a, b}, {with(a, "Colour", 7), b}, {a, b}), "an unknown value of theirs");
    QVERIFY2(!holds({a, b}, {folder("F", "F", {a}), b}, {a, b}), "a new folder");
    QVERIFY(holds({a, b}, {b}, {b}));
    QVERIFY(holds({a, b}, {b, folder("F", "F", {a})}, {b, folder("F", "F", {a})}));
}

void ItemMergeTest::titleWithOriginNamesComputerAndTime()
{
    QLocale::setDefault(QLocale::c());
    const QDateTime time(QDate(2024, 2, 29), QTime(13, 5));
    QCOMPARE(ItemMerge::titleWithOrigin("Milk %1", "desk", time),
             "Milk %1 (from desk, " + QLocale::c().toString(time, QLocale::ShortFormat) + ")");
}

QTEST_GUILESS_MAIN(ItemMergeTest)
#include "ItemMergeTest.moc"
