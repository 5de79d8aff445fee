#include "tests/e2e/support/Play.h"

#include "browser/AddressField.h"
#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "browser/WebView.h"
#include "platform/files/PropertyList.h"
#include "tests/e2e/support/Desk.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Hands.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QDeadlineTimer>
#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTreeView>
#include <optional>

namespace
{
// The drawer's parts are known to the browser's process by their class names only: they belong to the plug-in.
template <class T>
T *childOfClass(QWidget *parent, const char *className)
{
    const auto children = parent ? parent->findChildren<T *>() : QList<T *>();
    for (T *child : children) {
        if (child->inherits(className))
            return child;
    }
    return nullptr;
}

QAction *actionWithText(const QList<QAction *> &actions, const QString &text)
{
    for (QAction *action : actions) {
        if (action->text().remove(QLatin1Char('&')) == text)
            return action;
    }
    return nullptr;
}

// Where a menu, or a menu bar, shows the entry; none while it does not.
template <class Menu>
std::optional<QPoint> entryOf(const Menu *menu, const QString &text)
{
    QAction *action = menu && menu->isVisible() ? actionWithText(menu->actions(), text) : nullptr;
    if (!action || !action->isVisible() || !action->isEnabled())
        return std::nullopt;
    return menu->mapToGlobal(menu->actionGeometry(action).center());
}
bool isComplete(const BrowserWindow *window)
{
    const WebView *view = window->currentWebView();
    return view && !view->isLoading();
}
} // namespace

void Play::storeSettings(const Settings &settings)
{
    const QString folder = QDir::homePath() + QStringLiteral("/Library/Preferences");
    const bool stored = QDir().mkpath(folder) &&
                        PropertyList::writeFile(settings, folder + QStringLiteral("/org.wayfold.Wayfold.plist"));
    if (!stored)
        qFatal("cannot store the settings");
}

void Play::prepareProcess()
{
    Browser::prepareProcess();
}

Play::Play()
{
    // Flags that the process has been given already stay.
    const QByteArray flags = qgetenv("QTWEBENGINE_CHROMIUM_FLAGS") + ' ' + _web.browserFlags();
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", flags.trimmed());
    QApplication::setCursorFlashTime(0); // or no picture would be like another
    _browser = std::make_unique<Browser>();
    _browser->start({});
}

Play::~Play() = default;

QList<BrowserWindow *> Play::windows() const
{
    return Stage::onMain([this] { return _browser->windows(); });
}

BrowserWindow *Play::window() const
{
    return Stage::onMain([this] { return _browser->keyWindow(); });
}

BrowserWindow *Play::openWindow()
{
    const QList<BrowserWindow *> before = windows();
    BrowserWindow *opened = nullptr;
    const auto isThere = [&] {
        opened = window();
        return opened && !before.contains(opened) && isComplete(opened);
    };
    return Hands::press(QStringLiteral("ctrl+n")) && Stage::eventually(isThere) ? opened : nullptr;
}

bool Play::closeWindow(BrowserWindow *window)
{
    return bringToFront(window) && Hands::press(QStringLiteral("ctrl+shift+w")) &&
           Stage::eventually([&] { return !windows().contains(window); });
}

bool Play::bringToFront(BrowserWindow *window)
{
    const WId id = Stage::onMain([&] { return window->winId(); });
    return Desk::activate(id) && Stage::eventually([&] { return window->isActiveWindow(); });
}

BrowserWindow *Play::startOver()
{
    const QList<BrowserWindow *> before = windows();
    BrowserWindow *fresh = openWindow();
    for (BrowserWindow *window : before) {
        if (!fresh || !closeWindow(window))
            return nullptr;
    }
    return fresh && bringToFront(fresh) ? fresh : nullptr;
}

bool Play::openTab()
{
    const BrowserWindow *front = window();
    const int before = front ? Stage::onMain([&] { return front->tabCount(); }) : 0;
    const auto isThere = [&] {
        return front->tabCount() == before + 1 && front->currentTab() == before && isComplete(front);
    };
    return front && Hands::press(QStringLiteral("ctrl+t")) && Stage::eventually(isThere);
}

