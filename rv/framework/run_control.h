// Ends runs early, and is told how far they are.
//
// A control is given to an algorithm (RVAlgorithm::pRunControl) and stays the caller's; it may serve any
// number of algorithms, and the parts that an algorithm runs obey it too. A run looks at it now and then,
// many times a second. Once it is to end, the run undoes what it has begun, empties its output and gives
// RV_CANCELLED; the caller's graph is as before, and the next run is as if nothing had been.
//
//   class Watch : public RVRunControl {
//       void progress(const char* phase, std::int64_t done, std::int64_t total) override { ... }
//   };
//   Watch watch;
//   watch.deadline(std::chrono::steady_clock::now() + std::chrono::seconds(5));
//   algorithm.pRunControl(&watch);
//   if (algorithm.run() == RV_CANCELLED) ...
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

#include "rv/foundation/object.h"

namespace rv {
class RunPulse;
}

class RV_EXPORT RVRunControl : public RVObject {
    RV_OBJECT_NO_COPY(RVRunControl)

public:
    using Clock = std::chrono::steady_clock;

    RVRunControl() = default;

    // Ends the present run and all that come, until restart(). May be called by any thread and by a signal
    // handler.
    void stop() noexcept { m_isStopped.store(true, std::memory_order_relaxed); }
    // Whether runs are to end. Each look of a run asks this; an override may have reasons of its own and
    // calls this. Here: whether stop() was called or a run has seen the deadline pass.
    virtual bool stopped() const { return m_isStopped.load(std::memory_order_relaxed); }
    // The time at which runs end; Clock::time_point::max(), the default, for never. Not to be set during a
    // run.
    Clock::time_point deadline() const { return m_deadline; }
    Clock::time_point deadline(Clock::time_point time) { return m_deadline = time; }
    // Forgets stop() and the deadline.
    void restart();

    // Called on the run's thread, at most ten times a second: what the run is at, the steps made and the
    // steps in all; 0 where the latter are not known. A part of an algorithm counts for itself. Must not
    // throw. Does nothing here.
    virtual void progress(const char* phase, std::int64_t done, std::int64_t total);

private:
    friend class rv::RunPulse;

    std::atomic<bool> m_isStopped = false;
    Clock::time_point m_deadline = Clock::time_point::max();
    Clock::time_point m_nextProgress = Clock::time_point::min();
};
