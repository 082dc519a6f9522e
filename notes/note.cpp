#include "notes/note.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

#include "notes/notes.h"

namespace {

constexpr std::uint32_t lastTick = std::numeric_limits<std::uint32_t>::max();

template <typename Value>
int Sign(Value a, Value b) {
    return std::less<Value>()(a, b) ? -1 : std::less<Value>()(b, a) ? 1 : 0;
}

}  // namespace

std::uint32_t TSimpleNote::GetBegin() const {
    return begin;
}
std::uint32_t TSimpleNote::Begin() const {
    return GetBegin();
}
std::uint32_t TSimpleNote::GetEnd() const {
    return end;
}
std::uint32_t TSimpleNote::End() const {
    return GetEnd();
}
std::uint32_t TSimpleNote::GetStart() const {
    return begin;
}
std::uint32_t TSimpleNote::Start() const {
    return GetStart();
}
std::uint32_t TSimpleNote::GetLength() const {
    return end - begin;
}
std::uint32_t TSimpleNote::Length() const {
    return GetLength();
}

void TSimpleNote::MoveTo(std::uint32_t time) {
    const std::uint32_t length = GetLength();
    begin = time;
    end = time + length;
}

void TSimpleNote::SetBegin(std::uint32_t time) {
    begin = time;
}
void TSimpleNote::SetEnd(std::uint32_t time) {
    end = time;
}
void TSimpleNote::SetPitch(std::uint8_t newPitch) {
    pitch = newPitch;
}
void TSimpleNote::SetLayer(std::uint8_t newLayer) {
    layer = newLayer;
}

void TSimpleNote::Init(std::uint32_t newBegin, std::uint32_t newEnd, std::uint8_t newPitch,
                       std::int32_t newLevel, std::uint8_t newProgram, std::uint8_t newLayer,
                       std::uint8_t newChannel) {
    begin = newBegin;
    end = newEnd;
    pitch = newPitch;
    level = newLevel;
    program = newProgram;
    layer = newLayer;
    channel = newChannel;
}

void TSimpleNote::Assign(const TSimpleNote& other) {
    MoveTo(other.Begin());
    SetEnd(other.End());
    SetPitch(other.pitch);
    level = other.level;
    program = other.program;
    SetLayer(other.layer);
    channel = other.channel;
    flags = other.flags;
}

bool TSimpleNote::Equals(const TSimpleNote& other) const {
    return Begin() == other.Begin() && End() == other.End() && pitch == other.pitch && level == other.level &&
           program == other.program && layer == other.layer && channel == other.channel &&
           flags == other.flags;
}

int TSimpleNote::CompareByBegin(const TSimpleNote* a, const TSimpleNote* b) {
    const int byTime = Sign(a->GetBegin(), b->GetBegin());
    return byTime != 0 ? byTime : Sign(a, b);
}

int CompareBoundary(const TNoteBoundary* a, const TNoteBoundary* b) {
    const int byTime = Sign(a->time, b->time);
    if (byTime != 0) return byTime;
    const int byKind = Sign(a->kind, b->kind);
    return byKind != 0 ? byKind : Sign(a, b);
}

TNote::TNote(std::pmr::memory_resource* memory) : startPoint(1, memory), endPoint(0, memory) {}

std::uint32_t TNote::GetBegin() const {
    return startPoint.time;
}
std::uint32_t TNote::GetEnd() const {
    return endPoint.time;
}
std::uint32_t TNote::GetStart() const {
    return GetBegin();
}
std::uint32_t TNote::Start() const {
    return GetBegin();
}
std::uint32_t TNote::GetLength() const {
    return endPoint.time - startPoint.time;
}

// The boundary that leads goes first, so that the begin stays ahead of the end at each moment.
void TNote::MoveTo(std::uint32_t time) {
    if (time == startPoint.time) return;
    const std::uint64_t wanted = std::uint64_t{time} + GetLength();
    const std::uint32_t newEnd = static_cast<std::uint32_t>(std::min<std::uint64_t>(wanted, lastTick));
    const std::uint32_t newBegin = std::min(time, newEnd - 1);
    if (newBegin > startPoint.time) {
        MoveEnd(newEnd);
        MoveBegin(newBegin);
    } else {
        MoveBegin(newBegin);
        MoveEnd(newEnd);
    }
}

void TNote::SetBegin(std::uint32_t time) {
    MoveBegin(time >= endPoint.time ? std::max<std::uint32_t>(endPoint.time, 1) - 1 : time);
}

void TNote::SetEnd(std::uint32_t time) {
    MoveEnd(time <= startPoint.time ? startPoint.time + 1 : time);
}

// The first map changes the time; the second one has to find the boundary where it stood, so the old time
// is put back in between.
void TNote::Move(TNoteBoundary& point, std::uint32_t time, MoveInMap later, MoveInMap earlier) {
    const std::uint32_t old = point.time;
    if (time == old) return;
    if (owner == nullptr) {
        point.time = time;
        return;
    }
    const MoveInMap move = time > old ? later : earlier;
    (owner->pitchMaps[pitch].*move)(&point, time);
    point.time = old;
    (owner->*move)(&point, time);
}

void TNote::MoveBegin(std::uint32_t time) {
    Move(startPoint, time, &TNoteMap::MoveStartLater, &TNoteMap::MoveStartEarlier);
}

void TNote::MoveEnd(std::uint32_t time) {
    Move(endPoint, time, &TNoteMap::MoveEndLater, &TNoteMap::MoveEndEarlier);
}

void TNote::SetPitch(std::uint8_t newPitch) {
    if (newPitch == pitch) return;
    if (owner != nullptr) owner->pitchMaps[pitch].Remove(this);
    pitch = newPitch;
    if (owner != nullptr) owner->pitchMaps[pitch].Insert(this);
}

void TNote::SetLayer(std::uint8_t newLayer) {
    if (newLayer == layer) return;
    if (owner != nullptr) {
        owner->ReleaseLayer(layer);
        owner->TakeLayer(newLayer);
    }
    layer = newLayer;
}

void TNote::operator delete(TNote* note, std::destroying_delete_t) {
    const std::shared_ptr<void> run = std::move(note->run);  // outlives the note that stands in it
    note->~TNote();
    if (run == nullptr) ::operator delete(note);
}
