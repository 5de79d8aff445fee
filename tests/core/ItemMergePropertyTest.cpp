#include "core/ItemMerge.h"

#include "core/MergeCheck.h"
#include "core/TreeUpdate.h"
#include "model/WayfoldBookmarkFolder.h"
#include "platform/files/PropertyList.h"
#include "tests/core/RandomItemTree.h"
#include "tests/support/InstalledKinds.h"
#include "tests/support/PythonScript.h"

#include <QHash>
#include <QJsonDocument>
#include <QSet>
#include <QtTest>
#include <map>

// What must hold for every merge, on trees and edits that are made up. What is expected of an entry is said by its key,
// which no merge can see.
//
//     WAYFOLD_MERGE_ROUNDS=100000    more of them
//     WAYFOLD_MERGE_SEED=7           others; a single round tells what it merged
class ItemMergePropertyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomEdits();
    void checkSeesWhatIsMissing();
    void othersReadWhatWasMerged();
    void treeFollows();
};

namespace
{
using namespace ItemDictionary;
using Node = RandomItemTree::Node;
using NodePtr = RandomItemTree::NodePtr;

const QString mark = QStringLiteral(" [second]");

QString titleOfSecond(const QString &title)
{
    return title + mark;
}

int numberFrom(const char *name, int usual)
{
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue(name, &isNumber);
    return isNumber ? number : usual;
}

// Same type, same value.
bool isExactly(const QVariant &a, const QVariant &b)
{
    return a.typeId() == b.typeId() && a == b;
}

// --- What there is to merge -----------------------------------------------------------------------------------------

struct Case
{
    explicit Case(quint32 seed) : random(seed), base(random, count), ours(random, count), theirs(random, count)
    {
        const bool isLarge = random.bounded(300) == 0;
        const bool isTiny = random.bounded(3) == 0;
        const int size = isLarge ? random.bounded(2000) : isTiny ? random.bounded(6) : random.bounded(40);
        if (random.bounded(12) > 0) // else the first time
            base.grow(size);
        const bool isDoubled = random.bounded(4) == 0;
        for (int i = 0; isDoubled && i < size / 4; ++i)
            base.edit();
        ours = base.copy();
        theirs = base.copy();
        const int edits = isTiny ? 3 : 12 + size / 40;
        for (int i = random.bounded(edits); i > 0; --i)
            ours.edit();
        for (int i = random.bounded(edits); i > 0; --i)
            theirs.edit();
        for (int i = random.bounded(5); i > 0; --i)
            editBoth();
    }

    // What the two would hardly hit upon by themselves.
    void editBoth()
    {
        const auto places = base.places();
        if (places.empty())
            return;
        const int key = places[std::size_t(random.bounded(int(places.size())))].node->key;
        const int otherKey = places[std::size_t(random.bounded(int(places.size())))].node->key;
        const NodePtr here = ours.nodeWithKey(key);
        const NodePtr there = theirs.nodeWithKey(key);
        const NodePtr otherHere = ours.nodeWithKey(otherKey);
        const NodePtr otherThere = theirs.nodeWithKey(otherKey);
        switch (random.bounded(4)) {
        case 0: // the same item, differently
            if (here && there) {
                ours.change(*here);
                theirs.change(*there);
            }
            break;
        case 1: // each folder into the other
            if (here && there && otherHere && otherThere && here->isFolder && otherHere->isFolder && there->isFolder &&
                otherThere->isFolder) {
                ours.move(placeOf(ours, here), otherHere);
                theirs.move(placeOf(theirs, otherThere), there);
            }
            break;
        case 2: { // one new item, or two of one identifier, put into the same folder
            const NodePtr node = ours.makeNode();
            const auto copied = std::make_shared<Node>(*node);
            if (random.bounded(2))
                theirs.change(*copied);
            if (here && there && here->isFolder && there->isFolder) {
                ours.insert(node, here);
                theirs.insert(copied, there);
            }
            break;
        }
        default: // one deletes what the other changes
            if (here && there) {
                ours.change(*here);
                RandomItemTree::remove(placeOf(theirs, there));
            }
            break;
        }
    }
    static RandomItemTree::Place placeOf(const RandomItemTree &tree, const NodePtr &node)
    {
        for (const RandomItemTree::Place &place : tree.places()) {
            if (place.node == node)
                return place;
        }
        return {};
    }

