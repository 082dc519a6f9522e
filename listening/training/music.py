"""What is played in the training data: notes thrown with dice, and windows of the music of Debian's games.

A note is (start, end, pitch, velocity, channel, program), times in seconds; channel 9 has the drums.
"""

import random
from pathlib import Path

import midi

DRUMS = 9
# kind: General MIDI programs, lowest and highest note, shares of a line, chords, two voices and a broken chord
KINDS = {
    "piano": (range(0, 8), 28, 100, (2, 3, 3, 3)),
    "mallets": (range(8, 16), 48, 98, (4, 2, 2, 3)),
    "organ": (range(16, 24), 36, 96, (4, 4, 3, 2)),
    "guitar": (range(24, 32), 40, 86, (3, 3, 2, 4)),
    "bass": (range(32, 40), 28, 58, (8, 0, 1, 1)),
    "strings": (range(40, 47), 36, 98, (8, 2, 3, 1)),
    "ensemble": (range(48, 52), 36, 94, (4, 4, 3, 1)),
    "voice": (range(52, 55), 40, 84, (4, 3, 3, 1)),
    "brass": (range(56, 64), 36, 86, (6, 3, 2, 1)),
    "reed": (range(64, 72), 40, 90, (8, 1, 2, 1)),
    "flute": (range(72, 80), 58, 102, (10, 1, 1, 1)),
    "synth": (range(80, 96), 36, 98, (4, 3, 3, 2)),
}
# What sounds slowly was heard worst, so it is played most.
WEIGHTS = {"strings": 3, "organ": 2.5, "flute": 2.5, "ensemble": 2, "synth": 2, "voice": 1.5, "reed": 1.5}
BENDING = {"strings", "ensemble", "voice", "brass", "reed", "flute", "synth"}  # vibrato, slides
SHAPES = ((0, 4, 7), (0, 3, 7), (0, 5, 9), (0, 3, 8), (0, 4, 7, 10), (0, 3, 7, 10), (0, 4, 7, 12), (0, 7, 12, 16), (0, 12))
FOLDERS = ("simutrans/music", "planetblupi/music", "liquidwar/music")  # of the packages that scripts/setup names


def kind_of(program):
    return next((kind for kind, (programs, *_) in KINDS.items() if program in programs), "synth")


def kinds(dice, count):
    return dice.choices(list(KINDS), [WEIGHTS.get(kind, 1) for kind in KINDS], k=count)


def line(dice, low, high, seconds, beat):
    """One voice: scales, leaps and repeated notes; the shorter the beat, the smaller the steps."""
    notes, at = [], 0.0
    pitch = dice.randint(low, high)
    joined = dice.choice((0.3, 0.5, 0.7, 0.85, 0.95, 1.0, 1.03))
    repeats, loose = dice.choice((0, 0, 0.1, 0.3)), dice.choice((0, 0.005, 0.015))
    lengths = dice.choice(((1,), (0.5, 1), (0.5, 0.5, 1, 2), (0.25, 0.5, 1), (0.25, 0.25, 0.5), (1, 2, 4)))
    steps = (-2, -1, 1, 2) if dice.random() < 0.5 else (-12, -7, -5, -4, -3, -2, -1, 1, 2, 3, 4, 5, 7, 12)
    while at < seconds:
        length = max(0.07, dice.choice(lengths) * beat)
        if dice.random() >= repeats:
            step = dice.choice(steps)
            pitch = pitch + step if low <= pitch + step <= high else pitch - step
        if dice.random() > 0.1:
            start = at + dice.uniform(-loose, loose)
            notes.append((start, start + length * joined, min(max(pitch, low), high)))
        at += length
    return notes


def chords(dice, low, high, seconds, beat, broken):
    notes, at = [], 0.0
    joined = dice.choice((0.4, 0.7, 0.9, 0.97))
    while at < seconds:
        shape = [step for step in dice.choice(SHAPES) if low + step <= high]
        root = dice.randint(low, max(low, high - shape[-1]))
        length = dice.choice((1, 1, 2, 4)) * beat
        gap = beat * dice.choice((0.25, 0.5)) if broken else dice.choice((0, 0, 0.008, 0.02))
        if broken:
            shape = (shape + shape[-2:0:-1]) * 2
            ring = dice.random() < 0.5
            for number, step in enumerate(shape):
                start = at + number * gap
                end = at + len(shape) * gap if ring else start + gap * joined
                notes.append((start, end, root + step))
            at += len(shape) * gap
        else:
            for number, step in enumerate(shape):
                notes.append((at + number * gap, at + length * joined, root + step))
            at += length
    return notes


def solo(dice, kind, seconds):
    """Some seconds of one instrument as (start, end, pitch, velocity)."""
    programs, low, high, shares = KINDS[kind]
    if dice.random() < 0.7:  # a part of the compass
        low, high = sorted((dice.randint(low, high), dice.randint(low, high)))
        low, high = (low - 6, high + 6) if high - low < 12 else (low, high)
        low, high = max(low, KINDS[kind][1]), min(high, KINDS[kind][2])
    beat = dice.uniform(0.25, 0.8)
    style = dice.choices(("line", "chords", "voices", "broken"), shares)[0]
    if style == "line":
        notes = line(dice, low, high, seconds, beat)
    elif style == "voices":
        split = (low + high) // 2
        notes = line(dice, low, max(low, split - 2), seconds, beat * 2) + line(dice, split, high, seconds, beat)
    else:
        notes = chords(dice, low, high, seconds, beat, style == "broken")
    loud, swing = dice.uniform(35, 115), dice.choice((3, 10, 25))
    return [(a, b, p, int(min(max(dice.gauss(loud, swing), 10), 127))) for a, b, p in notes]


