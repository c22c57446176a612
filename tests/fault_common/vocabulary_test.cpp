#include "fault_common/fault_vocabulary.h"

#include <gtest/gtest.h>

namespace {

// FNV-1a over what was added, and the number of additions.
struct Digest {
    size_t rows = 0;
    uint64_t hash = 0xcbf29ce484222325;

    void Add(const std::string& text) {
        ++rows;
        for (const char character : text + "\n") {
            hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3;
        }
    }
};

template <typename Map>
Digest DigestOf(const Map& map) {
    Digest digest;
    for (const auto& [key, value] : map) {
        digest.Add(key + "=" + value);
    }
    return digest;
}

// The digests were made of "key=value" lines of the tables by another program.
TEST(Vocabulary, IsUnchanged) {
    Digest prefixes;
    for (const auto& [graph, modules] : g_mapErrCodeGraphModulePrefix) {
        for (const auto& [module, prefix] : modules) {
            prefixes.Add(graph + "/" + module + "=" + prefix);
        }
    }
    Digest names;
    for (const std::string& name : g_vecPointNameList) {
        names.Add(name);
    }
    const struct {
        const char* table;
        Digest found;
        size_t rows;
        uint64_t hash;
    } cases[] = {
        {"g_mapPointSubPoints", DigestOf(g_mapPointSubPoints), 6, 0x16f502f11c02b828},
        {"g_mapModuleFactor", DigestOf(g_mapModuleFactor), 7, 0xd39fec1017949600},
        {"g_mapPointErrCodeGraph", DigestOf(g_mapPointErrCodeGraph), 3, 0xff93f4681e55322c},
        {"g_mapPointErrCodeRelated", DigestOf(g_mapPointErrCodeRelated), 7, 0x3352bd69f740e7b0},
        {"g_mapModuleErrCodeGraph", DigestOf(g_mapModuleErrCodeGraph), 7, 0x8a5554df884a663e},
        {"g_mapErrCodeGraphModulePrefix", prefixes, 21, 0x3fad763eab144d0a},
        {"g_vecPointNameList", names, 86, 0xa4870d18a763809d},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(one.found.rows, one.rows) << one.table;
        EXPECT_EQ(one.found.hash, one.hash) << one.table;
    }
}

}  // namespace