    QRandomGenerator random;
    int count = 0;
    RandomItemTree base;
    RandomItemTree ours;
    RandomItemTree theirs;
};

// --- A tree, spread out ---------------------------------------------------------------------------------------------

// The values of an entry by the keys that lead to them; identifiers and lists of entries are left out.
using Values = std::map<QStringList, QVariant>;

void spread(const QVariant &value, const QStringList &path, Values &values)
{
    if (value.typeId() != QMetaType::QVariantMap) {
        values[path] = value;
        return;
    }
    const QVariantMap fields = value.toMap();
    for (const auto &[key, element] : fields.asKeyValueRange()) {
        if (path.isEmpty() && (key == uuidKey || key == childrenKey))
            continue;
        spread(element, path + QStringList{key}, values);
    }
}

Values valuesOf(const QVariant &entry)
{
    Values values;
    spread(entry, {}, values);
    return values;
}

QString identifierOf(const QVariant &entry)
{
    return entry.toMap().value(uuidKey).toString();
}

QVariant withoutList(const QVariant &entry)
{
    if (entry.typeId() != QMetaType::QVariantMap || !entry.toMap().contains(childrenKey))
        return entry;
    QVariantMap fields = entry.toMap();
    fields.remove(childrenKey);
    return fields;
}

// A text for each value, which no other has.
QString nameOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap: {
        QString name;
        const QVariantMap fields = value.toMap();
        for (const auto &[key, element] : fields.asKeyValueRange())
            name += key + u'=' + nameOf(element) + u'\n';
        return u'{' + name + u'}';
    }
    case QMetaType::QVariantList: {
        QString name;
        for (const QVariant &element : value.toList())
            name += nameOf(element) + u'\n';
        return u'[' + name + u']';
    }
    default:
        return QLatin1String(value.typeName()) + u' ' + value.toString();
    }
}

QString nameOf(const QStringList &path, const QVariant &value)
{
    return path.join(u'/') + u':' + nameOf(value);
}

struct Listed
{
    QVariant entry; // without what it lists
    QVariantList list;
    int parent = -1; // among all
};

struct Spread
{
    explicit Spread(const QVariantMap &root)
    {
        all.push_back({withoutList(root), root.value(childrenKey).toList()});
        for (std::size_t i = 0; i < all.size(); ++i) {
            const QVariantList list = all[i].list;
            for (const QVariant &entry : list) {
                const bool isFolder = entry.typeId() == QMetaType::QVariantMap;
                all.push_back({withoutList(entry),
                               isFolder ? entry.toMap().value(childrenKey).toList() : QVariantList(), int(i)});
            }
        }
        for (std::size_t i = 0; i < all.size(); ++i) {
            children[all[i].parent].push_back(int(i));
            ++entries[nameOf({}, all[i].entry)];
            for (const auto &[path, value] : valuesOf(all[i].entry)) {
                names.insert(nameOf(path, value));
                if (value.typeId() == QMetaType::QString)
                    texts.insert(value.toString());
            }
            const QString identifier = identifierOf(all[i].entry);
            if (!identifier.isEmpty())
                byIdentifier[identifier].push_back(int(i));
        }
    }
    // -1 when it is not there, or more than once.
    int find(const QString &identifier) const
    {
        const std::vector<int> found = byIdentifier.value(identifier);
        return found.size() == 1 ? found.front() : -1;
    }

    std::vector<Listed> all;
    QHash<int, std::vector<int>> children;
    QHash<QString, int> entries; // how many are equal, without what they list
    QSet<QString> names;
    QSet<QString> texts;
    QHash<QString, std::vector<int>> byIdentifier;
};

