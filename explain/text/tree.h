// The points below the slow one as an indented tree with their shares.
#pragma once

#include <string>

#include "explain/analysis/analysis.h"

namespace explain {

// A heading and a line for each node of an analysis with findings, under the node through which it is first
// reached. Of a large graph, nodes without a part and with none below them that has one are only counted.
std::string TreeText(const Analysis& analysis);

// A number with its sign, of at most seven characters; "-" for none.
std::string SignedText(const std::optional<double>& value, int decimals);

}  // namespace explain
