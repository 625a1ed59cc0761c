#include "rv/foundation/object.h"

RVObject::~RVObject() = default;

void RVObject::copyObject(const RVObject*) {}

void RVObject::copyAttributes(const RVObject*) {}

RVObject* RVObject::cloneObject() const { return new RVObject(*this); }

RVObject* RVObject::cloneAttributes() const { return new RVObject(*this); }

void RVObject::debugOutput(int) const {}
