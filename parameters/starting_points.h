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
};

std::span<const StartingPoint> StartingPoints();

// Of a refined ear; 0 if there is none of that name.
float RefinedThresholdFor(const std::string& name);

// The names, "piano, guitar, ...".
std::string StartingPointNames();

// Polyphony, sensitivity and all equalizer bars. Errors: std::invalid_argument if there is none of that name.
std::vector<ParameterSetting> SettingsFor(const std::string& name);

// What of such settings holds for a refined ear: the bars alone, open or shut.
std::vector<ParameterSetting> ReachOf(std::vector<ParameterSetting> settings);

// What windows and hosts offer to begin with, each with its title: "Initial", which is how the plug-in
// begins, and the instruments.
struct Beginning {
    std::string title;
    std::vector<ParameterSetting> settings;
};
std::vector<Beginning> Beginnings();
