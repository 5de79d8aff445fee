#pragma once

#include <functional>
#include <memory>

class HostWindow;
class SiteDrawerController;

// How the store gets a drawer for a browser window; the drawer room fills it in at start-up.
namespace SiteDrawerFactory
{
// Makes the controller of a window's drawer, which tracks the window with the store and keeps itself alive until the
// window closes.
using Maker = std::function<std::shared_ptr<SiteDrawerController>(const std::shared_ptr<HostWindow> &)>;

void setMaker(Maker maker);
// None while no maker is installed.
std::shared_ptr<SiteDrawerController> makeController(const std::shared_ptr<HostWindow> &window);
} // namespace SiteDrawerFactory
