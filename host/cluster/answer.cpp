#include "host/cluster/answer.h"

#include <cstring>
#include <new>

namespace zorv {
Answer CopyAnswer(const void* data, uint32_t length) {
    Answer answer;
    if (data == nullptr || length == 0) {
        return answer;
    }
    answer.data.reset(std::malloc(length));
    if (answer.data == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(answer.data.get(), data, length);
    answer.length = length;
    return answer;
}
}  // namespace zorv
