#include "drawer/WayfoldPrefsController.h"

#include "core/ContactSource.h"
#include "core/KDRDrawerBundle.h"
#include "core/Notifications.h"
#include "core/SiteDrawer.h"
#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "drawer/ContactsInUse.h"
#include "drawer/FontPanel.h"
#include "drawer/WayfoldShortcutPanel.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/base/StringRules.h"
#include "platform/widgets/HelpText.h"
#include "platform/widgets/InterfaceFile.h"
#include "platform/widgets/MenuItem.h"
#include "platform/widgets/SideWindow.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFileDialog>
#include <QFontInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QTreeView>
#include <QWindow>

namespace
{
const QString titleColumn = QStringLiteral("MenuTitle");
const QString keyColumn = QStringLiteral("Key");
const QString separatorTitle = QStringLiteral("----------");
const QString noKey = QStringLiteral("---");
constexpr int rowGap = 4; // of the table

// As the settings have them, in the order in which they are offered.
const QStringList contactSources = {QString(), QStringLiteral("desktop"), QStringLiteral("folder"),
                                    QStringLiteral("none")};

enum AutoOpening { Never = 0, InNewWindows = 1, OnKnownSites = 2 };

WayfoldDefaults &settings()
{
    return WayfoldDefaults::sharedInstance();
}

KDRDrawerBundle &store()
{
    return KDRDrawerBundle::sharedInstance();
}

bool isClosed(const SiteDrawer *drawer)
{
    return !drawer || drawer->state() == Drawer::Closed || drawer->state() == Drawer::Closing;
}

bool isSeparator(const QAction *item)
{
    return item->text().isEmpty();
}

// The group's buttons carry their ids as tags.
QButtonGroup *radioMatrix(const InterfaceFile &interface, const char *name)
{
    auto *matrix = interface.outlet<QButtonGroup>(QString::fromLatin1(name));
    const QList<QAbstractButton *> cells = matrix ? matrix->buttons() : QList<QAbstractButton *>();
    for (QAbstractButton *cell : cells)
        matrix->setId(cell, cell->property("tag").toInt());
    return matrix;
}

// Nothing is selected when there is no cell with that tag. The Tab key leads to the selected cell, the arrow keys from
// there to the others.
void selectCellWithTag(const QButtonGroup *matrix, int tag)
{
    QAbstractButton *selected = matrix->button(tag);
    if (!selected)
        return;
    selected->setChecked(true);
    const QList<QAbstractButton *> cells = matrix->buttons();
    for (QAbstractButton *cell : cells)
        cell->setFocusPolicy(cell == selected ? Qt::StrongFocus : Qt::ClickFocus);
}

AutoOpening storedAutoOpening()
{
    if (settings().openDrawerOnNewWindow())
        return InNewWindows;
    return settings().openDrawerForKnownSite() ? OnKnownSites : Never;
}

// What the lists show: their own font when that of the settings is not known here.
QFont fontOfLists()
{
    return settings().listViewFont().value_or(QApplication::font());
}

// Also of a font whose size was set in pixels.
qreal pointSizeOf(const QFont &font)
{
    return font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
}

// The table of the shortcuts, which asks its controller for everything it shows.
class ShortcutTable : public QAbstractTableModel
{
public:
    ShortcutTable(const WayfoldPrefsController &controller, QTreeView *view)
        : QAbstractTableModel(view)
        , _controller(controller)
        , _view(view)
    {}

    int rowCount(const QModelIndex &parent) const override
    {
        return parent.isValid() ? 0 : _controller.numberOfRowsInTableView(_view);
    }
    int columnCount(const QModelIndex &parent) const override { return parent.isValid() ? 0 : int(columns.size()); }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == Qt::TextAlignmentRole)
            return alignment(index.column());
        return role == Qt::DisplayRole ? value(index.column(), index.row()) : QVariant();
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (role == Qt::TextAlignmentRole)
            return alignment(section);
        if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
            return {};
        return WayfoldToolkit::localizedString(columns[section] == keyColumn ? QStringLiteral(QT_TRID_NOOP("Shortcut"))
                                                                             : QStringLiteral(QT_TRID_NOOP("Command")));
    }
    // Separators can be neither selected nor edited.
    Qt::ItemFlags flags(const QModelIndex &index) const override
    {
        const bool isCommand = value(0, index.row()) != separatorTitle;
        return isCommand ? QAbstractTableModel::flags(index) : Qt::NoItemFlags;
    }
    void rowDidChange(int row) { Q_EMIT dataChanged(index(row, 0), index(row, int(columns.size()) - 1)); }

