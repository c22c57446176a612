// The console's own commands: what help, completion and manuals say about them comes from here.
#pragma once

#include <array>

struct HostCommand {
    const char* name;
    const char* arguments;  // as a usage line shows them; empty when it takes none
    const char* help;       // what it does, on one line
    const char* words;      // what can follow the name, separated by blanks; options may stand at any place
};

inline constexpr std::array<HostCommand, 6> HOST_COMMANDS = {
    {{"help", "[COMMAND]", "list the commands, or explain one.", ""},
     {"status", "", "what this host works on: files, configuration, switch, alarms, start-up.", ""},
     {"alarms", "[N]", "the last N alarms, 20 if not told, the newest last.", ""},
     {"switch", "get | set on|on-silent|off", "show or set the cluster's fault diagnosis switch.", "get set"},
     {"explain", "START END | MINUTES", "where the extra delay of slow points goes; --help tells more.",
      "--point --graph --at --zone --json --html --help"},
     {"quit", "", "leave; so does Ctrl-D.", ""}}};
