#!/usr/bin/python3
"""Chooses the thresholds of a net on the clips that are kept for choosing, and prints how well it hears them.

    choose.py DATA WEIGHTS    writes WEIGHTS with the ending .json: probabilities for the onset outputs "0" to "2" and
                              for "active", and "shift", the seconds by which a note is dated later than its output says
"""

import json
import os
import sys
from math import log
from pathlib import Path

os.environ.setdefault("OMP_NUM_THREADS", "1")
sys.dont_write_bytecode = True

import numpy as np

import net
import picker
from data import CHOOSING

ONSETS = (0.35, 0.4, 0.45, 0.5, 0.55, 0.6, 0.65)
ENDINGS = (0.3, 0.4, 0.5, 0.6)
SHIFT = 0.010


def logit(probability):
    return log(probability / (1 - probability))


def clips(folder):
    """(source, energies, notes) of what is kept for choosing."""
    found = []
    for path in sorted(folder.glob("*.npz")):
        source, number = path.stem.split("-")
        if int(number) >= CHOOSING:
            clip = np.load(path)
            found.append((source, clip["energies"].astype(np.float32), clip["notes"].tolist()))
    return found


def judge(takes, head, threshold, ending):
    """Means over the sources of F at 50 ms, at 100 ms and with ends, false notes a minute where nothing is played, and
    the median error of the dates."""
    sums, errors = {}, []
    for source, logits, notes in takes:
        heard = picker.pick(logits, head, logit(threshold), logit(ending), shift=SHIFT)
        near = picker.matches(notes, heard, 0.05)
        ends = sum(abs(b[1] - a[1]) <= max(0.05, 0.2 * (a[1] - a[0])) for a, b in near)
        errors += [b[0] - a[0] for a, b in near]
        row = (len(near), len(picker.matches(notes, heard, 0.1)), ends, len(heard), len(notes), len(logits))
        sums[source] = np.add(sums.get(source, 0), row)
    played = [row for source, row in sums.items() if source != "nothing"]
    means = [np.mean([picker.f_measure(row[k], row[3], row[4]) for row in played]) for k in range(3)]
    nothing = sums.get("nothing", (0, 0, 0, 0, 0, 1))
    by_source = {source: picker.f_measure(row[0], row[3], row[4]) for source, row in sums.items() if source != "nothing"}
    return means, nothing[3] / nothing[5] * 6000, float(np.median(errors)) if errors else 0.0, by_source


def main(folder, weights):
    listener = net.read(weights)
    takes = [(source, net.outputs(listener, energies).numpy(), notes) for source, energies, notes in clips(folder)]
    chosen, errors = {}, []
    for head in range(len(net.LOOK)):
        tries = {threshold: judge(takes, head, threshold, 0.5) for threshold in ONSETS}
        best = max(tries, key=lambda threshold: sum(tries[threshold][0][:2]))
        chosen[str(head)] = best
        errors.append(tries[best][2])
    ends = {ending: judge(takes, 2, chosen["2"], ending)[0][2] for ending in ENDINGS}
    chosen["active"] = max(ends, key=ends.get)
    for head, look in enumerate(net.LOOK):
        means, nothing, error, by_source = judge(takes, head, chosen[str(head)], chosen["active"])
        print(
            f"{look * 10} ms at {chosen[str(head)]}: F50 {means[0]:.3f}, F100 {means[1]:.3f}, with ends {means[2]:.3f}; "
            f"{nothing:.1f} notes a minute in nothing; dates {1000 * error:+.0f} ms;",
            ", ".join(f"{source} {f:.3f}" for source, f in sorted(by_source.items())),
        )
    chosen["shift"] = round(SHIFT - float(np.mean(errors[1:])), 3)
    weights.with_suffix(".json").write_text(json.dumps(chosen) + "\n")
    print(json.dumps(chosen))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(Path(sys.argv[1]), Path(sys.argv[2]))