private:
    QString value(int column, int row) const
    {
        return _controller.tableViewObjectValueForTableColumnRow(_view, columns.value(column), row);
    }
    static QVariant alignment(int column)
    {
        return int(Qt::AlignVCenter | (columns.value(column) == keyColumn ? Qt::AlignRight : Qt::AlignLeft));
    }

    static inline const QStringList columns = {titleColumn, keyColumn};

    const WayfoldPrefsController &_controller;
    const QTreeView *_view;
};

class RoomyRows : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, rowGap);
    }
};
} // namespace

void WayfoldPrefsController::displayPrefsWindow()
{
    auto *controller = new WayfoldPrefsController; // owns itself
    controller->init();
}

WayfoldPrefsController::~WayfoldPrefsController()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    delete _prefsWindow;
}

// --- Opening --------------------------------------------------------------------------------------------------------

void WayfoldPrefsController::init()
{
    _frontDrawer = store().frontDrawer();
    _frontDrawerNeedsClosing = isClosed(_frontDrawer);
    const QList<QAction *> items = store().wayfoldMenu() ? store().wayfoldMenu()->actions() : QList<QAction *>();
    _wayfoldMenuItems = QList<QPointer<QAction>>(items.cbegin(), items.cend());
    if (!loadInterface()) {
        deleteLater();
        return;
    }
    store().setPrefsWindowShown(true);
    showSettings();
    observeWindow();
    showTable();
    _shortcutPanel = new WayfoldShortcutPanel(_prefsWindow);
    _shortcutPanel->setWorksWhenModal(true);
    HelpText::prepare(_prefsWindow);
    SideWindow::prepare(_prefsWindow);
    SideWindow::center(_prefsWindow);
    SideWindow::makeKeyAndOrderFront(_prefsWindow);
}

bool WayfoldPrefsController::loadInterface()
{
    const InterfaceFile interface(QStringLiteral("WayfoldPrefs"));
    const auto checkBox = [&](const char *name) { return interface.outlet<QCheckBox>(QString::fromLatin1(name)); };
    _prefsWindow = interface.topLevelWidget();
    _autoOpenDrawerActions = radioMatrix(interface, "autoOpenDrawerActions");
    _autoFocusField = checkBox("autoFocusField");
    _showIconsField = checkBox("showIconsField");
    _closeOnUnknownField = checkBox("closeOnUnknownField");
    _historyGroupingOptions = radioMatrix(interface, "historyGroupingOptions");
    _confirmDeletesField = checkBox("confirmDeletesField");
    _setDrawerFontButton = interface.outlet<QAbstractButton>(QStringLiteral("setDrawerFontButton"));
    _fontField = interface.outlet<QLabel>(QStringLiteral("fontField"));
    _menuItemTableView = interface.outlet<QTreeView>(QStringLiteral("menuItemTableView"));
    _defaultTabView = radioMatrix(interface, "defaultTabView");
    _createAutoFoldersField = checkBox("createAutoFoldersField");
    _showFavIconsField = checkBox("showFavIconsField");
    _contactSourceField = interface.outlet<QComboBox>(QStringLiteral("contactSourceField"));
    _contactFolderField = interface.outlet<QLineEdit>(QStringLiteral("contactFolderField"));
    _chooseContactFolderButton = interface.outlet<QAbstractButton>(QStringLiteral("chooseContactFolderButton"));
    _contactsInUseField = interface.outlet<QLabel>(QStringLiteral("contactsInUseField"));
    if (_contactsInUseField)
        _contactsInUseField->setForegroundRole(QPalette::PlaceholderText);
    connectActions(interface);
    return _autoOpenDrawerActions && _autoFocusField && _showIconsField && _closeOnUnknownField &&
           _historyGroupingOptions && _confirmDeletesField && _setDrawerFontButton && _fontField &&
           _menuItemTableView && _defaultTabView && _createAutoFoldersField && _showFavIconsField &&
           _contactSourceField && _contactFolderField && _chooseContactFolderButton && _contactsInUseField;
}

