// What a rule has found.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace check {

enum class Severity { ERROR, WARNING, NOTE };

struct Rule;

struct Finding {
    size_t at;  // offset in the document
    const Rule* rule;
    std::string graph;  // empty: it is of none
    std::string text;
};

// Of one rule and graph: findings that are not told one by one.
struct Omission {
    Finding first;  // of those; its text says how many
    size_t count;
};

// The findings as they are told: by place, of each rule and graph no more than 20, and the counts of all.
struct Findings {
    std::vector<Finding> told;
    std::vector<Omission> omitted;
    size_t errors = 0;
    size_t warnings = 0;
    size_t notes = 0;
};

}  // namespace check
