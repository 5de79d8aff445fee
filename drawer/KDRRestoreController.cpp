#include "drawer/KDRRestoreController.h"

#include "core/BackupRestore.h"
#include "core/KDRDrawerBundle.h"
#include "core/settings/WayfoldToolkit.h"
#include "drawer/WayfoldBookmarkTextCell.h"
#include "platform/widgets/ModalDialog.h"
#include "platform/widgets/OutlineView.h"
#include "platform/widgets/Workspace.h"

#include <QFileInfo>
#include <QHeaderView>
#include <QLocale>
#include <QSplitter>
#include <algorithm>

namespace
{
enum Column { DateColumn, SitesColumn, ItemsColumn };

QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

// A day, and the time of a copy that was kept on it.
QString titleOf(const RestorableFiles::File &file)
{
    const QLocale locale;
    if (file.isBackup)
        return locale.toString(file.time.date(), QLocale::ShortFormat);
    return localized("%@ (kept copy)").replace(QStringLiteral("%@"), locale.toString(file.time, QLocale::ShortFormat));
}

constexpr auto slice = std::chrono::milliseconds(4);
} // namespace

KDRRestoreController::KDRRestoreController()
{
    if (loadInterface())
        connectPanel();
    else
        delete _restoreWindow;
}

KDRRestoreController::~KDRRestoreController()
{
    delete _restoreWindow;
}

// False when the interface file, or something in it, is missing.
bool KDRRestoreController::loadInterface()
{
    _interface = std::make_unique<InterfaceFile>(QStringLiteral("KDRRestore"));
    _restoreWindow = qobject_cast<QDialog *>(_interface->topLevelWidget());
    _filesView = _interface->outlet<QTreeWidget>(QStringLiteral("filesView"));
    _pages = _interface->outlet<QStackedWidget>(QStringLiteral("pages"));
    _previewView = _interface->outlet<OutlineView>(QStringLiteral("previewView"));
    _emptyField = _interface->outlet<QLabel>(QStringLiteral("emptyField"));
    _showFileButton = _interface->outlet<QAbstractButton>(QStringLiteral("showFileButton"));
    _replaceButton = _interface->outlet<QAbstractButton>(QStringLiteral("replaceButton"));
    _addButton = _interface->outlet<QAbstractButton>(QStringLiteral("addButton"));
    return _restoreWindow && _filesView && _pages && _previewView && _emptyField && _showFileButton && _replaceButton &&
           _addButton;
}

void KDRRestoreController::connectPanel()
{
    _restoreWindow->setAttribute(Qt::WA_QuitOnClose, false);
    _emptyField->setForegroundRole(QPalette::PlaceholderText);
    _previewView->setDataCell(std::make_unique<WayfoldBookmarkTextCell>());
    _previewView->setOutlineDataSource(&_preview);
    _interface->connectAction(QStringLiteral("add:"), [this](QObject *) { _restoreWindow->done(Add); });
    _interface->connectAction(QStringLiteral("replace:"), [this](QObject *) { _restoreWindow->done(Replace); });
    _interface->connectAction(QStringLiteral("cancel:"), [this](QObject *) { _restoreWindow->reject(); });
    _interface->connectAction(QStringLiteral("showFile:"),
                              [this](QObject *) { Workspace::showFile(_files.at(std::size_t(selectedRow())).path); });
    _readTimer.setInterval(0);
    connect(&_readTimer, &QTimer::timeout, this, &KDRRestoreController::readNext);
    connect(_filesView, &QTreeWidget::currentItemChanged, this, &KDRRestoreController::selectFile);
    listFiles();
    _filesView->setFocus();
}

void KDRRestoreController::displayPanel()
{
    static bool isRunning = false;
    if (isRunning)
        return;
    isRunning = true;
    KDRRestoreController().run();
    isRunning = false;
}

void KDRRestoreController::run()
{
    if (!_restoreWindow)
        return;
    ModalDialog::attachToActiveWindow(_restoreWindow);
    ModalDialog::fitIntoScreen(_restoreWindow);
    const int choice = ModalDialog::run(_restoreWindow);
    _readTimer.stop();
    const WayfoldBookmarkFolderPtr root = _preview.localRootFolder();
    if (choice == None || !root)
        return;
    BackupRestore restore(KDRDrawerBundle::sharedInstance());
    if (choice == Replace)
        restore.replaceWith(*root);
    else
        restore.add(*root);
}

