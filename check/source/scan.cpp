#include "check/source/scan.h"

#include <json/reader.h>

#include <algorithm>
#include <memory>

namespace check {
namespace {

constexpr std::string_view BLANKS = " \t\r\n";
constexpr std::string_view ENDS_OF_WORD = " \t\r\n,:{}[]\"/";

bool IsDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

// Takes one digit or more from the beginning of `text`. Returns whether there were any.
bool TakeDigits(std::string_view& text) {
    const size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(end);
    return end > 0;
}

// Whether a word that begins as a number does is one in strict JSON.
bool IsStrictNumber(std::string_view word) {
    if (word[0] == '-') {
        word.remove_prefix(1);
    }
    if (word.size() > 1 && word[0] == '0' && IsDigit(word[1])) {
        return false;
    }
    if (!TakeDigits(word)) {
        return false;
    }
    if (!word.empty() && word[0] == '.') {
        word.remove_prefix(1);
        if (!TakeDigits(word)) {
            return false;
        }
    }
    if (!word.empty() && (word[0] == 'e' || word[0] == 'E')) {
        word.remove_prefix(word.size() > 1 && (word[1] == '+' || word[1] == '-') ? 2 : 1);
        return TakeDigits(word) && word.empty();
    }
    return word.empty();
}

class Scanner {
public:
    Scanner(std::string_view toScan, size_t start, size_t mostDepth)
        : text(toScan), at(start), deepest(mostDepth) {}

    Scan Run() {
        while (at < text.size() && !scan.trailing) {
            Step();
        }
        std::stable_sort(scan.keys.begin(), scan.keys.end(),
                         [](const ScannedKey& a, const ScannedKey& b) { return a.object < b.object; });
        return std::move(scan);
    }

private:
    struct Open {
        size_t at;
        bool isObject;
        bool wantsKey;
    };

    void Step() {
        const char letter = text[at];
        if (BLANKS.find(letter) != std::string_view::npos) {
            ++at;
        } else if (letter == '/') {
            SkipComment();
        } else if (isOver) {
            scan.trailing = at;
        } else if (letter == '{' || letter == '[') {
            BeginValue();
            open.push_back({at, letter == '{', letter == '{'});
            ++at;
        } else if (letter == '}' || letter == ']') {
            Close();
        } else if (letter == ',' || letter == ':') {
            Separate(letter);
        } else if (letter == '"') {
            TakeString();
        } else {
            TakeWord();
        }
    }

    void BeginValue() {
        if (open.size() + 1 > deepest && !scan.tooDeep) {
            scan.tooDeep = at;
        }
        if (hasKey) {
            scan.keys[lastKey].value = at;
            hasKey = false;
        }
        comma.reset();
    }

    void EndValue() { isOver = open.empty(); }

    void Close() {
        if (comma) {
            scan.leniencies.push_back({*comma, "a comma with nothing behind it"});
            comma.reset();
        }
        if (!open.empty()) {
            open.pop_back();
        }
        ++at;
        EndValue();
    }

    void Separate(char letter) {
        if (!open.empty()) {
            open.back().wantsKey = letter == ',' && open.back().isObject;
        }
        if (letter == ',') {
            comma = at;
        }
        ++at;
    }

    void TakeString() {
        const size_t begin = at;
        const bool isKey = !open.empty() && open.back().wantsKey;
        if (!isKey) {
            BeginValue();
        }
        for (++at; at < text.size() && text[at] != '"'; ++at) {
            if (static_cast<unsigned char>(text[at]) < ' ') {
                scan.leniencies.push_back({at, "a control character in a text"});
            }
            at += text[at] == '\\' ? 1U : 0U;
        }
        const size_t end = std::min(at, text.size());
        at = std::min(at + 1, text.size());
        if (isKey) {
            comma.reset();
            open.back().wantsKey = false;
            lastKey = scan.keys.size();
            hasKey = true;
            scan.keys.push_back({open.back().at, begin, begin, text.substr(begin + 1, end - begin - 1)});
        } else {
            EndValue();
        }
    }

    void TakeWord() {
        BeginValue();
        const size_t begin = at;
        at = std::min(text.find_first_of(ENDS_OF_WORD, at), text.size());
        const std::string_view word = text.substr(begin, at - begin);
        if ((IsDigit(word[0]) || word[0] == '-' || word[0] == '+') && !IsStrictNumber(word)) {
            scan.leniencies.push_back({begin, "a number that is written otherwise"});
        }
        EndValue();
    }

    void SkipComment() {
        const char kind = at + 1 < text.size() ? text[at + 1] : ' ';
        if (kind != '/' && kind != '*') {
            if (isOver) {
                scan.trailing = at;
            }
            ++at;
            return;
        }
        scan.leniencies.push_back({at, "a comment"});
        const size_t end = kind == '/' ? text.find_first_of("\r\n", at) : text.find("*/", at + 2);
        at = end == std::string_view::npos ? text.size() : end + (kind == '/' ? 1U : 2U);
    }

    std::string_view text;
    size_t at;
    const size_t deepest;
    Scan scan;
    std::vector<Open> open;
    std::optional<size_t> comma;  // the last token, when it is one
    size_t lastKey = 0;
    bool hasKey = false;  // whose value is still to come
    bool isOver = false;  // the document
};

}  // namespace

Scan ScanText(std::string_view text, size_t start, size_t deepest) {
    return Scanner(text, start, deepest).Run();
}

Scan::Keys Scan::KeysOf(size_t object) const {
    struct ByObject {
        bool operator()(const ScannedKey& key, size_t offset) const { return key.object < offset; }
        bool operator()(size_t offset, const ScannedKey& key) const { return offset < key.object; }
    };
    return std::equal_range(keys.begin(), keys.end(), object, ByObject());
}

std::string KeyText(const ScannedKey& key) {
    if (key.raw.find('\\') == std::string_view::npos) {
        return std::string(key.raw);
    }
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    const std::string quoted = '"' + std::string(key.raw) + '"';
    Json::Value text;
    reader->parse(quoted.data(), quoted.data() + quoted.size(), &text, nullptr);
    return text.isString() ? text.asString() : std::string(key.raw);
}

}  // namespace check
