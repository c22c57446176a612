// The scenarios: what is planted into a healthy world, as data.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/graphs/graph_table.h"

namespace lumosim {

constexpr double LOAD_SWING = 0.4;  // of the request rate, over a day

enum class FaultKind { DELAY, ERROR, LOAD };

// LATE faults happen at the same time, and when the options say; EARLY ones, at another, are decoys.
enum class FaultTime { LATE, EARLY };

// How a burst of a fault goes in time.
enum class FaultShape {
    HILL,   // it comes, peaks in the middle, goes
    LEVEL,  // as bad all the time
    RAMP,   // it grows, and stays for its second half
};

// When a fault happens. Shares are of the range.
struct FaultCourse {
    double from = 0.55, play = 0.3;  // it begins after this share of the range, and by chance so much later
    FaultShape shape = FaultShape::HILL;
    double share = 0;     // how long it lasts; 0: two minutes, and two samples at least
    int64_t seconds = 0;  // how long it lasts, one sample at least; 0: as the share says
    // A fault that comes and goes: how long a burst is, two samples at least, and from one to the next,
    // seconds; 0: it is one burst.
    int64_t burst = 0, period = 0;
    int64_t before = 0;  // seconds before the first fault at which it begins; 0: as the share says
};

// A fault at `point`, below where `graph` is entered (hand-overs included); empty: nobody waits for the
// point.
struct FaultRecipe {
    FaultKind kind;
    std::string_view graph;
    std::string_view point;
    // DELAY: the added delay at its worst, in multiples of the point's usual delay.
    // ERROR: the share of the point's requests that fail at the worst.
    // LOAD: the added requests at the worst, in multiples of the usual ones, of the point and all below it.
    double strength;
    int errorColumn = 0;         // ERROR: which of errCode0 to errCode4 counts
    std::string_view twin = {};  // a point whose statistics are always those of `point`; empty: none
    FaultTime when = FaultTime::LATE;
    FaultCourse course = {};
    // DELAY: how many times as slow as usual hosts see the fault at its worst, for which it and the other
    // LATE ones are made so much stronger; 0: as they are.
    double hostFactor = 0;
    double againstFirst =
        0;  // DELAY: what hosts see of it at its worst, against the first fault; 0: as it is
    // Whether a walk down the best-correlated points is sure to end at the point, but above an observation
    // point: those are never part of a walk.
    bool isWalked = true;
};

// A healing action, `offset` seconds after the fault began.
struct HealRecipe {
    int64_t offset;
    std::string_view module, cause, inferredCause;
    int node;
};

// How far delays stray from what is usual.
struct Variation {
    double own = 0.03;    // a point's own part, by chance
    double host = 0.07;   // the whole delay, by chance, at points that nobody waits for but hosts
    double swing = 0.05;  // of all delays, per doubling of the load, which the day brings
};

struct Scenario {
    std::string_view name;
    std::string_view summary;                           // one sentence
    std::vector<FaultRecipe> faults = {};               // the first one is what operators look for
    std::vector<GraphTable> graphs = {};                // on top of the usual ones
    std::vector<std::string_view> constantPoints = {};  // statistics that never change
    std::vector<HealRecipe> heals = {};
    int64_t minimumHours = 1;
    bool hasGaps = false;    // an hour, some intervals and single rows are missing
    double usualErrors = 1;  // how often points count errors that mean nothing, against an ordinary day
    Variation variation = {};
    // Points, each with one that always has its statistics.
    std::vector<std::pair<std::string_view, std::string_view>> twins = {};
};

const std::vector<Scenario>& Scenarios();

// The scenario named `name`; null when there is none.
const Scenario* FindScenario(std::string_view name);

}  // namespace lumosim
