#include "host/cluster/cluster_file.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "host/process/files.h"
#include "text/printable.h"

namespace zorv {
namespace {
constexpr size_t LARGEST_FILE = 1 << 20;
constexpr size_t LONGEST_PATH = 107;  // of a socket
constexpr std::string_view IPC = "ipc://";
constexpr std::string_view TCP = "tcp://";

template <typename T>
bool ParseNumber(std::string_view text, T& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

bool StartsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool IsHost(std::string_view host) {
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
        return host.find_first_not_of("0123456789abcdefABCDEF:.") == std::string_view::npos;
    }
    return !host.empty() && std::all_of(host.begin(), host.end(), [](unsigned char letter) {
        return std::isalnum(letter) != 0 || letter == '.' || letter == '-' || letter == '_';
    });
}

void CheckAddress(std::string_view address) {
    const std::string_view rest = address.substr(std::min(IPC.size(), address.size()));
    if (StartsWith(address, IPC)) {
        if (!StartsWith(rest, "/") || rest.size() > LONGEST_PATH) {
            throw std::runtime_error("after ipc:// comes an absolute path of at most " +
                                     std::to_string(LONGEST_PATH) + " bytes");
        }
    } else if (StartsWith(address, TCP)) {
        const size_t colon = std::min(rest.rfind(':'), rest.size());
        uint16_t port = 0;
        if (!IsHost(rest.substr(0, colon)) ||
            !ParseNumber(rest.substr(std::min(colon + 1, rest.size())), port) || port == 0) {
            throw std::runtime_error("after tcp:// come a host, ':' and a port");
        }
    } else {
        throw std::runtime_error("the address '" + Printable(address, 40) +
                                 "' begins with neither ipc:// nor tcp://");
    }
}

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
    std::string content;
    errno = 0;
    if (!ReadSmallFile(file, LARGEST_FILE, content)) {
        throw std::runtime_error("the cluster file '" + file + "' cannot be read: " +
                                 (errno == 0 ? "it is no file of 1 MiB at most" : std::strerror(errno)));
    }
    NodeAddresses nodes;
    std::istringstream lines(content);
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
