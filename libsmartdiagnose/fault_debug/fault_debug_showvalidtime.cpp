#define FAULT_UNIT_FILE "fault_debug.cpp"
#include "fault_database/fault_database.h"
#include "fault_debug/fault_debug_command.h"

namespace {

constexpr int32_t ARGUMENTS = 3;

}  // namespace

void FaultShowValidTimeCommand(int32_t argc, char** /*argv*/) {
    if (argc != ARGUMENTS) {
        FaultPrintError("input err");
        return;
    }
    std::string earliest;
    if (FaultGetDataTimeRange(earliest) != 0) {
        FaultPrintError("inner err");
        return;
    }
    DBG_Print("\t\tThe earliest timestamp that can be diagnosed is %s.\n", earliest.c_str());
}
