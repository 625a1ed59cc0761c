// Formatted wide text on standard output, for the messages of debug mode.
#pragma once

#include "rv/export.h"

// Formats as wprintf does, but %s and %c take wide text, as %ls and %lc do. A none argument of %s is not
// allowed. Writes whatever the orientation of standard output is: a stream that is already wide gets wide
// characters, any other one UTF-8. Gives the number of wide characters, or a negative value on failure.
RV_EXPORT int wprintf_s(const wchar_t* format, ...);
