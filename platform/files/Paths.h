#pragma once

#include <QString>

// Paths in the form the platform gives them.
namespace Paths
{
// `$HOME`, read now.
QString homeDirectory();
// "~" and "~/..." with the home directory in place of "~"; anything else as it is.
QString expandingTilde(const QString &path);
// The tilde expanded, "." and ".." and doubled slashes resolved by text alone (links are not followed).
QString standardized(const QString &path);
// The path of what the last of the links leads to, be it there or not; the path itself where there is no link.
QString behindLinks(const QString &path);
} // namespace Paths
