#include "host/console/explain_program.h"

#include <stdexcept>

#include "host/process/child.h"

namespace zorv {
namespace {
constexpr const char* PROGRAM = "zorv-explain";
}  // namespace

ExitStatus RunExplainProgram(const Words& sharedOptions, const Words& arguments, std::string* output) {
    Words words = sharedOptions;
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::string unsaid;
    const ChildStreams streams = {output, output != nullptr ? &unsaid : nullptr};
    const ChildEnd end = RunChild(ProgramBeside(PROGRAM), words, streams);
    if (end.signal != 0) {
        throw std::runtime_error(std::string(PROGRAM) + " was ended by signal " + std::to_string(end.signal));
    }
    return static_cast<ExitStatus>(end.status);
}
}  // namespace zorv
