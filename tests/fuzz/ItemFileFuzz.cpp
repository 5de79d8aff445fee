#include "tests/fuzz/TreeChecks.h"
#include "tests/model/history/HistoryReading.h"

// Our own item file, read and written again as the store does at every start and every change.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool isSilent = (beSilent(), true);
    static const FuzzedFile file;
    Q_UNUSED(isSilent)
    file.write({data, qsizetype(size)});
    ItemFileReading reading;
    const auto root = WayfoldBookmarkFolder::readDictionaryFile(file.path(), &reading);
    require(root != nullptr, "there always is a tree");
    require(reading.readable || (root->isEmpty() && root->title().isNull()), "an unreadable file gives an empty tree");
    require(reading.readable || !reading.complete, "an unreadable file is not read completely");
    require(PropertyList::readFile(file.path()) == HistoryReading::valueTheGeneralWay(file.path()),
            "the fast ways read what the general one does");
    TreeChecks::checkParents(root);
    TreeChecks::checkRereading(root);
    TreeChecks::checkSearches(root);
    TreeChecks::checkCopy(root);
    return 0;
}
