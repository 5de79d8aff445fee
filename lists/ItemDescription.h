#pragma once

#include "model/KDRBookmark.h"

// An item in words, for those who cannot see its icon.
namespace ItemDescription
{
// The item's kind in the user's language, and behind it what a link leads to, as in "Link: http://www.example.com/".
// Null for an item that is of no kind.
QString ofItem(const KDRBookmark &item);
} // namespace ItemDescription
