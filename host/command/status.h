// How a command, and the whole program, can end. The worst is the largest. A command that runs another
// program may end with any status of that one.
#pragma once

namespace zorv {
enum ExitStatus : int {
    STATUS_OK = 0,
    STATUS_FAILED = 1,      // the command printed an error line, or its results could not be printed
    STATUS_USAGE = 2,       // unknown command, or used in a way it does not know
    STATUS_NOT_STARTED = 3  // the root, the log or the plug-in is not there, or no cluster
};
}  // namespace zorv
