// Hints to the memory. Internal to the library, not installed.
#pragma once

namespace rv {

// The memory at this address will soon be written.
inline void prefetch(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address, 1);
#else
    static_cast<void>(address);
#endif
}

}  // namespace rv
