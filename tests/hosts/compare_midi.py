"""Compares the MIDI that a host has recorded with the notes that orva-host gives for the same audio.

A host takes a note in the block in which it is sent, and not where it began: it may stand as much later as its
recognition takes, and one block; never earlier, and the notes of a key in their order. Where in a block the host began to play is
not known, and decides where the frames of the recognition lie: it is found by trying every sample of a block. Where
it is known, since the recording is a table of events with their times, it is the begin of the block.

    compare_midi.py RECORDED.mid|RECORDED.csv AUDIO.wav BLOCK    (BLOCK in samples; orva-host from $ORVA_BUILD)
"""
import csv
import io
import os
import pathlib
import subprocess
import sys
import tempfile
import wave

ROUNDING = 0.001  # s; of a MIDI file's ticks, and of the host's clock
AT_ONCE = 64  # alignments that are rendered at once


def delay(key):
    """s from a note's begin in the sound to its recognition, as its band's width has it: three frames and 10 ms at the
    highest of the 84 bands, 95 ms at the lowest, which is key 24."""
    return 0.040 + (24 + 83 - key) * 1.11565 / 84 / 0.02 / 1000


def table(path):
    """(s, on, key) of a table of events as orva-host writes it."""
    with open(path, newline="") as events:
        return [(float(row["time"]), row["kind"] == "note on", int(row["data1"]))
                for row in csv.DictReader(events) if row["kind"] in ("note on", "note off")]


def recorded(path):
    """(s, on, key), in the order of the file."""
    if path.endswith(".csv"):
        return table(path)
    text = subprocess.run(["midicsv", path], capture_output=True, check=True).stdout.decode("latin1")
    rows = [[field.strip() for field in row] for row in csv.reader(io.StringIO(text))]
    division = next(int(row[5]) for row in rows if row[2] == "Header")
    tempo = next((int(row[3]) for row in rows if row[2] == "Tempo"), 500000)
    return [(int(row[1]) * tempo / division / 1e6, row[2] == "Note_on_c" and row[5] != "0", int(row[4]))
            for row in rows if row[2] in ("Note_on_c", "Note_off_c")]


def rendered(audio, block, shifts):
    """For each shift, the notes as (s, on, key) in the order of sending, with so many samples of silence ahead."""
    with wave.open(audio) as sound:
        form, samples = sound.getparams(), sound.readframes(sound.getnframes())
    for first in range(0, shifts, AT_ONCE):
        with tempfile.TemporaryDirectory() as folder:
            files = [pathlib.Path(folder, f"{shift}.wav") for shift in range(first, min(first + AT_ONCE, shifts))]
            for shift, file in enumerate(files, first):
                with wave.open(str(file), "wb") as sound:
                    sound.setparams(form)
                    sound.writeframes(bytes(shift * form.sampwidth * form.nchannels) + samples)
            subprocess.run([f"{os.environ['ORVA_BUILD']}/orva-host", "render", "--ear", "classic", *map(str, files),
                            "--block", str(block), "--events", folder, "--jobs", "2"],
                           stdout=subprocess.DEVNULL, check=True)
            for shift, file in enumerate(files, first):
                yield shift, [(time - shift / form.framerate, on, key)
                              for time, on, key in table(file.with_suffix(".csv"))]


def compare(heard, expected, block):
    """The faults, and the longest that a note came later than it began (s); block in s."""
    faults, lag, end = [], 0.0, max(time for time, _, _ in heard)
    for key in sorted({key for _, _, key in expected + heard}):
        events, got = ([note[:2] for note in notes if note[2] == key] for notes in (expected, heard))
        due = sum(time + delay(key) + 2 * block < end for time, _ in events)
        if not due <= len(got) <= len(events):
            faults.append(f"key {key}: {len(got)} events, {due} to {len(events)} were due")
            continue
        for (time, on), (at, was_on) in zip(events, got):
            if not was_on and at >= end - ROUNDING:
                break  # the recording's end ends all notes
            lag = max(lag, at - time)
            if on != was_on or not -ROUNDING <= at - time <= delay(key) + block + ROUNDING:
                faults.append(f"key {key}: {'on' if on else 'off'} of {time:.3f} s arrives at {at:.3f} s")
    return faults, lag


def main():
    path, audio, block = sys.argv[1], sys.argv[2], int(sys.argv[3])
    heard, nearest = recorded(path), None
    notes = sum(on for _, on, _ in heard)
    if notes == 0:
        sys.exit("no note has arrived")
    with wave.open(audio) as sound:
        block_seconds = block / sound.getframerate()
    for shift, expected in rendered(audio, block, 1 if path.endswith(".csv") else block):
        faults, lag = compare(heard, expected, block_seconds)
        if not faults:
            print(f"{notes} notes as orva-host gives them, at most {lag * 1000:.0f} ms after they began "
                  f"(the host began at sample {shift} of a block)")
            return
        nearest = min(nearest or faults, faults, key=len)
    sys.exit("at no alignment the same notes; the nearest:\n" + "\n".join(nearest[:20]))


main()
