#pragma once

#include <QObject>
#include <QPointer>

class QAction;
class QKeyEvent;
class QMenu;

// Performs the items of a menu by the sign that a key types with Shift. To Qt the key of 8 and *, pressed with Ctrl and
// Shift, is Ctrl+Shift+8 or Ctrl+*; the item has Ctrl+Shift+* and would never be found. All other keys are left to Qt,
// and so are those that are a shortcut of another command of the window.
class MenuKeyFilter : public QObject
{
    Q_OBJECT

public:
    // Lives as long as the menu.
    explicit MenuKeyFilter(QMenu *menu);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QAction *itemForKeyPress(const QKeyEvent &event, const QWidget *window) const;

    QMenu *_menu;
    QPointer<QAction> _announced; // whose key is pressed next
};
