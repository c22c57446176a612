#include "explain/report_json_values.h"
#include "explain/wording.h"

namespace explain {
namespace {

// Writes parts of one report; all its times are in the report's zone.
class DocumentWriter {
public:
    explicit DocumentWriter(const Report& toWrite) : report(toWrite) {}

    Json::Value Document() const {
        Json::Value document;
        document["version"] = 2;
        document["node"] = report.node ? JsonText(*report.node) : Json::Value();
        document["stamp"] = StampValue();
        document["range"] = WindowValue(report.question.range);
        document["range"]["zone"] = ZoneText(report.zoneOffset);
        document["coverage"] = CoverageValue();
        document["flags"]["samples"] = JsonCount(report.flags.samples);
        document["flags"]["flagged"] = JsonCount(report.flags.flagged);
        document["flags"]["expected"] = JsonNumber(report.flags.expected);
        document["looks"] = JsonList(report.looks, [this](const Look& one) { return LookValue(one); });
        document["analyses"] =
            JsonList(report.analyses, [this](const Analysis& one) { return AnalysisValue(one); });
        document["errors"] = ErrorsValue(report);
        document["healings"] = HealingsValue(report);
        return document;
    }

private:
    Json::Value Time(int64_t time) const { return JsonTime(time, report.zoneOffset); }

    Json::Value TimeOrNull(const std::optional<int64_t>& time) const {
        return time ? Time(*time) : Json::Value();
    }

    Json::Value WindowValue(const Window& window) const { return JsonWindow(window, report.zoneOffset); }

    Json::Value CoverageValue() const {
        const Coverage& coverage = report.coverage;
        Json::Value value;
        value["step_seconds"] = coverage.step > 0 ? JsonWhole(coverage.step) : Json::Value();
        value["intervals_expected"] = coverage.expected > 0 ? JsonCount(coverage.expected) : Json::Value();
        value["intervals"] = JsonCount(coverage.intervals);
        value["points"] = JsonCount(coverage.points);
        value["points_with_rows"] = JsonCount(coverage.pointsWithRows);
        value["oldest"] = TimeOrNull(coverage.oldest);
        value["newest"] = TimeOrNull(coverage.newest);
        value["partial"] = coverage.IsPart();
        return value;
    }

    // What was seen of a point before anything was explained.
    Json::Value LookValue(const Look& look) const {
        Json::Value value;
        value["point"] = JsonText(look.point);
        value["samples"] = JsonCount(look.samples);
        value["samples_in_events"] = JsonCount(look.samplesInEvents);
        value["flagged"] = JsonCount(look.flagged.size());
        value["usual_delay_us"] =
            look.finding.deviations.empty() ? Json::Value() : JsonNumber(look.finding.usual.median);
        value["highest"] = look.highest ? EventValue(*look.highest) : Json::Value();
        return value;
    }

    Json::Value StampValue() const {
        const Stamp& stamp = report.stamp;
        Json::Value value;
        value["program"] = stamp.program;
        value["sqlite"] = stamp.sqlite;
        value["jsoncpp"] = stamp.jsoncpp;
        value["configuration_sha256"] = JsonTextOrNull(stamp.configurationHash);
        value["database_sha256"] = JsonTextOrNull(stamp.databaseHash);
        value["command"] = JsonText(stamp.command);
        return value;
    }

    Json::Value EventValue(const Event& event) const {
        Json::Value value = WindowValue(event);
        value["peak"] = Time(event.peakTime);
        value["peak_delay_us"] = JsonNumber(event.peakDelay);
        value["peak_deviations"] = JsonNumber(event.peakDeviations);
        value["high_samples"] = JsonCount(event.count);
        value["ongoing"] = event.isOngoing;
        return value;
    }

    Json::Value NodeValue(const Analysis& analysis, size_t position) const {
        const NodeFinding& finding = analysis.findings[position];
        Json::Value value = EvidenceValue(finding.evidence);
        AddStanding(analysis, position, value);
        value["share"] = JsonNumber(finding.share);
        value["common_intervals"] = position > 0 ? JsonCount(finding.commonIntervals) : Json::Value();
        value["correlation"] = JsonNumber(finding.correlation);
        return value;
    }

    Json::Value EvidenceValue(const Evidence& evidence) const {
        Json::Value value;
        value["takes_part"] = evidence.takesPart;
        value["baseline_samples"] = JsonCount(evidence.baselineCount);
        value["event_samples"] = JsonCount(evidence.eventCount);
        value["baseline_delay_us"] = JsonNumber(evidence.baselineDelay);
        value["event_delay_us"] = JsonNumber(evidence.eventDelay);
        value["baseline_requests"] = JsonNumber(evidence.baselineRequests);
        value["event_requests"] = JsonNumber(evidence.eventRequests);
        value["excess_us"] = JsonNumber(evidence.excess);
        value["own_excess_us"] = JsonNumber(evidence.ownExcess);
        value["deviations"] = JsonNumber(evidence.deviations);
        value["onset"] = TimeOrNull(evidence.onset);
        value["load_correlation"] = JsonNumber(evidence.loadCorrelation);
        value["equal_load_ratio"] = JsonNumber(evidence.equalLoadRatio);
        value["nature"] = WordOf(evidence.nature);
        value["reasons"] =
            JsonList(evidence.reasons, [](const Reason& reason) { return JsonText(SentenceOf(reason)); });
        return value;
    }

