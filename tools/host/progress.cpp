#include "tools/host/progress.h"

#include <unistd.h>

#include <cstdio>
#include <string>

Progress::Progress(std::size_t files) : shares(files, 0.0), shown(isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() {
    Hide();
}

void Progress::Advance(std::size_t file, double share) {
    if (!shown) return;
    const std::lock_guard guard(lock);
    sum += share - shares[file];
    shares[file] = share;
    const int percent = static_cast<int>(100 * sum / static_cast<double>(shares.size()));
    if (percent == percentDrawn) return;
    percentDrawn = percent;
    constexpr int width = 40;  // characters
    const auto filled = static_cast<std::size_t>(percent * width / 100);
    const std::string bar = std::string(filled, '#') + std::string(width - filled, '.');
    (void)std::fprintf(stderr, "\r[%s] %3d%%", bar.c_str(), percent);
    (void)std::fflush(stderr);
}

void Progress::Aside(const std::function<void()>& print) {
    const std::lock_guard guard(lock);
    Hide();
    print();
}

void Progress::Hide() {
    if (percentDrawn < 0) return;
    percentDrawn = -1;
    (void)std::fputs("\r\033[K", stderr);  // clears to the end of the line
    (void)std::fflush(stderr);
}
