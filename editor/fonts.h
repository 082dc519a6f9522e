#pragma once
#include <span>

// A font as it lies in the module: the bytes of a TrueType file.
struct Font {
    const unsigned char* begin;
    const unsigned char* end;
};

// The styles of Roboto Condensed that the window's texts use; put into the module at build time. [any]
std::span<const Font> AllFonts();

// Has the toolkit use them beside the system's fonts, in this module's texts only: the host's fonts stay as
// they are. Comes before the first text. [ui, under ToolkitLock()]
void UseOwnFonts();

// The name by which the system knows their family. [ui, after that and the toolkit's start]
const char* OwnFontFamily();
