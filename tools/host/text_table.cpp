#include "tools/host/text_table.h"

#include <algorithm>

namespace {

std::size_t Width(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const TextTable& table) {
    std::vector<std::string> titles;
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        titles.push_back(table.columns[column].title);
        std::size_t width = Width(titles.back());
        for (const auto& row : table.rows) width = std::max(width, Width(row[column]));
        widths.push_back(width);
    }
    const auto line = [&](const std::vector<std::string>& texts) {
        std::string gap;
        for (std::size_t column = 0; column < texts.size(); ++column) {
            const std::string padding(widths[column] - Width(texts[column]), ' ');
            const bool right = table.columns[column].right;
            out << gap << "  " << (right ? padding : "") << texts[column];
            gap = right ? "" : padding;  // written only once something follows
        }
        out << '\n';
    };
    line(titles);
    for (const auto& row : table.rows) line(row);
    return out;
}
