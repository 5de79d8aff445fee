#pragma once

#include <functional>

// How the menu's command shows the preferences; filled in at start-up by the room that has their window.
namespace PreferencesWindow
{
using Opener = std::function<void()>;

// An empty one takes the preferences away: nothing is shown then.
void setOpener(Opener opener);
void show();
} // namespace PreferencesWindow
