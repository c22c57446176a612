#include <set>

#include "explain/page/analysis_section.h"
#include "explain/page/figures.h"
#include "explain/page/markup.h"
#include "explain/page/style.h"
#include "explain/report.h"
#include "explain/wording.h"

namespace explain {
namespace {

std::string RangeInWords(const Report& report) {
    return LocalTimes(report.question.range.start, report.question.range.end, report.zoneOffset) + " (UTC" +
           ZoneText(report.zoneOffset) + ")";
}

std::string TitleOf(const Report& report) {
    std::set<std::string> points;
    bool isAnswered = false;
    for (const Analysis& analysis : report.analyses) {
        points.insert(analysis.point);
        isAnswered = isAnswered || IsAnswer(analysis);
    }
    if (points.empty()) {
        return "No point was slow";
    }
    const bool isOne = points.size() == 1;
    const std::string subject = isOne ? *points.begin() : std::to_string(points.size()) + " points";
    return isAnswered ? "Why " + subject + (isOne ? " was slow" : " were slow")
                      : (isOne ? "Was " : "Were ") + subject + " slow?";
}

// Whatever the page holds, a browser is to run and to load nothing.
Markup Head(const Report& report) {
    return Element(
        "head",
        Element("meta", Attributes{{"charset", "utf-8"}}) +
            Element("meta", Attributes{{"http-equiv", "Content-Security-Policy"},
                                       {"content", "default-src 'none'; style-src 'unsafe-inline'"}}) +
            Element("meta",
                    Attributes{{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}}) +
            Element("title", TitleOf(report)) + Element("style", Markup::Literal(PAGE_STYLE)));
}

Markup Summary(const Report& report) {
    if (report.analyses.size() < 2) {
        return {};
    }
    Table table("One answer for each graph", {{"Point"}, {"Graph"}, {"Answer"}});
    for (size_t i = 0; i < report.analyses.size(); ++i) {
        const Analysis& analysis = report.analyses[i];
        table.Add({Element("a", {{"href", "#analysis" + std::to_string(i + 1)}}, Text(analysis.point)),
                   Text(analysis.graph), Text(AnswerOf(analysis, PercentFigure))});
    }
    return Element("section", Element("h2", "Answers") + table.Done());
}

Markup Chance(const ChanceFlags& flags) {
    return Element("section",
                   Element("h2", "Flags found, and expected by chance") + Element("p", ChanceOf(flags)));
}

Markup Proof(const Report& report) {
    const Stamp& stamp = report.stamp;
    Markup facts;
    const auto add = [&](const char* name, const std::string& value) {
        facts +=
            Element("div", Element("dt", name) + Element("dd", value.empty() ? "could not be read" : value));
    };
    add("Command", stamp.command);
    add("Range", RangeInWords(report));
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
    Markup body = Summary(report);
    for (size_t i = 0; i < report.analyses.size(); ++i) {
        body += AnalysisSection(report.analyses[i], report, i + 1);
    }
    if (report.analyses.empty()) {
        body = Element("section", Element("h2", "Nothing anomalous") + Element("p", NothingOf(report)));
    }
    body += Chance(report.flags) + Proof(report);
    const Markup header =
        Element("header", Element("h1", TitleOf(report)) +
                              Element("p", {{"class", "quiet"}}, Text(RangeInWords(report))));
    const Markup page = Head(report) + Element("body", header + Element("main", body));
    return "<!DOCTYPE html>\n" + Element("html", {{"lang", "en"}}, page).Html() + "\n";
}

}  // namespace explain
