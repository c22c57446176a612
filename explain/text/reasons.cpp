#include "explain/text/reasons.h"

#include <algorithm>
#include <map>

#include "explain/text/layout.h"
#include "text/printable.h"

namespace explain {
namespace {

constexpr size_t MOST_NAMES = 12;  // of the points with one reason
constexpr const char* DIGITS = "0123456789";

// A reason's text before and behind its first number.
using Wording = std::pair<std::string, std::string>;

struct Group {
    std::vector<std::string> numbers;  // of all points; empty texts when there is none
    std::vector<std::string> points;
};

void AddReason(const std::string& reason, const std::string& point, std::map<Wording, Group>& groups) {
    const size_t begin = std::min(reason.find_first_of(DIGITS), reason.size());
    const size_t end = std::min(reason.find_first_not_of(DIGITS, begin), reason.size());
    Group& group = groups[{reason.substr(0, begin), reason.substr(end)}];
    group.numbers.push_back(reason.substr(begin, end - begin));
    if (std::find(group.points.begin(), group.points.end(), point) == group.points.end()) {
        group.points.push_back(point);
    }
}

std::string Numbers(const std::vector<std::string>& numbers) {
    const auto isLess = [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    };
    const auto [least, most] = std::minmax_element(numbers.begin(), numbers.end(), isLess);
    return *least == *most ? *least : *least + " to " + *most;
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
    std::map<Wording, Group> groups;
    for (const NodeFinding& finding : analysis.findings) {
        for (const std::string& reason : finding.evidence.reasons) {
            AddReason(reason, finding.node.point, groups);
        }
    }
    std::string text = groups.empty() ? "" : "\nWhat could not be told\n";
    for (const auto& [wording, group] : groups) {
        text += Paragraph("  ", wording.first + Numbers(group.numbers) + wording.second);
        text += Paragraph("    ", Names(group.points));
    }
    return text;
}

}  // namespace explain
