// Answers that somebody else has collected.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "fleet/answers/answer.h"

namespace fleet {

// Adds the answers in `stream`, a JSON document a line; a line that is none is an answer with a failure. An
// answer without a name is called by `name` and its line. Keeps no more than the answers and some hundred
// lines. Blocks
// on reading.
void ReadAnswerLines(std::istream& stream, const std::string& name, std::vector<NodeAnswer>& answers);

// Makes one answer of those of one node.
std::vector<NodeAnswer> OnePerNode(std::vector<NodeAnswer> answers);

}  // namespace fleet
