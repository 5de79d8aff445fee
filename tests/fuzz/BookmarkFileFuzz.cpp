#include "model/BookmarkItems.h"
#include "model/BookmarkReader.h"
#include "tests/fuzz/TreeChecks.h"

// The browser's bookmark file, read as the store does, and written back with the keys that it keeps.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool isSilent = (beSilent(), true);
    static const FuzzedFile file;
    Q_UNUSED(isSilent)
    file.write({data, qsizetype(size)});
    const auto root = WayfoldBookmarkFolder::bookmarkFromDictionaryFile(file.path());
    require(root != nullptr, "there always is a tree");
    BookmarkReader reader;
    for (int reading = 0; reading < 2; ++reading) { // the second takes over what it can
        const auto records = reader.read(file.path());
        const WayfoldBookmarkFolderPtr tree = records ? BookmarkItems::treeOf(records) : nullptr;
        require((tree ? tree->deepChildCount() : 0) == root->deepChildCount(), "the store reads what item files hold");
    }
    root->setTitle(QStringLiteral("Bookmarks"));
    TreeChecks::checkParents(root);
    TreeChecks::checkCopy(root);
    TreeChecks::checkSearches(root);

    PropertyList::Reading reading;
    const QVariantMap current = PropertyList::readDictionaryFile(file.path(), &reading);
    if (!reading.ok)
        return 0;
    QVariantMap tree = root->createDictionary(false);
    for (const char *kept : {"WebBookmarkFileVersion", "WebBookmarkType", "WebBookmarkUUID"}) {
        if (current.contains(QLatin1String(kept)))
            tree.insert(QLatin1String(kept), current.value(QLatin1String(kept)));
    }
    const QByteArray xml = PropertyList::toXml(tree);
    if (xml.isEmpty())
        return 0; // nested too deep to be saved
    file.write(xml);
    const auto again = WayfoldBookmarkFolder::bookmarkFromDictionaryFile(file.path());
    require(again->deepChildCount() == root->deepChildCount(), "nothing is lost by writing the bookmarks back");
    TreeChecks::checkRereading(again);
    return 0;
}
