#pragma once
#include <string>

// Opens things in the programs that the user has for them: by way of xdg-open on Linux, of the shell and the
// help viewer on Windows. Threads: [ui]; nobody waits for the program. Errors: false if there is no such
// program, or nothing to open.
bool ShowWebPage(const std::string& address);  // "https://..."
bool ComposeMail(const std::string& address);  // "name@host", without a scheme
bool ShowHelpFile(const std::string& path);
