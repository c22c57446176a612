#include "explain/report.h"

namespace explain {
std::string TextReport(const Report& report) {
    std::string text;
    for (const Analysis& a : report.analyses) {
        text += a.point + " " + a.graph + " verdict " + std::to_string(static_cast<int>(a.verdict)) + " " +
                a.reason + "\n";
        for (const Candidate& c : a.candidates) {
            text += "  " + std::to_string(c.share) + " " + c.point + " " + c.graph + "\n";
        }
        for (const Trial& t : a.trials) {
            text += "  trial " + t.baseline + ": " + t.first.value_or("-") + "\n";
        }
        text += "  walk " + a.walk.value_or("-") + "\n";
    }
    return text;
}
std::string JsonReport(const Report& report) {
    return TextReport(report);
}
std::string HtmlReport(const Report& report) {
    return TextReport(report);
}
}  // namespace explain
