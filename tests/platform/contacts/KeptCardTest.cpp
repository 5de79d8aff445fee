#include "platform/contacts/KeptCard.h"

#include <QTest>

class KeptCardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textIsKeptAsItIs();
    void picturesAndSoundsAreLeftOut_data();
    void picturesAndSoundsAreLeftOut();
    void addressOfAPictureStays();
    void textThatIsTooLarge();
    void sameCards();
    void identifierOfTheService();
    void pictureIsPutIn_data();
    void pictureIsPutIn();
    void pictureIsPutInPlaceOfAnother();
    void whatIsNoCardStaysWithoutPicture();

private:
    static QByteArray card(const QByteArray &lines)
    {
        return "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:ada\r\nFN:Ada\r\n" + lines + "END:VCARD\r\n";
    }
    static KeptCard kept(const QByteArray &text)
    {
        ContactCards::Card read;
        read.record.uniqueId = "ada";
        read.text = text;
        return {read, "ada"};
    }
};

void KeptCardTest::textIsKeptAsItIs()
{
    const QByteArray text = card("NOTE:long\r\n er\r\nEMAIL:ada@example.org\r\n");
    const KeptCard ada = kept(text);
    QCOMPARE(ada.text(), text);
    QVERIFY(!ada.isCut());
    QVERIFY(!ada.hasPicture());
    QCOMPARE(ada.record()->uniqueId, QString("ada"));
}

void KeptCardTest::picturesAndSoundsAreLeftOut_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isPicture");
    QTest::newRow("picture") << QByteArray("PHOTO") << true;
    QTest::newRow("small letters") << QByteArray("photo") << true;
    QTest::newRow("in a group") << QByteArray("item1.PHOTO") << true;
    QTest::newRow("logo") << QByteArray("LOGO") << false;
    QTest::newRow("sound") << QByteArray("SOUND") << false;
    QTest::newRow("key") << QByteArray("KEY") << false;
}

void KeptCardTest::picturesAndSoundsAreLeftOut()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, isPicture);
    QByteArray lines = name + ";ENCODING=b:QUJD\r\n";
    for (int i = 0; i < 20; ++i)
        lines += ' ' + QByteArray(74, 'A') + "\r\n";
    const KeptCard ada = kept(card(lines + "NOTE:after\r\n"));
    QCOMPARE(ada.text(), card("NOTE:after\r\n"));
    QVERIFY(ada.isCut());
    QCOMPARE(ada.hasPicture(), isPicture);
}

void KeptCardTest::addressOfAPictureStays()
{
    const QByteArray text = card("PHOTO;VALUE=uri:file:///home/ada/face.png\r\n");
    const KeptCard ada = kept(text);
    QCOMPARE(ada.text(), text);
    QVERIFY(!ada.isCut());
    QVERIFY(ada.hasPicture());
}

void KeptCardTest::textThatIsTooLarge()
{
    QByteArray note = "NOTE:";
    quint32 number = 1;
    for (int i = 0; i < 8000; ++i)
        note += QByteArray::number(number = number * 2654435761U + 12345U, 36);
    const KeptCard ada = kept(card(note + "\r\n"));
    QVERIFY(ada.text().isEmpty());
    QVERIFY(ada.isCut());
    // What packs well stays.
    QVERIFY(!kept(card("NOTE:" + QByteArray(50'000, 'x') + "\r\n")).isCut());
}

void KeptCardTest::sameCards()
{
    const QByteArray picture = "PHOTO;ENCODING=b:" + QByteArray(2000, 'A') + "\r\n";
    const QByteArray other = "PHOTO;ENCODING=b:" + QByteArray(2000, 'B') + "\r\n";
    QVERIFY(kept(card("")).isSameAs(kept(card(""))));
    QVERIFY(!kept(card("")).isSameAs(kept(card("NOTE:x\r\n"))));
    QVERIFY(kept(card(picture)).isSameAs(kept(card(picture))));
    QVERIFY(!kept(card(picture)).isSameAs(kept(card(other)))); // also in what is left out
}

void KeptCardTest::identifierOfTheService()
{
    ContactCards::Card read;
    read.record.uniqueId = "ada";
    read.text = card("");
    QCOMPARE(KeptCard(read, "ada").serviceIdentifier(), QString("ada"));
    QCOMPARE(KeptCard(read, "urn:uuid:ada").serviceIdentifier(), QString("urn:uuid:ada"));
    QCOMPARE(KeptCard(read, "urn:uuid:ada").record()->uniqueId, QString("ada"));
}

void KeptCardTest::pictureIsPutIn_data()
{
    QTest::addColumn<QByteArray>("picture");
    QTest::addColumn<QByteArray>("type");
    QTest::newRow("PNG") << QByteArray("\x89PNG....") << QByteArray(";TYPE=PNG");
    QTest::newRow("JPEG") << QByteArray("\xff\xd8\xff....") << QByteArray(";TYPE=JPEG");
    QTest::newRow("GIF") << QByteArray("GIF89a....") << QByteArray(";TYPE=GIF");
    QTest::newRow("another") << QByteArray("RIFF....") << QByteArray();
    QTest::newRow("large") << QByteArray(5000, 'x') << QByteArray();
}

void KeptCardTest::pictureIsPutIn()
{
    QFETCH(QByteArray, picture);
    QFETCH(QByteArray, type);
    const QByteArray text = KeptCard::withPicture(card("NOTE:END:VCARD\r\n"), picture);
    QVERIFY(text.startsWith(card("NOTE:END:VCARD\r\n").chopped(11)));
    QVERIFY(text.endsWith("\r\nEND:VCARD\r\n"));
    QVERIFY(text.contains("\r\nPHOTO;ENCODING=b" + type + ":"));
    for (const QByteArray &line : text.split('\n'))
        QVERIFY(line.size() <= 76); // with the sign before its end
    QCOMPARE(ContactCards::picture(text), picture);
}

void KeptCardTest::pictureIsPutInPlaceOfAnother()
{
    const QByteArray text = KeptCard::withPicture(card("PHOTO;VALUE=uri:file:///a\r\n .png\r\n"), "GIF8");
    QCOMPARE(text, card("PHOTO;ENCODING=b;TYPE=GIF:R0lGOA==\r\n"));
}

void KeptCardTest::whatIsNoCardStaysWithoutPicture()
{
    QCOMPARE(KeptCard::withPicture("no card", "GIF8"), QByteArray("no card"));
    QCOMPARE(KeptCard::withPicture("", "GIF8"), QByteArray(""));
}

QTEST_APPLESS_MAIN(KeptCardTest)
#include "KeptCardTest.moc"
