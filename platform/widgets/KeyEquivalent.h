#pragma once

#include <QKeySequence>
#include <QString>

class QKeyEvent;

// The key of a menu command with its modifiers. The key is one character: the one that it types, with Shift where that
// is held ("k", "K", "?"), or the platform's character for a key that types none (U+F701 is the down arrow, U+F704 is
// F1). An empty key stands for none. Command is Qt's Control, Control is Qt's Meta, Option is Qt's Alt.
struct KeyEquivalent
{
    enum ModifierMask : unsigned {
        NSShiftKeyMask = 1U << 17,
        NSControlKeyMask = 1U << 18,
        NSAlternateKeyMask = 1U << 19,
        NSCommandKeyMask = 1U << 20,
        NSFunctionKeyMask = 1U << 23, // of function keys, arrows and the six keys above them
    };

    QString key;
    unsigned modifierMask = 0;

    bool operator==(const KeyEquivalent &other) const = default;

    // Which key was pressed, as if no modifier but Shift were held, and which modifiers were. The key above Return is
    // Delete. Without a key where the one that was pressed has no character: a modifier, a dead key.
    static KeyEquivalent ofKeyPress(const QKeyEvent &event);
    // What a shortcut of Qt's stands for; letters are in lower case.
    static KeyEquivalent ofShortcut(const QKeySequence &shortcut);
    // Empty when the key is not one character.
    QKeySequence shortcut() const;
    // Whether the key types with Shift what is no capital: Shift is then one modifier more than the sign needs.
    bool isSignWithShift() const;
    // What Qt may take the same keys for: the shortcut and, of a sign with Shift, the one without Shift.
    QList<QKeySequence> shortcuts() const;
};
