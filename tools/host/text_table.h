#pragma once
#include <ostream>
#include <string>
#include <vector>

// A table with aligned columns, for a terminal. Widths count characters of UTF-8, not bytes.
struct TextTable {
    struct Column {
        std::string title;
        bool right = false;  // numbers stand on the right
    };
    std::vector<Column> columns;
    std::vector<std::vector<std::string>> rows;  // one text a column
};

// Two spaces before each column, nothing after the last.
std::ostream& operator<<(std::ostream& out, const TextTable& table);
