#include <algorithm>
#include <exception>
#include <stdexcept>

#include "notes/notes.h"
#include "notes/stream.h"
#include "notes/stream_values.h"

namespace {

constexpr char signature[] = "TNotes";
constexpr std::uint32_t newestVersion = 1;
constexpr std::uint32_t tickRate = 22050;           // ticks a second
constexpr std::uint32_t highestCount = 0x7FFFFFFF;  // the stored count is signed
constexpr std::uint8_t lowestNote = 24;             // the MIDI note of pitch 0

// The bits of the stored flags, lowest first.
constexpr TNoteFlag storedFlags[] = {nfExcludedA, nfExcludedB, nfIncluded, nfAuxiliary};

}  // namespace

struct TNotes::TStoredNote {
    std::uint32_t begin, end;  // in this system's ticks
    std::int32_t level;
    std::uint32_t flags;
    std::uint32_t order;  // place in the file
    std::uint8_t pitch, program, layer, channel;
};

void TNotes::Write(TBaseStream& stream) const {
    PutTag(stream, signature);
    PutU32(stream, newestVersion);
    PutU32(stream, tickRate);
    PutU32(stream, static_cast<std::uint32_t>(notes.size()));
    for (const TNote* note : notes) {
        PutU32(stream, note->Begin());
        PutU32(stream, note->End());
        PutU8(stream, static_cast<std::uint8_t>(note->pitch + lowestNote));
        PutU32(stream, static_cast<std::uint32_t>(note->level));
        PutU8(stream, note->program);
        PutU8(stream, note->layer);
        PutU8(stream, note->channel);
        PutU32(stream, note->tag);
        std::uint32_t flags = 0;
        for (unsigned bit = 0; bit < std::size(storedFlags); ++bit)
            if (note->HasFlag(storedFlags[bit])) flags |= 1U << bit;
        PutU32(stream, flags);
    }
    PutU32(stream, static_cast<std::uint32_t>(layers.size()));
    for (const TLayerRecord& layer : layers) PutString(stream, layer.name);
    PutString(stream, title);
    PutDouble(stream, tempo);
    PutU8(stream, meterNumerator);
    PutU8(stream, meterDenominatorLog2);
    PutU8(stream, static_cast<std::uint8_t>(keySharps));
    PutU8(stream, keyMinor ? 1 : 0);
    PutU64(stream, bars.size());
    for (const auto& [time, bar] : bars) {
        PutU32(stream, time);
        PutU32(stream, bar.beatsPerBar);
    }
}

void TNotes::Read(TBaseStream& stream) {
    const MemoryBudget budget(readerBudget);
    ExpectTag(stream, signature);
    const std::uint32_t version = GetU32(stream);
    if (version > newestVersion)
        throw std::runtime_error("Cannot read file: newer or incompatible file format.");
    const std::uint32_t rate = GetU32(stream);
    const std::uint32_t count = GetU32(stream);
    if (rate == 0 || count > highestCount) throw std::runtime_error("Invalid data format");
    Clear();
    ReadNotes(stream, count, rate);
    ReadLayers(stream);
    title = GetString(stream);
    tempo = GetDouble(stream);
    meterNumerator = GetU8(stream);
    meterDenominatorLog2 = GetU8(stream);
    keySharps = static_cast<std::int8_t>(GetU8(stream));
    keyMinor = GetBool(stream);
    if (version > 0) ReadBars(stream);
}

// The notes are filed in order of time, whatever order the file has them in, since filing backwards would
// take time that grows with the square of their number. A file that breaks off leaves the notes before that.
void TNotes::ReadNotes(TBaseStream& stream, std::uint32_t count, std::uint32_t rate) {
    std::pmr::vector<TStoredNote> found(memory);
    std::exception_ptr failure;
    try {
        for (std::uint32_t order = 0; order < count; ++order) found.push_back(ReadNote(stream, rate, order));
    } catch (const std::runtime_error&) {
        failure = std::current_exception();
    }
    const auto earlier = [](const TStoredNote& a, const TStoredNote& b) {
        return a.begin != b.begin ? a.begin < b.begin : a.order < b.order;
    };
    if (!std::is_sorted(found.begin(), found.end(), earlier)) std::sort(found.begin(), found.end(), earlier);

    ReserveNotes(found.size());
    for (const TStoredNote& stored : found) {
        TNote* const note = AddNote(stored.begin, stored.end, stored.pitch, stored.level, stored.program,
                                    stored.layer, stored.channel);
        for (unsigned bit = 0; bit < std::size(storedFlags); ++bit)
            note->AssignFlag(storedFlags[bit], (stored.flags >> bit & 1) != 0);
    }
    if (failure) std::rethrow_exception(failure);
}

TNotes::TStoredNote TNotes::ReadNote(TBaseStream& stream, std::uint32_t rate, std::uint32_t order) {
    const auto ticks = [rate](std::uint64_t time) {
        return static_cast<std::uint32_t>(time * tickRate / rate);
    };
    TStoredNote note{};
    note.begin = ticks(GetU32(stream));
    note.end = ticks(GetU32(stream));
    note.pitch = static_cast<std::uint8_t>(GetU8(stream) - lowestNote);
    note.level = static_cast<std::int32_t>(GetU32(stream));
    note.program = GetU8(stream);
    note.layer = GetU8(stream);
    note.channel = GetU8(stream);
    GetU32(stream);  // the tag belongs to whoever wrote it
    note.flags = GetU32(stream);
    note.order = order;
    return note;
}

// One record more than the file names, whatever its count says; the table grows as the names arrive.
void TNotes::ReadLayers(TBaseStream& stream) {
    const std::size_t count = GetU32(stream);
    for (std::size_t layer = 0; layer < count; ++layer) {
        std::string name = GetString(stream);
        ResizeLayers(layer + 1);
        layers[layer].name = std::move(name);
    }
    ResizeLayers(count + 1);
}

// Bars join those that are there, and a tick that has a bar keeps it.
void TNotes::ReadBars(TBaseStream& stream) {
    const std::uint64_t count = GetU64(stream);
    for (std::uint64_t index = 1; index <= count; ++index) {
        const std::uint32_t time = GetU32(stream);
        const std::uint32_t beats = GetU32(stream);
        bars.try_emplace(bars.end(), time, TBar{static_cast<std::uint32_t>(index), beats});
    }
}
