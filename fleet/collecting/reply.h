// From what a run of zorv-explain left behind to a node's answer.
#pragma once

#include <set>
#include <string>

#include "fleet/answers/answer.h"

namespace fleet {

// How a run ended: what it printed, and its status, or why there is none.
struct Reply {
    std::string output;
    std::string errors;
    int status = NO_DATA;
    std::string failure;  // why there is no status; empty when there is one
};

// The answer; where there is none, its failure says why in a line: the last thing that the program said.
// `points` as ReadAnswer() takes them.
NodeAnswer AnswerOf(const Reply& reply, const std::set<std::string>* points = nullptr);

// The last line of what a program printed, bounded and without zorv-explain's name; empty: there is none.
std::string LastLineOf(const std::string& text);

// An answer that is none.
NodeAnswer FailedAnswer(const std::string& why, int status = NO_DATA);

}  // namespace fleet
