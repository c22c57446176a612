// Words of command lines.
#pragma once

#include <string>

// `word` as a shell reads it as one word: quoted where needed.
std::string ShellWord(const std::string& word);
