#include "rv/version.h"

#define RV_TEXT_OF(number) #number
#define RV_VERSION_TEXT(major, minor, patch) RV_TEXT_OF(major) "." RV_TEXT_OF(minor) "." RV_TEXT_OF(patch)

const char* rv::version() { return RV_VERSION_TEXT(RV_VERSION_MAJOR, RV_VERSION_MINOR, RV_VERSION_PATCH); }
