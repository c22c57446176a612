#include "fleet/folding/peers.h"

#include <algorithm>

#include "explain/finding/usual.h"

namespace fleet {
namespace {

constexpr size_t FEWEST_PEERS = 3;

}  // namespace

std::optional<Peers> PeersOf(const Comparison& comparison, const std::string& point, size_t node) {
    const auto found = comparison.delays.find(point);
    if (found == comparison.delays.end() || found->second.size() < FEWEST_PEERS ||
        found->second.count(node) == 0) {
        return std::nullopt;
    }
    std::vector<double> delays;
    for (const auto& [peer, delay] : found->second) {
        delays.push_back(delay.now);
    }
    const explain::Usual usual = explain::UsualOf(delays);
    return Peers{usual.median, usual.Deviations(found->second.at(node).now), delays.size()};
}

const Comparison* ComparisonOf(const std::vector<Comparison>& comparisons, const Window& window) {
    const auto common = [&](const Comparison& comparison) {
        return std::min(window.end, comparison.window.end) - std::max(window.start, comparison.window.start);
    };
    const auto nearest = std::max_element(
        comparisons.begin(), comparisons.end(),
        [&](const Comparison& one, const Comparison& other) { return common(one) < common(other); });
    return nearest != comparisons.end() && nearest->window.Meets(window) ? &*nearest : nullptr;
}

}  // namespace fleet
