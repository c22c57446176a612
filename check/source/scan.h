// What the reader of JSON does not keep: where the keys stand, which of them stand twice, and what strict
// JSON would not allow.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace check {

struct ScannedKey {
    size_t object;         // offset of the brace of the object that it is in
    size_t at;             // offset of its first quote
    size_t value;          // offset of its value
    std::string_view raw;  // between the quotes, with its escapes
};

// Something that the reader takes and strict JSON does not.
struct Leniency {
    size_t at;
    const char* what;
};

struct Scan {
    std::vector<ScannedKey> keys;  // ascending by object, then in their order
    std::vector<Leniency> leniencies;
    std::optional<size_t> tooDeep;   // the first value that lies in more values than the reader allows
    std::optional<size_t> trailing;  // the first text behind the document

    using Keys = std::pair<std::vector<ScannedKey>::const_iterator, std::vector<ScannedKey>::const_iterator>;
    Keys KeysOf(size_t object) const;
};

// Scans the text from `start` on. A text that the reader accepts is understood as the reader does it; of any
// other one something is made. Takes time and memory in proportion to the text, and no stack. The keys refer
// to `text`, which must live as long. `deepest`: how many values, itself among them, a value may lie in.
Scan ScanText(std::string_view text, size_t start, size_t deepest);

// A key as the reader understands it.
std::string KeyText(const ScannedKey& key);

}  // namespace check
