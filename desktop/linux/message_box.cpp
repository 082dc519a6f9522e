#include "desktop/message_box.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "base/lasting.h"
#include "desktop/linux/programs.h"

namespace {

bool DisplayIsThere() {
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY"}) {
        const char* const value =
            std::getenv(name);  // NOLINT(concurrency-mt-unsafe): a host does not change it
        if (value != nullptr && *value != '\0') return true;
    }
    return false;
}

// Text and caption joined to their options, so that one that begins with a dash is no option.
bool ShowByProgram(const std::string& text, const std::string& caption) {
    const std::string zenity = FindProgram("zenity");
    if (!zenity.empty())
        return StartProgram({zenity, "--error", "--no-markup", "--title=" + caption, "--text=" + text});
    const std::string kdialog = FindProgram("kdialog");
    if (!kdialog.empty()) return StartProgram({kdialog, "--title=" + caption, "--error=" + text});
    return false;
}

// One line, by one write, so that those of several threads do not mix.
void ShowOnStandardError(const std::string& text, const std::string& caption) {
    std::string line = "ORVA Audio To MIDI: " + caption + ": " + text;
    for (char& character : line)
        if (static_cast<unsigned char>(character) < ' ') character = ' ';
    line += '\n';
    for (std::string_view rest = line; !rest.empty();) {
        const ssize_t written = write(STDERR_FILENO, rest.data(), rest.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;  // nobody is left to report it to
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
}

class DialogOrLine : public IMessageBox {
public:
    void Show(const std::string& text, const std::string& caption) override {
        if (!DisplayIsThere() || !ShowByProgram(text, caption)) ShowOnStandardError(text, caption);
    }
};

}  // namespace

IMessageBox& DesktopMessageBox() {
    static Lasting<DialogOrLine> own;
    return own.value;
}
