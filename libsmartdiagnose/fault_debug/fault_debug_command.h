// What all console commands share: how they are called, their time arguments, the alarm. Inside fault_debug
// only. A command prints its results and its errors itself, and runs on the console's thread, alone.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "agent/agent_console.h"
#include "fault_spectrum_graph/fault_causality_graph_record.h"

// Index of a command's own first argument: the words before it are those with which the console reached it.
constexpr int32_t FIRST_ARGUMENT = 3;

// The longest range of time that may be looked at: two days.
constexpr int64_t FAULT_RANGE_SECONDS_MAX = 172800;

// A command's work; `argc` and `argv` as the console passes them. May throw: see FaultRunCommand().
using FaultCommand = void (*)(int32_t argc, char** argv);

// Runs a command. An exception that leaves it is logged, and answered with "inner err". Returns 0.
uint32_t FaultRunCommand(FaultCommand command, int32_t argc, char** argv);

// The handler of a command, as the console calls it.
template <FaultCommand command>
uint32_t FaultCommandHandler(int32_t argc, char** argv) {
    return FaultRunCommand(command, argc, argv);
}

// Prints an error line: two tabs, "[ERROR]: ", the message.
void FaultPrintError(const char* message);

// Answers a search that failed.
void FaultPrintSearchFailed();

// True, and an error line printed, when the switch is off.
bool FaultRefusedBySwitch();

// Whether the first `maxLength` characters of `text`, as many as there are, are digits. True for none.
bool CheckDigitString(const char* text, int32_t maxLength);

// Takes a range of compact local times from the arguments from index `first` on: two times, unchecked, or one
// length in minutes up to now. Returns 1, with the outputs unchanged, when the arguments are neither.
uint32_t ParseTimeArgs(int32_t argc, char** argv, int32_t first, std::string& start, std::string& end);

// Whether a range may be used: two compact local times, ascending, at most two days apart. Prints the reason
// when not, except for a time that does not convert.
bool CheckTimeRange(const std::string& start, const std::string& end);

// What the commands on a range begin with: takes the range from the arguments from index `first` on, as
// ParseTimeArgs() does. False, and an error line printed, when they are none.
bool FaultParseRange(int32_t argc, char** argv, int32_t first, std::string& start, std::string& end);

// Raises the alarm for a detected delay fault, at most three times in any day. Any thread.
void FaultDiagRecordAndSendAlarm();

// The commands on delays. Their arguments are told by the help texts of the command table.
void FaultDelayDetectCommand(int32_t argc, char** argv);
void FaultSimuDetectCommand(int32_t argc, char** argv);
void FaultDataShowCommand(int32_t argc, char** argv);
void FaultShowValidTimeCommand(int32_t argc, char** argv);
void FaultDelayAnalCommand(int32_t argc, char** argv);

// The commands on errors, and on a module's fault factors.
void FaultShowAllErrCommand(int32_t argc, char** argv);
void FaultErrCodeShowCommand(int32_t argc, char** argv);
void FaultErrCodeShowAllCommand(int32_t argc, char** argv);
void FaultShowFaultFactorCommand(int32_t argc, char** argv);

// Shows the graph "SAN_IO_READ": word, location name, start, end.
void FaultShowGraphCommand(int32_t argc, char** argv);

// What `showallerr` shows of one error type: sorts the points by the type's sum, the highest first, and
// prints them as a table of at most 101 rows. A point whose sum is 0 shows the sum of all types if its errors
// reach the host under another type. Throws std::out_of_range for a type that is none, unless there are no
// points.
void ShowErrTypeResult(const std::string& typeName, std::vector<NodeResult>& results);
