"""Reads the notes of a Standard MIDI File."""

from collections import defaultdict


def number(data, at):
    """A variable-length number and where it ends."""
    value = 0
    while True:
        value = value << 7 | data[at] & 0x7F
        at += 1
        if not data[at - 1] & 0x80:
            return value, at


def events(data):
    """(tick, order, bytes) of one track; for a change of tempo, the bytes are (0xFF, 0x51, ...)."""
    at, tick, status, found = 0, 0, 0, []
    while at < len(data):
        wait, at = number(data, at)
        tick += wait
        if data[at] & 0x80:
            status, at = data[at], at + 1
        if status in (0xF0, 0xF7):
            length, at = number(data, at)
            at += length
        elif status == 0xFF:
            kind = data[at]
            length, at = number(data, at + 1)
            if kind == 0x51:
                found.append((tick, bytes([0xFF, 0x51]) + data[at : at + length]))
            at += length
        else:
            length = 1 if status & 0xF0 in (0xC0, 0xD0) else 2
            found.append((tick, bytes([status]) + data[at : at + length]))
            at += length
    return found


def read(path):
    """Notes as (start, end, pitch, velocity, channel, program), times in seconds, sorted."""
    data = path.read_bytes()
    head = data.find(b"MThd")
    division = int.from_bytes(data[head + 12 : head + 14], "big")
    at, found = head + 14, []
    while data[at : at + 4] == b"MTrk":
        length = int.from_bytes(data[at + 4 : at + 8], "big")
        found += events(data[at + 8 : at + 8 + length])
        at += 8 + length
    found.sort(key=lambda event: (event[0], event[1][0] & 0xF0 == 0x90 and event[1][2] > 0))
    notes, sounding, program = [], defaultdict(list), [0] * 16
    tick, seconds, tempo = 0, 0.0, 0.5 / division
    for now, event in found:
        seconds, tick = seconds + (now - tick) * tempo, now
        kind, channel = event[0] & 0xF0, event[0] & 15
        if event[0] == 0xFF:
            tempo = int.from_bytes(event[2:5], "big") / 1e6 / division
        elif kind == 0xC0:
            program[channel] = event[1]
        elif kind == 0x90 and event[2]:
            sounding[channel, event[1]].append((seconds, event[2], program[channel]))
        elif kind in (0x80, 0x90) and sounding[channel, event[1]]:
            start, velocity, sound = sounding[channel, event[1]].pop(0)
            if seconds > start:
                notes.append((start, seconds, event[1], velocity, channel, sound))
    return sorted(notes)
