#include <algorithm>
#include <iterator>
#include <map>

#include "check/rules/rule.h"

namespace check {
namespace {

constexpr size_t MOST_OF_A_KIND = 20;  // of one rule and graph

std::vector<Rule> CollectRules() {
    std::vector<Rule> all;
    for (const auto& family :
         {TextRules, MemberRules, EdgeRules, GraphRules, ErrorCodeRules, WalkRules, PointRules}) {
        const std::vector<Rule> rules = family();
        all.insert(all.end(), rules.begin(), rules.end());
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const Rule& a, const Rule& b) { return a.severity < b.severity; });
    return all;
}

void Count(const std::vector<Finding>& all, Findings& findings) {
    for (const Finding& finding : all) {
        switch (finding.rule->severity) {
            case Severity::ERROR:
                ++findings.errors;
                break;
            case Severity::WARNING:
                ++findings.warnings;
                break;
            case Severity::NOTE:
                ++findings.notes;
                break;
        }
    }
}

Findings Arrange(std::vector<Finding> all) {
    std::stable_sort(all.begin(), all.end(), [](const Finding& a, const Finding& b) { return a.at < b.at; });
    Findings findings;
    Count(all, findings);
    struct Kind {
        size_t told = 0;
        size_t omission = 0;
    };
    std::map<std::pair<const Rule*, std::string>, Kind> kinds;
    for (Finding& finding : all) {
        Kind& kind = kinds[{finding.rule, finding.graph}];
        if (kind.told++ < MOST_OF_A_KIND) {
            findings.told.push_back(std::move(finding));
        } else if (kind.told == MOST_OF_A_KIND + 1) {
            kind.omission = findings.omitted.size();
            findings.omitted.push_back({std::move(finding), 1});
        } else {
            ++findings.omitted[kind.omission].count;
        }
    }
    return findings;
}

}  // namespace

const std::vector<Rule>& AllRules() {
    static const std::vector<Rule> rules = CollectRules();
    return rules;
}

const char* NameOf(Severity severity) {
    constexpr const char* NAMES[] = {"error", "warning", "note"};
    return NAMES[static_cast<size_t>(severity)];
}

Findings Check(const Document& document, const Model& model, const PointStatistics* statistics) {
    const Walks walks(model);
    Suggester suggester;
    const Subject subject{document, model, walks, statistics, suggester};
    std::vector<Finding> all;
    for (const Rule& rule : AllRules()) {
        rule.find(subject, Report(rule, all));
    }
    return Arrange(std::move(all));
}

}  // namespace check
