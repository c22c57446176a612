#include "fleet/collecting/hosts.h"

#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string_view>

#include "fleet/collecting/reply.h"
#include "host/process/child.h"
#include "host/process/interrupt.h"
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

// For the shell of each host, whichever it is. The status is printed: it tells an answer that is none from a
// host that is not reached.
std::string CommandOf(const std::vector<std::string>& words) {
    std::string command = "zorv-explain";
    for (const std::string& word : words) {
        command += " " + ShellWord(word);
    }
    return "sh -c " + ShellWord(command + "; echo " + STATUS_LEAD + "$?");
}

// As parallel names a host in its answers: without its groups and how many jobs it may have.
std::string LoginOf(const std::string& host) {
    const size_t slash = host[0] == '@' ? host.find('/') : host.find_first_not_of("0123456789");
    return slash != std::string::npos && slash > 0 && host[slash] == '/' ? LoginOf(host.substr(slash + 1))
                                                                         : host;
}

// Lines of the form "HOST<TAB>TEXT", which --tag makes; ssh ends its own with a carriage return, behind which
// stands the host once more.
template <typename Take>
void ForEachLine(std::string_view text, const Take& take) {
    for (size_t at = 0; at < text.size();) {
        const std::string_view line = text.substr(at, text.find('\n', at) - at);
        at += line.size() + 1;
        if (const size_t tab = line.find('\t'); tab != std::string_view::npos) {
            const std::string_view said = line.substr(tab + 1);
            take(std::string(line.substr(0, tab)), said.substr(0, said.find('\r')));
        }
    }
}

struct HostReply : Reply {
    bool hasEnded = false;  // and told how
};

std::map<std::string, HostReply> RepliesOf(const std::string& output, const std::string& errors) {
    std::map<std::string, HostReply> replies;
    ForEachLine(errors, [&](const std::string& host, std::string_view line) {
        replies[host].errors.append(line).append("\n");
    });
    ForEachLine(output, [&](const std::string& host, std::string_view line) {
        const std::string_view lead = STATUS_LEAD;
        HostReply& reply = replies[host];
        if (line.substr(0, lead.size()) == lead) {
            const auto read =
                std::from_chars(line.data() + lead.size(), line.data() + line.size(), reply.status);
            reply.hasEnded = read.ec == std::errc();
        } else if (line.substr(0, 1) == "{") {  // or it is what a login shell says
            reply.output = line;
        }
    });
    return replies;
}

// How many of the hosts have ended, while they answer.
class EndedHosts {
public:
    EndedHosts(const std::string& printed, size_t hosts) : output(printed), all(hosts) {}

    double Part() {
        const std::string lead = std::string("\t") + STATUS_LEAD;
        for (size_t next = 0; (next = output.find(lead, at)) != std::string::npos; at = next + lead.size()) {
            ++ended;
        }
        at = std::max(at, output.size() - std::min(output.size(), lead.size() - 1));
        return std::min(1.0, static_cast<double>(ended) / static_cast<double>(all));
    }

private:
    const std::string& output;
    const size_t all;
    size_t ended = 0;
    size_t at = 0;  // up to which it was looked at
};

// Nobody is there to be asked for a password, or whether a host is the right one; nobody is waited for longer
// than for an answer. The operator's own words hold.
void SetSsh() {
    setenv("PARALLEL_SSH", "ssh -oBatchMode=yes -oConnectTimeout=30", 0);
}

}  // namespace

std::vector<std::string> ReadHosts(const std::string& file) {
    std::ifstream stream(file);
    std::vector<std::string> hosts;
    for (std::string line; std::getline(stream, line);) {
        const size_t begin = line.find_first_not_of(" \t\r");
        const size_t end = line.find_last_not_of(" \t\r");
        if (begin != std::string::npos && line[begin] != '#') {
            std::istringstream names(line.substr(begin, end + 1 - begin));
            for (std::string name; std::getline(names, name, ',');) {
                hosts.push_back(name);
            }
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
                                           const std::set<std::string>* points,
                                           const std::function<void(double)>& progress) {
    CheckParallel();
    SetSsh();
    const zorv::TidyEnd tidy({SIGINT, SIGTERM, SIGHUP});
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
    EndedHosts ended(output, hosts.size());
    zorv::RunChild(PARALLEL, command, {&output, &errors, [&] { progress(ended.Part()); }},
                   {{}, MOST_BYTES, true});
    std::map<std::string, HostReply> replies = RepliesOf(output, errors);
    std::map<std::string, NodeAnswer> answers;
    for (const std::string& host : hosts) {
        HostReply& reply = replies[LoginOf(host)];
        if (!reply.hasEnded) {
            const std::string said = LastLineOf(reply.errors);
            reply.failure = "not reached, or no answer within " + std::to_string(limits.time.count()) + " s" +
                            (said.empty() ? "" : ": " + said);
        }
        answers[host] = AnswerOf(reply, points);
    }
    return answers;
}

}  // namespace fleet
