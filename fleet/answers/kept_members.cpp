#include "fleet/answers/kept_members.h"

#include <algorithm>

namespace fleet {
namespace {

constexpr int MOST_NESTED = 60;

class Filter {
public:
    Filter(std::string_view text, const std::vector<std::string_view>& keptNames)
        : json(text), names(keptNames) {}

    std::string Run() {
        Value(0);
        SkipBlanks();
        if (at < json.size()) {
            throw AnswerError("there is more than one JSON document in a line");
        }
        return std::move(kept);
    }

private:
    char Next() {
        SkipBlanks();
        if (at >= json.size()) {
            throw AnswerError("the JSON ends too early");
        }
        return json[at];
    }

    void SkipBlanks() { at = std::min(json.find_first_not_of(" \t\r\n", at), json.size()); }

    // At its first quote.
    std::string_view String() {
        const size_t begin = at++;
        while (at < json.size() && json[at] != '"') {
            at += json[at] == '\\' ? 2U : 1U;
        }
        if (at >= json.size()) {
            throw AnswerError("the JSON ends within a text");
        }
        return json.substr(begin, ++at - begin);
    }

    std::string_view Scalar() {
        const size_t begin = at;
        at = std::min(json.find_first_of(",:]} \t\r\n[{\"", at), json.size());
        at = std::max(at, begin + 1);  // what is no JSON is left to the reader
        return json.substr(begin, at - begin);
    }

    void Value(int depth) {
        const char first = Next();
        if (depth > MOST_NESTED) {
            throw AnswerError("the JSON is nested too deep");
        }
        if (first == '{' || first == '[') {
            Collection(first == '{', depth);
        } else {
            kept += first == '"' ? String() : Scalar();
        }
    }

    void Collection(bool isObject, int depth) {
        kept += json[at++];
        bool isFirst = true;
        while (Next() != '}' && json[at] != ']') {
            if (json[at] == ',') {
                ++at;
            } else if (!isObject) {
                kept += isFirst ? "" : ",";
                isFirst = false;
                Value(depth + 1);
            } else {
                isFirst = !Member(isFirst, depth) && isFirst;
            }
        }
        kept += json[at++];
    }

    // Returns whether it was kept.
    bool Member(bool isFirst, int depth) {
        if (json[at] != '"') {
            throw AnswerError("a member of the JSON has no name");
        }
        const std::string_view name = String();
        if (Next() != ':') {
            throw AnswerError("a member of the JSON has no value");
        }
        ++at;
        if (!std::binary_search(names.begin(), names.end(), name.substr(1, name.size() - 2))) {
            Skip();
            return false;
        }
        kept += isFirst ? "" : ",";
        kept += name;
        kept += ':';
        Value(depth + 1);
        return true;
    }

    void Skip() {
        size_t open = 0;
        do {
            const char first = Next();
            if (first == '"') {
                String();
            } else if (first == '{' || first == '[' || first == '}' || first == ']') {
                open += first == '{' || first == '[' ? 1U : 0U;
                open -= (first == '}' || first == ']') && open > 0 ? 1U : 0U;
                ++at;
            } else if (first == ',' || first == ':') {
                ++at;
            } else {
                Scalar();
            }
        } while (open > 0);
    }

    const std::string_view json;
    const std::vector<std::string_view>& names;
    size_t at = 0;
    std::string kept;
};

}  // namespace

std::string KeptMembers(std::string_view json, const std::vector<std::string_view>& names) {
    return Filter(json, names).Run();
}

}  // namespace fleet
