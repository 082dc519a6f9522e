#pragma once
#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// A note-on of a Standard MIDI File.
struct WrittenNote {
    double onset = 0;  // s
    int pitch = 0;     // MIDI note
};

// Reads the note-ons of a file of format 0 or 1 with a division in ticks a quarter, all tempo changes
// observed. A tool of the tests for files of our own: what it does not know throws.
class MidiFileReader {
public:
    explicit MidiFileReader(const std::string& newBytes) : bytes(newBytes) {
        if (Word(4) != 0x4D546864 || Word(4) != 6) throw std::runtime_error("no MIDI file");  // "MThd"
        if (Word(2) > 1) throw std::runtime_error("format above 1");
        const std::uint32_t tracks = Word(2);
        division = Word(2);
        for (std::uint32_t track = 0; track < tracks; ++track) ReadTrack();
    }

    std::vector<WrittenNote> Notes() {  // by onset
        std::stable_sort(tempi.begin(), tempi.end(),
                         [](const Change& a, const Change& b) { return a.first < b.first; });
        std::vector<WrittenNote> notes;
        for (const auto& [tick, pitch] : onsets) notes.push_back({Seconds(tick), pitch});
        std::stable_sort(notes.begin(), notes.end(),
                         [](const WrittenNote& a, const WrittenNote& b) { return a.onset < b.onset; });
        return notes;
    }

private:
    using Change = std::pair<std::uint64_t, std::uint32_t>;  // tick, microseconds a quarter from there on

    std::uint32_t Word(int count) {  // most significant byte first
        std::uint32_t word = 0;
        while (count-- > 0) word = word << 8 | static_cast<unsigned char>(bytes.at(at++));
        return word;
    }

    std::uint32_t Variable() {  // seven bits a byte, all but the last with bit 7
        std::uint32_t value = 0, byte = 0;
        do {
            byte = Word(1);
            value = value << 7 | (byte & 0x7F);
        } while ((byte & 0x80) != 0);
        return value;
    }

    void ReadTrack() {
        if (Word(4) != 0x4D54726B) throw std::runtime_error("no track");  // "MTrk"
        const std::size_t length = Word(4), end = at + length;
        std::uint64_t tick = 0;
        std::uint32_t status = 0;
        while (at < end) {
            tick += Variable();
            if ((static_cast<unsigned char>(bytes.at(at)) & 0x80) != 0) status = Word(1);
            if (status == 0xFF) {
                const std::uint32_t kind = Word(1), size = Variable();
                if (kind == 0x51)
                    tempi.emplace_back(tick, Word(3));
                else
                    at += size;
            } else if (status >= 0xF0) {
                at += Variable();
            } else {
                const std::uint32_t first = Word(1);
                const bool hasSecond = status >> 4 != 0xC && status >> 4 != 0xD;
                const std::uint32_t second = hasSecond ? Word(1) : 0;
                if (status >> 4 == 0x9 && second > 0) onsets.emplace_back(tick, static_cast<int>(first));
            }
        }
        at = end;
    }

    double Seconds(std::uint64_t tick) const {
        double microseconds = 0, perQuarter = 500000;  // 120 quarters a minute until the file says otherwise
        std::uint64_t from = 0;
        for (const auto& [changed, tempo] : tempi) {
            if (changed >= tick) break;
            microseconds += static_cast<double>(changed - from) * perQuarter / division;
            perQuarter = tempo;
            from = changed;
        }
        return (microseconds + static_cast<double>(tick - from) * perQuarter / division) / 1e6;
    }

    const std::string& bytes;
    std::size_t at = 0;
    double division = 1;  // ticks a quarter
    std::vector<Change> tempi;
    std::vector<std::pair<std::uint64_t, int>> onsets;  // tick, pitch
};
