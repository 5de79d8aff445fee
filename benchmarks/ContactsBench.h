#pragma once

#include <QString>
#include <optional>

namespace ContactsBench
{
// By how many bytes the memory of this process grows for each of the cards in the folder when a store has read it.
// None when that cannot be told.
std::optional<double> bytesPerCard(const QString &folder, int cards);
} // namespace ContactsBench
