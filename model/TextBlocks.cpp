#include "model/TextBlocks.h"

#include <algorithm>
#include <cstring>

namespace
{
// As large as all that there is already, so that few texts take little room and many few blocks.
constexpr std::size_t smallestBlock = std::size_t(4) << 10;
constexpr std::size_t largestBlock = std::size_t(1) << 20;
} // namespace

const char *TextBlocks::add(QByteArrayView text)
{
    const std::size_t length = std::size_t(text.size());
    if (_used + length > _size || _blocks.empty()) {
        _size = std::max(std::clamp(_total, smallestBlock, largestBlock), length);
        _used = 0;
        _blocks.push_back(std::make_unique_for_overwrite<char[]>(_size));
    }
    char *place = _blocks.back().get() + _used;
    if (length > 0)
        std::memcpy(place, text.data(), length);
    _used += length;
    _total += length;
    return place;
}
