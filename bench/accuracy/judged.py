"""The judged corpus: nothing of it may be used for training the net or for choosing a setting.

Twelve kinds of instrument, each with studies thrown with dice and windows of real pieces, through two sound fonts;
whole pieces with and without drums; and sounds in which no note is to be heard.
"""

import functools
import json
import random
import shutil
import subprocess
import sys
import zlib
from pathlib import Path

import numpy

from compose import ALL_KINDS, Dice, Instrument, shipped, study

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "listening/training"))
import midi  # noqa: E402
import music  # noqa: E402
import sound  # noqa: E402

FONTS = {
    "MuseScore": "/usr/share/sounds/sf3/MuseScore_General_Lite.sf3",
    "Csound": "/usr/share/sounds/sf2/sf_GMbank.sf2",
}
# name, compass, programs, kinds of study
KINDS = tuple(
    Instrument(name, compass, compass, programs, kinds)
    for name, compass, programs, kinds in (
        ("piano", (36, 96), (0, 4, 6), ALL_KINDS),
        ("mallets", (53, 96), (11, 12, 8), ALL_KINDS),
        ("organ", (36, 96), (19, 16, 20, 21), ALL_KINDS),
        ("guitar", (40, 83), (24, 25, 27, 30), ALL_KINDS),
        ("bass", (28, 55), (33, 32, 34), ("singles",)),
        ("strings", (48, 93), (40, 42, 41, 45), ("singles", "bass and melody")),
        ("ensemble", (40, 88), (48, 50, 49), ALL_KINDS),
        ("voice", (43, 81), (52, 53, 54), ALL_KINDS),
        ("brass", (41, 82), (56, 57, 60, 61), ALL_KINDS),
        ("reed", (46, 86), (65, 68, 71), ("singles", "bass and melody")),
        ("flute", (60, 96), (73, 72, 75, 79), ("singles", "bass and melody")),
        ("synth", (40, 90), (81, 89, 80, 91), ALL_KINDS),
    )
)
TEMPI, LEVELS = (92, 124, 156), (-3, -12, -27)  # of the three studies of a kind: quarters a minute, peak in dB
WINDOWS, SECONDS = 4, 18  # of real pieces, for each kind
DENSEST = 200  # notes of a window: what is denser is no music but an exercise of a program that writes MIDI files
MUSIC = (
    "/usr/share/games/openttd/baseset/openmsx/*.mid",
    "/usr/share/doc/mma/examples/*/*.mid",
    "/usr/share/doc/abcmidi/examples/*.abc",
)


def studies():
    for row, instrument in enumerate(KINDS):
        for number, (tempo, level) in enumerate(zip(TEMPI, LEVELS)):
            kind = instrument.kinds[number % len(instrument.kinds)]
            seed = 70000 + 100 * row + number
            name = f"{instrument.name}-dice-{number + 1}"
            program = instrument.programs[number % len(instrument.programs)]
            notes = study(instrument, kind, Dice(seed))
            piece = shipped.Piece(name, name, program, tempo, (4, 4), (0, 0), 0, 0.010, seed, [], notes)
            played = [(a, b, p, v, 0, program) for a, b, p, v in shipped.play(piece)]
            yield name, instrument.name, "dice", level, list(FONTS)[(row + number) % 2], played


def pieces(folder):
    """The notes of the real pieces, by their names."""
    found = {}
    for pattern in MUSIC:
        for path in sorted(Path("/").glob(pattern[1:])):
            if path.suffix == ".abc":
                target = folder / (path.stem + ".mid")
                subprocess.run(["abc2midi", path, "1", "-o", target], stdout=subprocess.DEVNULL, check=False)
                path = target
            try:
                notes = midi.read(path)
            except (OSError, IndexError, ValueError):
                continue
            if len(notes) > 40:
                found[path.stem] = notes
    return found


