// Faults of what the plug-in stands on.
#pragma once

enum class Fault { SERVICE, FILE_CALL, SHORT_READ, SQLITE_MEMORY, MEMORY };  // services fail by themselves

// Calls of one kind are counted; the one with the number fails, or all from there on. No other thread may
// run.
struct ArmedFault {
    Fault kind = Fault::SERVICE;
    int number = 0;
    bool forEver = false;
    int calls = 0;
};
extern ArmedFault g_armed;

void InstallFaults();  // once, before SQLite is used
