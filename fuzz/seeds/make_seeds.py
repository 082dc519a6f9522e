#!/usr/bin/env python3
"""Writes the seeds beside this file anew: stored scores for the reader, inputs as fuzz_exporter.cpp says."""
import os
import struct

here = os.path.dirname(os.path.abspath(__file__))


def text(value):
    return struct.pack(">I", len(value)) + value


def note(begin, end, midi=69, level=-624, program=5, layer=1, channel=1, tag=0, flags=12):
    return struct.pack(">IIBiBBBII", begin, end, midi, level, program, layer, channel, tag, flags)


def score(notes=(), layers=(), title=b"", version=1, rate=22050, bars=()):
    file = b"TNotes" + struct.pack(">III", version, rate, len(notes)) + b"".join(notes)
    file += struct.pack(">I", len(layers)) + b"".join(map(text, layers)) + text(title)
    file += struct.pack(">qhBBbB", 0x3C << 56, 6, 4, 2, 0, 0)  # tempo 120, 4/4, C major
    if version > 0:
        file += struct.pack(">Q", len(bars)) + b"".join(struct.pack(">II", *bar) for bar in bars)
    return file


def save(folder, name, content):
    os.makedirs(os.path.join(here, folder), exist_ok=True)
    with open(os.path.join(here, folder, name), "wb") as file:
        file.write(content)


last = 2**32 - 1
save("reader", "empty", score())
save("reader", "one_note", score([note(100, 200)], [b"", b"melody"], b"A title"))
save("reader", "old_version", score([note(0, 10)], version=0))
save("reader", "other_rate", score([note(44100, 88200), note(0, 1)], rate=44100))
save("reader", "bars", score([note(0, 9)], bars=[(0, 4), (44100, 4), (88200, 3)]))
save("reader", "chord", score([note(0, 1000, 60 + third) for third in (0, 4, 7)]))
save("reader", "same_pitch", score([note(start, start + 30) for start in range(0, 200, 10)]))
save("reader", "last_tick", score([note(last, last), note(last - 1, 5), note(0, last)]))
save("reader", "backwards", score([note(90 - start, 100 - start) for start in range(0, 90, 10)]))
save("reader", "lying_count", score()[:14] + struct.pack(">I", 0x7FFFFFFF))


def export(options, tempo, meter=(4, 2), spacing=0, bars=(), notes=()):
    file = struct.pack(">BdBBbBHH", options, tempo, *meter, 0, 0, spacing, len(bars))
    file += b"".join(struct.pack(">IB", *bar) for bar in bars)
    return file + b"".join(notes)


def played(begin, end, pitch=45, level=-624, program=5, layer=1, channel=1, flags=16):
    return struct.pack(">IIBiBBBH", begin, end, pitch, level, program, layer, channel, flags)


tune = [played(beat * 11025, beat * 11025 + 9000, 36 + beat, layer=beat % 3) for beat in range(12)]
save("exporter", "fixed_tempo", export(0, 120.0, notes=tune))
save("exporter", "bars", export(0, 120.0, bars=[(0, 4), (44100, 4), (66150, 4), (44100, 4)], notes=tune))
save("exporter", "short_first_bar", export(1, 120.0, bars=[(0, 4), (5000, 4), (44100, 4), (44100, 4)], notes=tune))
save("exporter", "equal_bars", export(2, 90.0, (3, 3), spacing=30000, notes=tune))
save("exporter", "wide_gap", export(0, 500.0, bars=[(0, 4), (44100, 4), (16000000, 4)], notes=tune[:2]))
save("exporter", "no_tempo", export(0, 0.0, (0, 255), bars=[(0, 0), (11025, 0), (11025, 0)], notes=tune[:3]))
save("exporter", "not_a_number", export(0, float("nan"), notes=tune[:3]))
save("exporter", "limits", export(5, 1e308, (255, 31), bars=[(7, 1)], notes=[
    played(last, last, 255, -2**31, 255, 255, 16), played(0, last, 0, 2**31 - 1, 127, 0, 1)]))
