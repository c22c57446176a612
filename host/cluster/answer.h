// What a handler answers to a message.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace zorv {
// The data is from malloc(): C code frees it.
struct Answer {
    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };
    std::unique_ptr<void, Free> data;  // null when the answer has none
    uint32_t length = 0;
};

// An answer with a copy of the data, of which there may be none. Throws std::bad_alloc.
Answer CopyAnswer(const void* data, uint32_t length);
}  // namespace zorv
