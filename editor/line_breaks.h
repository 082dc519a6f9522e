#pragma once
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The lines in which `text` (UTF-8) fits `width`, where `measure` gives the width of a piece of it. A line
// ends at a line break or a blank, neither of which is part of it, or behind "/", "?" or "&"; never behind a
// hyphen, since nobody could say whether it belongs to an address. A longer word is cut between two
// characters.
template <typename Measure>
std::vector<std::string> BreakLines(std::string_view text, double width, Measure measure) {
    std::vector<std::string> lines;
    const auto breakParagraph = [&](std::string_view rest) {
        while (!rest.empty() && measure(rest) > width) {
            std::size_t fits = 0, end = 0, next = 0;  // what fits; where the line ends, where the next begins
            for (std::size_t at = 1; at <= rest.size(); ++at) {
                if (at < rest.size() && (static_cast<unsigned char>(rest[at]) & 0xC0U) == 0x80U) continue;
                if (fits > 0 && measure(rest.substr(0, at)) > width) break;
                fits = at;
                if (at < rest.size() && rest[at] == ' ') end = at, next = at + 1;
                if (std::string_view("/?&").find(rest[at - 1]) != std::string_view::npos) end = next = at;
            }
            if (end == 0) end = next = fits;
            lines.emplace_back(rest.substr(0, end));
            rest.remove_prefix(std::min(next, rest.size()));
        }
        lines.emplace_back(rest);
    };
    for (;;) {
        const std::size_t end = text.find('\n');
        breakParagraph(text.substr(0, end));
        if (end == std::string_view::npos) return lines;
        text.remove_prefix(end + 1);
    }
}
