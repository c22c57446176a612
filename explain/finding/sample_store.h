// What the statistics database holds of trace points.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "explain/finding/reason.h"
#include "explain/finding/series.h"
#include "fault_common/fault_series.h"

namespace explain {

// A UTC time as the compact local one of tables and healings. Throws std::runtime_error when this machine's
// zone cannot be asked for.
std::string CompactTime(int64_t time);

// What the database holds of one point.
struct PointData {
    Samples samples;
    Samples complete;            // with estimates where rows are missing; empty where none are, see FillGaps
    std::vector<double> own;     // of each sample of Complete(), per request: what no point below took of it
    size_t idle = 0;             // rows that were left out, see WithoutIdle
    bool isObservation = false;  // has delays but no requests
    bool hasGoneBack = false;    // the times did not ascend: they were put in order
    std::vector<int64_t> gaps = {};  // times of samples at the top without a row here, see FillGaps

    const Samples& Complete() const { return complete.empty() ? samples : complete; }
};

// Loads time, delay and requests of points over some stretches of time, each point when it is first asked
// for. The stretches ascend and do not overlap. Confined to one thread; blocks on the database.
class SampleStore {
public:
    struct Part {
        Window stretch;
        std::vector<std::string> tables;
    };

    // Chooses the tables. Throws NoData when the database cannot be read, has no tables, far too many, or one
    // whose name is without a time, and std::runtime_error when this machine's zone cannot be asked for.
    explicit SampleStore(const std::vector<Window>& stretches);

    // Without a stretch yet: MoveTo() comes first.
    SampleStore() = default;

    // Goes on to one other stretch, as time goes by, and throws as the constructor does. What was loaded and
    // lies in it stays; when a point is asked for again, only what is at least as late as its last row is
    // loaded. So rows that are gone from the database by now stay, and those that came too late are missing.
    void MoveTo(const Window& stretch);

    // Valid as long as the store. A point without rows has none. Throws NoData when a query failed or its
    // rows are far too many, and std::invalid_argument, which names the point, for a cell that is no number.
    const PointData& Of(const std::string& point);

    // All points that were asked for.
    const std::map<std::string, PointData>& Points() const { return points; }

    // The stretches with their tables.
    const std::vector<Part>& Parts() const { return parts; }

    // The end of the only stretch, from a time on, with its tables; valid until the next move. Throws as the
    // constructor does.
    const Part& PartSince(int64_t time);

private:
    PointData Load(const std::string& point);
    Samples Rows(const std::string& point, const Part& part) const;

    std::vector<Part> parts;
    std::map<int64_t, Part> partsSince;  // ends of the only part, by their first time
    std::map<std::string, PointData> points;
    std::map<std::string, PointData> former;  // not asked for since the last move
};

// The columns as the plug-in's statistics take them. What no integer can hold becomes the nearest that can.
FaultSeries DelaySeries(const Samples& samples);
FaultSeries RequestSeries(const Samples& samples);

}  // namespace explain
