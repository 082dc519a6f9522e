"""From notes to the sound that a microphone or a line would give: FluidSynth's library plays sound fonts, our own
synthesiser plays the rest; rooms, microphones, tape, distortion and noise follow."""

import ctypes
import ctypes.util
import subprocess

import numpy as np

from music import BENDING, DRUMS, kind_of

RATE = 44100
BEND_RANGE = 2  # semitones, of the pitch wheel


class Player:
    """FluidSynth with one sound font, kept loaded."""

    def __init__(self, path):
        self.fluid = ctypes.CDLL(ctypes.util.find_library("fluidsynth") or "libfluidsynth.so.3")
        for name in ("new_fluid_settings", "new_fluid_synth"):
            getattr(self.fluid, name).restype = ctypes.c_void_p
        settings = ctypes.c_void_p(self.fluid.new_fluid_settings())
        self.fluid.fluid_settings_setnum(settings, b"synth.sample-rate", ctypes.c_double(RATE))
        self.fluid.fluid_settings_setnum(settings, b"synth.gain", ctypes.c_double(0.3))
        self.fluid.fluid_settings_setint(settings, b"synth.dynamic-sample-loading", 1)
        self.synth = ctypes.c_void_p(self.fluid.new_fluid_synth(settings))
        if self.fluid.fluid_synth_sfload(self.synth, str(path).encode(), 1) < 0:
            raise OSError(f"{path} is no sound font")

    def call(self, name, *values):
        getattr(self.fluid, "fluid_synth_" + name)(self.synth, *values)

    def play(self, events, seconds, reverb, chorus):
        """events: (seconds, order, operation, channel, values...)."""
        self.call("system_reset")
        self.call("reverb_on", -1, int(reverb))
        self.call("chorus_on", -1, int(chorus))
        sound = np.zeros((int(seconds * RATE), 2), np.float32)
        at = 0
        for when, _, operation, *values in [*sorted(events, key=lambda e: e[:2]), (seconds, 0, None)]:
            until = min(len(sound), int(when * RATE))
            if until > at:
                here = sound[at:].ctypes.data_as(ctypes.c_void_p)
                self.call("write_float", until - at, here, 0, 2, here, 1, 2)
                at = until
            if operation:
                self.call(operation, *values)
        return sound.mean(1)


def expression(dice, notes, channel, kind):
    """Events that bend and swell a channel: detune, vibrato, slides into a note, slow swells."""
    mine = [note for note in notes if note[4] == channel]
    events, end = [], max(note[1] for note in mine)
    times = np.arange(0, end + 0.2, 0.01)
    cents = np.full(len(times), dice.gauss(0, 4) if dice.random() < 0.5 else 0.0)
    if kind in BENDING and dice.random() < 0.45:
        depth, speed, delay = dice.uniform(5, 45), dice.uniform(4.3, 7.2), dice.uniform(0, 0.4)
        since = np.full(len(times), 0.0)
        for a, *_ in mine:
            since[int(a * 100) :] = times[int(a * 100) :] - a
        cents += depth * np.clip((since - delay) / 0.3, 0, 1) * np.sin(2 * np.pi * speed * times + dice.uniform(0, 6))
    alone = all(b[0] >= a[1] - 0.05 for a, b in zip(mine, mine[1:]))
    if alone and (kind in BENDING or kind in ("guitar", "bass")) and dice.random() < 0.3:
        for a, *_ in mine:
            if dice.random() < 0.5:
                depth, time = dice.uniform(-180, 60), dice.uniform(0.015, 0.05)
                tail = slice(int(a * 100), int(a * 100) + 30)
                cents[tail] += depth * np.exp(-(times[tail] - a) / time)
    if kind in BENDING and dice.random() < 0.25:
        depth, speed, phase = dice.uniform(10, 45), dice.uniform(0.1, 0.6), dice.uniform(0, 6)
        for t in np.arange(0, end, 0.05):
            events.append((t, 0, "cc", channel, 11, int(127 - depth * (1 + np.sin(2 * np.pi * speed * t + phase)))))
    wheel = np.clip(8192 + cents / 100 / BEND_RANGE * 8192, 0, 16383).astype(int)
    changes = np.flatnonzero(np.diff(wheel, prepend=-1))
    events += [(times[k], 0, "pitch_bend", channel, int(wheel[k])) for k in changes]
    if kind in BENDING and dice.random() < 0.1:
        events.append((0, 0, "cc", channel, 1, dice.randint(20, 100)))
    return events


