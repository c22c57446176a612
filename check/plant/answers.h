// What the programs print, read back.
#pragma once

#include <array>
#include <map>
#include <string>

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

// Adds to `trial` what the screen of the plug-in's command delayanal names, by the first graph of each
// analysis.
void ReadWalks(const std::string& screen, const Model& model, Trial& trial);

// Adds what zorv-explain's JSON names; of several events of a graph the first, most urgent one. Throws
// std::runtime_error when it is none.
void ReadExplanations(const std::string& document, Trial& trial);

}  // namespace check
