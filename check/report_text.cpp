#include <algorithm>

#include "check/report.h"
#include "check/rules/rule.h"
#include "text/counted.h"
#include "text/printable.h"

namespace check {
namespace {

// What the omitted findings of a rule and graph come to, in place of the first of them.
Finding Summary(const Omission& omission) {
    Finding summary = omission.first;
    summary.text = "and " + std::to_string(omission.count) + " more";
    return summary;
}

std::string Line(const std::string& file, const Document& document, const Finding& finding) {
    const Place place = document.Source().PlaceOf(finding.at);
    const std::string graph = finding.graph.empty() ? "" : Printable(finding.graph, 80) + ": ";
    return file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) + ": " +
           NameOf(finding.rule->severity) + ": " + graph + Printable(finding.text) + " [" +
           finding.rule->name + "]\n";
}

}  // namespace

std::string TextReport(const std::string& file, const Model& model, const Findings& findings) {
    std::vector<Finding> lines = findings.told;
    std::transform(findings.omitted.begin(), findings.omitted.end(), std::back_inserter(lines), Summary);
    std::stable_sort(lines.begin(), lines.end(),
                     [](const Finding& a, const Finding& b) { return a.at < b.at; });
    std::string text;
    for (const Finding& finding : lines) {
        text += Line(Printable(file), model.Source(), finding);
    }
    text += Counted(model.Graphs().size(), "graph") + ", " + Counted(model.CountNodes(), "node") + ": " +
            Counted(findings.errors, "error") + ", " + Counted(findings.warnings, "warning");
    return text + (findings.notes > 0 ? ", " + Counted(findings.notes, "note") : "") + "\n";
}

std::string RuleList() {
    std::string text;
    for (const Rule& rule : AllRules()) {
        std::string severity = NameOf(rule.severity);
        std::string name = rule.name;
        severity.resize(9, ' ');
        name.resize(27, ' ');
        text += severity + name + rule.reason + "\n";
    }
    return text;
}

}  // namespace check
