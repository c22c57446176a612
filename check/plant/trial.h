// One world with a fault, and what is said about it.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "check/graph/model.h"

namespace check {

// What an analysis that begins in one graph comes to.
struct Verdicts {
    std::string walk;         // the last point that the plug-in's walk names; empty: none
    std::string explanation;  // the first point of the explanation; empty: none
    // By point, what its rows say to the explanation: delay and requests, as usual and during the event.
    std::map<std::string, std::array<double, 4>> evidence;
};

// By the graph in which the analysis begins.
using Trial = std::map<std::string, Verdicts>;

struct Planting {
    std::string configuration;  // a file
    std::string told;           // how an operator knows it
    std::string point;
    uint64_t seed;
    const std::vector<std::string>& worldOptions;  // of lumo-sim, for all worlds alike
};

// Has lumo-sim write a world of an hour under `root`, in place of the one that is there, with the point slow
// for two minutes in it, and asks zorv-local and zorv-explain. Throws std::runtime_error, with an operator's
// sentence, when one of the programs fails. Several threads may have trials of their own, each with a root of
// its own.
Trial PlantAndAsk(const Planting& planting, const std::string& root, const Model& model);

}  // namespace check
