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
        const WayfoldBookmarkFolderPtr root = sources->historyBookmarkRoot();
        const WayfoldBookmarkFolderPtr matches = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral(""));
        if (const std::shared_ptr<HistoryItems> entries = root ? HistoryItems::ofFolder(*root) : nullptr)
            matches->setLazyChildren(search().copiesOfMatches(*entries));
        else
            matches->addChildrenAtIndex(copiesOfLeaves(matchesBelow(root)), 0);
        sources->regroupBookmarksFromFolderIntoFolderWithGroupingStyle(matches, fromItem(shared_from_this()),
                                                                       QStringLiteral("1"));
    }
    return WayfoldBookmarkFolder::refresh();
}

HistorySearch &WayfoldHistoryAutoFolder::search()
{
    if (!_search || _search->text() != filterString())
        _search = std::make_unique<HistorySearch>(filterString());
    return *_search;
}

KDRBookmarkPtr WayfoldHistoryAutoFolder::makeNew() const
{
    return std::make_shared<WayfoldHistoryAutoFolder>(Blank());
}

bool WayfoldHistoryAutoFolder::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldHistoryAutoFolder *>(&other);
}
