// One world with a fault, and what is said about it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "check/graph/model.h"
#include "check/plant/answers.h"

namespace check {

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
