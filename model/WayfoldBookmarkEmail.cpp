#include "model/WayfoldBookmarkEmail.h"

#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "model/ItemDialogs.h"
#include "model/ItemImages.h"
#include "platform/base/Scanner.h"
#include "platform/base/StringRules.h"

#include <QRegularExpression>

namespace
{
// Takes what stands before the delimiter, and steps over the delimiter unless nothing stood before it.
QString scanUpToString(const QString &delimiter, Scanner &scanner)
{
    QString piece = QStringLiteral("");
    if (scanner.scanUpToString(delimiter, &piece) && !scanner.isAtEnd())
        scanner.scanString(delimiter);
    return piece;
}

// Text whose escapes are no UTF-8 stays as it is written, so that no recipient is lost.
QString decodeHTTPInString(const QString &text)
{
    const QString decoded = StringRules::replacingPercentEscapes(text);
    return decoded.isNull() ? text : decoded;
}

// What stands between the commas of a list of recipients.
QString escapedList(const QStringList &addresses)
{
    QStringList escaped;
    for (const QString &address : addresses)
        escaped.append(StringRules::escapedValue(StringRules::trimmed(address)));
    return escaped.join(QLatin1Char(','));
}

// Escaped line ends, and commas and blanks beside them, become one comma; those around the list go.
QString withCommasForLineEnds(const QString &list)
{
    static const QRegularExpression lineEnds(QStringLiteral("(?:,|%20)*%0[ad](?:,|%20|%0[ad])*"),
                                             QRegularExpression::CaseInsensitiveOption);
    const QStringList lines = list.split(lineEnds, Qt::SkipEmptyParts);
    return lines.join(QLatin1Char(','));
}

QStringList addressesInString(const QString &text)
{
    return decodeHTTPInString(text).split(QLatin1Char(','));
}
} // namespace

WayfoldBookmarkEmailPtr WayfoldBookmarkEmail::bookmarkWithTitle(const QString &title)
{
    auto link = std::make_shared<WayfoldBookmarkEmail>();
    link->setTitle(title);
    return link;
}

WayfoldBookmarkEmailPtr WayfoldBookmarkEmail::bookmarkWithTitleAndURL(const QString &title, const Url &url)
{
    auto link = std::make_shared<WayfoldBookmarkEmail>();
    link->setTitle(title);
    link->setURL(url);
    return link;
}

WayfoldBookmarkEmailPtr WayfoldBookmarkEmail::bookmarkFromDictionary(const QVariantMap &dictionary)
{
    auto link = std::make_shared<WayfoldBookmarkEmail>(Blank());
    link->loadFromDictionary(dictionary);
    return link;
}

Url WayfoldBookmarkEmail::mailURL(const QStringList &to, const QStringList &cc, const QStringList &bcc,
                                  const QString &subject)
{
    QString address = QStringLiteral("mailto:") + escapedList(to);
    QChar separator(u'?');
    const auto append = [&address, &separator](const char *name, const QString &value) {
        address += separator + QLatin1String(name) + QLatin1Char('=') + value;
        separator = QChar(u'&');
    };
    if (!cc.isEmpty())
        append("cc", escapedList(cc));
    if (!bcc.isEmpty())
        append("bcc", escapedList(bcc));
    if (!subject.isEmpty())
        append("subject", StringRules::escapedValue(StringRules::trimmed(subject)));
    return Url::URLWithString(address);
}

Url WayfoldBookmarkEmail::urlForMailProgram() const
{
    const QString address = url().absoluteString();
    const qsizetype start = address.indexOf(u'?');
    QStringList pieces = start < 0 ? QStringList() : address.mid(start + 1).split(u'&');
    const qsizetype scheme = address.indexOf(u':') + 1;
    const QString to = address.mid(scheme, start < 0 ? -1 : start - scheme);
    for (QString &piece : pieces) {
        const qsizetype value = piece.indexOf(u'=') + 1;
        const QStringView name = QStringView(piece).first(value);
        if (name.compare(u"cc=", Qt::CaseInsensitive) == 0 || name.compare(u"bcc=", Qt::CaseInsensitive) == 0)
            piece.replace(value, piece.size() - value, withCommasForLineEnds(piece.mid(value)));
    }
    const QString rest = start < 0 ? QString() : QLatin1Char('?') + pieces.join(u'&');
    return Url::URLWithString(address.first(scheme) + withCommasForLineEnds(to) + rest);
}

