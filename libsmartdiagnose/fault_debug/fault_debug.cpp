#include "fault_debug/fault_debug.h"

#include "agent/agent_switch.h"
#include "fault_common/fault_boundary.h"
#include "fault_common/fault_log.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_switch/fault_diagnose_switch.h"

namespace {

ZORV_DIAG_CMD_S g_smartDiagnoseCmdTable[] = {
    {"simudetect", FaultCommandHandler<FaultSimuDetectCommand>,
     "simudetect [starTime] [endTime]: Simu fault detect. eg:starTime:20210803153000"},
    {"delaydetect", FaultCommandHandler<FaultDelayDetectCommand>,
     "delaydetect [starTime endTime] | [timelength]: Anomaly detect;timelength: unit is minute."},
    {"datashow", FaultCommandHandler<FaultDataShowCommand>,
     "datashow [lumoLocName] [starTime] [endTime] [countNum]: datashow"},
    {"showgraph", FaultCommandHandler<FaultShowGraphCommand>,
     "showgraph [mapgraph] [mapnodeinfo] [veclumo] [vecob] [mapobdata] [maplumodata]: showgraph"},
    {"delayanal", FaultCommandHandler<FaultDelayAnalCommand>,
     "delayanal [starTime endTime] | [timelength]: Analysis result;timelength: unit is minute."},
    {"showfaultfactor", FaultCommandHandler<FaultShowFaultFactorCommand>,
     "showfaultfactor [moduleName] [starTime] [endTime]: Show fault factor."},
    {"errcodeshowall", FaultCommandHandler<FaultErrCodeShowAllCommand>,
     "errcodeshowall [starTime endTime] | [timelength]: errcode show system status."},
    {"errcodeshow", FaultCommandHandler<FaultErrCodeShowCommand>,
     "errcodeshow [type] [module] [starTime endTime] | [timelength]: errcode show subsystem;\n"
     "[type]:IOERROR, IORETRY, IOACCESSDENY, [module]:ALL, NASPROTOL, FS, CACHE, POOL, SANPROTOL, SPACE."},
    {"showvalidtime", FaultCommandHandler<FaultShowValidTimeCommand>,
     "showvalidtime: show the earliest timestamp that can be diagnosed."},
    {"showallerr", FaultCommandHandler<FaultShowAllErrCommand>,
     "showallerr [starTime endTime] | [timelength]: display information about all LUMO points with non-zero "
     "errors in the fault tree, [timelength]: unit is minute."},
    {nullptr, nullptr, nullptr},
};

}  // namespace

uint32_t FaultDiagnoseDebugInit() {
    if (Zorvdebug_RegDiagnose("smartdiagnose", g_smartDiagnoseCmdTable) != 0) {
        FAULT_LOG(FAULT_AT_LINE(1127), FAULT_ERROR, "Fault diagnose debug nit failed.");
        return 1;
    }
    return 0;
}

uint32_t FaultRunCommand(FaultCommand command, int32_t argc, char** argv) {
    if (!FaultRunGuarded(FAULT_HERE, [&] { command(argc, argv); })) {
        FaultPrintError("inner err");
    }
    return 0;
}

void FaultPrintError(const char* message) {
    DBG_Print("\t\t[ERROR]: %s\n", message);
}

void FaultPrintSearchFailed() {
    FaultPrintError("inner err, and please try it again.");
}

bool FaultRefusedBySwitch() {
    if (ZorvCoreGetFaultDiagSwitch() != FAULT_DIAG_SWITCH_OFF) {
        return false;
    }
    FaultPrintError("fault diagnose switch is off");
    return true;
}
