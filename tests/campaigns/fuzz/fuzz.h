// What the fuzzers share: the functions that libFuzzer, or replay.cpp in its place, calls and offers, and an
// operator at a small storage node.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "support/temp_world.h"

extern "C" {
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
[[gnu::weak]] size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned seed);
size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);  // returns the new size
}

// Ends the process, as a finding, unless the promise was kept.
inline void Demand(bool kept, const char* promise) {
    if (!kept) {
        std::fprintf(stderr, "Broken promise: %s\n", promise);
        std::abort();
    }
}

inline std::string BytesOf(const std::string& file) {
    std::ostringstream bytes;
    bytes << std::ifstream(file, std::ios::binary).rdbuf();
    return bytes.str();
}

const std::string RANGE = "20210803000000 20210803001200";  // of the node's statistics

// A node in memory. Its statistics have a spike of TGT_LUMO_HOST_READ, its configuration has every graph that
// a command asks for.
struct FuzzNode {
    FuzzNode();
    // Forgets what former runs left in the agent, and in the table of error indexes.
    static void Renew();
    // What the operator sees after typing the line; nothing when its first word is no command.
    static std::string Type(const std::string& line);

    const TempWorld world;
};