bool Play::chooseTab(int index)
{
    const BrowserWindow *front = window();
    if (!front)
        return false;
    auto *bar = Stage::onMain([&] { return front->findChild<QTabBar *>(); });
    const auto tab = [&] { return std::optional(bar->mapToGlobal(bar->tabRect(index).center())); };
    return Hands::pointAt(bar, tab) && Hands::click() &&
           Stage::eventually([&] { return front->currentTab() == index; });
}

bool Play::visit(const QString &address)
{
    const BrowserWindow *front = window();
    if (!front || !Hands::press(QStringLiteral("ctrl+l")))
        return false;
    if (!Stage::eventually([&] { return front->addressField()->hasFocus(); }))
        return false;
    return Hands::type(address) && Hands::press(QStringLiteral("Return")) &&
           Stage::eventually([&] { return isShown(front, address); });
}

bool Play::clickLink(const QString &text)
{
    const BrowserWindow *front = window();
    if (!front)
        return false;
    const QString script = QStringLiteral("(() => { const link = [...document.links].find(a => a.textContent == '%1');"
                                          "const box = link.getBoundingClientRect();"
                                          "return [box.x + box.width / 2, box.y + box.height / 2]; })()");
    const auto middle = std::make_shared<QVariantList>();
    Stage::onMain([&] {
        front->currentWebView()->page()->runJavaScript(script.arg(text),
                                                       [middle](const QVariant &answer) { *middle = answer.toList(); });
    });
    if (!Stage::eventually([&] { return middle->size() == 2; }))
        return false;
    const QPointF place(middle->at(0).toDouble(), middle->at(1).toDouble());
    return clickLinkAt(place.toPoint());
}

// A page that has been loaded is not yet one that has been drawn and minds the pointer.
bool Play::clickLinkAt(const QPoint &position, int button)
{
    const BrowserWindow *front = window();
    if (!front)
        return false;
    const auto isPointedAt = std::make_shared<bool>(false);
    const QMetaObject::Connection watch = Stage::onMain([&] {
        return QObject::connect(front->currentWebView(), &WebView::linkPointedAt, front,
                                [isPointedAt](const QString &url) { *isPointedAt = !url.isEmpty(); });
    });
    const QPoint place = Stage::onMain([&] { return front->currentWebView()->mapToGlobal(position); });
    const QDeadlineTimer deadline(Stage::patience);
    bool isReady = false;
    for (int turn = 0; !isReady && !deadline.hasExpired(); ++turn) {
        if (!Hands::moveTo(place + QPoint(turn % 2, 0)))
            break;
        isReady = Stage::onMain([&] { return *isPointedAt; });
    }
    QObject::disconnect(watch);
    return isReady && Hands::clickAt(place, button);
}

bool Play::choose(const QStringList &titles)
{
    const BrowserWindow *front = window();
    if (!front)
        return false;
    QMenuBar *bar = Stage::onMain([&] { return front->menuBar(); });
    if (!Hands::pointAt(bar, [&] { return entryOf(bar, titles.first()); }) || !Hands::click())
        return false;
    for (const QString &title : titles.mid(1)) {
        if (!chooseEntry(title))
            return false;
    }
    return Stage::eventually([] { return !QApplication::activePopupWidget(); });
}

bool Play::chooseEntry(const QString &title)
{
    QMenu *menu = nullptr;
    const auto isInMenu = [&] {
        menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        return entryOf(menu, title).has_value();
    };
    return Stage::eventually(isInMenu) && Hands::pointAt(menu, [&] { return entryOf(menu, title); }) && Hands::click();
}

bool Play::chooseFromContextMenu(QTreeView *list, const QString &row, const QString &title)
{
    constexpr int rightButton = 3;
    return list && Hands::pointAt(list->viewport(), [&] { return Eyes::rowWithText(list, row); }) &&
           Hands::click(rightButton) && chooseEntry(title) &&
           Stage::eventually([] { return !QApplication::activePopupWidget(); });
}

bool Play::openDrawer()
{
    const BrowserWindow *front = nullptr; // there is none for a moment after a dialog has closed
    return Stage::eventually([&] { return (front = window()) != nullptr; }) && !isDrawerOpen(front) &&
           Hands::press(QStringLiteral("ctrl+0")) && Stage::eventually([&] { return isDrawerOpen(front); });
}

