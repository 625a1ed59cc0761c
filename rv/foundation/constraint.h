// Base of the constraints that callers pass to algorithms. It carries an identifier and a name, for the
// caller's use; what a constraint demands is its subclass's matter.
#pragma once

#include <string>

#include "rv/foundation/object.h"

class RV_EXPORT RVConstraint : public RVObject {
    RV_OBJECT(RVConstraint)

public:
    RVConstraint() = default;
    // The name is copied; none is no name.
    RVConstraint(long id, const wchar_t* name);

    long id() const { return m_id; }
    // Empty without a name.
    const wchar_t* pNameString() const { return m_name.c_str(); }

    // Whether the last algorithm that took the constraint found it fulfilled; 0 before.
    int fulfilled() const { return m_fulfilled; }
    int fulfilled(int flag) { return m_fulfilled = flag; }

private:
    long m_id = 0;
    std::wstring m_name;
    int m_fulfilled = 0;
};
