// zorv-check --plant.
#pragma once

#include "check/graph/model.h"
#include "check/input.h"
#include "check/options.h"

namespace check {

// Plants a fault at each point that an analysis of delays can come to; returns the proof as it is to be
// printed, and in `allFound` whether the explanation finds every point that counts requests. Runs lumo-sim,
// zorv-local and zorv-explain, and shows how far it is where stderr is a terminal. Forks: call it before
// there are other threads. Throws std::runtime_error when a program fails, or no analysis begins in the
// configuration, and cli::UsageError for a point to which none comes.
std::string PlantFaults(const Options& options, const Input& input, const Model& model, bool& allFound);

}  // namespace check
