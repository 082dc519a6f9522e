#!/usr/bin/env python3
"""Composes the four pieces and writes them as Standard MIDI Files.

    compose.py FOLDER    writes FOLDER/<piece>.mid, and prints each piece's length and chords,
                         in the form in which README.md shows them

The same files come out on every run: each piece has its own seed, and only random() is used of the generator,
the one operation whose sequence Python promises to keep.
"""

import random
import sys
from dataclasses import dataclass
from math import ceil
from pathlib import Path

TICKS = 480  # a quarter note; at these tempi a tick is close to 1 ms
TAIL = 1.2  # seconds from the last written beat to the end of the file, for the sound to die away
RESTRIKE = 0.03  # seconds of silence before a pitch sounds again, as a finger that lifts and falls leaves
VELOCITIES = (60, 110)  # no ghost notes and no shouting
PITCHES = (25, 106)  # the notes that the detector can find, its bands 1 to 82


@dataclass
class Note:
    beat: float  # quarter notes from the start of bar 1
    length: float  # quarter notes
    pitch: int  # MIDI note
    velocity: float  # before phrasing and chance


@dataclass
class Piece:
    name: str
    title: str
    program: int  # General MIDI, from 0
    tempo: int  # quarter notes a minute
    meter: tuple  # beats in a bar, and the note that is a beat: (3, 4)
    key: tuple  # sharps (flats are negative), and 1 for minor
    reverb: int  # controller 91: how much of the room is heard
    looseness: float  # seconds, the most that chance moves a note
    seed: int
    chords: list  # (beat, name) in rising order
    notes: list

    @property
    def pickup(self):
        """Quarter notes of rest before bar 1: one beat, so that nothing begins with the file itself."""
        return 4 / self.meter[1]

    @property
    def bar(self):
        return self.meter[0] * 4 / self.meter[1]

    @property
    def last_beat(self):
        """The end of the last bar."""
        return ceil(max(note.beat + note.length for note in self.notes) / self.bar) * self.bar

    def seconds(self, beat):
        return (self.pickup + beat) * 60 / self.tempo

    def length(self):
        return self.seconds(self.last_beat) + TAIL


# Reading the scores below


def pitch_of(name):
    """C4 is 60, F#4 is 66, Bb1 is 34."""
    letter, octave = name[0], name[-1]
    alteration = name.count("#") - name[1:].count("b")
    return 12 * (int(octave) + 1) + "C D EF G A B".index(letter) + alteration


def line(score, velocity, joined=0.95):
    """A voice: pairs of a pitch and a length in quarter notes, '-' for a rest, '|' for the eye only.
    A note sounds for the share `joined` of its length."""
    notes, beat = [], 0.0
    words = score.replace("|", " ").split()
    for name, length in zip(words[::2], words[1::2]):
        if name != "-":
            notes.append(Note(beat, float(length) * joined, pitch_of(name), velocity))
        beat += float(length)
    return notes


def block(start, length, names, velocity, joined=0.95):
    """Notes struck together."""
    return [Note(start, length * joined, pitch_of(name), velocity) for name in names.split()]


# Stroke of eight, string from the lowest, accent
STROKES = (
    (0, 0, 8),
    (1, 1, 0),
    (2, 2, 0),
    (3, 0, 2),
    (3, 3, 6),
    (4, 1, 0),
    (5, 2, 0),
    (6, 0, 2),
    (6, 3, 4),
    (7, 2, 0),
)


def plucked(beat, bar, names, velocity):
    """Eight strokes a bar in threes, three and two; every string rings until it is plucked anew or the chord
    changes. The thumb marks each group, the second and third time together with the highest string."""
    pitches = [pitch_of(name) for name in names.split()]
    notes = []
    for stroke, string, accent in STROKES:
        start = stroke * bar / 8
        notes.append(Note(beat + start, bar * 0.97 - start, pitches[string], velocity + accent))
    return notes


# The pieces


