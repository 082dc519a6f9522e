#!/usr/bin/env python3
"""Composes the corpus: short studies by instrument and kind, and writes them as Standard MIDI Files.

    compose.py FOLDER    writes FOLDER/<piece>.mid, and FOLDER/corpus.json with the notes of each piece in seconds

Unlike the recordings that the project ships, these are not written to suit the detector: pitches, chords and
rhythms are thrown with dice inside the instrument's range. The same files come out on every run.
"""

import importlib.util
import json
import random
import sys
from dataclasses import dataclass
from pathlib import Path


def load(name, path):
    spec = importlib.util.spec_from_file_location(name, path)
    module = sys.modules[name] = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


# How the shipped pieces are played and written; by its path, since it bears this file's name.
shipped = load("shipped", Path(__file__).resolve().parents[2] / "recordings" / "compose.py")
Note = shipped.Note

BEATS = 32  # quarter notes a piece
LOOSENESS = 0.010  # seconds, the most that chance moves a note


@dataclass
class Instrument:
    name: str
    written: tuple  # MIDI notes, the lowest and the highest in the corpus
    reach: tuple  # those that a player may ask of it, within the 84 equalizer bars
    programs: tuple  # General MIDI, from 0; the pieces of a kind take them in turn
    kinds: tuple


ALL_KINDS = ("singles", "triads", "four notes", "bass and melody")
INSTRUMENTS = (
    Instrument("piano", (36, 96), (24, 96), (0,), ALL_KINDS),  # grand piano; the top octave is hardly ever used
    Instrument("guitar", (40, 83), (40, 88), (24, 25, 27), ALL_KINDS),  # nylon, steel, clean electric
    Instrument("bass", (28, 55), (28, 67), (33, 32), ("singles",)),  # fingered electric, acoustic
    Instrument("organ", (36, 96), (36, 96), (19, 20), ALL_KINDS),  # church, reed; drawbars add the octave below
    Instrument("strings", (36, 88), (36, 100), (48,), ALL_KINDS),  # ensemble
    Instrument("flute", (60, 96), (60, 96), (73,), ("singles",)),
    Instrument("voice", (43, 81), (40, 84), (52, 53), ALL_KINDS),  # choir on "ah", on "oo"
)

# The pieces of each instrument and kind. The settings are chosen on one half and reported on the other, whose
# tempi and levels lie between those of the first.
TAKES = (
    # half, quarter notes a minute, peak in dB of full scale
    ("training", 76, -3),
    ("training", 132, -18),
    ("held out", 100, -6),
    ("held out", 116, -12),
)

CHORDS = {
    "triads": ((0, 4, 7), (0, 3, 7), (0, 3, 8), (0, 4, 9), (0, 5, 9), (0, 5, 8), (0, 3, 6)),
    "four notes": (
        (0, 4, 7, 11),
        (0, 4, 7, 10),
        (0, 3, 7, 10),
        (0, 3, 6, 10),
        (0, 4, 7, 12),
        (0, 3, 7, 12),
        (0, 7, 11, 16),
        (0, 7, 10, 15),
    ),
}


class Dice:
    """Only random() is used of the generator, the one operation whose sequence Python promises to keep."""

    def __init__(self, seed):
        self.generator = random.Random(seed)

    def number(self, low, high):
        """A whole number, both ends included."""
        return low + int(self.generator.random() * (high - low + 1))

    def one_of(self, things):
        return things[self.number(0, len(things) - 1)]


def line(dice, low, high, lengths, rest=0.1, joined=0.92):
    """A voice that wanders by up to a fifth, never striking a pitch twice in a row: a repeated note that is not
    lifted is no new note to any listener of levels, and would measure only that."""
    notes, beat, pitch = [], 0.0, dice.number(low, high)
    while beat < BEATS:
        length = min(dice.one_of(lengths), BEATS - beat)
        step = dice.one_of((-7, -5, -4, -3, -2, -2, -1, 1, 2, 2, 3, 4, 5, 7))
        pitch = pitch + step if low <= pitch + step <= high else pitch - step
        if dice.generator.random() >= rest:
            notes.append(Note(beat, length * joined, pitch, 84))
        beat += length
    return notes


def chords(dice, shapes, low, high, lengths=(1, 2, 2), joined=0.92):
    """Chords struck together, one after the other."""
    notes, beat = [], 0.0
    while beat < BEATS:
        length = min(dice.one_of(lengths), BEATS - beat)
        shape = dice.one_of(shapes)
        root = dice.number(low, high - shape[-1])
        notes += [Note(beat, length * joined, root + step, 80) for step in shape]
        beat += length
    return notes


def study(instrument, kind, dice):
    low, high = instrument.written
    if kind == "singles":
        return line(dice, low, high, lengths=(0.5, 0.5, 1, 1, 1, 2))
    if kind == "bass and melody":
        split = low + (high - low) * 2 // 5
        lower = line(dice, low, split, lengths=(1, 2, 2), rest=0)
        return lower + line(dice, split + 5, high, lengths=(0.5, 0.5, 1, 1, 1.5))
    return chords(dice, CHORDS[kind], max(low, 45), min(high, 88))  # where players put chords, A2 to E6


def pieces():
    """Yields (instrument, kind, half, peak level, piece)."""
    for row, instrument in enumerate(INSTRUMENTS):
        for kind in instrument.kinds:
            for number, (half, tempo, level) in enumerate(TAKES):
                name = f"{instrument.name}-{kind.replace(' ', '_')}-{number + 1}"
                program = instrument.programs[number % len(instrument.programs)]
                seed = 1000 * (row + 1) + 10 * ALL_KINDS.index(kind) + number
                notes = study(instrument, kind, Dice(seed))
                title = f"{name}, {level} dB"  # so that another level makes another file, and new sound
                piece = shipped.Piece(name, title, program, tempo, (4, 4), (0, 0), 0, LOOSENESS, seed, [], notes)
                yield instrument, kind, half, level, piece


def compose(folder):
    """Writes the corpus and returns it as a list of plain records."""
    folder.mkdir(parents=True, exist_ok=True)
    corpus = []
    for instrument, kind, half, level, piece in pieces():
        file, data = folder / f"{piece.name}.mid", shipped.midi_file(piece)
        if not file.exists() or file.read_bytes() != data:  # else its sound, if there is one, still holds
            file.write_bytes(data)
        notes = [[round(start, 4), round(end, 4), pitch] for start, end, pitch, _ in shipped.play(piece)]
        corpus.append(
            {
                "name": piece.name,
                "instrument": instrument.name,
                "kind": kind,
                "half": half,
                "tempo": piece.tempo,
                "level": level,
                "notes": notes,
            }
        )
    (folder / "corpus.json").write_text("\n".join(json.dumps(entry) for entry in corpus) + "\n")
    return corpus


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    written = compose(Path(sys.argv[1]))
    print(f"{len(written)} pieces, {sum(len(entry['notes']) for entry in written)} notes")
