#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/host/take.h"

// What sounds, and the chord that it makes, in a terminal: one line that follows the music, or where standard
// output is no terminal, a new line for each change.
//
// Threads: one at a time. Standard output is its own; a failure to write there shows in the stream's state.
class LiveView {
public:
    LiveView();
    ~LiveView();  // leaves the terminal at the begin of a line
    LiveView(const LiveView&) = delete;
    LiveView& operator=(const LiveView&) = delete;

    void Take(const TimedEvent& event);  // in the order of sending
    std::string Text();                  // "C3 E3 G3   C", or empty while nothing sounds
    void Show(double seconds);           // prints it if it has changed; seconds since the start
    void ClearLine();                    // before anybody else writes to the terminal

private:
    std::array<std::array<bool, 128>, 16> sounding{};  // by channel and MIDI note
    const bool isTerminal;
    std::string shown;
};
