#pragma once
#include "tests/support/standard.h"

// An event of a MIDI file.
struct MidiEvent {
    std::uint64_t tick;
    std::uint8_t status;             // 0xFF for a meta event
    std::vector<std::uint8_t> data;  // the data bytes; of a meta event, its type and its content

    friend bool operator==(const MidiEvent&, const MidiEvent&) = default;
};

using MidiTracks = std::vector<std::vector<MidiEvent>>;

// A note-on of a MIDI file.
struct WrittenNote {
    double onset = 0;  // s
    int pitch = 0;     // MIDI note
};

// A strict reader of the files that we write: format 1, 120 ticks a quarter, no running status, nothing but
// messages of two or three bytes and meta events. Anything else throws.
class MidiReader {
public:
    explicit MidiReader(std::string file, unsigned format = 1, unsigned division = 120)
        : bytes(std::move(file)), ticksPerQuarter(division) {
        ExpectTag("MThd");
        Expect(Number(4) == 6 && Number(2) == format, "header");
        const unsigned count = Number(2);
        Expect(Number(2) == division, "division");
        for (unsigned track = 0; track < count; ++track) tracks.push_back(Track());
        Expect(at == bytes.size(), "bytes behind the last track");
    }

    // All note-ons by onset, at the tempi that the file gives.
    std::vector<WrittenNote> Notes() const {
        std::vector<MidiEvent> events;
        for (const auto& track : tracks) events.insert(events.end(), track.begin(), track.end());
        std::ranges::stable_sort(events, {}, &MidiEvent::tick);
        std::vector<WrittenNote> notes;
        double seconds = 0, perQuarter = 0.5;  // s; 120 quarters a minute until the file says otherwise
        std::uint64_t tick = 0;
        for (const auto& [when, status, data] : events) {
            seconds += static_cast<double>(when - tick) * perQuarter / ticksPerQuarter;
            tick = when;
            if (status == 0xFF && data[0] == 0x51)
                perQuarter = (data.at(1) * 65536 + data.at(2) * 256 + data.at(3)) / 1e6;
            else if (status >> 4 == 9 && data[1] > 0)
                notes.push_back({seconds, data[0]});
        }
        return notes;
    }

    MidiTracks tracks;

private:
    static void Expect(bool held, const char* what) {
        if (!held) throw std::runtime_error(what);
    }
    void ExpectTag(std::string_view tag) {
        for (const char letter : tag) Expect(Byte() == static_cast<std::uint8_t>(letter), "tag");
    }
    std::uint8_t Byte() { return static_cast<std::uint8_t>(bytes.at(at++)); }
    unsigned Number(int size) {  // most significant byte first
        unsigned value = 0;
        while (size-- > 0) value = value << 8 | Byte();
        return value;
    }
    std::uint32_t LongNumber() {  // seven bits a byte, all but the last with the eighth
        std::uint32_t value = 0;
        for (int byte = 0; byte < 4; ++byte) {
            const std::uint8_t next = Byte();
            value = value << 7 | (next & 0x7F);
            if (next < 0x80) return value;
        }
        throw std::runtime_error("a number of more than four bytes");
    }

    std::vector<MidiEvent> Track() {
        ExpectTag("MTrk");
        const std::size_t length = Number(4), end = at + length;
        std::vector<MidiEvent> events;
        std::uint64_t tick = 0;
        do {
            tick += LongNumber();
            const std::uint8_t status = Byte();
            MidiEvent event{tick, status, {Byte()}};
            Expect(status == 0xFF || (status >= 0x80 && status < 0xE0 && event.data[0] < 0x80),
                   "bytes of an event");
            std::uint32_t left = status == 0xFF ? LongNumber() : status >= 0xC0 ? 0 : 1;
            while (left-- > 0) event.data.push_back(Byte());
            events.push_back(event);
        } while (events.back().status != 0xFF || events.back().data[0] != 0x2F);
        Expect(at == end, "length of a track");
        return events;
    }

    const std::string bytes;
    std::size_t at = 0;
    const double ticksPerQuarter;
};

// The events of a track that are no meta events.
inline std::vector<MidiEvent> Voices(const MidiTracks& tracks, std::size_t track) {
    std::vector<MidiEvent> voices = tracks.at(track);
    std::erase_if(voices, [](const MidiEvent& event) { return event.status == 0xFF; });
    return voices;
}
