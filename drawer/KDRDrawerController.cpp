#include "drawer/KDRDrawerController.h"

#include "core/KDRDrawerBundle.h"
#include "core/Notifications.h"
#include "core/settings/WayfoldDefaults.h"
#include "drawer/KDRDrawer.h"
#include "drawer/MessageBar.h"
#include "drawer/WayfoldBookmarkTextCell.h"
#include "drawer/WayfoldTabView.h"
#include "lists/ListSearch.h"
#include "lists/WayfoldBookmarkDataSource.h"
#include "lists/WayfoldBookmarkOutlineView.h"
#include "lists/WayfoldHistoryDataSource.h"
#include "lists/WayfoldHistoryOutlineView.h"
#include "lists/WayfoldScratchDataSource.h"
#include "lists/WayfoldScratchOutlineView.h"
#include "lists/WayfoldSitePopupButton.h"
#include "platform/base/NotificationQueue.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/host/HostFrame.h"
#include "platform/host/HostWindow.h"
#include "platform/widgets/InterfaceFile.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QVBoxLayout>
#include <algorithm>

namespace
{
constexpr qreal smallestContentWidth = 280;
constexpr qreal drawerFrameWidth = 20; // of the drawer around its content

const QString scratchpadIdentifier = QStringLiteral("0");
const QString bookmarksIdentifier = QStringLiteral("1");
const QString historyIdentifier = QStringLiteral("2");

const QString scratchpadLabel = QStringLiteral("Scratchpad");
const QString bookmarksLabel = QStringLiteral("Bookmarks");
const QString historyLabel = QStringLiteral("History");
} // namespace

std::shared_ptr<KDRDrawerController> KDRDrawerController::controllerForWindow(const std::shared_ptr<HostWindow> &window)
{
    // Whoever lets go of it last may be one of its own operations, so it goes when the event is over.
    std::shared_ptr<KDRDrawerController> controller(new KDRDrawerController,
                                                    [](KDRDrawerController *released) { released->deleteLater(); });
    controller->_self = controller;
    controller->initForWindow(window);
    return controller;
}

KDRDrawerController::KDRDrawerController() = default;

KDRDrawerController::~KDRDrawerController()
{
    NotificationCenter::defaultCenter().removeObserver(this);
    if (_drawer) {
        NotificationQueue::defaultQueue().dequeueNotificationsForObject(static_cast<const Drawer *>(_drawer));
        _drawer->setController(nullptr);
    }
    // The views go before the data sources that they look at.
    delete _drawer;
}

KDRDrawer *KDRDrawerController::drawer() const
{
    return _drawer;
}

WayfoldTabView *KDRDrawerController::tabView() const
{
    return _tabView;
}

MessageBar *KDRDrawerController::messageBar() const
{
    return _messageBar;
}

WayfoldScratchOutlineView *KDRDrawerController::scratchOutlineView() const
{
    return _scratchOutlineView;
}

WayfoldBookmarkOutlineView *KDRDrawerController::bookmarkOutlineView() const
{
    return _bookmarkOutlineView;
}

WayfoldHistoryOutlineView *KDRDrawerController::historyOutlineView() const
{
    return _historyOutlineView;
}

// --- Creation -------------------------------------------------------------------------------------------------------

void KDRDrawerController::initForWindow(const std::shared_ptr<HostWindow> &window)
{
    _shuttingDown = false;
    _drawerOpenedManually = false;
    _currentWebFrame.reset();
    loadInterface();
    if (_drawer) {
        _drawer->setParentWindow(window);
        sizeDrawer();
    }
    if (_tabView)
        _tabView->selectTabWithIdentifier(WayfoldDefaults::sharedInstance().defaultFirstTabIdentifier());
    observe(window.get());
    KDRDrawerBundle::sharedInstance().trackWindow(window);
}

