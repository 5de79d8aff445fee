#pragma once

#include <optional>
#include <vector>

class Figures;

// The contacts of the desktop: its real service, in a session of the bench's own, with cards that are made up.
namespace DesktopContactsBench
{
// In a process of its own: all figures but the memory, in an order that only this bench knows, and that. Empty: there
// is no such service here. None when they could not be measured.
std::optional<std::vector<double>> measure(int cards);
// By how many bytes the memory of this process grows for each of the cards in the desktop's contacts when a store has
// read them. None when that cannot be told.
std::optional<double> bytesPerCard(int cards);
} // namespace DesktopContactsBench
