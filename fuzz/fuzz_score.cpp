// The reader of stored scores on any bytes: it loads, or raises one of its messages or an allocation failure,
// and what it loaded is sound, comes back the same, took memory in proportion, and is exported as a whole
// MIDI file, whatever its tempo, meter, bars, layers and levels.
#include "midifile/midi_exporter.h"
#include "notes/notes.h"
#include "tests/notes/memory_stream.h"
#include "tests/notes/score_check.h"

namespace {

constexpr std::size_t checkedNotes = 30;     // the check scans all notes for each point
constexpr std::uint32_t longest = 0xFFFFFF;  // ticks, 12 minutes

// Ends the fuzzing, with the input kept, unless it is true. Time and memory are limited by libFuzzer.
void Demand(bool isTrue, const std::string& what) {
    if (isTrue) return;
    std::fprintf(stderr, "not true: %s\n", what.c_str());
    std::abort();
}

bool Load(TNotes& score, const Bytes& bytes) {
    MemoryStream stream(Text(bytes));
    try {
        score.Read(stream);
        return true;
    } catch (const std::runtime_error& failure) {
        const std::string said = failure.what();
        Demand(said == "Can't read byte from stream." || said == "Unknown data format signature" ||
                   said == "Invalid data format" ||
                   said == "Cannot read file: newer or incompatible file format.",
               said);
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    }
    return false;
}

bool AnyOverlap(const TNotes& score) {
    return std::any_of(score.points.begin(), score.points.end(),
                       [](const TNoteBoundary* point) { return point->sounding[0].size() > 1; });
}

// Header, then chunks up to the very end.
bool IsWhole(MemoryStream& stream) {
    stream.Rewind();
    for (const char* name = "MThd"; !stream.IsAtEnd(); name = "MTrk") {
        ExpectTag(stream, name);
        const std::uint32_t length = GetU32(stream);
        if (length > static_cast<std::uint32_t>(stream.GetSize() - stream.GetPosition())) return false;
        stream.SetPosition(stream.GetPosition() + static_cast<std::int32_t>(length));
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes(data, data + size);
    MemoryBudget observer(std::size_t{1} << 40);
    const auto score = std::make_unique<TNotes>();
    const bool loaded = Load(*score, bytes);
    Demand(observer.Highest() <= TNotes::readerBudget, "the reader keeps to its budget");
    Demand(AnyOverlap(*score) || observer.Highest() <= 16384 + 1024 * size,
           "memory is in proportion to the file");
    if (score->notes.size() <= checkedNotes) {
        const std::string wrong = WhatIsWrong(*score);
        Demand(wrong.empty(), wrong);
    }
    if (!loaded) return 0;

    const auto again = std::make_unique<TNotes>();
    Demand(Load(*again, Written(*score)), "what is written can be read");
    score->ResizeLayers(score->layers.size() + 1);
    Demand(Written(*again) == Written(*score), "what was read is written again, with one more layer name");

    MemoryStream file;
    const std::uint32_t lastBar = score->bars.empty() ? 0 : score->bars.rbegin()->first;
    if (std::max(score->LastTime(), lastBar) > longest)
        score->meterDenominatorLog2 |= 32;  // fills no gaps: to fill days with bars takes its time
    SaveScore(*score, file, size % 2 == 0);
    Demand(IsWhole(file), "the MIDI file is whole");
    return 0;
}