struct Side
{
    explicit Side(const RandomItemTree &tree)
    {
        nodes[tree.root->key] = tree.root;
        for (const RandomItemTree::Place &place : tree.places()) {
            nodes[place.node->key] = place.node;
            parents[place.node->key] = place.parent->key;
            users[identifierOf(place.node->value)].insert(place.node->key);
        }
        users[identifierOf(tree.root->value)].insert(tree.root->key);
    }
    const Node *node(int key) const { return nodes.value(key).get(); }
    QHash<int, NodePtr> nodes;
    QHash<int, int> parents;
    QHash<QString, QSet<int>> users;
};

// --- What must be ---------------------------------------------------------------------------------------------------

class Expectations
{
public:
    Expectations(const Case &sides, const QVariantMap &mergedRoot)
        : base(sides.base)
        , ours(sides.ours)
        , theirs(sides.theirs)
        , merged(mergedRoot)
        , inBase(sides.base.dictionary())
        , inOurs(sides.ours.dictionary())
        , inTheirs(sides.theirs.dictionary())
    {}

    // Null, or what is wrong.
    QString complaint()
    {
        for (const QString &found : {nothingIsMissing(ours, inOurs), nothingIsMissing(theirs, inTheirs),
                                     nothingIsInvented(), nothingUntouchedIsLost(), everyItemIsAsExpected(),
                                     ordersFollow(ours, theirs), ordersFollow(theirs, ours)}) {
            if (!found.isNull())
                return found;
        }
        return {};
    }

private:
    // Texts and values that one side has brought in are there.
    QString nothingIsMissing(const Side &side, const Spread &spreadSide) const
    {
        for (auto node = side.nodes.begin(); node != side.nodes.end(); ++node) {
            for (const auto &[path, value] : valuesOf(withoutList(node.value()->value))) {
                const QString name = nameOf(path, value);
                if (inBase.names.contains(name) || merged.names.contains(name))
                    continue;
                const bool isTitle =
                    path == QStringList{titleKey} || path == QStringList{uriDictionaryKey, uriTitleKey};
                if (isTitle && merged.texts.contains(titleOfSecond(value.toString())))
                    continue;
                if (&spreadSide == &inOurs && node.value()->isFolder && isOverruled(node.key(), path))
                    continue;
                return "missing: " + name;
            }
        }
        return {};
    }

    // Of a folder's own fields theirs count where both have changed them. A folder that cannot be told by its
    // identifier may be taken for another one.
    bool isOverruled(int key, const QStringList &path) const
    {
        const Node *const known = base.node(key);
        const Node *const here = ours.node(key);
        const Node *const there = theirs.node(key);
        if (identifierFor(key).isNull())
            return true;
        if (!there)
            return !known && ours.parents.value(key) == 0; // a site's
        const QVariant before = known ? fieldAt(*known, path) : QVariant();
        return !isExactly(before, fieldAt(*there, path)) && !isExactly(before, fieldAt(*here, path));
    }
    static QVariant fieldAt(const Node &node, const QStringList &path)
    {
        const Values values = valuesOf(withoutList(node.value));
        const auto found = values.find(path);
        return found == values.end() ? QVariant() : found->second;
    }

    QString nothingIsInvented() const
    {
        for (const Listed &listed : merged.all) {
            for (const auto &[path, value] : valuesOf(listed.entry)) {
                const QString name = nameOf(path, value);
                if (inBase.names.contains(name) || inOurs.names.contains(name) || inTheirs.names.contains(name))
                    continue;
                const QString text = value.toString();
                const QString title = text.chopped(mark.size());
                if (text.endsWith(mark) && (inOurs.texts.contains(title) || inTheirs.texts.contains(title)))
                    continue;
                return "invented: " + name;
            }
        }
        return {};
    }

    // Of entries that are equal, as many as cannot have been deleted or changed by anybody.
    QString nothingUntouchedIsLost() const
    {
        for (auto entry = inBase.entries.begin(); entry != inBase.entries.end(); ++entry) {
            const int keptByUs = std::min(entry.value(), inOurs.entries.value(entry.key()));
            const int keptByThem = std::min(entry.value(), inTheirs.entries.value(entry.key()));
            if (merged.entries.value(entry.key()) < keptByUs + keptByThem - entry.value())
                return "lost: " + entry.key();
        }
        return {};
    }

