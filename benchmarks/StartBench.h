#pragma once

#include <optional>

class GeneratedFiles;

namespace StartBench
{
// From the loading of the plug-in to the first drawer. None when there is none then.
std::optional<double> startMilliseconds(const GeneratedFiles &files);
} // namespace StartBench
