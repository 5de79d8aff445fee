#include "platform/contacts/ContactCards.h"

#include "platform/base/StringRules.h"
#include "platform/contacts/CardProperty.h"
#include "platform/contacts/CardText.h"
#include "platform/contacts/ContactLabels.h"
#include "platform/contacts/PersonName.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QUrl>

namespace
{
using Properties = std::vector<CardProperty>;

// Everything else of a card is not looked at.
const QSet<QByteArray> &wantedNames()
{
    static const QSet<QByteArray> names = {"N",
                                           "FN",
                                           "ORG",
                                           "URL",
                                           "X-EVOLUTION-BLOG-URL",
                                           "TEL",
                                           "EMAIL",
                                           "UID",
                                           "KIND",
                                           "MEMBER",
                                           "X-ABSHOWAS",
                                           "X-ABLABEL",
                                           "X-ADDRESSBOOKSERVER-KIND",
                                           "X-ADDRESSBOOKSERVER-MEMBER",
                                           "X-EVOLUTION-LIST",
                                           "X-EVOLUTION-FILE-AS"};
    return names;
}

Properties propertiesOf(const QByteArrayList &lines, const QSet<QByteArray> &names)
{
    QByteArrayList wanted;
    QHash<QByteArray, int> count;
    for (const QByteArray &line : lines) {
        const QByteArray name = CardText::nameOfLine(line);
        if (!names.contains(name) || line.count(';') > ContactCards::maximumParts)
            continue;
        const int most =
            name.endsWith("MEMBER") || name == "EMAIL" ? ContactCards::maximumMembers : ContactCards::maximumValues;
        if (++count[name] <= most)
            wanted.append(line);
    }
    return CardProperty::fromLines(wanted);
}

const CardProperty *property(const Properties &properties, QByteArrayView name)
{
    const auto found = std::find_if(properties.cbegin(), properties.cend(),
                                    [name](const CardProperty &one) { return one.name == name; });
    return found == properties.cend() ? nullptr : &*found;
}

// Of the first property of the name that has one.
QString text(const Properties &properties, QByteArrayView name)
{
    for (const CardProperty &one : properties) {
        if (one.name == name && !one.text().isNull())
            return one.text();
    }
    return {};
}

bool says(const Properties &properties, QByteArrayView name, const char *value)
{
    return text(properties, name).compare(QLatin1String(value), Qt::CaseInsensitive) == 0;
}

QString cut(const QString &text)
{
    return StringRules::beginning(text, ContactCards::maximumText);
}

QString without(const QString &scheme, const QString &text)
{
    return text.startsWith(scheme, Qt::CaseInsensitive) ? text.mid(scheme.size()) : text;
}

// An identifier that is cut would be another's.
QString identifier(const QString &text)
{
    const QString id = without(QStringLiteral("urn:uuid:"), text);
    return id.isEmpty() || id.size() > ContactCards::maximumText ? QString() : id;
}

QString labelOf(const CardProperty &value, const Properties &properties)
{
    for (const CardProperty &one : properties) {
        if (one.name == "X-ABLABEL" && !value.group.isEmpty() && one.group == value.group && !one.text().isNull())
            return cut(ContactLabels::ofText(one.text()));
    }
    return cut(ContactLabels::ofTypes(value.types()));
}

// 1 for the one that is to be taken first, to 100; 101 where the card says nothing.
int preference(const CardProperty &value)
{
    if (value.types().contains(QStringLiteral("pref")))
        return 1;
    bool isNumber = false;
    const int number = value.parameters.value("PREF").toInt(&isNumber);
    return isNumber && number >= 1 && number <= 100 ? number : 101;
}

void readValues(const Properties &properties, QByteArrayView name, const QString &scheme,
                std::vector<ContactValue> &values, int &primary)
{
    int best = 101;
    for (const CardProperty &one : properties) {
        if (one.name != name || values.size() >= ContactCards::maximumValues)
            continue;
        const QString value = without(scheme, one.text());
        if (value.isEmpty() || value.size() > ContactCards::maximumText)
            continue;
        if (preference(one) < best) {
            best = preference(one);
            primary = int(values.size());
        }
        values.push_back({labelOf(one, properties), value});
    }
}

PersonName nameInParts(const Properties &properties)
{
    const CardProperty *name = property(properties, "N");
    return name ? PersonName{cut(name->part(1)), cut(name->part(0)), cut(name->part(4))} : PersonName();
}

void readNames(const Properties &properties, ContactRecord &record)
{
    const bool isCompany = says(properties, "KIND", "org") || says(properties, "X-ABSHOWAS", "COMPANY");
    const CardProperty *organization = property(properties, "ORG");
    const QString whole = cut(text(properties, "FN"));
    record.organization = organization ? cut(organization->part(0)) : QString();
    if (isCompany && record.organization.isNull())
        record.organization = whole;
    PersonName name = nameInParts(properties);
    if (name.isNone() && !whole.isNull() && whole.compare(record.organization, Qt::CaseInsensitive) != 0 && !isCompany)
        name = PersonName::fromText(whole);
    record.firstName = name.first;
    record.lastName = name.last;
    record.suffix = name.suffix;
    if (isCompany || (name.isNone() && !record.organization.isNull()))
        record.flags = ContactRecord::ShowAsCompany;
}

// The address in "Ann Miller <ann@example.com>".
QString addressIn(const QString &text)
{
    const qsizetype start = text.lastIndexOf(u'<');
    const qsizetype end = text.lastIndexOf(u'>');
    return start >= 0 && end > start ? text.mid(start + 1, end - start - 1) : text;
}

QString memberOf(const CardProperty &one)
{
    static const QString mail = QStringLiteral("mailto:");
    if (one.name != "EMAIL") {
        const QString member = one.text();
        return member.startsWith(mail, Qt::CaseInsensitive) ? mail + member.mid(mail.size()) : identifier(member);
    }
    if (const QString id = identifier(one.parameters.value("X-EVOLUTION-DEST-CONTACT-UID")); !id.isNull())
        return id;
    const QString named = one.parameters.value("X-EVOLUTION-DEST-EMAIL");
    const QString address = named.isEmpty() ? addressIn(one.text()) : named;
    return address.isEmpty() ? QString() : mail + address;
}

QStringList membersIn(const Properties &properties, const QByteArrayList &names)
{
    QStringList members;
    QSet<QString> known;
    for (const CardProperty &one : properties) {
        if (!names.contains(one.name))
            continue;
        const QString member = memberOf(one);
        if (member.isEmpty() || member.size() > ContactCards::maximumText || known.contains(member))
            continue;
        known.insert(member);
        members.append(member);
    }
    return members;
}

QString groupNameIn(const Properties &properties)
{
    QString name = text(properties, "FN");
    if (name.isNull())
        name = nameInParts(properties).last;
    return cut(name.isNull() ? text(properties, "X-EVOLUTION-FILE-AS") : name);
}

ContactRecord recordOf(const Properties &properties)
{
    ContactRecord record;
    record.uniqueId = identifier(text(properties, "UID"));
    const bool isList = says(properties, "X-EVOLUTION-LIST", "TRUE");
    record.isGroup =
        isList || says(properties, "KIND", "group") || says(properties, "X-ADDRESSBOOKSERVER-KIND", "group");
    if (record.isGroup) {
        record.groupName = groupNameIn(properties);
        record.members = membersIn(properties, isList ? QByteArrayList{"EMAIL"}
                                                      : QByteArrayList{"MEMBER", "X-ADDRESSBOOKSERVER-MEMBER"});
        return record;
    }
    readNames(properties, record);
    const QString page = text(properties, "URL");
    record.homePage = cut(page.isNull() ? text(properties, "X-EVOLUTION-BLOG-URL") : page);
    readValues(properties, "TEL", QStringLiteral("tel:"), record.phones, record.primaryPhone);
    readValues(properties, "EMAIL", QStringLiteral("mailto:"), record.emails, record.primaryEmail);
    return record;
}

QByteArray contentsOf(const QString &path)
{
    // A device or a pipe might never end.
    if (!QFileInfo(path).isFile())
        return {};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > ContactCards::maximumPicture)
        return {};
    return file.read(ContactCards::maximumPicture);
}

