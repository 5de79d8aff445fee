#pragma once

#include <QByteArrayView>
#include <memory>
#include <vector>

// Texts, one behind the other in a few large pieces of memory. They stay where they are as long as this lives.
class TextBlocks
{
public:
    const char *add(QByteArrayView text);
    // Bytes of all texts.
    std::size_t total() const { return _total; }

private:
    std::vector<std::unique_ptr<char[]>> _blocks;
    std::size_t _used = 0; // of the last block
    std::size_t _size = 0; // of the last block
    std::size_t _total = 0;
};
