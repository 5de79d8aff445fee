#pragma once

#include "model/WayfoldAutoFolder.h"
#include "model/history/HistorySearch.h"

class WayfoldHistoryAutoFolder;
using WayfoldHistoryAutoFolderPtr = std::shared_ptr<WayfoldHistoryAutoFolder>;

// "Related History": the visited pages that its search string finds, by day.
class WayfoldHistoryAutoFolder : public WayfoldAutoFolder
{
public:
    using WayfoldAutoFolder::WayfoldAutoFolder;

    static WayfoldHistoryAutoFolderPtr bookmarkWithTitle(const QString &title);
    static WayfoldHistoryAutoFolderPtr bookmarkFromDictionary(const QVariantMap &dictionary);

    bool refresh() override;
    QString classNameForCoder() const override { return QStringLiteral("WayfoldHistoryAutoFolder"); }

protected:
    KDRBookmarkPtr makeNew() const override;
    bool isSameKindAs(const KDRBookmark &other) const override;

private:
    HistorySearch &search();

    std::unique_ptr<HistorySearch> _search; // null until the first refresh
};
