// The store's menus and their commands.
#include "core/KDRDrawerBundle.h"

#include "core/PreferencesWindow.h"
#include "core/ReleaseCheck.h"
#include "core/RestorePanel.h"
#include "core/SiteDrawer.h"
#include "core/WayfoldAboutController.h"
#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "platform/host/CurrentHost.h"
#include "platform/host/HostApplication.h"
#include "platform/host/HostFrame.h"
#include "platform/host/HostMenuBar.h"
#include "platform/widgets/InterfaceFile.h"
#include "platform/widgets/MenuKeyFilter.h"

#include <QApplication>
#include <QFontMetrics>
#include <QHash>
#include <QMenu>

namespace
{
using Command = void (KDRDrawerBundle::*)(QObject *sender);

const QHash<QString, Command> &commands()
{
    static const QHash<QString, Command> table = {
        {QStringLiteral("handleToggleKDRDrawer:"), &KDRDrawerBundle::handleToggleKDRDrawer},
        {QStringLiteral("handleShowScratchpadTabView:"), &KDRDrawerBundle::handleShowScratchpadTabView},
        {QStringLiteral("handleShowBookmarkTabView:"), &KDRDrawerBundle::handleShowBookmarkTabView},
        {QStringLiteral("handleShowHistoryTabView:"), &KDRDrawerBundle::handleShowHistoryTabView},
        {QStringLiteral("handleFocusOnCurrentSiteRequest:"), &KDRDrawerBundle::handleFocusOnCurrentSiteRequest},
        {QStringLiteral("handleSaveCurrentURLRequest:"), &KDRDrawerBundle::handleSaveCurrentURLRequest},
        {QStringLiteral("handleSwitchbackRequest:"), &KDRDrawerBundle::handleSwitchbackRequest},
        {QStringLiteral("handleNewSubFolderRequest:"), &KDRDrawerBundle::handleNewSubFolderRequest},
        {QStringLiteral("handleNewNoteRequest:"), &KDRDrawerBundle::handleNewNoteRequest},
        {QStringLiteral("handleNewEmailRequest:"), &KDRDrawerBundle::handleNewEmailRequest},
        {QStringLiteral("handleNewPersonRequest:"), &KDRDrawerBundle::handleNewPersonRequest},
        {QStringLiteral("handleRestoreFromBackupRequest:"), &KDRDrawerBundle::handleRestoreFromBackupRequest},
        {QStringLiteral("handleCheckForNewReleaseRequest:"), &KDRDrawerBundle::handleCheckForNewReleaseRequest},
        {QStringLiteral("handleShowPrefsWindow:"), &KDRDrawerBundle::handleShowPrefsWindow},
        {QStringLiteral("handleShowAboutWindow:"), &KDRDrawerBundle::handleShowAboutWindow},
    };
    return table;
}

bool isShowing(const Drawer &drawer)
{
    return drawer.state() == Drawer::Open || drawer.state() == Drawer::Opening;
}

QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

// A title as it is: a menu would take a lone "&" for the mark of a shortcut letter.
void setTitle(QAction *item, const QString &title)
{
    item->setText(QString(title).replace(QLatin1Char('&'), QStringLiteral("&&")));
}

// A long name would make the menu as wide as the screen, and behind a tab a menu shows a key.
void setTitle(QAction *item, const QString &format, const QString &name)
{
    constexpr int widestName = 400; // pixels
    const QFontMetrics metrics(QApplication::font("QMenu"));
    const QString shown = metrics.elidedText(name.simplified(), Qt::ElideMiddle, widestName);
    setTitle(item, QString(format).replace(QStringLiteral("%@"), shown));
}

// The menu item and the command of one of the drawer's tabs.
struct Tab
{
    const char *showTitle;
    const char *closeTitle;
    bool (SiteDrawerController::*isCurrent)() const;
    void (SiteDrawerController::*show)();
};

constexpr Tab scratchpadTab = {QT_TRID_NOOP("Show Scratchpad View"), QT_TRID_NOOP("Close Scratchpad View"),
                               &SiteDrawerController::isScratchPadTabViewCurrent,
                               &SiteDrawerController::showScratchPadTabView};
constexpr Tab bookmarkTab = {QT_TRID_NOOP("Show Bookmark View"), QT_TRID_NOOP("Close Bookmark View"),
                             &SiteDrawerController::isBookmarkTabViewCurrent,
                             &SiteDrawerController::showBookmarkTabView};
constexpr Tab historyTab = {QT_TRID_NOOP("Show History View"), QT_TRID_NOOP("Close History View"),
                            &SiteDrawerController::isHistoryTabViewCurrent, &SiteDrawerController::showHistoryTabView};

bool isShowingTab(const SiteDrawer &drawer, const Tab &tab)
{
    return isShowing(drawer) && drawer.controller() && (drawer.controller()->*tab.isCurrent)();
}

QString hostNameOfPage(const SiteDrawerController *controller)
{
    return controller ? WayfoldToolkit::hostNameFromWebFrame(controller->currentWebFrame().get()) : QString();
}

bool validateToggleItem(QAction *item, const SiteDrawer *drawer)
{
    if (drawer)
        setTitle(item, localized(isShowing(*drawer) ? QT_TRID_NOOP("Close Drawer") : QT_TRID_NOOP("Open Drawer")));
    return drawer != nullptr;
}

bool validateTabItem(QAction *item, const SiteDrawer *drawer, const Tab &tab)
{
    if (drawer)
        setTitle(item, localized(isShowingTab(*drawer, tab) ? tab.closeTitle : tab.showTitle));
    return drawer != nullptr;
}

bool validateFocusItem(QAction *item, const SiteDrawer *drawer)
{
    if (!drawer)
        return false;
    const QString hostName = hostNameOfPage(drawer->controller());
    if (hostName.isEmpty())
        setTitle(item, localized("Focus on Current Site"));
    else
        setTitle(item, localized("Focus on %@"), hostName);
    return !hostName.isEmpty();
}

bool validateSwitchbackItem(QAction *item, const SiteDrawerController *controller)
{
    const bool isScratchpad = controller && controller->isScratchPadTabViewCurrent();
    const QString label = isScratchpad ? controller->previousScratchDrawerLabel() : QString();
    if (label.isEmpty())
        setTitle(item, localized("Show Previous Site List"));
    else
        setTitle(item, QStringLiteral("Show Site List for %@"), label); // in English in every language
    return !label.isEmpty();
}

SiteDrawerController *controllerOf(const SiteDrawer *drawer)
{
    return drawer ? drawer->controller() : nullptr;
}

QMenu *submenuOfFirstItem(const QMenu *container)
{
    return container && !container->isEmpty() ? container->actions().constFirst()->menu() : nullptr;
}

// Tags are numbered from 0; the first that is missing ends the list.
void forEachStoredShortcut(const QMenu *menu, const std::function<void(QAction *, const QString &, unsigned)> &visit)
{
    const WayfoldDefaults &settings = WayfoldDefaults::sharedInstance();
    for (unsigned tag = 0; QAction *item = MenuItem::itemWithTag(menu, int(tag)); ++tag)
        visit(item, settings.shortcutKeyForItem(tag), settings.shortcutModifierMaskForItem(tag));
}

void applyStoredShortcuts(const QMenu *menu)
{
    forEachStoredShortcut(menu, [](QAction *item, const QString &key, unsigned modifierMask) {
        if (!key.isEmpty() && modifierMask != 0)
            MenuItem::setKeyEquivalent(item, key, modifierMask);
    });
}

void setTargetOfItems(const QMenu *menu, MenuItemTarget *target)
{
    const QList<QAction *> items = menu->actions();
    for (QAction *item : items)
        MenuItem::setTarget(item, target);
}

void moveIntoMainMenu(QMenu *container)
{
    const QList<QAction *> items = container->actions();
    for (QAction *item : items) {
        container->removeAction(item);
        if (currentHost() && item->menu())
            currentHost()->mainMenu().appendMenu(item->menu());
    }
}

void showTab(KDRDrawerBundle &store, const Tab &tab, QObject *sender)
{
    SiteDrawer *drawer = store.frontDrawer();
    SiteDrawerController *controller = controllerOf(drawer);
    if (!controller)
        return;
    if (isShowingTab(*drawer, tab)) {
        store.handleToggleKDRDrawer(sender);
        return;
    }
    (controller->*tab.show)();
    if (store.openKDRDrawer()) {
        controller->markDrawerAsOpenedManually(true);
        controller->selectInitialFirstResponder();
    }
}
} // namespace

