#include "editor/hints.h"

#include <algorithm>
#include <iterator>

#include "parameters/parameters.h"

namespace {

struct Row {
    std::int32_t page, tag;
    const char* hint;
};

constexpr std::int32_t mainPage = 0, equalizerPage = 1, optionsPage = 2, aboutPage = 3;

// clang-format off
constexpr Row rows[] = {
    {stripOfPages,  0, "Sliders and recorder."},
    {stripOfPages,  1, "Which notes are heard, and how well."},
    {stripOfPages,  2, "Chords, and where the notes go."},
    {stripOfPages,  3, "Version, log, name and code."},
    {stripOfPages,  4, "The manual. Key: F1."},
    {mainPage,      paramPolyphony,   "How quiet a note may be beside the loudest one. Up: more notes at once."},
    {mainPage,      paramSensitivity, "How quiet a note may be at all. Up: more notes."},
    {mainPage,      paramVelocity,    "MIDI velocity of the notes that go out; 0 is silence."},
    {mainPage,      codeRecording,    "Starts a take, and forgets the last one."},
    {mainPage,      98,               "Ends the take."},
    {mainPage,      776,              "Writes the take to a MIDI file."},
    {equalizerPage, 11, "How well each note is heard, C1 to B7. Taller bars let quieter notes through."},
    {equalizerPage, 0,  "All bars to 0: no note is heard. Undo is in the menu, by a right click."},
    {equalizerPage, 5,  "All bars to 0.5. Undo is in the menu, by a right click."},
    {equalizerPage, 10, "All bars to 1. Undo is in the menu, by a right click."},
    {optionsPage,   paramChordsEnabled,     "Names the chord on the picture."},
    {optionsPage,   paramChordsDelay,       "How late the chord's name comes."},
    {optionsPage,   paramOutputToHost,      "Sends the notes to the host."},
    {optionsPage,   paramDeviceEnabled,     "Sends the notes to the MIDI device below, too."},
    {optionsPage,   paramDevice,            "The MIDI device. Choosing one switches it on."},
    {optionsPage,   paramChannel,           "The MIDI channel of all notes. 1 to 16."},
    {optionsPage,   paramSendProgramChange, "Sends the sound that is chosen below."},
    {optionsPage,   paramInstrument,        "The General MIDI sound."},
    {aboutPage,     0, "Stores name and code."},
    {aboutPage,     5, "Writes what the host says of itself to a text file, for support."},
    {aboutPage,     6, "Stores name and code."},
    {aboutPage,     7, "Stores name and code."},
};
// clang-format on

}  // namespace

std::string HintOf(std::int32_t page, std::int32_t tag) {
    const auto* const found = std::find_if(
        std::begin(rows), std::end(rows), [=](const Row& row) { return row.page == page && row.tag == tag; });
    return found != std::end(rows) ? found->hint : "";
}

std::string HintOf(CActivityMeter::Part part) {
    switch (part) {
        case CActivityMeter::Part::level:
            return "Input, -60 to 0 dB. Left of the mark nothing is heard, right of it every single note; "
                   "within it, overtones decide.";
        case CActivityMeter::Part::clip:
            return "Red: too loud. Beyond +0.77 dB samples wrap around and are heard wrongly.";
        case CActivityMeter::Part::midi: return "Lights when MIDI goes out, to host or device.";
        case CActivityMeter::Part::none: break;
    }
    return "";
}
