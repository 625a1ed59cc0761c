// Sums of costs, capacities and flows. Nothing else in the library adds such values, so no sum has
// undefined behaviour: saturating sums stay at the ends of the signed 32-bit range, wrapping sums are
// taken modulo 2^32.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace rv {

// Stands for unreachable, unlimited or infinite.
inline constexpr int kInfinite = std::numeric_limits<std::int32_t>::max();
inline constexpr int kSmallest = std::numeric_limits<std::int32_t>::min();

constexpr int saturate(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, kSmallest, kInfinite));
}

// The exact sum of all terms, brought into range once: up to 2^32 terms cannot overflow on the way.
template <class... Terms>
constexpr int saturatingSum(Terms... terms) {
    return saturate((std::int64_t{0} + ... + std::int64_t{terms}));
}

constexpr int saturatingDifference(int a, int b) { return saturate(std::int64_t{a} - std::int64_t{b}); }

template <class... Terms>
constexpr int wrappingSum(Terms... terms) {
    return static_cast<int>((std::uint32_t{0} + ... + static_cast<std::uint32_t>(terms)));
}

constexpr int wrappingDifference(int a, int b) {
    return static_cast<int>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

}  // namespace rv
