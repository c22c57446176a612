#include <cctype>

#include "check/rules/rule.h"
#include "fault_common/fault_number.h"

namespace check {
namespace {

constexpr std::string_view WORDS[] = {"whole", "automic", "follow"};

// Calls `with` for each node that counts errors.
template <typename Visit>
void ForCounters(const Model& model, const Visit& with) {
    for (const Graph& graph : model.Graphs()) {
        for (const Node& node : graph.nodes) {
            if (graph.kind == GraphKind::ERRCODE && !node.isModule) {
                with(node, graph);
            }
        }
    }
}

bool IsOfWord(char letter) {
    return std::isalnum(static_cast<unsigned char>(letter)) != 0;
}

// The words of a text that hold something besides the known ones, which may stand in one piece.
std::vector<std::string> UnknownWords(std::string_view text) {
    std::vector<std::string> unknown;
    for (size_t at = 0; at < text.size();) {
        const size_t begin = at;
        while (at < text.size() && IsOfWord(text[at])) {
            ++at;
        }
        std::string rest(text.substr(begin, at - begin));
        for (const std::string_view word : WORDS) {
            for (size_t place = rest.find(word); place != std::string::npos; place = rest.find(word)) {
                rest.replace(place, word.size(), " ");
            }
        }
        if (rest.find_first_not_of(' ') != std::string::npos) {
            unknown.emplace_back(text.substr(begin, at - begin));
        }
        at = at == begin ? at + 1 : at;
    }
    return unknown;
}

void FindUnknownAttrs(const Subject& subject, const Report& report) {
    ForCounters(subject.model, [&](const Node& node, const Graph& graph) {
        for (const std::string& word : UnknownWords(TextOf(node.attr))) {
            std::string meant = subject.suggester.DidYouMean(word, {"whole", "automic", "follow"});
            report(subject.At(*node.attr), graph.name,
                   "the attribute " + Quoted(word) + " is unknown" +
                       (meant.empty() ? "; there are 'whole', 'automic' and 'follow'" : meant));
        }
    });
}

bool IsIndex(std::string_view text) {
    try {
        const int32_t index = FaultToInt32(text);
        return index <= -1 && index >= -5;
    } catch (const std::logic_error&) {
        return false;
    }
}

void FindBadIndexes(const Subject& subject, const Report& report) {
    ForCounters(subject.model, [&](const Node& node, const Graph& graph) {
        if (node.erridx != nullptr && node.erridx->isString() && !IsIndex(TextOf(node.erridx))) {
            report(subject.At(*node.erridx), graph.name,
                   "the error index " + Quoted(TextOf(node.erridx)) +
                       " has no column; there are \"-1\" to \"-5\" for errCode0 to errCode4");
        }
    });
}

void FindMissingQnames(const Subject& subject, const Report& report) {
    ForCounters(subject.model, [&](const Node& node, const Graph& graph) {
        const bool isGiven =
            node.qname != nullptr && (!node.qname->isString() || !TextOf(node.qname).empty());
        if (node.IsCountedElsewhere() && !isGiven) {
            report(subject.At(node.qname != nullptr ? *node.qname : *node.info), graph.name,
                   Quoted(node.Label()) +
                       " is 'automic' without a 'qname', the point that counts for it, so it counts nothing");
        }
    });
}

}  // namespace

std::vector<Rule> ErrorCodeRules() {
    return {
        {"unknown-attr", Severity::ERROR, "Another word than whole, automic and follow has no effect.",
         FindUnknownAttrs},
        {"erridx-out-of-range", Severity::ERROR,
         "Errors are counted in five columns, -1 to -5; a text that is no number ends the command.",
         FindBadIndexes},
        {"missing-qname", Severity::ERROR,
         "An automic node that is not whole counts what its qname counts: nothing, without one.",
         FindMissingQnames},
    };
}

}  // namespace check
