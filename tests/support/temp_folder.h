#pragma once
#include "tests/support/test.h"

inline std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteAll(const std::filesystem::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

// A folder of its own for a test or a case, gone with the object.
class TempFolder {
public:
    TempFolder() {
        path =
            std::filesystem::temp_directory_path() / ("orva-test-" + std::to_string(std::random_device()()));
        if (!std::filesystem::create_directory(path)) throw std::runtime_error("no temporary folder");
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string operator/(const std::string& name) const { return (path / name).string(); }
    bool Has(const std::string& name) const { return std::filesystem::exists(path / name); }
    std::size_t Files() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(path), std::filesystem::directory_iterator()));
    }

    // A program that runs the lines of `script`, in the place of one of the desktop's.
    void Program(const std::string& name, const std::string& script) const {
        WriteAll(path / name, "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(path / name, std::filesystem::perms::owner_all);
    }
#ifndef _WIN32  // whose C library has no setenv
    // Programs are found here and nowhere else but in the system's own folders, if at all.
    void BecomePath(bool withSystem) const {
        setenv("PATH", (path.string() + (withSystem ? ":/usr/bin:/bin" : "")).c_str(), 1);
    }
#endif

    std::filesystem::path path;
};
