#pragma once
#include <string>

// Opens things in the programs that the user has for them. Threads: [ui]; nobody waits for the program.
// Errors: false if there is no such program, or nothing to open.
class IShell {
public:
    virtual ~IShell() = default;
    virtual bool OpenWebPage(const std::string& address) = 0;  // "https://..."
    virtual bool OpenMail(const std::string& address) = 0;     // "name@host", without a scheme
    virtual bool OpenHelpFile(const std::string& path) = 0;
};

// The user's desktop: by way of xdg-open on Linux, of the shell and the help viewer on Windows.
IShell& DesktopShell();
// The same, unless another stands in its place.
IShell& SystemShell();
// Another in its place, or with null the system's own again. Not owned.
void SubstituteSystemShell(IShell* shell);
