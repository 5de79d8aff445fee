#pragma once

#include <QVariantMap>

// Puts together what two have made of the same dictionary, key by key: a key that we have changed, added or taken away
// since `base` is as we have it, any other as they have it. Dictionaries within are put together in the same way.
QVariantMap mergedDictionary(const QVariantMap &base, const QVariantMap &ours, const QVariantMap &theirs);
