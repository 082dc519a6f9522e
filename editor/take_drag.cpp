#include "editor/take_drag.h"

#include <random>
#include <system_error>

#include "base/file_path.h"

namespace {

// A new one, which is nobody else's; empty where there cannot be one.
std::filesystem::path MakeFolder() {
    std::error_code fault;
    const std::filesystem::path all = std::filesystem::temp_directory_path(fault);
    std::random_device random;
    for (int i = 0; i < 100 && !fault; ++i) {
        std::filesystem::path folder = all / ("orva-" + std::to_string(random()));
        if (!std::filesystem::create_directory(folder, fault)) continue;  // it was there
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, fault);
        return folder;
    }
    return {};
}

}  // namespace

bool TakeDrag::Begin(VSTGUI::CView& from, const std::function<bool(const std::string& path)>& write) {
    drag.reset();
    if (folder.empty()) folder = MakeFolder();
    if (folder.empty()) return false;
    const std::string path = Utf8(folder / ("ORVA take " + std::to_string(++number) + ".mid"));
    if (!write(path)) return false;
    drag = FileDrag::Begin(from, path);
    return true;
}

void TakeDrag::End() {
    drag.reset();
    std::error_code ignored;
    if (!folder.empty()) std::filesystem::remove_all(folder, ignored);
    folder.clear();
}
