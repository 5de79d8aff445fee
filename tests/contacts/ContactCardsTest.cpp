#include "platform/contacts/ContactCards.h"

#include <QTest>

using ContactCards::Card;

namespace
{
// A card with these lines between its first and its last.
QByteArray card(const QByteArray &lines)
{
    return "BEGIN:VCARD\r\nVERSION:3.0\r\n" + lines + "\r\nEND:VCARD\r\n";
}

ContactRecord read(const QByteArray &lines)
{
    const std::vector<Card> cards = ContactCards::read(card(lines));
    return cards.empty() ? ContactRecord() : cards.front().record;
}
} // namespace

class ContactCardsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAPerson();
};

void ContactCardsTest::readsAPerson()
{
    const ContactRecord ann = read("UID:ann-1\r\nN:Miller;Ann;Mary;Dr.;Jr.\r\nFN:Dr. Ann Miller Jr.\r\n"
                                   "ORG:Acme\\; Inc.;Sales\r\nURL:https://ann.example.com/a;b,c\r\n"
                                   "TEL;TYPE=HOME:555-0100\r\nTEL;TYPE=CELL,PREF:555-0101\r\n"
                                   "EMAIL;TYPE=work:ann@example.com");
    QCOMPARE(ann.uniqueId, QStringLiteral("ann-1"));
    QVERIFY(!ann.isGroup);
    QCOMPARE(ann.flags, int(ContactRecord::ShowAsPerson));
    QCOMPARE(ann.firstName, QStringLiteral("Ann"));
    QCOMPARE(ann.lastName, QStringLiteral("Miller"));
    QCOMPARE(ann.suffix, QStringLiteral("Jr."));
    QCOMPARE(ann.organization, QStringLiteral("Acme; Inc."));
    QCOMPARE(ann.homePage, QStringLiteral("https://ann.example.com/a;b,c"));
    QCOMPARE(ann.phones.size(), 2u);
    QCOMPARE(ann.phones.at(0).label, QStringLiteral("home"));
    QCOMPARE(ann.phones.at(1).label, QStringLiteral("mobile"));
    QCOMPARE(ann.phones.at(1).value, QStringLiteral("555-0101"));
    QCOMPARE(ann.primaryPhone, 1);
    QCOMPARE(ann.emails.size(), 1u);
    QCOMPARE(ann.emails.at(0).label, QStringLiteral("work"));
    QCOMPARE(ann.emails.at(0).value, QStringLiteral("ann@example.com"));
}

QTEST_APPLESS_MAIN(ContactCardsTest)
#include "ContactCardsTest.moc"