// --- The files ------------------------------------------------------------------------------------------------------

void KDRRestoreController::listFiles()
{
    _files = RestorableFiles::ofItemFile(KDRDrawerBundle::sharedInstance().bookmarkFilePath());
    for (const RestorableFiles::File &file : _files)
        _filesView->addTopLevelItem(makeRow(file));
    layOutColumns();
    for (const int column : {SitesColumn, ItemsColumn})
        _filesView->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    if (!_files.empty())
        _filesView->setCurrentItem(_filesView->topLevelItem(0));
    showState();
}

// As narrow as the dates allow; below their titles there is room for the numbers.
void KDRRestoreController::layOutColumns()
{
    QHeaderView *header = _filesView->header();
    header->setStretchLastSection(false);
    int width = 2 * _filesView->frameWidth() + _filesView->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    for (const int column : {DateColumn, SitesColumn, ItemsColumn}) {
        _filesView->resizeColumnToContents(column);
        width += _filesView->columnWidth(column);
    }
    _filesView->setMinimumWidth(width);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(DateColumn, QHeaderView::Stretch);
}

QTreeWidgetItem *KDRRestoreController::makeRow(const RestorableFiles::File &file) const
{
    auto *row = new QTreeWidgetItem({titleOf(file)});
    row->setToolTip(DateColumn, QFileInfo(file.path).fileName());
    for (const int column : {SitesColumn, ItemsColumn})
        row->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    return row;
}

int KDRRestoreController::selectedRow() const
{
    return _filesView->indexOfTopLevelItem(_filesView->currentItem());
}

// While a key leads through the list nothing is read but where it comes to rest.
void KDRRestoreController::selectFile()
{
    _preview.setRoot(nullptr);
    _shownRow = -1;
    _readTimer.start();
    showState();
}

void KDRRestoreController::readNext()
{
    if (selectedRow() >= 0 && _shownRow != selectedRow())
        readSelected();
    else if (std::size_t(_counted) < _files.size())
        countNext();
    else
        _readTimer.stop();
}

void KDRRestoreController::readSelected()
{
    _shownRow = selectedRow();
    ItemFileReading reading;
    const WayfoldBookmarkFolderPtr root =
        WayfoldBookmarkFolder::readDictionaryFile(_files[std::size_t(_shownRow)].path, &reading);
    _preview.setRoot(reading.readable ? root : nullptr);
    showState();
}

void KDRRestoreController::countNext()
{
    if (!_count)
        _count.emplace(_files[std::size_t(_counted)].path);
    if (!_count->advance(slice))
        return;
    const std::optional<ItemCount::Holding> holding = _count->holding();
    QTreeWidgetItem *row = _filesView->topLevelItem(_counted);
    row->setText(SitesColumn, holding ? QLocale().toString(holding->sites) : QStringLiteral("?"));
    row->setText(ItemsColumn, holding ? QLocale().toString(holding->items) : QStringLiteral("?"));
    _count.reset();
    ++_counted;
}

// --- What is shown --------------------------------------------------------------------------------------------------

void KDRRestoreController::showState()
{
    const WayfoldBookmarkFolderPtr root = _preview.localRootFolder();
    const bool hasItems = root && root->childCount() > 0;
    _previewView->reloadData();
    _pages->setCurrentIndex(hasItems ? 0 : 1);
    _emptyField->setText(textWhenEmpty());
    _addButton->setEnabled(hasItems);
    _replaceButton->setEnabled(root != nullptr);
    _showFileButton->setEnabled(selectedRow() >= 0);
}

QString KDRRestoreController::textWhenEmpty() const
{
    if (_files.empty())
        return localized("There is no backup yet.\n\nOne is made each day, before something is changed.");
    if (_shownRow < 0)
        return {};
    return _preview.localRootFolder() ? localized("This backup holds nothing.")
                                      : localized("This file cannot be read.");
}
