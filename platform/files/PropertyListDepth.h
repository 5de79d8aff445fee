#pragma once

namespace PropertyList
{
// How deep values may be nested, in every form: what is deeper is neither read nor written.
constexpr int maximumDepth = 1024;
} // namespace PropertyList
