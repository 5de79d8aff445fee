#pragma once

#include <QDialog>
#include <QLabel>
#include <QPointer>

class QAction;
class QKeyEvent;
struct KeyEquivalent;

// The sheet in which the user presses a new shortcut for a command of the menu. What is pressed goes to the menu item
// at once; OK stores it, Clear takes the shortcut away, anything else that closes the sheet puts the old one back.
//
// While it is up, every key goes to it. Without modifiers Tab, Space, Return and Escape work its buttons.
class WayfoldShortcutPanel : public QDialog
{
    Q_OBJECT

public:
    explicit WayfoldShortcutPanel(QWidget *parent = nullptr);
    // Puts the old shortcut back if the sheet is still up.
    ~WayfoldShortcutPanel() override;

    void awakeFromNib();
    bool acceptsFirstResponder() const { return true; }
    // Whether the panel can be used while an application-modal dialog runs that was opened after it.
    void setWorksWhenModal(bool works) { _worksWhenModal = works; }

    // Opens the sheet on the window and returns; nothing happens without an item. False always: the sheet still runs.
    bool performActionWithMenuItemForWindow(QAction *item, QWidget *window);
    // Shows the item's title and shortcut.
    void displayMenuItem();

    // Gives the item the key that is pressed, or refuses it with a beep. True always: the key is used up.
    bool performKeyEquivalent(const QKeyEvent &event);
    // Whether the browser has that key with exactly these modifiers.
    static bool isTakenShortcutWithCharAndModifier(char16_t character, unsigned modifierMask);
    // Four blanks, the modifiers' signs and the key; empty without a key.
    static QString describeShortCutKeyWithModifiers(const QString &key, unsigned modifierMask);

    void handleOKButton(QObject *sender);
    void handleClearButton(QObject *sender);
    void handleCancelButton(QObject *sender);

    // Cancels.
    void reject() override;

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    virtual void beep();

private:
    void connectButtons();
    bool takeKeyEvent(QEvent *event);
    // Why the item cannot have that key; null when it can.
    QString refusalOf(const KeyEquivalent &pressed) const;
    void refuse(const QString &reason);
    void watchOtherCommands();
    void showMessage(const QString &message);
    void storeShortcut();
    void restoreShortcut();
    void showAgain();

    QPointer<QLabel> _menuItemTitleField;
    QPointer<QLabel> _messageField;
    QPointer<QAction> _menuItem;
    QString _savedKey;
    unsigned _savedModifier = 0;
    bool _worksWhenModal = false;
};
