// What colours a terminal's text, where it may be coloured at all.
#pragma once

constexpr const char* COLOUR_RED = "\x1b[31m";
constexpr const char* COLOUR_YELLOW = "\x1b[33m";
constexpr const char* COLOUR_BOLD = "\x1b[1m";
constexpr const char* COLOUR_DIM = "\x1b[2m";
constexpr const char* COLOUR_END = "\x1b[0m";
