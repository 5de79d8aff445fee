#pragma once

#include "core/ItemMerge.h"

// Looks once more at what was merged, in another way than it was made: by counting. Nobody's items may be lost by a
// mistake in the merge.
namespace MergeCheck
{
// Whether the result holds every item, text and value that either side has added or changed, and every item that both
// left alone, and could be read again from a file. What the report says to be overruled need not be there.
bool holdsAll(const QVariantMap &base, const QVariantMap &ours, const QVariantMap &theirs, const QVariantMap &merged,
              const ItemMerge::TitleOfSecond &titleOfSecond, const ItemMerge::Report &report);
} // namespace MergeCheck
