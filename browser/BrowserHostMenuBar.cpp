#include "browser/BrowserHostMenuBar.h"

namespace
{
void addMenuTo(QMenuBar *menuBar, QMenu *menu)
{
    menuBar->addMenu(menu);
    // Behind the back of the menu bar too, so that the shortcuts work where it is hidden.
    if (QWidget *window = menuBar->parentWidget())
        window->addActions(menu->actions());
}
} // namespace

void BrowserHostMenuBar::appendMenu(QMenu *menu)
{
    if (!menu)
        return;
    _menus.append(menu);
    for (const QPointer<QMenuBar> &menuBar : std::as_const(_menuBars)) {
        if (menuBar)
            addMenuTo(menuBar, menu);
    }
}

void BrowserHostMenuBar::addMenuBar(QMenuBar *menuBar)
{
    _menuBars.removeAll(nullptr);
    _menuBars.append(menuBar);
    for (const QPointer<QMenu> &menu : std::as_const(_menus)) {
        if (menu)
            addMenuTo(menuBar, menu);
    }
}

QString BrowserHostMenuBar::shortcutOf(const QString &itemName) const
{
    for (const QPointer<QMenu> &menu : _menus) {
        const QList<QAction *> items = menu ? menu->actions() : QList<QAction *>();
        for (const QAction *item : items) {
            if (item->objectName() == itemName)
                return item->shortcut().toString(QKeySequence::NativeText);
        }
    }
    return {};
}
