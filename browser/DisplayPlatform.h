#pragma once

#include <QProcessEnvironment>
#include <QString>

// Which of Qt's platform plug-ins shows the windows. A drawer has to be put beside its window, which X11 lets a program
// do and Wayland does not; a Wayland session mostly offers X11 as well.
namespace DisplayPlatform
{
// For Qt's variable QT_QPA_PLATFORM, several names in the order in which they are tried: X11, wherever the environment
// knows an X server, before anything else. What the user asked for, by an argument (empty for none) or by the variable,
// goes before all that. Empty when it is left to Qt.
QString choice(const QProcessEnvironment &environment, const QString &asked);
// Chooses for this process; before the QApplication is made.
void choose(const QString &asked);
// Whether windows can be put where they belong; needs the QApplication.
bool canPlaceWindows();
} // namespace DisplayPlatform
