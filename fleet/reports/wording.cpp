#include "fleet/reports/wording.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

#include "text/counted.h"
#include "text/local_time.h"

namespace fleet {
namespace {

constexpr size_t MOST_NAMES = 12;  // of nodes in a sentence
constexpr size_t DATE = 10;        // letters of a date

const char* const UNTOLD = "cannot tell";

std::string Fixed(double value, int decimals) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string Percent(double share) {
    return Fixed(share * 100, 0) + " %";
}

std::string Signed(double deviations) {
    return (deviations >= 0 ? "+" : "") + Fixed(deviations, 1);
}

const char* WordOf(Certainty certainty) {
    static constexpr const char* WORDS[] = {"sure", "likely", "unsure"};
    return WORDS[static_cast<size_t>(certainty)];
}

std::string NamesOf(const Outcome& outcome, const std::vector<size_t>& nodes) {
    std::string names;
    for (size_t i = 0; i < std::min(nodes.size(), MOST_NAMES); ++i) {
        names += (i > 0 ? ", " : "") + outcome.nodes[nodes[i]].name;
    }
    return nodes.size() > MOST_NAMES ? names + " and " + Counted(nodes.size() - MOST_NAMES, "other") : names;
}

// Without the day where it is that of `start`.
std::string EndOf(const Window& window, int64_t zoneOffset) {
    const std::string start = LocalTime(window.start, zoneOffset);
    const std::string end = LocalTime(window.end, zoneOffset);
    return start.compare(0, DATE, end, 0, DATE) == 0 ? end.substr(std::min(end.size(), DATE + 1)) : end;
}

std::string SinceOf(const Window& window, bool isOngoing, int64_t zoneOffset) {
    return "since " + LocalTime(window.start, zoneOffset) +
           (isOngoing ? ", still going on" : ", over since " + EndOf(window, zoneOffset));
}

const Role& FirstOf(const Incident& incident) {
    return incident.causes.empty() ? incident.symptoms.front() : incident.causes.front();
}

int64_t ZoneOf(const Incident& incident, const Outcome& outcome) {
    return outcome.nodes[FirstOf(incident).node].zoneOffset;
}

std::string CauseOf(const Role& role, const Outcome& outcome) {
    std::string text = outcome.nodes[role.node].name + ": ";
    if (role.kind == RoleKind::UNEXPLAINED) {
        text += role.at.point + " itself, no point below it says why";
    } else {
        text += role.at.point + ", " + Percent(role.at.share) +
                (role.isErrors ? " of the extra errors of type " : " of the extra delay at ") +
                role.hostPoint + ", " + WordOf(role.certainty);
    }
    text += role.extra > 0 ? ", " + Fixed(role.extra, 0) + " us a request" : "";
    text += "; " + SinceOf(role.window, role.isOngoing, outcome.nodes[role.node].zoneOffset);
    const Standing standing = StandingOf(outcome, role.node, role.at.point, role.window);
    if (standing.peers) {
        text += "; " + Fixed(standing.delay->now, 0) + " us there against " +
                Fixed(standing.peers->median, 0) + " us of its peers (" + Signed(standing.peers->deviations) +
                " deviations)";
    }
    return text;
}

// Symptoms by the point at which they wait.
std::vector<Line> SymptomLines(const Incident& incident, const Outcome& outcome) {
    std::map<std::string, std::vector<size_t>> waiting;
    std::map<std::string, std::vector<size_t>> unexplained;
    for (const Role& role : incident.symptoms) {
        (role.kind == RoleKind::WAITS ? waiting : unexplained)[role.at.point].push_back(role.node);
    }
    std::vector<Line> lines;
    lines.reserve(waiting.size() + unexplained.size());
    for (const auto& [point, nodes] : waiting) {
        lines.push_back({"waits", NamesOf(outcome, nodes) + ": " + point});
    }
    for (const auto& [point, nodes] : unexplained) {
        lines.push_back(
            {"slow", NamesOf(outcome, nodes) + ": " + point + " itself, no point below it says why"});
    }
    return lines;
}

const char* const NO_CAUSE = "waits for other nodes; none of those given is slow itself";

std::string SharedOf(const Incident& incident, const Outcome& outcome) {
    return std::to_string(incident.atOnce) + " of " + Counted(outcome.fold.answered, "node") +
           " at once, none ahead of the others: look at what they share";
}

std::vector<std::string> SentencesOf(const Incident& incident, const Outcome& outcome) {
    const Role& first = FirstOf(incident);
    const std::string node = outcome.nodes[first.node].name;
    const std::string since = SinceOf(first.window, first.isOngoing, outcome.nodes[first.node].zoneOffset);
    if (incident.atOnce > 0) {
        return {SharedOf(incident, outcome) + ", " + since + "."};
    }
    if (incident.causes.empty()) {
        return {NamesOf(outcome, {first.node}) + (incident.symptoms.size() > 1 ? " and others: " : ": ") +
                NO_CAUSE + ", " + since +
                ". Collect what is missing: the other nodes of the cluster, and the network."};
    }
    const std::string sure = first.kind == RoleKind::UNEXPLAINED    ? ", and no point below it says why"
                             : first.kind == RoleKind::UNSURE_CAUSE ? ", which is unsure"
                                                                    : "";
    const size_t others = incident.symptoms.size();
    std::vector<std::string> sentences = {
        node + (first.isErrors ? " has errors at " : " is slow at ") + first.at.point + " " + since + sure +
        (others > 0 ? "; with it " + Counted(others, "node") + " that " + (others > 1 ? "wait" : "waits")
                    : "") +
        "."};
    sentences.push_back(
        "The statistics hold one row per point, not per device: to tell which device, collect from " + node +
        " the health data and latencies of those behind " + first.at.point + "." +
        (first.at.advice.empty() ? "" : " What to do: " + first.at.advice + "."));
    return sentences;
}

}  // namespace

const Role* MainRoleOf(const Outcome& outcome, size_t node) {
    const std::vector<Role>& roles = outcome.fold.roles[node];
    return roles.empty() ? nullptr : &roles.front();
}

const char* VerdictOf(const Outcome& outcome, size_t node) {
    const NodeAnswer& answer = outcome.nodes[node];
    if (const Role* const role = MainRoleOf(outcome, node)) {
        return role->IsCause() ? "point" : role->kind == RoleKind::WAITS ? "waits" : "load";
    }
    return !answer.failure.empty() ? "no answer" : answer.status == CANNOT_TELL ? UNTOLD : "nothing";
}

Standing StandingOf(const Outcome& outcome, size_t node, const std::string& point, const Window& window) {
    Standing standing;
    const Comparison* const comparison = ComparisonOf(outcome.comparisons, window);
    if (comparison == nullptr) {
        return standing;
    }
    standing.peers = PeersOf(*comparison, point, node);
    const auto delays = comparison->delays.find(point);
    if (delays != comparison->delays.end() && delays->second.count(node) > 0) {
        standing.delay = delays->second.at(node);
    }
    return standing;
}

Standing HostStandingOf(const Outcome& outcome, size_t node) {
    const Role* const role = MainRoleOf(outcome, node);
    if (role == nullptr && outcome.fold.incidents.empty()) {
        return {};
    }
    const Role& told = role != nullptr ? *role : FirstOf(outcome.fold.incidents.front());
    Standing standing = StandingOf(outcome, node, told.hostPoint, told.window);
    if (role != nullptr) {
        standing.delay = role->delay;  // of its own event, where there is one
    }
    return standing;
}

Row RowOf(const Outcome& outcome, size_t node, bool isOneDay) {
    Row row;
    row.node = outcome.nodes[node].name;
    row.verdict = VerdictOf(outcome, node);
    if (const Role* const role = MainRoleOf(outcome, node)) {
        const std::string since = LocalTime(role->window.start, outcome.nodes[node].zoneOffset);
        row.since = isOneDay ? since.substr(DATE + 1) : since.substr(0, since.size() - 3).substr(5);
        row.state = role->isOngoing ? "on" : "over";
        row.point = role->kind == RoleKind::LOAD ? role->hostPoint : role->at.point;
        row.share = role->kind == RoleKind::LOAD ? "" : Percent(role->at.share);
    }
    const Standing standing = HostStandingOf(outcome, node);
    if (standing.delay && standing.delay->usual > 0) {
        row.host = "x" + Fixed(standing.delay->now / standing.delay->usual, 1);
    }
    row.peers = standing.peers ? Signed(standing.peers->deviations) : "";
    return row;
}

bool IsOneDay(const Outcome& outcome) {
    std::set<std::string> days;
    for (size_t node = 0; node < outcome.nodes.size(); ++node) {
        if (const Role* const role = MainRoleOf(outcome, node)) {
            days.insert(LocalTime(role->window.start, outcome.nodes[node].zoneOffset).substr(0, DATE));
        }
    }
    return days.size() <= 1;
}

std::string BasisOf(const Outcome& outcome) {
    const size_t silent = outcome.nodes.size() - outcome.fold.answered;
    return Counted(outcome.fold.answered, "node") + " answered" +
           (silent > 0
                ? ", " + std::to_string(silent) + " of " + std::to_string(outcome.nodes.size()) + " did not"
                : "");
}

std::string TitleOf(const Incident& incident, const Outcome& outcome) {
    const int64_t zone = ZoneOf(incident, outcome);
    return LocalTime(incident.window.start, zone) + " to " + EndOf(incident.window, zone) +
           (incident.isOngoing ? ", still going on; " : ", over; ") + Counted(incident.NodeCount(), "node");
}

std::vector<Line> LinesOf(const Incident& incident, const Outcome& outcome) {
    std::vector<Line> lines;
    if (incident.atOnce > 0) {
        lines.push_back({"all", SharedOf(incident, outcome)});
    }
    for (size_t i = 0; i < std::min(incident.causes.size(), MOST_NAMES); ++i) {
        lines.push_back({"cause", CauseOf(incident.causes[i], outcome)});
    }
    if (incident.causes.size() > MOST_NAMES) {
        lines.push_back({"", "and " + Counted(incident.causes.size() - MOST_NAMES, "cause") + " with less"});
    }
    if (incident.causes.empty()) {
        lines.push_back({"cause", NO_CAUSE});
    }
    const std::vector<Line> symptoms = SymptomLines(incident, outcome);
    lines.insert(lines.end(), symptoms.begin(), symptoms.end());
    if (!incident.loaded.empty()) {
        lines.push_back({"load", NamesOf(outcome, incident.loaded) + " under load at the time"});
    }
    return lines;
}

std::vector<std::string> ConclusionOf(const Outcome& outcome) {
    std::vector<std::string> sentences;
    if (!outcome.fold.incidents.empty()) {
        sentences = SentencesOf(outcome.fold.incidents.front(), outcome);
        const size_t others = outcome.fold.incidents.size() - 1;
        if (others > 0) {
            sentences.push_back("There " + std::string(others > 1 ? "are " : "is ") +
                                Counted(others, "other incident") + ".");
        }
    } else if (outcome.fold.answered > 0) {
        sentences.emplace_back(
            "No node was slow by itself, and none waited for another, in what was looked at.");
    }
    const size_t silent = outcome.nodes.size() - outcome.fold.answered;
    if (silent > 0) {
        sentences.push_back("Of " + Counted(silent, "node") + " there is no answer: the cause may be there.");
    }
    size_t untold = 0;
    for (size_t node = 0; node < outcome.nodes.size(); ++node) {
        untold += VerdictOf(outcome, node) == UNTOLD ? size_t{1} : 0;
    }
    if (untold > 0) {
        sentences.push_back("Of " + Counted(untold, "node") + " it cannot be told: the cause may be there.");
    }
    return sentences;
}

}  // namespace fleet
