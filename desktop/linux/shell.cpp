#include "desktop/shell.h"

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <system_error>

#include "desktop/linux/programs.h"

namespace {

class DesktopShell : public IShell {
public:
    bool OpenWebPage(const std::string& address) override { return Open(address); }
    bool OpenMail(const std::string& address) override {
        return !address.empty() && Open("mailto:" + address);
    }
    bool OpenHelpFile(const std::string& path) override {
        std::error_code fault;
        const std::filesystem::path file = std::filesystem::absolute(path, fault);
        return !fault && access(file.c_str(), R_OK) == 0 && Open(file);
    }

private:
    static bool Open(const std::string& target) {
        const std::string program = FindProgram("xdg-open");
        // A target that begins with a dash would be read as an option.
        return !program.empty() && !target.empty() && target.front() != '-' &&
               StartProgram({program, target});
    }
};

std::atomic<IShell*> substitute{nullptr};

}  // namespace

IShell& SystemShell() {
    static IShell& own = *new DesktopShell;  // outlives all callers
    IShell* const other = substitute.load(std::memory_order_acquire);
    return other != nullptr ? *other : own;
}

void SubstituteSystemShell(IShell* shell) {
    substitute.store(shell, std::memory_order_release);
}
