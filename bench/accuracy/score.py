#!/usr/bin/python3
"""Compares notes heard with notes played. Which note answers which is mir_eval's decision; the rest is counting.

    score.py --self-test    tries the counting on lists of notes whose score is known

A note is (start, end, MIDI note), times in seconds. Counts of several pieces may be added up, and figures are
taken of the sum, so that every note weighs the same.
"""

import sys
from collections import Counter

import numpy
from mir_eval.transcription import match_notes

NARROW, WIDE = 0.05, 0.1  # seconds, how far the start of a note may lie from the truth
# For the scores with ends: a fifth of the note's length, at least the narrow window. As mir_eval has it.
END_SHARE = 0.2
OCTAVES = (-24, -12, 12, 24, 36)
OTHER_PARTIALS = (19, 28, 31, 34)  # the third, fifth, sixth and seventh, in whole semitones


def arrays(notes):
    """What mir_eval takes: intervals of seconds, none empty and none before 0, and pitches in Hz."""
    starts = [max(0.0, start) for start, _, _ in notes]
    ends = [max(end, start + 0.001) for start, (_, end, _) in zip(starts, notes)]
    pitches = [440.0 * 2 ** ((pitch - 69) / 12) for _, _, pitch in notes]
    return numpy.array([starts, ends]).T.reshape(-1, 2), numpy.array(pitches)


def match(played, heard, window, end_share=None):
    """Pairs of indices, (played, heard); each note at most once, as many pairs as can be made."""
    if not played or not heard:
        return []
    return match_notes(
        *arrays(played),
        *arrays(heard),
        onset_tolerance=window,
        pitch_tolerance=50.0,  # cents: the notes are whole semitones, so this asks for the same one
        offset_ratio=end_share,
        offset_min_tolerance=NARROW,
    )


def count(played, heard):
    """What the figures are made of; counts of several pieces may be added."""
    wide = match(played, heard, WIDE)
    delays = [heard[guess][0] - played[truth][0] for truth, guess in wide]
    delay = sum(delays) / len(delays) if delays else 0.0
    punctual = [(start - delay, end - delay, pitch) for start, end, pitch in heard]
    result = Counter(
        played=len(played),
        heard=len(heard),
        narrow=len(match(played, heard, NARROW)),
        wide=len(wide),
        punctual=len(match(played, punctual, NARROW)),
        with_ends=len(match(played, heard, NARROW, END_SHARE)),
        delay=sum(delays),
    )
    answered = {guess for _, guess in wide}
    for index, (start, _, pitch) in enumerate(heard):
        if index in answered:
            continue
        sounding = [note for begin, end, note in played if begin - WIDE <= start < end]
        if any(pitch - note in OCTAVES for note in sounding):
            result["octaves"] += 1
        elif any(pitch - note in OTHER_PARTIALS for note in sounding):
            result["partials"] += 1
        elif pitch in sounding:
            result["again"] += 1
    return result


def rates(found, heard, played):
    precision = found / heard if heard else 0.0
    recall = found / played if played else 0.0
    return precision, recall, 2 * found / (heard + played) if heard + played else 0.0


def figures(counts):
    """In percent, but for `delay`: ms by which matched notes start late on the mean, None if none matched.
    "even" is the score at 50 ms after each piece's own mean delay has been taken off what was heard. `octaves`,
    `partials` and `again` are shares of the notes heard, all of them wrong: an octave or two off a sounding note, on
    another of its partials, or the sounding note struck once more."""
    result = {"played": counts["played"], "heard": counts["heard"]}
    for name, found in (("50", "narrow"), ("100", "wide"), ("even", "punctual"), ("ends", "with_ends")):
        precision, recall, f = rates(counts[found], counts["heard"], counts["played"])
        result[f"P{name}"], result[f"R{name}"], result[f"F{name}"] = 100 * precision, 100 * recall, 100 * f
    for wrong in ("octaves", "partials", "again"):
        result[wrong] = 100 * counts[wrong] / counts["heard"] if counts["heard"] else 0.0
    result["delay"] = 1000 * counts["delay"] / counts["wide"] if counts["wide"] else None
    return {name: round(value, 1) if isinstance(value, float) else value for name, value in result.items()}


def self_test():
    tune = [(0.5, 1.0, 60), (1.0, 1.5, 64), (1.5, 2.5, 67), (2.5, 3.0, 72)]

    def late(seconds):
        return [(start + seconds, end + seconds, pitch) for start, end, pitch in tune]

    def expect(claim, guesses, **known):
        got = figures(count(tune, guesses))
        for name, value in known.items():
            assert got[name] == value, f"{claim}: {name} is {got[name]}, not {value}"

    expect("the same notes", tune, F50=100.0, F100=100.0, Fends=100.0, octaves=0.0, again=0.0, delay=0.0)
    expect("silence", [], P50=0.0, R50=0.0, F50=0.0, heard=0, delay=None)
    # 70 ms is past the narrow window and within the wide one.
    expect("70 ms late", late(0.07), F50=0.0, F100=100.0, Feven=100.0, delay=70.0)
    expect("30 ms early", late(-0.03), F50=100.0, delay=-30.0)
    # 2 of 2 heard are right, 2 of 4 played are found: F = 2 x 2 / (2 + 4).
    expect("half of the notes", tune[:2], P50=100.0, R50=50.0, F50=66.7)
    # 4 of 6 heard are right, all are found: F = 2 x 4 / (6 + 4). One octave and one twelfth up.
    extra = [(0.5, 0.9, 72), (1.6, 1.7, 86)]
    expect("overtones", tune + extra, P50=66.7, R50=100.0, F50=80.0, octaves=16.7, partials=16.7)
    # A fifth of the long note is 200 ms; of the others 100 ms. 150 ms short suits the long one alone.
    short = [(start, end - 0.15, pitch) for start, end, pitch in tune]
    expect("ends 150 ms early", short, F50=100.0, Fends=25.0)
    # The second start of the long note is no note of its own, and both in the window are not both right.
    expect("struck again", tune + [(2.0, 2.4, 67), (1.52, 1.6, 67)], P50=66.7, R50=100.0, again=33.3)
    expect("all an octave up", [(a, b, p + 12) for a, b, p in tune], F100=0.0, octaves=100.0)
    expect("a semitone off", [(a, b, p + 1) for a, b, p in tune], F100=0.0, octaves=0.0, partials=0.0)

    # Silence played and something heard; and a note that was dated before the start, with no length.
    nothing = figures(count([], tune))
    assert nothing["P50"] == 0.0 and nothing["octaves"] == 0.0
    assert figures(count([(0.0, 0.5, 60)], [(-0.02, -0.02, 60)]))["F50"] == 100.0
    # Sums weigh notes, not pieces: 4 of 4 and 0 of 1 are 4 of 5.
    assert figures(count(tune, tune) + count([(0.0, 1.0, 50)], []))["R50"] == 80.0


if __name__ == "__main__":
    if sys.argv[1:] != ["--self-test"]:
        sys.exit(__doc__)
    self_test()
    print("score.py: all known scores come out")