def piano_chords():
    """Eight bars in C: a rising figure, its answer a third higher, and the way home over the fifth."""
    chords = [
        # beat, length, name, bass, the other notes
        (0, 4, "C", "C3", "G3 C4 E4"),
        (4, 4, "Am", "A2", "A3 C4 E4"),
        (8, 4, "F", "F3", "A3 C4 F4"),
        (12, 4, "G", "G2", "G3 B3 D4"),
        (16, 4, "Em", "E3", "B3 E4 G4"),
        (20, 4, "Am7", "A2", "G3 C4 E4"),
        (24, 2, "Dm7", "D3", "F3 A3 C4"),
        (26, 2, "G7", "G2", "F3 B3 D4"),
        (28, 4, "C", "C3", "G3 C4 E4"),
    ]
    notes = line(
        "E5 1.5 F5 .5 G5 2 | A5 1.5 G5 .5 E5 2 | C5 1.5 D5 .5 F5 1 A5 1 | G5 1.5 F5 .5 D5 2 |"
        "G5 1.5 A5 .5 B5 2 | C6 1.5 B5 .5 A5 1 G5 1 | F5 1.5 E5 .5 D5 1 B4 1 | C5 4",
        velocity=78,
    )
    for beat, length, _, bass, hands in chords:
        last = beat == chords[-1][0]
        held = length if last else 2  # struck twice a bar, so that the chord carries
        for start in range(beat, beat + length, held):
            weight = 0 if start == beat else -6
            notes += block(start, held, bass, velocity=78 + weight)
            notes += block(start, held, hands, velocity=72 + weight)
    names = [(beat, name) for beat, _, name, _, _ in chords]
    return Piece("piano_chords", "Morning Walk", 0, 108, (4, 4), (0, 0), 30, 0.012, 1, names, notes)


def guitar_arpeggio():
    """Eight bars in A minor: the top string sings E F G G F A G# A over the turning chords."""
    chords = [
        ("Am", "A2 A3 C4 E4"),
        ("F", "F3 A3 C4 F4"),
        ("C", "C3 C4 E4 G4"),
        ("G", "G2 B3 D4 G4"),
        ("Dm7", "D3 F3 C4 F4"),
        ("Am", "A2 C4 E4 A4"),
        ("E7", "E3 B3 D4 G#4"),
        ("Am", "A2 A3 C4 E4 A4"),
    ]
    bar = 4
    names, notes = [], []
    for number, (name, strings) in enumerate(chords):
        names.append((number * bar, name))
        if number + 1 < len(chords):
            notes += plucked(number * bar, bar, strings, velocity=80)
        else:
            for string, pitch in enumerate(strings.split()):  # a slow stroke of the thumb
                notes.append(Note(number * bar + string * 0.08, bar - string * 0.08, pitch_of(pitch), 84))
    return Piece("guitar_arpeggio", "Lamplight", 24, 120, (4, 4), (0, 1), 30, 0.010, 2, names, notes)


def bass_line():
    """Eight bars in A minor: a long note and a short one, then quarters that walk on to the next bar."""
    notes = line(
        "A2 1.5 C3 .5 D3 1 E3 1 | F2 1.5 A2 .5 C3 1 E3 1 | D3 1.5 F3 .5 E3 1 D3 1 | E3 1 B2 1 G#2 1 B2 1 |"
        "A2 1.5 C3 .5 E3 1 G3 1 | F3 1.5 E3 .5 C3 1 A2 1 | D3 1 F3 1 E3 1 G#2 1 | A2 4",
        velocity=80,
        joined=0.9,
    )
    return Piece("bass_line", "Night Bus", 33, 108, (4, 4), (0, 1), 0, 0.010, 3, [], notes)


def flute_melody():
    """Eight bars in G, in three: the first four ask, the last four climb higher and come to rest."""
    notes = line(
        "D5 1 G5 1.5 A5 .5 | B5 2 A5 .5 G5 .5 | E5 1 A5 1.5 B5 .5 | A5 2 - 1 |"
        "B5 1 D6 1.5 C6 .5 | B5 1 A5 .5 G5 .5 E5 1 | F#5 .5 G5 .5 A5 1.5 F#5 .5 | G5 3",
        velocity=84,
        joined=0.94,
    )
    return Piece("flute_melody", "Over the Hill", 73, 96, (3, 4), (1, 0), 40, 0.012, 4, [], notes)


