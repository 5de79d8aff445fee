#include "core/RestorePanel.h"

#include <utility>

namespace
{
RestorePanel::Opener &installedOpener()
{
    static RestorePanel::Opener opener;
    return opener;
}
} // namespace

void RestorePanel::setOpener(Opener opener)
{
    installedOpener() = std::move(opener);
}

void RestorePanel::show()
{
    if (installedOpener())
        installedOpener()();
}
