#pragma once

#include "platform/host/HostMenuBar.h"

#include <QList>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>

// The main menu as the plug-in sees it: one menu bar in each window, each ending in the menus that were appended.
class BrowserHostMenuBar : public HostMenuBar
{
public:
    void appendMenu(QMenu *menu) override;

    // Takes the menu bar of a new window in; its own menus have to be in it already. Held weakly.
    void addMenuBar(QMenuBar *menuBar);
    // The shortcut, as menus write it, of the item of that object name in an appended menu; empty when there is none.
    QString shortcutOf(const QString &itemName) const;

private:
    QList<QPointer<QMenu>> _menus;
    QList<QPointer<QMenuBar>> _menuBars;
};
