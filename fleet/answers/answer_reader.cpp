#include "fleet/answers/answer_reader.h"

#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "text/point_names.h"
#include "text/zone.h"

namespace fleet {
namespace {

constexpr int VERSION = 2;
constexpr size_t MOST_CANDIDATES = 3;        // that are kept
constexpr size_t MOST_EVENTS = 10000;        // of a node in one answer
constexpr double MOST_DELAY = 1e15;          // microseconds; with more, sums would be no numbers
constexpr double MOST_SHARE = 1.000001;      // as the answers have it
constexpr int64_t LAST_TIME = 253402300799;  // of the year 9999

// All that is read, in the order of the alphabet.
const std::vector<std::string_view>& Names() {
    static const std::vector<std::string_view> names = {"advice",       "analyses",       "baseline_delay_us",
                                                        "candidates",   "certainty",      "coverage",
                                                        "end",          "epoch",          "errors",
                                                        "event",        "event_delay_us", "graph",
                                                        "intervals",    "name",           "node",
                                                        "nodes",        "ongoing",        "partial",
                                                        "point",        "points",         "range",
                                                        "reason",       "share",          "start",
                                                        "step_seconds", "type",           "verdict",
                                                        "version",      "weak",           "zone"};
    return names;
}

template <typename Word, size_t COUNT>
Word FromWord(const Json::Value& value, const std::array<std::pair<const char*, Word>, COUNT>& words,
              Word other) {
    const std::string text = value.isString() ? value.asString() : "";
    const auto found =
        std::find_if(words.begin(), words.end(), [&](const auto& one) { return text == one.first; });
    return found != words.end() ? found->second : other;
}

constexpr std::array<std::pair<const char*, Verdict>, 3> VERDICTS = {
    {{"point", Verdict::POINT}, {"load", Verdict::LOAD}, {"nothing", Verdict::NOTHING}}};
constexpr std::array<std::pair<const char*, Certainty>, 2> CERTAINTIES = {
    {{"sure", Certainty::SURE}, {"likely", Certainty::LIKELY}}};

std::string TextOf(const Json::Value& value) {
    return value.isString() ? value.asString() : std::string();
}

// Its distance to the ends of the numbers leaves room to count.
int64_t TimeOf(const Json::Value& time) {
    if (!time["epoch"].isInt64()) {
        throw AnswerError("a time is none");
    }
    const int64_t epoch = time["epoch"].asInt64();
    if (epoch < 0 || epoch > LAST_TIME) {
        throw AnswerError("a time lies outside of the years 1970 to 9999");
    }
    return epoch;
}

int64_t ZoneOf(const std::string& zone) {
    const std::optional<int64_t> offset = OffsetOf(zone);
    if (!offset) {
        throw AnswerError("the zone of the range is none");
    }
    return *offset;
}

double NumberOf(const Json::Value& value, double least, double most) {
    const double number = value.asDouble();
    if (!(number >= least && number <= most)) {
        throw AnswerError("a delay or a share lies beyond all that there are");
    }
    return number;
}

std::optional<Delay> DelayOf(const Json::Value& nodes, const Json::Value& position) {
    if (!position.isUInt() || position.asUInt() >= nodes.size()) {
        return std::nullopt;
    }
    const Json::Value& node = nodes[position.asUInt()];
    const Json::Value& now = node["event_delay_us"];
    const Json::Value& usual = node["baseline_delay_us"];
    return now.isNumeric() && usual.isNumeric()
               ? std::optional<Delay>(
                     {NumberOf(now, -MOST_DELAY, MOST_DELAY), NumberOf(usual, -MOST_DELAY, MOST_DELAY)})
               : std::nullopt;
}

void TakeCandidate(const Json::Value& value, const Json::Value& nodes, Finding& finding) {
    const Candidate candidate = {TextOf(value["point"]), TextOf(value["graph"]), TextOf(value["advice"]),
                                 NumberOf(value["share"], 0.0, MOST_SHARE), DelayOf(nodes, value["node"])};
    if (WaitsForNodes(candidate.point)) {
        finding.waiting += candidate.share;
        if (candidate.share > finding.waitsAt.share) {
            finding.waitsAt = candidate;
        }
    } else {
        const bool isItself = candidate.point == finding.point;
        (isItself ? finding.itself : finding.below) += candidate.share;
        if (!isItself && candidate.share > finding.holdsAt.share) {
            finding.holdsAt = candidate;
        }
    }
    if (finding.candidates.size() < MOST_CANDIDATES) {
        finding.candidates.push_back(candidate);
    }
}

void TakeEvent(const Json::Value& event, Finding& finding) {
    if (event.isObject()) {
        finding.window = {TimeOf(event["start"]), TimeOf(event["end"])};
        if (finding.window->end < finding.window->start) {
            throw AnswerError("an event ends before it begins");
        }
    }
}

// Errors are evidence of their own: those of what is below explain those above, as with delays.
Finding ErrorFindingOf(const Json::Value& value) {
    Finding finding;
    finding.isErrors = true;
    finding.point = TextOf(value["type"]["name"]);
    finding.verdict = Verdict::POINT;
    finding.certainty = FromWord(value["certainty"], CERTAINTIES, Certainty::UNSURE);
    finding.isOngoing = value["event"]["ongoing"].asBool();
    TakeEvent(value["event"], finding);
    for (const Json::Value& point : value["points"]) {
        TakeCandidate(point, {}, finding);
    }
    return finding;
}

Finding FindingOf(const Json::Value& value) {
    Finding finding;
    finding.point = TextOf(value["point"]);
    finding.graph = TextOf(value["graph"]);
    finding.reason = TextOf(value["reason"]);
    finding.verdict = FromWord(value["verdict"], VERDICTS, Verdict::CANNOT_TELL);
    finding.certainty = FromWord(value["certainty"], CERTAINTIES, Certainty::UNSURE);
    finding.isWeak = value["weak"].asBool();
    finding.isOngoing = value["ongoing"].isBool() && value["ongoing"].asBool();
    TakeEvent(value["event"], finding);
    finding.delay = DelayOf(value["nodes"], Json::Value(0U));
    for (const Json::Value& candidate : value["candidates"]) {
        TakeCandidate(candidate, value["nodes"], finding);
    }
    return finding;
}

// Of the points that are compared.
void TakeDelays(const Json::Value& analysis, const std::set<std::string>& points, NodeAnswer& answer) {
    const Json::Value& nodes = analysis["nodes"];
    for (Json::ArrayIndex i = 0; i < nodes.size(); ++i) {
        const std::string point = TextOf(nodes[i]["point"]);
        const std::optional<Delay> delay = DelayOf(nodes, i);
        if (delay && (i == 0 || points.count(point) > 0)) {
            answer.delays.emplace(point, *delay);
        }
    }
}

int StatusOf(const NodeAnswer& answer) {
    const auto has = [&](const auto& condition) {
        return std::any_of(answer.findings.begin(), answer.findings.end(), condition);
    };
    if (has([](const Finding& finding) { return finding.IsAnswer(); })) {
        return ANSWERED;
    }
    const bool cannotTell =
        has([](const Finding& finding) { return finding.verdict == Verdict::CANNOT_TELL; });
    return cannotTell || answer.isPartial ? CANNOT_TELL : NOTHING_FOUND;
}

NodeAnswer AnswerOf(const Json::Value& document, const std::set<std::string>* points) {
    if (!document.isObject() || document["version"] != VERSION || !document["analyses"].isArray()) {
        throw AnswerError("it is no answer of zorv-explain --json of version " + std::to_string(VERSION));
    }
    if (document["analyses"].size() > MOST_EVENTS) {
        throw AnswerError("it has more than " + std::to_string(MOST_EVENTS) + " analyses");
    }
    NodeAnswer answer;
    answer.name = TextOf(document["node"]);
    answer.isNamed = !answer.name.empty();
    answer.zoneOffset = ZoneOf(TextOf(document["range"]["zone"]));
    const Json::Value& coverage = document["coverage"];
    answer.step =
        coverage["step_seconds"].isInt() ? std::clamp(coverage["step_seconds"].asInt(), 0, 3600) : 0;
    answer.isPartial = coverage["partial"].asBool();
    for (const Json::Value& analysis : document["analyses"]) {
        answer.findings.push_back(FindingOf(analysis));
        if (points != nullptr) {
            TakeDelays(analysis, *points, answer);
        }
    }
    for (const Json::Value& analysis : document["errors"]["analyses"]) {
        answer.findings.push_back(ErrorFindingOf(analysis));
    }
    answer.status = StatusOf(answer);
    return answer;
}

}  // namespace

NodeAnswer ReadAnswer(std::string_view json, const std::set<std::string>* points) {
    if (json.size() >= MOST_ANSWER_BYTES) {
        throw AnswerError("it is longer than any answer of zorv-explain");
    }
    const std::string kept = KeptMembers(json, Names());
    Json::CharReaderBuilder builder;
    builder["collectComments"] = false;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value document;
    std::string errors;
    try {
        if (!reader->parse(kept.data(), kept.data() + kept.size(), &document, &errors)) {
            throw AnswerError("it is no JSON");
        }
        return AnswerOf(document, points);
    } catch (const Json::Exception& error) {
        throw AnswerError(std::string("it is no answer of zorv-explain: ") + error.what());
    }
}

}  // namespace fleet
