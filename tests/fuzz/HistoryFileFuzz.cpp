#include "tests/fuzz/TreeChecks.h"
#include "tests/model/history/HistoryReading.h"

#include <random>

namespace
{
// The input with some of its elements moved, dropped or there twice, as visits do, or with a little damage. The same
// for the same input.
QByteArray changed(QByteArray contents)
{
    std::minstd_rand random(unsigned(qHash(contents, 1)));
    const auto below = [&random](qsizetype limit) {
        return qsizetype(random() % std::max<unsigned>(1, unsigned(limit)));
    };
    QList<qsizetype> starts;
    for (qsizetype at = contents.indexOf("<dict>"); at >= 0; at = contents.indexOf("<dict>", at + 1))
        starts.append(at);
    if (starts.size() < 2 || below(4) == 0) {
        if (!contents.isEmpty())
            contents[below(contents.size())] = char(random());
        return contents;
    }
    const qsizetype first = below(starts.size() - 1);
    const qsizetype start = starts.at(first);
    const QByteArray piece = contents.mid(start, starts.at(first + 1) - start);
    if (below(2))
        contents.remove(start, piece.size());
    if (below(2))
        contents.insert(std::min(starts.at(below(starts.size())), contents.size()), piece);
    return contents;
}

void check(HistoryReader &reader, const FuzzedFile &file)
{
    const HistoryReading::Entries expected = HistoryReading::entriesTheGeneralWay(file.path());
    require(HistoryReading::entriesByReader(file.path()) == expected, "the reader reads what the general way does");
    require(HistoryReading::entriesByReader(reader, file.path()) == expected, "reading again makes no difference");
}
} // namespace

// The browser's history file, read for the first time and again after changes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool isSilent = (beSilent(), true);
    static const FuzzedFile file;
    Q_UNUSED(isSilent)
    const QByteArray contents(reinterpret_cast<const char *>(data), qsizetype(size));
    HistoryReader reader;
    file.write(contents);
    check(reader, file);
    const QByteArray other = changed(contents);
    file.write(other);
    check(reader, file);
    file.write(changed(other));
    check(reader, file);
    file.write(contents);
    check(reader, file);

    const auto records = reader.read(file.path());
    if (!records)
        return 0;
    const auto root = WayfoldBookmarkFolder::bookmarkWithTitle(QStringLiteral("History"));
    root->setLazyChildren(std::make_shared<HistoryItems>(records));
    require(root->childCount() == records->count(), "every record has its item");
    const auto copy = WayfoldBookmarkFolder::fromItem(root->copy());
    const auto found = root->bookmarksWithSubstring(QStringLiteral("e"));
    require(copy->bookmarksWithSubstring(QStringLiteral("e")).size() == found.size(), "a copy is searched alike");
    TreeChecks::checkParents(root);
    TreeChecks::checkSearches(root);
    std::vector<KDRBookmarkPtr> plain;
    for (const KDRBookmarkPtr &child : root->children()) {
        if (child->matchesSubstring(QStringLiteral("e")))
            plain.push_back(child);
    }
    require(found == plain, "records are searched as their items are");
    TreeChecks::checkCopy(root);
    return 0;
}
