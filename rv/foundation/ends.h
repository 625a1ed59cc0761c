// Numbers of nodes and edges in arrays.
#pragma once

#include <cstdint>

namespace rv {

using Index = std::uint32_t;
inline constexpr Index kNoIndex = 0xFFFFFFFF;

// An edge's nodes; both kNoIndex for a number that no edge has.
struct Ends {
    Index source = kNoIndex;
    Index target = kNoIndex;
};

}  // namespace rv
