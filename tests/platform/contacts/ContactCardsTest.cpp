#include "platform/contacts/ContactCards.h"

#include "platform/contacts/CardText.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>
#include <sys/stat.h>

using ContactCards::Card;

namespace
{
QString folder()
{
    return qEnvironmentVariable("WAYFOLD_SOURCE") + QStringLiteral("/tests/platform/contacts");
}

QStringList sampleNames()
{
    return QDir(folder() + QStringLiteral("/cards")).entryList({QStringLiteral("*.vcf")});
}

QByteArray sample(const QString &name)
{
    QFile file(folder() + QStringLiteral("/cards/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A card with these lines between its first and its last.
QByteArray card(const QByteArray &lines)
{
    return "BEGIN:VCARD\r\n" + lines + "\r\nEND:VCARD\r\n";
}

QString shown(const QString &text)
{
    return text.isNull() ? QStringLiteral("-") : text;
}

// "; work a*, home b", the primary one with a star.
QString shown(const QString &kind, const std::vector<ContactValue> &values, int primary)
{
    QStringList texts;
    for (const ContactValue &one : values) {
        const bool isPrimary = primary == int(texts.size());
        texts.append(one.label + u' ' + one.value + (isPrimary ? QStringLiteral("*") : QString()));
    }
    return texts.isEmpty() ? QString() : QStringLiteral(" | ") + kind + u' ' + texts.join(QStringLiteral(", "));
}

// Everything that a record says.
QString shown(const ContactRecord &record)
{
    if (record.isGroup)
        return QStringLiteral("group %1 | %2 | %3")
            .arg(shown(record.uniqueId), shown(record.groupName), record.members.join(u' '));
    const QString kind = record.flags == ContactRecord::ShowAsPerson    ? QStringLiteral("person")
                         : record.flags == ContactRecord::ShowAsCompany ? QStringLiteral("company")
                                                                        : QString::number(record.flags);
    return QStringLiteral("%1 %2 | %3 | %4 | %5 | %6 | %7")
               .arg(kind, shown(record.uniqueId), shown(record.firstName), shown(record.lastName), shown(record.suffix),
                    shown(record.organization), shown(record.homePage)) +
           shown(QStringLiteral("tel"), record.phones, record.primaryPhone) +
           shown(QStringLiteral("mail"), record.emails, record.primaryEmail);
}

QString shown(const std::vector<Card> &cards)
{
    QStringList texts;
    for (const Card &card : cards)
        texts.append(shown(card.record));
    return texts.join(u'\n');
}

ContactRecord read(const QByteArray &lines)
{
    const std::vector<Card> cards = ContactCards::read(card(lines));
    return cards.empty() ? ContactRecord() : cards.front().record;
}

QStringList valuesOf(const std::vector<ContactValue> &values)
{
    QStringList texts;
    for (const ContactValue &one : values)
        texts.append(one.value);
    return texts;
}

QStringList textsOf(const QJsonValue &values)
{
    QStringList texts;
    for (const QJsonValue &one : values.toArray())
        texts.append(one.toString());
    return texts;
}

QByteArray picture()
{
    return QByteArray::fromBase64(
        "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElEQVR4nGP4z8AAAAMBAQDJ/pLvAAAAAElFTkSu"
        "QmCC");
}
} // namespace

class ContactCardsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatProgramsWrite_data();
    void readsWhatProgramsWrite();
    void readsThePicturesOfPrograms_data();
    void readsThePicturesOfPrograms();
    void agreesWithAnotherReader();
    void readsNames_data();
    void readsNames();
    void readsLabels_data();
    void readsLabels();
    void readsPrimaryValues_data();
    void readsPrimaryValues();
    void readsValues_data();
    void readsValues();
    void readsGroups_data();
    void readsGroups();
    void membersMeetTheirIdentifiers();
    void readsTextForms_data();
    void readsTextForms();
    void readsHomePages_data();
    void readsHomePages();
    void readsPictures_data();
    void readsPictures();
    void readsPictureFiles();
    void picturesAreBounded();
    void keepsTheCardsText();
    void turnsTheCardsTextIntoUtf8();
    void leavesOutWhatIsNoCard_data();
    void leavesOutWhatIsNoCard();
    void keepsTheRestOfADamagedCard_data();
    void keepsTheRestOfADamagedCard();
    void cutsWhatIsEndless_data();
    void cutsWhatIsEndless();
    void isReadTheSameInSlices();
    void longTextWithoutCardsEndsInSlices();
    void valuesAreBounded();
    void partsAreBounded();
    void textsAreBounded();
    void everyBeginningOfACardIsSafe();
    void everyDamagedByteIsSafe();
};

void ContactCardsTest::readsWhatProgramsWrite_data()
{
    QTest::addColumn<QString>("expected");
    QTest::newRow("evolution") << "person pas-id-5F00A1B200000001 | Ann | Miller | Jr. | Example Press | "
                                  "https://ann.example.com/ | tel work +1-555-0100*, mobile +1-555-0101, home fax "
                                  "+1-555-0102,  +1-555-0103, pager +1-555-0104 | mail work ann.miller@example.com*, "
                                  "home ann@example.com";
    QTest::newRow("evolution-list")
        << "group pas-id-5F00A1B200000009 | Friends | pas-id-5F00A1B200000001 mailto:bob@example.com "
           "mailto:carla@example.com mailto:dora@example.com pas-id-5F00A1B20000000A";
    QTest::newRow("gnome-contacts") << "person pas-id-6201C3D400000002 | Jörg | Grünwald | - | - | "
                                       "https://gruenwald.example.com | tel mobile +49 555 0110*, work fax +49 555 "
                                       "0111 | mail PERSONAL joerg@example.com*, other jg@example.org";
    QTest::newRow("khard") << "person b4q7d1zr0k | Eva | van Lind | - | Choir | https://eva.example.com | tel mobile "
                              "0555 0120*, home 0555 0121, Boat 0555 0122 | mail home eva@example.com, work "
                              "eva.lind@example.org*";
    QTest::newRow("vdirsyncer")
        << "person 0b6c1f0e-1111-4222-8333-944455566677 | Zoë | Ünal | - | Ünal & Söhne & Töchter & Enkel & Urenkel "
           "Gesellschaft für Überführungen äöü | - | tel work +1 555 0130* | mail home zoe@example.com*, work "
           "zoe@example.org";
    QTest::newRow("nextcloud") << "person 2f0c7a1e-2222-4333-9444-a55566677788 | Frank | O'Neil | - | Example Ltd | - "
                                  "| tel home (555) 0140*, home fax (555) 0141 | mail home frank@example.com*, Rowing "
                                  "club frank@club.example.com";
    QTest::newRow("nextcloud-v4") << "person 7d1c2b3a-3333-4444-a555-b66677788899 | Gina | Park | - | - | "
                                     "https://gina.example.com/a;b=c,d | tel mobile 555-0150* | mail home "
                                     "gina@example.com, work gina.park@example.org*";
    QTest::newRow("thunderbird") << "person 9a8b7c6d-4444-4555-b666-c77788899900 | Hanna | Berg | - | Example Verlag | "
                                    "https://verlag.example.com | tel work +49 555 0160*, home +49 555 0161, fax +49 "
                                    "555 0162, pager +49 555 0163, mobile +49 555 0164 | mail  hanna@example.com*,  "
                                    "hanna.berg@example.org";
    QTest::newRow("iphone") << "person - | Ines | Costa | M.D. | Example Clinic | https://ines.example.com | tel "
                               "mobile (555) 0170, mobile (555) 0171*, work fax (555) 0172, main (555) 0173, work fax "
                               "(555) 0174 | mail home ines@example.com*, Night shift ines@clinic.example.com";
    QTest::newRow("mac-company") << "company 0D1E2F30-5555-4666-8777-D88899900011 | - | - | - | Example Travel & Co. | "
                                    "- | tel main +1 (555) 0180* | mail work office@travel.example.com*";
    QTest::newRow("icloud-group") << "group 3A4B5C6D-7777-4888-A999-F00011122233 | Travelling | "
                                     "0D1E2F30-5555-4666-8777-D88899900011 1F2E3D4C-6666-4777-9888-E99900011122";
    QTest::newRow("android") << "person - | Lučka | Žižek | - | Društvo za čebele in cvetje | "
                                "https://lucka.example.com | tel mobile 0555-0190*, Ranch 0555-0191, work fax "
                                "0555-0192 | mail home lucka@example.com*\n"
                                "person - | Mum | - | - | - | - | tel mobile 0555-0193*\n"
                                "person - | - | - | - | - | - | tel mobile 0555-0194*";
    QTest::newRow("old-phone") << "person - | Jörg | Müller | - | - | - | tel home 555-0200*, car 555-0201 | mail  "
                                  "joerg.mueller@example.com*";
    QTest::newRow("outlook") << "person - | Käthe | Schäfer | - | Bäckerei Schäfer – Söhne | "
                                "http://www.baeckerei.example.com | tel work +49 (555) 0210*, home +49 (555) 0211, "
                                "mobile +49 (555) 0212, work fax +49 (555) 0213 | mail  kaethe@example.com*,  "
                                "backstube@example.com";
    QTest::newRow("radicale-v4")
        << "person 4b5c6d7e-8888-4999-baaa-011122233344 | Simon | Perrault | ing. jr, M.Sc. | Example Networks | "
           "https://simon.example.com | tel work +1-555-0220;ext=102, mobile +1-555-0221* | mail work "
           "simon@example.com*\n"
           "company 5c6d7e8f-9999-4aaa-8bbb-122233344455 | - | - | - | Example Networks | - | tel main +1-555-0222* | "
           "mail  info@networks.example.com*\n"
           "group 6d7e8f90-aaaa-4bbb-9ccc-233344455566 | Networkers | 4b5c6d7e-8888-4999-baaa-011122233344 "
           "5c6d7e8f-9999-4aaa-8bbb-122233344455 b4q7d1zr0k mailto:tom@example.com";
    QTest::newRow("google") << "person - | Uma | Rao | - | Example Labs | https://uma.example.com/ | tel mobile +1 "
                               "555-0230*, Lab +1 555-0231 | mail home uma@example.com*,  uma.rao@example.org";
}

void ContactCardsTest::readsWhatProgramsWrite()
{
    QFETCH(QString, expected);
    const QByteArray text = sample(QString::fromLatin1(QTest::currentDataTag()) + QStringLiteral(".vcf"));
    QVERIFY(!text.isEmpty());
    const std::vector<Card> cards = ContactCards::read(text);
    QCOMPARE(shown(cards), expected);
    for (const Card &card : cards) // nothing is lost by keeping them one by one
        QCOMPARE(shown(ContactCards::read(card.text)), shown(card.record));
}

void ContactCardsTest::readsThePicturesOfPrograms_data()
{
    QTest::addColumn<int>("size"); // of the picture in pixels, 0: there is none
    const QHash<QString, int> sizes = {{"gnome-contacts.vcf", 3}, {"nextcloud.vcf", 4}, {"nextcloud-v4.vcf", 5},
                                       {"thunderbird.vcf", 6},    {"iphone.vcf", 7},    {"android.vcf", 8},
                                       {"old-phone.vcf", 9},      {"outlook.vcf", 10}};
    for (const QString &name : sampleNames())
        QTest::newRow(qPrintable(name)) << sizes.value(name);
}

void ContactCardsTest::readsThePicturesOfPrograms()
{
    QFETCH(int, size);
    const std::vector<Card> cards = ContactCards::read(sample(QString::fromLatin1(QTest::currentDataTag())));
    QVERIFY(!cards.empty());
    const QImage image = QImage::fromData(ContactCards::picture(cards.front().text));
    QCOMPARE(image.size(), QSize(size, size));
}

// The library vobject reads all of the samples but one: it does not know lines of a picture that are not set in.
void ContactCardsTest::agreesWithAnotherReader()
{
    QStringList arguments = {folder() + QStringLiteral("/vobject-cards.py")};
    for (const QString &name : sampleNames())
        arguments.append(folder() + QStringLiteral("/cards/") + name);
    QProcess python;
    python.start(QStringLiteral("/usr/bin/python3"), arguments); // the system's, which has the library
    QVERIFY(python.waitForFinished(60000));
    QCOMPARE(python.readAllStandardError(), QByteArray());
    QCOMPARE(python.exitCode(), 0);

    QStringList unreadable;
    int compared = 0;
    for (const QByteArray &line : python.readAllStandardOutput().split('\n')) {
        const QJsonObject other = QJsonDocument::fromJson(line).object();
        if (other.isEmpty())
            continue;
        const QString name = other.value("file").toString();
        if (other.contains("cannot")) {
            unreadable.append(name);
            continue;
        }
        const std::vector<Card> cards = ContactCards::read(sample(name));
        const auto place = std::size_t(other.value("place").toInt());
        QVERIFY2(place < cards.size(), qPrintable(name));
        const ContactRecord &record = cards.at(place).record;
        if (record.isGroup)
            continue; // it knows none
        ++compared;
        QCOMPARE(record.firstName.isNull() ? QString("") : record.firstName, other.value("first").toString());
        QCOMPARE(record.lastName.isNull() ? QString("") : record.lastName, other.value("last").toString());
        QCOMPARE(valuesOf(record.phones), textsOf(other.value("phones")));
        QCOMPARE(valuesOf(record.emails), textsOf(other.value("emails")));
        const QString known = other.value("picture").toString();
        if (!known.isEmpty()) {
            const QByteArray picture = ContactCards::picture(cards.at(place).text);
            QCOMPARE(QString(QCryptographicHash::hash(picture, QCryptographicHash::Sha1).toHex()), known);
        }
    }
    QCOMPARE(unreadable, QStringList("old-phone.vcf"));
    QCOMPARE(compared, 16);
}

void ContactCardsTest::readsNames_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QByteArray &lines, const QString &expected) {
        QTest::newRow(name) << lines << expected;
    };
    row("all parts", "N:Miller;Ann;Mary;Dr.;Jr.", "person - | Ann | Miller | Jr. | - | -");
    row("the parts before the whole", "N:Miller;Ann;;;\r\nFN:Somebody Else", "person - | Ann | Miller | - | - | -");
    row("last name alone", "N:Miller;;;;\r\nFN:Ann Miller", "person - | - | Miller | - | - | -");
    row("first name alone", "N:;Ann;;;", "person - | Ann | - | - | - | -");
    row("fewer parts", "N:Miller", "person - | - | Miller | - | - | -");
    row("blanks around", "N: Miller ; Ann ;;; Jr. ", "person - | Ann | Miller | Jr. | - | -");
    row("blanks alone", "N: ; ;;;\r\nFN:Ann Miller", "person - | Ann | Miller | - | - | -");
    row("lines in a name", "N:Miller;Ann\\nMary;;;", "person - | Ann Mary | Miller | - | - | -");
    row("several in a part", "N:Miller;Ann,Mary;;;Jr.,M.D.", "person - | Ann, Mary | Miller | Jr., M.D. | - | -");
    row("escaped signs", "N:O\\;Neil\\, the \\\\ elder;Ann;;;", "person - | Ann | O;Neil, the \\ elder | - | - | -");
    row("no parts", "FN:Ann Miller", "person - | Ann | Miller | - | - | -");
    row("empty parts", "N:;;;;\r\nFN:Ann Miller", "person - | Ann | Miller | - | - | -");
    row("the second", "N:;;;;\r\nN:Miller;Ann;;;\r\nFN:X Y", "person - | Ann | Miller | - | - | -");
    row("whole, one word", "FN:Ann", "person - | Ann | - | - | - | -");
    row("whole, turned round", "FN:Miller\\, Ann", "person - | Ann | Miller | - | - | -");
    row("whole, with title and suffix", "FN:Dr. Ann Mary Miller Jr.", "person - | Ann | Miller | Jr. | - | -");
    row("whole, with a small word", "FN:Ludwig van Beethoven", "person - | Ludwig | van Beethoven | - | - | -");
    row("whole, a title alone", "FN:Dr.", "person - | Dr. | - | - | - | -");
    row("whole, many commas", "FN:a,b,c,d,e,f,g,h,i,j,k,l", "person - | a,b,c,d,e,f,g,h,i,j,k,l | - | - | - | -");
    row("whole, with a semicolon", "FN:Ann; Miller", "person - | Ann; | Miller | - | - | -");
    row("small letters", "n:Miller;Ann;;;", "person - | Ann | Miller | - | - | -");
    row("another language", "N;LANGUAGE=ja:李;小龍;;;", "person - | 小龍 | 李 | - | - | -");
    row("nothing", "N:;;;;\r\nFN:", "person - | - | - | - | - | -");
    row("no name", "NOTE:x\r\nTEL:555-0100", "person - | - | - | - | - | - | tel  555-0100*");

