#pragma once

#include <functional>

// The commands of the menu that are carried out elsewhere; whoever has their windows fills them in at start-up. A
// command that nobody has filled in is disabled.
namespace MenuCommands
{
enum Command {
    ShowPreferences,
};
using Handler = std::function<void()>;

// An empty handler takes the command away.
void setHandler(Command command, Handler handler);
bool hasHandler(Command command);
// Nothing happens while there is no handler.
void perform(Command command);
} // namespace MenuCommands
