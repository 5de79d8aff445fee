#pragma once

#include <QByteArray>
#include <QStringList>
#include <optional>

// A command-line tool of the desktop, run to its end without standard input. Only for the user's thread: it waits.
namespace Tool
{
// What the tool wrote to its standard output; none when it could not run or failed.
std::optional<QByteArray> run(const QString &program, const QStringList &arguments);
} // namespace Tool
