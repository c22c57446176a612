// Randomness without state: a number for every (seed, stream, time, salt), the same on every machine and in
// whatever order it is asked for. So a point's noise does not depend on which other points exist.
#pragma once

#include <cstdint>
#include <string_view>

namespace lumosim {

class Noise {
public:
    explicit Noise(uint64_t worldSeed) : seed(Mix(worldSeed)) {}

    // A number that stands for a text; does not depend on the seed.
    static constexpr uint64_t Hash(std::string_view text) {
        uint64_t hash = 0xcbf29ce484222325;
        for (const char character : text) {
            hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3;
        }
        return Mix(hash);
    }

    // Uniform in [0, 1).
    static constexpr double Unit(uint64_t hash) { return static_cast<double>(hash >> 11) * 0x1p-53; }

    // Uniform in [0, 1). `stream` says for whom (a Hash()), `salt` tells several uses at one time apart.
    double Uniform(uint64_t stream, int64_t time, uint64_t salt) const {
        return Unit(Mix(Mix(seed ^ stream) ^ Mix(static_cast<uint64_t>(time) * 16 + salt)));
    }

    // Uniform in [-1, 1).
    double Symmetric(uint64_t stream, int64_t time, uint64_t salt) const {
        return 2 * Uniform(stream, time, salt) - 1;
    }

private:
    // The finaliser of splitmix64.
    static constexpr uint64_t Mix(uint64_t value) {
        value += 0x9e3779b97f4a7c15;
        value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9;
        value = (value ^ (value >> 27)) * 0x94d049bb133111eb;
        return value ^ (value >> 31);
    }

    uint64_t seed;
};

}  // namespace lumosim
