#include "check/source/document.h"

#include <json/reader.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>

#include "agent/agent_storage.h"

namespace check {
namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

size_t MarkLength(const std::string& text) {
    return text.compare(0, BYTE_ORDER_MARK.size(), BYTE_ORDER_MARK) == 0 ? BYTE_ORDER_MARK.size() : 0;
}

// The reader's first sentence, as ours are written: "* Line 3, Column 5\n  Missing ...\n".
std::string FirstSentence(const std::string& told) {
    const size_t begin = told.find("\n  ");
    if (begin == std::string::npos) {
        return told;
    }
    std::string sentence = told.substr(begin + 3, told.find('\n', begin + 3) - begin - 3);
    if (!sentence.empty() && sentence.back() == '.') {
        sentence.pop_back();
    }
    return sentence;
}

}  // namespace

Document::Document(std::string text)
    : source(std::move(text)),
      start(MarkLength(source.Bytes())),
      scan(ScanText(source.Bytes(), start, ZORV_ROUTE_CONFIG_NESTING)) {
    Read();
}

void Document::Read() {
    Json::CharReaderBuilder settings;
    settings["stackLimit"] = ZORV_ROUTE_CONFIG_NESTING;
    const std::unique_ptr<Json::CharReader> reader(settings.newCharReader());
    const std::string& bytes = source.Bytes();
    std::string told;
    try {
        if (!reader->parse(bytes.data(), bytes.data() + bytes.size(), &root, &told)) {
            refusal = {ErrorOffset(told), FirstSentence(told), false};
        }
    } catch (const Json::Exception& error) {
        refusal = {scan.tooDeep.value_or(start), error.what(), scan.tooDeep.has_value()};
    }
    if (refusal) {
        root = Json::Value();
    }
}

// The reader tells a line and a column of the text behind the mark, and begins lines at a lone \r too.
size_t Document::ErrorOffset(const std::string& told) const {
    size_t line = 1;
    size_t column = 1;
    if (std::sscanf(told.c_str(), "* Line %zu, Column %zu", &line, &column) != 2) {  // NOLINT(cert-err34-c)
        return start;
    }
    const std::string& bytes = source.Bytes();
    size_t at = start;
    for (; line > 1 && at < bytes.size(); ++at) {
        const bool isPair = bytes[at] == '\r' && at + 1 < bytes.size() && bytes[at + 1] == '\n';
        line -= (bytes[at] == '\n' || bytes[at] == '\r') && !isPair ? 1U : 0U;
    }
    return at + column - 1;
}

size_t Document::KeyOf(const Json::Value& object, const Json::Value& member) const {
    const size_t at = StartOf(member);
    const auto [first, end] = scan.KeysOf(StartOf(object));
    const auto key = std::lower_bound(
        first, end, at, [](const ScannedKey& each, size_t offset) { return each.value < offset; });
    return key != end && key->value == at ? key->at : StartOf(object);
}

}  // namespace check
