#pragma once
#include <string>
#include <vector>

// The names of files that a list holds: one a line, or, where the list has a zero byte, one up to each zero
// byte, as `find -print0` writes them. Empty names are passed over.
std::vector<std::string> SplitFileList(const std::string& content);

// The same of a file with such a list, "-" being standard input. Errors: std::runtime_error with name and
// reason.
std::vector<std::string> ReadFileList(const std::string& path);
