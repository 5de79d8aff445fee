#include "core/SiteDrawerFactory.h"

#include "core/SiteDrawer.h"

#include <utility>

namespace
{
SiteDrawerFactory::Maker installedMaker;
}

void SiteDrawerFactory::setMaker(Maker maker)
{
    installedMaker = std::move(maker);
}

std::shared_ptr<SiteDrawerController> SiteDrawerFactory::makeController(const std::shared_ptr<HostWindow> &window)
{
    return installedMaker ? installedMaker(window) : nullptr;
}