void WayfoldPrefsController::connectActions(const InterfaceFile &interface)
{
    using Handler = void (WayfoldPrefsController::*)(QObject *);
    const auto connectAction = [&](const char *name, Handler handler) {
        interface.connectAction(QString::fromLatin1(name),
                                [this, handler](QObject *sender) { (this->*handler)(sender); });
    };
    connectAction("handleAutoOpenDrawerActionsButtonClick:",
                  &WayfoldPrefsController::handleAutoOpenDrawerActionsButtonClick);
    connectAction("handleAutoFocusButtonClick:", &WayfoldPrefsController::handleAutoFocusButtonClick);
    connectAction("handleShowIconsButtonClick:", &WayfoldPrefsController::handleShowIconsButtonClick);
    connectAction("handleShowFavIconsButtonClick:", &WayfoldPrefsController::handleShowFavIconsButtonClick);
    connectAction("handleCloseOnUnknownButtonClick:", &WayfoldPrefsController::handleCloseOnUnknownButtonClick);
    connectAction("handleHistoryGroupingButtonClick:", &WayfoldPrefsController::handleHistoryGroupingButtonClick);
    connectAction("handleConfirmDeleteButtonClick:", &WayfoldPrefsController::handleConfirmDeleteButtonClick);
    connectAction("handleInitialTabViewButtonClick:", &WayfoldPrefsController::handleInitialTabViewButtonClick);
    connectAction("handleCreateAutoFoldersButtonClick:", &WayfoldPrefsController::handleCreateAutoFoldersButtonClick);
    connectAction("handleContactSourceChoice:", &WayfoldPrefsController::handleContactSourceChoice);
    connectAction("chooseContactFolder:", &WayfoldPrefsController::chooseContactFolder);
    if (_contactFolderField)
        connect(_contactFolderField, &QLineEdit::editingFinished, this,
                [this] { handleContactFolderChange(_contactFolderField); });
    connectAction("showListViewFontSelectionPanel:", &WayfoldPrefsController::showListViewFontSelectionPanel);
}

void WayfoldPrefsController::showSettings()
{
    selectCellWithTag(_autoOpenDrawerActions, storedAutoOpening());
    _autoFocusField->setChecked(settings().autoFocusOnSiteChange());
    _showIconsField->setChecked(settings().showBookmarkIcons());
    _closeOnUnknownField->setChecked(settings().closeDrawerForUnknownSite());
    _closeOnUnknownField->setEnabled(settings().openDrawerForKnownSite());
    selectCellWithTag(_historyGroupingOptions, StringRules::integerValue(settings().historyGroupingStyle()));
    _confirmDeletesField->setChecked(settings().confirmItemDelete());
    showListViewFont();
    _createAutoFoldersField->setChecked(settings().createAutoFolders());
    _showFavIconsField->setChecked(settings().showFavicons());
    _showFavIconsField->setEnabled(settings().showBookmarkIcons());
    selectCellWithTag(_defaultTabView, StringRules::integerValue(settings().defaultFirstTabIdentifier()));
    showContactSource();
}

void WayfoldPrefsController::showListViewFont()
{
    const QFont font = fontOfLists();
    QString name = WayfoldDefaults::nameOfFont(font);
    if (name.size() > font.family().size())
        name[font.family().size()] = u' '; // before the style
    _fontField->setText(name + u' ' + QLocale().toString(pointSizeOf(font)));
}

void WayfoldPrefsController::showTable()
{
    auto *table = new ShortcutTable(*this, _menuItemTableView);
    _menuItemTableView->setModel(table);
    _menuItemTableView->setItemDelegate(new RoomyRows(_menuItemTableView));
    _menuItemTableView->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    _menuItemTableView->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    // Titles change when the menu is validated, shortcuts while they are edited.
    for (int row = 0; row < _wayfoldMenuItems.size(); ++row)
        connect(_wayfoldMenuItems[row], &QAction::changed, table, [table, row] { table->rowDidChange(row); });

    const auto edit = [this] { handleEditMenuShortcutRequest(_menuItemTableView); };
    connect(_menuItemTableView, &QTreeView::doubleClicked, this, [this, edit](const QModelIndex &index) {
        if (index.row() == _menuItemTableView->currentIndex().row()) // a separator never is
            edit();
    });
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        auto *shortcut = new QShortcut(key, _menuItemTableView);
        shortcut->setContext(Qt::WidgetShortcut);
        shortcut->setAutoRepeat(false); // it may have closed the sheet before
        connect(shortcut, &QShortcut::activated, this, edit);
    }
}

// --- Controls -------------------------------------------------------------------------------------------------------

void WayfoldPrefsController::handleAutoOpenDrawerActionsButtonClick(QObject * /*sender*/)
{
    const int tag = _autoOpenDrawerActions->checkedId();
    settings().setOpenDrawerOnNewWindow(tag == InNewWindows);
    settings().setOpenDrawerForKnownSite(tag == OnKnownSites);
    _closeOnUnknownField->setEnabled(settings().openDrawerForKnownSite());
    // Closing the drawer by itself only goes together with opening it.
    if (!settings().openDrawerForKnownSite() && settings().closeDrawerForUnknownSite()) {
        settings().setCloseDrawerForUnknownSite(false);
        _closeOnUnknownField->setChecked(false);
    }
}

