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

// The same for totals, which stay at the ends of the signed 64-bit range.
constexpr std::int64_t saturatingSum64(std::int64_t a, std::int64_t b) {
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
    if (b > 0 && a > greatest - b) return greatest;
    return b < 0 && a < least - b ? least : a + b;
}
// REQUIRES: b is not negative.
constexpr std::int64_t saturatingProduct64(std::int64_t a, std::int64_t b) {
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
    if (b == 0) return 0;
    return a > greatest / b ? greatest : a < least / b ? least : a * b;
}

template <class... Terms>
constexpr int wrappingSum(Terms... terms) {
    return static_cast<int>((std::uint32_t{0} + ... + static_cast<std::uint32_t>(terms)));
}

}  // namespace rv