def played(dice, player, notes, tuning, seconds):
    """The notes through a sound font, `tuning` cents off."""
    events = [(0, -1, "pitch_wheel_sens", channel, BEND_RANGE) for channel in range(16)]
    for channel in {note[4] for note in notes} - {DRUMS}:
        kind = kind_of(next(note[5] for note in notes if note[4] == channel))
        for when, order, name, where, *values in expression(dice, notes, channel, kind):
            if name == "pitch_bend":
                values = [int(np.clip(values[0] + tuning / 100 / BEND_RANGE * 8192, 0, 16383))]
            events.append((when, order, name, where, *values))
    last = {}
    for start, end, pitch, velocity, channel, program in notes:
        if channel != DRUMS and last.get(channel) != program:
            events.append((max(0, start - 0.002), 1, "program_change", channel, program))
            last[channel] = program
        events.append((start, 2, "noteon", channel, pitch, velocity))
        events.append((end, 1, "noteoff", channel, pitch))
    return player.play(events, seconds, dice.random() < 0.35, dice.random() < 0.12)


def synthesised(dice, program, notes, tuning, seconds):
    """The tones through our own synthesiser; every program of a channel is another instrument."""
    spread = {channel: dice.gauss(0, 4) for channel in range(16)}
    lines = "".join(
        f"{a} {b} {p} {v} {c * 1000 + g} {tuning + spread[c]}\n" for a, b, p, v, c, g in notes if c != DRUMS
    )
    command = [program, str(dice.randrange(1 << 30)), str(seconds)]
    return np.frombuffer(subprocess.run(command, input=lines.encode(), check=True, stdout=subprocess.PIPE).stdout, "<f4")


def spoken(dice, seconds):
    """Something like speech: a glottal tone that glides, vowels that change, hisses and pauses."""
    random = np.random.RandomState(dice.randrange(1 << 31))
    sound, at = np.zeros(int(seconds * RATE), np.float32), 0.2
    base = dice.choice((dice.uniform(85, 150), dice.uniform(160, 260)))
    while at < seconds - 1:
        length = dice.uniform(0.06, 0.35)
        t = np.arange(int(length * RATE)) / RATE
        if dice.random() < 0.25:
            piece = random.randn(len(t)) * 0.15
            piece = np.diff(piece, prepend=0) * np.hanning(len(t))
        else:
            bend = dice.uniform(-5, 5) * (t / length) + dice.uniform(-1, 1) * np.sin(2 * np.pi * 3 * t)
            hertz = base * 2 ** ((bend + dice.gauss(0, 2.5)) / 12)
            phase = np.cumsum(hertz) / RATE
            formants = [(dice.uniform(300, 800), 90), (dice.uniform(800, 2300), 120), (dice.uniform(2300, 3200), 180)]
            piece = np.zeros(len(t))
            for h in range(1, int(4000 / hertz.mean()) + 1):
                f = h * hertz.mean()
                gain = sum(1 / (1 + ((f - c) / w) ** 2) * 0.7**n for n, (c, w) in enumerate(formants)) / h**0.5
                piece += gain * np.sin(2 * np.pi * h * phase)
            piece *= np.minimum(1, np.minimum(t, length - t) / 0.025)
        first = int(at * RATE)
        piece = piece[: len(sound) - first]
        sound[first : first + len(piece)] += piece * dice.uniform(0.4, 1)
        at += length + (dice.uniform(0.15, 0.7) if dice.random() < 0.2 else dice.uniform(-0.03, 0.03))
    return sound


