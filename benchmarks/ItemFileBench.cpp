#include "benchmarks/Benches.h"
#include "benchmarks/Figures.h"
#include "benchmarks/LifelikeItems.h"
#include "benchmarks/PlistPeers.h"
#include "tests/support/TemporaryHome.h"

bool measureItemFile(Figures &figures)
{
    const TemporaryHome home;
    const QString path = home.path(QStringLiteral("Bookmarks.plist"));
    const auto root = LifelikeItems::tree();
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
