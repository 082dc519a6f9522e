#pragma once
#include <string>

// A time signature.
struct Meter {
    int beats = 4;     // of a bar, 1 to 32
    int beatLog2 = 2;  // a beat is a whole note halved so often, 0 to 5 times

    int BeatParts() const { return 1 << beatLog2; }  // beats of a whole note
    double BarQuarters() const { return 4.0 * beats / BeatParts(); }
};

// "3/4". Errors: std::invalid_argument with the reason.
Meter ParseMeter(const std::string& text);
