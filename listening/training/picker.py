"""From the net's outputs to notes, and how many of them are right: for choosing thresholds."""

import numpy as np

from net import ACTIVE_LOOK, LOOK, LOWEST

REFRACTORY = 5  # frames


def pick(logits, head, threshold, ending=0.0, hold=2, shift=0.010):
    """Notes (start, end, pitch). Thresholds are logits. A note starts where the output crosses the threshold upwards,
    and ends where "active" stays under `ending` for `hold` frames, or where the pitch starts again."""
    o, look = logits[:, head], LOOK[head]
    active = logits[:, -1]
    before = np.pad(o, ((1, 0), (0, 0)), constant_values=-9)[:-1]
    crossed = (o >= threshold) & (before < threshold)
    silent = active < ending
    for _ in range(hold - 1):
        silent[1:] &= silent[:-1].copy()
    notes = []
    for p in np.flatnonzero(crossed.any(0)):
        starts = []
        for t in np.flatnonzero(crossed[:, p]):
            if not starts or t - starts[-1] >= REFRACTORY:
                starts.append(t)
        quiet = np.flatnonzero(silent[:, p])
        for number, t in enumerate(starts):
            start = t - look
            following = starts[number + 1] - look - 1 if number + 1 < len(starts) else len(o)
            at = np.searchsorted(quiet, max(t, start + ACTIVE_LOOK + 4) + hold - 1)
            end = min(quiet[at] - hold + 1 - ACTIVE_LOOK if at < len(quiet) else len(o), following)
            begun = start * 0.01 + shift
            notes.append((begun, max(begun + 0.03, end * 0.01 + shift), LOWEST + int(p)))
    return notes


def matches(played, heard, window):
    """Pairs (played, heard) of equal pitch whose starts are at most `window` apart; as many as there can be, since
    windows of one width on one line are matched best in order."""
    by_pitch = {}
    for side, notes in enumerate((played, heard)):
        for note in notes:
            by_pitch.setdefault(int(note[2]), ([], []))[side].append(note)
    pairs = []
    for truths, guesses in by_pitch.values():
        truths.sort(key=lambda n: n[0])
        guesses.sort(key=lambda n: n[0])
        i = j = 0
        while i < len(truths) and j < len(guesses):
            late = guesses[j][0] - truths[i][0]
            if abs(late) <= window + 1e-6:
                pairs.append((truths[i], guesses[j]))
                i, j = i + 1, j + 1
            elif late > 0:
                i += 1
            else:
                j += 1
    return pairs


def f_measure(found, heard, played):
    return 2 * found / (heard + played) if heard + played else 1.0
