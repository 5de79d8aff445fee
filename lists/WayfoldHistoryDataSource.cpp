#include "lists/WayfoldHistoryDataSource.h"

#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldHistoryURL.h"

#include <QHash>
#include <QLocale>

namespace
{
// The folders of one grouping, found by title without walking through their parent's children each time.
class FolderFinder
{
public:
    // The first sub-folder of that title, made when there is none; a new one gets the time stamp, if that is valid.
    WayfoldBookmarkFolderPtr findOrMake(const WayfoldBookmarkFolderPtr &parent, const QString &title,
                                        const CalendarDate &timestamp = CalendarDate())
    {
        QHash<QString, WayfoldBookmarkFolderPtr> &known = foldersIn(parent);
        const auto found = known.constFind(title);
        if (found != known.constEnd())
            return *found;
        auto folder = WayfoldBookmarkFolder::bookmarkWithTitle(title);
        if (timestamp.isValid())
            folder->setTimestamp(timestamp);
        parent->addChild(folder);
        known.insert(title, folder);
        return folder;
    }

private:
    QHash<QString, WayfoldBookmarkFolderPtr> &foldersIn(const WayfoldBookmarkFolderPtr &parent)
    {
        const auto found = _folders.find(parent.get());
        if (found != _folders.end())
            return *found;
        QHash<QString, WayfoldBookmarkFolderPtr> &known = _folders[parent.get()];
        for (const KDRBookmarkPtr &child : parent->children()) {
            const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(child);
            if (folder && !known.contains(folder->title()))
                known.insert(folder->title(), folder);
        }
        return known;
    }

    QHash<const WayfoldBookmarkFolder *, QHash<QString, WayfoldBookmarkFolderPtr>> _folders;
};

enum class Level { Day, Site };

QString dayOf(const WayfoldHistoryURL &entry)
{
    return QLocale().toString(entry.lastVisitedDate().date(), QLocale::ShortFormat);
}

// None for an entry that the style leaves out.
WayfoldBookmarkFolderPtr folderForEntry(const WayfoldHistoryURL &entry, const WayfoldBookmarkFolderPtr &root,
                                        const std::vector<Level> &levels, FolderFinder &finder)
{
    const bool needsSite = std::find(levels.begin(), levels.end(), Level::Site) != levels.end();
    if (!entry.lastVisitedDate().isValid() || (needsSite && entry.trackedHostName().isEmpty()))
        return nullptr;
    WayfoldBookmarkFolderPtr folder = root;
    for (const Level level : levels) {
        folder = level == Level::Day ? finder.findOrMake(folder, dayOf(entry), entry.lastVisitedDate())
                                     : finder.findOrMake(folder, entry.trackedHostName());
    }
    return folder;
}

void sortLevel(WayfoldBookmarkFolder &folder, Level level)
{
    folder.removeEmptySubfolders();
    if (level == Level::Day)
        folder.sortChildrenByTimestampDescending();
    else
        folder.sortChildrenByTitle();
}

// Outside in. None when the style has no folders.
std::vector<Level> levelsOfStyle(const QString &style)
{
    if (style == u"1")
        return {Level::Day};
    if (style == u"2")
        return {Level::Day, Level::Site};
    if (style == u"3")
        return {Level::Site};
    if (style == u"4")
        return {Level::Site, Level::Day};
    return {};
}
} // namespace

void WayfoldHistoryDataSource::regroupBookmarksFromFolderIntoFolderWithGroupingStyle(
    const WayfoldBookmarkFolderPtr &from, const WayfoldBookmarkFolderPtr &into, const QString &style)
{
    if (!into)
        return;
    into->removeAllLeafChildren();
    if (!from)
        return;
    const std::vector<KDRBookmarkPtr> entries = from->children();
    if (style == u"0") {
        for (const KDRBookmarkPtr &entry : entries)
            into->addChild(entry);
        return;
    }
    const std::vector<Level> levels = levelsOfStyle(style);
    if (levels.empty())
        return;
    FolderFinder finder;
    for (const KDRBookmarkPtr &item : entries) {
        const auto entry = std::dynamic_pointer_cast<WayfoldHistoryURL>(item);
        if (const auto folder = entry ? folderForEntry(*entry, into, levels, finder) : nullptr)
            folder->addChild(entry);
    }
    sortLevel(*into, levels.front());
    if (levels.size() == 1)
        return;
    for (const KDRBookmarkPtr &child : into->children()) {
        if (const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(child))
            sortLevel(*folder, levels.back());
    }
}