void KDRDrawerController::loadInterface()
{
    const InterfaceFile interface(QStringLiteral("KDRDrawer"));
    _drawer = interface.outlet<KDRDrawer>(QStringLiteral("drawer"));
    _drawerView = interface.outlet<QWidget>(QStringLiteral("drawerView"));
    _tabView = interface.outlet<WayfoldTabView>(QStringLiteral("tabView"));
    _scratchOutlineView = interface.outlet<WayfoldScratchOutlineView>(QStringLiteral("scratchOutlineView"));
    _bookmarkOutlineView = interface.outlet<WayfoldBookmarkOutlineView>(QStringLiteral("bookmarkOutlineView"));
    _historyOutlineView = interface.outlet<WayfoldHistoryOutlineView>(QStringLiteral("historyOutlineView"));
    if (!_drawer) {
        delete interface.topLevelWidget(); // a form of something else
        return;
    }
    _drawer->setController(this);
    _drawer->setOutlineView(_scratchOutlineView);
    connectScratchpad(interface);
    connectBookmarks(interface);
    connectHistory(interface);
    if (auto *layout = interface.outlet<QVBoxLayout>(QStringLiteral("drawerLayout"))) {
        // Above the lists, but behind them for Tab: what comes first gets the keyboard with the window.
        _messageBar = new MessageBar(&KDRDrawerBundle::sharedInstance().messages(), _drawerView);
        layout->insertWidget(0, _messageBar);
    }
    if (_tabView) {
        _tabView->willSelectTab = [this](const QString &identifier) { tabViewWillSelectTab(identifier); };
        _tabView->awakeFromNib();
    }
}

void KDRDrawerController::connectScratchpad(const InterfaceFile &interface)
{
    WayfoldScratchDataSource::Outlets outlets;
    outlets.scratchOutlineView = _scratchOutlineView;
    outlets.drawer = _drawer;
    outlets.newSubfolderButton = interface.outlet<QAbstractButton>(QStringLiteral("newSubfolderButton"));
    outlets.newNoteButton = interface.outlet<QAbstractButton>(QStringLiteral("newNoteButton"));
    outlets.newEmailButton = interface.outlet<QAbstractButton>(QStringLiteral("newEmailButton"));
    outlets.newPersonButton = interface.outlet<QAbstractButton>(QStringLiteral("newPersonButton"));
    outlets.deleteItemButton = interface.outlet<QAbstractButton>(QStringLiteral("deleteItemButton"));
    outlets.editItemButton = interface.outlet<QAbstractButton>(QStringLiteral("editItemButton"));
    outlets.switchbackButton = interface.outlet<QAbstractButton>(QStringLiteral("switchbackButton"));
    _scratchDataSource = std::make_unique<WayfoldScratchDataSource>(outlets);
    WayfoldScratchDataSource *source = _scratchDataSource.get();

    auto *popup = interface.outlet<WayfoldSitePopupButton>(QStringLiteral("sitePopupMenu"));
    if (_scratchOutlineView)
        _scratchOutlineView->setSitePopupMenu(popup);
    connectList(_scratchOutlineView, source);
    if (popup)
        connect(popup, &WayfoldSitePopupButton::siteChangeRequested, source,
                [source, popup] { source->handleSiteChange(popup); });

    using Request = void (WayfoldScratchDataSource::*)(QObject *);
    const auto connectRequest = [&interface, source](const char *name, Request request) {
        interface.connectAction(QString::fromLatin1(name),
                                [source = QPointer<WayfoldScratchDataSource>(source), request](QObject *sender) {
                                    if (source)
                                        (source->*request)(sender);
                                });
    };
    connectRequest("handleNewSubFolderRequest:", &WayfoldScratchDataSource::handleNewSubFolderRequest);
    connectRequest("handleNewNoteRequest:", &WayfoldScratchDataSource::handleNewNoteRequest);
    connectRequest("handleNewEmailRequest:", &WayfoldScratchDataSource::handleNewEmailRequest);
    connectRequest("handleNewPersonRequest:", &WayfoldScratchDataSource::handleNewPersonRequest);
    connectRequest("handleItemEditRequest:", &WayfoldScratchDataSource::handleItemEditRequest);
    connectRequest("handleDeleteItemRequest:", &WayfoldScratchDataSource::handleDeleteItemRequest);
    connectRequest("handleSwitchbackRequest:", &WayfoldScratchDataSource::handleSwitchbackRequest);
    source->awakeFromNib();
}

