#include "explain/output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "host/process/files.h"

namespace explain {

void PrintAnswer(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        // Who closed a pipe has read enough: nothing is to be told of that.
        throw OutputError(
            errno == EPIPE ? "" : std::string("the answer cannot be printed: ") + std::strerror(errno));
    }
}

void WritePage(const std::string& path, const std::string& page) {
    if (!zorv::WriteFile(path, page)) {
        throw OutputError("the page '" + path + "' cannot be written: " + std::strerror(errno));
    }
}

}  // namespace explain