void KDRDrawerBundle::loadMenuAdditions()
{
    const InterfaceFile interface(QStringLiteral("KDRDrawerMenu"));
    _menuInterface = interface.topLevelWidget();
    _mainMenuRef = interface.outlet<QMenu>(QStringLiteral("mainMenu"));
    _contextualMenuRef = interface.outlet<QMenu>(QStringLiteral("contextualMenu"));
    _wayfoldMenu = submenuOfFirstItem(_mainMenuRef);
    _contextualMenu = submenuOfFirstItem(_contextualMenuRef);
    if (!_wayfoldMenu)
        return;
    applyStoredShortcuts(_wayfoldMenu);
    setTargetOfItems(_wayfoldMenu, this);
    MenuItem::validateOnShow(_wayfoldMenu);
    new MenuKeyFilter(_wayfoldMenu);
    setTargetOfItems(_mainMenuRef, this);
    moveIntoMainMenu(_mainMenuRef);
}

// Those that were taken away, too.
void KDRDrawerBundle::showStoredShortcuts()
{
    if (!_wayfoldMenu)
        return;
    forEachStoredShortcut(_wayfoldMenu, [](QAction *item, const QString &key, unsigned modifierMask) {
        const bool hasShortcut = !key.isEmpty() && modifierMask != 0;
        MenuItem::setKeyEquivalent(item, hasShortcut ? key : QStringLiteral(""), hasShortcut ? modifierMask : 0);
    });
}

