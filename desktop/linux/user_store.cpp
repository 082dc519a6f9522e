#include "desktop/user_store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace {

namespace fs = std::filesystem;

// The version in the path gives each version settings of its own.
constexpr const char* basePath[] = {"Software", "ORVA Labs", "ORVA Audio To MIDI VST 1.30"};

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

}  // namespace

bool WriteSetting(std::string_view name, std::string_view text) {
    const fs::path folder = SettingsFolder();
    if (folder.empty() || !MakeFolder(folder)) return false;
    std::string draft = folder / ("." + std::string(name) + ".XXXXXX");  // a dot: it can be no setting
    const int file = mkostemp(draft.data(), O_CLOEXEC);                  // mode 0600
    if (file < 0) return false;
    bool stored = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    stored = stored && fsync(file) == 0;
    stored = close(file) == 0 && stored;
    stored = stored && rename(draft.c_str(), (folder / name).c_str()) == 0;
    if (!stored) unlink(draft.c_str());
    return stored;
}

// Only of a file: to open a pipe in its place would hold up the load of a plug-in.
std::string ReadSetting(std::string_view name) {
    const fs::path path = SettingsFolder() / name;
    std::error_code unknown;
    if (!path.is_absolute() || !fs::is_regular_file(path, unknown)) return {};
    std::ifstream file(path, std::ios::binary);
    std::string text(longestStoredText + 1, '\0');  // one more, to see that it is too long
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(file.bad() ? 0 : static_cast<std::size_t>(file.gcount()));
    return text;
}
