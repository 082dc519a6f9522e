// Writes the settings to begin with as programs for VST 2 hosts: orva_presets FOLDER writes an .fxp for each
// instrument, and one for the initial settings.
#include <filesystem>
#include <fstream>
#include <iostream>

#include "parameters/program_file.h"
#include "parameters/starting_points.h"

int main(int count, char** words) {
    if (count != 2) {
        std::cerr << "usage: orva_presets FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder(words[1]);
    std::filesystem::create_directories(folder);
    bool written = true;
    const auto write = [&](const std::string& title, const std::vector<ParameterSetting>& settings) {
        std::ofstream file(folder / (title + ".fxp"), std::ios::binary);
        file << ProgramFile(title, settings);
        file.close();
        if (!file) std::cerr << (folder / title).string() << ".fxp: cannot be written\n";
        written = written && !file.fail();
    };
    for (const Beginning& each : Beginnings()) write(each.title, each.settings);
    return written ? 0 : 1;
}