void WayfoldPrefsController::handleAutoFocusButtonClick(QObject * /*sender*/)
{
    settings().setAutoFocusOnSiteChange(_autoFocusField->isChecked());
}

void WayfoldPrefsController::handleShowIconsButtonClick(QObject * /*sender*/)
{
    const bool on = _showIconsField->isChecked();
    settings().setShowBookmarkIcons(on);
    _showFavIconsField->setEnabled(on);
    if (!on) {
        _showFavIconsField->setChecked(false);
        settings().setShowFavicons(false);
    }
    store().updateAllDrawerContentsExceptFor(nullptr);
}

void WayfoldPrefsController::handleShowFavIconsButtonClick(QObject * /*sender*/)
{
    settings().setShowFavicons(_showFavIconsField->isChecked());
    store().updateAllDrawerContentsExceptFor(nullptr);
}

void WayfoldPrefsController::handleCloseOnUnknownButtonClick(QObject * /*sender*/)
{
    settings().setCloseDrawerForUnknownSite(_closeOnUnknownField->isChecked());
}

void WayfoldPrefsController::handleHistoryGroupingButtonClick(QObject * /*sender*/)
{
    const QString style = QString::number(_historyGroupingOptions->checkedId());
    const bool isOther = style != settings().historyGroupingStyle();
    settings().setHistoryGroupingStyle(style);
    if (isOther)
        WayfoldToolkit::postDelayedNotificationNameObject(Notifications::SafariHistoryFileModNotification, this);
}

void WayfoldPrefsController::handleConfirmDeleteButtonClick(QObject * /*sender*/)
{
    settings().setConfirmItemDelete(_confirmDeletesField->isChecked());
}

void WayfoldPrefsController::handleInitialTabViewButtonClick(QObject * /*sender*/)
{
    settings().setDefaultFirstTabIdentifier(QString::number(_defaultTabView->checkedId()));
}

void WayfoldPrefsController::handleCreateAutoFoldersButtonClick(QObject * /*sender*/)
{
    const bool on = _createAutoFoldersField->isChecked();
    settings().setCreateAutoFolders(on);
    if (on)
        store().addSmartFoldersToTopLevel();
    else
        store().removeSmartFoldersFromTopLevel();
}

// --- Contacts -------------------------------------------------------------------------------------------------------

void WayfoldPrefsController::showContactSource()
{
    // A word that is none of these is looked at as if nothing had been chosen.
    const qsizetype chosen = std::max(contactSources.indexOf(settings().contactSource()), qsizetype(0));
    const bool isFolder = contactSources[chosen] == u"folder";
    _contactSourceField->setCurrentIndex(int(chosen));
    _contactFolderField->setText(settings().contactFolder());
    _contactFolderField->setEnabled(isFolder);
    _chooseContactFolderButton->setEnabled(isFolder);
    showContactsInUse();
}

void WayfoldPrefsController::showContactsInUse()
{
    _contactsInUseField->setText(ContactsInUse::describe());
}

void WayfoldPrefsController::followContactSource()
{
    if (ContactSource *source = ContactSource::current())
        source->followSettings();
    showContactSource();
}

void WayfoldPrefsController::handleContactSourceChoice(QObject * /*sender*/)
{
    settings().setContactSource(contactSources.value(_contactSourceField->currentIndex()));
    followContactSource();
}

void WayfoldPrefsController::handleContactFolderChange(QObject * /*sender*/)
{
    const QString folder = StringRules::trimmed(_contactFolderField->text());
    if (folder == settings().contactFolder())
        return;
    settings().setContactFolder(folder.isEmpty() ? QString() : folder);
    followContactSource();
}

void WayfoldPrefsController::chooseContactFolder(QObject * /*sender*/)
{
    auto *panel =
        new QFileDialog(_prefsWindow, WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("Choose Folder"))),
                        ContactSource::chosenFolder());
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setFileMode(QFileDialog::Directory);
    panel->setOption(QFileDialog::ShowDirsOnly);
    connect(panel, &QFileDialog::fileSelected, this, [this](const QString &folder) {
        _contactFolderField->setText(folder);
        handleContactFolderChange(_contactFolderField);
    });
    panel->open();
}

// --- Font -----------------------------------------------------------------------------------------------------------