    row("organization", "N:Miller;Ann;;;\r\nORG:Acme\\; Inc.;Sales;East",
        "person - | Ann | Miller | - | Acme; Inc. | -");
    row("organization without a name", "N:Miller;Ann;;;\r\nORG:;Sales", "person - | Ann | Miller | - | - | -");
    row("organization alone", "ORG:Acme;Sales", "company - | - | - | - | Acme | -");
    row("organization, and its name again", "FN:ACME\r\nORG:Acme", "company - | - | - | - | Acme | -");
    row("organization and a whole name", "FN:Ann Miller\r\nORG:Acme", "person - | Ann | Miller | - | Acme | -");
    row("organization by kind", "KIND:org\r\nFN:Acme Paint\r\nORG:Acme", "company - | - | - | - | Acme | -");
    row("organization by kind, whole name", "KIND:ORG\r\nFN:Acme Paint", "company - | - | - | - | Acme Paint | -");
    row("organization shown as one", "X-ABShowAs:COMPANY\r\nN:Miller;Ann;;;\r\nORG:Acme",
        "company - | Ann | Miller | - | Acme | -");
    row("shown as a person", "X-ABShowAs:PERSON\r\nN:Miller;Ann;;;\r\nORG:Acme",
        "person - | Ann | Miller | - | Acme | -");
    row("kind of a person", "KIND:individual\r\nFN:Ann Miller", "person - | Ann | Miller | - | - | -");

