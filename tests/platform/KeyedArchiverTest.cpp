#include "platform/files/KeyedArchiver.h"
#include "platform/files/PropertyList.h"
#include "tests/support/LoggedMessages.h"

#include <QTest>

namespace
{
// Something with a title, values, and others of its kind below it.
class Node : public KeyedCoding
{
public:
    QString title;
    QVariant value;
    std::shared_ptr<KeyedCoding> friendNode;
    std::vector<std::shared_ptr<KeyedCoding>> children;
    QString className = QStringLiteral("Node");

    QString classNameForCoder() const override { return className; }
    void encodeWithCoder(KeyedArchiver &coder) const override
    {
        coder.encodeValueForKey(title, "_title");
        coder.encodeValueForKey(value, "_value");
        coder.encodeObjectForKey(friendNode, "_friend");
        coder.encodeObjectsForKey(children, "_children");
    }
    void initWithCoder(const KeyedUnarchiver &coder) override
    {
        title = coder.decodeStringForKey("_title");
        value = coder.decodeValueForKey("_value");
        friendNode = coder.decodeObjectForKey("_friend");
        children = coder.decodeObjectsForKey("_children");
    }
};

class OtherNode : public Node
{
public:
    OtherNode() { className = QStringLiteral("OtherNode"); }
};

std::shared_ptr<Node> nodeWithTitle(const QString &title)
{
    auto node = std::make_shared<Node>();
    node->title = title;
    return node;
}

std::shared_ptr<Node> travelled(const Node &node)
{
    return std::dynamic_pointer_cast<Node>(
        KeyedUnarchiver::unarchiveObjectWithData(KeyedArchiver::archivedDataWithRootObject(node)));
}
} // namespace

class KeyedArchiverTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void values_data();
    void values();
    void noneStaysNone();
    void emptyStringIsNotNone();
    void valueOfAnotherTypeIsNoString();
    void objectsInsideObjects();
    void classIsKept();
    void unknownClassesAreLeftOut();
    void unknownRootIsNone();
    void isAPropertyList();
    void damagedDataIsNone_data();
    void damagedDataIsNone();
    void cutShortIsNone();
    void depth();
};

void KeyedArchiverTest::initTestCase()
{
    KeyedUnarchiver::registerClass("Node", [] { return std::make_shared<Node>(); });
    KeyedUnarchiver::registerClass("OtherNode", [] { return std::make_shared<OtherNode>(); });
}

void KeyedArchiverTest::values_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("string") << QVariant(QStringLiteral("a <b> & \u00e9\r\n"));
    QTest::newRow("string behind a byte order mark") << QVariant(QStringLiteral("\ufeffa"));
    QTest::newRow("integer") << QVariant(qlonglong(-7));
    QTest::newRow("real") << QVariant(0.1);
    QTest::newRow("boolean") << QVariant(true);
    QTest::newRow("data") << QVariant(QByteArray("\0\1\2", 3));
    QTest::newRow("list") << QVariant(QVariantList{"a", qlonglong(1)});
    QTest::newRow("dictionary") << QVariant(QVariantMap{{"", "empty key"}});
}

void KeyedArchiverTest::values()
{
    QFETCH(QVariant, value);
    Node node;
    node.value = value;
    const auto copy = travelled(node);
    QVERIFY(copy);
    QCOMPARE(copy->value, value);
    QCOMPARE(copy->value.metaType(), value.metaType());
}

void KeyedArchiverTest::noneStaysNone()
{
    const auto copy = travelled(Node());
    QVERIFY(copy);
    QVERIFY(copy->title.isNull());
    QVERIFY(!copy->value.isValid());
    QVERIFY(!copy->friendNode);
    QVERIFY(copy->children.empty());
    const QVariantMap archive = PropertyList::fromData(KeyedArchiver::archivedDataWithRootObject(Node())).toMap();
    QVERIFY(!archive.contains("_title"));
    QVERIFY(!archive.contains("_friend"));
}

void KeyedArchiverTest::emptyStringIsNotNone()
{
    const auto copy = travelled(*nodeWithTitle(""));
    QVERIFY(copy->title.isEmpty() && !copy->title.isNull());
}

