#include "benchmarks/Benches.h"
#include "benchmarks/Figures.h"
#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldBookmarkNote.h"
#include "model/WayfoldBookmarkURL.h"
#include "tests/support/TemporaryHome.h"

#include <QFile>
#include <QProcess>
#include <plist/plist.h>

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

// Python's plistlib on the same file: the median of seven runs in milliseconds, parse or write alone.
double plistlibMilliseconds(const QString &work, const QString &path)
{
    static const char script[] = "import plistlib, statistics, sys, time\n"
                                 "path, times = sys.argv[2], []\n"
                                 "data = open(path, 'rb').read()\n"
                                 "tree = plistlib.loads(data)\n"
                                 "for run in range(7):\n"
                                 "    start = time.perf_counter()\n"
                                 "    if sys.argv[1] == 'read':\n"
                                 "        plistlib.loads(data)\n"
                                 "    else:\n"
                                 "        plistlib.dump(tree, open(path + '.copy', 'wb'))\n"
                                 "    times.append(time.perf_counter() - start)\n"
                                 "print(statistics.median(times) * 1000)\n";
    QProcess python;
    python.start(QStringLiteral("python3"), {QStringLiteral("-c"), QString::fromLatin1(script), work, path});
    if (!python.waitForFinished(120'000) || python.exitCode() != 0)
        return 0;
    return python.readAllStandardOutput().trimmed().toDouble();
}

double libplistMilliseconds(const QByteArray &data)
{
    return Figures::medianMilliseconds([&] {
        plist_t tree = nullptr;
        plist_from_xml(data.constData(), uint32_t(data.size()), &tree);
        plist_free(tree);
    });
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
    figures.add(QStringLiteral("item_file_plistlib_read_ms"), plistlibMilliseconds(QStringLiteral("read"), path), unit);
    figures.add(QStringLiteral("item_file_libplist_read_ms"),
                libplistMilliseconds(home.read(QStringLiteral("Bookmarks.plist"))), unit);
    figures.add(QStringLiteral("item_file_save_ms"), save, unit, QStringLiteral("item_file_plistlib_write_ms"));
    figures.add(QStringLiteral("item_file_plistlib_write_ms"), plistlibMilliseconds(QStringLiteral("write"), path),
                unit);
    return true;
}
