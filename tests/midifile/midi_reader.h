#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "midifile/midi_exporter.h"
#include "notes/notes.h"
#include "tests/notes/memory_stream.h"

// A strict reader of the files that we write: format 1, no running status, nothing but notes, programs and
// meta events. Anything else throws.
struct MidiEvent {
    std::uint64_t tick;
    std::uint8_t status;  // 0xFF for a meta event
    Bytes data;           // the data bytes; of a meta event, its type and its content

    friend bool operator==(const MidiEvent&, const MidiEvent&) = default;
};

using MidiTracks = std::vector<std::vector<MidiEvent>>;

class MidiReader {
public:
    explicit MidiReader(const Bytes& file) : stream(file) {
        ExpectTag(stream, "MThd");
        Expect(GetU32(stream) == 6 && GetU16(stream) == 1, "header");
        const unsigned count = GetU16(stream);
        Expect(GetU16(stream) == 120, "division");
        for (unsigned track = 0; track < count; ++track) tracks.push_back(Track());
        Expect(stream.IsAtEnd(), "bytes behind the last track");
    }

    MidiTracks tracks;

private:
    static void Expect(bool held, const char* what) {
        if (!held) throw std::runtime_error(what);
    }

    std::uint32_t Number() {
        std::uint32_t value = 0;
        for (int byte = 0; byte < 4; ++byte) {
            const std::uint8_t next = GetU8(stream);
            value = value << 7 | (next & 0x7F);
            if (next < 0x80) return value;
        }
        throw std::runtime_error("a number of more than four bytes");
    }

    std::vector<MidiEvent> Track() {
        ExpectTag(stream, "MTrk");
        const std::uint32_t length = GetU32(stream);
        const std::size_t end = stream.position + length;
        std::vector<MidiEvent> events;
        std::uint64_t tick = 0;
        for (;;) {
            tick += Number();
            MidiEvent event{tick, GetU8(stream), {GetU8(stream)}};
            Expect(event.status >= 0x80 && (event.status == 0xFF || event.data[0] < 0x80),
                   "bytes of an event");
            std::uint32_t left = event.status == 0xFF ? Number() : event.status >= 0xC0 ? 0 : 1;
            while (left-- > 0) event.data.push_back(GetU8(stream));
            events.push_back(event);
            if (event.status == 0xFF && event.data[0] == 0x2F) break;
        }
        Expect(stream.position == end, "length of a track");
        return events;
    }

    MemoryStream stream;
};

inline Bytes Exported(const TNotes& score, bool fixFirstBar = true) {
    MemoryStream stream;
    SaveScore(score, stream, fixFirstBar);
    return stream.data;
}

// The events of a track that are no meta events.
inline std::vector<MidiEvent> Voices(const MidiTracks& tracks, std::size_t track) {
    std::vector<MidiEvent> voices;
    for (const MidiEvent& event : tracks.at(track))
        if (event.status != 0xFF) voices.push_back(event);
    return voices;
}
