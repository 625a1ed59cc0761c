// How a long computation lets itself be watched. Internal to the library, not installed.
//
// A kernel tells its pulse of its steps, each about as dear as following an arc; the pulse looks now and then
// whether it is to go on, and throws where not. So kernels keep what they work on in objects that free
// themselves.
#pragma once

#include <cstdint>
#include <limits>

namespace rv {

class Pulse {
public:
    // Never looks.
    Pulse() = default;
    Pulse(const Pulse&) = delete;
    Pulse& operator=(const Pulse&) = delete;
    virtual ~Pulse() = default;

    void beat(std::int64_t steps = 1) {
        if ((m_left -= steps) < 0) look();
    }

protected:
    explicit Pulse(std::int64_t left) : m_left(left) {}
    // The steps that were to be left have been made. Sets m_left again.
    virtual void look() { m_left = std::numeric_limits<std::int64_t>::max(); }

    std::int64_t m_left = std::numeric_limits<std::int64_t>::max();
};

}  // namespace rv
