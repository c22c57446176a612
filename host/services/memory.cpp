#include "agent/agent_memory.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

int32_t memset_s(void* dest, size_t destMax, int32_t value, size_t count) {
    if (dest == nullptr || count > destMax) {
        return -1;
    }
    std::memset(dest, value, count);
    return 0;
}

int32_t snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...) {
    if (dest == nullptr || destMax == 0) {
        return -1;
    }
    dest[0] = '\0';
    if (format == nullptr || count >= destMax) {
        return -1;
    }
    va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(dest, count + 1, format, args);
    va_end(args);
    if (length < 0) {
        dest[0] = '\0';
        return -1;
    }
    return static_cast<size_t>(length) > count ? -1 : length;
}
