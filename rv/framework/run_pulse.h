// How the library's loops obey a run control. Internal to the library, not installed.
//
// A run that is to end is left by an exception of the library's own, Cancelled, which takes the ways of any
// exception of a hook: what the run has begun is undone. RVAlgorithm::run turns it into RV_CANCELLED.
#pragma once

#include "rv/framework/run_control.h"
#include "rv/kernels/pulse.h"

namespace rv {

struct Cancelled {};

// Looks at the flag every 1,024 steps, and at the clock every 16,384: within the noise of any loop. Made at
// the beginning of a loop, which is a look as well.
class RunPulse final : public Pulse {
public:
    // Without a control it never looks. The phase must outlive the pulse.
    RunPulse(RVRunControl* control, const char* phase, std::int64_t total = 0);

private:
    void look() override;
    void lookAtClock();

    static constexpr std::int64_t kSteps = 1024;
    static constexpr std::int64_t kStepsOfClock = 16 * kSteps;

    RVRunControl* m_control;
    const char* m_phase;
    std::int64_t m_total;
    std::int64_t m_done = 0;
    std::int64_t m_nextClock = kStepsOfClock;
};

// One look, between two steps of a run.
inline void lookAt(RVRunControl* control, const char* phase) { const RunPulse pulse(control, phase); }

}  // namespace rv
