#pragma once
#include <span>
#include <string>
#include <vector>

#include "parameters/parameters.h"

// Settings of the plug-in to begin with, by instrument. They were looked for on one half of a corpus of
// studies and are kept where they gained more than five points of F-measure on the other half, which
// bench/accuracy measures; its sweep.py prints such rows, and its run reads them from here.
struct StartingPoint {
    float polyphony;    // parameter 0
    float sensitivity;  // parameter 1
    int lowest;         // MIDI notes: the equalizer bars outside are shut
    int highest;
    int slant;               // dB an octave by which the open bars fall from the lowest note upward
    float refinedThreshold;  // logits; of a refined ear, for which the reach alone counts besides
    const char* name;

    std::string Title() const;  // the name with a capital, as menus have it
};

std::span<const StartingPoint> StartingPoints();

// Of a refined ear; 0 if there is none of that name.
float RefinedThresholdFor(const std::string& name);

// The names, "piano, guitar, ...".
std::string StartingPointNames();

// Polyphony, sensitivity and all equalizer bars. Errors: std::invalid_argument if there is none of that name.
std::vector<ParameterSetting> SettingsFor(const std::string& name);
