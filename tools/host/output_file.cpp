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

std::vector<fs::path> OutputPaths(const std::vector<std::string>& inputs, const fs::path& target,
                                  const std::string& extension) {
    std::error_code unknown;
    const bool isFolder = fs::is_directory(target, unknown);
    if (inputs.size() > 1 && !isFolder)
        throw std::invalid_argument("several recordings need an existing folder, which \"" + target.string() +
                                    "\" is not");
    std::set<fs::path> sources;  // as they really lie, links followed
    for (const std::string& input : inputs) sources.insert(fs::weakly_canonical(input, unknown));
    std::vector<fs::path> paths;
    std::set<fs::path> taken;
    for (const std::string& input : inputs) {
        fs::path path = target;
        if (isFolder) path = target / (fs::path(input).stem().string() + extension);
        if (!taken.insert(path).second)
            throw std::invalid_argument("two recordings would both write \"" + path.string() + "\"");
        if (fs::is_regular_file(path, unknown) && sources.count(fs::weakly_canonical(path, unknown)) > 0)
            throw std::invalid_argument("\"" + path.string() + "\" is a recording to be heard");
        paths.push_back(path);
    }
    return paths;
}
