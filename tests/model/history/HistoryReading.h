#pragma once

#include "model/ItemDictionary.h"
#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldHistoryURL.h"
#include "model/history/HistoryItems.h"
#include "model/history/HistoryReader.h"
#include "platform/files/PropertyList.h"
#include "platform/files/XmlPropertyListReader.h"
#include "tests/support/InstalledKinds.h"

#include <QFile>
#include <optional>

// What a history file holds, read in two ways, in a form that can be compared and shown: a line for each entry. None
// when the file is missing or no property-list dictionary.
namespace HistoryReading
{
using Entries = std::optional<QStringList>;

inline QString lineOf(const WayfoldHistoryURL &entry)
{
    const auto shown = [](const QString &text) { return text.isNull() ? QStringLiteral("(none)") : text; };
    const CalendarDate date = entry.lastVisitedDate();
    return QStringList{shown(entry.title()), shown(entry.url().absoluteString()), shown(entry.uuid()),
                       date.isValid() ? QString::number(date.toMSecsSinceEpoch()) : shown(QString()),
                       shown(entry.trackedHostName())}
        .join(QStringLiteral(" | "));
}

inline QStringList linesOf(const WayfoldBookmarkFolder &folder)
{
    QStringList lines;
    for (const KDRBookmarkPtr &child : folder.children())
        lines.append(lineOf(static_cast<const WayfoldHistoryURL &>(*child)));
    return lines;
}

inline Entries entriesByReader(HistoryReader &reader, const QString &path)
{
    const std::shared_ptr<const HistoryRecords> records = reader.read(path);
    if (!records)
        return std::nullopt;
    const auto folder = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("History"));
    folder->setLazyChildren(std::make_shared<HistoryItems>(records));
    return linesOf(*folder);
}

// By a reader that has not read anything before.
inline Entries entriesByReader(const QString &path)
{
    HistoryReader reader;
    return entriesByReader(reader, path);
}

// Element by element, whatever fast ways there are.
inline QVariant valueTheGeneralWay(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.peek(6) == "bplist")
        return PropertyList::readFile(path);
    const QByteArray start = file.peek(4);
    const bool isWide = start.contains('\0') || start.startsWith("\xfe\xff") || start.startsWith("\xff\xfe");
    return isWide ? QVariant() : XmlPropertyListReader(&file).read();
}

inline Entries entriesTheGeneralWay(const QString &path)
{
    const QVariant value = valueTheGeneralWay(path);
    if (value.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    const QVariantMap file = value.toMap();
    const auto folder = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("History"));
    const QVariantList elements = ItemDictionary::list(file, QStringLiteral("WebHistoryDates"));
    for (const QVariant &element : elements) {
        if (element.typeId() == QMetaType::QVariantMap)
            folder->parseHistoryDictionary(element.toMap());
    }
    return linesOf(*folder);
}
} // namespace HistoryReading
