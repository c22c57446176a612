// The console's own commands: functions of the rows of command_table.cpp, each in a file of its own, with the
// contract of Command::run and Command::wordsAfter.
#pragma once

#include "host/command/command.h"

namespace zorv {
// Lists the commands, or prints the whole help of one.
ExitStatus RunHelp(const Words& words, ConsoleState& state);
Words WordsAfterHelp(const Words& before);

// Prints the files, what the databases and the configuration hold, the switch, the alarms since the program's
// start and the start-up rows. Blocks for one question to the statistics database, which is not repeated, and
// one to the master node.
ExitStatus RunStatus(const Words& words, ConsoleState& state);

// Prints the last alarms that this host and those before it have raised on the same root, the newest last.
// Fails when the alarm file cannot be read. Blocks on file I/O.
ExitStatus RunAlarms(const Words& words, ConsoleState& state);

// Copies the node's files into a new folder or archive, see TakeCapture(). Fails in a capture. Blocks for as
// long as the copying takes; a signal that ends the process does so when nothing half is left.
ExitStatus RunCapture(const Words& words, ConsoleState& state);
Words WordsAfterCapture(const Words& before);

// Shows or sets the cluster's fault diagnosis switch. Blocks for the answers of the node that keeps it; fails
// when that node did not answer or could not store the value.
ExitStatus RunSwitch(const Words& words, ConsoleState& state);
Words WordsAfterSwitch(const Words& before);

// Runs the program that explains why a point was slow, which lies beside this one, with the shared options
// and the arguments. It prints to this process's streams, reads nothing, and gets the terminal's signals.
// Blocks until it has ended; returns its exit status. Fails when it cannot be run or a signal ended it.
ExitStatus RunExplain(const Words& words, ConsoleState& state);
Words WordsAfterExplain(const Words& before);

// Runs the same program for its overview, and for the rows of a point.
ExitStatus RunOverview(const Words& words, ConsoleState& state);
Words WordsAfterOverview(const Words& before);
ExitStatus RunSeries(const Words& words, ConsoleState& state);
Words WordsAfterSeries(const Words& before);

// Runs the program that checks the configuration, in the same way, on the same files; or, where the words
// name one, on another file.
ExitStatus RunCheck(const Words& words, ConsoleState& state);
Words WordsAfterCheck(const Words& before);

// Says on stderr how many errors that program finds in the configuration, unless there are none. Blocks until
// it has ended.
void TellConfigurationErrors();

ExitStatus RunQuit(const Words& words, ConsoleState& state);
}  // namespace zorv
