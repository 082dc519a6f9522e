#pragma once
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

// The environment for such a program, ended by a null: ours, without what a host that brings its own
// libraries sets for itself. Points into it, so it stands until somebody changes it.
std::vector<char*> ProgramEnvironment();
