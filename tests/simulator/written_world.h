// A world in a temporary folder, read back with plain SQL and JSON.
#pragma once

#include <gtest/gtest.h>
#include <json/json.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "agent/agent_storage.h"
#include "simulator/world.h"

class TemporaryFolder {
public:
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

using Row = std::vector<std::string>;

// A connection as a reader opens it. Query() throws when SQLite does not answer.
class Reader {
public:
    explicit Reader(const std::filesystem::path& path) {
        sqlite3* opened = nullptr;
        sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
        handle.reset(opened);
    }

    std::vector<Row> Query(const std::string& sql) const {
        std::vector<Row> rows;
        const auto append = [](void* out, int count, char** texts, char**) {
            Row row;
            for (int i = 0; i < count; ++i) {
                row.emplace_back(texts[i] == nullptr ? "NULL" : texts[i]);
            }
            static_cast<std::vector<Row>*>(out)->push_back(row);
            return 0;
        };
        if (sqlite3_exec(handle.get(), sql.c_str(), append, &rows, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sql + ": " + sqlite3_errmsg(handle.get()));
        }
        return rows;
    }

    // The first column of the first row.
    std::string Value(const std::string& sql) const { return Query(sql).at(0).at(0); }

    // The names of the data tables, oldest first.
    std::vector<std::string> Tables() const {
        std::vector<std::string> names;
        for (const Row& row : Query("select tablename from table_flag order by reporttime")) {
            names.push_back(row[0]);
        }
        return names;
    }

    // All data tables as one, for a from clause.
    std::string AllRows() const {
        std::string sql;
        for (const std::string& table : Tables()) {
            sql += (sql.empty() ? "(select * from " : " union all select * from ") + table;
        }
        return sql + ") natural join version_nmaps";
    }

private:
    struct Closer {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };
    std::unique_ptr<sqlite3, Closer> handle;
};

inline std::string FileText(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline Json::Value ReadJson(const std::filesystem::path& path) {
    Json::Value value;
    std::ifstream(path) >> value;
    return value;
}

// 2023-01-05 14:30:00 UTC: not a full hour, so the first and the last table are shorter than the others.
constexpr int64_t WORLD_END = 1672929000;

inline lumosim::WorldOptions Options(const std::string& scenario, uint64_t seed = 42) {
    lumosim::WorldOptions options;
    options.scenario = scenario;
    options.seed = seed;
    options.end = WORLD_END;
    return options;
}

struct WrittenWorld {
    explicit WrittenWorld(lumosim::WorldOptions options)
        : WrittenWorld(std::make_unique<TemporaryFolder>(), options) {}

    std::unique_ptr<TemporaryFolder> folder;
    Reader statistics;
    Reader heals;
    Json::Value truth;
    Json::Value config;

private:
    WrittenWorld(std::unique_ptr<TemporaryFolder> newFolder, lumosim::WorldOptions& options)
        : folder(Write(std::move(newFolder), options)),
          statistics(folder->path.string() + LUMO_DATABASE_FILE),
          heals(folder->path.string() + ZORV_HEAL_DATABASE_FILE),
          truth(ReadJson(folder->path / "truth.json")),
          config(ReadJson(folder->path.string() + ZORV_ROUTE_CONFIG_FILE)) {}

    static std::unique_ptr<TemporaryFolder> Write(std::unique_ptr<TemporaryFolder> newFolder,
                                                  lumosim::WorldOptions& options) {
        options.root = newFolder->path;
        lumosim::WriteWorld(options, [](double) {});
        return newFolder;
    }
};
