// What a screen, or whatever stands for one, can show.
#pragma once

#include <cstddef>

struct ScreenStyle {
    size_t width = 80;        // cells of a line
    bool isUnicode = false;   // else ASCII alone
    bool hasColours = false;  // else no escape sequences
};
