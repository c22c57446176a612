// Where the storage system keeps what the plug-in reads. These paths are fixed on every storage node.
#pragma once

#define ZORV_ROUTE_CONFIG_FILE "/VRA/zorv/conf/route_config.json"
// A route configuration that is nested deeper is refused, as one that is no JSON is; a graph nests five deep.
#define ZORV_ROUTE_CONFIG_NESTING 200
#define ZORV_HEAL_DATABASE_FILE "/VRA/data/zorv/zorv_heal.db"
#define LUMO_DATA_DIRECTORY "/VRA/data/lumo/"
#define LUMO_DATABASE_NAME "lumo_diagnose_data.db"
#define LUMO_DATABASE_FILE LUMO_DATA_DIRECTORY LUMO_DATABASE_NAME

#ifdef __cplusplus
extern "C" {
#endif

// Optional service: a directory that stands before the fixed paths above. A storage node's agent does not
// define it (its address is then null), and the paths are taken as they are. A host that is no storage node
// may define it; the text it returns lives as long as the process, and an empty or null one changes nothing.
// Any thread; does not block.
const char* vopx_root_directory(void) __attribute__((weak));

#ifdef __cplusplus
}
#endif
