// A world in a temporary folder, read back with plain SQL.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "agent/agent_storage.h"
#include "simulator/files/world.h"

struct TemporaryFolder {
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "lumo-sim-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("mkdtemp");
        }
        path = name;
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path path;
};

inline std::string FileText(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

using Row = std::vector<std::string>;

// The world under a folder, as one database that stays open. Besides the tables of its two databases it has
//   samples  all data tables as one, with the points' names
//   json     one row: truth.json as `truth`, its member `fault`, and the route configuration as `config`
struct World {
    explicit World(const std::filesystem::path& folder) {
        const std::string root = folder.string();
        sqlite3* opened = nullptr;
        sqlite3_open_v2((root + LUMO_DATABASE_FILE).c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
        handle.reset(opened);
        Query("attach '" + root + ZORV_HEAL_DATABASE_FILE "' as heals");
        std::ostringstream json;
        json << "create temp table json as select *, truth->'fault' as fault from (select "
             << std::quoted(FileText(folder / "truth.json"), '\'', '\'') << " as truth, "
             << std::quoted(FileText(root + ZORV_ROUTE_CONFIG_FILE), '\'', '\'') << " as config)";
        Query(json.str());
        std::string all;
        for (const Row& row : Query("select tablename from table_flag order by reporttime")) {
            tables.push_back(row[0]);
            all += (all.empty() ? "select * from " : " union all select * from ") + row[0];
        }
        Query("create temp view samples as select * from (" + all + ") natural join version_nmaps");
    }

    // Throws when SQLite does not answer.
    std::vector<Row> Query(const std::string& sql) const {
        std::vector<Row> rows;
        const auto append = [](void* out, int count, char** texts, char**) {
            Row& row = static_cast<std::vector<Row>*>(out)->emplace_back();
            for (int i = 0; i < count; ++i) {
                row.emplace_back(texts[i] == nullptr ? "NULL" : texts[i]);
            }
            return 0;
        };
        if (sqlite3_exec(handle.get(), sql.c_str(), append, &rows, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sql + ": " + sqlite3_errmsg(handle.get()));
        }
        return rows;
    }
    // The first column of the first row.
    std::string Value(const std::string& sql) const { return Query(sql).at(0).at(0); }

    std::vector<std::string> tables;  // the data tables, oldest first

private:
    std::unique_ptr<sqlite3, decltype(&sqlite3_close)> handle{nullptr, sqlite3_close};
};

// 2023-01-05 14:30:00 UTC: not a full hour, so the first and the last table are shorter than the others.
constexpr int64_t WORLD_END = 1672929000;

inline lumosim::WorldOptions Options(const std::string& scenario, uint64_t seed = 42, int64_t hours = 1,
                                     int64_t step = 30) {
    return {{}, scenario, seed, hours, step, WORLD_END, 0};
}

inline const std::filesystem::path& Write(
    const std::filesystem::path& root, lumosim::WorldOptions options,
    const lumosim::Progress& progress = [](double) {}) {
    options.root = root;
    lumosim::WriteWorld(options, progress);
    return root;
}

struct WrittenWorld : TemporaryFolder, World {
    explicit WrittenWorld(const lumosim::WorldOptions& options) : World(Write(path, options)) {}
};
