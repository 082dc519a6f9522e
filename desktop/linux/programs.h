#pragma once
#include <sys/types.h>

#include <string>
#include <vector>

// Other programs that we start for the user and then leave alone.
//
// Threads: [any] but [audio]; some milliseconds. Errors: false.

// The full path of an executable on the PATH, or empty.
std::string FindProgram(const std::string& name);

// Starts `arguments[0]`, a full path, with the rest as its arguments, each passed on as it is: no shell reads
// them. It gets none of this process's open files, signal settings or preloaded libraries, its input and
// output are empty, and it lives in a session of its own. Nobody waits for its end, and nothing is left here
// when it comes.
bool StartProgram(const std::vector<std::string>& arguments);

// The same as a child of ours, which the caller awaits, in a process group of its own. Its output goes to the
// open file `output`, if there is one. 0 where it cannot be started.
pid_t SpawnProgram(const std::vector<std::string>& arguments, int output = -1);
