// The export of any score there can be: whatever tempo, meter, bars, layers and levels, the file's chunks are
// whole. Input, most significant byte first: 1 byte of options (bit 0 mends the first bar, bit 1 lays bars of
// equal length, bit 2 uses the whole time line, with a meter that fills no gaps, since filling days with bars
// takes its time; else times are cut to 12 minutes); 8 bytes of tempo, numerator, denominator, key, mode;
// 2 bytes of bar spacing; 2 bytes of bar count, 5 bytes a bar (distance from the one before, beats); 18 bytes
// a note for the rest.
#include <bit>
#include <memory>

#include "fuzz/demand.h"
#include "midifile/midi_exporter.h"
#include "notes/notes.h"
#include "tests/notes/memory_stream.h"

namespace {

constexpr std::uint32_t equalBars = 1000;

std::uint32_t GetTime(MemoryStream& input, std::uint8_t options) {
    return GetU32(input) & ((options & 4) != 0 ? 0xFFFFFFFF : 0xFFFFFF);
}

void ReadBarsOf(TNotes& score, MemoryStream& input, std::uint8_t options) {
    const std::uint32_t spacing = GetU16(input);
    if ((options & 2) != 0) score.FillBars(spacing * equalBars, spacing, 4);
    std::uint32_t time = 0;
    for (std::uint16_t left = GetU16(input); left > 0; --left) {
        time += GetTime(input, options);
        score.bars[time] = TBar{left, GetU8(input)};
    }
}

void ReadScoreOf(TNotes& score, MemoryStream& input, std::uint8_t options) {
    score.tempo = std::bit_cast<double>(GetU64(input));
    score.meterNumerator = GetU8(input);
    score.meterDenominatorLog2 = GetU8(input);
    if ((options & 4) != 0) score.meterDenominatorLog2 |= 32;
    score.keySharps = static_cast<std::int8_t>(GetU8(input));
    score.keyMinor = GetBool(input);
    ReadBarsOf(score, input, options);
    for (;;) {
        const std::uint32_t begin = GetTime(input, options), end = GetTime(input, options);
        const std::uint8_t pitch = GetU8(input);
        const auto level = static_cast<std::int32_t>(GetU32(input));
        const std::uint8_t program = GetU8(input), layer = GetU8(input), channel = GetU8(input);
        TNote* const note = score.AddNote(begin, end, pitch, level, program, layer, channel);
        const std::uint16_t flags = GetU16(input);
        note->AssignFlag(nfExcludedA, (flags & 15) == 1);
        note->AssignFlag(nfIncluded, (flags & 15) != 2);
        if ((flags & 16) != 0) score.layers[layer].name = "name";
    }
}

// Header, then chunks up to the very end.
bool IsWhole(MemoryStream& stream) {
    stream.Rewind();
    std::uint32_t length = 0;
    for (const char* name = "MThd"; !stream.IsAtEnd(); name = "MTrk") {
        ExpectTag(stream, name);
        length = GetU32(stream);
        if (length > static_cast<std::uint32_t>(stream.GetSize() - stream.GetPosition())) return false;
        stream.SetPosition(stream.GetPosition() + static_cast<std::int32_t>(length));
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MemoryStream input(std::string(data, data + size));
    const auto score = std::make_unique<TNotes>();
    std::uint8_t options = 0;
    try {
        options = GetU8(input);
        ReadScoreOf(*score, input, options);
    } catch (const std::runtime_error&) {  // the end of the input: the score is what came before it
    }
    MemoryStream output;
    SaveScore(*score, output, (options & 1) != 0);
    Demand(IsWhole(output), "the file is whole");
    return 0;
}
