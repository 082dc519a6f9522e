#pragma once
#include <cstdlib>
#include <filesystem>
#include <string>

// A folder of its own for a case, gone with the object.
class TempFolder {
public:
    TempFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "orva-torture-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) std::abort();
        path = name;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string operator/(const std::string& name) const { return (path / name).string(); }

    std::filesystem::path path;
};
