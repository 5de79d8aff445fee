#include "benchmarks/LifelikeContacts.h"

#include <QDir>
#include <QFile>

namespace
{
const char *const syllables[] = {"an", "bel", "cor", "dre", "el", "fin",        "gar",       "hu",  "is",
                                 "ka", "lo",  "mar", "ne",  "or", "\xc3\xb6st", "\xc3\xa9r", "sim", "vi"};
const char *const firstNames[] = {"Anna",
                                  "J\xc3\xbcrgen",
                                  "Zo\xc3\xab",
                                  "\xd0\x9e\xd0\xbb\xd1\x8c\xd0\xb3\xd0\xb0",
                                  "Peter",
                                  "Ingrid",
                                  "\xe8\x8a\xb1\xe5\xad\x90",
                                  "Ren\xc3\xa9",
                                  "Maria",
                                  "Tom"};

template <std::size_t count>
QByteArray at(const char *const (&words)[count], int number)
{
    return words[std::size_t(number) % count];
}
} // namespace

bool LifelikeContacts::write(const QString &folder, int count)
{
    bool isWritten = QDir().mkpath(folder);
    for (int i = 0; i < count && isWritten; ++i) {
        QFile file(folder + u'/' + fileName(i));
        const QByteArray text = card(i);
        isWritten = file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    }
    return isWritten;
}

QString LifelikeContacts::fileName(int number)
{
    return QStringLiteral("card-%1.vcf").arg(number, 6, 10, QLatin1Char('0'));
}

QByteArray LifelikeContacts::card(int number, int changes)
{
    _random.seed(std::uint64_t(number));
    const QByteArray first = at(firstNames, below(10));
    QByteArray last = word(2 + below(2));
    last[0] = char(last[0] >= 'a' && last[0] <= 'z' ? last[0] - 32 : last[0]);
    const QByteArray mail = word(3) + QByteArray::number(number);
    const QByteArray id = QByteArray::number(number);
    QByteArray card = "BEGIN:VCARD\r\nVERSION:3.0\r\nPRODID:-//Made up//EN\r\nUID:card-" + id + "\r\nFN:" + first +
                      ' ' + last + "\r\nN:" + last + ';' + first + ";;;\r\n";
    if (!oneIn(3))
        card += "ORG:" + word(3) + " GmbH;" + word(2) + "\r\nTITLE:" + word(4) + "\r\n";
    card += "EMAIL;TYPE=INTERNET,WORK:" + mail + "@firm" + QByteArray::number(below(500)) + ".example\r\n";
    if (oneIn(2))
        card += "EMAIL;TYPE=INTERNET,HOME,PREF:" + word(2) + id + "@home.example\r\n";
    for (int phones = below(4); phones > 0; --phones)
        card += "TEL;TYPE=CELL,VOICE:+49 " + QByteArray::number(below(1'000'000'000)) + "\r\n";
    if (oneIn(4))
        card += "URL:https://www." + word(3) + ".example/~" + mail + "\r\n";
    if (oneIn(2))
        card += "ADR;TYPE=HOME:;;" + word(4) + " 12;" + word(3) + ";;12345;Germany\r\n";
    card += "NOTE:changed " + QByteArray::number(changes) + " times\\, last by " + word(2) + "\r\n";
    if (oneIn(20))
        card += "PHOTO;ENCODING=b;TYPE=JPEG:" + QByteArray(6000, char('a' + below(26))).toBase64() + "\r\n";
    return card + "REV:2025-01-01T00:00:00Z\r\nEND:VCARD\r\n";
}

QByteArray LifelikeContacts::word(int length)
{
    QByteArray word;
    for (int i = 0; i < length; ++i)
        word += at(syllables, below(18));
    return word;
}
