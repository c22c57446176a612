// What an operator may have meant by a mistyped name.
#pragma once

#include <string>
#include <vector>

// The name that was probably meant by `word`: the one with the fewest single-letter changes, unless even
// that is far off, or else one that begins with `word`. Empty when no name is near.
std::string NearestName(const std::string& word, const std::vector<std::string>& names);

// The same behind a sentence, "; did you mean 'TGT_LUMO_HOST_READ'?"; empty when no name is near.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& names);