    row("identifier", "UID:ann-1\r\nFN:Ann", "person ann-1 | Ann | - | - | - | -");
    row("identifier as an address", "UID:urn:uuid:0b6c\r\nFN:Ann", "person 0b6c | Ann | - | - | - | -");
    row("identifier as an address in capitals", "UID;VALUE=uri:URN:UUID:0B6C\r\nFN:Ann",
        "person 0B6C | Ann | - | - | - | -");
    row("identifier with its signs", "uid:https://example.com/a\\;b;c:d\r\nFN:Ann",
        "person https://example.com/a;b;c:d | Ann | - | - | - | -");
    row("empty identifier", "UID:\r\nFN:Ann", "person - | Ann | - | - | - | -");
    row("identifier without an identifier", "UID:urn:uuid:\r\nFN:Ann", "person - | Ann | - | - | - | -");
}

void ContactCardsTest::readsNames()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, expected);
    QCOMPARE(shown(ContactCards::read(card(lines))), expected);
}

void ContactCardsTest::readsLabels_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("label");
    const auto row = [](const QByteArray &lines, const QString &label) {
        QTest::newRow(lines.constData()) << lines << label;
    };
    row("TEL:1", "");
    row("TEL;TYPE=home:1", "home");
    row("TEL;TYPE=HOME,VOICE:1", "home");
    row("TEL;TYPE=home;TYPE=voice:1", "home");
    row("TEL;TYPE=\"voice,home\":1", "home");
    row("TEL;TYPE=voice\\,home:1", "home");
    row("TEL;type= home , pref :1", "home");
    row("TEL;HOME;VOICE:1", "home");
    row("tel;home,pref:1", "home");
    row("TEL;VALUE=uri;TYPE=home:tel:1", "home");
    row("TEL;X-EVOLUTION-UI-SLOT=1;TYPE=WORK:1", "work");
    row("TEL;TYPE=work,cell:1", "mobile");
    row("TEL;TYPE=mobile:1", "mobile");
    row("TEL;TYPE=IPHONE,VOICE:1", "mobile");
    row("TEL;TYPE=text,voice,cell:1", "mobile");
    row("TEL;TYPE=main:1", "main");
    row("TEL;TYPE=work,main:1", "main");
    row("TEL;TYPE=fax:1", "fax");
    row("TEL;TYPE=fax,home:1", "home fax");
    row("TEL;WORK;FAX:1", "work fax");
    row("TEL;TYPE=other,fax:1", "fax");
    row("TEL;TYPE=pager,work:1", "pager");
    row("TEL;TYPE=car,voice:1", "car");
    row("TEL;TYPE=video:1", "video");
    row("TEL;TYPE=video,work:1", "work");
    row("TEL;TYPE=text:1", "text");
    row("TEL;TYPE=other:1", "other");
    row("TEL;TYPE=voice:1", "");
    row("TEL;TYPE=pref:1", "");
    row("TEL;TYPE=:1", "");
    row("TEL;TYPE=VOICE,X-EVOLUTION-CALLBACK:1", "");
    row("TEL;TYPE=X-Ranch:1", "Ranch");
    row("TEL;X-Ranch:1", "Ranch");
    row("TEL;TYPE=voice,Ranch:1", "Ranch");
    row("TEL;TYPE=Büro:1", "Büro");
    row("TEL;TYPE=Ranch,home:1", "home");
    row("item1.TEL:1\r\nitem1.X-ABLabel:Boat", "Boat");
    row("item1.X-ABLabel:Boat\r\nitem1.TEL;TYPE=home:1", "Boat");
    row("ITEM1.tel:1\r\nitem1.x-ablabel:Boat", "Boat");
    row("item1.TEL:1\r\nitem2.X-ABLabel:Boat", "");
    row("TEL:1\r\nX-ABLabel:Boat", "");
    row("item1.TEL;TYPE=home:1\r\nitem1.X-ABLabel:", "home");
    row("item1.TEL:1\r\nitem1.X-ABLabel:Summer house\\, garden; shed", "Summer house, garden; shed");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<Home>!$_", "home");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<Work>!$_", "work");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<Mobile>!$_", "mobile");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<iPhone>!$_", "mobile");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<Main>!$_", "main");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<HomeFAX>!$_", "home fax");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<WorkFAX>!$_", "work fax");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<OtherFAX>!$_", "fax");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<Pager>!$_", "pager");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<Car>!$_", "car");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<Other>!$_", "other");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<School>!$_", "School");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<>!$_", "");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<", "_$!<");
    row("item1.TEL:1\r\nitem1.X-ABLabel:_$!<!$_", "_$!<!$_");
    row("item1.TEL:1\r\nitem1.X-ABLabel:Home", "Home");
}