// What the address stands for, when it stands for anything on this machine.
QByteArray contentsOfAddress(const QByteArray &address)
{
    const qsizetype comma = address.indexOf(',');
    if (address.left(5).toLower() == "data:" && comma >= 0) {
        const QByteArray data = address.mid(comma + 1);
        return address.left(comma).toLower().endsWith(";base64") ? QByteArray::fromBase64(data)
                                                                 : QByteArray::fromPercentEncoding(data);
    }
    const QUrl url(QString::fromUtf8(address.trimmed()));
    return url.isLocalFile() ? contentsOf(url.toLocalFile()) : QByteArray();
}

QByteArray pictureOf(const CardProperty &photo)
{
    const QString encoding = photo.parameters.value("ENCODING").toUpper();
    if (encoding == QStringLiteral("B") || encoding == QStringLiteral("BASE64"))
        return photo.value();
    return contentsOfAddress(photo.value());
}
} // namespace

std::vector<ContactCards::Card> ContactCards::read(const QByteArray &text)
{
    std::vector<Card> cards;
    CardText source(text);
    while (const std::optional<CardText::Card> card = source.next()) {
        const Properties properties = propertiesOf(card->lines, wantedNames());
        if (!properties.empty())
            cards.push_back({recordOf(properties), card->text});
    }
    return cards;
}

QByteArray ContactCards::picture(const QByteArray &card)
{
    const std::optional<CardText::Card> first = CardText(card).next();
    if (!first)
        return {};
    for (const CardProperty &photo : propertiesOf(first->lines, {"PHOTO"})) {
        const QByteArray picture = pictureOf(photo);
        if (!picture.isEmpty() && picture.size() <= maximumPicture)
            return picture;
    }
    return {};
}
