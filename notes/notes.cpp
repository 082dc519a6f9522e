#include "notes/notes.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <memory>

namespace {

constexpr std::uint32_t lastTick = std::numeric_limits<std::uint32_t>::max();

// Notes in a run: a chord's worth at first, so that a small score stays small, then twice as many each time.
constexpr std::size_t firstRun = 8;
constexpr std::size_t longestRun = 1024;

}  // namespace

TPitchMaps::TPitchMaps(std::pmr::memory_resource* memory) {
    for (TNoteMap& map : maps) std::construct_at(&map, std::uint32_t{1}, memory);
}

TPitchMaps::~TPitchMaps() {
    std::destroy(begin(), end());
}

TNotes::TNotes(std::pmr::memory_resource* source)
    : TNoteMap(0, source), bars(source), layers(source), pitchMaps(source), memory(source) {}

TNote* TNotes::NewNote() {
    if (run == nullptr || run->size() == run->capacity())
        ReserveNotes(run == nullptr ? firstRun : std::min(2 * run->capacity(), longestRun));
    assert(run->size() < run->capacity());
    TNote* const note = ::new (&run->emplace_back()) TNote(memory);
    note->run = run;
    return note;
}

void TNotes::ReserveNotes(std::size_t count) {
    if (count == 0 || (run != nullptr && run->capacity() - run->size() >= count)) return;
    auto next = std::allocate_shared<NoteRun>(std::pmr::polymorphic_allocator<NoteRun>(memory));
    next->reserve(count);
    run = std::move(next);
}

TNote* TNotes::AddNote(std::uint32_t begin, std::uint32_t end, std::uint8_t pitch, std::int32_t level,
                       std::uint8_t program, std::uint8_t layer, std::uint8_t channel) {
    begin = std::min(begin, lastTick - 1);
    std::unique_ptr<TNote> note(NewNote());
    InsertNote(note.get(), begin, std::max(end, begin + 1), pitch, level, program, layer, channel);
    return note.release();
}

void TNotes::InsertNote(TNote* note, std::uint32_t begin, std::uint32_t end, std::uint8_t pitch,
                        std::int32_t level, std::uint8_t program, std::uint8_t layer, std::uint8_t channel) {
    assert(begin < end);
    note->startPoint.note = note;
    note->endPoint.note = note;
    note->startPoint.time = begin;
    note->endPoint.time = end;
    note->pitch = pitch;
    note->level = level;
    note->program = program;
    note->layer = layer;
    note->channel = channel;
    File(note);
    note->owner = this;
}

// All or nothing: when memory runs out half way, what was done is taken back.
void TNotes::File(TNote* note) {
    TakeLayer(note->layer);
    try {
        pitchMaps[note->pitch].Insert(note);
        try {
            Insert(note);
        } catch (...) {
            pitchMaps[note->pitch].Remove(note);
            throw;
        }
    } catch (...) {
        ReleaseLayer(note->layer);
        throw;
    }
}

TNote* TNotes::AddCopy(const TSimpleNote& note) {
    TNote* const copy = AddNote(note.GetBegin(), note.GetEnd(), note.pitch, note.level, note.program,
                                note.layer, note.channel);
    copy->tag = note.tag;
    copy->flags = note.flags;
    return copy;
}

void TNotes::AddCopies(const TNotes& other) {
    const TNoteList sources(other.notes, memory);  // a copy, since `other` may be this score
    ReserveNotes(sources.size());
    for (const TNote* note : sources) AddCopy(*note);
}

void TNotes::CopyNotes(const TNotes& other) {
    if (&other == this) return;
    Clear();
    AddCopies(other);
}

void TNotes::Assign(const TNotes& other) {
    if (&other == this) return;
    CopyNotes(other);
    title = other.title;
    tempo = other.tempo;
    meterNumerator = other.meterNumerator;
    meterDenominatorLog2 = other.meterDenominatorLog2;
    keySharps = other.keySharps;
    keyMinor = other.keyMinor;
    layers = other.layers;
    bars = other.bars;
}

void TNotes::ExtractNote(TNote* note) {
    ReleaseLayer(note->layer);
    pitchMaps[note->pitch].Remove(note);
    Remove(note);
    note->owner = nullptr;
}

void TNotes::TransferNote(TNote* note, TNotes& target) {
    const std::uint32_t begin = note->GetBegin();
    const std::uint32_t end = note->GetEnd();
    note->owner->ExtractNote(note);
    target.InsertNote(note, begin, end, note->pitch, note->level, note->program, note->layer, note->channel);
}

void TNotes::Clear() {
    for (TNote* note : notes) delete note;
    for (TNoteMap& map : pitchMaps) map.Clear();
    TNoteMap::Clear();
    if (run.use_count() == 1)
        run->clear();
    else
        run.reset();  // a note that has moved elsewhere still lives in it
}

void TNotes::AppendNotesInPitchRange(TNoteList& result, std::uint8_t pitchA, std::uint8_t pitchB,
                                     std::uint32_t from, std::uint32_t to) const {
    const unsigned lowest = std::min(pitchA, pitchB);
    const unsigned highest = std::max(pitchA, pitchB);
    for (unsigned pitch = lowest; pitch <= highest; ++pitch)
        pitchMaps[static_cast<std::uint8_t>(pitch)].AppendNotesInRange(result, from, to);
}

void TNotes::TakeLayer(std::uint8_t layer) {
    ResizeLayers(std::size_t{layer} + 1);
    ++layers[layer].useCount;
}

void TNotes::ReleaseLayer(std::uint8_t layer) {
    if (layer >= layers.size()) return;
    std::uint32_t& useCount = layers[layer].useCount;
    if (useCount > 0) --useCount;
    if (useCount == 0) TrimLayers();
}

// Record 0 always survives, once the table has any record.
void TNotes::TrimLayers() {
    while (layers.size() > 1 && layers.back().useCount == 0 && layers.back().name.empty()) layers.pop_back();
}

void TNotes::ResizeLayers(std::size_t count) {
    if (layers.size() < count) layers.resize(count);
}
