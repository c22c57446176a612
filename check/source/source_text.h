// The bytes of a configuration, and the places in it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace check {

// Both count from 1; columns count bytes.
struct Place {
    size_t line = 1;
    size_t column = 1;
};

class SourceText {
public:
    explicit SourceText(std::string text);

    const std::string& Bytes() const { return bytes; }

    // Where the byte at `offset` stands; the end of the text for what lies behind it. Lines end with \n.
    Place PlaceOf(size_t offset) const;

private:
    std::string bytes;
    std::vector<size_t> lineStarts;
};

// The bytes of the regular file `path`. Throws std::runtime_error with an operator's sentence.
std::string ReadSource(const std::string& path);

}  // namespace check
