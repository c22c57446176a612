// Numbers with the words for what they count.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// "1 sample", "2 samples"; "2 to 9 samples".
std::string Counted(size_t count, const std::string& thing);
std::string Counted(size_t least, size_t most, const std::string& thing);

// "45 s", "3 min 30 s", "1 h 5 min".
std::string Duration(int64_t seconds);
