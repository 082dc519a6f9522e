#include "tools/host/output_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <set>
#include <stdexcept>
#include <system_error>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(const fs::path& path, int fault) {
    throw std::runtime_error(path.string() +
                             ": cannot be written: " + std::generic_category().message(fault));
}

// 0, or the system's code for what went wrong.
int WriteFile(const fs::path& path, std::string_view content, const char* mode) {
    struct Close {
        void operator()(std::FILE* file) const { (void)std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), mode));
    if (file == nullptr) return errno;
    if (std::fwrite(content.data(), 1, content.size(), file.get()) != content.size()) return errno;
    if (std::fflush(file.get()) != 0) return errno;
    // Pipes and devices have nothing to bring to the disk.
    if (fsync(fileno(file.get())) != 0 && errno != EINVAL && errno != EROFS) return errno;
    return std::fclose(file.release()) != 0 ? errno : 0;
}

constexpr std::string_view nameField = "{name}";
constexpr std::string_view folderField = "{dir}";

// The pattern with its fields filled in. What is filled in is not looked through again.
std::string Filled(const std::string& pattern, const fs::path& input) {
    const std::string folder = input.has_parent_path() ? input.parent_path().string() : ".";
    std::string text;
    for (std::size_t at = 0; at < pattern.size();) {
        if (pattern.compare(at, nameField.size(), nameField) == 0) {
            text += input.stem().string();
            at += nameField.size();
        } else if (pattern.compare(at, folderField.size(), folderField) == 0) {
            text += folder;
            at += folderField.size();
        } else {
            text += pattern[at++];
        }
    }
    return text;
}

}  // namespace

void WriteWhole(const fs::path& path, std::string_view content) {
    std::error_code unknown;
    const fs::file_status status = fs::status(path, unknown);
    if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status)) {
        if (const int fault = WriteFile(path, content, "we")) Fail(path, fault);
        return;
    }
    // A link stays a link: what it leads to is replaced.
    const fs::path real = fs::is_symlink(path, unknown) ? fs::weakly_canonical(path) : path;
    fs::path draft = real;
    draft.replace_filename("." + real.filename().string() + "." + std::to_string(getpid()) + ".part");
    const int fault = WriteFile(draft, content, "wxe");  // x: never somebody else's file
    if (fault != 0) {
        if (fault != EEXIST) fs::remove(draft, unknown);
        Fail(path, fault);
    }
    std::error_code refused;
    fs::rename(draft, real, refused);
    if (!refused) return;
    fs::remove(draft, unknown);
    Fail(path, refused.value());
}

bool IsPattern(const std::string& target) {
    return target.find(nameField) != std::string::npos || target.find(folderField) != std::string::npos;
}

void MakeFolderOf(const fs::path& path) {
    std::error_code fault;
    if (path.has_parent_path()) fs::create_directories(path.parent_path(), fault);
    if (fault) Fail(path, fault.value());
}

// Files come to their place whole, so one that is there is done.
bool IsUpToDate(const fs::path& output, const fs::path& input) {
    std::error_code noOutput, noInput;
    const auto written = fs::last_write_time(output, noOutput);
    const auto changed = fs::last_write_time(input, noInput);
    return !noOutput && !noInput && written >= changed;
}

std::vector<fs::path> OutputPaths(const std::vector<std::string>& inputs, const fs::path& target,
                                  const std::string& extension) {
    std::error_code unknown;
    const bool isPattern = IsPattern(target.string());
    const bool isFolder = !isPattern && fs::is_directory(target, unknown);
    if (inputs.size() > 1 && !isFolder && !isPattern)
        throw std::invalid_argument(
            "several recordings need an existing folder or a pattern with {name}, and \"" + target.string() +
            "\" is neither");
    std::set<fs::path> sources;  // as they really lie, links followed
    for (const std::string& input : inputs) sources.insert(fs::weakly_canonical(input, unknown));
    std::vector<fs::path> paths;
    std::set<fs::path> taken;
    for (const std::string& input : inputs) {
        fs::path path = target;
        if (isPattern) path = Filled(target.string(), input);
        if (isFolder) path = target / (fs::path(input).stem().string() + extension);
        if (!taken.insert(path.lexically_normal()).second)
            throw std::invalid_argument("two recordings would both write \"" + path.string() + "\"");
        if (fs::is_regular_file(path, unknown) && sources.count(fs::weakly_canonical(path, unknown)) > 0)
            throw std::invalid_argument("\"" + path.string() + "\" is a recording to be heard");
        paths.push_back(path);
    }
    return paths;
}
