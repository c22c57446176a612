// Every word and sentence of the reports, once. Names are as the nodes have them: whoever shows a text makes
// it harmless.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "fleet/folding/outcome.h"

namespace fleet {

// What a node's line says: "point", "waits", "load", "nothing", "cannot tell", "no answer".
const char* VerdictOf(const Outcome& outcome, size_t node);

// What a node does that counts most; null: nothing.
const Role* MainRoleOf(const Outcome& outcome, size_t node);

// A delay of a node and what is usual for it, and how it stands beside its peers.
struct Standing {
    std::optional<Delay> delay;
    std::optional<Peers> peers;
};

// Of the node at a point, in the window of a role or of an incident.
Standing StandingOf(const Outcome& outcome, size_t node, const std::string& point, const Window& window);

// The same at the point at which hosts see its own role, or, without one, that of the incident that is told
// first.
Standing HostStandingOf(const Outcome& outcome, size_t node);

// A node's line, a cell a column. The times are the node's own; with `isOneDay` they have no date.
struct Row {
    std::string node, verdict, since, state, point, share, host, peers;
};
Row RowOf(const Outcome& outcome, size_t node, bool isOneDay);
constexpr const char* ROW_TITLES[] = {"node", "verdict", "since", "state", "point", "share", "host", "peers"};
constexpr const char* ROW_LEGEND =
    "host: delay at the point at which hosts enter, against its usual; peers: how many robust deviations "
    "that lies "
    "above the median of the nodes";

// Whether all that is told began on one day.
bool IsOneDay(const Outcome& outcome);

// "3 nodes answered, 1 of 4 did not".
std::string BasisOf(const Outcome& outcome);

// "2023-01-05 12:58:00 to 13:00:00, over; 4 nodes".
std::string TitleOf(const Incident& incident, const Outcome& outcome);

// What an incident is made of: who, in a word, and the sentence.
struct Line {
    const char* name;
    std::string sentence;
};
std::vector<Line> LinesOf(const Incident& incident, const Outcome& outcome);

// Which node, which point, since when, and what to collect next; or that nothing was found.
std::vector<std::string> ConclusionOf(const Outcome& outcome);

}  // namespace fleet
