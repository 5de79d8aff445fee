#pragma once

#include "platform/base/Url.h"

// Titles for links that come without one.
namespace PageTitle
{
// The whole address of a mail, else the path. An address without a path gives itself, since an item without a title
// would not be read back from the item file.
QString forURL(const Url &url);
} // namespace PageTitle
