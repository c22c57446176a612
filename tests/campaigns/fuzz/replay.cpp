// Stands in for libFuzzer where there is none: PROGRAM FOLDER RUNS runs each file of the folder, and RUNS
// mutations of them, which are the same each time.
#include <algorithm>
#include <random>

#include "campaigns/fuzz/fuzz.h"

using Input = std::vector<uint8_t>;

size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize) {
    static std::minstd_rand random(1);
    Input input(data, data + size);
    const size_t at = random() % (size + 1);
    const size_t length = random() % (std::min(size - at, size_t{15}) + 1);
    const auto from = input.begin() + static_cast<std::ptrdiff_t>(at);
    const auto to = from + static_cast<std::ptrdiff_t>(length);
    const auto change = random() % 4;
    if (change == 0) {
        input.insert(from, length + 1, static_cast<uint8_t>(random()));
    } else if (change == 1) {
        input.erase(from, to);
    } else if (change == 2) {
        std::generate(from, to, [] { return static_cast<uint8_t>(random()); });
    } else if (at < size) {
        *from = static_cast<uint8_t>(*from ^ 1U << random() % 8);
    }
    input.resize(std::min(input.size(), maxSize));
    std::copy(input.begin(), input.end(), data);
    return input.size();
}

int main(int argc, char** argv) {
    constexpr size_t MOST_BYTES = 4096;
    const auto mutate = LLVMFuzzerCustomMutator != nullptr
                            ? LLVMFuzzerCustomMutator
                            : [](uint8_t* data, size_t size, size_t maxSize, unsigned) {
                                  return LLVMFuzzerMutate(data, size, maxSize);
                              };
    Demand(argc == 3, "arguments: FOLDER RUNS");
    std::vector<Input> corpus;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        const std::string bytes = BytesOf(entry.path());
        corpus.emplace_back(bytes.begin(), bytes.end());
        LLVMFuzzerTestOneInput(corpus.back().data(), corpus.back().size());
    }
    std::sort(corpus.begin(), corpus.end());  // folders have no order of their own
    const auto runs = static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10));
    for (unsigned seed = 1; seed <= 2 * runs; seed += 2) {
        Input input = corpus.at(seed / 2 % corpus.size());
        const size_t size = input.size();
        input.resize(MOST_BYTES);
        const size_t changed = mutate(input.data(), size, MOST_BYTES, seed);
        input.resize(mutate(input.data(), changed, MOST_BYTES, seed + 1));
        input.shrink_to_fit();  // so that reading past its end is seen
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    std::printf("%zu files and %u mutations\n", corpus.size(), runs);
}
