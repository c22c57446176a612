// What the programs print, read back.
#pragma once

#include <string>

#include "check/graph/model.h"
#include "check/plant/trial.h"

namespace check {

// Adds to `trial` what the screen of the plug-in's command delayanal names, by the first graph of each
// analysis.
void ReadWalks(const std::string& screen, const Model& model, Trial& trial);

// Adds what zorv-explain's JSON names; of several events of a graph the first, most urgent one. Throws
// std::runtime_error when it is none.
void ReadExplanations(const std::string& document, Trial& trial);

}  // namespace check
