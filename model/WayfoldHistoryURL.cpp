#include "model/WayfoldHistoryURL.h"

#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "model/ItemDictionary.h"
#include "model/history/HistoryRecords.h"
#include "platform/base/CalendarFormat.h"
#include "platform/base/StringRules.h"

#include <QLocale>

namespace
{
QString addressInDictionary(const QVariantMap &dictionary)
{
    return ItemDictionary::string(dictionary, QStringLiteral(""));
}

// Null when the user has no format of that name.
QString textInUsersFormat(const CalendarDate &date, const QString &name)
{
    const QString format = WayfoldDefaults::fetchPrefObjectForKey(name).toString();
    return format.isEmpty() ? QString() : CalendarFormat::string(date, format);
}
} // namespace

WayfoldHistoryURLPtr WayfoldHistoryURL::bookmarkWithTitle(const QString &title)
{
    auto entry = std::make_shared<WayfoldHistoryURL>();
    entry->setTitle(title);
    return entry;
}

WayfoldHistoryURLPtr WayfoldHistoryURL::bookmarkWithTitleAndURL(const QString &title, const Url &url)
{
    auto entry = std::make_shared<WayfoldHistoryURL>();
    entry->setTitle(title);
    entry->setURL(url);
    return entry;
}

WayfoldHistoryURLPtr WayfoldHistoryURL::bookmarkFromDictionary(const QVariantMap &dictionary)
{
    if (addressInDictionary(dictionary).isEmpty())
        return std::make_shared<WayfoldHistoryURL>();
    auto entry = std::make_shared<WayfoldHistoryURL>(Blank());
    entry->loadFromDictionary(dictionary);
    return entry;
}

WayfoldHistoryURLPtr WayfoldHistoryURL::bookmarkFromRecord(const HistoryRecords &records, unsigned number)
{
    auto entry = std::make_shared<WayfoldHistoryURL>(Blank());
    const QString address = records.address(number);
    entry->setTitle(records.title(number));
    entry->setURL(Url::URLWithString(address));
    entry->setUUID(address);
    entry->setTimestampInMilliseconds(records.visited(number));
    entry->setTrackedHostName(records.siteName(records.site(number)));
    return entry;
}

void WayfoldHistoryURL::init()
{
    WayfoldBookmarkURL::init();
    _trackedHostName = QString();
}

QString WayfoldHistoryURL::tooltipText() const
{
    const QString date = textInUsersFormat(timestamp(), QStringLiteral("NSDateFormatString"));
    const QString time = textInUsersFormat(timestamp(), QStringLiteral("NSTimeFormatString"));
    const QLocale locale;
    return QStringLiteral("%1\n\n%2\n%3")
        .arg(url().absoluteString(), date.isNull() ? locale.toString(timestamp().date(), QLocale::LongFormat) : date,
             time.isNull() ? locale.toString(timestamp().time(), QLocale::ShortFormat) : time);
}

void WayfoldHistoryURL::loadFromDictionary(const QVariantMap &dictionary)
{
    const QString address = addressInDictionary(dictionary);
    if (address.isEmpty())
        return;
    const QString seconds = ItemDictionary::string(dictionary, QStringLiteral("lastVisitedDate"));
    setTitle(ItemDictionary::string(dictionary, QStringLiteral("title")));
    setURL(Url::URLWithString(address));
    setUUID(address);
    setTimestampInMilliseconds(HistoryRecords::timestampFromSeconds(StringRules::doubleValue(seconds)));
    setTrackedHostName(WayfoldToolkit::hostNameToTrackFromHostName(url().host()));
}

void WayfoldHistoryURL::writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const
{
    Q_UNUSED(dictionary)
    Q_UNUSED(forSaving)
}

KDRBookmarkPtr WayfoldHistoryURL::makeNew() const
{
    return std::make_shared<WayfoldHistoryURL>(Blank());
}

bool WayfoldHistoryURL::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldHistoryURL *>(&other);
}

void WayfoldHistoryURL::copyTo(KDRBookmark &copy) const
{
    WayfoldBookmarkURL::copyTo(copy);
    static_cast<WayfoldHistoryURL &>(copy)._trackedHostName = _trackedHostName;
}