    // Of an entry that is told by its identifier, since no other has that one; null for others.
    QString identifierFor(int key) const { return identifiers.value(key); }
    void findIdentifiers()
    {
        QHash<QString, QSet<int>> users;
        QHash<int, QSet<QString>> used;
        for (const Side *const side : {&base, &ours, &theirs}) {
            for (auto node = side->nodes.begin(); node != side->nodes.end(); ++node) {
                const QString identifier = identifierOf(node.value()->value);
                users[identifier].insert(node.key());
                used[node.key()].insert(identifier);
            }
        }
        for (auto entry = used.begin(); entry != used.end(); ++entry) {
            const QString identifier = *entry.value().begin();
            if (entry.value().size() > 1 || identifier.isEmpty() || users.value(identifier).size() > 1)
                continue;
            identifiers[entry.key()] = identifier;
            keys[identifier] = entry.key();
        }
    }

    QString everyItemIsAsExpected() const
    {
        for (const int key : keys) {
            const QString identifier = identifierFor(key);
            if (isSitesOfBoth(key))
                continue;
            const QString found = itemIsAsExpected(key, identifier);
            if (!found.isNull())
                return found + " (" + identifier + ")";
        }
        return {};
    }

    // Two new folders of one site are one.
    bool isSitesOfBoth(int key) const
    {
        const Node *const node = ours.node(key) ? ours.node(key) : theirs.node(key);
        return node && !base.node(key) && node->isFolder &&
               (ours.parents.value(key, -1) == 0 || theirs.parents.value(key, -1) == 0);
    }

    QString itemIsAsExpected(int key, const QString &identifier) const
    {
        const Node *const here = ours.node(key);
        const Node *const there = theirs.node(key);
        const int at = merged.find(identifier);
        if (merged.byIdentifier.value(identifier).size() > 1)
            return "more than once";
        if (!here && !there)
            return at < 0 ? QString() : "deleted by both, but there";
        if (here && there) {
            if (!base.node(key) && ours.parents.value(key) != theirs.parents.value(key))
                return {};
            return at < 0 ? "on both sides, but gone" : fieldsAreMerged(key, at) + placeIsRight(key, at);
        }
        const Side &side = here ? ours : theirs;
        const Side &other = here ? theirs : ours;
        if (base.node(key) && !staysWhole(key, side, other)) {
            if (at < 0)
                return {};
            const bool holdsSomething = merged.children.contains(at);
            return holdsSomething ? QString() : "deleted by one and untouched by the other, but there";
        }
        if (at < 0)
            return "added or changed by one, but gone";
        if (valuesOf(merged.all[std::size_t(at)].entry) != valuesOf(withoutList(side.node(key)->value)))
            return "not as the one that has it has it";
        return parentIs(key, at, side) ? QString() : "not where the one that has it has it";
    }

    // A deleted entry that the other has changed itself, or that lies in such a folder.
    bool staysWhole(int key, const Side &side, const Side &deleting) const
    {
        for (int at = key; base.node(at) && !deleting.node(at); at = side.parents.value(at)) {
            if (base.node(at)->value != side.node(at)->value || base.parents.value(at) != side.parents.value(at))
                return true;
        }
        return false;
    }

