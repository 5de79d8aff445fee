#pragma once

#include <QVariant>

// Puts two changes of one value together; dictionaries key by key, at every depth, whatever the keys mean. What only
// one side has changed is as that side has it, and what one has removed and the other changed stays.
class FieldMerge
{
public:
    enum Preferred { Ours, Theirs };

    // Whose value counts where both have changed it, and differently.
    explicit FieldMerge(Preferred preferred) : _preferred(preferred) {}

    // Null stands for no value, and so does an invalid result.
    QVariant merged(const QVariant *base, const QVariant *ours, const QVariant *theirs);
    // Whether there was such a value in what was merged so far. An identifier does not count: nobody sees it.
    bool hasConflict() const { return _hasConflict; }

private:
    QVariant mergedDictionary(const QVariant *base, const QVariantMap &ours, const QVariantMap &theirs);

    Preferred _preferred;
    bool _hasConflict = false;
};
