#pragma once

#include <optional>

class GeneratedFiles;

namespace MemoryBench
{
// Of this process, in bytes, after giving back what is free; 0 when it cannot be told.
double residentSize();
// By how many bytes the memory of this process grows for each visit in the history, when that is read and shown in a
// drawer, and filtered once if wanted, by a word that is in nearly every entry. None when that cannot be told.
std::optional<double> bytesPerEntry(const GeneratedFiles &files, bool filtered);
} // namespace MemoryBench
