#include <algorithm>
#include <vector>

#include "check/plant/proof_report.h"
#include "text/counted.h"
#include "text/layout.h"
#include "text/printable.h"

namespace check {
namespace {

using Cells = std::vector<std::string>;

std::string NameOrNothing(const std::string& name) {
    return name.empty() ? "nothing" : Printable(name);
}

std::string RightOf(const Answers& answers) {
    return std::to_string(answers.right) + "/" + std::to_string(answers.named.size());
}

std::string ToldOf(const Answers& answers, const std::string& point) {
    const std::string usual = answers.Usual(point);
    return usual == point ? "itself" : NameOrNothing(usual);
}

// Left-aligned columns, as wide as their cells.
std::string TableOf(const std::vector<Cells>& rows) {
    std::vector<size_t> widths(rows.front().size());
    for (const Cells& row : rows) {
        for (size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], CellsOf(row[i]));
        }
    }
    std::string text;
    for (const Cells& row : rows) {
        for (size_t i = 0; i + 1 < row.size(); ++i) {
            text += PadRight(row[i], widths[i] + 2);
        }
        text += row.back() + "\n";
    }
    return text;
}

std::string ReasonOf(const SiteProof& proof) {
    switch (*proof.blindness) {
        case Blindness::OBSERVATION:
            return "observation only, it counts no requests";
        case Blindness::CONSTANT:
            return "its statistics never change";
        case Blindness::SAME_STATISTICS:
            return "same statistics";
        case Blindness::FLAT_PARENT:
            return "hidden behind a flat parent, a point above it whose statistics never change";
        case Blindness::NOT_SEEN:
            return "hosts do not see it";
        case Blindness::UNKNOWN:
            return "no reason is known";
    }
    return "";
}

// What is not told from what, in the order of the sites; empty where there is nothing to list.
std::string Missed(const Proof& proof, const std::string& title, bool byBoth) {
    std::string text;
    for (const SiteProof& one : proof.sites) {
        if (!one.explanation.IsFound() && one.walk.IsFound() != byBoth) {
            text += "  " + Printable(one.site.point) + " (" + Printable(one.site.graph) + ") from " +
                    NameOrNothing(one.explanation.Usual(one.site.point)) + ": " + ReasonOf(one) + "\n";
        }
    }
    return text.empty() ? text : "\n" + title + "\n" + text;
}

}  // namespace

std::string ProofText(const Proof& proof) {
    std::vector<Cells> rows = {{"point", "graph", "right", "walk names", "right", "explanation names"}};
    for (const SiteProof& one : proof.sites) {
        const std::string& point = one.site.point;
        rows.push_back({Printable(point), Printable(one.site.graph), RightOf(one.walk),
                        ToldOf(one.walk, point), RightOf(one.explanation), ToldOf(one.explanation, point)});
    }
    const size_t observations = proof.sites.size() - proof.counting;
    return TableOf(rows) + Missed(proof, "Neither tells", true) +
           Missed(proof, "The walk tells, but not the explanation", false) + "\nof " +
           Counted(proof.counting, "point") + " the walk finds " + std::to_string(proof.walkFound) +
           ", the explanation " + std::to_string(proof.explanationFound) +
           (observations > 0 ? "; " + Counted(observations, "observation point") + " besides" : "") + "\n";
}

}  // namespace check
