#pragma once
#include "notes/notes.h"
#include "tests/support/standard.h"

inline constexpr std::uint32_t lastTick = std::numeric_limits<std::uint32_t>::max();  // of the time line

// The first thing that is wrong with a score, by a scan of all notes, or empty.
inline std::string WhatIsWrong(const TNoteMap& map, const TNoteList& expected) {
    const std::uint32_t m = map.mapIndex;
    if (map.notes.size() != expected.size() || map.points.size() != 2 * expected.size()) return "sizes";
    for (std::size_t index = 0; index < map.notes.size(); ++index) {
        const TNote* note = map.notes[index];
        if (index > 0 && TSimpleNote::CompareByBegin(map.notes[index - 1], note) >= 0)
            return "order of notes";
        if (note->listIndex[m] != static_cast<std::int32_t>(index)) return "listIndex";
        if (note->Begin() >= note->End()) return "begin and end";
        if (std::find(expected.begin(), expected.end(), note) == expected.end()) return "a foreign note";
    }
    for (std::size_t index = 0; index < map.points.size(); ++index) {
        const TNoteBoundary* point = map.points[index];
        if (index > 0 && CompareBoundary(map.points[index - 1], point) >= 0) return "order of points";
        TNoteList sounding;  // between this point and the next one
        for (TNote* note : map.notes)
            if (CompareBoundary(&note->startPoint, point) <= 0 && CompareBoundary(&note->endPoint, point) > 0)
                sounding.push_back(note);
        std::sort(sounding.begin(), sounding.end());
        if (point->sounding[m] != sounding) return "sounding at tick " + std::to_string(point->time);
    }
    return "";
}

inline std::string WhatIsWrong(const TNotes& score) {
    const std::string global = WhatIsWrong(score, score.notes);
    if (!global.empty()) return "map of all notes: " + global;
    for (unsigned pitch = 0; pitch < TPitchMaps::count; ++pitch) {
        TNoteList ofPitch;
        for (TNote* note : score.notes)
            if (note->pitch == pitch) ofPitch.push_back(note);
        const std::string wrong = WhatIsWrong(score.pitchMaps[static_cast<std::uint8_t>(pitch)], ofPitch);
        if (!wrong.empty()) return "map of pitch " + std::to_string(pitch) + ": " + wrong;
    }
    for (const TNote* note : score.notes)
        if (note->owner != &score) return "owner";
    return "";
}
