#include "platform/contacts/ContactIndex.h"
#include "platform/base/StringRules.h"
#include "tests/support/MemoryContacts.h"

#include <QRandomGenerator>
#include <QTest>

namespace
{
using Contacts = MemoryContacts;

QStringList identifiersOf(const std::vector<ContactRecordPtr> &records)
{
    QStringList found;
    for (const ContactRecordPtr &record : records)
        found.append(record->uniqueId);
    return found;
}

ContactRecord ada(const QString &id = "ada")
{
    return Contacts::person(id, "Ada", "Lovelace", {"ada@analytical.example", "countess@home.example"});
}
} // namespace

class ContactIndexTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { _index = ContactIndex(); }
    void holdsNothingAtFirst();
    void putAndRemove();
    void aCardTakesThePlaceOfItsPredecessor();
    void cardWithoutIdentifierIsNotTaken();
    void keepsTheOrderInWhichCardsCame();
    void groupsStandApart();
    void personBecomesAGroup();
    void clearForgetsAll();
    void searchIsBlindToCaseByUnicode_data();
    void searchIsBlindToCaseByUnicode();
    void searchReachesIntoNoOtherField();
    void fieldMayHoldALineEnd();
    void bothWaysOfSearchingAgree_data();
    void bothWaysOfSearchingAgree();
    void personLikeNeedsNameAndAddress_data();
    void personLikeNeedsNameAndAddress();
    void personLikeIsTheFirst();
    void personLikeFollowsChanges();
    void personLikeFollowsRemovals();
    void manyCardsOfOneAddress();

private:
    void put(const ContactRecord &record) { _index.put(std::make_shared<ContactRecord>(record)); }
    QStringList found(const QString &text) const { return identifiersOf(_index.peopleContaining(text)); }
    QString like(const ContactRecord &card) const
    {
        const ContactRecordPtr record = _index.personLike(card);
        return record ? record->uniqueId : QString();
    }

    ContactIndex _index;
};

void ContactIndexTest::holdsNothingAtFirst()
{
    QCOMPARE(_index.size(), std::size_t(0));
    QVERIFY(!_index.record("ada"));
    QVERIFY(_index.people().empty());
    QVERIFY(_index.groups().empty());
    QVERIFY(found("a").isEmpty());
    QVERIFY(!_index.personLike(ada()));
}

void ContactIndexTest::putAndRemove()
{
    put(ada());
    put(Contacts::company("engines", "Engines Ltd"));
    QCOMPARE(_index.size(), std::size_t(2));
    QCOMPARE(_index.record("ada")->firstName, QString("Ada"));
    QVERIFY(!_index.record("ADA"));
    _index.remove("ada");
    _index.remove("nobody");
    QCOMPARE(_index.size(), std::size_t(1));
    QVERIFY(!_index.record("ada"));
    QVERIFY(found("Ada").isEmpty());
    QCOMPARE(found("Engines"), QStringList{"engines"});
}

void ContactIndexTest::aCardTakesThePlaceOfItsPredecessor()
{
    put(ada());
    put(Contacts::person("bob", "Bob", "Babbage"));
    put(Contacts::person("ada", "Augusta", "King"));
    QCOMPARE(_index.size(), std::size_t(2));
    QCOMPARE(identifiersOf(_index.people()), QStringList({"ada", "bob"}));
    QCOMPARE(found("Augusta"), QStringList{"ada"});
    QVERIFY(found("Lovelace").isEmpty());
    QVERIFY(found("analytical").isEmpty());
}

void ContactIndexTest::cardWithoutIdentifierIsNotTaken()
{
    put(ada(QString()));
    put(ada(""));
    QCOMPARE(_index.size(), std::size_t(0));
    QVERIFY(!_index.record(QString()));
    QVERIFY(_index.people().empty());
}