def room(dice, random, frequencies, length):
    """The response of a room: six early reflections, then noise that decays, the high notes sooner."""
    decay = dice.uniform(0.15, 1.8)
    t = np.arange(int(decay * RATE)) / RATE
    late = random.randn(len(t)) * 10 ** (-3 * t / decay)
    late[: int(dice.uniform(0, 0.03) * RATE)] = 0
    late /= np.sqrt((late**2).sum())
    response = np.fft.rfft(late, length) / np.sqrt(1 + (frequencies / dice.uniform(1500, 8000)) ** 2)
    response *= 10 ** (-dice.uniform(3, 20) / 20)
    for _ in range(6):
        delay, gain = dice.uniform(0.001, 0.04), dice.uniform(-1, 1) * 10 ** (-dice.uniform(6, 20) / 20)
        response = response + gain * np.exp(-2j * np.pi * frequencies * delay)
    return 1 + response


def microphone(dice, frequencies):
    """A small microphone or loudspeaker: limits of the band, and peaks and dips between them."""
    octaves = np.log2(np.maximum(frequencies, 10) / 1000)
    low, high = np.log2(dice.uniform(30, 160) / 1000), np.log2(dice.uniform(3500, 15000) / 1000)
    gain = -10 * np.log10(1 + 2.0 ** (4 * (low - octaves))) - 10 * np.log10(1 + 2.0 ** (4 * (octaves - high)))
    for _ in range(dice.randint(1, 5)):
        width = dice.uniform(0.05, 0.6)
        gain += dice.gauss(0, 5) * np.exp(-(((octaves - dice.uniform(-4, 2.5)) / width) ** 2))
    return 10 ** (gain / 20)


def wow(dice, sound):
    """Tape or disc: the speed swings by up to ten cents."""
    t = np.arange(len(sound))
    shift = np.zeros(len(sound))
    for _ in range(2):
        speed, cents = dice.uniform(0.4, 7), dice.uniform(1, 10)
        shift += cents / 1731 * RATE / (2 * np.pi * speed) * np.sin(2 * np.pi * speed / RATE * t + dice.uniform(0, 6))
    return np.interp(t + shift, t, sound).astype(np.float32)


def noise(dice, random, frequencies, length):
    """Hiss of some colour, and at times the hum of the mains."""
    spectrum = (random.randn(len(frequencies)) + 1j * random.randn(len(frequencies))).astype(np.complex64)
    result = np.fft.irfft(spectrum * np.maximum(frequencies, 20) ** -dice.choice((0, 0.5, 0.5, 1)), length)
    result /= np.sqrt((result**2).mean())
    if dice.random() < 0.25:
        t, mains = np.arange(length) / RATE, dice.choice((50, 60))
        for h in (1, 2, 3, 4, 5, 7):
            result += dice.uniform(0, 1.5) / h * np.sin(2 * np.pi * h * mains * t)
    return result


def recorded(dice, sound):
    """What becomes of the sound on its way: equaliser, room, microphone, tape, noise, distortion, level."""
    random = np.random.RandomState(dice.randrange(1 << 31))
    count = len(sound)
    length = -(-(count + RATE) // 65536) * 65536
    frequencies = np.fft.rfftfreq(length, 1 / RATE)
    if dice.random() < 0.12:
        sound = wow(dice, sound)
    response = np.ones(len(frequencies), complex)
    if dice.random() < 0.6:
        octaves = np.log2(np.maximum(frequencies, 20) / 20)
        tilt = dice.gauss(0, 1.2)
        gains = [dice.gauss(0, 4) + tilt * (k - 4) for k in range(9)]
        response *= 10 ** (np.interp(octaves, np.arange(9) * 9 / 8, gains) / 20)
    if dice.random() < 0.4:
        response *= room(dice, random, frequencies, length)
    if dice.random() < 0.3:
        response *= microphone(dice, frequencies)
    sound = np.fft.irfft(np.fft.rfft(sound, length) * response, length)[:count]
    strength = np.sqrt((sound**2).mean()) + 1e-9
    if dice.random() < 0.5:
        hiss = noise(dice, random, frequencies, length)[:count]
        sound = sound + hiss * strength * 10 ** (-dice.uniform(10, 60) / 20)
    if dice.random() < 0.15:
        drive, skew = dice.uniform(0.5, 3), dice.uniform(0, 0.3)
        sound = np.tanh(sound / abs(sound).max() * drive + skew) - np.tanh(skew)
    level = -dice.uniform(1, dice.choice((15, 40)))
    return (sound / (abs(sound).max() + 1e-9) * 10 ** (level / 20)).astype(np.float32)