void KeyedArchiverTest::valueOfAnotherTypeIsNoString()
{
    const QByteArray archive = PropertyList::toXml(QVariantMap{{"$class", "Node"}, {"_title", 7}, {"_children", "x"}});
    const auto node = std::dynamic_pointer_cast<Node>(KeyedUnarchiver::unarchiveObjectWithData(archive));
    QVERIFY(node);
    QVERIFY(node->title.isNull());
    QVERIFY(node->children.empty());
}

void KeyedArchiverTest::objectsInsideObjects()
{
    Node root;
    root.friendNode = nodeWithTitle("friend");
    root.children = {nodeWithTitle("a"), nullptr, nodeWithTitle("b")};
    std::static_pointer_cast<Node>(root.children[0])->children = {nodeWithTitle("below a")};
    const auto copy = travelled(root);
    QVERIFY(copy);
    QCOMPARE(std::static_pointer_cast<Node>(copy->friendNode)->title, "friend");
    QCOMPARE(copy->children.size(), 2);
    const auto a = std::static_pointer_cast<Node>(copy->children[0]);
    QCOMPARE(a->title, "a");
    QCOMPARE(std::static_pointer_cast<Node>(a->children.at(0))->title, "below a");
    QCOMPARE(std::static_pointer_cast<Node>(copy->children[1])->title, "b");
}

void KeyedArchiverTest::classIsKept()
{
    const auto copy = travelled(OtherNode());
    QVERIFY(std::dynamic_pointer_cast<OtherNode>(copy));
    QVERIFY(!std::dynamic_pointer_cast<OtherNode>(travelled(Node())));
}

void KeyedArchiverTest::unknownClassesAreLeftOut()
{
    const auto stranger = nodeWithTitle("stranger");
    stranger->className = QStringLiteral("Stranger");
    Node root;
    root.friendNode = stranger;
    root.children = {nodeWithTitle("a"), stranger, nodeWithTitle("b")};
    const auto copy = travelled(root);
    QVERIFY(!copy->friendNode);
    QCOMPARE(copy->children.size(), 2);
}

void KeyedArchiverTest::unknownRootIsNone()
{
    Node stranger;
    stranger.className = QStringLiteral("Stranger");
    QVERIFY(!travelled(stranger));
}

void KeyedArchiverTest::isAPropertyList()
{
    const QVariantMap list =
        PropertyList::fromData(KeyedArchiver::archivedDataWithRootObject(*nodeWithTitle("a"))).toMap();
    QCOMPARE(list.value("_title"), "a");
}

void KeyedArchiverTest::damagedDataIsNone_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("null") << QByteArray();
    QTest::newRow("no archive") << QByteArray("hello");
    QTest::newRow("another property list") << PropertyList::toXml(QVariantMap{{"a", "b"}});
    QTest::newRow("a list") << PropertyList::toXml(QVariantList{"a"});
    QTest::newRow("class is no string") << PropertyList::toXml(QVariantMap{{"$class", QVariantList{"Node"}}});
}

void KeyedArchiverTest::damagedDataIsNone()
{
    QFETCH(QByteArray, data);
    const LoggedMessages messages;
    QVERIFY(!KeyedUnarchiver::unarchiveObjectWithData(data));
}

void KeyedArchiverTest::cutShortIsNone()
{
    const LoggedMessages messages;
    const QByteArray whole = KeyedArchiver::archivedDataWithRootObject(*nodeWithTitle("a"));
    QVERIFY(KeyedUnarchiver::unarchiveObjectWithData(whole));
    for (qsizetype size = 0; size < whole.size() - 1; size++)
        QVERIFY2(!KeyedUnarchiver::unarchiveObjectWithData(whole.left(size)), qPrintable(QString::number(size)));
}

void KeyedArchiverTest::depth()
{
    // An object and the list that holds it: two levels of the property list each.
    auto node = nodeWithTitle("bottom");
    for (int depth = 1; depth < PropertyList::maximumDepth / 2; depth++) {
        auto parent = std::make_shared<Node>();
        parent->children = {node};
        node = parent;
    }
    QVERIFY(travelled(*node));

    for (int depth = 0; depth < 2000; depth++) {
        auto parent = std::make_shared<Node>();
        parent->children = {node};
        node = parent;
    }
    QVERIFY(KeyedArchiver::archivedDataWithRootObject(*node).isEmpty());
}

QTEST_GUILESS_MAIN(KeyedArchiverTest)
#include "KeyedArchiverTest.moc"