WayfoldBookmarkEmailPtr WayfoldBookmarkEmail::newViaDialog()
{
    WayfoldBookmarkEmailPtr link = bookmarkWithTitle(WayfoldToolkit::localizedString(QStringLiteral("New Email Link")));
    ItemDialogs *const dialogs = ItemDialogs::current();
    return dialogs && dialogs->newEmail(link) ? link : nullptr;
}

void WayfoldBookmarkEmail::parseMailToLinkIntoToListCCListBCCListSubject(QStringList &toList, QStringList &ccList,
                                                                         QStringList &bccList, QString &subject) const
{
    toList.clear();
    ccList.clear();
    bccList.clear();
    subject = QStringLiteral("");

    Scanner scanner(url().absoluteString());
    scanUpToString(QStringLiteral(":"), scanner);
    toList += addressesInString(scanUpToString(QStringLiteral("?"), scanner));
    while (!scanner.isAtEnd()) {
        const QString piece = scanUpToString(QStringLiteral("&"), scanner);
        // An "&" with nothing before it would never be left behind.
        if (piece.isEmpty())
            scanner.scanString(QStringLiteral("&"));
        const QStringList parts = piece.split(QLatin1Char('='));
        if (parts.size() != 2)
            continue;
        if (parts[0] == QLatin1String("cc"))
            ccList += addressesInString(parts[1]);
        else if (parts[0] == QLatin1String("bcc"))
            bccList += addressesInString(parts[1]);
        else if (parts[0] == QLatin1String("subject"))
            subject = decodeHTTPInString(parts[1]);
    }
}

void WayfoldBookmarkEmail::parseMailToLinkIntoToCCBCCSubject(QString &to, QString &cc, QString &bcc,
                                                             QString &subject) const
{
    QStringList toList;
    QStringList ccList;
    QStringList bccList;
    parseMailToLinkIntoToListCCListBCCListSubject(toList, ccList, bccList, subject);
    to = toList.join(QLatin1Char('\n'));
    cc = ccList.join(QLatin1Char('\n'));
    bcc = bccList.join(QLatin1Char('\n'));
}

QString WayfoldBookmarkEmail::tooltipText() const
{
    QString to;
    QString cc;
    QString bcc;
    QString subject;
    parseMailToLinkIntoToCCBCCSubject(to, cc, bcc, subject);
    // No blank after "To:"; this is how the text reads.
    QString summary = QStringLiteral("Subject: ") + subject + QStringLiteral("\n\nTo:") + to;
    if (!cc.isEmpty())
        summary += QStringLiteral("\n\nCC: ") + cc;
    if (!bcc.isEmpty())
        summary += QStringLiteral("\n\nBCC: ") + bcc;
    return summary;
}

std::shared_ptr<Image> WayfoldBookmarkEmail::imageForCellSize(const QSizeF &size)
{
    Q_UNUSED(size)
    std::shared_ptr<Image> &image = ItemImages::shared().mail;
    if (!image && WayfoldDefaults::sharedInstance().showBookmarkIcons())
        image = ItemImages::neverCached(WayfoldToolkit::loadImageNamed(QStringLiteral("WayfoldBookmarkImageMail")));
    return image;
}

bool WayfoldBookmarkEmail::editViaDialog()
{
    ItemDialogs *const dialogs = ItemDialogs::current();
    return dialogs && dialogs->editEmail(std::static_pointer_cast<WayfoldBookmarkEmail>(shared_from_this()));
}

KDRBookmarkPtr WayfoldBookmarkEmail::makeNew() const
{
    return std::make_shared<WayfoldBookmarkEmail>(Blank());
}

bool WayfoldBookmarkEmail::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldBookmarkEmail *>(&other);
}
