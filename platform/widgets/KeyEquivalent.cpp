#include "platform/widgets/KeyEquivalent.h"

#include <QHash>
#include <QKeyEvent>

namespace
{
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
constexpr char16_t deleteCharacter = 0x7F;

// Qt's keys of letters are their capitals; that of a letter whose capital lies beyond Latin-1 is the letter.
Qt::Key keyForCharacter(QChar character)
{
    const char16_t code = character.unicode();
    if (code >= firstFunctionKey && code <= lastFunctionKey)
        return Qt::Key(Qt::Key_F1 + (code - firstFunctionKey));
    const char16_t capital = character.toUpper().unicode();
    return namedKeys().value(code, Qt::Key(code <= 0xFF && capital > 0xFF ? code : capital));
}

QString characterForKey(Qt::Key key)
{
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35)
        return QChar(char16_t(firstFunctionKey + (key - Qt::Key_F1)));
    if (key == Qt::Key_Backspace)
        return QChar(deleteCharacter);
    if (key == Qt::Key_Backtab)
        return QStringLiteral("\t");
    const char16_t named = namedKeys().key(key, 0);
    if (named)
        return QChar(named);
    return key >= Qt::Key_Space && key <= 0xFFFF ? QString(QChar(char16_t(key))) : QString();
}

bool isFunctionKey(const QString &key)
{
    return !key.isEmpty() && key.front().unicode() >= 0xF700 && key.front().unicode() <= 0xF8FF;
}

struct ModifierPair
{
    KeyEquivalent::ModifierMask mask;
    Qt::KeyboardModifier modifier;
};
constexpr ModifierPair modifierPairs[] = {
    {KeyEquivalent::NSShiftKeyMask, Qt::ShiftModifier},
    {KeyEquivalent::NSControlKeyMask, Qt::MetaModifier},
    {KeyEquivalent::NSAlternateKeyMask, Qt::AltModifier},
    {KeyEquivalent::NSCommandKeyMask, Qt::ControlModifier},
};

unsigned maskOf(const QString &key, Qt::KeyboardModifiers modifiers)
{
    unsigned mask = isFunctionKey(key) ? KeyEquivalent::NSFunctionKeyMask : 0U;
    for (const ModifierPair &pair : modifierPairs) {
        if (modifiers.testFlag(pair.modifier))
            mask |= pair.mask;
    }
    return mask;
}
} // namespace

KeyEquivalent KeyEquivalent::ofKeyPress(const QKeyEvent &event)
{
    const QString key = characterForKey(Qt::Key(event.key()));
    const bool isWithShift = event.modifiers().testFlag(Qt::ShiftModifier);
    return {isWithShift ? key : key.toLower(), maskOf(key, event.modifiers())};
}

KeyEquivalent KeyEquivalent::ofShortcut(const QKeySequence &shortcut)
{
    if (shortcut.isEmpty())
        return {QString::fromLatin1(""), 0};
    const QString key = characterForKey(shortcut[0].key());
    return {key.toLower(), maskOf(key, shortcut[0].keyboardModifiers())};
}

QKeySequence KeyEquivalent::shortcut() const
{
    if (key.size() != 1)
        return {};
    Qt::KeyboardModifiers modifiers;
    for (const ModifierPair &pair : modifierPairs) {
        if (modifierMask & pair.mask)
            modifiers |= pair.modifier;
    }
    return QKeyCombination(modifiers, keyForCharacter(key.front()));
}

bool KeyEquivalent::isSignWithShift() const
{
    return modifierMask & NSShiftKeyMask && !key.isEmpty() && key.front().isPrint() && !key.front().isUpper() &&
           !key.front().isSpace();
}

QList<QKeySequence> KeyEquivalent::shortcuts() const
{
    QList<QKeySequence> shortcuts{shortcut()};
    if (isSignWithShift())
        shortcuts.append(KeyEquivalent{key, modifierMask & ~NSShiftKeyMask}.shortcut());
    return shortcuts;
}
