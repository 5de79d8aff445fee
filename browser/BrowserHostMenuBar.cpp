#include "browser/BrowserHostMenuBar.h"

void BrowserHostMenuBar::appendMenu(QMenu *menu)
{
    if (!menu)
        return;
    _menus.append(menu);
    for (const QPointer<QMenuBar> &menuBar : std::as_const(_menuBars)) {
        if (menuBar)
            menuBar->addMenu(menu);
    }
}

void BrowserHostMenuBar::addMenuBar(QMenuBar *menuBar)
{
    _menuBars.removeAll(nullptr);
    _menuBars.append(menuBar);
    for (const QPointer<QMenu> &menu : std::as_const(_menus)) {
        if (menu)
            menuBar->addMenu(menu);
    }
}
