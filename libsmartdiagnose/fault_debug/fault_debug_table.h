// The parts that the commands' tables have in common. Inside fault_debug only.
#pragma once

#include <cstdint>
#include <string>

// Stands where a point has no advice, value or time.
constexpr const char* FAULT_NOTHING = "---";
std::string FaultAdviceText(const std::string& advice);

// What stands above the rows of a path: what was found, under the line `title`, and in which graph.
void FaultPrintPathHead(const char* title, const std::string& found, const std::string& graph);

// Stands in place of all paths when there are none.
void FaultPrintNoPath();

// A table of points with their error counts. Its first column holds a number, under `numberTitle`, which is
// as wide as the column.
void FaultPrintPointsHead(const std::string& numberTitle);
void FaultPrintPointsRow(const std::string& numberTitle, int32_t number, const std::string& point,
                         int64_t count, const std::string& advice);

// Ends the table of one of several searches.
void FaultPrintSeparator();

// The line above a path, and above what stands in its place.
void FaultPrintEqualsLine();
