#pragma once
#include <string>

#include "tools/host/take.h"

// The take as a MusicXML 4.0 file: one part of one voice, in bars by its tempo, meter and bar 1, in parts of
// its grid, or sixteenths where it has none. Notes that begin together are a chord and end together, with the
// last of them, at the latest where the next chord begins. What crosses a bar line, or has no note sign of
// its own, is split and tied.
std::string MusicXml(const Take& take);
