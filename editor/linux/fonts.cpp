#include "editor/fonts.h"

#include <fontconfig/fontconfig.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

namespace VSTGUI::Cairo {
extern void (*addFonts)(FcConfig*);  // comes with cmake/toolkit/vstgui.patch
}

namespace {

// A file that stands in no folder. It stays open to the end of the process, since Pango and cairo open a font
// by its path again and again, and keep what they have read beyond the last window.
int FileOf(const Font& font) {
    const int file = memfd_create("orva-font", MFD_CLOEXEC);
    for (const unsigned char* at = font.begin; file >= 0 && at != font.end;) {
        const ssize_t written = write(file, at, static_cast<std::size_t>(font.end - at));
        if (written <= 0) {
            close(file);
            return -1;
        }
        at += written;
    }
    return file;
}

// Where this fails, the system's own sans serif stands in.
void AddFonts(FcConfig* config) {
    for (const Font& font : AllFonts()) {
        const int file = FileOf(font);
        if (file < 0) continue;
        const std::string path = "/proc/self/fd/" + std::to_string(file);
        FcConfigAppFontAddFile(config, reinterpret_cast<const FcChar8*>(path.c_str()));
    }
}

}  // namespace

const char* OwnFontFamily() {
    return "Roboto Condensed";
}

void UseOwnFonts() {
    VSTGUI::Cairo::addFonts = AddFonts;
}
