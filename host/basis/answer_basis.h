// What the answer of a command of the plug-in rests on: rows, configuration, and whether that is enough.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/basis/coverage.h"
#include "host/process/statements.h"
#include "host/services/console.h"

namespace zorv {
// Listens to the statements of the thread that makes it, from then on until it is gone: those that read rows
// of points tell the range that is asked for. There is one at a time.
class AnswerBasis : public StatementListener {
public:
    // `ofPoint`: only its rows count; empty: those of all. `restsOnGraphs`: the answer rests on the
    // configuration.
    AnswerBasis(std::string ofPoint, bool restsOnGraphs);
    ~AnswerBasis() override;
    AnswerBasis(const AnswerBasis&) = delete;
    AnswerBasis& operator=(const AnswerBasis&) = delete;

    void OnStatement(std::string_view sql) override;
    void OnRow(int64_t first) override;

    // Why the answer, of which this was printed, is less than it looks like, or why there is none, in one
    // line; empty: nothing is known. Blocks for a look at the database where there were hardly any rows.
    std::string Problem(const Printed& printed);

    bool HasRows() const;

    // The points whose rows were asked for, each once.
    std::vector<std::string> Points() const { return {points.begin(), points.end()}; }

private:
    enum class Kind { OTHER, ROWS, HEAL_EVENTS };

    void AskForRows(std::string_view sql);
    bool MayLackGraphs(const std::string& printed) const;
    std::string RowsProblem() const;
    std::string WhyNoRows() const;

    const std::string point;
    const bool usesGraphs;
    Kind kind = Kind::OTHER;     // of the statement that runs
    size_t statements = 0;       // of any kind
    bool hasAsked = false;       // for rows of whatever point
    bool askedForGraph = false;  // for all columns, as graphs do
    bool wasHealed = false;      // healing events were found, which are then the answer
    std::set<std::string> points;
    std::optional<TimeRange> range;
    std::optional<CoverageCount> count;
};
}  // namespace zorv