void KDRDrawerController::connectBookmarks(const InterfaceFile &interface)
{
    _bookmarkDataSource = std::make_unique<WayfoldBookmarkDataSource>(_bookmarkOutlineView);
    WayfoldBookmarkDataSource *source = _bookmarkDataSource.get();
    connectList(_bookmarkOutlineView, source);
    source->awakeFromNib();
    auto *field = interface.outlet<QLineEdit>(QStringLiteral("bookmarkSearchField"));
    if (!field || !_bookmarkOutlineView)
        return;
    connect(field, &QLineEdit::textChanged, source, [source, field] { source->processSearchFilter(field); });
    new ListSearch(field, _bookmarkOutlineView, _tabView);
}

void KDRDrawerController::connectHistory(const InterfaceFile &interface)
{
    _historyDataSource = std::make_unique<WayfoldHistoryDataSource>(_historyOutlineView);
    WayfoldHistoryDataSource *source = _historyDataSource.get();
    connectList(_historyOutlineView, source);
    source->awakeFromNib();
    auto *field = interface.outlet<QLineEdit>(QStringLiteral("historySearchField"));
    if (!field || !_historyOutlineView)
        return;
    connect(field, &QLineEdit::textChanged, source, [source, field] { source->processSearchFilter(field); });
    new ListSearch(field, _historyOutlineView, _tabView);
}

void KDRDrawerController::connectList(WayfoldOutlineView *view, WayfoldOutlineViewDataSource *source)
{
    source->setOwner(_self);
    if (!view)
        return;
    view->setDataCell(std::make_unique<WayfoldBookmarkTextCell>());
    view->setDelegate(source);
    view->awakeFromNib();
    view->setOutlineDataSource(source);
}

void KDRDrawerController::sizeDrawer()
{
    if (!_drawerView)
        return;
    const QSizeF size = _drawerView->size();
    const qreal smallest = std::max(size.width(), smallestContentWidth);
    const qreal stored = WayfoldDefaults::sharedInstance().defaultDrawerContentWidth();
    const qreal width = stored > 0 ? std::max(stored, smallest) : smallest;
    _drawer->setContentView(_drawerView);
    _drawer->setMinContentSize(QSizeF(smallest, size.height()));
    _drawer->setContentSize(QSizeF(width, size.height()));
}

void KDRDrawerController::observe(const HostWindow *window)
{
    using Handler = void (KDRDrawerController::*)(const Notification &);
    const auto observe = [this](const QString &name, const void *object, Handler handler) {
        if (object)
            NotificationCenter::defaultCenter().addObserver(
                this, [this, handler](const Notification &notification) { (this->*handler)(notification); }, name,
                object);
    };
    const Drawer *drawer = _drawer;
    observe(PlatformNotifications::NSWindowWillCloseNotification, window, &KDRDrawerController::parentWindowWillClose);
    observe(Notifications::DrawerShouldOpenForLocationChange, drawer,
            &KDRDrawerController::drawerShouldOpenForLocationChange);
    observe(Notifications::DrawerShouldCloseForLocationChange, drawer,
            &KDRDrawerController::drawerShouldCloseForLocationChange);
    observe(PlatformNotifications::NSDrawerDidCloseNotification, drawer,
            &KDRDrawerController::drawerDidCloseNotification);
    observe(PlatformNotifications::NSDrawerWillOpenNotification, drawer,
            &KDRDrawerController::drawerWillOpenNotification);
}

std::shared_ptr<HostWindow> KDRDrawerController::parentWindow() const
{
    return _drawer ? _drawer->parentWindow() : nullptr;
}

// --- Tabs -----------------------------------------------------------------------------------------------------------

QWidget *KDRDrawerController::currentTabViewItem() const
{
    return _tabView ? _tabView->currentWidget() : nullptr;
}

QString KDRDrawerController::currentTabViewLabel() const
{
    return _tabView ? _tabView->currentLabel() : QString();
}

bool KDRDrawerController::isScratchPadTabViewCurrent() const
{
    return currentTabViewLabel() == scratchpadLabel;
}

bool KDRDrawerController::isBookmarkTabViewCurrent() const
{
    return currentTabViewLabel() == bookmarksLabel;
}

