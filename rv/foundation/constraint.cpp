#include "rv/foundation/constraint.h"

RV_OBJECT_IMPL(RVConstraint)

RVConstraint::RVConstraint(long id, const wchar_t* name) : m_id(id), m_name(name == nullptr ? L"" : name) {}
