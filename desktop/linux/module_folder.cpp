#include "desktop/module_folder.h"

#include <dlfcn.h>

std::filesystem::path ModuleFolder() {
    static const char here = 0;
    Dl_info info = {};
    if (dladdr(&here, &info) == 0 || info.dli_fname == nullptr) return {};
    return std::filesystem::path(info.dli_fname).parent_path();
}
