// A configuration as the plug-in's reader takes it, with the places of all that is in it.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>

#include "check/source/scan.h"
#include "check/source/source_text.h"

namespace check {

class Document {
public:
    explicit Document(std::string text);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    // What the reader refuses, and where.
    struct Refusal {
        size_t at;
        std::string text;
        bool isTooDeep;
    };

    const SourceText& Source() const { return source; }
    const Scan& Scanned() const { return scan; }
    bool HasByteOrderMark() const { return start > 0; }
    const std::optional<Refusal>& Refused() const { return refusal; }

    // The document; null when the reader refuses it.
    const Json::Value& Root() const { return root; }

    // Offset of the first byte of a value of this document, and of the byte behind its last.
    size_t StartOf(const Json::Value& value) const {
        return start + static_cast<size_t>(value.getOffsetStart());
    }
    size_t EndOf(const Json::Value& value) const {
        return start + static_cast<size_t>(value.getOffsetLimit());
    }

    // Offset of the key of a member of `object`; that of the object when it has none of that value.
    size_t KeyOf(const Json::Value& object, const Json::Value& member) const;

private:
    void Read();
    size_t ErrorOffset(const std::string& told) const;

    const SourceText source;
    const size_t start;  // behind the byte order mark
    const Scan scan;
    Json::Value root;
    std::optional<Refusal> refusal;
};

}  // namespace check
