#include "platform/contacts/ContactCards.h"

#include "platform/base/StringRules.h"
#include "platform/contacts/CardProperty.h"
#include "platform/contacts/CardText.h"
#include "platform/contacts/ContactLabels.h"
#include "platform/contacts/PersonName.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
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

int mostOf(const QByteArray &name)
{
    const bool isMember = name == "EMAIL" || name.endsWith("MEMBER");
    return isMember ? ContactCards::maximumMembers : ContactCards::maximumValues;
}

Properties propertiesOf(const std::vector<CardLine> &lines, const QSet<QByteArray> &names)
{
    std::vector<const CardLine *> wanted;
    QHash<QByteArray, int> counts;
    for (const CardLine &line : lines) {
        // Parting a value costs the square of its parts.
        if (names.contains(line.name) && line.value.count(';') <= CardLine::maximumParts &&
            ++counts[line.name] <= mostOf(line.name))
            wanted.push_back(&line);
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

// What means something else when it is cut.
QString whole(const QString &text)
{
    return text.isEmpty() || text.size() > ContactCards::maximumText ? QString() : text;
}

QString identifier(const QString &text)
{
    return whole(without(QStringLiteral("urn:uuid:"), text));
}

// The labels that stand beside values, by the groups of both.
QHash<QByteArray, QString> labelsIn(const Properties &properties)
{
    QHash<QByteArray, QString> labels;
    for (const CardProperty &one : properties) {
        if (one.name == "X-ABLABEL" && !one.group.isEmpty() && !one.text().isNull())
            labels.insert(one.group, ContactLabels::ofText(one.text()));
    }
    return labels;
}

// 1 for the one that is to be taken first, to 100; 101 where the card says nothing.
int preference(const CardProperty &value)
{
    if (value.types().contains(QStringLiteral("pref"), Qt::CaseInsensitive))
        return 1;
    bool isNumber = false;
    const int number = value.parameter("PREF").toInt(&isNumber);
    return isNumber && number >= 1 && number <= 100 ? number : 101;
}

void readValues(const Properties &properties, QByteArrayView name, const QString &scheme,
                std::vector<ContactValue> &values, int &primary)
{
    const QHash<QByteArray, QString> labels = labelsIn(properties);
    int best = 101;
    for (const CardProperty &one : properties) {
        const QString value = one.name == name ? whole(without(scheme, one.text())) : QString();
        if (value.isNull() || values.size() >= ContactCards::maximumValues)
            continue;
        if (preference(one) < best) {
            best = preference(one);
            primary = int(values.size());
        }
        const QString label = labels.value(one.group);
        values.push_back({cut(label.isEmpty() ? ContactLabels::ofTypes(one.types()) : label), value});
    }
}

// Part of a name, of which there may be several: "M.D.,Ph.D.".
QString nameIn(const CardProperty &property, qsizetype index)
{
    static const QRegularExpression betweenTwo(QStringLiteral(",(?=\\S)"));
    return cut(cut(property.part(index)).replace(betweenTwo, QStringLiteral(", ")));
}

PersonName nameInParts(const Properties &properties)
{
    for (const CardProperty &one : properties) {
        const PersonName name = {nameIn(one, 1), nameIn(one, 0), nameIn(one, 4)};
        if (one.name == "N" && !name.isNone())
            return name;
    }
    return {};
}

void readNames(const Properties &properties, ContactRecord &record)
{
    const bool isCompany = says(properties, "KIND", "org") || says(properties, "X-ABSHOWAS", "COMPANY");
    const CardProperty *organization = property(properties, "ORG");
    const QString shown = cut(text(properties, "FN"));
    record.organization = organization ? cut(organization->part(0)) : QString();
    if (isCompany && record.organization.isNull())
        record.organization = shown;
    PersonName name = nameInParts(properties);
    if (name.isNone() && !isCompany && shown.compare(record.organization, Qt::CaseInsensitive) != 0)
        name = PersonName::fromText(shown);
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

// Of somebody without a card: the address.
QString mailMember(const QString &address)
{
    return address.isEmpty() ? QString() : QStringLiteral("mailto:") + address;
}

QString memberOf(const CardProperty &one)
{
    const QString text = one.text();
    if (one.name != "EMAIL") {
        const QString address = without(QStringLiteral("mailto:"), text);
        return address == text ? identifier(text) : mailMember(address);
    }
    if (const QString id = identifier(one.parameter("X-EVOLUTION-DEST-CONTACT-UID")); !id.isNull())
        return id;
    const QString address = one.parameter("X-EVOLUTION-DEST-EMAIL");
    return mailMember(address.isEmpty() ? addressIn(text) : address);
}

QStringList membersIn(const Properties &properties, const QByteArrayList &names)
{
    QStringList members;
    QSet<QString> known;
    for (const CardProperty &one : properties) {
        const QString member = names.contains(one.name) ? whole(memberOf(one)) : QString();
        if (member.isNull() || known.contains(member))
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
    record.homePage = whole(page.isNull() ? text(properties, "X-EVOLUTION-BLOG-URL") : page);
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
    const bool isHere = url.isLocalFile() && (url.host().isEmpty() || url.host() == QStringLiteral("localhost"));
    return isHere ? contentsOf(url.path(QUrl::FullyDecoded)) : QByteArray();
}

QByteArray pictureOf(const CardLine &photo)
{
    if (photo.encoding() == CardLine::Base64) // megabytes of it, so nobody else is asked
        return photo.decodedBase64();
    const Properties properties = CardProperty::fromLines({&photo});
    return properties.empty() ? QByteArray() : contentsOfAddress(properties.front().value());
}
} // namespace

QString ContactCards::identifier(const QString &text)
{
    return ::identifier(text);
}

std::vector<ContactCards::Card> ContactCards::read(const QByteArray &text)
{
    std::vector<Card> cards;
    CardText source(text);
    while (const std::optional<CardText::Card> text = source.next()) {
        if (std::optional<Card> card = read(*text))
            cards.push_back(std::move(*card));
    }
    return cards;
}

std::optional<ContactCards::Card> ContactCards::read(const CardText::Card &text)
{
    const Properties properties = propertiesOf(text.lines, wantedNames());
    return properties.empty() ? std::nullopt : std::optional<Card>({recordOf(properties), text.text});
}

QByteArray ContactCards::picture(const QByteArray &card)
{
    const std::optional<CardText::Card> first = CardText(card).next();
    if (!first)
        return {};
    for (const CardLine &line : first->lines) {
        const QByteArray picture = line.name == "PHOTO" ? pictureOf(line) : QByteArray();
        if (!picture.isEmpty() && picture.size() <= maximumPicture)
            return picture;
    }
    return {};
}
