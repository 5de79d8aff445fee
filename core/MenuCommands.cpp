#include "core/MenuCommands.h"

#include <array>
#include <utility>

namespace
{
MenuCommands::Handler &handlerOf(MenuCommands::Command command)
{
    static std::array<MenuCommands::Handler, 1> handlers;
    return handlers.at(command);
}
} // namespace

void MenuCommands::setHandler(Command command, Handler handler)
{
    handlerOf(command) = std::move(handler);
}

bool MenuCommands::hasHandler(Command command)
{
    return bool(handlerOf(command));
}

void MenuCommands::perform(Command command)
{
    if (const Handler &handler = handlerOf(command))
        handler();
}
