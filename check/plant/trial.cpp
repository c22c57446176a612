#include "check/plant/trial.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "host/process/child.h"

namespace check {
namespace {

// A range of the past: whoever plants today and tomorrow gets the same worlds.
constexpr const char* START = "20230105133000";
constexpr const char* END = "20230105143000";

// Without the program's own name, and with the configuration as the operator knows it.
std::string ToldBy(const std::string& program, std::string errors, const Planting& planting) {
    errors = errors.substr(0, errors.find('\n'));
    if (errors.rfind(program + ": ", 0) == 0) {
        errors.erase(0, program.size() + 2);
    }
    if (const size_t at = errors.find(planting.configuration); at != std::string::npos) {
        errors.replace(at, planting.configuration.size(), planting.told);
    }
    return errors;
}

// What the program prints.
std::string OutputOf(const std::string& program, const std::vector<std::string>& arguments,
                     const std::vector<int>& goodStatuses, const Planting& planting) {
    std::string output;
    std::string errors;
    const zorv::ChildEnd end = zorv::RunChild(zorv::ProgramBeside(program), arguments, {&output, &errors});
    const bool isGood = std::find(goodStatuses.begin(), goodStatuses.end(), end.status) != goodStatuses.end();
    if (end.signal != 0) {
        throw std::runtime_error(program + " was ended by signal " + std::to_string(end.signal));
    }
    if (!isGood) {
        throw std::runtime_error(program + ", with a fault at " + planting.point + ": " +
                                 ToldBy(program, errors, planting));
    }
    return output;
}

}  // namespace

Trial PlantAndAsk(const Planting& planting, const std::string& root, const Model& model) {
    const auto run = [&](const char* program, std::vector<std::string> arguments,
                         const std::vector<int>& goodStatuses) {
        arguments.insert(arguments.begin(), {"--root", root});
        return OutputOf(program, arguments, goodStatuses, planting);
    };
    std::vector<std::string> world = {
        "--config", planting.configuration,        "--hours",       "1",           "--end", END,
        "--seed",   std::to_string(planting.seed), "--fault-point", planting.point};
    world.insert(world.end(), planting.worldOptions.begin(), planting.worldOptions.end());
    run("lumo-sim", world, {0});
    Trial trial;
    // Status 1 of both: nothing is found, or the answer rests on too little; 4: it cannot be told.
    ReadWalks(run("zorv-local", {"--log", "/dev/null", "delayanal", START, END}, {0, 1}), model, trial);
    ReadExplanations(run("zorv-explain", {"--json", START, END}, {0, 1, 4}), trial);
    return trial;
}

}  // namespace check
