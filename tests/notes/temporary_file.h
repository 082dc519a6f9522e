#pragma once
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// A file of its own for one test, gone with the object.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::vector<std::uint8_t>& content = {}) {
        const char* folder = std::getenv("TMPDIR");
        name = std::string(folder != nullptr ? folder : "/tmp") + "/orva_test_XXXXXX";
        const int descriptor = mkstemp(name.data());
        if (descriptor >= 0) close(descriptor);
        std::ofstream(name, std::ios::binary)
            .write(reinterpret_cast<const char*>(content.data()),
                   static_cast<std::streamsize>(content.size()));
    }
    ~TemporaryFile() { unlink(name.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    std::vector<std::uint8_t> Content() const {
        std::ifstream file(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    std::string name;
};
