// Random numbers whose sequence is fixed for ever by the seed, on every build and machine: results of
// algorithms depend on it. The generator is SplitMix64 (Steele, Lea and Flood 2014).
#pragma once

#include <cstdint>

#include "rv/foundation/object.h"

class RV_EXPORT RVSimpleRandom : public RVObject {
    RV_OBJECT(RVSimpleRandom)

public:
    explicit RVSimpleRandom(int seed = 0)
        : m_state(static_cast<std::uint64_t>(static_cast<std::int64_t>(seed))) {}

    // Uniform in [0, 1), a multiple of 2^-53.
    double randFloat();

private:
    std::uint64_t m_state;
};