// Also when those before them go, and when so many have gone that the gaps are closed.
void ContactIndexTest::keepsTheOrderInWhichCardsCame()
{
    QStringList expected;
    for (int i = 0; i < 100; ++i) {
        const QString id = QString::number(i);
        put(Contacts::person(id, "Card", id, {id + "@example.org"}));
        expected.append(id);
    }
    for (int i = 0; i < 97; ++i) {
        const QString gone = QString::number(i);
        _index.remove(gone);
        expected.removeOne(gone);
        const QString added = "new " + gone;
        if (i % 3 == 0) {
            put(Contacts::person(added, "Card", added, {added + "@example.org"}));
            expected.append(added);
        }
        QCOMPARE(identifiersOf(_index.people()), expected);
        QCOMPARE(found("card"), expected);
        QCOMPARE(_index.size(), std::size_t(expected.size()));
    }
    for (const QString &id : std::as_const(expected)) {
        QCOMPARE(_index.record(id)->uniqueId, id);
        QCOMPARE(like(Contacts::person("?", "Card", id, {id + "@example.org"})), id);
    }
}

void ContactIndexTest::groupsStandApart()
{
    put(Contacts::group("friends", "Friends", {"ada"}));
    put(ada());
    ContactRecord odd = Contacts::group("odd", "Odd", {});
    odd.firstName = "Friends";
    odd.emails = {{"", "friends@example.org"}};
    put(odd);
    QCOMPARE(identifiersOf(_index.people()), QStringList{"ada"});
    QCOMPARE(identifiersOf(_index.groups()), QStringList({"friends", "odd"}));
    QVERIFY(found("Friends").isEmpty());
    QVERIFY(!ContactIndex::contains(odd, "Friends"));
    QVERIFY(like(odd).isNull());
}

void ContactIndexTest::personBecomesAGroup()
{
    put(ada());
    put(Contacts::group("ada", "Adas", {}));
    QVERIFY(found("Ada").isEmpty());
    QVERIFY(like(ada("?")).isNull());
    QVERIFY(_index.people().empty());
    put(ada());
    QCOMPARE(found("Ada"), QStringList{"ada"});
    QCOMPARE(like(ada("?")), QString("ada"));
    QVERIFY(_index.groups().empty());
}

void ContactIndexTest::clearForgetsAll()
{
    put(ada());
    _index.clear();
    QCOMPARE(_index.size(), std::size_t(0));
    QVERIFY(!_index.record("ada"));
    QVERIFY(found("Ada").isEmpty());
    QVERIFY(like(ada("?")).isNull());
}

void ContactIndexTest::searchIsBlindToCaseByUnicode_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isFound");
    QTest::newRow("capitals") << "Ada"
                              << "ADA" << true;
    QTest::newRow("sharp s") << QString::fromUtf8("Größe") << QString::fromUtf8("GRÖSSE") << true;
    QTest::newRow("Greek") << QString::fromUtf8("ΣΊΣΥΦΟΣ") << QString::fromUtf8("σίσυφος") << true;
    QTest::newRow("accent of its own") << QString::fromUtf8("René") << QString::fromUtf8("rene\u0301") << true;
    QTest::newRow("without the accent") << QString::fromUtf8("René") << QString("rene") << false;
    QTest::newRow("beyond 16 bits") << QString::fromUtf8("𐐀da") << QString::fromUtf8("𐐨DA") << true;
    QTest::newRow("nothing") << "Ada"
                             << "" << false;
    QTest::newRow("none") << "Ada" << QString() << false;
    QTest::newRow("no pattern") << "Ada"
                                << "A.a" << false;
}

void ContactIndexTest::searchIsBlindToCaseByUnicode()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(bool, isFound);
    const ContactRecord record = Contacts::person("one", QString(), name);
    put(record);
    QCOMPARE(found(text), isFound ? QStringList{"one"} : QStringList());
    QCOMPARE(ContactIndex::contains(record, text), isFound);
}

