// The analysis of one event of a point in one graph: where its extra delay goes, and how sure that is.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "explain/analysis/evidence.h"
#include "explain/analysis/graph_world.h"
#include "explain/analysis/modules.h"
#include "explain/finding/look.h"

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
    NOTHING,     // there is no event
    CANNOT_TELL  // `reason` says why
};

// How sure the first candidate is.
enum class Certainty { SURE, LIKELY, UNSURE };

// By the shares of the first two candidates.
Certainty CertaintyOfShares(double first, double second);

// Which event of a point was asked for: all of the range, or one.
struct Question {
    Window range;
    std::optional<int64_t> at;       // the event at this time
    std::optional<Window> during;    // exactly this window
    std::optional<Window> baseline;  // what tells what is usual, instead of what was before
};

// The part of the plug-in's own walk.
struct Walk {
    Window window;                     // what it looked at
    std::optional<std::string> point;  // that it names; none: no result
};

struct Analysis {
    std::string point;
    std::string graph;
    Verdict verdict = Verdict::CANNOT_TELL;
    std::optional<Reason> reason;  // none for POINT and LOAD

    std::vector<Event> events;        // all of the point in the range, in the order of time
    std::optional<Event> event;       // the one that is explained
    Silence silence = Silence::NONE;  // of the detector on it
    double eventsFill = 0.0;          // share of the range's samples that lie in events
    bool isWeak = false;              // what is explained is within what is usual

    std::shared_ptr<const GraphWorld>
        world;                          // the data, and the nodes by their distance from the point; or null
    std::optional<Window> baseline;     // from its first sample to its last one
    std::vector<NodeFinding> findings;  // by node
    Flows flows;                        // between nodes, by position
    std::vector<Candidate> candidates;  // by share, the largest first
    std::vector<ModuleShare> modules;   // likewise
    Certainty certainty = Certainty::UNSURE;  // of an answer
    std::vector<Trial> trials;                // six, for an answer that was cross-checked
    std::optional<Walk> walk;                 // likewise

    bool HasAnswer() const { return verdict == Verdict::POINT || verdict == Verdict::LOAD; }
    // Whether the slow point itself comes first of an answer: there is no cause to be sure of.
    bool NamesItself() const { return candidates.front().point == point; }
    // Whether what it names itself for may be the part of a graph that could not be read.
    bool MayBeElsewhere() const { return NamesItself() && !world->unread.empty(); }
    // Whether a point right below the first candidate, which else has rows, lacks most of the event's.
    bool MayBeBelow() const;
    // How many trials put the first candidate first.
    size_t Agreements() const;
};

// The events of a point that are to be explained, the most urgent first: at most MOST_EVENTS of the range, or
// the one that was asked for. `samples` is what was looked at. None when there is none, or no sample.
std::vector<Event> EventsToExplain(const Question& question, const Look& look, const Samples& samples);
constexpr size_t MOST_EVENTS = 8;

// How sure an analysis is of its first candidate; it has an event, a baseline, evidence and candidates.
Certainty CertaintyOfFirst(const Analysis& analysis);

// Explains an event of the point at the top of the world, which stands in `graph`.
Analysis Explain(const Question& question, const Look& look, const std::string& graph,
                 const std::shared_ptr<const GraphWorld>& world, const Event& event);

// Adds to an answer of Explain() what others say: the trials, and the plug-in's own walk. That takes longer
// than the answer. Blocks on the database, for the walk.
void CrossCheck(const Question& question, const Look& look, Analysis& analysis);

// The three-sigma flags of all points in a range, and how many of as many normal samples would be flagged by
// chance.
struct ChanceFlags {
    size_t samples = 0;
    size_t flagged = 0;
    double expected = 0.0;
};
ChanceFlags CountFlags(const std::map<std::string, PointData>& points, const Window& range);

}  // namespace explain
