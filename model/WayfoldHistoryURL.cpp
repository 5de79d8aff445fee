#include "model/WayfoldHistoryURL.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/ItemDictionary.h"
#include "platform/base/StringRules.h"

#include <QLocale>
#include <cmath>

namespace
{
// 1 January 2001, 00:00:00 GMT, in seconds of the system's clock.
constexpr double referenceDate = 978307200.0;
// Some eight thousand years either way; no calendar shows what lies beyond.
constexpr double furthestDate = 2.5e11;

// In the local time zone; none when the number is beyond all calendars.
CalendarDate dateWithSecondsSinceReferenceDate(double seconds)
{
    if (!(std::abs(seconds) <= furthestDate))
        return {};
    return CalendarDate::fromMSecsSinceEpoch(qint64(std::floor((seconds + referenceDate) * 1000.0)));
}

QString addressInDictionary(const QVariantMap &dictionary)
{
    return ItemDictionary::string(dictionary, QStringLiteral(""));
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

void WayfoldHistoryURL::init()
{
    WayfoldBookmarkURL::init();
    _trackedHostName = QString();
}

QString WayfoldHistoryURL::tooltipText() const
{
    const QLocale locale;
    return QStringLiteral("%1\n\n%2\n%3")
        .arg(url().absoluteString(), locale.toString(timestamp().date(), QLocale::LongFormat),
             locale.toString(timestamp().time(), QLocale::ShortFormat));
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
    setTimestamp(dateWithSecondsSinceReferenceDate(StringRules::doubleValue(seconds)));
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