void ContactCardsTest::readsLabels()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, label);
    const ContactRecord phones = read(lines);
    QCOMPARE(phones.phones.size(), 1u);
    QCOMPARE(phones.phones.front().label, label);
    const ContactRecord emails =
        read(QByteArray(lines).replace("TEL", "EMAIL").replace("tel;", "email;").replace(".tel", ".email"));
    QCOMPARE(emails.emails.size(), 1u);
    QCOMPARE(emails.emails.front().label, label);
}

void ContactCardsTest::readsPrimaryValues_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<int>("primary");
    const auto row = [](const char *name, const QByteArray &lines, int primary) {
        QTest::newRow(name) << lines << primary;
    };
    row("first", "TEL:1\r\nTEL:2", 0);
    row("none at all", "NOTE:x", 0);
    row("type", "TEL;TYPE=home:1\r\nTEL;TYPE=home,pref:2\r\nTEL:3", 1);
    row("type in capitals", "TEL:1\r\nTEL;TYPE=HOME;TYPE=PREF:2", 1);
    row("bare type", "TEL;HOME:1\r\nTEL;PREF;WORK:2", 1);
    row("two types", "TEL:1\r\nTEL;TYPE=pref:2\r\nTEL;TYPE=pref:3", 1);
    row("number", "TEL:1\r\nTEL;PREF=1:2", 1);
    row("lowest number", "TEL;PREF=50:1\r\nTEL;PREF=2:2\r\nTEL;PREF=3:3", 1);
    row("number in quotes", "TEL;PREF=\"9\":1\r\nTEL;PREF=\"2\":2", 1);
    row("highest number", "TEL:1\r\nTEL;PREF=100:2", 1);
    row("no such number", "TEL:1\r\nTEL;PREF=101:2\r\nTEL;PREF=0:3\r\nTEL;PREF=-1:4\r\nTEL;PREF=x:5", 0);
    row("type as good as the best number", "TEL;PREF=1:1\r\nTEL;TYPE=pref:2", 0);
    row("type before number", "TEL;PREF=2:1\r\nTEL;TYPE=pref:2", 1);
    row("empty ones do not count", "TEL;PREF=1:\r\nTEL:2\r\nTEL;PREF=2:3", 1);
}

void ContactCardsTest::readsPrimaryValues()
{
    QFETCH(QByteArray, lines);
    QFETCH(int, primary);
    QCOMPARE(read(lines).primaryPhone, primary);
    QCOMPARE(read(lines).primaryEmail, 0);
    lines.replace("TEL", "EMAIL");
    QCOMPARE(read(lines).primaryEmail, primary);
    QCOMPARE(read(lines).primaryPhone, 0);
}

void ContactCardsTest::readsValues_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("value");
    const auto row = [](const QByteArray &line, const QString &value) {
        QTest::newRow(line.constData()) << line << value;
    };
    row("TEL:+1 (555) 0100", "+1 (555) 0100");
    row("TEL:  555-0100 ", "555-0100");
    row("TEL;VALUE=uri:tel:+1-555-0100", "+1-555-0100");
    row("TEL;VALUE=uri:TEL:+1-555-0100;ext=12", "+1-555-0100;ext=12");
    row("TEL:tel\\:555", "555");
    row("TEL;X=\"q:;r\":555", "555");
    row("TEL;X=\"q:;r\";TYPE=home:555", "555");
    row("TEL;ENCODING=8BIT:555", "555");
    row("TEL;ENCODING=b:NTU1", "555");
    row("TEL;ENCODING=QUOTED-PRINTABLE:=35=35=35", "555");
    row("TEL;QUOTED-PRINTABLE:=35=35=35", "555");
    row("TEL;ENCODING=QUOTED-PRINTABLE:5=5=zz=3", "5=5=zz=3");
    row("TEL;ENCODING=QUOTED-PRINTABLE:5=B\\=35\\", "5=B\\5\\");
    row("TEL;ENCODING=QUOTED-PRINTABLE:=5c=3bn", "\\;n");
    row("TEL;ENCODING=QUOTED-PRINTABLE:5=z5=5z=\\5", "5=z5=5z=\\5");
    row("TEL:55\\,", "55,");
    row("TEL;=:555", "555");
    row("TEL;:555", "555");
    row("TEL;(a:555", "555");
    row("TEL;X-CUSTOM(CHARSET=UTF-8,ENCODING=QUOTED-PRINTABLE,=C3=96):555", "555");
    row(".TEL:555", "555");
    row("a.b.TEL:555", "555");
    row("a b.TEL:555", "555");
    row(" TEL : 555", "555");
    row("TEL:5\x01\x1b"
        "5\x7f"
        "5",
        "555");
    row("TEL:5\\q5", "5\\q5");
    row("TEL:55\\", "55\\");
    row("EMAIL:ann@example.com", "ann@example.com");
    row("EMAIL:mailto:ann@example.com", "ann@example.com");
    row("EMAIL;CHARSET=UTF-8:\xc3\xa4@example.com", "ä@example.com");
    row("EMAIL;CHARSET=ISO-8859-1:\xc3\xa4@example.com", "ä@example.com"); // UTF-8 all the same
    row("EMAIL;CHARSET=ISO-8859-15:\xa4@example.com", "€@example.com");
    row("EMAIL;CHARSET=ISO-8859-15;ENCODING=QUOTED-PRINTABLE:=A4@example.com", "€@example.com");
    row("EMAIL;CHARSET=SHIFT_JIS;ENCODING=QUOTED-PRINTABLE:=83=5C@example.com", "ソ@example.com");
    row("EMAIL;CHARSET=SHIFT_JIS:\x83\x5c@example.com", "ソ@example.com");
    row("EMAIL;CHARSET=NONSENSE:\xe4@example.com", "ä@example.com");
    row("EMAIL:\xe4\x80@example.com", "ä€@example.com");
    row("EMAIL;ENCODING=QUOTED-PRINTABLE:=E4@example.com", "ä@example.com");
    row("EMAIL:\xc3\xa4\xff@example.com", QStringLiteral("ä\uFFFD@example.com"));
}

void ContactCardsTest::readsValues()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, value);
    const ContactRecord record = read(line);
    QCOMPARE(valuesOf(record.phones) + valuesOf(record.emails), QStringList(value));
}

