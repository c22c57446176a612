#include "fleet/collecting/answer_lines.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include "fleet/answers/answer_reader.h"
#include "fleet/collecting/reply.h"

namespace fleet {
namespace {

NodeAnswer AnswerOfLine(const std::string& line) {
    try {
        return ReadAnswer(line);
    } catch (const AnswerError& error) {
        return FailedAnswer(error.what());
    }
}

// An answer for any range counts for more than none; else the worse one is told.
int StatusOfBoth(int one, int other) {
    return std::min(one, other) == ANSWERED ? ANSWERED : std::max(one, other);
}

void Merge(NodeAnswer&& from, NodeAnswer& to) {
    std::move(from.findings.begin(), from.findings.end(), std::back_inserter(to.findings));
    to.status = StatusOfBoth(from.status, to.status);
    to.step = std::max(from.step, to.step);
    to.isPartial = from.isPartial || to.isPartial;
}

}  // namespace

void ReadAnswerLines(std::istream& stream, const std::string& name, std::vector<NodeAnswer>& answers) {
    size_t number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        if (line.find_first_not_of(" \t\r") == std::string::npos) {
            continue;
        }
        answers.push_back(AnswerOfLine(line));
        if (!answers.back().isNamed) {
            answers.back().name = name + ":" + std::to_string(number);
        }
    }
}

std::vector<NodeAnswer> OnePerNode(std::vector<NodeAnswer> answers) {
    std::vector<NodeAnswer> nodes;
    std::unordered_map<std::string, size_t> positions;
    for (NodeAnswer& answer : answers) {
        const auto [position, isNew] = positions.emplace(answer.name, nodes.size());
        if (isNew) {
            nodes.push_back(std::move(answer));
        } else {
            Merge(std::move(answer), nodes[position->second]);
        }
    }
    return nodes;
}

}  // namespace fleet
