// What an algorithm keeps between the hooks of one run.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "rv/foundation/object.h"

class RVAlgorithm;

namespace rv {

class RV_EXPORT RunStateBase {
public:
    RunStateBase(const RunStateBase&) = delete;
    RunStateBase& operator=(const RunStateBase&) = delete;

protected:
    // A member of an algorithm, from its beginning to its end.
    explicit RunStateBase(RVAlgorithm* algorithm);
    ~RunStateBase() = default;

private:
    friend class ::RVAlgorithm;
    virtual void end() noexcept = 0;

    RunStateBase* m_next;  // of the same algorithm
};

// A T that is made when it is first asked for and destroyed by the framework before a run begins and after it
// has ended, on every way out. An algorithm's member; T may be incomplete where it is declared. Copying the
// algorithm copies nothing of it.
//
//   rv::RunState<Run> m_run{this};
template <class T>
class RunState final : RunStateBase {
public:
    explicit RunState(RVAlgorithm* algorithm) : RunStateBase(algorithm) {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is copied
    RunState& operator=(const RunState&) { return *this; }
    ~RunState() = default;

    T& operator*() const {
        if constexpr (std::is_default_constructible_v<T>) {
            if (m_value == nullptr) make();
        }
        return *m_value;
    }
    T* operator->() const { return &**this; }
    // Makes one anew, for a T whose constructor has arguments.
    template <class... Args>
    T& make(Args&&... args) const {
        return *(m_value = std::make_shared<T>(std::forward<Args>(args)...));
    }
    // nullptr unless it was made.
    T* get() const { return m_value.get(); }
    void end() noexcept override { m_value = nullptr; }

private:
    mutable std::shared_ptr<T> m_value;  // shared, so that it knows how to destroy an incomplete T
};

}  // namespace rv
