#include "desktop/user_store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t maxNameLength = 200;  // bytes; with what a temporary file adds, below a file name's 255
constexpr std::size_t maxTextLength = 255;  // bytes that are read

// The version in the path gives each version settings of its own.
constexpr const char* basePath[] = {"Software", "ORVA Labs", "ORVA Audio To MIDI VST 1.30"};

bool IsName(std::string_view subKey) {
    return !subKey.empty() && subKey.size() <= maxNameLength && subKey.front() != '.' &&
           subKey.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

// Empty where the user has none. A relative path in the environment counts as none.
fs::path ConfigurationFolder() {
    const auto absolute = [](const char* variable) {
        const char* const text =
            std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): read at load and by hand
        fs::path path = text != nullptr ? text : "";
        return path.is_absolute() ? path : fs::path();
    };
    fs::path folder = absolute("XDG_CONFIG_HOME");
    if (!folder.empty()) return folder;
    folder = absolute("HOME");
    return folder.empty() ? folder : folder / ".config";
}

fs::path SettingsFolder() {
    fs::path folder = ConfigurationFolder();
    if (!folder.empty())
        for (const char* const step : basePath) folder /= step;
    return folder;
}

// mkdir -p; what is new is for the user alone.
bool MakeFolder(const fs::path& folder) {
    fs::path made;
    for (const fs::path& step : folder) {
        made /= step;
        if (mkdir(made.c_str(), 0700) != 0 && errno != EEXIST) return false;
    }
    return true;
}

bool WriteAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return fsync(file) == 0;
}

bool Write(std::string_view subKey, std::string_view text) {
    const fs::path folder = SettingsFolder();
    if (folder.empty() || !MakeFolder(folder)) return false;
    const fs::path target = folder / subKey;
    std::string draft = folder / ("." + std::string(subKey) + ".XXXXXX");  // a dot: it can be no setting
    const int file = mkostemp(draft.data(), O_CLOEXEC);                    // mode 0600
    if (file < 0) return false;
    bool stored = WriteAll(file, text);
    stored = close(file) == 0 && stored;
    stored = stored && rename(draft.c_str(), target.c_str()) == 0;
    if (!stored) unlink(draft.c_str());
    return stored;
}

std::string Read(std::string_view subKey) {
    const fs::path folder = SettingsFolder();
    if (folder.empty()) return {};
    // Without waiting: a pipe in the file's place must not hold up the load of a plug-in.
    const int file = open((folder / subKey).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (file < 0) return {};
    struct stat found = {};
    std::string text(maxTextLength + 1, '\0');  // one more, to see that it is too long
    std::size_t length = 0;
    bool whole = fstat(file, &found) == 0 && S_ISREG(found.st_mode);
    while (whole && length < text.size()) {
        const ssize_t got = read(file, &text[length], text.size() - length);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) {
            whole = got == 0;
            break;
        }
        length += static_cast<std::size_t>(got);
    }
    close(file);
    if (!whole || length > maxTextLength) return {};
    text.resize(length);
    return text.substr(0, text.find('\0'));
}

}  // namespace

bool writeRegistryString(std::string_view subKey, std::string_view text) {
    try {
        return IsName(subKey) && Write(subKey, text);
    } catch (const std::exception&) {  // no memory
        return false;
    }
}

std::string readRegistryString(std::string_view subKey) {
    try {
        return IsName(subKey) ? Read(subKey) : std::string();
    } catch (const std::exception&) {
        return {};
    }
}
