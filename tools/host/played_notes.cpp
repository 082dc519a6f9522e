#include "tools/host/played_notes.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>

namespace {

struct Change {
    std::uint64_t tick = 0;
    int kind = 0;   // 0: tempo, 1: note off, 2: note on; so that a note ends before the next begins
    int pitch = 0;  // or µs a quarter note, of a tempo
    int channel = 0;
};

// The bytes of a file, or of a part of it. Reading past the end is a fault of the file.
class Bytes {
public:
    Bytes(const std::vector<std::uint8_t>& all, std::size_t begin, std::size_t length)
        : bytes(all), at(begin), end(begin + length) {
        if (length > all.size() - begin) throw std::runtime_error("the MIDI file is cut short");
    }
    bool Left() const { return at < end; }
    std::uint32_t Number(int count) {
        std::uint32_t number = 0;
        for (; count > 0; --count) number = number << 8 | Next();
        return number;
    }
    std::uint32_t Length() {  // seven bits a byte
        std::uint32_t number = 0;
        for (int i = 0; i < 4; ++i) {
            const std::uint32_t byte = Next();
            number = number << 7 | (byte & 0x7F);
            if (byte < 0x80) break;
        }
        return number;
    }
    std::uint8_t Next() {
        if (at >= end) throw std::runtime_error("the MIDI file is cut short");
        return bytes[at++];
    }
    bool DataFollows() const { return at < end && bytes[at] < 0x80; }
    Bytes Take(std::size_t length) {
        if (length > end - at) throw std::runtime_error("the MIDI file is cut short");
        at += length;
        return {bytes, at - length, length};
    }

private:
    const std::vector<std::uint8_t>& bytes;
    std::size_t at, end;
};

void ReadTrack(Bytes track, std::vector<Change>& changes) {
    std::uint64_t tick = 0;
    int status = 0;
    while (track.Left()) {
        tick += track.Length();
        if (!track.DataFollows()) status = track.Next();  // else as the one before
        const int kind = status & 0xF0;
        if (status == 0xFF) {
            const int type = track.Next();
            Bytes data = track.Take(track.Length());
            if (type == 0x51) changes.push_back({tick, 0, static_cast<int>(data.Number(3)), 0});
        } else if (kind == 0xF0) {
            track.Take(track.Length());
        } else if (kind < 0x80) {
            throw std::runtime_error("no message stands where one is due in the MIDI file");
        } else {
            const int first = track.Next();
            const int second = kind == 0xC0 || kind == 0xD0 ? 0 : track.Next();
            if (kind == 0x90 || kind == 0x80)
                changes.push_back({tick, kind == 0x90 && second > 0 ? 2 : 1, first, status & 0x0F});
        }
    }
}

}  // namespace

std::vector<PlayedNote> ReadPlayedNotes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot be read");
    const std::vector<std::uint8_t> all{std::istreambuf_iterator<char>(file), {}};
    Bytes bytes(all, 0, all.size());
    constexpr std::uint32_t headTag = 0x4D546864, trackTag = 0x4D54726B;  // MThd, MTrk
    if (all.size() < 14 || bytes.Number(4) != headTag) throw std::runtime_error("is no MIDI file");
    Bytes head = bytes.Take(bytes.Number(4));
    const std::uint32_t format = head.Number(2);
    head.Number(2);
    const std::uint32_t division = head.Number(2);
    if (format > 1 || division == 0 || division >= 0x8000)
        throw std::runtime_error("is a MIDI file of a kind that is not read here");
    std::vector<Change> changes;
    while (bytes.Left()) {
        const bool isTrack = bytes.Number(4) == trackTag;
        const Bytes chunk = bytes.Take(bytes.Number(4));
        if (isTrack) ReadTrack(chunk, changes);
    }
    std::stable_sort(changes.begin(), changes.end(), [](const Change& a, const Change& b) {
        return a.tick != b.tick ? a.tick < b.tick : a.kind < b.kind;
    });

    std::vector<PlayedNote> notes;
    std::map<int, std::size_t> sounding;   // by channel and pitch: index into notes
    double seconds = 0, perQuarter = 0.5;  // s
    std::uint64_t tick = 0;
    for (const Change& change : changes) {
        seconds += static_cast<double>(change.tick - tick) * perQuarter / division;
        tick = change.tick;
        const int key = change.channel * 128 + change.pitch;
        if (change.kind == 0) {
            perQuarter = change.pitch / 1e6;
            continue;
        }
        if (const auto open = sounding.find(key); open != sounding.end()) {
            notes[open->second].end = seconds;
            sounding.erase(open);
        }
        if (change.kind == 1) continue;
        sounding[key] = notes.size();
        notes.push_back({seconds, seconds, change.pitch});
    }
    for (const auto& [key, note] : sounding) notes[note].end = seconds;
    return notes;
}