    QString fieldsAreMerged(int key, int at) const
    {
        const Node *const known = base.node(key);
        const Values before = known ? valuesOf(withoutList(known->value)) : Values();
        const Values here = valuesOf(withoutList(ours.node(key)->value));
        const Values there = valuesOf(withoutList(theirs.node(key)->value));
        const Values result = valuesOf(merged.all[std::size_t(at)].entry);
        std::set<QStringList> paths;
        for (const Values *const values : {&before, &here, &there, &result}) {
            for (const auto &[path, value] : *values)
                paths.insert(path);
        }
        const auto valueAt = [](const Values &values, const QStringList &path) {
            const auto found = values.find(path);
            return found == values.end() ? QVariant() : found->second;
        };
        for (const QStringList &path : paths) {
            const QVariant b = valueAt(before, path);
            const QVariant o = valueAt(here, path);
            const QVariant t = valueAt(there, path);
            // Removing loses against changing, and ours stands in a second item where both have changed it.
            const bool isOurs = isExactly(t, b) || (!t.isValid() && !isExactly(o, b));
            if (!isExactly(valueAt(result, path), isOurs ? o : t))
                return "field " + nameOf(path, valueAt(result, path));
        }
        return {};
    }

    bool parentIs(int key, int at, const Side &side) const
    {
        const QString parent = identifierFor(side.parents.value(key));
        if (parent.isNull() || isSitesOfBoth(side.parents.value(key)) || key == 0)
            return true; // cannot be told
        return merged.find(parent) == merged.all[std::size_t(at)].parent;
    }

    QString placeIsRight(int key, int at) const
    {
        if (key == 0)
            return {};
        const int before = base.parents.value(key, -1);
        const int here = ours.parents.value(key);
        const int there = theirs.parents.value(key);
        const bool onlyTheyMovedIt = before >= 0 && here == before && there != before;
        if (parentIs(key, at, onlyTheyMovedIt ? theirs : ours))
            return {};
        // Ours counts where theirs would have made a circle.
        if (onlyTheyMovedIt && parentIs(key, at, ours) && isBelow(merged.find(identifierFor(there)), at))
            return {};
        return "not where it was moved to";
    }

    bool isBelow(int index, int folder) const
    {
        while (index >= 0 && index != folder)
            index = merged.all[std::size_t(index)].parent;
        return index == folder;
    }

    // Where the other side has left a folder's order alone, it is that of this side.
    QString ordersFollow(const Side &side, const Side &other) const
    {
        for (auto node = side.nodes.begin(); node != side.nodes.end(); ++node) {
            const Node *const known = base.node(node.key());
            const Node *const left = other.node(node.key());
            const QString identifier = identifierFor(node.key());
            if (!known || !left || identifier.isNull() || merged.find(identifier) < 0)
                continue;
            const std::vector<int> before = tellable(*known);
            const std::vector<int> after = tellable(*left);
            if (common(before, after) != common(after, before))
                continue;
            std::vector<int> order = tellable(*node.value());
            std::vector<int> result = listedInMerged(merged.find(identifier));
            // What both have put in has two orders.
            const auto isNewOfBoth = [&](int key) { return !base.node(key) && other.node(key); };
            std::erase_if(order, isNewOfBoth);
            if (common(order, result) != common(result, order))
                return "order of " + identifier;
        }
        return {};
    }
    std::vector<int> tellable(const Node &folder) const
    {
        std::vector<int> keys;
        for (const NodePtr &child : folder.children) {
            if (!identifierFor(child->key).isNull())
                keys.push_back(child->key);
        }
        return keys;
    }
    std::vector<int> listedInMerged(int folder) const
    {
        std::vector<int> found;
        for (const int child : merged.children.value(folder)) {
            const QString identifier = identifierOf(merged.all[std::size_t(child)].entry);
            if (keys.contains(identifier))
                found.push_back(keys.value(identifier));
        }
        return found;
    }
    static std::vector<int> common(const std::vector<int> &list, const std::vector<int> &other)
    {
        const std::set<int> others(other.begin(), other.end());
        std::vector<int> kept;
        std::copy_if(list.begin(), list.end(), std::back_inserter(kept), [&](int key) { return others.contains(key); });
        return kept;
    }

    Side base;
    Side ours;
    Side theirs;
    Spread merged;
    Spread inBase;
    Spread inOurs;
    Spread inTheirs;
    QHash<int, QString> identifiers; // by key
    QHash<QString, int> keys;
};

