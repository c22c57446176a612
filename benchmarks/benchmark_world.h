// A statistics database to load from.
#pragma once

#include <cstdint>
#include <string>

struct BenchmarkWorld {
    int32_t points = 0;
    int32_t tables = 0;        // one per hour, from 2023-08-03 00:00:00 on, in a zone without an offset
    int32_t rowsPerTable = 0;  // of each point
};

// Writes the world's statistics database to `file`, with an empty heal database to `healFile`.
void WriteBenchmarkWorld(const BenchmarkWorld& world, const std::string& file, const std::string& healFile);

// The name of a point of the world, from 0 on; point 0 is the first one that the detector reads.
std::string BenchmarkPoint(int32_t number);