void ContactCardsTest::readsGroups_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QByteArray &lines, const QString &expected) {
        QTest::newRow(name) << lines << expected;
    };
    row("v4", "KIND:group\r\nUID:g\r\nFN:G\r\nMEMBER:urn:uuid:a\r\nMEMBER:b", "group g | G | a b");
    row("v4 in other letters", "kind:Group\r\nUID:g\r\nFN:G\r\nmember:URN:UUID:a", "group g | G | a");
    row("v3", "X-ADDRESSBOOKSERVER-KIND:group\r\nUID:g\r\nFN:G\r\nX-ADDRESSBOOKSERVER-MEMBER:urn:uuid:a",
        "group g | G | a");
    row("addresses", "KIND:group\r\nUID:g\r\nFN:G\r\nMEMBER:MAILTO:ann@example.com\r\nMEMBER:mailto:",
        "group g | G | mailto:ann@example.com");
    row("once each", "KIND:group\r\nUID:g\r\nFN:G\r\nMEMBER:a\r\nMEMBER:b\r\nMEMBER:urn:uuid:a", "group g | G | a b");
    row("nobody", "KIND:group\r\nUID:g\r\nFN:G\r\nMEMBER:\r\nMEMBER:urn:uuid:", "group g | G | ");
    row("name in parts", "KIND:group\r\nUID:g\r\nN:G;;;;", "group g | G | ");
    row("name to file it", "KIND:group\r\nUID:g\r\nX-EVOLUTION-FILE-AS:G", "group g | G | ");
    row("no name", "KIND:group\r\nUID:g\r\nFN:\r\nORG:Acme", "group g | - | ");
    row("list", "X-EVOLUTION-LIST:TRUE\r\nUID:g\r\nFN:G\r\nEMAIL;X-EVOLUTION-DEST-CONTACT-UID=a:Ann <ann@example.com>",
        "group g | G | a");
    row("list with plain addresses",
        "X-EVOLUTION-LIST:true\r\nUID:g\r\nFN:G\r\nEMAIL:ann@example.com\r\nEMAIL:Bob <b@example.com>",
        "group g | G | mailto:ann@example.com mailto:b@example.com");
    row("list with named addresses",
        "X-EVOLUTION-LIST:TRUE\r\nUID:g\r\nFN:G\r\nEMAIL;X-EVOLUTION-DEST-EMAIL=\"ann@example.com\":Ann",
        "group g | G | mailto:ann@example.com");
    row("list with an empty identifier",
        "X-EVOLUTION-LIST:TRUE\r\nUID:g\r\nFN:G\r\nEMAIL;X-EVOLUTION-DEST-CONTACT-UID=:ann@example.com",
        "group g | G | mailto:ann@example.com");
    row("list with an empty address",
        "X-EVOLUTION-LIST:TRUE\r\nUID:g\r\nFN:G\r\nEMAIL:Ann <>\r\nEMAIL:", "group g | G | ");
    row("list with a broken address", "X-EVOLUTION-LIST:TRUE\r\nUID:g\r\nFN:G\r\nEMAIL:> ann <",
        "group g | G | mailto:> ann <");
    row("no list", "X-EVOLUTION-LIST:FALSE\r\nUID:g\r\nFN:G\r\nEMAIL:ann@example.com",
        "person g | G | - | - | - | - | mail  ann@example.com*");
    row("members of no group", "UID:g\r\nFN:G\r\nMEMBER:a", "person g | G | - | - | - | -");
}

void ContactCardsTest::readsGroups()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, expected);
    QCOMPARE(shown(ContactCards::read(card(lines))), expected);
}

// However the two are written.
void ContactCardsTest::membersMeetTheirIdentifiers()
{
    for (const QByteArray &id : QByteArrayList{"0b6c", "urn:uuid:0b6c", "URN:UUID:0b6c"}) {
        for (const QByteArray &member :
             QByteArrayList{"MEMBER:0b6c", "MEMBER:urn:uuid:0b6c", "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:0b6c"}) {
            const ContactRecord group = read("KIND:group\r\n" + member);
            QCOMPARE(group.members, QStringList(read("FN:Ann\r\nUID:" + id).uniqueId));
        }
        const ContactRecord list =
            read("X-EVOLUTION-LIST:TRUE\r\nEMAIL;X-EVOLUTION-DEST-CONTACT-UID=\"" + id + "\":Ann");
        QCOMPARE(list.members, QStringList("0b6c"));
    }
}

void ContactCardsTest::readsTextForms_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray two = "BEGIN:VCARD\nUID:1\nN:Müller;Ann;;;\nEND:VCARD\nBEGIN:VCARD\nUID:2\nFN:Bob\nEND:VCARD\n";
    const auto row = [](const char *name, const QByteArray &text) { QTest::newRow(name) << text; };
    row("line feeds", two);
    row("carriage returns", QByteArray(two).replace("\n", "\r"));
    row("both", QByteArray(two).replace("\n", "\r\n"));
    row("mixed", QByteArray(two).replace("UID:1\n", "UID:1\r").replace("Ann;;;\n", "Ann;;;\r\n"));
    row("no end of the last line", two.chopped(1));
    row("empty lines", QByteArray(two).replace("\n", "\n\n"));
    row("lines of blanks", QByteArray(two).replace("\n", "\n \n"));
    row("blanks at the ends", QByteArray(two).replace("\n", " \n"));
    row("many blanks behind an end", QByteArray(two).replace("END:VCARD", QByteArray("END:VCARD").leftJustified(200)));
    row("small letters", QByteArray(two).replace("BEGIN:VCARD", "begin:vCard").replace("END:VCARD", "end:vcard"));
    row("other text around",
        "Hello:\nUID:9\n" + QByteArray(two).replace("END:VCARD\n", "END:VCARD\nEND:VCARD\nFN:x\n"));
    row("mark of UTF-8", "\xef\xbb\xbf" + two);
    row("folded with blanks",
        QByteArray(two).replace("Müller", "M\xc3\n \xbcll\n er").replace("FN:Bob", "F\n N\n :\n Bo\n b"));
    row("folded with tabs", QByteArray(two).replace("Müller", "M\n\tüller").replace("Bob", "B\n\tob"));
    row("with zeros", QByteArray(two).replace("ler", QByteArray("l\0e\0r", 5)));
    row("UTF-16",
        QStringEncoder(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom).encode(QString::fromUtf8(two)));
    row("UTF-16, the other way round",
        QStringEncoder(QStringEncoder::Utf16BE, QStringEncoder::Flag::WriteBom).encode(QString::fromUtf8(two)));
    row("Latin-1", QString::fromUtf8(two).toLatin1());
    row("a card that was never ended", "BEGIN:VCARD\nUID:0\nFN:Nobody\n" + two);
    row("another that was never ended", two + "BEGIN:VCARD\nUID:3\nFN:Nobody\n");
    row("a card with a secretary",
        QByteArray(two).replace("UID:1\n", "UID:1\nAGENT:\nBEGIN:VCARD\nUID:7\nFN:Sec\nEND:VCARD\n"));
    row("a card with a secretary in one line",
        QByteArray(two).replace("UID:1\n", "UID:1\nAGENT:BEGIN:VCARD\\nUID:7\\nFN:Sec\\nEND:VCARD\\n\n"));
    row("soft line ends", QByteArray(two).replace("N:Müller", "N;ENCODING=QUOTED-PRINTABLE:M=C3=\n=BC=\nl=\nler"));
    row("soft line ends behind a folded head",
        QByteArray(two).replace("N:Müller", "N;X-A=b;ENCO\n DING=QUOTED-PRINTABLE:M=C3=\n=BC=\nl=\nler"));
    row("a colon in the quotes of a folded head",
        QByteArray(two).replace("FN:Bob", "FN;X-A=\"a:\n b\";ENCODING=QUOTED-PRINTABLE:Bo=\nb"));
    row("a folded head behind a picture", QByteArray(two).replace("FN:Bob", "PHOTO;ENCODING=b:SGVs\nFN;X-A=\n b:Bob"));
    row("a folded head in a picture that is none",
        QByteArray(two).replace("FN:Bob", "NOTE;ENCO\n DING=b:\xff\nFN;X-A=\n b:Bob"));
    row("set in", QByteArray(two).replace("BEGIN:VCARD\n", "BEGIN:VCARD\n  ").replace("END:VCARD\n", "END:VCARD\n "));
    row("a soft end before the end", QByteArray(two).replace("FN:Bob", "FN;ENCODING=QUOTED-PRINTABLE:Bob="));
    row("empty cards between", "BEGIN:VCARD\nEND:VCARD\n" + two + "BEGIN:VCARD\nVERSION:3.0\nEND:VCARD\n");
}

