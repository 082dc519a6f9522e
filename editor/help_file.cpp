#include "editor/help_file.h"

#include <system_error>

namespace fs = std::filesystem;

namespace {

bool IsFile(const fs::path& path) {
    std::error_code absent;
    return fs::is_regular_file(path, absent);
}

}  // namespace

fs::path ManualOf(const fs::path& folder) {
    const fs::path above = folder.parent_path();
    for (const fs::path& near :
         {folder / "orva_vst.html", folder / "manual/manual.html", above / "manual/manual.html"})
        if (IsFile(near)) return near;
    // The prefix of an installation stands two to five folders up, by the format, and one more
    // where libraries lie by architecture.
    for (fs::path prefix = above; prefix.has_relative_path(); prefix = prefix.parent_path())
        for (const char* const package : {"orva-vst", "orva-vst3", "orva-clap", "orva-lv2"})
            if (fs::path manual = prefix / "share/doc" / package / "manual.html"; IsFile(manual))
                return manual;
    return {};
}
