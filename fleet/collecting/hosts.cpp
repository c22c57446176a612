#include "fleet/collecting/hosts.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <sstream>

#include "fleet/collecting/reply.h"
#include "host/process/child.h"
#include "text/shell_word.h"

namespace fleet {
namespace {

constexpr const char* PARALLEL = "parallel";
constexpr const char* GET_IT =
    ": install Debian's package 'parallel', or collect the answers in another way and use --fold";
constexpr const char* STATUS_LEAD = "status ";  // of the line that each host ends with
constexpr const char* RETRIES = "2";
constexpr size_t MOST_BYTES = size_t{1} << 32;  // of all answers together

// Another program has the same name.
void CheckParallel() {
    std::string output;
    std::string errors;
    try {
        zorv::RunChild(PARALLEL, {"--version"}, {&output, &errors});
    } catch (const std::runtime_error& error) {
        throw HostsError(std::string("--hosts needs GNU parallel, and it ") + error.what() + GET_IT);
    }
    if (output.rfind("GNU parallel", 0) != 0) {
        throw HostsError(
            std::string("--hosts needs GNU parallel; the program 'parallel' here is another one") + GET_IT);
    }
}

// For the shell of each host. The status is printed: it tells an answer that is none from a host that is not
// reached.
std::string CommandOf(const std::vector<std::string>& words) {
    std::string command = "zorv-explain";
    for (const std::string& word : words) {
        command += " " + ShellWord(word);
    }
    return command + "; echo " + STATUS_LEAD + "$?";
}

// As parallel names a host in its answers: without how many jobs it may have.
std::string LoginOf(const std::string& host) {
    const size_t slash = host.find_first_not_of("0123456789");
    return slash != std::string::npos && slash > 0 && host[slash] == '/' ? host.substr(slash + 1) : host;
}

// Lines of the form "HOST<TAB>TEXT", which --tag makes.
template <typename Take>
void ForEachLine(const std::string& text, const Take& take) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (const size_t tab = line.find('\t'); tab != std::string::npos) {
            take(line.substr(0, tab), line.substr(tab + 1));
        }
    }
}

std::map<std::string, Reply> RepliesOf(const std::string& output, const std::string& errors) {
    std::map<std::string, Reply> replies;
    ForEachLine(errors, [&](const std::string& host, const std::string& line) {
        replies[host].errors += line + "\n";
    });
    ForEachLine(output, [&](const std::string& host, const std::string& line) {
        const std::string lead = STATUS_LEAD;
        if (line.rfind(lead, 0) == 0) {
            std::from_chars(line.data() + lead.size(), line.data() + line.size(), replies[host].status);
        } else if (line.rfind('{', 0) == 0) {  // or it is what a login shell says
            replies[host].output = line;
        }
    });
    return replies;
}

}  // namespace

std::vector<std::string> ReadHosts(const std::string& file) {
    std::ifstream stream(file);
    std::vector<std::string> hosts;
    for (std::string line; std::getline(stream, line);) {
        const size_t begin = line.find_first_not_of(" \t\r");
        const size_t end = line.find_last_not_of(" \t\r");
        if (begin != std::string::npos && line[begin] != '#') {
            hosts.push_back(line.substr(begin, end + 1 - begin));
        }
    }
    if (hosts.empty()) {
        throw HostsError("the file of hosts '" + file +
                         "' cannot be read, or names none: it has a host a line, as ssh takes it");
    }
    std::sort(hosts.begin(), hosts.end());
    hosts.erase(std::unique(hosts.begin(), hosts.end()), hosts.end());
    return hosts;
}

std::map<std::string, NodeAnswer> AskHosts(const std::vector<std::string>& hosts,
                                           const std::vector<std::string>& words, const HostLimits& limits,
                                           const std::set<std::string>* points) {
    CheckParallel();
    std::vector<std::string> command = {
        "--will-cite", "--nonall", "--tag", "--retries", RETRIES, "--jobs", std::to_string(limits.atATime)};
    if (limits.time.count() > 0) {
        command.insert(command.end(), {"--timeout", std::to_string(limits.time.count())});
    }
    for (const std::string& host : hosts) {
        command.insert(command.end(), {"--sshlogin", host});
    }
    command.push_back(CommandOf(words));
    std::string output;
    std::string errors;
    zorv::RunChild(PARALLEL, command, {&output, &errors}, {{}, MOST_BYTES});
    std::map<std::string, Reply> replies = RepliesOf(output, errors);
    std::map<std::string, NodeAnswer> answers;
    for (const std::string& host : hosts) {
        answers[host] = AnswerOf(replies[LoginOf(host)], points);
    }
    return answers;
}

}  // namespace fleet
