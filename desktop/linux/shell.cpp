#include "desktop/shell.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "desktop/linux/programs.h"

bool ShowWebPage(const std::string& address) {
    const std::string program = FindProgram("xdg-open");
    // An address that begins with a dash would be read as an option.
    return !program.empty() && !address.empty() && address.front() != '-' && StartProgram({program, address});
}

bool ComposeMail(const std::string& address) {
    return !address.empty() && ShowWebPage("mailto:" + address);
}

bool ShowHelpFile(const std::string& path) {
    std::error_code fault;
    const std::filesystem::path file = std::filesystem::absolute(path, fault);
    return !fault && access(file.c_str(), R_OK) == 0 && ShowWebPage(file);
}
