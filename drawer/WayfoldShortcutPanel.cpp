#include "drawer/WayfoldShortcutPanel.h"

#include "core/settings/WayfoldDefaults.h"
#include "core/settings/WayfoldToolkit.h"
#include "platform/widgets/InterfaceFile.h"
#include "platform/widgets/MenuItem.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHash>
#include <QKeyEvent>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace
{
constexpr unsigned Shift = MenuItem::NSShiftKeyMask;
constexpr unsigned Control = MenuItem::NSControlKeyMask;
constexpr unsigned Option = MenuItem::NSAlternateKeyMask;
constexpr unsigned Command = MenuItem::NSCommandKeyMask;
constexpr unsigned Function = MenuItem::NSFunctionKeyMask;

// The browser's own shortcuts: these keys with exactly these modifiers.
struct TakenKeys
{
    unsigned modifierMask;
    QStringView characters;
};

constexpr TakenKeys takenKeys[] = {
    {Command, u"abcdefghjklmnopqrstvwxz123456789,./[]\\|"},
    {Command | Shift, u"?ADGHNPSTWZ"},
    {Command | Option, u"ABDEFHKLMPSVW"},
    {Command | Option | Shift, u"W"},
    {Command | Function, u"\uF702\uF703"},         // the arrows to the left and to the right
    {Command | Shift | Function, u"\uF702\uF703"}, // the same
};

const QString blanks = QStringLiteral("    ");

QString localized(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

void describe(QPushButton *button, const char *text, const char *toolTip)
{
    button->setText(localized(text));
    button->setAccessibleName(localized(text));
    button->setToolTip(localized(toolTip));
}

QString signsOfModifiers(unsigned modifierMask)
{
    QString signs;
    if (modifierMask & Control)
        signs += QChar(0x2303);
    if (modifierMask & Option)
        signs += QChar(0x2325);
    if (modifierMask & Shift)
        signs += QChar(0x21E7);
    if (modifierMask & Command)
        signs += QChar(0x2318);
    return signs;
}

// Null when the key has no name.
QString nameOfFunctionKey(char16_t character)
{
    constexpr char16_t firstFunctionKey = 0xF704;
    constexpr char16_t lastFunctionKey = 0xF726; // F35
    if (character >= firstFunctionKey && character <= lastFunctionKey)
        return QStringLiteral("F%1").arg(character - firstFunctionKey + 1);
    static const QHash<char16_t, QString> names = {
        {0xF700, QStringLiteral("\u2191")}, // up
        {0xF701, QStringLiteral("\u2193")}, // down
        {0xF702, QStringLiteral("\u2190")}, // left
        {0xF703, QStringLiteral("\u2192")}, // right
        {0xF729, QStringLiteral("\u2196")}, // Home
        {0xF72B, QStringLiteral("\u2198")}, // End
        {0xF72C, QStringLiteral("\u21DE")}, // Page Up
        {0xF72D, QStringLiteral("\u21DF")}, // Page Down
    };
    return names.value(character);
}

QString nameOfPlainKey(char16_t character)
{
    static const QHash<char16_t, QString> names = {
        {0x0D, QStringLiteral("\u21A9")},                                   // Return
        {0x03, QStringLiteral("\u2305")},                                   // Enter
        {0x09, QStringLiteral("\u21E5")},                                   // Tab
        {0x20, QStringLiteral("Space")},  {0x7F, QStringLiteral("\u2326")}, // Delete
        {0x1B, QStringLiteral("Esc")},
    };
    return names.value(character);
}

QString nameOfKey(const QString &key, unsigned modifierMask)
{
    const QChar first = key.front();
    if (first.isLetterOrNumber())
        return key.toUpper();
    const QString name = modifierMask & Function ? nameOfFunctionKey(first.unicode()) : nameOfPlainKey(first.unicode());
    return name.isNull() ? key.toUpper() : name;
}

QString hasItAlready(const QAction *command)
{
    return localized("\"%@\" has this shortcut already.").replace(QStringLiteral("%@"), MenuItem::title(command));
}

// The keys with which a dialog is worked.
bool worksButtons(const QKeyEvent &event)
{
    if (event.modifiers() & ~Qt::KeypadModifier)
        return false;
    switch (event.key()) {
    case Qt::Key_Tab:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
        return true;
    case Qt::Key_Space:
        return qobject_cast<QPushButton *>(QApplication::focusWidget()) != nullptr;
    default:
        return false;
    }
}
} // namespace

WayfoldShortcutPanel::WayfoldShortcutPanel(QWidget *parent) : QDialog(parent)
{
    setWindowModality(Qt::WindowModal);
    setFocusPolicy(Qt::StrongFocus);
    const InterfaceFile interface(QStringLiteral("WayfoldShortcutPanel"), this);
    if (!interface.topLevelWidget())
        return;
    auto *panelLayout = new QVBoxLayout(this);
    panelLayout->setContentsMargins(0, 0, 0, 0);
    panelLayout->setSizeConstraint(QLayout::SetFixedSize);
    panelLayout->addWidget(interface.topLevelWidget());
    setWindowTitle(interface.topLevelWidget()->windowTitle());
    _menuItemTitleField = interface.outlet<QLabel>(QStringLiteral("menuItemTitleField"));
    _messageField = interface.outlet<QLabel>(QStringLiteral("messageField"));
    if (_messageField) {
        _messageField->setForegroundRole(QPalette::PlaceholderText);
        _messageField->setMinimumHeight(_messageField->fontMetrics().height()); // while it is empty as well
    }
    connectButtons();
    awakeFromNib();
}

WayfoldShortcutPanel::~WayfoldShortcutPanel()
{
    if (isVisible())
        restoreShortcut();
}

void WayfoldShortcutPanel::connectButtons()
{
    const auto *buttons = findChild<QDialogButtonBox *>();
    QPushButton *ok = buttons->button(QDialogButtonBox::Ok);
    QPushButton *clear = buttons->button(QDialogButtonBox::Reset);
    QPushButton *cancel = buttons->button(QDialogButtonBox::Cancel);
    describe(ok, "OK", QT_TRID_NOOP("Keep this shortcut"));
    describe(clear, QT_TRID_NOOP("Clear"), QT_TRID_NOOP("Leave the command without a shortcut"));
    describe(cancel, "Cancel", QT_TRID_NOOP("Close without changing anything"));
    connect(ok, &QPushButton::clicked, this, [this, ok] { handleOKButton(ok); });
    connect(clear, &QPushButton::clicked, this, [this, clear] { handleClearButton(clear); });
    connect(cancel, &QPushButton::clicked, this, [this, cancel] { handleCancelButton(cancel); });
    for (QPushButton *button : {ok, clear, cancel})
        button->installEventFilter(this);
}

void WayfoldShortcutPanel::awakeFromNib()
{
    _menuItem = nullptr;
    _savedKey = QString();
    _savedModifier = 0;
}

bool WayfoldShortcutPanel::performActionWithMenuItemForWindow(QAction *item, QWidget *window)
{
    if (!item || !_menuItemTitleField)
        return false;
    if (isVisible())
        restoreShortcut(); // of the item before
    _menuItem = item;
    _savedKey = MenuItem::keyEquivalent(item);
    _savedModifier = MenuItem::keyEquivalentModifierMask(item);
    displayMenuItem();
    showMessage(QString());
    watchOtherCommands();
    if (parentWidget() != window)
        setParent(window, windowFlags());
    setFocus();
    open();
    return false;
}

void WayfoldShortcutPanel::displayMenuItem()
{
    if (!_menuItemTitleField || !_menuItem)
        return;
    QString text = MenuItem::title(_menuItem);
    const QString shortcut = describeShortCutKeyWithModifiers(MenuItem::keyEquivalent(_menuItem),
                                                              MenuItem::keyEquivalentModifierMask(_menuItem));
    if (!shortcut.isEmpty())
        text += blanks + shortcut;
    _menuItemTitleField->setText(text);
}

bool WayfoldShortcutPanel::performKeyEquivalent(const QKeyEvent &event)
{
    const KeyEquivalent pressed = KeyEquivalent::ofKeyPress(event);
    if (pressed.key.isEmpty() || !_menuItem)
        return true;
    const QString refusal = refusalOf(pressed);
    if (!refusal.isNull()) {
        refuse(refusal);
        return true;
    }
    MenuItem::setKeyEquivalent(_menuItem, pressed.key, pressed.modifierMask);
    displayMenuItem();
    showMessage(QString());
    return true;
}

QString WayfoldShortcutPanel::refusalOf(const KeyEquivalent &pressed) const
{
    if (pressed.modifierMask == 0)
        return localized("Press the key together with Ctrl, Alt or Shift.");
    const QList<QAction *> others = MenuItem::otherCommands(_menuItem);
    if (const QAction *other = MenuItem::commandWithShortcut(others, pressed.shortcuts()))
        return hasItAlready(other);
    if (isTakenShortcutWithCharAndModifier(pressed.key.front().unicode(), pressed.modifierMask))
        return localized("The browser has this shortcut already.");
    return {};
}

bool WayfoldShortcutPanel::isTakenShortcutWithCharAndModifier(char16_t character, unsigned modifierMask)
{
    for (const TakenKeys &taken : takenKeys) {
        if (taken.modifierMask == modifierMask)
            return taken.characters.contains(QChar(character));
    }
    return false;
}

QString WayfoldShortcutPanel::describeShortCutKeyWithModifiers(const QString &key, unsigned modifierMask)
{
    if (key.isEmpty())
        return QStringLiteral("");
    return blanks + signsOfModifiers(modifierMask) + nameOfKey(key, modifierMask);
}

void WayfoldShortcutPanel::handleOKButton(QObject * /*sender*/)
{
    storeShortcut();
    done(Accepted);
}

void WayfoldShortcutPanel::handleClearButton(QObject * /*sender*/)
{
    if (_menuItem)
        MenuItem::setKeyEquivalent(_menuItem, QStringLiteral(""), 0);
    storeShortcut();
    done(Accepted);
}

void WayfoldShortcutPanel::handleCancelButton(QObject * /*sender*/)
{
    restoreShortcut();
    done(Rejected);
}

void WayfoldShortcutPanel::reject()
{
    handleCancelButton(this);
}

void WayfoldShortcutPanel::storeShortcut()
{
    if (!_menuItem)
        return;
    WayfoldDefaults &settings = WayfoldDefaults::sharedInstance();
    const auto item = unsigned(MenuItem::tag(_menuItem));
    settings.setShortcutKeyForItem(MenuItem::keyEquivalent(_menuItem), item);
    settings.setShortcutModifierMaskForItemForItem(MenuItem::keyEquivalentModifierMask(_menuItem), item);
    settings.writeDefaults(); // the two leave it to others, and there may be none before the browser quits
}

void WayfoldShortcutPanel::restoreShortcut()
{
    if (_menuItem)
        MenuItem::setKeyEquivalent(_menuItem, _savedKey, _savedModifier);
}

void WayfoldShortcutPanel::refuse(const QString &reason)
{
    beep();
    showMessage(reason);
}

// With Shift, the key of "-" types "_", yet it is the one of a command that has Ctrl+Shift+-. Only Qt knows which signs
// share a key, so it is given the other commands' shortcuts to find.
void WayfoldShortcutPanel::watchOtherCommands()
{
    qDeleteAll(findChildren<QShortcut *>(Qt::FindDirectChildrenOnly));
    for (const QAction *command : MenuItem::otherCommands(_menuItem)) {
        for (const QKeySequence &keys : command->shortcuts()) {
            auto *shortcut = new QShortcut(keys, this);
            shortcut->setAutoRepeat(false);
            const auto refuseIt = [this, reason = hasItAlready(command)] { refuse(reason); };
            connect(shortcut, &QShortcut::activated, this, refuseIt);
            connect(shortcut, &QShortcut::activatedAmbiguously, this, refuseIt);
        }
    }
}

void WayfoldShortcutPanel::showMessage(const QString &message)
{
    if (_messageField)
        _messageField->setText(message);
}

// A modal window that is shown later than the others is blocked by none of them.
void WayfoldShortcutPanel::showAgain()
{
    if (!isVisible())
        return;
    hide();
    open();
}

void WayfoldShortcutPanel::beep()
{
    QApplication::beep();
}

bool WayfoldShortcutPanel::event(QEvent *event)
{
    if (event->type() == QEvent::WindowBlocked && _worksWhenModal)
        QMetaObject::invokeMethod(this, &WayfoldShortcutPanel::showAgain, Qt::QueuedConnection);
    return takeKeyEvent(event) || QDialog::event(event);
}

bool WayfoldShortcutPanel::eventFilter(QObject *watched, QEvent *event)
{
    return takeKeyEvent(event) || QDialog::eventFilter(watched, event);
}

// Before anybody's shortcut is asked, and before the dialog moves its focus or presses its default button.
bool WayfoldShortcutPanel::takeKeyEvent(QEvent *event)
{
    if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress)
        return false;
    auto *keyEvent = static_cast<QKeyEvent *>(event);
    if (event->type() == QEvent::ShortcutOverride) {
        const KeyEquivalent pressed = KeyEquivalent::ofKeyPress(*keyEvent);
        const bool isItsOwn = pressed == KeyEquivalent{_savedKey, _savedModifier};
        event->setAccepted(!pressed.isSignWithShift() || isItsOwn);
        return true;
    }
    // The key that opened the sheet may still be held down.
    if (!keyEvent->isAutoRepeat() && worksButtons(*keyEvent))
        return false;
    event->accept();
    return keyEvent->isAutoRepeat() || performKeyEquivalent(*keyEvent);
}
