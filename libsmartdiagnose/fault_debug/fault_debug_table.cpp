#include "fault_debug/fault_debug_table.h"

#include "agent/agent_console.h"

namespace {

void PrintLine(size_t length, char character) {
    DBG_Print("%s\n", std::string(length, character).c_str());
}

}  // namespace

std::string FaultAdviceText(const std::string& advice) {
    return advice.empty() ? FAULT_NOTHING : advice;
}

void FaultPrintPathHead(const char* title, const std::string& found, const std::string& graph) {
    FaultPrintEqualsLine();
    DBG_Print("%s", title);
    DBG_Print("%-32s%-32s\n", found.c_str(), graph.c_str());
    PrintLine(69, '-');
}

void FaultPrintNoPath() {
    FaultPrintEqualsLine();
    DBG_Print("There's no abnormal check result.\n");
}

void FaultPrintPointsHead(const std::string& numberTitle) {
    DBG_Print("%sLocalPointName                                      ErrCodeCount        FixAdvice\n",
              numberTitle.c_str());
}

void FaultPrintPointsRow(const std::string& numberTitle, int32_t number, const std::string& point,
                         int64_t count, const std::string& advice) {
    DBG_Print("%-*d%-50s  %-18ld  %s\n", static_cast<int32_t>(numberTitle.size()), number, point.c_str(),
              count, FaultAdviceText(advice).c_str());
}

void FaultPrintSeparator() {
    PrintLine(100, '-');
}

void FaultPrintEqualsLine() {
    PrintLine(67, '=');
}
