#include "fleet/collecting/reply.h"

#include "fleet/answers/answer_reader.h"

namespace fleet {
namespace {

constexpr size_t MOST_BYTES = 400;  // of a failure

}  // namespace

std::string LastLineOf(const std::string& text) {
    constexpr const char* LEAD = "zorv-explain: ";
    const size_t end = text.find_last_not_of(" \t\r\n");
    if (end == std::string::npos) {
        return {};
    }
    const size_t begin = text.find_last_of('\n', end) + 1;
    const std::string line = text.substr(begin, end + 1 - begin);
    return (line.rfind(LEAD, 0) == 0 ? line.substr(std::string(LEAD).size()) : line).substr(0, MOST_BYTES);
}

NodeAnswer FailedAnswer(const std::string& why, int status) {
    NodeAnswer answer;
    answer.failure = why;
    answer.status = status;
    return answer;
}

NodeAnswer AnswerOf(const Reply& reply, const std::set<std::string>* points) {
    if (!reply.failure.empty()) {
        return FailedAnswer(reply.failure);
    }
    if (reply.output.find_first_not_of(" \t\r\n") == std::string::npos) {
        const std::string said = LastLineOf(reply.errors);
        return FailedAnswer(said.empty() ? "zorv-explain said nothing" : said, reply.status);
    }
    try {
        NodeAnswer answer = ReadAnswer(reply.output, points);
        answer.status = reply.status;
        return answer;
    } catch (const AnswerError& error) {
        return FailedAnswer(error.what());
    }
}

}  // namespace fleet
