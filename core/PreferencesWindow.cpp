#include "core/PreferencesWindow.h"

#include <utility>

namespace
{
PreferencesWindow::Opener &installedOpener()
{
    static PreferencesWindow::Opener opener;
    return opener;
}
} // namespace

void PreferencesWindow::setOpener(Opener opener)
{
    installedOpener() = std::move(opener);
}

void PreferencesWindow::show()
{
    if (installedOpener())
        installedOpener()();
}
