#include "tools/host/output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fstream>
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

// The draft gets owner and permissions of the file whose place it takes, as far as this user may give them.
void TakeRights(const fs::path& draft, const fs::path& replaced) {
    struct stat old = {};
    if (stat(replaced.c_str(), &old) != 0) return;
    if (chown(draft.c_str(), old.st_uid, old.st_gid) != 0 && chown(draft.c_str(), uid_t(-1), old.st_gid) != 0)
        return;  // somebody else's file is replaced by one of this user's, with usual permissions
    (void)chmod(draft.c_str(), old.st_mode & 07777U);
}

bool BeginsWith(const fs::path& path, std::string_view firstBytes) {
    std::string bytes(firstBytes.size(), '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return file.gcount() == 0 || (file && bytes == firstBytes);  // an empty file is of every kind
}

fs::path Real(const fs::path& path) {  // links followed
    std::error_code unknown;
    return fs::weakly_canonical(fs::absolute(path, unknown), unknown);
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
    static std::atomic<unsigned> drafts{0};  // its name is short: the file's own may be as long as one can be
    draft.replace_filename(".orva-" + std::to_string(getpid()) + "-" + std::to_string(drafts++) + ".part");
    const int fault = WriteFile(draft, content, "wxe");  // x: never somebody else's file
    if (fault != 0) {
        if (fault != EEXIST) fs::remove(draft, unknown);
        Fail(path, fault);
    }
    TakeRights(draft, real);
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

void CheckFolderOf(const fs::path& path) {
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    if (access(folder.c_str(), W_OK | X_OK) != 0) Fail(path, errno);
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
    for (const std::string& input : inputs) sources.insert(Real(input));
    std::vector<fs::path> paths;
    std::set<fs::path> taken;
    for (const std::string& input : inputs) {
        fs::path path = target;
        if (isPattern) path = Filled(target.string(), input);
        if (isFolder) path = target / (fs::path(input).stem().string() + extension);
        if (!taken.insert(path.lexically_normal()).second)
            throw std::invalid_argument("two recordings would both write \"" + path.string() + "\"");
        if (fs::is_regular_file(path, unknown) && sources.count(Real(path)) > 0)
            throw std::invalid_argument("\"" + path.string() + "\" is a recording to be heard");
        paths.push_back(path);
    }
    return paths;
}

void GuardOutputs(const std::vector<PlannedOutput>& outputs, const std::vector<fs::path>& inputs,
                  bool force) {
    std::error_code unknown;
    std::set<fs::path> sources, taken;
    for (const fs::path& input : inputs) sources.insert(Real(input));
    for (const PlannedOutput& output : outputs) {
        const auto refuse = [&](const std::string& reason) {
            throw std::invalid_argument(output.option + ": \"" + output.path.string() + "\" " + reason);
        };
        if (output.path.empty()) refuse("is no name of a file");
        if (output.path == "-") refuse("is no file; name /dev/stdout to write to standard output");
        const fs::file_status status = fs::status(output.path, unknown);
        if (fs::exists(status) && !fs::is_regular_file(status)) continue;
        const fs::path real = Real(output.path);
        if (sources.count(real) > 0) refuse("is read in this run");
        if (!taken.insert(real).second) refuse("would be written twice");
        if (!force && fs::exists(status) && !BeginsWith(output.path, output.firstBytes))
            refuse("exists and is a file of another kind; --force replaces it");
    }
}
