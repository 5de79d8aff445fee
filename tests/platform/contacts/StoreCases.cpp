#include "tests/platform/contacts/StoreCases.h"

#include "platform/base/NotificationCenter.h"
#include "platform/base/PlatformNotifications.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace
{
// The smallest PNG that there is.
const QByteArray pixel = QByteArray::fromBase64(
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==");

QByteArray cardWith(const QByteArray &lines, const QByteArray &version = "3.0")
{
    QByteArray text = "BEGIN:VCARD\nVERSION:" + version + "\n" + lines + "END:VCARD\n";
    return text.replace("\n", "\r\n");
}

QByteArray adaWithout(const QByteArray &left)
{
    QByteArray lines = "FN:Ada Lovelace\nN:Lovelace;Ada;;;\nEMAIL;TYPE=WORK:ada@analytical.example\n";
    return cardWith(lines.replace(left, ""));
}

QByteArray withIdentifier(QByteArray card, const QString &uniqueId)
{
    return card.replace("END:VCARD", "UID:" + uniqueId.toUtf8() + "\r\nEND:VCARD");
}

// Groups are written in two forms: as version 4 has them, and as some programs write them in version 3.
QByteArray groupCard(const QByteArray &form, const QByteArray &name, const QStringList &members)
{
    const bool isFour = form == "KIND";
    const QByteArray prefix = isFour ? QByteArray() : QByteArray("X-ADDRESSBOOKSERVER-");
    QByteArray lines = "FN:" + name + "\nN:" + name + ";;;;\n" + prefix + "KIND:group\n";
    for (const QString &member : members)
        lines += prefix + "MEMBER:urn:uuid:" + member.toUtf8() + "\n";
    return cardWith(lines, isFour ? "4.0" : "3.0");
}

void groupForms()
{
    QTest::addColumn<QByteArray>("form");
    QTest::newRow("version 4") << QByteArray("KIND");
    QTest::newRow("version 3") << QByteArray("X-ADDRESSBOOKSERVER-KIND");
}

QStringList namesOf(const std::vector<ContactRecordPtr> &records)
{
    QStringList names;
    for (const ContactRecordPtr &record : records)
        names.append(record->isGroup ? record->groupName : record->firstName);
    return names;
}

QStringList identifiersOf(const std::vector<ContactRecordPtr> &records)
{
    QStringList found;
    for (const ContactRecordPtr &record : records)
        found.append(record->uniqueId);
    return found;
}

// What Python's vobject reads of the card: full name, family name, given name, address, number, organization, home
// page and the length of the picture, each on a line.
QString asVobjectReads(const QByteArray &card)
{
    static const char script[] =
        "import sys, vobject\n"
        "card = vobject.readOne(sys.stdin.buffer.read().decode('utf-8'))\n"
        "print('\\n'.join([card.fn.value, card.n.value.family, card.n.value.given, card.email.value,\n"
        "    card.tel.value, card.org.value[0], card.url.value, str(len(card.photo.value))]))\n";
    QTemporaryDir folder;
    QFile file(folder.filePath("card.vcf"));
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write(card);
    file.close();
    QProcess python;
    python.setStandardInputFile(file.fileName());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PYTHONIOENCODING", "utf-8");
    python.setProcessEnvironment(environment);
    python.start("/usr/bin/python3", {"-c", script}); // the system's, which has the library
    if (!python.waitForFinished(60'000) || python.exitCode() != 0)
        qWarning().noquote() << python.errorString() << python.readAllStandardError();
    return QString::fromUtf8(python.readAllStandardOutput());
}

// The identifier that the added card gets, null when it cannot be added.
QString addedTo(ContactStore &store, const QByteArray &vCard)
{
    bool isDone = false;
    QString uniqueId;
    store.add(vCard, [&](const QString &id) {
        isDone = true;
        uniqueId = id;
    });
    if (!QTest::qWaitFor([&] { return isDone; }, 30'000))
        qWarning("the card was neither added nor refused");
    return uniqueId;
}
} // namespace

void StoreCases::init()
{
    _contacts = makeContacts();
    QVERIFY(QTest::qWaitFor([this] { return store().state() == ContactStore::Ready; }, 30'000));
    QTest::qWait(0); // what was told about the loading has come
    QCoreApplication::processEvents();
    noticesFromHere = noticesFromElsewhere = 0;
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification &) { ++noticesFromHere; },
        PlatformNotifications::kABDatabaseChangedNotification, &store());
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification &) { ++noticesFromElsewhere; },
        PlatformNotifications::kABDatabaseChangedExternallyNotification, &store());
}

void StoreCases::cleanup()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    _contacts.reset();
}

ContactRecordPtr StoreCases::awaited(const QString &uniqueId) const
{
    if (!QTest::qWaitFor([&] { return store().recordForUniqueId(uniqueId) != nullptr; }, 30'000))
        qWarning().noquote() << "never came:" << uniqueId;
    return store().recordForUniqueId(uniqueId);
}

void StoreCases::emptyContactsAreReady()
{
    QCOMPARE(store().state(), ContactStore::Ready);
    QVERIFY(store().people().empty());
    QVERIFY(!store().recordForUniqueId("nobody"));
    QVERIFY(!store().recordForUniqueId(QString()));
}

void StoreCases::cardIsFoundByItsIdentifier()
{
    const QString id = elsewhere().write(adaWithout(""));
    QVERIFY(!id.isEmpty());
    const ContactRecordPtr record = awaited(id);
    QVERIFY(record);
    QCOMPARE(record->uniqueId, id);
    QCOMPARE(record->firstName, QString("Ada"));
    QVERIFY(!store().recordForUniqueId(id + "x"));
    QCOMPARE(identifiersOf(store().people()), QStringList{id});
}

void StoreCases::personHasAllThatTheListsShow()
{
    const ContactRecordPtr record = written(cardWith("FN:Prof. Grace Hopper, PhD\n"
                                                     "N:Hopper;Grace;Brewster;Prof.;PhD\n"
                                                     "ORG:Navy;Computing\n"
                                                     "URL:https://grace.example/\n"
                                                     "TEL;TYPE=HOME,VOICE:+1 555 1\n"
                                                     "TEL;TYPE=WORK,VOICE,PREF:+1 555 2\n"
                                                     "EMAIL;TYPE=WORK:grace@navy.example\n"
                                                     "EMAIL;TYPE=HOME,PREF:grace@home.example\n"));
    QVERIFY(record);
    QVERIFY(!record->isGroup);
    QCOMPARE(record->flags & ContactRecord::ShowAsMask, int(ContactRecord::ShowAsPerson));
    QCOMPARE(record->firstName, QString("Grace"));
    QCOMPARE(record->lastName, QString("Hopper"));
    QCOMPARE(record->suffix, QString("PhD"));
    QCOMPARE(record->organization, QString("Navy"));
    QCOMPARE(record->homePage, QString("https://grace.example/"));
    QCOMPARE(record->phones.size(), std::size_t(2));
    QCOMPARE(record->phones[0].value, QString("+1 555 1"));
    QCOMPARE(record->phones[0].label, QString("home"));
    QCOMPARE(record->phones[1].value, QString("+1 555 2"));
    QCOMPARE(record->phones[1].label, QString("work"));
    QCOMPARE(record->primaryPhone, 1);
    QCOMPARE(record->emails.size(), std::size_t(2));
    QCOMPARE(record->emails[0].value, QString("grace@navy.example"));
    QCOMPARE(record->emails[0].label, QString("work"));
    QCOMPARE(record->emails[1].value, QString("grace@home.example"));
    QCOMPARE(record->emails[1].label, QString("home"));
    QCOMPARE(record->primaryEmail, 1);
}

void StoreCases::companyIsShownAsOne()
{
    const ContactRecordPtr record =
        written(cardWith("FN:Engines Ltd\nN:;;;;\nORG:Engines Ltd\nX-ABSHOWAS:COMPANY\nEMAIL:info@engines.example\n"));
    QVERIFY(record);
    QCOMPARE(record->flags & ContactRecord::ShowAsMask, int(ContactRecord::ShowAsCompany));
    QCOMPARE(record->organization, QString("Engines Ltd"));
}

void StoreCases::cardWithoutNames()
{
    const ContactRecordPtr record = written(cardWith("FN:\nN:;;;;\nEMAIL:nobody@example.org\n"));
    QVERIFY(record);
    QVERIFY(record->firstName.isNull());
    QVERIFY(record->lastName.isNull());
    QVERIFY(record->suffix.isNull());
    QVERIFY(record->organization.isNull());
    QVERIFY(record->homePage.isNull());
    QVERIFY(record->phones.empty());
    QCOMPARE(record->emails.size(), std::size_t(1));
    QCOMPARE(record->primaryEmail, 0);
}

void StoreCases::signsOfManyScripts()
{
    const QString first = QString::fromUtf8("Zoë, die \"Große\"; 花子 🙂");
    QByteArray escaped = first.toUtf8();
    escaped.replace(",", "\\,").replace(";", "\\;");
    const ContactRecordPtr record = written(cardWith("FN:Z\nN:Δοκιμή;" + escaped + ";;;\n"));
    QVERIFY(record);
    QCOMPARE(record->firstName, first);
    QCOMPARE(record->lastName, QString::fromUtf8("Δοκιμή"));
}

void StoreCases::group_data()
{
    groupForms();
}

void StoreCases::group()
{
    QFETCH(QByteArray, form);
    const QString ada = elsewhere().write(cardWith("FN:Ada\nN:;Ada;;;\n"));
    const QString bob = elsewhere().write(cardWith("FN:Bob\nN:;Bob;;;\n"));
    const ContactRecordPtr friends = written(groupCard(form, "Friends", {bob, "nobody-has-this", ada}));
    QVERIFY(friends);
    QVERIFY(awaited(ada) && awaited(bob));
    QVERIFY(friends->isGroup);
    QCOMPARE(friends->groupName, QString("Friends"));
    QCOMPARE(namesOf(store().membersOfGroup(*friends)), QStringList({"Bob", "Ada"}));
    QVERIFY(store().subgroupsOfGroup(*friends).empty());
    QCOMPARE(identifiersOf(store().people()).size(), 2); // the group is none of them
    QCOMPARE(namesOf(store().groups()), QStringList({"Friends"}));
    QVERIFY(store().recordsContainingSubstring("Friends").empty());
    QVERIFY(!store().recordContainsSubstring(*friends, "Friends"));
}

void StoreCases::groupTellsEachMemberOnce_data()
{
    groupForms();
}

void StoreCases::groupTellsEachMemberOnce()
{
    QFETCH(QByteArray, form);
    const QString ada = elsewhere().write(cardWith("FN:Ada\nN:;Ada;;;\n"));
    const ContactRecordPtr twice = written(groupCard(form, "Twice", {ada, ada}));
    QVERIFY(awaited(ada) && twice);
    QCOMPARE(namesOf(store().membersOfGroup(*twice)), QStringList({"Ada"}));
}

void StoreCases::groupInGroup_data()
{
    groupForms();
}

void StoreCases::groupInGroup()
{
    QFETCH(QByteArray, form);
    const QString ada = elsewhere().write(cardWith("FN:Ada\nN:;Ada;;;\n"));
    const QString inner = elsewhere().write(groupCard(form, "Inner", {ada}));
    const ContactRecordPtr outer = written(groupCard(form, "Outer", {inner, ada}));
    QVERIFY(awaited(ada) && awaited(inner) && outer);
    QCOMPARE(namesOf(store().membersOfGroup(*outer)), QStringList({"Ada"}));
    QCOMPARE(namesOf(store().subgroupsOfGroup(*outer)), QStringList({"Inner"}));
}

void StoreCases::groupsInACircle_data()
{
    groupForms();
}

void StoreCases::groupsInACircle()
{
    QFETCH(QByteArray, form);
    const QString first = elsewhere().write(groupCard(form, "First", {}));
    const QString second = elsewhere().write(groupCard(form, "Second", {first}));
    QVERIFY(awaited(first) && awaited(second));
    elsewhere().change(first, withIdentifier(groupCard(form, "First", {second, first}), first));
    QTRY_COMPARE_WITH_TIMEOUT(namesOf(store().subgroupsOfGroup(*awaited(first))), QStringList({"Second", "First"}),
                              30'000);
    QCOMPARE(namesOf(store().subgroupsOfGroup(*awaited(second))), QStringList({"First"}));
    QVERIFY(store().membersOfGroup(*awaited(first)).empty());
}

void StoreCases::searchFindsFiveProperties_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isFound");
    QTest::newRow("first name") << "grac" << true;
    QTest::newRow("last name") << "HOPPER" << true;
    QTest::newRow("organization") << "navy" << true;
    QTest::newRow("home page") << "cobol.example" << true;
    QTest::newRow("first address") << "one@mail" << true;
    QTest::newRow("last address") << "TWO@MAIL.example" << true;
    QTest::newRow("whole name, which are two fields") << "Grace Hopper" << false;
    QTest::newRow("end of one and start of the next") << "eHop" << false;
    QTest::newRow("suffix") << "PhD" << false;
    QTest::newRow("telephone") << "555" << false;
    QTest::newRow("note") << "remember" << false;
    QTest::newRow("nothing") << "" << false;
    QTest::newRow("line end") << "\n" << false;
    QTest::newRow("nobody") << "xyz" << false;
}

void StoreCases::searchFindsFiveProperties()
{
    QFETCH(QString, text);
    QFETCH(bool, isFound);
    const ContactRecordPtr record = written(cardWith("FN:Grace Hopper\nN:Hopper;Grace;;;PhD\nORG:Navy\n"
                                                     "URL:https://cobol.example/\nTEL:555\nNOTE:remember\n"
                                                     "EMAIL:one@mail.example\nEMAIL:two@mail.example\n"));
    QVERIFY(record);
    const QStringList expected = isFound ? QStringList{record->uniqueId} : QStringList();
    QCOMPARE(identifiersOf(store().recordsContainingSubstring(text)), expected);
    QCOMPARE(store().recordContainsSubstring(*record, text), isFound);
}

void StoreCases::changeByAnotherProgramIsSeen()
{
    const ContactRecordPtr before = written(adaWithout(""));
    QVERIFY(before);
    const quint64 generation = store().generation();
    QTRY_VERIFY(noticesFromElsewhere > 0);
    noticesFromElsewhere = 0;
    elsewhere().change(before->uniqueId,
                       withIdentifier(adaWithout("EMAIL;TYPE=WORK:ada@analytical.example\n"), before->uniqueId));
    QTRY_VERIFY_WITH_TIMEOUT(store().recordForUniqueId(before->uniqueId)->emails.empty(), 30'000);
    QVERIFY(store().generation() > generation);
    QTRY_VERIFY(noticesFromElsewhere > 0);
    QCOMPARE(noticesFromHere, 0);
    QCOMPARE(before->emails.size(), std::size_t(1)); // whoever holds the old one keeps it
}

void StoreCases::changedCardIsSearchedAsItIsNow()
{
    const ContactRecordPtr before = written(adaWithout(""));
    QVERIFY(before);
    QByteArray changed = adaWithout("");
    changed.replace("analytical", "difference");
    elsewhere().change(before->uniqueId, withIdentifier(changed, before->uniqueId));
    QTRY_COMPARE_WITH_TIMEOUT(store().recordsContainingSubstring("difference").size(), std::size_t(1), 30'000);
    QVERIFY(store().recordsContainingSubstring("analytical").empty());
}

void StoreCases::removalByAnotherProgramIsSeen()
{
    const ContactRecordPtr record = written(adaWithout(""));
    QVERIFY(record);
    QTRY_VERIFY(noticesFromElsewhere > 0);
    noticesFromElsewhere = 0;
    elsewhere().remove(record->uniqueId);
    QTRY_VERIFY_WITH_TIMEOUT(!store().recordForUniqueId(record->uniqueId), 30'000);
    QVERIFY(store().people().empty());
    QVERIFY(store().recordsContainingSubstring("Ada").empty());
    QTRY_VERIFY(noticesFromElsewhere > 0);
    QCOMPARE(noticesFromHere, 0);
}

void StoreCases::cardOfAnotherProgramIsTold()
{
    QVERIFY(written(adaWithout("")));
    QTRY_VERIFY(noticesFromElsewhere > 0);
    QCOMPARE(noticesFromHere, 0);
}

void StoreCases::quietContactsTellNothing()
{
    QVERIFY(written(adaWithout("")));
    QTRY_VERIFY(noticesFromElsewhere > 0);
    QTest::qWait(500); // nothing to wait for: what may come of the first card comes in this time
    noticesFromElsewhere = 0;
    const quint64 generation = store().generation();
    store().recordsContainingSubstring("Ada");
    store().people();
    QTest::qWait(500);
    QCOMPARE(noticesFromElsewhere, 0);
    QCOMPARE(noticesFromHere, 0);
    QCOMPARE(store().generation(), generation);
}

void StoreCases::addedCardIsThereForAll()
{
    QVERIFY(store().canAdd());
    const QString id = addedTo(store(), withIdentifier(adaWithout(""), "ada-1"));
    QVERIFY(!id.isEmpty());
    const ContactRecordPtr record = awaited(id);
    QVERIFY(record);
    QCOMPARE(record->firstName, QString("Ada"));
    QCOMPARE(record->emails.size(), std::size_t(1));
    QVERIFY(elsewhere().card(id).contains("ada@analytical.example"));
}

void StoreCases::addedCardIsToldAsChangedHere()
{
    const QString id = addedTo(store(), adaWithout(""));
    QVERIFY(awaited(id));
    QTRY_VERIFY(noticesFromHere > 0);
    QTest::qWait(500); // the same card, seen by whatever watches the contacts, comes in this time
    QCOMPARE(noticesFromElsewhere, 0);
    QCOMPARE(noticesFromHere, 1);
}

void StoreCases::addedCardGetsAnIdentifier()
{
    const QString first = addedTo(store(), adaWithout(""));
    const QString second = addedTo(store(), adaWithout(""));
    QVERIFY(!first.isEmpty());
    QVERIFY(!second.isEmpty());
    QVERIFY(first != second);
    QVERIFY(awaited(first) && awaited(second));
    QVERIFY(elsewhere().card(first).contains(first.toUtf8()));
}

void StoreCases::whatIsNoCardIsNotAdded()
{
    QVERIFY(addedTo(store(), "no card").isEmpty());
    QVERIFY(addedTo(store(), "").isEmpty());
    QVERIFY(store().people().empty());
    QCOMPARE(noticesFromHere, 0);
}

void StoreCases::picture()
{
    const ContactRecordPtr record =
        written(cardWith("FN:Ada\nN:;Ada;;;\nPHOTO;ENCODING=b;TYPE=PNG:" + pixel.toBase64() + "\n"));
    QVERIFY(record);
    QTRY_COMPARE_WITH_TIMEOUT(store().imageData(*record), pixel, 30'000);
}

void StoreCases::noPicture()
{
    const ContactRecordPtr record = written(adaWithout(""));
    QVERIFY(record);
    QVERIFY(store().imageData(*record).isEmpty());
    QVERIFY(store().imageData(ContactRecord()).isEmpty());
}

void StoreCases::cardIsHandedOutAsItIs()
{
    const QString first = QString::fromUtf8("Ada, Zoë");
    const ContactRecordPtr record =
        written(cardWith("FN:Ada\nN:Lovelace;" + QByteArray("Ada\\, Zoë") + ";;;\nEMAIL:ada@analytical.example\n" +
                         "TEL:+44 1\nORG:Engines\nURL:https://ada.example/\nNOTE:first line\\nsecond line\n" +
                         "PHOTO;ENCODING=b;TYPE=PNG:" + pixel.toBase64() + "\n"));
    QVERIFY(record);
    QTRY_VERIFY_WITH_TIMEOUT(!store().vCardRepresentation(*record).isEmpty(), 30'000);
    const QByteArray card = store().vCardRepresentation(*record);
    QVERIFY(card.startsWith("BEGIN:VCARD\r\n"));
    QVERIFY(card.trimmed().endsWith("\r\nEND:VCARD"));
    QVERIFY(card.contains("second line"));
    QCOMPARE(asVobjectReads(card), QStringList({"Ada", "Lovelace", first, "ada@analytical.example", "+44 1", "Engines",
                                                "https://ada.example/", QString::number(pixel.size())})
                                           .join('\n') +
                                       '\n');
}

void StoreCases::cardThatWasRemovedIsNotHandedOut()
{
    const ContactRecordPtr record = written(adaWithout(""));
    QVERIFY(record);
    elsewhere().remove(record->uniqueId);
    QTRY_VERIFY_WITH_TIMEOUT(!store().recordForUniqueId(record->uniqueId), 30'000);
    QVERIFY(store().vCardRepresentation(*record).isEmpty());
    QVERIFY(store().imageData(*record).isEmpty());
    QVERIFY(store().vCardRepresentation(ContactRecord()).isEmpty());
}

void StoreCases::cardCanBeOpened()
{
    const ContactRecordPtr record = written(adaWithout(""));
    QVERIFY(record);
    QVERIFY(!store().opening(*record, ContactStore::Show).isNone());
    QVERIFY(!store().opening(*record, ContactStore::Edit).isNone());
}

void StoreCases::ownCard()
{
    const QString id = elsewhere().write(adaWithout(""));
    QVERIFY(awaited(id));
    elsewhere().makeMe(id);
    QTRY_VERIFY_WITH_TIMEOUT(store().me() != nullptr, 30'000);
    QCOMPARE(store().me()->uniqueId, id);
}

void StoreCases::noOwnCard()
{
    QVERIFY(written(adaWithout("")));
    QVERIFY(!store().me());
}