void ContactCardsTest::readsTextForms()
{
    QFETCH(QByteArray, text);
    const std::vector<Card> cards = ContactCards::read(text);
    QCOMPARE(shown(cards), "person 1 | Ann | Müller | - | - | -\nperson 2 | Bob | - | - | - | -");
    for (const Card &card : cards) {
        QVERIFY(card.text.isValidUtf8());
        QVERIFY(!card.text.contains('\0'));
        QCOMPARE(shown(ContactCards::read(card.text)), shown(card.record));
    }
}

void ContactCardsTest::readsHomePages_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("page");
    QTest::newRow("none") << QByteArray("FN:Ann") << QString();
    QTest::newRow("empty") << QByteArray("URL:") << QString();
    QTest::newRow("first") << QByteArray("URL:http://a.example.com\r\nURL:http://b.example.com")
                           << "http://a.example.com";
    QTest::newRow("first that is one") << QByteArray("URL:\r\nURL:http://b.example.com") << "http://b.example.com";
    QTest::newRow("with parts") << QByteArray("URL:http://a.example.com/x;y,z?q=1:2")
                                << "http://a.example.com/x;y,z?q=1:2";
    QTest::newRow("escaped") << QByteArray("URL:http\\://a.example.com/x\\;y\\,z") << "http://a.example.com/x;y,z";
    QTest::newRow("journal") << QByteArray("X-EVOLUTION-BLOG-URL:http://b.example.com") << "http://b.example.com";
    QTest::newRow("page before journal") << QByteArray(
                                                "X-EVOLUTION-BLOG-URL:http://b.example.com\r\nURL:http://a.example.com")
                                         << "http://a.example.com";
    QTest::newRow("too long") << QByteArray("FN:Ann\r\nURL:http://a.example.com/" + QByteArray(3000, 'x')) << QString();
}

void ContactCardsTest::readsHomePages()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, page);
    QCOMPARE(shown(read(lines).homePage), shown(page));
}

void ContactCardsTest::readsPictures_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArray>("expected");
    const QByteArray base64 = picture().toBase64();
    const auto row = [](const char *name, const QByteArray &lines, const QByteArray &expected) {
        QTest::newRow(name) << lines << expected;
    };
    row("none", "FN:Ann", {});
    row("empty", "PHOTO:", {});
    row("v3", "PHOTO;ENCODING=b;TYPE=PNG:" + base64, picture());
    row("v3 in other letters", "photo;encoding=B;type=png:" + base64, picture());
    row("v3 folded", "PHOTO;ENCODING=b:\r\n " + base64.left(20) + "\r\n " + base64.mid(20), picture());
    row("v3 folded with tabs", "PHOTO;ENCODING=b:" + base64.left(20) + "\r\n\t" + base64.mid(20), picture());
    row("v2.1", "PHOTO;ENCODING=BASE64;TYPE=PNG:\r\n  " + base64.left(20) + "\r\n  " + base64.mid(20) + "\r\n",
        picture());
    row("v2.1 bare", "PHOTO;PNG;BASE64:" + base64.left(20) + "\r\n" + base64.mid(20) + "\r\n\r\nFN:Ann", picture());
    row("v4", "PHOTO:data:image/png;base64," + base64, picture());
    row("v4 escaped", "PHOTO;VALUE=uri:data:image/png\\;base64\\," + base64, picture());
    row("v4 folded", "PHOTO:data:image/png;bas\r\n e64," + base64.left(20) + "\r\n " + base64.mid(20), picture());
    row("v4 in capitals", "PHOTO:DATA:image/png;BASE64," + base64, picture());
    row("v4 with percent signs", "PHOTO:data:image/svg+xml,%3Csvg/%3E", "<svg/>");
    row("both forms at once", "PHOTO;ENCODING=b:data:image/png;base64," + base64, picture());
    row("the first that there is", "PHOTO:\r\nPHOTO;VALUE=uri:http://example.com/a.png\r\nPHOTO;ENCODING=b:" + base64,
        picture());
    row("grouped", "item1.PHOTO;ENCODING=b:" + base64, picture());
    row("elsewhere", "PHOTO;VALUE=uri:https://example.com/a.png", {});
    row("no picture", "PHOTO;ENCODING=b:SGVsbG8=", "Hello");
    row("no base64", "PHOTO;ENCODING=b:!\"$%&", {});
    row("data without data", "PHOTO:data:image/png;base64", {});
    row("a logo is no picture of a person", "LOGO;ENCODING=b:" + base64, {});
}

void ContactCardsTest::readsPictures()
{
    QFETCH(QByteArray, lines);
    QFETCH(QByteArray, expected);
    QCOMPARE(ContactCards::picture(card(lines)), expected);
    QCOMPARE(ContactCards::picture(card(QByteArray(lines).replace("\r\n", "\n")).replace("\r\n", "\n")), expected);
}