PIECES = (piano_chords, guitar_arpeggio, bass_line, flute_melody)


# Playing: from the written notes to times and velocities


def chance(generator):
    """Between -1 and 1, mostly near 0: the mean of three throws."""
    return sum(generator.random() for _ in range(3)) * 2 / 3 - 1


def clamp(value, limits):
    return min(max(value, limits[0]), limits[1])


def play(piece):
    """The notes as (start, end, pitch, velocity), the times in seconds from the start of the file."""
    generator = random.Random(piece.seed)
    played = []
    for note in sorted(piece.notes, key=lambda note: (note.beat, note.pitch)):
        start = piece.seconds(note.beat) + piece.looseness * chance(generator)
        end = piece.seconds(note.beat + note.length) + piece.looseness * chance(generator)
        accent = 4 if note.beat % piece.bar == 0 else 0
        through = note.beat / piece.last_beat
        swell = 16 * through * (1 - through) ** 0.5 - 4  # from -4 to +2 at two thirds, then back to -4
        velocity = note.velocity + accent + swell + 5 * chance(generator)
        played.append([start, end, note.pitch, round(clamp(velocity, VELOCITIES))])

    played.sort()
    following = {}
    for note in reversed(played):
        start, end, pitch, _ = note
        note[1] = min(end, following.get(pitch, end + RESTRIKE) - RESTRIKE)
        following[pitch] = start
        assert PITCHES[0] <= pitch <= PITCHES[1] and note[1] > start >= 0
    return played


# Standard MIDI File, format 0


def variable_length(number):
    """Seven bits a byte, the most significant first, the top bit set on all but the last."""
    data = [number & 0x7F]
    while number := number >> 7:
        data.append(number & 0x7F | 0x80)
    return bytes(reversed(data))


def meta(kind, data):
    return bytes([0xFF, kind]) + variable_length(len(data)) + data


def meter_event(beats, unit):
    return meta(0x58, bytes([beats, unit.bit_length() - 1, 24 * 4 // unit, 8]))


def midi_file(piece):
    def tick(seconds):
        return round(seconds * piece.tempo / 60 * TICKS)

    # (tick, rank, bytes); the rank puts settings first and the end of a note before the start of another
    events = [
        (0, 0, meta(0x03, piece.title.encode())),
        (0, 0, meta(0x51, round(60_000_000 / piece.tempo).to_bytes(3, "big"))),
        (0, 0, meta(0x59, bytes([piece.key[0] & 0xFF, piece.key[1]]))),
        (0, 0, meter_event(1, piece.meter[1])),
        (tick(piece.seconds(0)), 0, meter_event(*piece.meter)),
        (0, 1, bytes([0xC0, piece.program])),
        (0, 1, bytes([0xB0, 91, piece.reverb])),
    ]
    for beat, name in piece.chords:
        events.append((tick(piece.seconds(beat)), 1, meta(0x06, name.encode())))
    for start, end, pitch, velocity in play(piece):
        events.append((tick(start), 3, bytes([0x90, pitch, velocity])))
        events.append((tick(end), 2, bytes([0x80, pitch, 64])))
    events.append((tick(piece.length()), 4, meta(0x2F, b"")))

    track, now = b"", 0
    for at, _, data in sorted(events, key=lambda event: event[:2]):
        track += variable_length(at - now) + data
        now = at
    header = (0).to_bytes(2, "big") + (1).to_bytes(2, "big") + TICKS.to_bytes(2, "big")
    return b"MThd" + len(header).to_bytes(4, "big") + header + b"MTrk" + len(track).to_bytes(4, "big") + track


def main(folder):
    for compose in PIECES:
        piece = compose()
        (folder / f"{piece.name}.mid").write_bytes(midi_file(piece))
        print(f"{piece.name} {piece.length():.3f} seconds, {len(piece.notes)} notes")
        ends = [beat for beat, _ in piece.chords[1:]] + [piece.last_beat]
        for (beat, name), end in zip(piece.chords, ends):
            print(f"| {piece.seconds(beat):.3f} | {piece.seconds(end):.3f} | {name} |")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(Path(sys.argv[1]))
