#include <algorithm>
#include <set>

#include "explain/page/analysis_section.h"
#include "explain/page/errors_section.h"
#include "explain/page/figures.h"
#include "explain/page/healings_section.h"
#include "explain/page/overview_section.h"
#include "explain/report.h"
#include "explain/wording_errors.h"
#include "page/document.h"
#include "page/markup.h"

namespace explain {
using namespace page;
namespace {

std::string TitleOf(const Report& report) {
    std::set<std::string> points;
    bool isAnswered = false;
    bool isOngoing = false;
    for (const Analysis& analysis : report.analyses) {
        const bool isSlow = analysis.HasAnswer() && !analysis.isWeak;
        points.insert(analysis.point);
        isAnswered = isAnswered || isSlow;
        isOngoing = isOngoing || (isSlow && analysis.event->isOngoing);
    }
    if (points.empty() && !report.errors.empty()) {
        return report.errors.size() == 1 ? SubjectOf(report.errors.front())
                                         : Counted(report.errors.size(), "event") + " of errors";
    }
    if (points.empty()) {
        return NoneSlow(report);
    }
    const bool isOne = points.size() == 1;
    const std::string subject = isOne ? *points.begin() : std::to_string(points.size()) + " points";
    const std::string verb = isOne ? (isOngoing ? " is" : " was") : (isOngoing ? " are" : " were");
    return isAnswered ? "Why " + subject + verb + " slow" : (isOne ? "Was " : "Were ") + subject + " slow?";
}

// Whether a point has answers that the overview does not lead to: in several graphs, or without an event.
bool HasMore(const Report& report) {
    const std::vector<Analysis>& all = report.analyses;
    return all.size() > 1 && std::any_of(all.begin(), all.end(), [&](const Analysis& analysis) {
               const auto isElsewhere = [&](const Analysis& other) {
                   return other.point == analysis.point && other.graph != analysis.graph;
               };
               return !analysis.event || analysis.isWeak || std::any_of(all.begin(), all.end(), isElsewhere);
           });
}

Markup Summary(const Report& report) {
    if (!HasMore(report)) {
        return {};
    }
    Table table("One answer for each event and graph", {{"Event"}, {"Point"}, {"Graph"}, {"Answer"}});
    for (size_t i = 0; i < report.analyses.size(); ++i) {
        const Analysis& analysis = report.analyses[i];
        const std::string more = AlsoListed(report, i);
        table.Add({Element("a", {{"href", "#analysis" + std::to_string(i + 1)}},
                           Text(BriefTimeOf(analysis, report))),
                   Text(analysis.point), Text(analysis.graph),
                   Text(BriefOf(analysis, PAGE_FIGURES) + (more.empty() ? "" : "; " + more))});
    }
    for (size_t i = 0; i < report.errors.size(); ++i) {
        const ErrorAnalysis& one = report.errors[i];
        table.Add(
            {Element("a", {{"href", "#errors" + std::to_string(i + 1)}}, Text(BriefTimeOf(one, report))),
             Text(SubjectOf(one)), Text(one.Entry().graph), Text(BriefOf(one, PAGE_FIGURES))});
    }
    return Element("section", Element("h2", "Answers") + table.Done());
}

// No point was slow: how far each went.
Markup AllClear(const Report& report) {
    Table table("The points that were looked at", {{"Point"}, {"Farthest from the usual"}});
    for (const Look& look : report.looks) {
        table.Add({Text(look.point), Text(LargestOf(look, report, PAGE_FIGURES))});
    }
    return Element(
        "section", {{"class", report.coverage.IsPart() ? "weak" : "clear"}},
        Element("div", {{"class", "answer"}}, Element("p", {{"class", "verdict"}}, Text(NothingOf(report)))) +
            table.Done());
}

Markup ErrorSections(const Report& report) {
    Markup sections;
    for (size_t i = 0; i < report.errors.size(); ++i) {
        sections += ErrorSection(report.errors[i], report, i + 1);
    }
    return sections;
}

Markup Proof(const Report& report) {
    const Stamp& stamp = report.stamp;
    Markup facts;
    const auto add = [&](const char* name, const std::string& value) {
        facts +=
            Element("div", Element("dt", name) + Element("dd", value.empty() ? "could not be read" : value));
    };
    add("Command", stamp.command);
    add("SHA-256 of the configuration", stamp.configurationHash);
    add("SHA-256 of the database", stamp.databaseHash);
    add("Versions",
        "zorv-explain " + stamp.program + ", SQLite " + stamp.sqlite + ", JsonCpp " + stamp.jsoncpp);
    return Element("section", Element("h2", "Proof") +
                                  Element("p",
                                          "The same range, zone and files give the same answers again; "
                                          "other files have other hashes.") +
                                  Element("dl", {{"class", "stamp"}}, facts));
}

}  // namespace

std::string HtmlReport(const Report& report) {
    Markup body = OverviewSection(report);
    if (report.analyses.empty()) {
        body += ErrorSections(report) + AllClear(report);
    } else {
        body += Summary(report);
    }
    if (report.analyses.size() != 1) {  // a single answer has it behind its verdict
        body += Element("section", Element("h2", "Looked at") + FactList(BasisOf(report)));
    }
    for (size_t i = 0; i < report.analyses.size(); ++i) {
        body += AnalysisSection(report.analyses[i], report, i + 1);
    }
    body += report.analyses.empty() ? Markup() : ErrorSections(report);
    body += HealingsSection(report);
    if (const std::string chance = ChanceOf(report); !chance.empty()) {
        body += Element("section", Element("h2", "Chance") + Element("p", chance));
    }
    const Window& range = report.question.range;
    const std::string when = LocalTimes(range.start, range.end, report.zoneOffset);
    const Markup header = Element(
        "header",
        Element("h1", TitleOf(report)) +
            Element("p", {{"class", "quiet"}}, Text((report.node ? *report.node + ", " : "") + when)));
    return Document(TitleOf(report), header + Element("main", body + Proof(report)));
}

}  // namespace explain
