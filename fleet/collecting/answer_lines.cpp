#include "fleet/collecting/answer_lines.h"

#include <algorithm>
#include <iterator>
#include <thread>
#include <unordered_map>

#include "fleet/answers/answer_reader.h"
#include "fleet/collecting/reply.h"

namespace fleet {
namespace {

constexpr size_t LINES_AT_A_TIME = 512;  // that are kept

NodeAnswer AnswerOfLine(const std::string& line) {
    try {
        return ReadAnswer(line);
    } catch (const AnswerError& error) {
        return FailedAnswer(error.what());
    }
}

bool IsBlank(const std::string& line) {
    return line.find_first_not_of(" \t\r") == std::string::npos;
}

// Each line's, read by as many threads as there are cores.
std::vector<NodeAnswer> AnswersOf(const std::vector<std::string>& lines) {
    std::vector<NodeAnswer> answers(lines.size());
    const size_t parts = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::thread> threads;
    for (size_t part = 0; part < parts; ++part) {
        threads.emplace_back([&lines, &answers, part, parts] {
            for (size_t i = part; i < lines.size(); i += parts) {
                answers[i] = IsBlank(lines[i]) ? NodeAnswer() : AnswerOfLine(lines[i]);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return answers;
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
    for (size_t before = 0;;) {
        std::vector<std::string> lines;
        for (std::string line; lines.size() < LINES_AT_A_TIME && std::getline(stream, line);) {
            lines.push_back(std::move(line));
        }
        if (lines.empty()) {
            return;
        }
        std::vector<NodeAnswer> read = AnswersOf(lines);
        for (size_t i = 0; i < lines.size(); ++i) {
            if (IsBlank(lines[i])) {
                continue;
            }
            if (!read[i].isNamed) {
                read[i].name = name + ":" + std::to_string(before + i + 1);
            }
            answers.push_back(std::move(read[i]));
        }
        before += lines.size();
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
