#pragma once

#include <cstdint>

// How often memory has been asked for in this process so far, by anyone: C, C++ and libraries alike.
std::uint64_t allocationCount();
