#pragma once

#include "model/WayfoldBookmarkFolder.h"
#include "model/history/DayTitles.h"

#include <limits>

// The entries of a history folder as a grouping sees them: by number, with day and site, and without their items until
// somebody asks for one.
class HistoryEntries
{
public:
    virtual ~HistoryEntries() = default;

    // What the folder holds at this moment; later changes of the folder do not matter.
    static std::shared_ptr<HistoryEntries> ofFolder(const WayfoldBookmarkFolder &folder);

    virtual unsigned count() const = 0;
    // In milliseconds since 1970, GMT; `KDRBookmark::noTimestamp`: none.
    virtual qint64 visited(unsigned number) const = 0;
    // Entries of the same day, or site, have the same number there; 0 stands for no site.
    virtual unsigned day(unsigned number) = 0;
    virtual unsigned site(unsigned number) const = 0;
    virtual const QString &dayTitle(unsigned day) const = 0;
    virtual const QString &siteTitle(unsigned site) const = 0;

    virtual KDRBookmarkPtr item(unsigned number) = 0;
    virtual bool matches(unsigned number, const TextSearch &search) const = 0;
    virtual bool isWanted(unsigned number, const UUIDSearch &search) const = 0;
};
