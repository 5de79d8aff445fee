#pragma once

#include "model/WayfoldBookmarkURL.h"

class HistoryRecords;
class WayfoldHistoryURL;
using WayfoldHistoryURLPtr = std::shared_ptr<WayfoldHistoryURL>;

// A page that the browser has visited: its identifier is the address, its time stamp the last visit. It is never saved,
// so its dictionary form is empty.
class WayfoldHistoryURL : public WayfoldBookmarkURL
{
public:
    using WayfoldBookmarkURL::WayfoldBookmarkURL;

    static WayfoldHistoryURLPtr bookmarkWithTitle(const QString &title);
    static WayfoldHistoryURLPtr bookmarkWithTitleAndURL(const QString &title, const Url &url);
    // From an entry of the browser's history file; without a title when the entry has no address.
    static WayfoldHistoryURLPtr bookmarkFromDictionary(const QVariantMap &dictionary);

    static WayfoldHistoryURLPtr bookmarkFromRecord(const HistoryRecords &records, unsigned number);

    void init() override;

    // Null: the address has no host.
    QString trackedHostName() const { return _trackedHostName; }
    void setTrackedHostName(const QString &hostName) { _trackedHostName = hostName; }
    CalendarDate lastVisitedDate() const { return timestamp(); }

    Type type() const override { return HistoryEntryType; }
    QString typeDescription() const override { return QStringLiteral("History Item"); }
    // The address, and day and time of the last visit in the user's format.
    QString tooltipText() const override;
    void loadFromDictionary(const QVariantMap &dictionary) override;
    void writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const override;
    QString classNameForCoder() const override { return QStringLiteral("WayfoldHistoryURL"); }

protected:
    KDRBookmarkPtr makeNew() const override;
    bool isSameKindAs(const KDRBookmark &other) const override;
    void copyTo(KDRBookmark &copy) const override;

private:
    QString _trackedHostName;
};
