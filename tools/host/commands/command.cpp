#include "tools/host/commands/command.h"

#include <iostream>

void ReportError(std::string_view subject, std::string_view reason) {
    std::string text(subject);
    text += ": ";
    ReportError(text.append(reason));
}

void ReportError(std::string_view text) {
    std::string line = "orva-host: ";
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        line += byte < 0x20 || byte == 0x7F ? '?' : letter;
    }
    std::cerr << line + '\n' << std::flush;
}
