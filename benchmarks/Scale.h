#pragma once

// How each cost grows with the history.
namespace Scale
{
// Measures at 1,000, 10,000, 100,000 and 1,000,000 visits, each in a process of its own, and prints a column for each.
// False when anything could not be measured.
bool print();
} // namespace Scale