def windows(folder):
    """Parts of pieces: first those that a piece gives to the kind itself, then others, played by it."""
    songs = pieces(folder)
    parts = {}  # kind: [(name, notes)]
    for name, notes in sorted(songs.items()):
        for kind in (instrument.name for instrument in KINDS):
            part = [n for n in notes if n[4] != music.DRUMS and n[5] < 96 and music.kind_of(n[5]) == kind]
            if len(part) > 30:
                parts.setdefault(kind, []).append((name, part))
    melodies = [(name, part) for kind in ("flute", "reed", "piano", "strings") for name, part in parts.get(kind, [])]
    for row, instrument in enumerate(KINDS):
        dice, made = random.Random(9000 + row), 0
        own, others = parts.get(instrument.name, [])[:], melodies[:]
        dice.shuffle(own)
        dice.shuffle(others)
        for name, part in own + own + others + others:
            played = cut(dice, part)
            if not played or made == WINDOWS:
                continue
            if music.kind_of(played[0][5]) != instrument.name:
                centre = sum(note[2] for note in played) / len(played)
                shift = 12 * round((sum(instrument.written) / 2 - centre) / 12)
                program = dice.choice(instrument.programs)
                played = [(a, b, p + shift, v, c, program) for a, b, p, v, c, _ in played]
            font = list(FONTS)[(row + made + 1) % 2]
            if not all(sounds(font, program) for program in {note[5] for note in played}):
                continue
            made += 1
            level = (-4, -9, -16, -24)[made - 1]
            yield f"{instrument.name}-real-{made}", instrument.name, "real", level, font, played
    dice = random.Random(9999)
    for number, name in enumerate(dice.sample(sorted(songs), 16)):
        drums = number % 2 == 1
        played = cut(dice, [n for n in songs[name] if n[4] != music.DRUMS or drums], 30, 4 * DENSEST)
        if played:
            kind, font = "with drums" if drums else "without drums", list(FONTS)[number // 2 % 2]
            played = [note for note in played if note[4] == music.DRUMS or sounds(font, note[5])]
            yield f"whole-{number + 1}", "whole pieces", kind, -4, font, played


def cut(dice, notes, least=14, most=DENSEST):
    """SECONDS of a part from a random place, or None if eight of them have too few or too many notes."""
    for _ in range(8):
        first = dice.uniform(0, max(0.1, notes[-1][0] - SECONDS))
        inside = [n for n in notes if first <= n[0] < first + SECONDS - 0.5]
        if least <= len(inside) <= most:
            return [(a - first + 0.3, min(b - first, SECONDS) + 0.3, *rest) for a, b, *rest in inside]
    return None


def silent(folder):
    """Noise, drums and speech as (name, kind, maker of samples)."""
    seconds = 20
    count = seconds * sound.RATE
    for number, slope in enumerate((0, 0.5, 1)):
        random_state = numpy.random.RandomState(number)
        spectrum = random_state.randn(count // 2 + 1) + 1j * random_state.randn(count // 2 + 1)
        frequencies = numpy.maximum(numpy.fft.rfftfreq(count, 1 / sound.RATE), 20)
        yield f"noise-{number + 1}", "noise", lambda s=spectrum, f=frequencies, e=slope: numpy.fft.irfft(s * f**-e)
    for number, font in enumerate(FONTS):
        beats = music.tidy(music.beats(random.Random(number), seconds - 1))
        yield f"drums-{number + 1}", "drums", lambda b=beats, f=font: play(b, f, seconds)
    text = (ROOT / "README.md").read_text()[:600]
    for number, voice in enumerate(("en+m3", "en+f2", "de+m1")):

        def speak(voice=voice):
            path = folder / "speech.wav"
            subprocess.run(["espeak-ng", "-v", voice, "-w", path, text], check=True)
            samples = numpy.frombuffer(path.read_bytes()[44:], "<i2")[: seconds * 22050] / 32768
            return numpy.interp(numpy.arange(len(samples) * 2) / 2, numpy.arange(len(samples)), samples)

        yield f"speech-{number + 1}", "speech", speak


PLAYERS = {}


def play(notes, font, seconds):
    """Without reverb, chorus, bends or detuning."""
    if font not in PLAYERS:
        PLAYERS[font] = sound.Player(FONTS[font])
    events, last = [], {}
    for start, end, pitch, velocity, channel, program in notes:
        if channel != music.DRUMS and last.get(channel) != program:
            events.append((max(0, start - 0.002), 1, "program_change", channel, program))
            last[channel] = program
        events += [(start, 2, "noteon", channel, pitch, velocity), (end, 1, "noteoff", channel, pitch)]
    return PLAYERS[font].play(events, seconds, False, False)


@functools.cache
def sounds(font, program):
    """Whether a font has this program; one has silence in the place of some."""
    return abs(play([(0.05, 0.5, 60, 100, 0, program)], font, 0.6)).max() > 1e-4


def write(path, samples, level):
    samples = samples * 10 ** (level / 20) / (abs(samples).max() + 1e-9)
    (samples * 32767).round().astype("<i2").tofile(path)


def corpus(folder):
    """Records of what is judged; their sound, 16 bits, mono, 44.1 kHz, in FOLDER/NAME.raw, is made where it lacks."""
    folder.mkdir(parents=True, exist_ok=True)
    if not shutil.which("abc2midi") or not shutil.which("espeak-ng"):
        sys.exit("bench/accuracy/run: missing: abc2midi or espeak-ng (Debian packages abcmidi, espeak-ng)")
    records = []
    for name, kind, way, level, font, notes in (*studies(), *windows(folder)):
        notes = music.tidy(notes)
        truth = [[round(a, 4), round(b, 4), p] for a, b, p in music.truth(notes)]
        mark = zlib.crc32(repr((notes, level, font)).encode())
        path = folder / f"{name}-{mark:08x}.raw"
        if not path.exists():
            write(path, play(notes, font, notes[-1][1] + 1.5), level)
        records.append({"name": name, "sound": path, "kind": kind, "way": way, "font": font, "notes": truth})
    for name, kind, make in silent(folder):
        path = folder / f"{name}.raw"
        if not path.exists():
            write(path, make(), -9)
        records.append({"name": name, "sound": path, "kind": kind, "way": "nothing", "font": "", "notes": []})
    return records


if __name__ == "__main__":
    for record in corpus(Path(sys.argv[1])):
        shown = {key: record[key] for key in ("name", "kind", "way", "font")}
        print(json.dumps({**shown, "notes": len(record["notes"])}))
