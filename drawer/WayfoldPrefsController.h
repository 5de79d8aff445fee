#pragma once

#include <QFont>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QWidget>

class FontPanel;
class InterfaceFile;
class QAbstractButton;
class QAction;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QFileDialog;
class QLabel;
class QLineEdit;
class QTreeView;
class QWindow;
class SiteDrawer;
class WayfoldShortcutPanel;

// The window of the preferences: a control for each setting, which stores every change at once, and the commands of the
// plug-in's menu with their keyboard shortcuts. It closes as soon as another window of the browser comes to the front.
// A controller owns itself while its window is open.
class WayfoldPrefsController : public QObject
{
    Q_OBJECT

public:
    // Opens a new window, in front.
    static void displayPrefsWindow();
    ~WayfoldPrefsController() override;

    // Null when the interface file is missing.
    QWidget *window() const { return _prefsWindow; }

    void handleAutoOpenDrawerActionsButtonClick(QObject *sender);
    void handleAutoFocusButtonClick(QObject *sender);
    void handleShowIconsButtonClick(QObject *sender);
    void handleShowFavIconsButtonClick(QObject *sender);
    void handleCloseOnUnknownButtonClick(QObject *sender);
    void handleHistoryGroupingButtonClick(QObject *sender);
    void handleConfirmDeleteButtonClick(QObject *sender);
    void handleInitialTabViewButtonClick(QObject *sender);
    void handleCreateAutoFoldersButtonClick(QObject *sender);
    void handleContactSourceChoice(QObject *sender);
    void handleContactFolderChange(QObject *sender);
    // Shows the folders of this machine, as a sheet of the window.
    void chooseContactFolder(QObject *sender);
    // Shows the font panel, and the front drawer when it is closed, so that its lists are seen while one chooses.
    void showListViewFontSelectionPanel(QObject *sender);
    // Takes the font of the panel for the lists; one that could not be found again by its name changes nothing.
    void changeFont(FontPanel *sender);
    // For the table's current row; nothing when there is none, or for a separator.
    void handleEditMenuShortcutRequest(QObject *sender);

    // The table's rows are the items that the menu had when the window opened. Its columns are "MenuTitle" and "Key";
    // any other is empty.
    int numberOfRowsInTableView(const QTreeView *tableView) const;
    QString tableViewObjectValueForTableColumnRow(const QTreeView *tableView, const QString &column, int row) const;

    void prefsWindowWillClose();
    void prefsWindowDidResignMain();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    WayfoldPrefsController() = default;

    void init();
    // False when the interface file, or something in it, is missing.
    bool loadInterface();
    void connectActions(const InterfaceFile &interface);
    void showSettings();
    void showListViewFont();
    void showContactSource();
    void showContactsInUse();
    void followContactSource();
    void showTable();
    void observeWindow();
    void focusWindowDidChange(const QWindow *window);
    bool isPartOfPreferences(const QWindow *window) const;
    QAction *itemInRow(int row) const;

    QPointer<QWidget> _prefsWindow;
    QPointer<QButtonGroup> _autoOpenDrawerActions; // ids: 0 never, 1 in new windows, 2 on known sites
    QPointer<QCheckBox> _autoFocusField;
    QPointer<QCheckBox> _showIconsField;
    QPointer<QCheckBox> _closeOnUnknownField;
    QPointer<QButtonGroup> _historyGroupingOptions; // ids: the grouping styles
    QPointer<QCheckBox> _confirmDeletesField;
    QPointer<QAbstractButton> _setDrawerFontButton;
    QPointer<QLabel> _fontField;
    QPointer<QTreeView> _menuItemTableView;
    QPointer<WayfoldShortcutPanel> _shortcutPanel;
    QPointer<QButtonGroup> _defaultTabView; // ids: the tabs' identifiers
    QPointer<QCheckBox> _createAutoFoldersField;
    QPointer<QCheckBox> _showFavIconsField;
    QPointer<QComboBox> _contactSourceField;
    QPointer<QLineEdit> _contactFolderField;
    QPointer<QAbstractButton> _chooseContactFolderButton;
    QPointer<QLabel> _contactsInUseField;
    QPointer<FontPanel> _fontPanel;
    QPointer<SiteDrawer> _frontDrawer; // of the window that was key when the preferences were opened
    bool _frontDrawerNeedsClosing = false;
    QList<QPointer<QAction>> _wayfoldMenuItems;
    bool _wasMain = false; // has been in front
};
