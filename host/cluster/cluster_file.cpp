#include "host/cluster/cluster_file.h"

#include <sstream>
#include <stdexcept>

#include "host/cluster/address.h"
#include "host/cluster/number.h"
#include "host/process/files.h"
#include "text/printable.h"

namespace zorv {
namespace {
std::vector<std::string> WordsOf(const std::string& line) {
    std::istringstream text(line);
    std::vector<std::string> words;
    for (std::string word; text >> word && word.front() != '#';) {
        words.push_back(word);
    }
    return words;
}

void TakeLine(const std::string& line, NodeAddresses& nodes) {
    const std::vector<std::string> words = WordsOf(line);
    if (words.empty()) {
        return;
    }
    uint32_t id = 0;
    if (!ParseNumber(words[0], id)) {
        throw std::runtime_error("'" + Printable(words[0], 40) + "' is no node id");
    }
    if (words.size() != 2) {
        throw std::runtime_error("a line is a node id and an address");
    }
    CheckAddress(words[1]);
    for (const auto& [other, address] : nodes) {
        if (address == words[1]) {
            throw std::runtime_error("node " + std::to_string(other) + " has that address");
        }
    }
    if (!nodes.emplace(id, words[1]).second) {
        throw std::runtime_error("node " + std::to_string(id) + " has an address already");
    }
}
}  // namespace

NodeAddresses ReadClusterFile(const std::string& file, const std::vector<uint32_t>& required) {
    std::istringstream lines(ReadInputFile("the cluster file", file));
    NodeAddresses nodes;
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        try {
            TakeLine(line, nodes);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(file + ":" + std::to_string(number) + ": " + error.what());
        }
    }
    for (const uint32_t node : required) {
        if (nodes.count(node) == 0) {
            throw std::runtime_error(file + ": it does not name node " + std::to_string(node));
        }
    }
    return nodes;
}
}  // namespace zorv
