#include "explain/text/sections.h"

#include <algorithm>
#include <map>

#include "explain/wording.h"
#include "text/layout.h"
#include "text/printable.h"

namespace explain {
namespace {

constexpr size_t MOST_NAMES = 12;  // of the points with one reason

// What points have in common that lack the same.
struct Group {
    Reason reason;  // of the first point, with the smallest count of all
    size_t most = 0;
    std::vector<std::string> points;
};

void AddReason(const Reason& reason, const std::string& point, std::map<ReasonKind, Group>& groups) {
    Group& group = groups.try_emplace(reason.kind, Group{reason, reason.count, {}}).first->second;
    group.reason.count = std::min(group.reason.count, reason.count);
    group.most = std::max(group.most, reason.count);
    if (std::find(group.points.begin(), group.points.end(), point) == group.points.end()) {
        group.points.push_back(point);
    }
}

std::string Names(const std::vector<std::string>& points) {
    std::string names;
    for (size_t i = 0; i < std::min(points.size(), MOST_NAMES); ++i) {
        names += (i > 0 ? ", " : "") + Printable(points[i]);
    }
    return points.size() > MOST_NAMES ? names + " and " + std::to_string(points.size() - MOST_NAMES) + " more"
                                      : names;
}

}  // namespace

std::string ReasonsText(const Analysis& analysis) {
    std::map<ReasonKind, Group> groups;
    for (const NodeFinding& finding : analysis.findings) {
        for (const Reason& reason : finding.evidence.reasons) {
            AddReason(reason, finding.node.point, groups);
        }
    }
    std::string text = groups.empty() ? "" : "\nWhat could not be told\n";
    for (const auto& [kind, group] : groups) {
        text +=
            Paragraph("  ", SentenceOf(group.reason, group.most)) + Paragraph("    ", Names(group.points));
    }
    return text;
}

}  // namespace explain
