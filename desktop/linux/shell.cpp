#include "desktop/shell.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "base/lasting.h"
#include "desktop/linux/programs.h"

namespace {

class XdgShell : public IShell {
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

}  // namespace

IShell& DesktopShell() {
    static Lasting<XdgShell> own;
    return own.value;
}
