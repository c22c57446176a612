// What a node's explanation says, as far as nodes are compared: no sentence of ours.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fleet {

// From the first to the last moment, both included, UTC.
struct Window {
    int64_t start = 0;
    int64_t end = 0;

    // Whether a moment is in both, when each goes on for `slack` seconds more.
    bool Meets(const Window& other, int64_t slack = 0) const {
        return start <= other.end + slack && other.start <= end + slack;
    }
};

// Of a point, the mean during something, and what is usual for it, in microseconds.
struct Delay {
    double now = 0.0;
    double usual = 0.0;
};

enum class Verdict { POINT, LOAD, NOTHING, CANNOT_TELL };

// In the order in which they count.
enum class Certainty { SURE, LIKELY, UNSURE };

struct Candidate {
    std::string point;
    std::string graph;
    std::string advice;
    double share = 0.0;  // of the extra delay
    std::optional<Delay> delay;
};

// One event of one point at which hosts enter, in one graph; or of errors of one type.
struct Finding {
    std::string point;  // or the type
    bool isErrors = false;
    std::string graph;
    std::string reason;  // why it cannot be told
    Verdict verdict = Verdict::NOTHING;
    Certainty certainty = Certainty::UNSURE;
    bool isWeak = false;  // within the usual, told because a time was named
    bool isOngoing = false;
    std::optional<Window> window;
    std::optional<Delay> delay;         // of the point
    std::vector<Candidate> candidates;  // the first ones, the largest share first
    // The shares of all candidates: of points that wait for other nodes, of the point itself, and the rest.
    double waiting = 0.0, itself = 0.0, below = 0.0;
    Candidate waitsAt;  // the largest of the waiting ones
    Candidate holdsAt;  // the largest of the rest

    bool IsAnswer() const { return !isWeak && (verdict == Verdict::POINT || verdict == Verdict::LOAD); }
};

// How zorv-explain ends; a node without a document has what went wrong.
enum AnswerStatus { ANSWERED = 0, NOTHING_FOUND = 1, NO_DATA = 3, CANNOT_TELL = 4 };

struct NodeAnswer {
    std::string name;      // by its manifest, else where it came from
    bool isNamed = false;  // by itself
    std::string failure;   // why there is no answer; empty when there is
    int status = NO_DATA;
    int64_t zoneOffset = 0;  // seconds east of UTC
    int64_t step = 0;        // seconds between two samples; 0: not known
    bool isPartial = false;  // of a part of the range there are no rows
    std::vector<Finding> findings;
    std::map<std::string, Delay> delays;  // by point, where nodes are to be compared
};

}  // namespace fleet
