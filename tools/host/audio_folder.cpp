#include "tools/host/audio_folder.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string_view>

namespace fs = std::filesystem;

namespace {

// Of the formats that libsndfile reads, those whose extension means sound and nothing else.
constexpr std::string_view soundExtensions[] = {
    ".wav",  ".wave", ".bwf",  ".rf64", ".w64",  // RIFF and its kin
    ".aif",  ".aiff", ".aifc", ".caf",           // Apple's
    ".au",   ".snd",                             // Sun's
    ".flac", ".ogg",  ".oga",  ".opus",          // Xiph's
    ".mp1",  ".mp2",  ".mp3",                    // MPEG
    ".voc",  ".iff",  ".8svx", ".svx",  ".sf",  ".sph", ".nist",
    ".paf",  ".pvf",  ".avr",  ".xi",   ".sds", ".wve",
};

bool IsSound(const fs::path& path) {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return std::find(std::begin(soundExtensions), std::end(soundExtensions), extension) !=
           std::end(soundExtensions);
}

void Search(const fs::path& folder, std::vector<std::string>& found) {
    std::error_code fault;
    fs::directory_iterator entry(folder, fault);
    for (; !fault && entry != fs::directory_iterator(); entry.increment(fault)) {
        std::error_code unknown;
        if (entry->path().filename().string().starts_with('.')) continue;
        if (entry->is_directory(unknown)) {
            if (!entry->is_symlink(unknown)) Search(entry->path(), found);
        } else if (IsSound(entry->path())) {
            found.push_back(entry->path().string());
        }
    }
    if (fault) found.push_back(folder.string());
}

}  // namespace

std::vector<std::string> RecordingsIn(const std::string& folder) {
    std::vector<std::string> found;
    Search(folder, found);
    std::sort(found.begin(), found.end());
    if (found.empty()) found.push_back(folder);
    return found;
}

std::vector<std::string> WithFoldersSearched(const std::vector<std::string>& names) {
    std::vector<std::string> all;
    for (const std::string& name : names) {
        std::error_code unknown;
        const std::vector<std::string> recordings =
            fs::is_directory(name, unknown) ? RecordingsIn(name) : std::vector<std::string>{name};
        all.insert(all.end(), recordings.begin(), recordings.end());
    }
    return all;
}
