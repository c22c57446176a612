// The rules, as a table.
#pragma once

#include <string>
#include <vector>

#include "check/graph/model.h"
#include "check/graph/statistics.h"
#include "check/graph/walks.h"
#include "check/rules/finding.h"
#include "check/rules/suggester.h"

namespace check {

// What is checked.
struct Subject {
    const Document& document;
    const Model& model;
    const Walks& walks;
    const PointStatistics* statistics;  // null: there is no database
    Suggester& suggester;

    size_t At(const Json::Value& value) const { return document.StartOf(value); }
    size_t LineOf(size_t offset) const { return document.Source().PlaceOf(offset).line; }
};

// Takes the findings of one rule.
class Report {
public:
    Report(const Rule& ofRule, std::vector<Finding>& toFill) : rule(ofRule), findings(toFill) {}
    void operator()(size_t at, const std::string& graph, std::string text) const {
        findings.push_back({at, &rule, graph, std::move(text)});
    }

private:
    const Rule& rule;
    std::vector<Finding>& findings;
};

struct Rule {
    const char* name;
    Severity severity;
    const char* reason;  // one sentence: what it finds, and what that does to an answer
    void (*find)(const Subject& subject, const Report& report);
};

// Each family of rules, a file.
std::vector<Rule> TextRules();
std::vector<Rule> MemberRules();
std::vector<Rule> EdgeRules();
std::vector<Rule> GraphRules();
std::vector<Rule> ErrorCodeRules();
std::vector<Rule> WalkRules();
std::vector<Rule> PointRules();

// All of them: errors first, then warnings, then notes.
const std::vector<Rule>& AllRules();

// "error", "warning", "note".
const char* NameOf(Severity severity);

// Runs all rules. `statistics` may be null.
Findings Check(const Document& document, const Model& model, const PointStatistics* statistics);

}  // namespace check
