// The reader of stored scores on any bytes: it loads, or raises one of its messages or an allocation failure,
// and what it loaded is sound, comes back the same, took memory in proportion, and is exported as a whole
// MIDI file, whatever its tempo, meter, bars, layers and levels.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

#include "midifile/midi_exporter.h"
#include "notes/notes.h"
#include "tests/notes/memory_stream.h"
#include "tests/notes/score_check.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

constexpr std::size_t headSize = 18;         // bytes before the notes
constexpr std::size_t recordSize = 24;       // bytes of a note
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

void PutField(std::uint8_t* place, std::uint32_t value) {
    for (int byte = 0; byte < 4; ++byte) place[byte] = static_cast<std::uint8_t>(value >> (24 - 8 * byte));
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

// Half of the time the usual mutations; else a field, a record or the count, as the format has them.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    std::minstd_rand random(seed);
    const std::size_t records = size > headSize ? (size - headSize) / recordSize : 0;
    if (records == 0 || random() % 2 == 0) return LLVMFuzzerMutate(data, size, maxSize);
    std::uint8_t* const record = data + headSize + random() % records * recordSize;
    constexpr std::uint32_t limits[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
    const std::uint8_t* const other = data + headSize + random() % records * recordSize;
    switch (random() % 4) {
        case 0:  // a time next to another note's
            std::copy_n(other + 4 * (random() % 2), 4, record + 4 * (random() % 2));
            break;
        case 1:  // a field at its limits
            PutField(data + random() % (size - 3), limits[random() % std::size(limits)]);
            break;
        case 2:  // one note more
            if (size + recordSize > maxSize) break;
            std::copy_backward(record, data + size, data + size + recordSize);
            PutField(data + 14, static_cast<std::uint32_t>(records + 1));
            return size + recordSize;
        default: PutField(data + 14, static_cast<std::uint32_t>(random() % (records + 2)));
    }
    return size;
}
