// The plug-in's fixed vocabulary: tables that are built when the library is loaded.
#pragma once

#include <map>
#include <string>

// The flow graphs in which an anomaly of a trace point is analysed, by the point's name. Several graphs of
// one point come in the order in which they are analysed.
extern const std::multimap<std::string, std::string> g_mapPointGraph;
