#pragma once

#include "model/KDRBookmark.h"
#include "model/TextBlocks.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QString>
#include <memory>
#include <vector>

class TextSearch;
class UUIDSearch;

// The entries of the browser's history file, as read, in few large pieces of memory: a hundred thousand of them are
// held without as many items. Items are made of them where a list shows them (see HistoryItems).
//
// A later reading of the file takes over from the former one what has not changed: texts and sites are shared between
// the two, which only ever grows them.
class HistoryRecords
{
public:
    static constexpr qint64 noDate = KDRBookmark::noTimestamp;
    static constexpr unsigned noSite = 0;

    // Of a point in time, given in seconds since 1 January 2001, 00:00:00 GMT: milliseconds since 1970, GMT; `noDate`
    // when it is beyond all calendars.
    static qint64 timestampFromSeconds(double seconds);

    HistoryRecords();
    // Empty, and ready to take entries over from the former ones.
    explicit HistoryRecords(const HistoryRecords &former, std::size_t expected);

    // Title and address in UTF-8. An entry without a title or an address is not one and is left out: false.
    // `secondsText`: seconds since 1 January 2001, 00:00:00 GMT, as a decimal number.
    bool append(QByteArrayView title, QByteArrayView address, QByteArrayView secondsText);
    // Appends an entry that may be that of the given number in the records that these were made from; whether it is.
    bool appendIfSame(const HistoryRecords &former, unsigned number, QByteArrayView title, QByteArrayView address,
                      QByteArrayView secondsText);
    // Appends the entries from `first` to before `last` of the records that these were made from.
    void appendFrom(const HistoryRecords &former, unsigned first, unsigned last);

    // Appends an entry of any other records with a text of its own, so that nothing is shared with them.
    void appendCopy(const HistoryRecords &other, unsigned number);
    // The same entries, sharing nothing with these or any other records.
    std::shared_ptr<HistoryRecords> withoutWaste() const;

    unsigned count() const { return unsigned(_records.size()); }
    QString title(unsigned index) const;
    QString address(unsigned index) const;
    // Milliseconds since 1970, GMT; `noDate`: none.
    qint64 visited(unsigned index) const { return _records[index].visited; }
    // Entries of the same site have the same number; `noSite`: none.
    unsigned site(unsigned index) const { return _records[index].site; }
    // Null for `noSite`.
    const QString &siteName(unsigned site) const { return _texts->siteNames[site]; }
    unsigned siteCount() const { return unsigned(_texts->siteNames.size()); }

    // Whether title or address contain the text.
    bool matches(unsigned index, const TextSearch &search) const;
    // Entries that were taken over keep their number here, and later ones have higher numbers; so what is known of an
    // entry need not be found out again after the next reading. Of use among records that share their texts.
    unsigned serialNumber(unsigned index) const { return _records[index].serialNumber; }
    unsigned nextSerialNumber() const { return _texts->nextSerialNumber; }
    std::weak_ptr<const void> sharedTexts() const { return _texts; }

    // Whether the address, which is the entry's identifier, is looked for.
    bool isWanted(unsigned index, const UUIDSearch &search) const;

    // The share of the shared texts that no entry of these records refers to any more, from 0 to 1.
    double wasted() const;

private:
    struct Record
    {
        // Title, address and their search form, one behind the other.
        const char *text = nullptr;
        qint64 visited = noDate;
        quint32 titleLength = 0;
        quint32 addressLength = 0;
        quint32 formLength = 0;
        quint32 site = noSite;
        quint32 serialNumber = 0;
    };

    struct Texts
    {
        unsigned siteNumber(QByteArrayView host);
        unsigned siteNumberOfName(const QString &name);

        TextBlocks blocks;
        unsigned nextSerialNumber = 0;
        std::vector<QString> siteNames = {QString()};
        QHash<QString, unsigned> siteNumbersByName;
        QHash<QByteArray, unsigned> siteNumbers; // by host name
        QByteArray lastHost;
        unsigned lastNumber = noSite;
    };

    std::shared_ptr<Texts> _texts;
    std::vector<Record> _records;
    std::size_t _textSize = 0;
    QByteArray _scratch;
};