bool KDRDrawerController::isHistoryTabViewCurrent() const
{
    return currentTabViewLabel() == historyLabel;
}

void KDRDrawerController::showScratchPadTabView()
{
    if (_tabView)
        _tabView->selectTabWithIdentifier(scratchpadIdentifier);
}

void KDRDrawerController::showBookmarkTabView()
{
    if (_tabView)
        _tabView->selectTabWithIdentifier(bookmarksIdentifier);
}

void KDRDrawerController::showHistoryTabView()
{
    if (_tabView)
        _tabView->selectTabWithIdentifier(historyIdentifier);
}

void KDRDrawerController::selectInitialFirstResponder()
{
    if (!_tabView)
        return;
    _drawer->activateWindow();
    if (QWidget *responder = _tabView->initialFirstResponderOfTab(_tabView->currentIndex()))
        responder->setFocus(Qt::OtherFocusReason);
}

void KDRDrawerController::tabViewWillSelectTab(const QString &identifier)
{
    if (identifier == scratchpadIdentifier)
        _scratchDataSource->ensureDataLoaded();
    else if (identifier == bookmarksIdentifier)
        _bookmarkDataSource->ensureDataLoaded();
    else if (identifier == historyIdentifier)
        _historyDataSource->ensureDataLoaded();
}

WayfoldOutlineView *KDRDrawerController::currentOutlineView() const
{
    if (isScratchPadTabViewCurrent())
        return _scratchOutlineView;
    if (isBookmarkTabViewCurrent())
        return _bookmarkOutlineView;
    return isHistoryTabViewCurrent() ? _historyOutlineView : nullptr;
}

WayfoldOutlineViewDataSource *KDRDrawerController::currentDataSource() const
{
    if (isScratchPadTabViewCurrent())
        return _scratchDataSource.get();
    if (isBookmarkTabViewCurrent())
        return _bookmarkDataSource.get();
    return isHistoryTabViewCurrent() ? _historyDataSource.get() : nullptr;
}

// --- Room on the screen ---------------------------------------------------------------------------------------------

void KDRDrawerController::resizeParentWindowForDrawer()
{
    const std::shared_ptr<HostWindow> window = parentWindow();
    if (!window || _drawer->standsAlone())
        return;
    const QRectF frame = window->frame();
    const QRectF screen = window->visibleScreenFrame();
    const qreal needed = _drawer->contentSize().width() + drawerFrameWidth;
    _parentWindowWasResized = false;
    _parentWindowOriginalFrame = _parentWindowNewFrame = QRectF();

    const qreal overflowRight = (frame.x() + frame.width() + needed) - (screen.x() + screen.width());
    const qreal overflowLeft = screen.x() - (frame.x() - needed);
    if (overflowRight <= 0 || overflowLeft <= 0) {
        _drawer->setPreferredEdge(overflowRight <= 0 ? Drawer::NSMaxXEdge : Drawer::NSMinXEdge);
        return;
    }
    // The side that needs less takes the drawer, the left one in a tie.
    const bool onLeft = overflowRight >= overflowLeft;
    const QRectF narrowed = onLeft ? frame.adjusted(overflowLeft, 0, 0, 0) : frame.adjusted(0, 0, -overflowRight, 0);
    _parentWindowOriginalFrame = frame;
    _parentWindowWasResized = true;
    _drawer->setPreferredEdge(onLeft ? Drawer::NSMinXEdge : Drawer::NSMaxXEdge);
    window->setFrame(narrowed, true);
    _parentWindowNewFrame = window->frame(); // it may not get as narrow as that
}

void KDRDrawerController::undoParentWindowResize()
{
    const std::shared_ptr<HostWindow> window = parentWindow();
    if (window && _parentWindowWasResized && window->frame() == _parentWindowNewFrame)
        window->setFrame(_parentWindowOriginalFrame, !_shuttingDown);
}

void KDRDrawerController::storeContentWidth() const
{
    if (_drawer)
        WayfoldDefaults::sharedInstance().setDefaultDrawerContentWidth(float(_drawer->chosenContentWidth()));
}

