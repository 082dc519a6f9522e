#pragma once
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// A folder of a test's own, gone with it, and programs in it that stand in for the desktop's.
class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "orva_editor_XXXXXX").string();
        path = mkdtemp(pattern.data());
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string File(const std::string& name) const { return (path / name).string(); }

    // A program that runs the lines of `script`.
    void Program(const std::string& name, const std::string& script) const {
        std::ofstream(File(name)) << "#!/bin/sh\n" << script << "\n";
        chmod(File(name).c_str(), 0700);
    }
    // Programs are found here and nowhere else but in the system's own folders, if at all.
    void BecomePath(bool withSystem) const {
        setenv("PATH", withSystem ? (path.string() + ":/usr/bin:/bin").c_str() : path.c_str(), 1);
    }
    std::string Text(const std::string& name) const {
        std::ifstream file(File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool Has(const std::string& name) const { return std::filesystem::exists(File(name)); }

    std::filesystem::path path;
};
