#include "explain/analysis/budget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <random>
#include <set>

namespace explain {
namespace {

using Nodes = std::vector<BudgetNode>;

// The budget by plain recursion over every way.
struct Reference {
    const Nodes& nodes;
    const HandOvers& handOvers;
    std::vector<double> own;

    std::vector<size_t> Below(size_t node) const {
        std::vector<size_t> below = nodes[node].children;
        below.insert(below.end(), handOvers.count(node), handOvers.count(node) ? handOvers.at(node) : 0);
        return below;
    }
    void Look(const std::vector<size_t>& first, std::set<size_t>& seen, std::set<size_t>& takers) const {
        for (const size_t node : first) {
            if (seen.insert(node).second) {
                nodes[node].takesPart ? void(takers.insert(node)) : Look(Below(node), seen, takers);
            }
        }
    }
    void Enter(size_t node, double share, std::set<size_t> way) {
        way.insert(node);
        std::set<size_t> seen, takers;
        const bool hands = handOvers.count(node) > 0 && nodes[handOvers.at(node)].takesPart;
        Look(hands ? std::vector<size_t>{handOvers.at(node)} : Below(node), seen, takers);
        std::map<size_t, double> wanted;
        double sum = 0.0;
        for (const size_t taker : takers) {
            if (way.count(taker) == 0) {
                wanted[taker] = hands ? 1.0 : std::min(1.0, nodes[taker].excess / nodes[node].excess);
                sum += wanted[taker];
            }
        }
        const double kept =
            std::min(std::max(0.0, 1.0 - sum), std::max(0.0, nodes[node].own / nodes[node].excess));
        own[node] += sum + kept > 0.0 ? share * kept / (sum + kept) : share;
        for (const auto& [taker, part] : wanted) {
            Enter(taker, share * part / (sum + kept), way);
        }
    }
};

void ExpectShares(const Nodes& nodes, const HandOvers& handOvers, const std::vector<double>& expected) {
    const std::vector<double> shares = DivideBudget(nodes, handOvers, 0);
    ASSERT_EQ(shares.size(), expected.size());
    EXPECT_NEAR(std::accumulate(shares.begin(), shares.end(), 0.0), 1.0, 1e-9);
    for (size_t i = 0; i < shares.size(); ++i) {
        ASSERT_TRUE(shares[i] >= 0.0 && std::fabs(shares[i] - expected[i]) < 1e-9) << "node " << i;
    }
}

TEST(Budget, IsThatOfARecursionOverAllWays) {
    for (unsigned seed = 1; seed <= 4000 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Nodes nodes(1 + random() % 9);
        HandOvers handOvers;
        const auto any = [&] { return random() % nodes.size(); };
        for (BudgetNode& node : nodes) {
            node.takesPart = &node == nodes.data() || random() % 4 > 0;
            node.excess = std::pow(1.0 + static_cast<double>(random() % 4), seed % 2 == 0 ? 1.0 : 9.5);
            node.own = node.excess * (static_cast<double>(random() % 9) - 2) / 4;
            std::generate_n(std::back_inserter(node.children), random() % 5, any);
        }
        for (size_t i = random() % 4; i > 0; --i) {
            handOvers[any()] = any();
        }
        Reference reference{nodes, handOvers, std::vector<double>(nodes.size())};
        reference.Enter(0, 1.0, {});
        ExpectShares(nodes, handOvers, reference.own);
        for (BudgetNode& node : nodes) {
            std::shuffle(node.children.begin(), node.children.end(), random);
            node.excess *= 1e-6;
            node.own *= 1e-6;
        }
        ExpectShares(nodes, handOvers, reference.own);
    }
}

TEST(Budget, EndsOnLargeGraphs) {
    Nodes chain(100000);
    for (size_t i = 0; i < chain.size(); ++i) {
        chain[i] = {{(i + 1) % chain.size()}, i % 3 == 0, 1.0, 0.0};
    }
    EXPECT_EQ(DivideBudget(chain, {}, 0).back(), 0.0);  // a circle: only its beginning is divided
    chain.back().children.clear();
    std::vector<double> expected(chain.size());
    expected.back() = 1.0;
    ExpectShares(chain, {}, expected);
    Nodes ladder;  // of 40 diamonds: 2^40 ways
    for (size_t i = 0; i < 120; i += 3) {
        ladder.insert(ladder.end(),
                      {{{i + 1, i + 2}, true, 1, 0}, {{i + 3}, true, 0.6, 0}, {{i + 3}, true, 0.5, 0}});
    }
    ladder.push_back({{}, true, 1.0, 0.0});
    expected.erase(expected.begin(), expected.end() - 121);
    ExpectShares(ladder, {}, expected);
    expected.assign(12, 1.0 / 11);
    expected.front() = 0.0;
    ExpectShares(Nodes(12, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, true, 1.0, 0.0}), {}, expected);
}

}  // namespace
}  // namespace explain
