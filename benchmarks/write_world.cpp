// Writes the largest world of the benchmarks for others to read.
#include <cstdio>
#include <exception>

#include "benchmarks/benchmark_world.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s DATABASE HEAL-DATABASE\n", argv[0]);
        return 2;
    }
    try {
        WriteBenchmarkWorld({300, 48, 120}, argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
