#include "midifile/midi_file.h"

#include <initializer_list>

#include "notes/stream.h"
#include "notes/stream_values.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t trackRoom = 256;

// The low 8 bits of a value, `shift` bits up.
constexpr std::uint8_t Byte(std::uint32_t value, unsigned shift = 0) {
    return static_cast<std::uint8_t>(value >> shift);
}

void Append(Bytes& data, std::initializer_list<std::uint8_t> bytes) {
    data.insert(data.end(), bytes.begin(), bytes.end());
}

void AppendTempo(Bytes& data, std::uint32_t tempo) {
    Append(data, {0xFF, 0x51, 0x03, Byte(tempo, 16), Byte(tempo, 8), Byte(tempo)});
}

std::uint32_t ChannelOr(std::uint32_t channel, std::uint32_t track) {
    return channel >= 255 ? track : channel;
}

std::uint32_t Length(const std::string& text) {
    return static_cast<std::uint32_t>(text.size());
}

void WriteTrack(TBaseStream& stream, const TMidiTrack& track) {
    // 4 bytes end the track; a name costs 4 more: delta, FF, type and length.
    const std::uint32_t named = track.name.empty() ? 0 : Length(track.name) + 4;
    const std::uint32_t length = static_cast<std::uint32_t>(track.data.size()) + 4 + named;
    PutTag(stream, "MTrk");
    PutU32(stream, length & 0xFFFFFF);
    if (!track.name.empty()) {
        for (const std::uint8_t byte : {std::uint8_t{0x00}, std::uint8_t{0xFF}, std::uint8_t{0x03}})
            PutU8(stream, byte);
        PutU8(stream, Byte(Length(track.name)));
        PutTag(stream, track.name);
    }
    for (const std::uint8_t byte : track.data) PutU8(stream, byte);
    PutU32(stream, 0x00FF2F00);  // end of track
}

}  // namespace

TMidiFile::TMidiFile() {
    tracks.reserve(trackRoom);
    tracks.resize(1);
}

Bytes& TMidiFile::Data(std::uint32_t track) {
    if (tracks.size() <= track) tracks.resize(std::size_t{track} + 1);
    return tracks[track].data;
}

void TMidiFile::AddDelta(std::uint32_t track, std::uint32_t ticks) {
    Bytes& data = Data(track);
    if (ticks > 2097151) data.push_back(Byte(ticks >> 21 | 0x80));
    if (ticks > 16383) data.push_back(Byte(ticks >> 14 | 0x80));
    if (ticks > 127) data.push_back(Byte(ticks >> 7 | 0x80));
    data.push_back(Byte(ticks & 0x7F));
}

void TMidiFile::AddNoteOn(std::uint32_t track, std::uint8_t pitch, std::uint8_t velocity,
                          std::uint32_t channel) {
    Append(Data(track), {Byte(0x8F + ChannelOr(channel, track)), pitch, velocity});
}

void TMidiFile::AddNoteOff(std::uint32_t track, std::uint8_t pitch, std::uint32_t channel) {
    Append(Data(track), {Byte(0x7F + ChannelOr(channel, track)), pitch, 0});
}

void TMidiFile::AddProgram(std::uint32_t track, std::uint8_t program, std::uint32_t channel) {
    Append(Data(track), {Byte(0xC0 | (ChannelOr(channel, track) - 1)), program});
}

void TMidiFile::AddTempo(std::uint32_t newTempo) {
    AppendTempo(Data(0), newTempo);
}

void TMidiFile::SetTrackName(std::uint32_t track, const std::string& name) {
    if (name.empty() && tracks.size() <= track) return;
    Data(track);
    tracks[track].name = name;
}

Bytes TMidiFile::ConductorEvents() const {
    Bytes events;
    if (!title.empty()) {
        const std::uint8_t length = Byte(Length(title));
        Append(events, {0x00, 0xFF, 0x02, length});
        events.insert(events.end(), title.begin(), title.begin() + length);
    }
    Append(events, {0x00, 0xFF, 0x58, 0x04, Byte(numerator), Byte(denominatorLog2), 0x18, 0x08});
    Append(events, {0x00, 0xFF, 0x59, 0x02, static_cast<std::uint8_t>(keySharps), Byte(keyMinor)});
    events.push_back(0x00);
    AppendTempo(events, tempo);
    return events;
}

void TMidiFile::Write(TBaseStream& stream) {
    PutTag(stream, "MThd");
    PutU32(stream, 6);
    PutU16(stream, 1);
    PutU16(stream, Byte(static_cast<std::uint32_t>(tracks.size())));
    PutU16(stream, static_cast<std::uint16_t>(division));

    const Bytes conductor = ConductorEvents();
    Bytes& first = Data(0);
    first.insert(first.begin(), conductor.begin(), conductor.end());
    for (const TMidiTrack& track : tracks) WriteTrack(stream, track);
}
