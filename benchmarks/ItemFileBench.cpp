#include "benchmarks/Benches.h"
#include "benchmarks/Figures.h"
#include "benchmarks/PlistPeers.h"
#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldBookmarkNote.h"
#include "model/WayfoldBookmarkURL.h"
#include "tests/support/TemporaryHome.h"

namespace
{
// 20,000 items in 1,000 site folders: links and notes as a diligent user has after years.
WayfoldBookmarkFolderPtr makeTree()
{
    auto root = WayfoldBookmarkFolder::bookmarkWithTitle(QString());
    for (int site = 0; site < 1000; ++site) {
        const QString host = QStringLiteral("site%1.example.com").arg(site);
        auto folder = WayfoldBookmarkFolder::bookmarkWithTitle(host);
        for (int item = 0; item < 19; ++item) {
            const QString title = QStringLiteral("Entry %1 of %2").arg(item).arg(host);
            if (item % 4 == 3) {
                folder->addChild(WayfoldBookmarkNote::bookmarkWithTitleAndNote(
                    title, QStringLiteral("Something to remember about this page. ").repeated(5)));
            } else {
                const Url url =
                    Url::URLWithString(QStringLiteral("https://%1/articles/%2?ref=front").arg(host).arg(item));
                folder->addChild(WayfoldBookmarkURL::bookmarkWithTitleAndURL(title, url));
            }
        }
        root->addChild(folder);
    }
    return root;
}
} // namespace

bool measureItemFile(Figures &figures)
{
    const TemporaryHome home;
    const QString path = home.path(QStringLiteral("Bookmarks.plist"));
    const auto root = makeTree();
    const double save = Figures::medianMilliseconds([&] { root->writeDictionaryFile(path); });
    const double read = Figures::medianMilliseconds([&] { WayfoldBookmarkFolder::bookmarkFromDictionaryFile(path); });
    if (WayfoldBookmarkFolder::bookmarkFromDictionaryFile(path)->deepChildCount() != root->deepChildCount())
        return false;

    const QString unit = QStringLiteral("ms");
    figures.add(QStringLiteral("item_file_read_ms"), read, unit, QStringLiteral("item_file_plistlib_read_ms"));
    figures.add(QStringLiteral("item_file_plistlib_read_ms"), PlistPeers::plistlibReadMilliseconds(path), unit);
    figures.add(QStringLiteral("item_file_libplist_read_ms"), PlistPeers::libplistReadMilliseconds(path), unit);
    figures.add(QStringLiteral("item_file_save_ms"), save, unit, QStringLiteral("item_file_plistlib_write_ms"));
    figures.add(QStringLiteral("item_file_plistlib_write_ms"), PlistPeers::plistlibWriteMilliseconds(path), unit);
    return true;
}
