"""From MIDI files to sound, and from sound to notes: the programs that the measurement runs."""

import functools
import json
import os
import re
import subprocess
import wave
from pathlib import Path

import numpy

ROOT = Path(__file__).resolve().parents[2]
SOUND_FONT = Path(os.environ.get("SOUND_FONT", "/usr/share/sounds/sf2/FluidR3_GM.sf2"))
HOST = Path(os.environ.get("ORVA_HOST", ROOT / "build/release/orva-host"))
RATE = 48000


def sound_of(corpus, folder):
    """Plays every piece whose sound is older than its notes: mono, 16 bits, without reverb or chorus, the peak
    at the piece's level."""
    samples, unfinished = folder / "stereo.raw", folder / "unfinished.wav"
    for piece in corpus:
        notes, sound = (folder / (piece["name"] + end) for end in (".mid", ".wav"))
        if sound.exists() and sound.stat().st_mtime >= notes.stat().st_mtime:
            continue
        command = ["fluidsynth", "-q", "-ni", "-g", "0.8", "-R", "0", "-C", "0", "-r", str(RATE)]
        command += ["-T", "raw", "-O", "float", "-F", samples, SOUND_FONT, notes]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
        mono = numpy.fromfile(samples, "<f4").reshape(-1, 2).mean(axis=1)
        mono *= 10 ** (piece["level"] / 20) / abs(mono).max()
        with wave.open(str(unfinished), "wb") as file:
            file.setparams((1, 2, RATE, 0, "NONE", ""))
            file.writeframes((mono * 32767).round().astype("<i2").tobytes())
        unfinished.replace(sound)
    samples.unlink(missing_ok=True)


def starting_points():
    """The instruments that `orva-host render --for` knows, from its own table."""
    rows = (ROOT / "parameters/starting_points.cpp").read_text()
    return re.findall(r'^ *\{.*"(\w+)"\},$', rows, re.MULTILINE)


@functools.cache
def ears():
    """Whether orva-host has more than the plug-in's own ear."""
    command = [HOST, "render", "--help"]
    return "--ear" in subprocess.run(command, text=True, stdout=subprocess.PIPE, check=True).stdout


def heard_by_orva(sounds, settings=(), ear="classic"):
    """The notes of each file, in the order of `sounds`. `settings` are further arguments of `orva-host render`;
    `ear` is classic, live or file."""
    hearing = ["--ear", ear] if ears() else []
    command = [HOST, "render", "--json", "--jobs", "0", *hearing, *settings, *sounds]
    output = subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE).stdout
    takes = {take["file"]: take["notes"] for take in map(json.loads, output.splitlines())}  # as they were done
    return [[(note["start"], note["end"], note["midi"]) for note in takes[str(sound)]] for sound in sounds]


def heard_by_aubio(sounds):
    """The same of aubionotes, at its own settings. A line of three numbers is a note: pitch, start, end."""
    takes = []
    for sound in sounds:
        command = ["aubionotes", "-i", sound]
        output = subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE).stdout
        rows = [[float(word) for word in line.split()] for line in output.splitlines()]
        takes.append([(start, end, round(pitch)) for pitch, start, end in (row for row in rows if len(row) == 3)])
    return takes
