#define FAULT_UNIT_FILE "fault_debug.cpp"
#include <algorithm>
#include <numeric>

#include "fault_algorithm/fault_rootcause.h"
#include "fault_common/fault_number.h"
#include "fault_common/fault_vocabulary.h"
#include "fault_debug/fault_debug_command.h"
#include "fault_debug/fault_debug_table.h"

namespace {

constexpr int32_t ROWS_MAX = 101;  // of one type's table
const std::string NUMBER_TITLE = "No.  ";

// The position of an error index's column among the sums.
size_t ColumnOf(int32_t erridx) {
    return static_cast<size_t>(-1 - erridx);
}

// The sum of the type with index `erridx`; where it is 0 and the point's errors reach the host under another
// type, the sum of all.
int64_t ShownCount(const NodeResult& result, int32_t erridx) {
    const auto& sums = result.errorSums;
    const int64_t sum = sums.at(ColumnOf(erridx));
    if (sum != 0 || !FaultReturnsDiffErrCode(result.locName)) {
        return sum;
    }
    return std::accumulate(sums.begin(), sums.end(), int64_t{0}, FaultWrapAdd);
}

}  // namespace

void ShowErrTypeResult(const std::string& typeName, std::vector<NodeResult>& results) {
    DBG_Print("Error Code Type:%-20s total:%d\n", typeName.c_str(), static_cast<int32_t>(results.size()));
    if (results.empty()) {
        DBG_Print("There're no data in this time interval about %s.\n", typeName.c_str());
        return;
    }
    const int32_t erridx = g_mapTypeIdx.at(typeName);
    const size_t column = ColumnOf(erridx);
    std::stable_sort(results.begin(), results.end(), [column](const NodeResult& a, const NodeResult& b) {
        return a.errorSums.at(column) > b.errorSums.at(column);
    });
    FaultPrintPointsHead(NUMBER_TITLE);
    int32_t number = 0;
    for (const NodeResult& result : results) {
        FaultPrintPointsRow(NUMBER_TITLE, ++number, result.locName, ShownCount(result, erridx),
                            result.fixAdvice);
        if (number == ROWS_MAX) {
            DBG_Print("(There are too many records to show all information.)\n");
            return;
        }
    }
}

void FaultShowAllErrCommand(int32_t argc, char** argv) {
    std::string start;
    std::string end;
    if (FaultRefusedBySwitch() || !FaultParseRange(argc, argv, FIRST_ARGUMENT, start, end) ||
        !CheckTimeRange(start, end)) {
        return;
    }
    FaultErrorPoints points;
    for (const auto& [point, graph] : g_mapPointErrCodeRelated) {
        if (SearchAllErrCodeInGraph(point, graph, start, end, points) != 0) {
            FaultPrintSearchFailed();
            return;
        }
    }
    for (const char* type : FAULT_ERROR_TYPES) {
        ShowErrTypeResult(type, points[type]);
        FaultPrintSeparator();
    }
}
