#include "check/source/source_text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace check {

SourceText::SourceText(std::string text) : bytes(std::move(text)), lineStarts{0} {
    for (size_t at = bytes.find('\n'); at != std::string::npos; at = bytes.find('\n', at + 1)) {
        lineStarts.push_back(at + 1);
    }
}

Place SourceText::PlaceOf(size_t offset) const {
    const size_t at = std::min(offset, bytes.size());
    const auto next = std::upper_bound(lineStarts.begin(), lineStarts.end(), at);
    return {static_cast<size_t>(next - lineStarts.begin()), at - *std::prev(next) + 1};
}

std::string ReadSource(const std::string& path) {
    std::error_code error;
    const bool isFile = std::filesystem::is_regular_file(path, error);  // to open a pipe would wait
    std::ifstream stream;
    if (isFile) {
        stream.open(path, std::ios::binary);
    }
    std::ostringstream bytes;
    if (stream.is_open() && stream.peek() != std::ifstream::traits_type::eof()) {
        bytes << stream.rdbuf();
    }
    if (!isFile || !stream.is_open() || stream.bad()) {
        const std::string reason = error    ? error.message()
                                   : isFile ? std::strerror(errno)
                                            : "it is no regular file";
        throw std::runtime_error("the configuration " + path + " cannot be read: " + reason);
    }
    return bytes.str();
}

}  // namespace check
