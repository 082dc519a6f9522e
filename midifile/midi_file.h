#pragma once
#include <cstdint>
#include <string>
#include <vector>

class TBaseStream;

// One track: its events so far, each behind its delta, without the end of track.
struct TMidiTrack {
    TMidiTrack() { data.reserve(512); }

    std::string name;
    std::vector<std::uint8_t> data;
};

// A Standard MIDI File in the making, one byte buffer a track. It knows bytes, ticks, tracks and events, and
// nothing of notes or seconds. Format 1, no running status: each event carries its status byte.
//
// Every event operation makes sure that the track exists, and adds at its end. Channels count from 1; one of
// 255 or more means that the track's number serves as the channel. Nothing here is checked: the caller passes
// what the format allows. Threads: one at a time, no lock.
class TMidiFile {
public:
    TMidiFile();

    // Ticks since the track's event before, as a variable-length number. At most four bytes are written;
    // values of 2^28 and above are not reduced first, which no reader understands.
    void AddDelta(std::uint32_t track, std::uint32_t ticks);
    void AddNoteOn(std::uint32_t track, std::uint8_t pitch, std::uint8_t velocity, std::uint32_t channel);
    void AddNoteOff(std::uint32_t track, std::uint8_t pitch, std::uint32_t channel);
    void AddProgram(std::uint32_t track, std::uint8_t program, std::uint32_t channel);
    void AddTempo(std::uint32_t newTempo);  // to track 0, behind a delta of the caller's
    // An empty name for a track that does not exist yet changes nothing.
    void SetTrackName(std::uint32_t track, const std::string& name);

    // The whole file, once: the conductor's events (title, meter, key, tempo) go to the front of track 0 and
    // stay there. The format leaves 1 byte for the number of tracks, 3 for the length of one, and 1 for the
    // lengths of title and names: a longer title is cut to that byte, a longer name is written whole and
    // makes a bad file. So does any text of 128 bytes or more: readers take such a length byte for the first
    // of two. Failures are the stream's.
    void Write(TBaseStream& stream);

    std::string title;  // written as the copyright notice, if not empty
    std::vector<TMidiTrack> tracks;
    std::uint32_t numerator = 4;  // time signature
    std::uint32_t denominatorLog2 = 2;
    std::uint32_t tempo = 500000;  // microseconds per quarter note, at the start
    std::uint32_t division = 120;  // ticks per quarter note
    std::int32_t keySharps = 0;    // flats if negative
    std::uint32_t keyMinor = 0;

private:
    std::vector<std::uint8_t>& Data(std::uint32_t track);
    std::vector<std::uint8_t> ConductorEvents() const;
};
