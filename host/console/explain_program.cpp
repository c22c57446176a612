#include "host/console/explain_program.h"

#include <stdexcept>

#include "host/process/child.h"

namespace zorv {
namespace {
ExitStatus Run(const std::string& program, const Words& arguments, std::string* output) {
    std::string unsaid;
    const ChildStreams streams = {output, output != nullptr ? &unsaid : nullptr};
    const ChildEnd end = RunChild(ProgramBeside(program), arguments, streams);
    if (end.signal != 0) {
        throw std::runtime_error(program + " was ended by signal " + std::to_string(end.signal));
    }
    return static_cast<ExitStatus>(end.status);
}
}  // namespace

ExitStatus RunExplainProgram(const Words& sharedOptions, const Words& arguments, std::string* output) {
    Words words = sharedOptions;
    words.insert(words.end(), arguments.begin(), arguments.end());
    return Run("zorv-explain", words, output);
}

ExitStatus RunCheckProgram(const Words& arguments, std::string* output) {
    return Run("zorv-check", arguments, output);
}
}  // namespace zorv
