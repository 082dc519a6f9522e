#include "tools/host/icon.h"

// The assembler finds the picture in the folder where the build renders it.
asm(".pushsection .rodata\n"
    "orva_icon: .incbin \"orva_icon.png\"\n"
    "orva_icon_end:\n"
    ".popsection\n");

extern "C" {
#pragma GCC visibility push(hidden)
extern const unsigned char orva_icon[], orva_icon_end[];
#pragma GCC visibility pop
}

std::span<const unsigned char> IconPng() {
    return {orva_icon, orva_icon_end};
}
