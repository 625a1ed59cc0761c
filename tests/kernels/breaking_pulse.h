// Kernels that are broken off on their way.
#pragma once

#include <gtest/gtest.h>

#include "rv/kernels/pulse.h"

namespace rvtest {

struct Broken {};

// Throws after some steps.
class BreakingPulse : public rv::Pulse {
public:
    explicit BreakingPulse(std::int64_t steps) : Pulse(steps) {}

protected:
    void look() override { throw Broken(); }
};

// Calls f(pulse) with pulses that break it off after 0, 1, 2, ... steps, until one does not.
template <class F>
void breakOffEverywhere(F f) {
    for (std::int64_t steps = 0;; ++steps) {
        BreakingPulse pulse(steps);
        try {
            f(pulse);
            EXPECT_GT(steps, 0) << "it never beats";
            return;
        } catch (const Broken&) {
        }
    }
}

}  // namespace rvtest