QString complaintAbout(const Case &sides, bool isTold)
{
    const QVariantMap base = sides.base.dictionary();
    const QVariantMap ours = sides.ours.dictionary();
    const QVariantMap theirs = sides.theirs.dictionary();
    const auto merged = [](const QVariantMap &from, const QVariantMap &one, const QVariantMap &other) {
        return ItemMerge(from, one, other, titleOfSecond).merged();
    };
    const ItemMerge merge(base, ours, theirs, titleOfSecond);
    const QVariantMap result = merge.merged();
    if (isTold) {
        for (const QVariantMap &dictionary : {base, ours, theirs, result})
            qInfo().noquote() << QJsonDocument::fromVariant(dictionary).toJson(QJsonDocument::Compact);
    }
    if (merged(base, ours, base) != ours)
        return "what only we changed is not as we have it";
    if (merged(base, base, theirs) != theirs)
        return "what only they changed is not as they have it";
    if (merged(base, ours, ours) != ours || merged(QVariantMap(), theirs, theirs) != theirs)
        return "equal sides are changed";
    if (merged(ours, result, result) != result || merged(base, result, result) != result ||
        merged(theirs, result, theirs) != result)
        return "doing it again changes something";
    if (!merge.holdsAll())
        return "the check misses something";
    return Expectations(sides, result).complaint();
}
} // namespace

void ItemMergePropertyTest::randomEdits()
{
    const int rounds = numberFrom("WAYFOLD_MERGE_ROUNDS", 500);
    const int seed = numberFrom("WAYFOLD_MERGE_SEED", 1);
    for (int round = 0; round < rounds; ++round) {
        const QString complaint = complaintAbout(Case(quint32(seed + round)), rounds == 1);
        QVERIFY2(
            complaint.isNull(),
            qPrintable(
                QStringLiteral("WAYFOLD_MERGE_ROUNDS=1 WAYFOLD_MERGE_SEED=%1: %2").arg(seed + round).arg(complaint)));
    }
}

void ItemMergePropertyTest::checkSeesWhatIsMissing()
{
    int removals = 0;
    for (int round = 0; round < 400; ++round) {
        const Case sides(quint32(50000 + round));
        const ItemMerge merge(sides.base.dictionary(), sides.ours.dictionary(), sides.theirs.dictionary(),
                              titleOfSecond);
        // An item that we have added is taken out of the result again.
        QVariantMap broken = merge.merged();
        QVariantList list = broken.value(childrenKey).toList();
        const Spread known(sides.base.dictionary());
        const Spread ours(sides.ours.dictionary());
        const auto isOurs = [&](const QVariant &entry) {
            const QString identifier = identifierOf(entry);
            return !identifier.isEmpty() && !known.byIdentifier.contains(identifier) && ours.find(identifier) >= 0 &&
                   entry.toMap().value(childrenKey).toList().isEmpty() &&
                   Spread(merge.merged()).byIdentifier.value(identifier).size() == 1;
        };
        const auto found = std::find_if(list.begin(), list.end(), isOurs);
        if (found == list.end())
            continue;
        const QString text = identifierOf(*found);
        list.erase(found);
        broken.insert(childrenKey, list);
        ++removals;
        QVERIFY2(!MergeCheck::holdsAll(sides.base.dictionary(), sides.ours.dictionary(), sides.theirs.dictionary(),
                                       broken, titleOfSecond, merge.report()),
                 qPrintable(QStringLiteral("%1: %2").arg(round).arg(text)));
    }
    QVERIFY(removals > 50);
}

void ItemMergePropertyTest::othersReadWhatWasMerged()
{
    const TemporaryHome home;
    const int files = 40;
    for (int i = 0; i < files; ++i) {
        const Case sides(quint32(70000 + i));
        const ItemMerge merge(sides.base.dictionary(), sides.ours.dictionary(), sides.theirs.dictionary(),
                              titleOfSecond);
        QVERIFY(PropertyList::writeFile(merge.merged(), home.path(QStringLiteral("%1.plist").arg(i))));
        home.write(QStringLiteral("%1.json").arg(i), QJsonDocument::fromVariant(merge.merged()).toJson());
    }
    const QString complaint = runPython(home, "for i in range(" + QByteArray::number(files) +
                                                  "):\n"
                                                  "    with open(f'{i}.plist', 'rb') as file:\n"
                                                  "        read = plistlib.load(file)\n"
                                                  "    with open(f'{i}.json') as file:\n"
                                                  "        assert read == json.load(file), i\n");
    QVERIFY2(complaint.isNull(), qPrintable(complaint));
}

