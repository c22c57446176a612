#include "simulator/live/live_database.h"

#include <stdexcept>

#include "agent/agent_storage.h"
#include "simulator/files/replaced_file.h"

namespace lumosim {
namespace {

void ObserveNothing(size_t, int64_t, const Sample&) {}
void ShowNothing(double) {}

}  // namespace

LiveDatabase::LiveDatabase(const WorldModel& worldModel, const LiveOptions& liveOptions)
    : model(worldModel), live(liveOptions), path(model.options.root.string() + LUMO_DATABASE_FILE) {
    Open(model.options.Start());
}

std::string LiveDatabase::WriteInstant(int64_t time) {
    CheckPlace();
    try {
        return writer->WriteInstant(time, time - live.keptHours * SECONDS_PER_HOUR);
    } catch (const std::runtime_error&) {
        CheckPlace();  // it is the better reason
        throw;
    }
}

void LiveDatabase::CheckPlace() const {
    if (database->HasMoved()) {
        throw std::runtime_error("somebody else deleted or replaced " + path.string());
    }
}

void LiveDatabase::Recreate(int64_t end) {
    // From the start of a table on: readers that know its name find it again.
    const int64_t wanted = end - model.options.hours * SECONDS_PER_HOUR;
    const int64_t first = writer->TableStart(wanted);
    if (live.way == Recreation::DELETE) {
        FillAnew(first, end);
    } else {
        FillBeside(first, end);
    }
}

void LiveDatabase::Open(int64_t first) {
    database.emplace(path, model.options.hasWal ? Journal::WAL : Journal::ROLLBACK);
    if (live.speed > 1) {
        // A real system does not wait for its disk many times a second, and would lock its readers out.
        // A killed process loses nothing by it.
        database->Execute("pragma synchronous = off;");
    }
    writer.emplace(*database, model, first);
}

void LiveDatabase::Close() {
    writer.reset();
    database->Execute("pragma wal_checkpoint(truncate);");
    database.reset();
}

void LiveDatabase::FillAnew(int64_t first, int64_t end) {
    Close();
    std::filesystem::remove(path);
    RemoveJournals(path);
    Open(first);
    writer->WriteHistory(end, ObserveNothing, ShowNothing);
}

void LiveDatabase::FillBeside(int64_t first, int64_t end) {
    ReplacedFile file(path);
    WriteStatistics(file.NewPath(), model, first, end, ObserveNothing, ShowNothing);
    Close();
    file.Commit();
    Open(first);
}

}  // namespace lumosim