void ContactIndexTest::searchReachesIntoNoOtherField()
{
    ContactRecord record = ada();
    record.organization = "Engines";
    record.homePage = "https://ada.example/";
    record.suffix = "Countess";
    record.phones = {{"home", "555"}};
    put(record);
    const QStringList fields = {
        "Ada", "Lovelace", "Engines", "https://ada.example/", "ada@analytical.example", "countess@home.example"};
    for (const QString &field : fields)
        QCOMPARE(found(field), QStringList{"ada"});
    for (int i = 1; i < fields.size(); ++i) {
        for (const char *between : {"", " ", "\n", ";", "\t"}) {
            const QString both = fields[i - 1] + between + fields[i];
            QVERIFY(found(both).isEmpty());
            QVERIFY(!ContactIndex::contains(record, both));
        }
    }
    QVERIFY(found("\n").isEmpty());
    QVERIFY(found("555").isEmpty());
}

void ContactIndexTest::fieldMayHoldALineEnd()
{
    put(Contacts::person("two lines", "Ada\nAugusta", "King"));
    put(Contacts::person("two fields", "Ada", "Augusta King"));
    QCOMPARE(found("ada\naugusta"), QStringList{"two lines"});
    QCOMPARE(found("\n"), QStringList{"two lines"});
}

void ContactIndexTest::bothWaysOfSearchingAgree_data()
{
    QTest::addColumn<QStringList>("pieces");
    const QStringList pieces = {"a",
                                "A",
                                "b",
                                "?",
                                "\n",
                                "ss",
                                "e",
                                " ",
                                ".",
                                "@",
                                QString::fromUtf8("ß"),
                                QString::fromUtf8("é"),
                                QString::fromUtf8("ﬁ"),
                                QString::fromUtf8("İ"),
                                QString::fromUtf8("𐐀"),
                                QString(QChar(0x301)),
                                QString(QChar(0x345)),
                                QString(QChar(u'\0'))};
    QTest::newRow("texts") << pieces;
    QTest::newRow("damaged texts") << (pieces + QStringList{QString(QChar(0xd800)), QString(QChar(0xdc00))});
}

void ContactIndexTest::bothWaysOfSearchingAgree()
{
    QFETCH(QStringList, pieces);
    QRandomGenerator random(1);
    const auto text = [&] {
        QString made;
        for (int i = random.bounded(4); i > 0; --i)
            made += pieces[random.bounded(int(pieces.size()))];
        return made;
    };
    for (int i = 0; i < 300; ++i) {
        ContactRecord record = Contacts::person(QString::number(i), text(), text(), {text(), text()});
        record.organization = text();
        record.homePage = text();
        put(record);
    }
    const bool isDamaged = pieces.contains(QString(QChar(0xd800)));
    int hits = 0;
    for (int i = 0; i < 300; ++i) {
        const QString part = text();
        QStringList expected;
        for (const ContactRecordPtr &record : _index.people()) {
            const bool isIn = ContactIndex::contains(*record, part);
            if (isIn)
                expected.append(record->uniqueId);
            const QStringList fields = {record->firstName, record->lastName,        record->organization,
                                        record->homePage,  record->emails[0].value, record->emails[1].value};
            if (!isDamaged)
                QCOMPARE(isIn, std::any_of(fields.begin(), fields.end(), [&](const QString &field) {
                             return StringRules::containsIgnoringCase(field, part);
                         }));
        }
        QCOMPARE(found(part), expected);
        hits += int(expected.size());
    }
    QVERIFY(hits > 300);
}

