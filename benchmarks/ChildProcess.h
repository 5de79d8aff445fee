#pragma once

#include <QString>
#include <optional>
#include <vector>

class GeneratedFiles;

// What can only be measured in a process that has done nothing else: this program runs itself again for it.
namespace ChildProcess
{
// What the child, run over these files, answers; none when it fails.
std::optional<double> measure(const QString &name, const GeneratedFiles &files);
// The same where it answers several, or nothing.
std::optional<std::vector<double>> measureAll(const QString &name, const GeneratedFiles &files);
} // namespace ChildProcess
