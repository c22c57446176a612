#include "host/capture/capture_zone.h"

#include <ctime>
#include <vector>

#include "host/capture/table_spans.h"
#include "host/process/guarded_database.h"
#include "text/local_time.h"

namespace zorv {
namespace {
constexpr const char* BY_OPTION = " (--zone says another)";

std::vector<TableSpan> SpansOrNone(const std::string& path) {
    try {
        return TableSpansOf(path);
    } catch (const DatabaseError&) {
        return {};  // whoever reads it whole tells more
    }
}
}  // namespace

CaptureZone ZoneOf(const std::optional<Manifest>& manifest, const std::string& path) {
    if (manifest) {
        return {manifest->zoneOffset, "node " + std::to_string(manifest->number) + ", " + manifest->node +
                                          "; zone " + ZoneText(manifest->zoneOffset) + ", by the manifest" +
                                          BY_OPTION};
    }
    const std::vector<TableSpan> tables = SpansOrNone(path);
    if (const std::optional<int64_t> zone = ZoneOfTables(tables)) {
        return {zone, "zone " + ZoneText(*zone) + ", in which the tables' names fit the times of their rows" +
                          BY_OPTION};
    }
    if (const std::optional<ZoneChange> change = ZoneChangeOf(tables)) {
        return {change->after, "the tables are named in zone " + ZoneText(change->before) + " until " +
                                   LocalTime(tables[change->first - 1].rows.end, change->before) +
                                   ", and in zone " + ZoneText(change->after) + " from " +
                                   LocalTime(tables[change->first].rows.start, change->after) +
                                   " on, as over a change of daylight saving time: the latter" + BY_OPTION};
    }
    return {std::nullopt, "nothing tells the zone of the capture; zone " +
                              ZoneText(ZoneOffsetAt(std::time(nullptr))) + ", this machine's" + BY_OPTION};
}
}  // namespace zorv
