#pragma once

#include <QString>

// Tells the user, in a line, how many people there are, and where they come from.
namespace ContactsInUse
{
QString describe();
} // namespace ContactsInUse