// --- Opening and closing --------------------------------------------------------------------------------------------

void KDRDrawerController::drawerShouldOpenForLocationChange(const Notification & /*notification*/)
{
    showScratchPadTabView();
    if (_drawer)
        _drawer->open();
}

void KDRDrawerController::drawerShouldCloseForLocationChange(const Notification & /*notification*/)
{
    if (_drawer && !_drawerOpenedManually)
        _drawer->close();
}

void KDRDrawerController::drawerWillOpenNotification(const Notification & /*notification*/)
{
    resizeParentWindowForDrawer();
}

void KDRDrawerController::drawerDidCloseNotification(const Notification & /*notification*/)
{
    storeContentWidth();
    if (_shuttingDown)
        return;
    undoParentWindowResize();
    _drawerOpenedManually = false;
    if (WayfoldOutlineViewDataSource *source = currentDataSource())
        source->deselectAllItems();
    if (WayfoldOutlineView *view = currentOutlineView())
        view->removeAllToolTips();
}

void KDRDrawerController::parentWindowWillClose(const Notification & /*notification*/)
{
    const std::shared_ptr<KDRDrawerController> kept = _self;
    _shuttingDown = true;
    storeContentWidth();
    if (_drawer && (_drawer->state() == Drawer::Open || _drawer->state() == Drawer::Opening))
        undoParentWindowResize();
    if (_scratchDataSource)
        _scratchDataSource->saveScratchBookmarkRoot();
    NotificationCenter::defaultCenter().removeObserver(this);
    KDRDrawerBundle::sharedInstance().untrackWindow(parentWindow());
    // A dialog may still be open on the drawer; it does not go with the window's own widgets then.
    if (_drawer)
        _drawer->setParentWindow(nullptr);
    _self.reset();
}

// --- Scratchpad -----------------------------------------------------------------------------------------------------

QString KDRDrawerController::currentScratchDrawerLabel() const
{
    return _scratchDataSource ? _scratchDataSource->currentDrawerLabel() : QString();
}

QString KDRDrawerController::previousScratchDrawerLabel() const
{
    return _scratchDataSource ? _scratchDataSource->previousDrawerLabel() : QString();
}

void KDRDrawerController::setScratchDrawerLabelUsingFrame(const QString &label, const std::shared_ptr<HostFrame> &frame)
{
    if (_scratchDataSource)
        _scratchDataSource->setDrawerLabelUsingFrame(label, frame);
}

bool KDRDrawerController::isScratchDrawerShowingGlobalRoot() const
{
    return _scratchDataSource &&
           _scratchDataSource->localRootFolder() == KDRDrawerBundle::sharedInstance().bookmarkRoot();
}

bool KDRDrawerController::passValidateMenuItemToOutlineView(QAction *item)
{
    WayfoldOutlineView *view = currentOutlineView();
    return !view || view->validateMenuItem(item);
}

void KDRDrawerController::handleNewSubFolderRequest(QObject *sender)
{
    showScratchPadTabView();
    if (_scratchDataSource)
        _scratchDataSource->handleNewSubFolderRequest(sender);
}

void KDRDrawerController::handleNewNoteRequest(QObject *sender)
{
    showScratchPadTabView();
    if (_scratchDataSource)
        _scratchDataSource->handleNewNoteRequest(sender);
}

void KDRDrawerController::handleNewEmailRequest(QObject *sender)
{
    showScratchPadTabView();
    if (_scratchDataSource)
        _scratchDataSource->handleNewEmailRequest(sender);
}

void KDRDrawerController::handleNewPersonRequest(QObject *sender)
{
    showScratchPadTabView();
    if (_scratchDataSource)
        _scratchDataSource->handleNewPersonRequest(sender);
}

void KDRDrawerController::handleSaveCurrentURLRequest(QObject *sender)
{
    showScratchPadTabView();
    if (_scratchDataSource)
        _scratchDataSource->handleSaveCurrentURLRequest(sender);
}

void KDRDrawerController::handleSwitchbackRequest(QObject *sender)
{
    showScratchPadTabView();
    if (_scratchDataSource)
        _scratchDataSource->handleSwitchbackRequest(sender);
}
