// Writes the largest world of the benchmarks for others to read. Arguments: its two databases.
#include <cstdio>
#include <exception>
#include <vector>

#include "benchmarks/benchmark_world.h"

int main(int argc, char** argv) try {
    const std::vector<std::string> files(argv + 1, argv + argc);
    WriteBenchmarkWorld({300, 48, 120}, files.at(0), files.at(1));
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
