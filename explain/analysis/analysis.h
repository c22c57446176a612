// The analysis of one slow point in one graph: where its extra delay goes, and how sure that is.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "explain/analysis/evidence.h"
#include "explain/analysis/graph_world.h"

namespace explain {

// A node of the tree, with its part of the budget.
struct NodeFinding {
    GraphNode node;
    Evidence evidence;
    double share = 0.0;                 // own share of the extra delay, 0 to 1
    size_t parent = 0;                  // the node through which it is first reached; 0 at the top
    size_t commonIntervals = 0;         // with that node
    std::optional<double> correlation;  // over these; none at the top, or where it is undefined
};

// A point with a share. Nodes of one name count together.
struct Candidate {
    std::string point;
    std::string graph;  // of the node with the largest part of the share
    std::string advice;
    double share = 0.0;
    size_t node = 0;  // position of that node
};

enum class BaselinePart {
    WHOLE,
    FIRST_HALF,
    SECOND_HALF,
    FIRST_THIRD,
    MIDDLE_THIRD,
    LAST_THIRD,
    WITHOUT_LAST_HOUR
};

// Which point comes first when only a part of the baseline counts.
struct Trial {
    BaselinePart baseline = BaselinePart::WHOLE;
    std::optional<std::string> first;  // none where the part is too short to tell
};

enum class Verdict {
    POINT,       // the first candidate
    LOAD,        // the requests rose, and the delays with them
    NOTHING,     // there is no event, or it is not above the baseline
    CANNOT_TELL  // `reason` says why
};

struct Analysis {
    std::string point;
    std::string graph;
    Verdict verdict = Verdict::CANNOT_TELL;
    std::optional<Reason> reason;  // none for POINT and LOAD

    std::vector<Event> events;   // all runs of high samples, in the order of time
    std::optional<Event> event;  // the one that is explained
    GraphWorld world;  // the data, and the nodes in the order of their distance from the point; or empty
    std::vector<NodeFinding> findings;  // by node
    Flows flows;                        // between nodes, by position
    std::vector<Candidate> candidates;  // by share, the largest first
    std::vector<Trial> trials;          // six, for an answer
    std::optional<std::string> walk;    // the point that the plug-in's own walk names; none: no result

    // How many trials put the first candidate first.
    size_t Agreements() const;
};

// Explains the event at `at` or, without it, the latest one of the point in the range. Blocks on the
// database; throws as LoadGraphWorld() does.
Analysis Analyse(const std::string& point, const std::string& graph, const Range& range,
                 const std::optional<int64_t>& at);

// The three-sigma flags of all points that were loaded, each counted once, and how many of as many normal
// samples would be flagged by chance.
struct ChanceFlags {
    size_t samples = 0;
    size_t flagged = 0;
    double expected = 0.0;
};
ChanceFlags CountFlags(const std::vector<Analysis>& analyses);

}  // namespace explain