bool KDRDrawerBundle::validateMenuItem(QAction *item)
{
    const SiteDrawer *drawer = frontDrawer();
    SiteDrawerController *controller = controllerOf(drawer);
    const QString action = MenuItem::action(item);
    if (action == u"handleToggleKDRDrawer:")
        return validateToggleItem(item, drawer);
    if (action == u"handleShowScratchpadTabView:")
        return validateTabItem(item, drawer, scratchpadTab);
    if (action == u"handleShowBookmarkTabView:")
        return validateTabItem(item, drawer, bookmarkTab);
    if (action == u"handleShowHistoryTabView:")
        return validateTabItem(item, drawer, historyTab);
    if (action == u"handleFocusOnCurrentSiteRequest:")
        return validateFocusItem(item, drawer);
    if (action == u"handleSaveCurrentURLRequest:")
        return !hostNameOfPage(controller).isEmpty();
    if (action == u"handleSwitchbackRequest:")
        return validateSwitchbackItem(item, controller);
    if (action == u"handleRestoreFromBackupRequest:")
        return drawer != nullptr;
    if (action == u"handleCheckForNewReleaseRequest:")
        return true;
    if (action == u"handleShowPrefsWindow:")
        return drawer && !_prefsWindowOpen;
    if (action == u"handleShowAboutWindow:")
        return true;
    return controller && controller->passValidateMenuItemToOutlineView(item);
}

void KDRDrawerBundle::performMenuItem(QAction *item)
{
    if (const Command command = commands().value(MenuItem::action(item)))
        (this->*command)(item);
}

void KDRDrawerBundle::handleToggleKDRDrawer(QObject * /*sender*/)
{
    SiteDrawer *drawer = frontDrawer();
    if (!drawer)
        return;
    drawer->toggle();
    SiteDrawerController *controller = drawer->controller();
    if (!controller)
        return;
    controller->markDrawerAsOpenedManually(isShowing(*drawer));
    if (isShowing(*drawer))
        controller->selectInitialFirstResponder();
}

void KDRDrawerBundle::handleShowScratchpadTabView(QObject *sender)
{
    showTab(*this, scratchpadTab, sender);
}

void KDRDrawerBundle::handleShowBookmarkTabView(QObject *sender)
{
    showTab(*this, bookmarkTab, sender);
}

void KDRDrawerBundle::handleShowHistoryTabView(QObject *sender)
{
    showTab(*this, historyTab, sender);
}

void KDRDrawerBundle::handleFocusOnCurrentSiteRequest(QObject * /*sender*/)
{
    SiteDrawer *drawer = frontDrawer();
    SiteDrawerController *controller = controllerOf(drawer);
    if (!controller)
        return;
    const std::shared_ptr<HostFrame> frame = controller->currentWebFrame();
    controller->setScratchDrawerLabelUsingFrame(WayfoldToolkit::hostNameToTrackFromWebFrame(frame.get()), frame);
    if (!isShowing(*drawer))
        drawer->open();
    controller->showScratchPadTabView();
}

void KDRDrawerBundle::handleSaveCurrentURLRequest(QObject *sender)
{
    if (SiteDrawerController *controller = controllerOf(frontDrawer()))
        controller->handleSaveCurrentURLRequest(sender);
}

void KDRDrawerBundle::handleSwitchbackRequest(QObject *sender)
{
    if (SiteDrawerController *controller = controllerOf(frontDrawer()))
        controller->handleSwitchbackRequest(sender);
}

void KDRDrawerBundle::handleNewSubFolderRequest(QObject *sender)
{
    if (SiteDrawerController *controller = controllerOf(frontDrawer()))
        controller->handleNewSubFolderRequest(sender);
}

void KDRDrawerBundle::handleNewNoteRequest(QObject *sender)
{
    if (SiteDrawerController *controller = controllerOf(frontDrawer()))
        controller->handleNewNoteRequest(sender);
}

void KDRDrawerBundle::handleNewEmailRequest(QObject *sender)
{
    if (SiteDrawerController *controller = controllerOf(frontDrawer()))
        controller->handleNewEmailRequest(sender);
}

void KDRDrawerBundle::handleNewPersonRequest(QObject *sender)
{
    if (SiteDrawerController *controller = controllerOf(frontDrawer()))
        controller->handleNewPersonRequest(sender);
}

void KDRDrawerBundle::handleRestoreFromBackupRequest(QObject * /*sender*/)
{
    RestorePanel::show();
}

void KDRDrawerBundle::handleCheckForNewReleaseRequest(QObject * /*sender*/)
{
    ReleaseCheck::checkForNewRelease();
}

void KDRDrawerBundle::handleShowPrefsWindow(QObject * /*sender*/)
{
    PreferencesWindow::show();
}

void KDRDrawerBundle::handleShowAboutWindow(QObject * /*sender*/)
{
    WayfoldAboutController::displayAboutWindow();
}
