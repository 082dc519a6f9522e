#include "tools/host/file_list.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>

std::vector<std::string> SplitFileList(const std::string& content) {
    const char end = content.find('\0') == std::string::npos ? '\n' : '\0';
    std::vector<std::string> names;
    std::istringstream list(content);
    for (std::string name; std::getline(list, name, end);)
        if (!name.empty()) names.push_back(name);
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
    return SplitFileList(content.str());
}
