#pragma once

class GeneratedFiles;
class QString;

// What this program does as a child of itself, see ChildProcess.
namespace ChildParts
{
// Prints what was measured, each number on a line. The program's exit code.
int run(const QString &name, const GeneratedFiles &files);
} // namespace ChildParts
