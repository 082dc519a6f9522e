#include "tools/host/live_view.h"

#include <unistd.h>

#include <cstdio>
#include <iomanip>
#include <iostream>

#include "tools/host/chord_line.h"
#include "tools/host/note_list.h"

LiveView::LiveView() : isTerminal(isatty(STDOUT_FILENO) != 0) {}

LiveView::~LiveView() {
    ClearLine();
}

void LiveView::Take(const TimedEvent& event) {
    const int kind = event.bytes[0] & 0xF0;
    if (kind != 0x90 && kind != 0x80) return;
    sounding[event.bytes[0] & 0x0FU][event.bytes[1] & 0x7FU] = kind == 0x90 && event.bytes[2] != 0;
}

std::string LiveView::Text() {
    std::vector<int> notes;
    for (int note = 0; note < 128; ++note)
        for (const auto& channel : sounding)
            if (channel[static_cast<std::size_t>(note)]) {
                notes.push_back(note);
                break;
            }
    std::string text;
    for (const int note : notes) text += (text.empty() ? "" : " ") + NoteName(note);
    const std::string chord = ChordName(notes);
    return chord.empty() ? text : text + "   " + chord;
}

void LiveView::Show(double seconds) {
    const std::string text = Text();
    if (text == shown) return;
    shown = text;
    std::cout << (isTerminal ? "\r\033[K" : "") << std::fixed << std::setprecision(1) << std::setw(8)
              << seconds << "  " << (text.empty() ? "-" : text) << (isTerminal ? "" : "\n") << std::flush;
}

void LiveView::ClearLine() {
    if (isTerminal) std::cout << "\r\033[K" << std::flush;
}