    // What a node is, and how it hangs together with the others.
    static void AddStanding(const Analysis& analysis, size_t position, Json::Value& value) {
        const GraphNode& node = analysis.findings[position].node;
        const PointData& data = analysis.world->points.at(node.point);
        const auto next = analysis.world->handOvers.find(position);
        value["graph"] = JsonText(node.graph);
        value["id"] = node.id;
        value["point"] = JsonText(node.point);
        value["advice"] = JsonText(node.advice);
        value["children"] = JsonList(node.children, JsonCount);
        value["continues"] =
            next != analysis.world->handOvers.end() ? JsonCount(next->second) : Json::Value();
        value["parent"] = position > 0 ? JsonCount(analysis.findings[position].parent) : Json::Value();
        value["samples"] = JsonCount(data.samples.size());
        value["observation"] = data.isObservation;
        value["clock_jumped"] = data.hasGoneBack;
    }

    static Json::Value CandidateList(const Analysis& analysis) {
        Json::Value list(Json::arrayValue);
        for (const Candidate& candidate : analysis.candidates) {
            Json::Value value;
            value["rank"] = list.size() + 1;
            value["point"] = JsonText(candidate.point);
            value["graph"] = JsonText(candidate.graph);
            value["share"] = JsonNumber(candidate.share);
            value["advice"] = JsonText(candidate.advice);
            value["node"] = JsonCount(candidate.node);
            list.append(value);
        }
        return list;
    }

    // How sure the order of the candidates is; null where there is none.
    void AddCertainty(const Analysis& analysis, Json::Value& value) const {
        const std::vector<Candidate>& candidates = analysis.candidates;
        const bool isKnown = !candidates.empty();
        const double second = candidates.size() > 1 ? candidates[1].share : 0.0;
        value["margin"] = isKnown ? JsonNumber(candidates.front().share - second) : Json::Value();
        value["agreements"] = isKnown ? JsonCount(analysis.Agreements()) : Json::Value();
        value["trials"] = JsonList(analysis.trials, [](const Trial& trial) {
            Json::Value one;
            one["baseline"] = WordOf(trial.baseline);
            one["first"] = trial.first ? JsonText(*trial.first) : Json::Value();
            return one;
        });
        value["certainty"] = isKnown ? Json::Value(WordOf(analysis.certainty)) : Json::Value();
        value["walk"] = WalkValue(analysis);
    }

    Json::Value WalkValue(const Analysis& analysis) const {
        const bool hasPoint = analysis.walk && analysis.walk->point;
        Json::Value value;
        value["window"] = analysis.walk ? WindowValue(analysis.walk->window) : Json::Value();
        value["point"] = hasPoint ? JsonText(*analysis.walk->point) : Json::Value();
        value["agrees"] = hasPoint && analysis.verdict == Verdict::POINT
                              ? Json::Value(*analysis.walk->point == analysis.candidates.front().point)
                              : Json::Value();
        return value;
    }

    static Json::Value ModuleList(const Analysis& analysis) {
        return JsonList(analysis.modules, [](const ModuleShare& one) {
            Json::Value value;
            value["module"] = one.module.empty() ? Json::Value(BETWEEN_NODES) : JsonText(one.module);
            value["share"] = JsonNumber(one.share);
            return value;
        });
    }

    Json::Value AnalysisValue(const Analysis& analysis) const {
        Json::Value value;
        value["point"] = JsonText(analysis.point);
        value["graph"] = JsonText(analysis.graph);
        value["verdict"] = WordOf(analysis.verdict);
        value["weak"] = analysis.isWeak;
        value["ongoing"] = analysis.event ? Json::Value(analysis.event->isOngoing) : Json::Value();
        value["detector"] = JsonTextOrNull(SilenceOf(analysis));
        value["baseline"] = analysis.baseline ? WindowValue(*analysis.baseline) : Json::Value();
        value["reason"] = analysis.reason ? JsonText(SentenceOf(*analysis.reason)) : Json::Value();
        value["event"] = analysis.event ? EventValue(*analysis.event) : Json::Value();
        value["events"] = JsonList(analysis.events, [this](const Event& event) { return EventValue(event); });
        value["nodes"] = Json::Value(Json::arrayValue);
        for (size_t i = 0; i < analysis.findings.size(); ++i) {
            value["nodes"].append(NodeValue(analysis, i));
        }
        value["candidates"] = CandidateList(analysis);
        value["modules"] = ModuleList(analysis);
        AddCertainty(analysis, value);
        return value;
    }

    const Report& report;
};

}  // namespace

std::string JsonReport(const Report& report) {
    return JsonLine(DocumentWriter(report).Document()) + "\n";
}

}  // namespace explain
