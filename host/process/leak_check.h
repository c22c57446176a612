// The leak check of builds with the address sanitizer; in other builds nothing happens here.
#pragma once

#if defined(__has_feature)
#define HOST_HAS_FEATURE(feature) __has_feature(feature)
#else
#define HOST_HAS_FEATURE(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || HOST_HAS_FEATURE(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#define HOST_CHECKS_LEAKS 1
#else
#define HOST_CHECKS_LEAKS 0
#endif

namespace zorv {
// Ends the process when it has lost memory; exit() would do the same.
inline void CheckLeaks() {
#if HOST_CHECKS_LEAKS
    __lsan_do_leak_check();
#endif
}

// While it lives, what this thread allocates may be lost.
class LeaksAllowed {
public:
    LeaksAllowed() {
#if HOST_CHECKS_LEAKS
        __lsan_disable();
#endif
    }
    ~LeaksAllowed() {
#if HOST_CHECKS_LEAKS
        __lsan_enable();
#endif
    }
    LeaksAllowed(const LeaksAllowed&) = delete;
    LeaksAllowed& operator=(const LeaksAllowed&) = delete;
};
}  // namespace zorv
