#include "lists/ItemDescription.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/WayfoldAutoFolder.h"
#include "model/WayfoldBookmarkEmail.h"
#include "platform/base/Url.h"

namespace
{
QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

QString kindOf(const KDRBookmark &item)
{
    switch (item.type()) {
    case KDRBookmark::FolderType:
        return localized(dynamic_cast<const WayfoldAutoFolder *>(&item) ? QT_TRID_NOOP("Smart Folder")
                                                                        : QT_TRID_NOOP("Folder"));
    case KDRBookmark::WebLinkType:
        return localized("Link");
    case KDRBookmark::FileLinkType:
        return localized("File");
    case KDRBookmark::NoteType:
        return localized("Note");
    case KDRBookmark::EmailLinkType:
        return localized("Email Link");
    case KDRBookmark::HistoryEntryType:
        return localized("Visited Page");
    case KDRBookmark::PersonType:
        return localized(item.typeDescription() == u"Organization" ? QT_TRID_NOOP("Organization")
                                                                   : QT_TRID_NOOP("Person"));
    case KDRBookmark::GroupType:
        return localized("Group");
    default:
        return {};
    }
}

QString recipientsOf(const WayfoldBookmarkEmail &mail)
{
    QStringList to;
    QStringList cc;
    QStringList bcc;
    QString subject;
    mail.parseMailToLinkIntoToListCCListBCCListSubject(to, cc, bcc, subject);
    return (to + cc + bcc).join(QStringLiteral(", "));
}

// Null for what leads nowhere.
QString destinationOf(const KDRBookmark &item)
{
    switch (item.type()) {
    case KDRBookmark::WebLinkType:
    case KDRBookmark::HistoryEntryType:
        return item.valueAsString();
    case KDRBookmark::FileLinkType:
        return item.value().value<Url>().path();
    case KDRBookmark::EmailLinkType:
        return recipientsOf(static_cast<const WayfoldBookmarkEmail &>(item));
    default:
        return {};
    }
}
} // namespace

QString ItemDescription::ofItem(const KDRBookmark &item)
{
    const QString destination = destinationOf(item);
    return destination.isEmpty() ? kindOf(item) : kindOf(item) + QStringLiteral(": ") + destination;
}