void ContactIndexTest::personLikeNeedsNameAndAddress_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("last");
    QTest::addColumn<QString>("organization");
    QTest::addColumn<QStringList>("addresses");
    QTest::addColumn<bool>("isMeant");
    const QString address = "ada@analytical.example";
    QTest::newRow("same") << "Ada"
                          << "Lovelace" << QString() << QStringList{address} << true;
    QTest::newRow("second address") << "Ada"
                                    << "Lovelace" << QString() << QStringList{"countess@home.example"} << true;
    QTest::newRow("one of two") << "Ada"
                                << "Lovelace" << QString() << QStringList{"new@x.example", address} << true;
    QTest::newRow("capitals") << "Ada"
                              << "Lovelace" << QString() << QStringList{"ADA@Analytical.EXAMPLE"} << true;
    QTest::newRow("other first name") << "Bob"
                                      << "Lovelace" << QString() << QStringList{address} << false;
    QTest::newRow("other last name") << "Ada"
                                     << "King" << QString() << QStringList{address} << false;
    QTest::newRow("other organization") << "Ada"
                                        << "Lovelace"
                                        << "Engines" << QStringList{address} << false;
    QTest::newRow("other address") << "Ada"
                                   << "Lovelace" << QString() << QStringList{"ada@other.example"} << false;
    QTest::newRow("part of an address") << "Ada"
                                        << "Lovelace" << QString() << QStringList{"ada"} << false;
    QTest::newRow("no address") << "Ada"
                                << "Lovelace" << QString() << QStringList() << false;
    QTest::newRow("names changed over") << "Lovelace"
                                        << "Ada" << QString() << QStringList{address} << false;
}

void ContactIndexTest::personLikeNeedsNameAndAddress()
{
    QFETCH(QString, first);
    QFETCH(QString, last);
    QFETCH(QString, organization);
    QFETCH(QStringList, addresses);
    QFETCH(bool, isMeant);
    put(ada());
    ContactRecord card = Contacts::person("foreign", first, last, addresses);
    card.organization = organization;
    QCOMPARE(like(card), isMeant ? QString("ada") : QString());
}

void ContactIndexTest::personLikeIsTheFirst()
{
    put(ada("one"));
    put(ada("two"));
    QCOMPARE(like(ada("?")), QString("one"));
    ContactRecord card = ada("?");
    std::swap(card.emails[0], card.emails[1]);
    QCOMPARE(like(card), QString("one"));
    _index.remove("one");
    QCOMPARE(like(ada("?")), QString("two"));
}

void ContactIndexTest::personLikeFollowsChanges()
{
    put(ada());
    put(Contacts::person("ada", "Ada", "Lovelace", {"new@analytical.example"}));
    QVERIFY(like(ada("?")).isNull());
    QCOMPARE(like(Contacts::person("?", "Ada", "Lovelace", {"new@analytical.example"})), QString("ada"));
    put(Contacts::person("ada", "Ada", "King", {"new@analytical.example"}));
    QVERIFY(like(Contacts::person("?", "Ada", "Lovelace", {"new@analytical.example"})).isNull());
}

void ContactIndexTest::personLikeFollowsRemovals()
{
    put(ada());
    put(Contacts::person("bob", "Bob", "Babbage", {"bob@analytical.example"}));
    _index.remove("ada");
    QVERIFY(like(ada("?")).isNull());
    QCOMPARE(like(Contacts::person("?", "Bob", "Babbage", {"bob@analytical.example"})), QString("bob"));
}

// An address that everybody has, as at a firm, may not make the time quadratic: this would take minutes.
void ContactIndexTest::manyCardsOfOneAddress()
{
    constexpr int cards = 50'000;
    for (int i = 0; i < cards; ++i)
        put(Contacts::person(QString::number(i), "Info", QString(), {"info@firm.example"}));
    for (int i = 0; i < cards; ++i)
        QCOMPARE(like(Contacts::person("?", "Info", QString(), {"info@firm.example"})), QString("0"));
    for (int i = 0; i < cards; ++i)
        _index.remove(QString::number(cards - 1 - i));
    QCOMPARE(_index.size(), std::size_t(0));
    QVERIFY(like(Contacts::person("?", "Info", QString(), {"info@firm.example"})).isNull());
}

QTEST_GUILESS_MAIN(ContactIndexTest)
#include "ContactIndexTest.moc"
