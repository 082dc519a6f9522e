#include "tools/host/file_list.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string_view>

std::vector<std::string> SplitFileList(const std::string& content) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF", playlist = "#EXTM3U";
    std::string_view text = content;
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    const bool isPlaylist = text.starts_with(playlist);  // lines with # are comments there
    const char end = content.find('\0') == std::string::npos ? '\n' : '\0';
    std::vector<std::string> names;
    std::istringstream list{std::string(text)};
    for (std::string name; std::getline(list, name, end);) {
        if (end == '\n' && name.ends_with('\r')) name.pop_back();
        if (!name.empty() && !(isPlaylist && name[0] == '#')) names.push_back(name);
    }
    return names;
}

std::vector<std::string> ReadFileList(const std::string& path) {
    std::ifstream file;
    if (path != "-") file.open(path, std::ios::binary);
    std::istream& in = path == "-" ? std::cin : file;
    std::ostringstream content;
    if (in && in.peek() != std::istream::traits_type::eof()) content << in.rdbuf();
    if (in.bad() || !content || (path != "-" && !file.is_open()))
        throw std::runtime_error((path == "-" ? "standard input" : path) + ": cannot be read as a list");
    for (const std::string_view sound : {"RIFF", "RF64", "fLaC", "OggS", "ID3", ".snd", "FORM"})
        if (content.view().starts_with(sound))
            throw std::runtime_error((path == "-" ? "standard input" : path) +
                                     ": is sound, where a list of names is expected; name " +
                                     (path == "-" ? "/dev/stdin" : "it as AUDIO") + " to hear it");
    return SplitFileList(content.str());
}
