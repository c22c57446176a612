// A statistics database to load from.
#pragma once

#include <cstdint>
#include <string>

struct BenchmarkWorld {
    int32_t points = 0;
    int32_t tables = 0;        // one per hour, from 2023-08-03 00:00:00 on, in a zone without an offset
    int32_t rowsPerTable = 0;  // of each point
};

// Writes the world's statistics database to `file`, with an empty heal database to `healFile`. Point k is
// called "POINT_k", but for point 0, which is the first one that the detector reads.
void WriteBenchmarkWorld(const BenchmarkWorld& world, const std::string& file, const std::string& healFile);
