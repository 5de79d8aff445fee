#include "benchmarks/LifelikeItems.h"

#include "model/WayfoldBookmarkNote.h"
#include "model/WayfoldBookmarkURL.h"

namespace
{
KDRBookmarkPtr makeItem(int number, const QString &host)
{
    const QString title = QStringLiteral("Entry %1 of %2").arg(number).arg(host);
    if (number % 4 == LifelikeItems::firstNoteOfSite)
        return WayfoldBookmarkNote::bookmarkWithTitleAndNote(
            title, QStringLiteral("Something to remember about this page. ").repeated(5));
    const QString address = QStringLiteral("https://%1/articles/%2?ref=front").arg(host).arg(number);
    return WayfoldBookmarkURL::bookmarkWithTitleAndURL(title, Url::URLWithString(address));
}
} // namespace

WayfoldBookmarkFolderPtr LifelikeItems::tree()
{
    auto root = WayfoldBookmarkFolder::bookmarkWithTitle(QString());
    for (int site = 0; site < sites; ++site) {
        const QString host = QStringLiteral("site%1.example.com").arg(site);
        auto folder = WayfoldBookmarkFolder::bookmarkWithTitle(host);
        for (int item = 0; item < itemsOfSite; ++item)
            folder->addChild(makeItem(item, host));
        root->addChild(folder);
    }
    return root;
}
