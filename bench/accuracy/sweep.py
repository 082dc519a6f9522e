#!/usr/bin/python3
"""Looks for each instrument's settings on the training half of the corpus and reports them on the other half.

    sweep.py FOLDER [INSTRUMENT...]    FOLDER as bench/accuracy/run left it, with corpus.json and the sounds;
                                       without a name all of them, and "any" for the whole corpus in one
    sweep.py FOLDER --refined          the same for the refined ears, whose setting is their threshold

Prints the scores on both halves at the plug-in's own settings, at those found, and at parts of those: polyphony,
sensitivity, the lowest and the highest MIDI note whose bar is open, and dB an octave by which open bars fall.
What is sought is the mean of the F-measures at 50 and at 100 ms, all notes of an
instrument together.
"""

import json
import sys
from collections import Counter
from dataclasses import dataclass, replace
from pathlib import Path

from compose import INSTRUMENTS
from score import count, figures
from transcribe import heard_by_orva

LOWEST_BAND = 24  # MIDI note of the first equalizer bar, parameter 3
BARS = 84


@dataclass(frozen=True)
class Settings:
    polyphony: float = 0.87  # the plug-in's own
    sensitivity: float = 0.875
    lowest: int = LOWEST_BAND  # MIDI notes; bars outside are at 0
    highest: int = LOWEST_BAND + BARS - 1
    threshold: float = 0  # of the refined ears
    slant: int = 0  # dB an octave by which bars fall from the lowest note upward; from the highest down if negative

    def arguments(self):
        values = {0: self.polyphony, 1: self.sensitivity}
        full = self.lowest if self.slant >= 0 else self.highest
        for bar in range(BARS):
            note = LOWEST_BAND + bar
            inside = self.lowest <= note <= self.highest
            values[3 + bar] = 10 ** (-self.slant * (note - full) / 12 / 20) if inside else 0.0
        ear = [f"--threshold={self.threshold}"] if self.threshold else []
        return [f"--param={index}={value:.4f}" for index, value in values.items()] + ear


OWN = Settings()
# Coarse on purpose: a finer answer would be about this corpus, not about the instrument.
POLYPHONY = (0.4, 0.5, 0.6, 0.7, 0.75, 0.8, 0.84, 0.87, 0.92)
SENSITIVITY = (0.5, 0.625, 0.7, 0.75, 0.8, 0.875, 0.94, 1.0)
SLANT = (0, -3, 1, 2, 3, 6)


THRESHOLDS = (-0.75, -0.5, -0.25, 0, 0.25, 0.5, 0.75, 1)  # of the refined ears; fewer notes above 0


def counts_of(settings, corpus, folder, ear="classic"):
    heard = heard_by_orva([folder / (piece["name"] + ".wav") for piece in corpus], settings.arguments(), ear)
    return sum((count(piece["notes"], notes) for piece, notes in zip(corpus, heard)), Counter())


class Search:
    """Settings tried on one set of pieces, each but once."""

    def __init__(self, corpus, folder):
        self.corpus, self.folder, self.tried = corpus, folder, {}

    def value(self, settings):
        if settings not in self.tried:
            got = figures(counts_of(settings, self.corpus, self.folder))
            self.tried[settings] = (got["F50"] + got["F100"]) / 2
        return self.tried[settings]

    def best(self, candidates):
        return max(candidates, key=self.value)

    def run(self, shapes):
        """Two thresholds together, coarsely, as they stand for each other; then one setting at a time until
        nothing gains."""
        at = self.best(
            replace(shapes[0], polyphony=polyphony, sensitivity=sensitivity)
            for polyphony in POLYPHONY[::2]
            for sensitivity in SENSITIVITY[1::2]
        )
        while True:
            before = at
            at = self.best([replace(shape, polyphony=at.polyphony, sensitivity=at.sensitivity) for shape in shapes])
            at = self.best([replace(at, polyphony=polyphony) for polyphony in POLYPHONY])
            at = self.best([replace(at, sensitivity=sensitivity) for sensitivity in SENSITIVITY])
            if at == before:
                return at


def shapes_of(instrument):
    """The equalizer untouched, its bars shut outside the instrument's reach, and those left open slanted."""
    if instrument is None:
        return [replace(OWN, slant=slant) for slant in SLANT]
    lowest, highest = instrument.reach
    return [replace(OWN, lowest=lowest, highest=highest, slant=slant) for slant in SLANT] + [OWN]


def refined(folder):
    """For each instrument, with the bars of its reach: F at 50 ms, both halves, live and in files, at each threshold. The
    one to choose is the nearest to 0 that is within a point of the best, both ears together, on the training half."""
    corpus = [json.loads(line) for line in (folder / "corpus.json").read_text().splitlines()]
    print("instrument threshold: training live, file; held out live, file")
    for instrument in INSTRUMENTS:
        lowest, highest = instrument.reach
        rows = {}
        for threshold in THRESHOLDS:
            shape = replace(OWN, lowest=lowest, highest=highest, threshold=threshold)
            rows[threshold] = [
                figures(counts_of(shape, [piece for piece in corpus if ours(piece, instrument, half)], folder, ear))["F50"]
                for half in ("training", "held out")
                for ear in ("live", "file")
            ]
        most = max(sum(row[:2]) for row in rows.values())
        chosen = min((t for t, row in rows.items() if sum(row[:2]) >= most - 1), key=abs)
        for threshold, row in rows.items():
            mark = " chosen" if threshold == chosen else ""
            print(f"{instrument.name} {threshold}:", *(f"{f:.1f}" for f in row), mark, flush=True)


def ours(piece, instrument, half):
    return piece["instrument"] == instrument.name and piece["half"] == half


def main(folder, names):
    corpus = [json.loads(line) for line in (folder / "corpus.json").read_text().splitlines()]
    found = {}
    for instrument in (*INSTRUMENTS, None):
        name = instrument.name if instrument else "any"
        if names and name not in names:
            continue
        halves = {
            half: [piece for piece in corpus if piece["half"] == half and name in (piece["instrument"], "any")]
            for half in ("training", "held out")
        }
        search = Search(halves["training"], folder)
        shapes = shapes_of(instrument)
        best = search.run(shapes)
        versions = {
            "own settings": OWN,
            "bars alone": replace(best, polyphony=OWN.polyphony, sensitivity=OWN.sensitivity),
            "thresholds alone": replace(OWN, polyphony=best.polyphony, sensitivity=best.sensitivity),
            "own sensitivity": replace(best, sensitivity=OWN.sensitivity),
            "without a slant": search.run([shape for shape in shapes if shape.slant == 0]),
            "found": best,
        }
        found[name] = {
            label: {"settings": vars(settings)}
            | {half: figures(counts_of(settings, pieces, folder)) for half, pieces in halves.items()}
            for label, settings in versions.items()
        }
        print(f"{name}, {len(search.tried)} settings tried; F at 50 and 100 ms")
        for label, version in found[name].items():
            scores = "".join(f"  {half} {version[half]['F50']:5.1f} {version[half]['F100']:5.1f}" for half in halves)
            print(f"  {label:17}{scores}  {' '.join(map(str, version['settings'].values()))}", flush=True)
    (folder / "sweep.json").write_text(json.dumps(found, indent=1) + "\n")


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    if sys.argv[2:] == ["--refined"]:
        refined(Path(sys.argv[1]))
    else:
        main(Path(sys.argv[1]), sys.argv[2:])
