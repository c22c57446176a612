#include "check/rules/suggester.h"

#include "text/nearest_name.h"
#include "text/printable.h"

namespace check {
namespace {
constexpr size_t MOST_COMPARISONS = 500'000;  // a second
constexpr size_t LONGEST_NAME = 80;
}  // namespace

std::string Quoted(std::string_view name) {
    return "'" + Printable(name, LONGEST_NAME) + "'";
}

std::string Suggester::Nearest(std::string_view word, const std::vector<std::string>& names) {
    comparisons += names.size();
    return comparisons > MOST_COMPARISONS ? "" : NearestName(std::string(word), names);
}

std::string Suggester::DidYouMean(std::string_view word, const std::vector<std::string>& names) {
    const std::string nearest = Nearest(word, names);
    return nearest.empty() ? "" : "; did you mean " + Quoted(nearest) + "?";
}

}  // namespace check