void ContactCardsTest::readsPictureFiles()
{
    const QTemporaryDir home;
    const QString path = home.filePath(QStringLiteral("a photo.png"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(picture());
    file.close();
    const auto pictureAt = [](const QByteArray &address) {
        return ContactCards::picture(card("PHOTO;VALUE=uri:" + address));
    };
    const QByteArray address = QUrl::fromLocalFile(path).toEncoded();
    QVERIFY(address.startsWith("file:///"));
    QCOMPARE(pictureAt(address), picture());
    QCOMPARE(pictureAt("file://localhost" + address.mid(7)), picture());
    QCOMPARE(pictureAt("file://elsewhere.example.com" + address.mid(7)), QByteArray());
    QCOMPARE(pictureAt(address + "x"), QByteArray());
    QCOMPARE(pictureAt("file://" + home.path().toUtf8()), QByteArray());
    QCOMPARE(pictureAt(path.toUtf8()), QByteArray());
    QCOMPARE(pictureAt("file:///dev/zero"), QByteArray());
    // Reading from a pipe would wait for whoever writes.
    const QByteArray pipe = home.filePath(QStringLiteral("pipe")).toUtf8();
    QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
    QCOMPARE(pictureAt("file://" + pipe), QByteArray());

    QVERIFY(file.resize(ContactCards::maximumPicture));
    QCOMPARE(pictureAt(address).size(), ContactCards::maximumPicture);
    QVERIFY(file.resize(ContactCards::maximumPicture + 1));
    QCOMPARE(pictureAt(address), QByteArray());
}

void ContactCardsTest::picturesAreBounded()
{
    const auto withPicture = [](qsizetype size) {
        return card("PHOTO;ENCODING=b:" + QByteArray(size, 'x').toBase64() + "\r\nFN:Ann");
    };
    QCOMPARE(ContactCards::picture(withPicture(ContactCards::maximumPicture)).size(), ContactCards::maximumPicture);
    QCOMPARE(ContactCards::picture(withPicture(ContactCards::maximumPicture + 1)), QByteArray());
    // The card stays, without the picture when that is larger than anything.
    for (const qsizetype size : {ContactCards::maximumPicture, CardText::maximumBulkyLine}) {
        const std::vector<Card> cards = ContactCards::read(withPicture(size));
        QCOMPARE(shown(cards), "person - | Ann | - | - | - | -");
        QCOMPARE(cards.front().text.contains("PHOTO"), size == ContactCards::maximumPicture);
    }
}

void ContactCardsTest::keepsTheCardsText()
{
    const QByteArray first =
        "BEGIN:VCARD\r\nVERSION:3.0\r\nX-Own;A=\"b\":c\\,d\r\nNOTE:folded\r\n  here\r\nFN:Ann\r\nPHOTO;ENCODING"
        "=b:SGVs\r\n bG8=\r\nEND:VCARD\r\n";
    const QByteArray second = "begin:vcard\nfn:Bób\nend:vcard";
    const std::vector<Card> cards = ContactCards::read("junk\r\n" + first + "\r\njunk\n" + second);
    QCOMPARE(cards.size(), 2u);
    QCOMPARE(cards.at(0).text, first);
    QCOMPARE(cards.at(1).text, second);
}

void ContactCardsTest::turnsTheCardsTextIntoUtf8()
{
    const std::vector<Card> cards = ContactCards::read(
        card("N;LANGUAGE=de;CHARSET=Windows-1252:M\xfcller;J\xf6rg\r\nNOTE;CHARSET=ISO-8859-15:\xa4\r\nX-B:\xe4\r\n"
             "FN;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:M=FCller"));
    QCOMPARE(cards.size(), 1u);
    QCOMPARE(cards.front().text, card("N;LANGUAGE=de:Müller;Jörg\r\nNOTE:€\r\nX-B:ä\r\n"
                                      "FN;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:M=FCller"));
    QCOMPARE(shown(cards), "person - | Jörg | Müller | - | - | -");
    // A sign that a fold tears in two is whole again.
    const std::vector<Card> torn = ContactCards::read(card("FN:M\xc3\r\n \xbcller"));
    QCOMPARE(torn.front().text, card("FN:Müller"));
}

void ContactCardsTest::leavesOutWhatIsNoCard_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("a mark alone") << QByteArray("\xef\xbb\xbf");
    QTest::newRow("half a mark of UTF-16") << QByteArray("\xff\xfe\x42");
    QTest::newRow("zeros") << QByteArray(100000, '\0');
    QTest::newRow("blanks") << QByteArray(100000, ' ');
    QTest::newRow("line ends") << QByteArray(100000, '\n');
    QTest::newRow("no card") << QByteArray("FN:Ann\r\nTEL:1\r\n");
    QTest::newRow("a calendar") << QByteArray("BEGIN:VCALENDAR\r\nUID:1\r\nEND:VCALENDAR\r\n");
    QTest::newRow("beginning alone") << QByteArray("BEGIN:VCARD");
    QTest::newRow("end alone") << QByteArray("END:VCARD\r\n");
    QTest::newRow("more blanks behind the end than are looked at")
        << "BEGIN:VCARD\r\nFN:Ann\r\n" + QByteArray("END:VCARD").leftJustified(201) + "\r\n";
    QTest::newRow("never ended") << QByteArray("BEGIN:VCARD\r\nFN:Ann\r\n");
    QTest::newRow("empty") << card("");
    QTest::newRow("nothing in it") << card("VERSION:3.0\r\nNOTE:x");
    QTest::newRow("begun again and again") << QByteArray("BEGIN:VCARD\r\nFN:Ann\r\n").repeated(1000);
    QTest::newRow("secretaries of secretaries") << QByteArray("BEGIN:VCARD\r\nAGENT:\r\n").repeated(100000);
    QTest::newRow("a picture") << picture();
}

void ContactCardsTest::leavesOutWhatIsNoCard()
{
    QFETCH(QByteArray, text);
    QCOMPARE(shown(ContactCards::read(text)), QString());
    QCOMPARE(ContactCards::picture(text), QByteArray());
}

void ContactCardsTest::keepsTheRestOfADamagedCard_data()
{
    QTest::addColumn<QByteArray>("damage");
    QTest::newRow("no colon") << QByteArray("TEL;TYPE=home");
    QTest::newRow("no name") << QByteArray(":1");
    QTest::newRow("no such name") << QByteArray("T(L:1");
    QTest::newRow("an open quote") << QByteArray("TEL;X=\"a:1");
    QTest::newRow("an escaped quote") << QByteArray("TEL;X=\"a\\\"b\":1");
    QTest::newRow("a soft end in the head") << QByteArray("TEL;ENCODING=QUOTED-PRINTABLE;X==");
    QTest::newRow("a soft end") << QByteArray("TEL;ENCODING=QUOTED-PRINTABLE:=\r\n");
    QTest::newRow("two encodings") << QByteArray("NOTE;ENCODING=b;ENCODING=QUOTED-PRINTABLE:MTM=");
    QTest::newRow("a backslash at the end") << QByteArray("NOTE:x\\");
    QTest::newRow("a quote in the value") << QByteArray("NOTE:\"");
    QTest::newRow("binary") << QByteArray("NOTE:\x01\x02\xff\xfe\x80\xc0\xc1\xed\xa0\x80\xf8\x88\x80\x80\x80");
    QTest::newRow("a binary name") << QByteArray("\x01\x02\xff\xfe:x");
    QTest::newRow("a beginning that is none") << QByteArray("BEGIN:VEVENT");
    QTest::newRow("an end that is none") << QByteArray("END:VEVENT");
    QTest::newRow("a picture that is none") << QByteArray("PHOTO;ENCODING=b:****");
}

void ContactCardsTest::keepsTheRestOfADamagedCard()
{
    QFETCH(QByteArray, damage);
    const std::vector<Card> cards =
        ContactCards::read(card("N:Miller;Ann;;;\r\n" + damage + "\r\nEMAIL:ann@example.com"));
    QCOMPARE(shown(cards), "person - | Ann | Miller | - | - | - | mail  ann@example.com*");
}

void ContactCardsTest::cutsWhatIsEndless_data()
{
    QTest::addColumn<QByteArray>("endless");
    constexpr qsizetype million = 1000000;
    QTest::newRow("a line") << "NOTE:" + QByteArray(10 * million, 'x');
    QTest::newRow("a name") << QByteArray(10 * million, 'x');
    QTest::newRow("an open quote") << "TEL;X=\"" + QByteArray(10 * million, ':');
    QTest::newRow("lines") << QByteArray("NOTE:x\r\n").repeated(million);
    QTest::newRow("folds") << "NOTE:x" + QByteArray("\r\n x").repeated(million);
    QTest::newRow("folds of blanks") << QByteArray("\r\n  ").repeated(million);
    QTest::newRow("folds of blanks behind a value") << "NOTE:x" + QByteArray("\r\n  ").repeated(million);
    QTest::newRow("heads of folds") << ("x" + QByteArray("\r\n x").repeated(5000) + "\r\n").repeated(200);
    QTest::newRow("quoted heads of folds") << ("x;y=\"" + QByteArray("\r\n :").repeated(5000) + "\r\n").repeated(200);
    QTest::newRow("soft ends") << "TEL;ENCODING=QUOTED-PRINTABLE:" + QByteArray("=\r\n").repeated(million) + "\r\n";
    QTest::newRow("a picture") << "PHOTO;ENCODING=b:" + QByteArray(10 * million, 'x');
    QTest::newRow("lines of a picture") << "PHOTO;ENCODING=b:" + QByteArray("\r\nxxxxxxxx").repeated(million) + "\r\n";
    QTest::newRow("parts") << "ORG:" + QByteArray(million, ';');
    QTest::newRow("parameters") << "TEL" + QByteArray(";a=b").repeated(million) + ":1";
    QTest::newRow("types") << "TEL;TYPE=a" + QByteArray(",a").repeated(million) + ":1";
    QTest::newRow("groups") << QByteArray("a.").repeated(million) + "TEL:1";
    QTest::newRow("empty numbers") << QByteArray("TEL:\r\n").repeated(million);
    QTest::newRow("labels") << QByteArray("item1.X-ABLabel:x\r\n").repeated(million);
    QTest::newRow("empty members") << QByteArray("MEMBER:\r\n").repeated(million);
    QTest::newRow("secretaries") << QByteArray("AGENT:\r\n").repeated(million);
}

// The name stands before it, the address after it.
void ContactCardsTest::cutsWhatIsEndless()
{
    QFETCH(QByteArray, endless);
    const QByteArray text = card("N:Miller;Ann;;;\r\n" + endless + "\r\nPHOTO;ENCODING=b:SGVsbG8=");
    const std::vector<Card> cards = ContactCards::read(text);
    QVERIFY(!cards.empty());
    QVERIFY(shown(cards.front().record).startsWith("person - | Ann | Miller | - | - | -"));
    QVERIFY(cards.front().text.size() <= CardText::maximumBulkyLine + CardText::maximumOtherLines + 1000);
    QVERIFY(cards.front().text.contains("SGVsbG8="));
}

void ContactCardsTest::isReadTheSameInSlices()
{
    for (const QString &name : sampleNames()) {
        CardText whole(sample(name));
        CardText sliced(sample(name));
        while (!sliced.isAtEnd()) {
            const std::optional<CardText::Card> card = sliced.next(1);
            if (!card)
                continue;
            const std::optional<CardText::Card> same = whole.next();
            QVERIFY(same);
            QCOMPARE(card->text, same->text);
            QCOMPARE(card->start, same->start);
            QCOMPARE(card->lines.size(), same->lines.size());
            CardText again(sample(name));
            again.next(1);
            again.setPosition(card->start);
            QCOMPARE(again.next()->text, card->text);
        }
        QVERIFY(!whole.next());
    }
}

void ContactCardsTest::longTextWithoutCardsEndsInSlices()
{
    const QByteArray line = "what is this\r\n";
    CardText text("BEGIN:VCARD\r\n" + line.repeated(1000) + card("FN:Ann"));
    int slices = 0;
    std::optional<CardText::Card> ann;
    for (; !ann && !text.isAtEnd(); ++slices)
        ann = text.next(10 * line.size());
    QVERIFY(ann && ann->text.contains("Ann"));
    QCOMPARE(ann->start, 1000 * line.size() + qsizetype(strlen("BEGIN:VCARD\r\n")));
    QVERIFY2(slices >= 100, qPrintable(QString::number(slices)));
}

void ContactCardsTest::valuesAreBounded()
{
    QByteArray lines = "N:Miller;Ann;;;\r\n";
    for (int i = 0; i < 1000; ++i)
        lines += QByteArray("EMAIL:%1@example.com\r\nTEL:%1\r\n").replace("%1", QByteArray::number(i));
    const ContactRecord ann = read(lines);
    QCOMPARE(ann.emails.size(), 100u);
    QCOMPARE(ann.phones.size(), 100u);
    QCOMPARE(ann.emails.at(99).value, QStringLiteral("99@example.com"));
    QCOMPARE(ann.phones.at(99).value, QStringLiteral("99"));

    QByteArray members = "KIND:group\r\n";
    for (int i = 0; i < 10001; ++i)
        members += "MEMBER:" + QByteArray::number(i) + "\r\n";
    QCOMPARE(read(members).members.size(), 10000);
    QCOMPARE(read(members).members.last(), QStringLiteral("9999"));
    members.replace("KIND:group", "X-EVOLUTION-LIST:TRUE").replace("MEMBER:", "EMAIL:");
    QCOMPARE(read(members).members.size(), 10000);
}

void ContactCardsTest::partsAreBounded()
{
    const QByteArray most(CardLine::maximumParts, ';');
    QCOMPARE(valuesOf(read("TEL" + most + ":1\r\nTEL" + most + ";:2").phones), QStringList("1"));
    QCOMPARE(valuesOf(read("TEL;TYPE=a" + QByteArray(most).replace(';', ',').chopped(1) + ":1").phones),
             QStringList("1"));
    QCOMPARE(read("N:Miller" + most).lastName, QStringLiteral("Miller"));
    QCOMPARE(shown(read("N:Miller" + most + ";").lastName), QStringLiteral("-"));
}

void ContactCardsTest::textsAreBounded()
{
    const QByteArray longest(ContactCards::maximumText, 'x');
    const QByteArray tooLong = longest + 'x';
    const auto all = [](const QByteArray &text) {
        return read("UID:" + text + "\r\nN:" + text + ";" + text + ";;;" + text + "\r\nORG:" + text +
                    "\r\nURL:" + text + "\r\nTEL;TYPE=" + text + ":" + text + "\r\nEMAIL:" + text);
    };
    const ContactRecord whole = all(longest);
    const QString text = QString::fromUtf8(longest);
    QCOMPARE(shown(whole), QStringLiteral("person %1 | %1 | %1 | %1 | %1 | %1 | tel %1 %1* | mail  %1*").arg(text));
    // Names are cut, what is no name is none.
    const ContactRecord cut = all(tooLong);
    QCOMPARE(shown(cut), QStringLiteral("person - | %1 | %1 | %1 | %1 | -").arg(text));
    QCOMPARE(read("TEL;TYPE=" + tooLong + ":1").phones.at(0).label, text);
    QCOMPARE(read("FN:" + tooLong).firstName, text);
    QCOMPARE(read("KIND:group\r\nFN:" + tooLong + "\r\nMEMBER:" + tooLong).groupName, text);
    QCOMPARE(read("KIND:group\r\nMEMBER:" + tooLong).members, QStringList());
    // Not within a sign of two units.
    const QString smiles = QStringLiteral("x") + QStringLiteral("😀").repeated(ContactCards::maximumText);
    QVERIFY(!read("N:" + smiles.toUtf8()).lastName.back().isHighSurrogate());
}

void ContactCardsTest::everyBeginningOfACardIsSafe()
{
    for (const QString &name : sampleNames()) {
        const QByteArray text = sample(name);
        const std::size_t count = ContactCards::read(text).size();
        for (qsizetype length = 0; length < text.size(); ++length) {
            const QByteArray beginning = text.left(length);
            const std::vector<Card> cards = ContactCards::read(beginning);
            QVERIFY2(cards.size() <= count, qPrintable(name));
            QVERIFY(ContactCards::picture(beginning).size() <= length);
        }
    }
}

void ContactCardsTest::everyDamagedByteIsSafe()
{
    for (const QString &name : sampleNames()) {
        const QByteArray text = sample(name);
        for (qsizetype at = 0; at < text.size(); ++at) {
            QByteArray damaged = text;
            damaged[at] = "\"\\:;=\n\0\xff"[at % 8];
            for (const Card &card : ContactCards::read(damaged)) {
                QVERIFY(card.text.isValidUtf8());
                QCOMPARE(shown(ContactCards::read(card.text)), shown(card.record));
            }
        }
    }
}

QTEST_GUILESS_MAIN(ContactCardsTest)
#include "ContactCardsTest.moc"
