#include "platform/widgets/MenuItem.h"

#include <QHash>
#include <QKeySequence>
#include <QMenu>
#include <QVariant>

// A menu item keeps what belongs to it as properties of the action; "tag" and "action" are set by interface files too.
namespace
{
constexpr auto tagProperty = "tag";
constexpr auto actionProperty = "action";
constexpr auto targetProperty = "menuItemTarget";
constexpr auto keyProperty = "keyEquivalent";
constexpr auto maskProperty = "keyEquivalentModifierMask";

// The characters that stand for keys without one.
const QHash<char16_t, Qt::Key> &namedKeys()
{
    static const QHash<char16_t, Qt::Key> keys = {
        {0x03, Qt::Key_Enter},  {0x08, Qt::Key_Backspace}, {0x09, Qt::Key_Tab},      {0x0D, Qt::Key_Return},
        {0x1B, Qt::Key_Escape}, {0x7F, Qt::Key_Backspace}, {0xF700, Qt::Key_Up},     {0xF701, Qt::Key_Down},
        {0xF702, Qt::Key_Left}, {0xF703, Qt::Key_Right},   {0xF727, Qt::Key_Insert}, {0xF728, Qt::Key_Delete},
        {0xF729, Qt::Key_Home}, {0xF72B, Qt::Key_End},     {0xF72C, Qt::Key_PageUp}, {0xF72D, Qt::Key_PageDown},
    };
    return keys;
}

constexpr char16_t firstFunctionKey = 0xF704;
constexpr char16_t lastFunctionKey = 0xF726; // F35

Qt::Key keyForCharacter(QChar character)
{
    const char16_t code = character.unicode();
    if (code >= firstFunctionKey && code <= lastFunctionKey)
        return Qt::Key(Qt::Key_F1 + (code - firstFunctionKey));
    return namedKeys().value(code, Qt::Key(character.toUpper().unicode()));
}

QString characterForKey(Qt::Key key)
{
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35)
        return QChar(char16_t(firstFunctionKey + (key - Qt::Key_F1)));
    if (key == Qt::Key_Backspace)
        return QChar(0x08);
    const char16_t named = namedKeys().key(key, 0);
    if (named)
        return QChar(named);
    return key < Qt::Key_Escape ? QString(QChar(char16_t(key)).toLower()) : QString();
}

struct ModifierPair
{
    MenuItem::ModifierMask mask;
    Qt::KeyboardModifier modifier;
};
constexpr ModifierPair modifierPairs[] = {
    {MenuItem::NSShiftKeyMask, Qt::ShiftModifier},
    {MenuItem::NSControlKeyMask, Qt::MetaModifier},
    {MenuItem::NSAlternateKeyMask, Qt::AltModifier},
    {MenuItem::NSCommandKeyMask, Qt::ControlModifier},
};

void perform(QAction *item)
{
    MenuItemTarget *target = MenuItem::target(item);
    if (target && target->validateMenuItem(item))
        target->performMenuItem(item);
}

// The items with a target; what the others look like is none of our business.
template <class Function>
void forEachTargeted(const QMenu *menu, Function function)
{
    const QList<QAction *> items = menu->actions();
    for (QAction *item : items) {
        if (MenuItem::target(item))
            function(item);
    }
}
} // namespace

int MenuItem::tag(const QAction *item)
{
    return item->property(tagProperty).toInt();
}

void MenuItem::setTag(QAction *item, int tag)
{
    item->setProperty(tagProperty, tag);
}

QString MenuItem::action(const QAction *item)
{
    return item->property(actionProperty).toString();
}

void MenuItem::setAction(QAction *item, const QString &action)
{
    item->setProperty(actionProperty, action);
}

MenuItemTarget *MenuItem::target(const QAction *item)
{
    return static_cast<MenuItemTarget *>(item->property(targetProperty).value<void *>());
}

void MenuItem::setTarget(QAction *item, MenuItemTarget *target)
{
    const bool isFirst = !item->property(targetProperty).isValid();
    item->setProperty(targetProperty, QVariant::fromValue<void *>(target));
    if (isFirst)
        QObject::connect(item, &QAction::triggered, item, [item] { perform(item); });
}

void MenuItem::setKeyEquivalent(QAction *item, const QString &key, unsigned modifierMask)
{
    item->setProperty(keyProperty, key.isNull() ? QString::fromLatin1("") : key);
    item->setProperty(maskProperty, modifierMask);
    if (key.isEmpty()) {
        item->setShortcut({});
        return;
    }
    Qt::KeyboardModifiers modifiers;
    for (const ModifierPair &pair : modifierPairs) {
        if (modifierMask & pair.mask)
            modifiers |= pair.modifier;
    }
    item->setShortcut(QKeyCombination(modifiers, keyForCharacter(key.front())));
}

QString MenuItem::keyEquivalent(const QAction *item)
{
    const QVariant key = item->property(keyProperty);
    if (key.isValid())
        return key.toString();
    const QKeySequence shortcut = item->shortcut();
    return shortcut.isEmpty() ? QString::fromLatin1("") : characterForKey(shortcut[0].key());
}

unsigned MenuItem::keyEquivalentModifierMask(const QAction *item)
{
    const QVariant mask = item->property(maskProperty);
    if (mask.isValid())
        return mask.toUInt();
    const QKeySequence shortcut = item->shortcut();
    unsigned result = 0;
    for (const ModifierPair &pair : modifierPairs) {
        if (!shortcut.isEmpty() && shortcut[0].keyboardModifiers().testFlag(pair.modifier))
            result |= pair.mask;
    }
    return result;
}

QAction *MenuItem::itemWithTag(const QMenu *menu, int tag)
{
    const QList<QAction *> items = menu->actions();
    for (QAction *item : items) {
        if (item->property(tagProperty).isValid() && MenuItem::tag(item) == tag)
            return item;
    }
    return nullptr;
}

void MenuItem::validateOnShow(QMenu *menu)
{
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu] {
        forEachTargeted(menu, [](QAction *item) { item->setEnabled(target(item)->validateMenuItem(item)); });
    });
    // A disabled item does not hear its key equivalent, and what may be done can change while no menu shows.
    QObject::connect(menu, &QMenu::aboutToHide, menu,
                     [menu] { forEachTargeted(menu, [](QAction *item) { item->setEnabled(true); }); });
}
