// A damaged statistics database. The first byte chooses a command and a database; then come patches: an
// offset in two bytes, a length, and as many bytes for there; a patch of none cuts the file off at its
// offset.
#include <algorithm>

#include "campaigns/fuzz/fuzz.h"
#include "fault_database/fault_database.h"

static std::string Damaged(std::string file, const uint8_t* patch, const uint8_t* end) {
    while (end - patch >= 3 && !file.empty()) {
        const size_t offset = static_cast<size_t>(patch[0] + patch[1] * 256) % file.size();
        const size_t length =
            std::min({size_t{patch[2]}, static_cast<size_t>(end - patch - 3), file.size() - offset});
        file.replace(offset, length, reinterpret_cast<const char*>(patch) + 3, length);
        file.resize(patch[2] == 0 ? offset : file.size());
        patch += 3 + length;
    }
    return file;
}

// Databases that would have a reader do more than read: the node's own, and with names and schemas that hold
// statements.
static std::vector<std::string> Databases(const TempWorld& world) {
    const std::string beside = "'" + world.Path("/beside") + "'";
    const std::string name = "UPDATE table_flag SET tablename = tablename || ";
    const std::string schema = "ALTER TABLE table_flag RENAME TO t; CREATE ";
    const std::string columns = " AS tablename, 1 AS reporttime ";
    const std::string quoted = "''" + world.Path("/beside") + "''";
    std::vector<std::string> databases = {BytesOf(world.Path(LUMO_DATABASE_FILE))};
    for (const std::string& sql :
         {name + "'; vacuum into " + quoted + "; --'", name + "'; attach " + quoted + " as a; --'",
          name + "' union select load_extension(" + quoted + ") --'", name + "', pragma_table_list'",
          schema + "VIEW table_flag AS SELECT writefile(" + beside + ", 'x')" + columns,
          schema + "VIEW table_flag AS WITH r(x) AS (SELECT 1 UNION ALL SELECT x FROM r) SELECT x" + columns +
              "FROM r",
          schema + "VIEW table_flag AS SELECT load_extension(" + beside + ")" + columns,
          schema + "VIRTUAL TABLE table_flag USING fts5(tablename, reporttime)",
          std::string("UPDATE version_nmaps SET locatename = 'A''); DROP TABLE table_flag; --'")}) {
        world.Write(LUMO_DATABASE_FILE, databases[0]);
        world.Exec(LUMO_DATABASE_FILE, sql);
        databases.push_back(BytesOf(world.Path(LUMO_DATABASE_FILE)));
    }
    return databases;
}

// Without what SQLite keeps beside a database itself.
static size_t Files(const TempWorld& world) {
    const std::filesystem::recursive_directory_iterator all(world.Path(""));
    return static_cast<size_t>(std::count_if(begin(all), end(all), [&](const auto& entry) {
        return entry.path().string().find(LUMO_DATABASE_NAME "-") == std::string::npos;
    }));
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const FuzzNode node;
    static const std::vector<std::string> databases = Databases(node.world);
    static const size_t files = Files(node.world);
    static const std::string commands[] = {"showvalidtime",           "datashow A " + RANGE + " 9",
                                           "delaydetect " + RANGE,    "delayanal " + RANGE,
                                           "showallerr " + RANGE,     "errcodeshow IOERROR ALL " + RANGE,
                                           "errcodeshowall " + RANGE, "showgraph maplumodata B " + RANGE};
    if (size > 0) {
        FuzzNode::Renew();
        FaultDataBaseRelease();
        const std::string& chosen = databases[data[0] / std::size(commands) % databases.size()];
        node.world.Write(LUMO_DATABASE_FILE, Damaged(chosen, data + 1, data + size));
        FaultDataBaseInit();
        FuzzNode::Type(commands[data[0] % std::size(commands)]);
        Demand(Files(node.world) == files, "no file appears beside what was there");
    }
    return 0;
}
