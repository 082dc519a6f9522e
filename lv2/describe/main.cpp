// Writes the description of the LV2 plug-in, from the table of its ports: orva_lv2_describe FOLDER FILE MINOR
// writes manifest.ttl, orva.ttl and presets.ttl into FOLDER, for the plug-in in FILE of minor version MINOR.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "lv2/describe/turtle.h"

int main(int count, char** words) {
    if (count != 4) {
        std::cerr << "usage: orva_lv2_describe FOLDER FILE MINOR\n";
        return 2;
    }
    const std::filesystem::path folder(words[1]);
    const auto write = [&](const char* name, const std::string& text) {
        std::ofstream file(folder / name, std::ios::binary);
        file << text;
        file.close();
        if (!file) std::cerr << (folder / name).string() << ": cannot be written\n";
        return !file.fail();
    };
    std::filesystem::create_directories(folder);
    return write("manifest.ttl", Manifest(words[2])) && write("orva.ttl", Description(words[3])) &&
                   write("presets.ttl", Presets())
               ? 0
               : 1;
}