void WayfoldPrefsController::showListViewFontSelectionPanel(QObject * /*sender*/)
{
    if (!_fontPanel) {
        _fontPanel = new FontPanel(_prefsWindow);
        connect(_fontPanel, &FontPanel::currentFontChanged, this, [this] { changeFont(_fontPanel); });
    }
    _fontPanel->setSelectedFont(fontOfLists());
    SideWindow::makeKeyAndOrderFront(_fontPanel);
    if (_frontDrawerNeedsClosing && _frontDrawer)
        _frontDrawer->open();
}

void WayfoldPrefsController::changeFont(FontPanel *sender)
{
    const QFont font = sender->currentFont();
    const QString name = WayfoldDefaults::nameOfFont(font);
    const auto size = float(pointSizeOf(font));
    if (!WayfoldDefaults::fontWithNameSize(name, size))
        return;
    settings().setListViewFontName(name);
    settings().setListViewFontSize(size);
    showListViewFont();
    WayfoldToolkit::postNotificationNameObject(Notifications::ListViewFontChangeNotification, nullptr);
}

// --- Shortcuts ------------------------------------------------------------------------------------------------------

QAction *WayfoldPrefsController::itemInRow(int row) const
{
    return _wayfoldMenuItems.value(row);
}

int WayfoldPrefsController::numberOfRowsInTableView(const QTreeView * /*tableView*/) const
{
    return int(_wayfoldMenuItems.size());
}

QString WayfoldPrefsController::tableViewObjectValueForTableColumnRow(const QTreeView * /*tableView*/,
                                                                      const QString &column, int row) const
{
    const QAction *item = itemInRow(row);
    if (!item)
        return {};
    if (column == titleColumn)
        return isSeparator(item) ? separatorTitle : MenuItem::title(item);
    if (column != keyColumn || isSeparator(item))
        return {};
    const QString key = WayfoldShortcutPanel::describeShortCutKeyWithModifiers(
        MenuItem::keyEquivalent(item), MenuItem::keyEquivalentModifierMask(item));
    return key.isEmpty() ? noKey : key;
}

void WayfoldPrefsController::handleEditMenuShortcutRequest(QObject * /*sender*/)
{
    QAction *item = itemInRow(_menuItemTableView->currentIndex().row());
    if (item && !isSeparator(item))
        _shortcutPanel->performActionWithMenuItemForWindow(item, _prefsWindow);
}

// --- The window -----------------------------------------------------------------------------------------------------

void WayfoldPrefsController::observeWindow()
{
    _prefsWindow->installEventFilter(this);
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &WayfoldPrefsController::focusWindowDidChange);
    for (const QString &name : {PlatformNotifications::kABDatabaseChangedNotification,
                                PlatformNotifications::kABDatabaseChangedExternallyNotification})
        NotificationCenter::defaultCenter().addObserver(
            this, [this](const Notification & /*notification*/) { showContactsInUse(); }, name);
    NotificationCenter::defaultCenter().addObserver(
        this, [this](const Notification & /*notification*/) { showSettings(); },
        WayfoldDefaults::changedElsewhereNotification);
}

// What belongs to a window does not come to the front in its place. Nor does no window at all: another application is
// in front then, or the window manager has not decided yet.
void WayfoldPrefsController::focusWindowDidChange(const QWindow *window)
{
    if (!window)
        return;
    if (isPartOfPreferences(window))
        _wasMain = true;
    else if (_wasMain)
        prefsWindowDidResignMain();
}

// The front drawer, too, which shows what is being chosen.
bool WayfoldPrefsController::isPartOfPreferences(const QWindow *window) const
{
    const auto owns = [window](const QWidget *widget) {
        const QWindow *owner = widget ? widget->windowHandle() : nullptr;
        return owner && (owner == window || owner->isAncestorOf(window));
    };
    return owns(_prefsWindow) || owns(_frontDrawer);
}

bool WayfoldPrefsController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == _prefsWindow && event->type() == QEvent::Close)
        prefsWindowWillClose();
    return QObject::eventFilter(watched, event);
}

void WayfoldPrefsController::prefsWindowDidResignMain()
{
    _prefsWindow->close();
}

void WayfoldPrefsController::prefsWindowWillClose()
{
    _prefsWindow->removeEventFilter(this);
    qGuiApp->disconnect(this);
    NotificationCenter::defaultCenter().removeObserver(this);
    if (_fontPanel)
        _fontPanel->close();
    store().setPrefsWindowShown(false);
    if (_frontDrawerNeedsClosing && _frontDrawer)
        _frontDrawer->close();
    deleteLater();
}
