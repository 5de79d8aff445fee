#include "benchmarks/Benches.h"
#include "benchmarks/Figures.h"
#include "benchmarks/ItemChangePeers.h"
#include "benchmarks/LifelikeItems.h"
#include "benchmarks/PaintedRow.h"
#include "benchmarks/PlistPeers.h"
#include "benchmarks/ScratchpadWindows.h"
#include "benchmarks/UserWait.h"
#include "platform/files/FileStamp.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTextEdit>
#include <cstdio>

namespace
{
constexpr int runs = 7; // after one that does not count

const QString unit = QStringLiteral("ms");

// The medians of both times.
UserWait medianWait(const std::function<std::optional<UserWait>()> &work)
{
    std::vector<double> whole;
    std::vector<double> held;
    for (int run = -1; run < runs; ++run) {
        const std::optional<UserWait> wait = work();
        if (!wait)
            return {};
        if (run >= 0) {
            whole.push_back(wait->whole);
            held.push_back(wait->held);
        }
    }
    UserWait median;
    median.whole = Figures::median(whole);
    median.held = Figures::median(held);
    return median;
}

// Whether the item file is another one than when this was made.
class NewFile
{
public:
    explicit NewFile(const QString &path) : _path(path), _before(FileStamp::ofFile(path)) {}
    bool isThere() const { return FileStamp::ofFile(_path) != _before; }

private:
    QString _path;
    std::optional<FileStamp> _before;
};

// Gives the selected note another title and text in its dialog. `begin` is called when OK is about to be pressed.
void editSelectedNote(ScratchpadWindows &windows, const QString &title, const std::function<void()> &begin)
{
    DrawerStage::whenDialogOpens<QDialog>(&windows.dataSource(), [&](QDialog *dialog) {
        dialog->findChild<QLineEdit *>(QStringLiteral("titleField"))->setText(title);
        dialog->findChild<QTextEdit *>(QStringLiteral("valueField"))->insertPlainText(title);
        QPushButton *ok = dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
        begin();
        ok->click();
    });
    windows.dataSource().handleItemEditRequest(nullptr);
}

KDRBookmarkPtr firstNote()
{
    return ScratchpadWindows::site(0)->childAtIndex(LifelikeItems::firstNoteOfSite);
}

bool measureSaveOne(Figures &figures)
{
    ScratchpadWindows windows(1);
    windows.openSites(1);
    windows.list().selectIndividualItem(firstNote());
    int edits = 0;
    const UserWait median = medianWait([&]() -> std::optional<UserWait> {
        const QString title = QStringLiteral("Another title %1").arg(++edits);
        const NewFile file(windows.itemFile());
        UserWait wait;
        editSelectedNote(windows, title, [&] { wait.begin(); });
        wait.until([&] { return file.isThere(); });
        return windows.stage.savedFile().count(title.toUtf8()) == 2 ? std::optional(wait) : std::nullopt;
    });
    figures.add(QStringLiteral("item_save_one_ms"), median.whole, unit, QStringLiteral("plistlib_save_one_ms"));
    figures.add(QStringLiteral("item_save_one_held_ms"), median.held, unit, QStringLiteral("sqlite_save_one_ms"));
    const QString copy = windows.stage.home.path(QStringLiteral("Copy.plist"));
    QFile::copy(windows.itemFile(), copy);
    figures.add(QStringLiteral("plistlib_save_one_ms"), PlistPeers::plistlibSaveMilliseconds(copy), unit);
    figures.add(
        QStringLiteral("sqlite_save_one_ms"),
        ItemChangePeers::sqliteSaveMilliseconds(*DrawerStage::store().bookmarkRoot(), windows.stage.home.path()), unit);
    return edits == runs + 1;
}

// All folders are open in all windows, and the note is among the rows that are seen.
bool measureShown(Figures &figures)
{
    constexpr int windowCount = 4;
    ScratchpadWindows windows(windowCount);
    windows.openSites(LifelikeItems::sites);
    windows.list().selectIndividualItem(firstNote());
    std::vector<std::unique_ptr<PaintedRow>> rows;
    for (WayfoldScratchOutlineView *list : windows.lists())
        rows.push_back(std::make_unique<PaintedRow>(*list, list->rectOfRow(list->rowForItem(firstNote()))));
    const auto isShownIn = [](const std::unique_ptr<PaintedRow> &row) { return row->isPainted(); };
    int edits = 0;
    const UserWait median = medianWait([&]() -> std::optional<UserWait> {
        const QString title = QStringLiteral("Another title %1").arg(++edits);
        UserWait wait;
        editSelectedNote(windows, title, [&] {
            for (const auto &row : rows)
                row->forget();
            wait.begin();
        });
        wait.until([&] { return std::all_of(rows.cbegin(), rows.cend(), isShownIn); });
        return firstNote()->title() == title ? std::optional(wait) : std::nullopt;
    });
    figures.add(QStringLiteral("change_shown_ms"), median.whole, unit, QStringLiteral("qt_change_shown_ms"));
    figures.add(QStringLiteral("change_shown_held_ms"), median.held, unit);
    figures.add(QStringLiteral("qt_change_shown_ms"),
                ItemChangePeers::qtChangeShownMilliseconds(*DrawerStage::store().bookmarkRoot(), windowCount), unit);
    return edits == runs + 1;
}

// The first item of each site.
std::vector<KDRBookmarkPtr> itemsToDelete()
{
    std::vector<KDRBookmarkPtr> items;
    for (int number = 0; number < LifelikeItems::sites; ++number)
        items.push_back(ScratchpadWindows::site(number)->childAtIndex(0));
    return items;
}

void putBack(const std::vector<KDRBookmarkPtr> &items, WayfoldScratchOutlineView &list)
{
    for (int number = 0; number < LifelikeItems::sites; ++number) {
        const WayfoldBookmarkFolderPtr site = ScratchpadWindows::site(number);
        if (site->childAtIndex(0) != items[std::size_t(number)])
            site->addChildAtIndex(items[std::size_t(number)], 0);
    }
    DrawerStage::store().saveBookmarkFile();
    list.reloadData();
    list.deselectAll();
    list.selectItems(items);
    QCoreApplication::processEvents();
}

// From the answer that they are to go, to the file without them and the list that is painted.
bool measureDelete(Figures &figures)
{
    ScratchpadWindows windows(1);
    windows.openSites(LifelikeItems::sites);
    DrawerStage::settings().setConfirmItemDelete(false);
    WayfoldScratchOutlineView &list = windows.list();
    const std::vector<KDRBookmarkPtr> items = itemsToDelete();
    const unsigned before = DrawerStage::store().bookmarkRoot()->deepChildCount();
    int deletions = 0;
    const UserWait median = medianWait([&]() -> std::optional<UserWait> {
        putBack(items, list);
        const NewFile file(windows.itemFile());
        PaintedRow row(list, list.viewport()->rect());
        if (list.selectedItemCount() != LifelikeItems::sites)
            return {};
        ++deletions;
        UserWait wait;
        wait.begin();
        windows.dataSource().handleDeleteItemRequest(nullptr);
        wait.until([&] { return file.isThere() && row.isPainted(); });
        const unsigned after = DrawerStage::store().bookmarkRoot()->deepChildCount();
        return after + items.size() == before ? std::optional(wait) : std::nullopt;
    });
    figures.add(QStringLiteral("delete_ms"), median.whole, unit, QStringLiteral("qt_delete_ms"));
    figures.add(QStringLiteral("delete_held_ms"), median.held, unit);
    putBack(items, list);
    figures.add(QStringLiteral("qt_delete_ms"),
                ItemChangePeers::qtDeleteMilliseconds(*DrawerStage::store().bookmarkRoot()), unit);
    return deletions == runs + 1;
}

bool reported(bool complete, const char *name)
{
    if (!complete)
        std::fprintf(stderr, "%s did not come out as it should\n", name);
    return complete;
}
} // namespace

bool measureItemChanges(Figures &figures)
{
    const bool saved = reported(measureSaveOne(figures), "saving one note");
    const bool shown = reported(measureShown(figures), "showing one note");
    return reported(measureDelete(figures), "deleting the selected rows") && saved && shown;
}
