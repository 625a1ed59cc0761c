#include "rv/framework/run_pulse.h"

RVRunControl::~RVRunControl() = default;
RV_OBJECT_NO_COPY_IMPL(RVRunControl)

void RVRunControl::restart() {
    m_isStopped.store(false, std::memory_order_relaxed);
    m_deadline = Clock::time_point::max();
}

void RVRunControl::progress(const char*, std::int64_t, std::int64_t) {}

namespace rv {

RunPulse::RunPulse(RVRunControl* control, const char* phase, std::int64_t total)
    : Pulse(control == nullptr ? std::numeric_limits<std::int64_t>::max() : kSteps),
      m_control(control),
      m_phase(phase),
      m_total(total) {
    if (control == nullptr) return;
    lookAtClock();
    if (control->stopped()) throw Cancelled();
}

void RunPulse::look() {
    if (m_control == nullptr) {
        m_left = std::numeric_limits<std::int64_t>::max();
        return;
    }
    m_done += kSteps - m_left;
    m_left = kSteps;
    if (m_done >= m_nextClock) {
        m_nextClock = m_done + kStepsOfClock;
        lookAtClock();
    }
    if (m_control->stopped()) throw Cancelled();
}

void RunPulse::lookAtClock() {
    const auto now = RVRunControl::Clock::now();
    if (now >= m_control->m_deadline) m_control->stop();
    if (now < m_control->m_nextProgress) return;
    m_control->m_nextProgress = now + std::chrono::milliseconds(100);
    m_control->progress(m_phase, m_done, m_total);
}

}  // namespace rv
