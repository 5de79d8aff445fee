#include "model/WayfoldHistoryAutoFolder.h"

#include "model/SmartFolderSources.h"

WayfoldHistoryAutoFolderPtr WayfoldHistoryAutoFolder::bookmarkWithTitle(const QString &title)
{
    auto folder = std::make_shared<WayfoldHistoryAutoFolder>();
    folder->setTitle(title);
    return folder;
}

WayfoldHistoryAutoFolderPtr WayfoldHistoryAutoFolder::bookmarkFromDictionary(const QVariantMap &dictionary)
{
    auto folder = std::make_shared<WayfoldHistoryAutoFolder>(Blank());
    folder->loadFromDictionary(dictionary);
    return folder;
}

bool WayfoldHistoryAutoFolder::refresh()
{
    if (const SmartFolderSources *const sources = SmartFolderSources::current()) {
        const WayfoldBookmarkFolderPtr matches = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral(""));
        appendCopiesOfLeaves(matchesBelow(sources->historyBookmarkRoot()), *matches);
        sources->regroupBookmarksFromFolderIntoFolderWithGroupingStyle(matches, fromItem(shared_from_this()),
                                                                       QStringLiteral("1"));
    }
    return WayfoldBookmarkFolder::refresh();
}

KDRBookmarkPtr WayfoldHistoryAutoFolder::makeNew() const
{
    return std::make_shared<WayfoldHistoryAutoFolder>(Blank());
}

bool WayfoldHistoryAutoFolder::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldHistoryAutoFolder *>(&other);
}
