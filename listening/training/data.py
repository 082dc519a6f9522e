#!/usr/bin/python3
"""Makes clips of training data: band energies and the notes that were played. Nothing of it is stored in the project.

    data.py FOLDER PROGRAMS FIRST COUNT [SOURCE]    SOURCE: of SOURCES; from dice unless given

Clip N of a source is the same on every run; clips that exist are left alone. PROGRAMS is the folder of
listening_energies and listening_synth.
"""

import random
import subprocess
import sys
import zlib
from pathlib import Path

sys.dont_write_bytecode = True

import numpy as np

import music
import sound

FONTS = {
    "timgm": "/usr/share/sounds/sf2/TimGM6mb.sf2",
    "a320u": "/usr/share/sounds/sf2/A320U.sf2",
    "opl3": "/usr/share/sounds/sf2/OPL-3_FM_128M.sf2",
    "general": "/usr/share/minuet/soundfonts/GeneralUser-v1.47.sf2",
    "fluid": "/usr/share/sounds/sf2/FluidR3_GM.sf2",  # for choosing only: a relative of one that is kept for judging
}
KITS = ("timgm", "a320u", "general")
SOURCES = ("timgm", "a320u", "opl3", "general", "synth", "nothing")
SHARES = (20, 22, 13, 22, 30, 6)
SECONDS = 30
CHOOSING = 90000  # clips from this number on are for choosing: other dice, other pieces
SILENT = -140  # dB, the least that is stored


class Workshop:
    def __init__(self, programs):
        self.programs, self.players = programs, {}
        every = music.songs()
        self.pieces = [song for number, song in enumerate(every) if number % 5]
        self.others = every[::5]  # for choosing

    def player(self, font):
        if font not in self.players:
            self.players[font] = sound.Player(FONTS[font])
        return self.players[font]

    def energies(self, samples):
        command = [self.programs / "listening_energies", str(sound.RATE)]
        output = subprocess.run(command, input=samples.tobytes(), check=True, stdout=subprocess.PIPE).stdout
        power = np.frombuffer(output, "<f4").reshape(-1, 84)
        return np.clip(10 * np.log10(power + 1e-14), SILENT, 20).astype(np.float16)

    def nothing(self, dice):
        """Noise, drums or speech, in which no note is to be heard."""
        way = dice.random()
        if way < 0.35:
            return sound.spoken(dice, SECONDS)
        if way < 0.7:
            kit = self.player(dice.choice(KITS))
            return sound.played(dice, kit, music.beats(dice, SECONDS - 1), 0, SECONDS)
        length = SECONDS * sound.RATE
        steps = np.interp(np.arange(length), np.linspace(0, length, 40), [10 ** dice.gauss(0, 0.3) for _ in range(40)])
        random_state = np.random.RandomState(dice.randrange(1 << 31))
        return sound.noise(dice, random_state, np.fft.rfftfreq(length, 1 / sound.RATE), length) * steps

    def clip(self, source, number, choosing):
        dice = random.Random(zlib.crc32(f"{source} {number}".encode()))
        if source == "nothing":
            return self.energies(sound.recorded(dice, self.nothing(dice))), []
        notes = music.clip(dice, SECONDS, self.others if choosing else self.pieces)
        tuning = dice.uniform(-20, 20) if dice.random() < 0.6 else 0
        seconds = max(note[1] for note in notes) + 0.8
        if source == "synth":
            samples = sound.synthesised(dice, self.programs / "listening_synth", notes, tuning, seconds)
            drums = [note for note in notes if note[4] == music.DRUMS]
            if drums:
                beaten = sound.played(dice, self.player(dice.choice(KITS)), drums, 0, seconds)
                gain = abs(samples).max() / (abs(beaten).max() + 1e-9) * 10 ** (-dice.uniform(3, 15) / 20)
                samples = samples[: len(beaten)] + beaten[: len(samples)] * gain
        else:
            samples = sound.played(dice, self.player(source), notes, tuning, seconds)
        return self.energies(sound.recorded(dice, samples)), music.truth(notes)


def main(folder, programs, first, count, fixed):
    folder.mkdir(parents=True, exist_ok=True)
    workshop = Workshop(programs)
    for number in range(first, first + count):
        source = fixed or random.Random(number).choices(SOURCES, SHARES)[0]
        path = folder / f"{source}-{number:05}.npz"
        if path.exists():
            continue
        energies, notes = workshop.clip(source, number, first >= CHOOSING)
        unfinished = path.with_suffix(".part")
        with unfinished.open("wb") as file:
            np.savez(file, energies=energies, notes=np.array(notes, np.float32).reshape(-1, 3))
        unfinished.rename(path)
        print(path.name, len(energies), len(notes), flush=True)

if __name__ == "__main__":
    if len(sys.argv) not in (5, 6):
        sys.exit(__doc__)
    main(Path(sys.argv[1]), Path(sys.argv[2]), int(sys.argv[3]), int(sys.argv[4]), (sys.argv[5:] or [None])[0])
