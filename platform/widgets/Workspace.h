#pragma once

#include "platform/base/Url.h"

#include <QStringList>
#include <functional>
#include <memory>

class Image;

// The desktop around the application.
namespace Workspace
{
// Hands the address to whatever program opens it; false when there is none.
bool openURL(const Url &url);
// Shows the folder that the file lies in, or the nearest one above it that is there; false when nothing shows folders.
bool showFile(const QString &path);
// Starts a program, its name or path and then its arguments, that goes on without this one: it runs in the home
// directory, and what it prints goes nowhere. False when it could not be started.
bool startProgram(const QStringList &command);
// The icon of the file (by kind when the file is missing); none for an empty path.
std::shared_ptr<Image> iconForFile(const QString &path);
// For tests: called in place of the desktop's handler; an empty function restores it.
void setURLHandler(std::function<bool(const Url &)> handler);
// For tests as well: called in place of starting a program.
void setProgramHandler(std::function<bool(const QStringList &)> handler);
} // namespace Workspace
