#include "tools/host/plugin_module.h"

#include <dlfcn.h>

#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr const char* pluginName = "orva_vst.so";

std::string Environment(const char* name) {
    const char* const value = secure_getenv(name);
    return value != nullptr ? value : "";
}

std::vector<fs::path> PluginFolders() {
    std::vector<fs::path> folders;
    std::error_code unknown;
    const fs::path program = fs::read_symlink("/proc/self/exe", unknown);
    if (!unknown) {
        folders.push_back(program.parent_path());
        folders.push_back(program.parent_path().parent_path() / "lib/vst");  // installed together
    }
    std::istringstream listed(Environment("VST_PATH"));
    for (std::string folder; std::getline(listed, folder, ':');)
        if (!folder.empty()) folders.emplace_back(folder);
    if (const std::string home = Environment("HOME"); !home.empty())
        folders.push_back(fs::path(home) / ".vst");
    folders.emplace_back("/usr/local/lib/vst");
    folders.emplace_back("/usr/lib/vst");
    return folders;
}

}  // namespace

void PluginModule::Unload::operator()(void* loaded) const {
    dlclose(loaded);
}

// The path is made absolute, since a bare name would be looked for among the system's libraries.
PluginModule::PluginModule(const fs::path& newPath) : path(fs::absolute(newPath)) {
    library.reset(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (library == nullptr) {
        // It begins with the path, and is this thread's own. NOLINTNEXTLINE(concurrency-mt-unsafe)
        const char* const reason = dlerror();
        throw std::runtime_error(reason != nullptr ? reason : path.string() + ": cannot be loaded");
    }
    entry = reinterpret_cast<Entry>(dlsym(library.get(), "VSTPluginMain"));
    if (entry == nullptr)
        throw std::runtime_error(path.string() + ": no VST 2 plug-in, it has no VSTPluginMain");
}

fs::path FindPlugin(const fs::path& named) {
    if (!named.empty()) return named;
    std::string looked;
    for (const fs::path& folder : PluginFolders()) {
        std::error_code unknown;
        if (fs::is_regular_file(folder / pluginName, unknown)) return folder / pluginName;
        looked += (looked.empty() ? "" : ", ") + folder.string();
    }
    throw std::runtime_error(std::string(pluginName) + ": not found in " + looked +
                             "; name it with --plugin");
}
