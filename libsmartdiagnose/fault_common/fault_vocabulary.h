// The plug-in's fixed vocabulary: tables that are built when the library is loaded. Maps of one key to
// several values keep these in the order of their rows. All but one never change and may be read by any
// thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "fault_common/fault_export.h"

using FaultNameMap = std::map<std::string, std::string>;
using FaultNameMultimap = std::multimap<std::string, std::string>;

// An aggregate trace point, and the flow graphs of the protocols that it splits into: there an anomaly of the
// point is analysed, in this order.
extern const FaultNameMultimap g_mapPointSubPoints;

// A module, and the graph that lists the points of its fault factors.
extern const FaultNameMap g_mapModuleFactor;

// A point that counts the errors towards a host or client, and the graph that explains them.
extern const FaultNameMap g_mapPointErrCodeGraph;

// The same, and the graphs of the points within the pool.
extern const FaultNameMultimap g_mapPointErrCodeRelated;

// A module, and the graph of its errors.
extern const FaultNameMap g_mapModuleErrCodeGraph;

// A graph; in it a module, and how the names of the module's points begin.
extern const std::map<std::string, FaultNameMultimap> g_mapErrCodeGraphModulePrefix;

// Whether a point belongs to a module of a graph, whose row of that table `modules` is.
bool FaultIsOfModule(const std::string& point, const FaultNameMultimap& modules, const std::string& module);

// An error type, and its index.
FAULT_EXPORT extern const std::map<std::string, int32_t> g_mapTypeIdx;

// The points whose errors reach the host under another type than the one that they count themselves.
extern const std::vector<std::string> g_vecPointNameList;
extern const std::vector<std::string>& g_vecDiffErrCodePoint;
bool FaultReturnsDiffErrCode(const std::string& point);  // whether it is one of them

// An error index, and the column that counts it. The analysis of error-code graphs adds the unknown indexes
// that it meets, without a column; like all analyses it runs on the console's thread.
extern std::map<int64_t, std::string> g_mapErrIdxName;
extern std::map<int64_t, std::string>& g_mapErrCodeColumn;