def songs():
    """The pieces of the games as lists of notes."""
    roots = [Path("/usr/share/games") / folder for folder in FOLDERS]
    found = []
    for path in sorted(path for root in roots for path in root.glob("*.mid")):
        try:
            notes = midi.read(path)
        except (IndexError, ValueError):
            continue
        if len(notes) > 60:
            found.append(notes)
    return found


def solos(dice, seconds):
    notes, at, channel = [], 0.2, 0
    for kind in kinds(dice, 9):
        length = dice.uniform(6, 12)
        if at + length > seconds:
            break
        program = dice.choice(KINDS[kind][0])
        notes += [(a + at, min(b, length) + at, p, v, channel, program) for a, b, p, v in solo(dice, kind, length - 0.5)]
        at, channel = at + length, channel + 1
    return notes


def together(dice, seconds):
    notes = []
    for channel, kind in enumerate(kinds(dice, dice.choice((2, 2, 3, 3, 4)))):
        program, share = dice.choice(KINDS[kind][0]), dice.uniform(0.5, 1)
        for a, b, p, v in solo(dice, kind, seconds - 1):
            notes.append((a + 0.2, b + 0.2, p, max(10, int(v * share)), channel, program))
    return notes


def window(dice, seconds, pieces):
    """Some seconds of a piece: one part, two or all, with other programs of the same or of any family."""
    for _ in range(30):
        piece = dice.choice(pieces)
        first = dice.uniform(0, max(0.1, piece[-1][0] - seconds))
        notes = [note for note in piece if first <= note[0] < first + seconds - 0.1]
        tones = [note for note in notes if note[4] != DRUMS and note[5] < 104]
        channels = sorted({note[4] for note in tones})
        most = dice.choice((1, 1, 2, 16, 16))
        kept = set(dice.sample(channels, min(most, len(channels))))
        tones = [note for note in tones if note[4] in kept]
        if len(tones) < 0.7 * seconds:
            continue
        programs, shift, slower = {}, dice.randint(-5, 6), dice.choice((1, dice.uniform(0.8, 1.3)))
        for channel in kept:
            own = next(note[5] for note in tones if note[4] == channel)
            way = dice.random()
            if way < 0.45:
                own = dice.choice(KINDS[kind_of(own)][0])
            elif way < 0.7:
                own = dice.choice(KINDS[kinds(dice, 1)[0]][0])
            programs[channel] = own
        drums = [note for note in notes if note[4] == DRUMS] if most > 2 and dice.random() < 0.5 else []
        return [
            ((a - first) * slower + 0.3, (b - first) * slower + 0.3, p + (0 if c == DRUMS else shift), v, c, programs.get(c, 0))
            for a, b, p, v, c, _ in tones + drums
        ]
    return together(dice, seconds)


def beats(dice, seconds):
    notes, at, beat = [], 0.3, dice.uniform(0.12, 0.4)
    kit = ((36, 0.5), (38, 0.3), (42, 0.7), (46, 0.1), (49, 0.05), (45, 0.1), (41, 0.08), (48, 0.08), (51, 0.1), (39, 0.08))
    while at < seconds:
        notes += [(at, at + 0.1, p, dice.randint(30, 120), DRUMS, 0) for p, share in kit if dice.random() < share]
        at += beat
    return notes


def tidy(notes):
    """Sorted; a pitch of a channel that starts again ends first, and stays on for 30 ms at least."""
    result, last = [], {}
    for start, end, pitch, *rest in sorted(notes):
        start = max(0.05, start)
        if not (12 <= pitch <= 108 or rest[1] == DRUMS):
            continue
        key = pitch, rest[1]
        if key in last:
            before = result[last[key]]
            if start - before[0] < 0.06:
                continue
            if before[1] > start - 0.015:
                result[last[key]] = (before[0], max(before[0] + 0.03, start - 0.015), *before[2:])
        last[key] = len(result)
        result.append((start, max(end, start + 0.05), pitch, *rest))
    return result


def clip(dice, seconds, pieces):
    """The notes of one clip."""
    way = dice.random()
    if way < 0.4:
        notes = solos(dice, seconds)
    elif way < 0.55:
        notes = together(dice, seconds)
    else:
        notes = window(dice, seconds, pieces)
    if dice.random() < 0.1 and not any(note[4] == DRUMS for note in notes):
        notes += beats(dice, seconds)
    return tidy(notes)


def truth(notes):
    """(start, end, pitch) of what is to be heard: two channels on one pitch make one note unless the second starts
    50 ms later, which is the first one's end."""
    result, last = [], {}
    for start, end, pitch, _, channel, _ in sorted(notes):
        if channel == DRUMS or not 24 <= pitch <= 107:
            continue
        if pitch in last:
            before = result[last[pitch]]
            if start - before[0] < 0.05:
                before[1] = max(before[1], end)
                continue
            if start < before[1]:
                end = max(end, before[1])
                before[1] = start
        last[pitch] = len(result)
        result.append([start, end, pitch])
    return result


if __name__ == "__main__":
    dice = random.Random(1)
    pieces = songs()
    print(len(pieces), "pieces;", [len(clip(dice, 30, pieces)) for _ in range(9)], "notes")
