#pragma once

#include "platform/base/Url.h"

#include <functional>
#include <memory>

class Image;

// The desktop around the application.
namespace Workspace
{
// Hands the address to whatever program opens it; false when there is none.
bool openURL(const Url &url);
// The icon of the file (by kind when the file is missing); none for an empty path.
std::shared_ptr<Image> iconForFile(const QString &path);
// For tests: called in place of the desktop's handler; an empty function restores it.
void setURLHandler(std::function<bool(const Url &)> handler);
} // namespace Workspace
