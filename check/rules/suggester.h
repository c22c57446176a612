// What was meant by a name that is not known.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace check {

// Compares names for so long as that costs next to nothing: with very many unknown names the last of them get
// no answer.
class Suggester {
public:
    // The name, or an empty text.
    std::string Nearest(std::string_view word, const std::vector<std::string>& names);

    // "; did you mean 'NAME'?", or an empty text.
    std::string DidYouMean(std::string_view word, const std::vector<std::string>& names);

private:
    size_t comparisons = 0;
};

// A name as a finding shows it.
std::string Quoted(std::string_view name);

}  // namespace check
