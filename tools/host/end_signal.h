#pragma once

// A request of the user or the system that the program end, where notes must be switched off or a take saved
// first.

// From now on the first SIGINT, SIGTERM or SIGHUP sets the word below instead of ending the program; a second
// one ends it at once. A broken pipe becomes an error of the write instead: to a handler that does nothing,
// since a signal that is ignored would be ignored by the programs that are started from here, too.
void CatchEndSignals();

// The number of the signal that came, 0 for none.
int EndSignal();

// Ends the program by that signal, as its parent expects. Does not return.
[[noreturn]] void EndBySignal();