bool Play::closeDrawer()
{
    const BrowserWindow *front = nullptr; // there is none for a moment after a dialog has closed
    return Stage::eventually([&] { return (front = window()) != nullptr; }) && !isDrawerClosed(front) &&
           Hands::press(QStringLiteral("ctrl+0")) && Stage::eventually([&] { return isDrawerClosed(front); });
}

bool Play::showDrawerTab(const QString &title)
{
    auto *bar = Eyes::firstOf<QTabBar>(drawer(window()));
    const auto index = [&] {
        int tab = 0;
        while (tab < bar->count() && bar->tabText(tab) != title)
            ++tab;
        return tab;
    };
    const auto header = [&] { return std::optional(bar->mapToGlobal(bar->tabRect(index()).center())); };
    return bar && Hands::pointAt(bar, header) && Hands::click() &&
           Stage::eventually([&] { return bar->currentIndex() == index(); });
}

bool Play::chooseSite(const QString &title)
{
    QComboBox *popup = sitePopup(window());
    if (!Hands::clickOn(popup))
        return false;
    QAbstractItemView *list = Stage::onMain([&] { return popup->view(); });
    const auto entry = [&]() -> std::optional<QPoint> {
        const QModelIndex index = popup->model()->index(popup->findText(title), 0);
        if (!list->isVisible() || !index.isValid())
            return std::nullopt;
        return list->viewport()->mapToGlobal(list->visualRect(index).center());
    };
    return Stage::eventually([&] { return entry().has_value(); }) && Hands::pointAt(list->viewport(), entry) &&
           Hands::click() && Stage::eventually([&] { return !list->isVisible(); });
}

bool Play::chooseRow(const QString &text)
{
    QTreeView *list = scratchList(window());
    const auto isChosen = [&] {
        const QModelIndexList selected = list->selectionModel()->selectedIndexes();
        return list->hasFocus() && selected.size() == 1 && selected.first().data().toString() == text;
    };
    return Hands::clickOnRow(list, text) && Stage::eventually(isChosen);
}

bool Play::isShown(const BrowserWindow *window, const QString &address)
{
    return Stage::onMain([&] { return isComplete(window) && window->currentWebView()->url() == QUrl(address); });
}

QString Play::address(const BrowserWindow *window)
{
    return Stage::onMain([&] { return window->currentWebView()->url().toString(); });
}

QWidget *Play::drawer(const BrowserWindow *window)
{
    return Stage::onMain([&]() -> QWidget * {
        for (QWidget *widget : QApplication::allWidgets()) {
            if (window && widget->inherits("KDRDrawer") && widget->parentWidget() == window)
                return widget;
        }
        return nullptr;
    });
}

bool Play::isDrawerOpen(const BrowserWindow *window)
{
    return Stage::onMain([&] {
        const QWidget *beside = drawer(window);
        if (!beside || !beside->isVisible())
            return false;
        // While it slides, the drawer is narrower than what it holds.
        const auto *body = beside->findChild<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
        return body && body->geometry() == beside->rect();
    });
}

bool Play::isDrawerClosed(const BrowserWindow *window)
{
    return Stage::onMain([&] {
        const QWidget *beside = drawer(window);
        return beside && !beside->isVisible();
    });
}

QString Play::siteLabel(const BrowserWindow *window)
{
    return Stage::onMain([&] {
        const QComboBox *popup = sitePopup(window);
        return popup ? popup->currentText() : QString();
    });
}

QComboBox *Play::sitePopup(const BrowserWindow *window)
{
    return Stage::onMain([&] { return childOfClass<QComboBox>(drawer(window), "WayfoldSitePopupButton"); });
}

QAbstractButton *Play::drawerButton(const BrowserWindow *window, const QString &toolTip)
{
    return Stage::onMain([&]() -> QAbstractButton * {
        const QWidget *beside = drawer(window);
        const auto buttons = beside ? beside->findChildren<QAbstractButton *>() : QList<QAbstractButton *>();
        for (QAbstractButton *button : buttons) {
            if (button->isVisible() && button->toolTip() == toolTip)
                return button;
        }
        return nullptr;
    });
}

QTreeView *Play::scratchList(const BrowserWindow *window)
{
    return Stage::onMain([&] { return childOfClass<QTreeView>(drawer(window), "WayfoldScratchOutlineView"); });
}

QStringList Play::scratchRows(const BrowserWindow *window)
{
    return Eyes::rowTexts(scratchList(window));
}
