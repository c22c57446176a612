#include <json/writer.h>

#include "check/report.h"
#include "check/rules/rule.h"
#include "text/utf8.h"

namespace check {
namespace {

Json::Value TextOrNull(const std::string& text) {
    return text.empty() ? Json::Value() : Json::Value(ValidUtf8(text));
}

Json::Value FindingValue(const Document& document, const Finding& finding) {
    const Place place = document.Source().PlaceOf(finding.at);
    Json::Value value(Json::objectValue);
    value["line"] = static_cast<Json::UInt64>(place.line);
    value["column"] = static_cast<Json::UInt64>(place.column);
    value["severity"] = NameOf(finding.rule->severity);
    value["rule"] = finding.rule->name;
    value["graph"] = TextOrNull(finding.graph);
    value["text"] = ValidUtf8(finding.text);
    return value;
}

}  // namespace

std::string JsonReport(const std::string& file, const Model& model, const Findings& findings) {
    Json::Value report(Json::objectValue);
    report["version"] = 1;
    report["file"] = ValidUtf8(file);
    report["graphs"] = static_cast<Json::UInt64>(model.Graphs().size());
    report["nodes"] = static_cast<Json::UInt64>(model.CountNodes());
    report["errors"] = static_cast<Json::UInt64>(findings.errors);
    report["warnings"] = static_cast<Json::UInt64>(findings.warnings);
    report["notes"] = static_cast<Json::UInt64>(findings.notes);
    report["findings"] = Json::Value(Json::arrayValue);
    for (const Finding& finding : findings.told) {
        report["findings"].append(FindingValue(model.Source(), finding));
    }
    report["omitted"] = Json::Value(Json::arrayValue);
    for (const Omission& omission : findings.omitted) {
        Json::Value value(Json::objectValue);
        value["rule"] = omission.first.rule->name;
        value["graph"] = TextOrNull(omission.first.graph);
        value["count"] = static_cast<Json::UInt64>(omission.count);
        report["omitted"].append(std::move(value));
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, report) + "\n";
}

}  // namespace check
