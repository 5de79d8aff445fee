#pragma once

#include <functional>

// How the menu's command shows the panel with the backups; filled in at start-up by the room that has it.
namespace RestorePanel
{
using Opener = std::function<void()>;

// An empty one takes the panel away: nothing is shown then.
void setOpener(Opener opener);
void show();
} // namespace RestorePanel
