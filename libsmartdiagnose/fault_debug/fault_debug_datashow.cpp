#define FAULT_UNIT_FILE "fault_debug.cpp"
#include "fault_common/fault_number.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_spectrum_graph/fault_detect_object.h"

namespace {

constexpr int32_t ARGUMENTS = 7;

}  // namespace

void FaultDataShowCommand(int32_t argc, char** argv) {
    if (argc != ARGUMENTS) {
        FaultPrintError("input err");
        return;
    }
    const std::string pointName = argv[FIRST_ARGUMENT];
    FaultDetectObject detector;
    detector.InitObject();
    detector.GetData(argv[FIRST_ARGUMENT + 1], argv[FIRST_ARGUMENT + 2]);
    DBG_Print("\nSmartDiagnose DetectData Show\n");
    detector.DisplayData(pointName, FaultToInt32(argv[FIRST_ARGUMENT + 3]));
}
