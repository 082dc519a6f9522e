#include "tools/host/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr int widestBar = 40;  // characters of the bar
constexpr int besideBar = 8;   // "[" and "] 100%", and a column left free so that no terminal wraps
constexpr int usualColumns = 80;

// Characters that the bar may have on this terminal; 0 where none can be drawn.
int BarWidth() {
    const char* const terminal = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): nobody changes it
    if (isatty(STDERR_FILENO) == 0 || terminal == nullptr || std::strcmp(terminal, "dumb") == 0) return 0;
    struct winsize size = {};
    const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return std::clamp((isKnown ? size.ws_col : usualColumns) - besideBar, 0, widestBar);
}

}  // namespace

Progress::Progress(std::size_t files) : shares(files, 0.0), width(BarWidth()) {}

Progress::~Progress() {
    Hide();
}

void Progress::Advance(std::size_t file, double share) {
    if (width == 0) return;
    const Locked guard(lock);
    sum += share - shares[file];
    shares[file] = share;
    const int percent = static_cast<int>(100 * sum / static_cast<double>(shares.size()));
    if (percent == percentDrawn) return;
    percentDrawn = percent;
    const auto filled = static_cast<std::size_t>(percent * width / 100);
    const std::string bar =
        std::string(filled, '#') + std::string(static_cast<std::size_t>(width) - filled, '.');
    (void)std::fprintf(stderr, "\r[%s] %3d%%", bar.c_str(), percent);
    (void)std::fflush(stderr);
}

void Progress::Aside(const std::function<void()>& print) {
    const Locked guard(lock);
    Hide();
    print();
}

void Progress::Hide() {
    if (percentDrawn < 0) return;
    percentDrawn = -1;
    (void)std::fputs("\r\033[K", stderr);  // clears to the end of the line
    (void)std::fflush(stderr);
}