namespace
{
// Without the identifiers that were not wanted: an item makes up or keeps one then.
QVariant asWanted(const QVariant &entry, const QVariant &wanted)
{
    if (entry.typeId() != QMetaType::QVariantMap)
        return entry;
    QVariantMap fields = entry.toMap();
    if (identifierOf(wanted).isEmpty())
        fields.remove(uuidKey);
    if (!fields.contains(childrenKey))
        return fields;
    const QVariantList wantedList = wanted.toMap().value(childrenKey).toList();
    QVariantList list;
    for (const QVariant &child : fields.value(childrenKey).toList())
        list.append(asWanted(child, wantedList.value(list.size())));
    fields.insert(childrenKey, list);
    return fields;
}

// By identifier; none for those that several have.
QHash<QString, KDRBookmark *> itemsIn(const WayfoldBookmarkFolder &root)
{
    QHash<QString, KDRBookmark *> items;
    std::vector<const WayfoldBookmarkFolder *> pending = {&root};
    while (!pending.empty()) {
        const WayfoldBookmarkFolder *const folder = pending.back();
        pending.pop_back();
        for (const KDRBookmarkPtr &item : folder->children()) {
            items[item->uuid()] = items.contains(item->uuid()) ? nullptr : item.get();
            if (item->isFolder())
                pending.push_back(static_cast<const WayfoldBookmarkFolder *>(item.get()));
        }
    }
    return items;
}
} // namespace

// The live tree is what was merged then, and its items are still the same objects.
void ItemMergePropertyTest::treeFollows()
{
    const int rounds = numberFrom("WAYFOLD_MERGE_ROUNDS", 500);
    const int seed = numberFrom("WAYFOLD_MERGE_SEED", 1);
    int kept = 0;
    for (int round = 0; round < rounds; ++round) {
        const Case sides(quint32(seed + round));
        const auto tree = WayfoldBookmarkFolder::bookmarkFromDictionary(sides.ours.dictionary());
        const ItemMerge merge(sides.base.dictionary(), tree->createDictionary(true), sides.theirs.dictionary(),
                              titleOfSecond);
        const QHash<QString, KDRBookmark *> before = itemsIn(*tree);
        std::vector<KDRBookmarkPtr> alive;
        for (KDRBookmark *const item : before)
            alive.push_back(item ? item->shared_from_this() : nullptr);
        TreeUpdate::update(tree, merge.ours(), merge.merged());

        const QString which = QStringLiteral("WAYFOLD_MERGE_ROUNDS=1 WAYFOLD_MERGE_SEED=%1").arg(seed + round);
        const Spread wanted(merge.merged());
        const auto fresh = WayfoldBookmarkFolder::bookmarkFromDictionary(merge.merged());
        QVERIFY2(asWanted(tree->createDictionary(true), merge.merged()) ==
                     asWanted(fresh->createDictionary(true), merge.merged()),
                 qPrintable(which));
        const QHash<QString, KDRBookmark *> after = itemsIn(*tree);
        for (auto item = before.begin(); item != before.end(); ++item) {
            KDRBookmark *const found = after.value(item.key());
            if (!item.value() || !found || found->type() != item.value()->type() ||
                wanted.byIdentifier.value(item.key()).size() != 1)
                continue;
            QVERIFY2(found == item.value(), qPrintable(which + ' ' + item.key()));
            ++kept;
        }
    }
    QVERIFY(kept > rounds);
}

QTEST_GUILESS_MAIN(ItemMergePropertyTest)
#include "ItemMergePropertyTest.moc"
